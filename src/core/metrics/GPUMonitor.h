#pragma once

#include "core/metrics/sources/GpuLoadSource.h"

#include <memory>

namespace quelmo {

// Utilisation of the busiest GPU, 0 to 1.
class GPUMonitor {
public:
    explicit GPUMonitor(std::unique_ptr<GpuLoadSource> source);
    double sample();

private:
    std::unique_ptr<GpuLoadSource> source_;
};

} // namespace quelmo
