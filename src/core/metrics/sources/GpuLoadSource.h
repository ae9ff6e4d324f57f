#pragma once

// How busy each GPU is. Implemented by a reader under platform/linux (rooted at a
// directory, so fixture trees can stand in for /); faked in a few lines in tests. Readers only
// read: every decision stays in the monitors.

#include <cstdint>
#include <vector>

namespace quelmo {

class GpuLoadSource {
public:
    virtual ~GpuLoadSource() = default;
    // One utilisation percentage per device that reported one.
    virtual std::vector<std::int64_t> readDevicePercents() = 0;
};

} // namespace quelmo
