#include "metrics/ProcessMonitor.h"

namespace quelmo {

ProcessMonitor::ProcessMonitor(std::unique_ptr<ProcessSource> source) : source_(std::move(source)) {}

std::vector<ProcInfo> ProcessMonitor::snapshot() {
    return source_ ? source_->snapshot() : std::vector<ProcInfo>{};
}

} // namespace quelmo
