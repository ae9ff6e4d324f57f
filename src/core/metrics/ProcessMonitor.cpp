#include "metrics/ProcessMonitor.h"

namespace quelmo {

ProcessMonitor::ProcessMonitor(std::unique_ptr<ProcessSource> source) : source_(std::move(source)) {}

std::vector<ProcInfo> ProcessMonitor::snapshot() {
    return source_ ? source_->snapshot() : std::vector<ProcInfo>{};
}

std::optional<std::uint64_t> ProcessMonitor::startTimeOf(qint64) const { return std::nullopt; }

} // namespace quelmo
