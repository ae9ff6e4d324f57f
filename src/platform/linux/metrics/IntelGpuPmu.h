#pragma once

// Intel integrated and discrete GPUs driven by i915 publish per-engine busy time through the
// kernel's perf interface (a PMU named "i915" or "i915_<pci address>"). Opening those counters
// needs CAP_PERFMON or kernel.perf_event_paranoid <= 0; without that permission the GPU simply
// reports nothing.

#include <QString>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quelmo::linux_platform {

class IntelGpuPmu {
public:
    explicit IntelGpuPmu(const QString& root);
    IntelGpuPmu(const IntelGpuPmu&) = delete;
    IntelGpuPmu& operator=(const IntelGpuPmu&) = delete;
    ~IntelGpuPmu();

    // The busiest engine's share of the time since the previous call, in percent, per device
    // that had a previous reading.
    std::vector<std::int64_t> readPercents();

private:
    struct Counter {
        int fd = -1;
        std::uint64_t busy = 0;    // ns the engine was busy
        std::uint64_t enabled = 0; // ns the counter was running
        bool seen = false;
    };
    struct Device {
        std::vector<Counter> engines;
    };
    std::vector<Device> devices_;
};

// The config value of a PMU event description such as "config=0x10"; nothing when absent.
std::optional<std::uint64_t> parsePmuEventConfig(std::string_view description);

// The engine-busy events ("rcs0-busy", "vcs0-busy", ...) of a PMU events directory listing.
bool isEngineBusyEvent(std::string_view eventName);

} // namespace quelmo::linux_platform
