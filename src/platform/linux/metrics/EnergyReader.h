#pragma once

#include "core/metrics/sources/EnergySource.h"
#include "platform/linux/metrics/KernelFile.h"
#include "platform/linux/metrics/NvmlLibrary.h"

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

namespace quelmo::linux_platform {

// The machine's cumulative energy counters, named as the power monitor expects them:
// - powercap RAPL zones (/sys/class/powercap/*/name, energy_uj in microjoules, wrapping at
//   max_energy_range_uj): "core" is the CPU, or the package ("package-N") where a package has
//   no readable core zone; "uncore" is the integrated GPU ("GPU"); "dram" is "DRAM";
// - NVIDIA GPUs through NVML ("GPU Energy", millijoules);
// - hwmon energyN_input counters (microjoules) by their label, for what powercap lacks.
// energy_uj is readable by root only on most kernels since 2020: an unreadable counter is
// left out, and with none left the source is unavailable. The set is fixed at construction.
class EnergyReader final : public EnergySource {
public:
    EnergyReader(const QString& root, std::shared_ptr<NvmlLibrary> nvml);
    bool available() override;
    std::optional<std::vector<EnergyChannel>> readChannels() override;

private:
    struct FileChannel {
        QString id;
        QString name;
        std::uint64_t range = 0;
        KernelFile counter;
    };
    void addPowercapZones(const QString& root);
    void addHwmonCounters(const QString& root);
    bool hasChannel(const QString& name) const;

    std::vector<FileChannel> files_;
    std::shared_ptr<NvmlLibrary> nvml_;
    std::vector<std::pair<std::size_t, QString>> nvmlDevices_; // devices that count energy, ids
};

// The channel an hwmon energy counter with this label feeds; empty for none. Per-core
// counters are left out, since the socket counter already holds them.
QString hwmonEnergyChannel(std::string_view label);

} // namespace quelmo::linux_platform
