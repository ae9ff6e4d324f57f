#pragma once

#include "core/metrics/sources/CpuTicksSource.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quelmo {

// Busy fraction per logical CPU and for the whole machine, from the difference of two samples
// of the cumulative tick counters.
class CPUMonitor {
public:
    struct Reading {
        double total = 0;
        std::vector<double> perCore; // empty when no difference could be formed
    };

    explicit CPUMonitor(std::unique_ptr<CpuTicksSource> source);
    Reading sample();

private:
    std::unique_ptr<CpuTicksSource> source_;
    std::vector<std::uint32_t> prevTicks_; // user, system, idle, nice per CPU
};

} // namespace quelmo
