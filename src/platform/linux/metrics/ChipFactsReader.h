#pragma once

#include "core/metrics/sources/ChipFactsSource.h"

namespace quelmo::linux_platform {

// The processor's name and core counts, read once:
// - name: the "model name" of /proc/cpuinfo (x86), else the device-tree model, else the
//   "Hardware" or "Model" line of /proc/cpuinfo (ARM boards);
// - performance and efficiency CPUs: Intel hybrid parts list them in
//   /sys/devices/cpu_core/cpus and /sys/devices/cpu_atom/cpus; ARM big.LITTLE parts give each CPU
//   a cpu_capacity, the highest class being the performance cores;
// - the online CPU count from /sys/devices/system/cpu/online.
class ChipFactsReader final : public ChipFactsSource {
public:
    explicit ChipFactsReader(QString root);
    ChipFacts readChipFacts() override;

private:
    QString root_;
};

} // namespace quelmo::linux_platform
