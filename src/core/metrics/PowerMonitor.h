#pragma once

#include "core/metrics/sources/EnergySource.h"

#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace quelmo {

// Average watts per component between two samples of the cumulative energy counters.
class PowerMonitor {
public:
    struct Reading {
        double cpuWatts = 0;
        double gpuWatts = 0;
        double aneWatts = 0;
        double dramWatts = 0;
    };
    using Clock = std::function<double()>; // seconds on a monotonic clock

    explicit PowerMonitor(std::unique_ptr<EnergySource> source, Clock clock = monotonicSeconds);
    std::optional<Reading> sample();

    // Joules in one unit of a channel whose unit label is `label`.
    static double unitToJoules(const QString& label);
    static double monotonicSeconds();

private:
    std::unique_ptr<EnergySource> source_;
    Clock clock_;
    bool available_ = false;
    std::optional<std::vector<EnergyChannel>> prevSample_;
    double prevTime_ = 0;
};

} // namespace quelmo
