#pragma once

#include "metrics/ProcInfo.h"
#include "metrics/sources/SystemSources.h"

#include <memory>
#include <vector>

namespace quelmo {

// A snapshot of the process table, one row per process, in the order the source listed them.
class ProcessMonitor {
public:
    explicit ProcessMonitor(std::unique_ptr<ProcessSource> source);
    std::vector<ProcInfo> snapshot();

private:
    std::unique_ptr<ProcessSource> source_;
};

} // namespace quelmo
