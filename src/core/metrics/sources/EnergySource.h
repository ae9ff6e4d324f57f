#pragma once

// The machine's cumulative energy counters. Implemented by a reader under platform/linux (rooted at
// a directory, so fixture trees can stand in for /); faked in a few lines in tests. Readers only
// read: every decision stays in the monitors.

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace quelmo {

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

} // namespace quelmo
