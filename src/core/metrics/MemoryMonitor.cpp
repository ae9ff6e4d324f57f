#include "core/metrics/MemoryMonitor.h"

#include <algorithm>

namespace quelmo {

MemoryMonitor::MemoryMonitor(std::unique_ptr<MemorySource> source, double total)
    : source_(std::move(source)), total_(total) {}

MemoryMonitor::Reading MemoryMonitor::sample() {
    const auto pages = source_ ? source_->readPages() : std::nullopt;
    if (!pages)
        return {0.0, total_, 0.0};

    const MemoryPages& p = *pages;
    double used = (((p.internal - p.purgeable) + p.wired) + p.compressed) * p.pageSize;
    if (!(used > 0))
        used = ((p.wired + p.active) + p.compressed) * p.pageSize;
    if (!(used > 0))
        used = 0;
    if (total_ < used)
        used = total_;
    return {used, total_, total_ > 0 ? used / total_ : 0.0};
}

} // namespace quelmo
