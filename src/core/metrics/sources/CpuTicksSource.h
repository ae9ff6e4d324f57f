#pragma once

// The processor's cumulative tick counters, per logical CPU. Implemented by a reader under
// platform/linux (rooted at a directory, so fixture trees can stand in for /); faked in a few lines
// in tests. Readers only read: every decision stays in the monitors.

#include <cstdint>
#include <optional>
#include <vector>

namespace quelmo {

// Cumulative scheduler ticks of one logical CPU, in the kernel's processor order.
struct CpuTicks {
    std::uint64_t user = 0;
    std::uint64_t system = 0;
    std::uint64_t idle = 0;
    std::uint64_t nice = 0;
};

class CpuTicksSource {
public:
    virtual ~CpuTicksSource() = default;
    // Nothing when the counters cannot be read.
    virtual std::optional<std::vector<CpuTicks>> readTicks() = 0;
};

} // namespace quelmo
