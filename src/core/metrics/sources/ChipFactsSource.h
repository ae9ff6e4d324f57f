#pragma once

// What the processor is and how its cores are arranged. Implemented by a reader under
// platform/linux (rooted at a directory, so fixture trees can stand in for /); faked in a few lines
// in tests. Readers only read: every decision stays in the monitors.

#include <QString>

namespace quelmo {

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

} // namespace quelmo
