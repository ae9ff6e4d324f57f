#include "platform/linux/metrics/MetricsReaders.h"

#include "platform/linux/common/RootPath.h"
#include "platform/linux/metrics/ChipFactsReader.h"
#include "platform/linux/metrics/CpuTicksReader.h"
#include "platform/linux/metrics/EnergyReader.h"
#include "platform/linux/metrics/GpuLoadReader.h"
#include "platform/linux/metrics/MemInfoReader.h"
#include "platform/linux/metrics/NvmlLibrary.h"
#include "platform/linux/metrics/ProcfsProcessReader.h"

namespace quelmo::linux_platform {

void addMetricsReaders(Platform& platform, const QString& root) {
    const bool liveMachine = isLiveRoot(root);
    const std::shared_ptr<NvmlLibrary> nvml = liveMachine ? NvmlLibrary::load() : nullptr;
    platform.cpuTicks = std::make_unique<CpuTicksReader>(root);
    platform.chip = std::make_unique<ChipFactsReader>(root);
    platform.gpu = std::make_unique<GpuLoadReader>(root, nvml);
    platform.memory = std::make_unique<MemInfoReader>(root);
    platform.energy = std::make_unique<EnergyReader>(root, nvml);
    platform.processes = std::make_unique<ProcfsProcessReader>(root);
    platform.readProcessesOffThread = true;
}

} // namespace quelmo::linux_platform
