#pragma once

#include "core/metrics/sources/MemorySource.h"

#include <memory>

namespace quelmo {

// Used memory: anonymous memory that cannot be purged, wired memory and compressed memory.
class MemoryMonitor {
public:
    struct Reading {
        double used = 0;
        double total = 0;
        double fraction = 0;
    };

    MemoryMonitor(std::unique_ptr<MemorySource> source, double total);
    Reading sample();
    double total() const { return total_; }

private:
    std::unique_ptr<MemorySource> source_;
    const double total_;
};

} // namespace quelmo
