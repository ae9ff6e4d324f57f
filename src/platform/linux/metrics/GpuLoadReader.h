#pragma once

#include "core/metrics/sources/GpuLoadSource.h"
#include "platform/linux/metrics/IntelGpuPmu.h"
#include "platform/linux/metrics/KernelFile.h"
#include "platform/linux/metrics/NvmlLibrary.h"

#include <memory>
#include <vector>

namespace quelmo::linux_platform {

// One utilisation percentage per GPU that reports one: amdgpu's gpu_busy_percent for every
// /sys/class/drm/cardN, NVIDIA's through NVML, Intel's (i915) through the kernel's PMU. The
// devices are found once; each tick only re-reads what was found. A GPU that the kernel has put
// to sleep counts as idle and is not asked, since asking could wake it up.
class GpuLoadReader final : public GpuLoadSource {
public:
    GpuLoadReader(const QString& root, std::shared_ptr<NvmlLibrary> nvml);
    std::vector<std::int64_t> readDevicePercents() override;

private:
    struct AmdCard {
        KernelFile busyPercent;
        KernelFile runtimeStatus; // "suspended" while the GPU sleeps; absent without runtime PM
    };
    std::vector<AmdCard> amdCards_;
    std::shared_ptr<NvmlLibrary> nvml_;
    IntelGpuPmu intel_;
};

} // namespace quelmo::linux_platform
