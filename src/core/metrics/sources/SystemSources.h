#pragma once

// The narrow interfaces through which the monitors see the machine. Each is implemented by a
// reader under platform/linux (rooted at a directory, so fixture trees can stand in for /) and can
// be faked in a few lines in a test. Readers only read; every decision stays in the monitors.

#include "metrics/ProcInfo.h"

#include <QString>

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

// Static facts about the processor, read once.
struct ChipFacts {
    QString name;             // marketing name; empty when unknown
    int performanceCores = 0; // logical CPUs of the fastest class on hybrid machines, else 0
    int efficiencyCores = 0;  // logical CPUs of the slower classes on hybrid machines, else 0
    int logicalCpus = 0;      // online logical CPUs; 0 when unknown
};

class ChipFactsSource {
public:
    virtual ~ChipFactsSource() = default;
    virtual ChipFacts readChipFacts() = 0;
};

class GpuLoadSource {
public:
    virtual ~GpuLoadSource() = default;
    // One utilisation percentage per device that reported one.
    virtual std::vector<std::int64_t> readDevicePercents() = 0;
};

// Page counts for the memory arithmetic, already converted to doubles.
struct MemoryPages {
    double internal = 0;
    double purgeable = 0;
    double wired = 0;
    double compressed = 0;
    double active = 0;
    double pageSize = 0; // bytes per page
};

class MemorySource {
public:
    virtual ~MemorySource() = default;
    virtual double physicalBytes() = 0;                // 0 when unknown
    virtual std::optional<MemoryPages> readPages() = 0; // nothing when unreadable
};

// One cumulative energy counter as the machine presents it.
struct EnergyChannel {
    QString id;              // stable identity of the counter across samples (e.g. its path)
    QString name;            // channel name: "CPU Energy", "GPU Energy", "GPU", "DRAM", ...
    QString unit;            // unit label: "uJ", "mJ", ...
    std::uint64_t value = 0; // cumulative count in `unit`
    std::uint64_t range = 0; // the value wraps to 0 after this; 0 = never wraps
};

class EnergySource {
public:
    virtual ~EnergySource() = default;
    virtual bool available() = 0; // decided once, when the source is built
    // Nothing when a sample cannot be taken.
    virtual std::optional<std::vector<EnergyChannel>> readChannels() = 0;
};

class ProcessSource {
public:
    virtual ~ProcessSource() = default;
    // The process table with CPU percentages already formed; empty on failure.
    virtual std::vector<ProcInfo> snapshot() = 0;
};

} // namespace quelmo
