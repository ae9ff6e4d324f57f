#pragma once

#include "cleanup/CleanupCandidate.h"
#include "metrics/ProcInfo.h"

#include <optional>
#include <vector>

namespace quelmo {

// Per-process-name CPU statistics kept across runs, and the resource reasons derived from them.
class BaselineEngine {
public:
    BaselineEngine();
    void observe(const std::vector<ProcInfo>& procs);
    std::optional<CleanupReason> reason(const ProcInfo& proc) const;
    void setSensitivity(double s) { sensitivity_ = s; }
    double sensitivity() const { return sensitivity_; }

private:
    double sensitivity_ = 0.5;
};

} // namespace quelmo
