#pragma once

#include "core/metrics/sources/CpuTicksSource.h"
#include "platform/linux/metrics/KernelFile.h"

#include <string_view>

namespace quelmo::linux_platform {

// Per-CPU cumulative ticks from the "cpuN" lines of /proc/stat, folded into the four states the
// CPU monitor works with: user; system + irq + softirq + steal; idle + iowait; nice.
class CpuTicksReader final : public CpuTicksSource {
public:
    explicit CpuTicksReader(const QString& root);
    std::optional<std::vector<CpuTicks>> readTicks() override;

private:
    KernelFile stat_;
};

// The ticks of every "cpuN" line of /proc/stat text, in order; nothing when a CPU line is
// malformed or there is none.
std::optional<std::vector<CpuTicks>> parseCpuTicks(std::string_view procStat);

} // namespace quelmo::linux_platform
