#include "core/metrics/GPUMonitor.h"

#include <algorithm>

namespace quelmo {

GPUMonitor::GPUMonitor(std::unique_ptr<GpuLoadSource> source) : source_(std::move(source)) {}

double GPUMonitor::sample() {
    if (!source_)
        return 0.0;
    double best = 0.0;
    for (const std::int64_t percent : source_->readDevicePercents())
        best = std::max(best, static_cast<double>(percent) / 100.0);
    return std::clamp(best, 0.0, 1.0);
}

} // namespace quelmo
