#pragma once

#include "metrics/ProcInfo.h"
#include "metrics/sources/SystemSources.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quelmo {

// A snapshot of the process table, one row per process, in the order the source listed them.
class ProcessMonitor {
public:
    explicit ProcessMonitor(std::unique_ptr<ProcessSource> source);
    std::vector<ProcInfo> snapshot();
    // The start time (kernel clock ticks since boot) of `pid` as of the last snapshot; used to
    // make sure a signal only ever reaches the process that was listed.
    std::optional<std::uint64_t> startTimeOf(qint64 pid) const;

private:
    std::unique_ptr<ProcessSource> source_;
};

} // namespace quelmo
