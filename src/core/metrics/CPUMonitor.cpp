#include "core/metrics/CPUMonitor.h"

#include <algorithm>
#include <numeric>

namespace quelmo {

CPUMonitor::CPUMonitor(std::unique_ptr<CpuTicksSource> source) : source_(std::move(source)) {}

CPUMonitor::Reading CPUMonitor::sample() {
    Reading reading;
    const auto ticks = source_ ? source_->readTicks() : std::nullopt;
    if (!ticks)
        return reading;

    // Counters are kept modulo 2^32, so a wrapped counter still gives the small true difference.
    std::vector<std::uint32_t> current;
    current.reserve(ticks->size() * 4);
    for (const CpuTicks& t : *ticks) {
        current.push_back(static_cast<std::uint32_t>(t.user));
        current.push_back(static_cast<std::uint32_t>(t.system));
        current.push_back(static_cast<std::uint32_t>(t.idle));
        current.push_back(static_cast<std::uint32_t>(t.nice));
    }

    if (prevTicks_.size() == current.size()) {
        reading.perCore.reserve(ticks->size());
        for (std::size_t i = 0; i + 3 < current.size(); i += 4) {
            const auto delta = [&](std::size_t k) {
                return static_cast<double>(
                    static_cast<std::uint32_t>(current[i + k] - prevTicks_[i + k]));
            };
            const double u = delta(0), s = delta(1), d = delta(2), e = delta(3);
            const double all = ((u + s) + d) + e;
            const double busy = all > 0 ? (u + s + e) / all : 0.0;
            reading.perCore.push_back(std::clamp(busy, 0.0, 1.0));
        }
    }
    prevTicks_ = std::move(current);

    if (!reading.perCore.empty())
        reading.total = std::accumulate(reading.perCore.begin(), reading.perCore.end(), 0.0) /
                        static_cast<double>(reading.perCore.size());
    return reading;
}

} // namespace quelmo
