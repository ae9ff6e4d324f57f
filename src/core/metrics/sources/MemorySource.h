#pragma once

// How the machine's memory is used, in pages. Implemented by a reader under platform/linux (rooted
// at a directory, so fixture trees can stand in for /); faked in a few lines in tests. Readers only
// read: every decision stays in the monitors.

#include <optional>

namespace quelmo {

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

} // namespace quelmo
