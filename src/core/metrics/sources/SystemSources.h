#pragma once

// The narrow interfaces through which the monitors see the machine. Each is implemented by a
// reader under platform/linux (rooted at a directory, so fixture trees can stand in for /) and can
// be faked in a few lines in a test. Readers only read; every decision stays in the monitors.

#include "core/metrics/ProcInfo.h"

#include <QByteArray>
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
    virtual double physicalBytes() = 0;                 // 0 when unknown
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

// One process as the kernel's process table describes it, before any arithmetic.
struct ProcessRecord {
    qint64 pid = 0;
    QString name;                // the full executable name
    QString user;                // the owner's user name (the uid in decimal when it has none)
    std::uint64_t cpuTicks = 0;  // user + system time used so far, in clock ticks
    std::uint64_t startTime = 0; // clock ticks after boot at which the process started
    double rssBytes = 0;         // resident memory
};

// The whole table, with the clock facts needed to turn tick counts into percentages.
struct ProcessTable {
    std::vector<ProcessRecord> processes; // in the order the kernel listed them
    std::uint64_t ticksPerSecond = 100;   // the kernel's clock tick rate for the fields above
    double uptimeSeconds = 0;             // seconds since boot when the table was read
};

class ProcessSource {
public:
    virtual ~ProcessSource() = default;
    // The kernel's process table; nothing when this machine has none to read (no /proc).
    virtual std::optional<ProcessTable> readTable() = 0;
    // Runs the process-listing tool "/bin/ps -axco pid=,%cpu=,rss=,user=,comm=" and returns
    // everything it wrote on standard output; nothing when it could not be started.
    virtual std::optional<QByteArray> runProcessTool() = 0;
};

} // namespace quelmo
