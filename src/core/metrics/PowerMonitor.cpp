#include "core/metrics/PowerMonitor.h"

#include <QHash>
#include <algorithm>
#include <chrono>

namespace quelmo {

namespace {

// Energy counted between two readings of one counter, allowing for one wrap past its range.
std::optional<std::uint64_t> counterDelta(const EnergyChannel& before, const EnergyChannel& now) {
    if (now.value >= before.value)
        return now.value - before.value;
    if (now.range > 0 && before.value <= now.range)
        return (now.range - before.value) + now.value;
    return std::nullopt; // the counter went back without a known range: no usable difference
}

void accumulate(PowerMonitor::Reading& reading, const QString& name, double watts) {
    if (name == QLatin1String("CPU Energy"))
        reading.cpuWatts += watts;
    else if (name == QLatin1String("GPU Energy") || name == QLatin1String("GPU"))
        reading.gpuWatts = std::max(reading.gpuWatts, watts);
    else if (name == QLatin1String("ANE") || name == QLatin1String("ANE0"))
        reading.aneWatts += watts;
    else if (name == QLatin1String("DRAM"))
        reading.dramWatts += watts;
}

} // namespace

PowerMonitor::PowerMonitor(std::unique_ptr<EnergySource> source, Clock clock)
    : source_(std::move(source)), clock_(std::move(clock)),
      available_(source_ && source_->available()) {}

double PowerMonitor::monotonicSeconds() {
    using namespace std::chrono;
    return duration<double>(steady_clock::now().time_since_epoch()).count();
}

double PowerMonitor::unitToJoules(const QString& label) {
    const QString unit = label.toLower();
    if (unit.contains(QLatin1String("mj")))
        return 0.001;
    if (unit.contains(QLatin1String("uj")) || unit.contains(QStringLiteral("\u00b5j")))
        return 0.000001;
    if (unit.contains(QLatin1String("nj")))
        return 0.000000001;
    if (unit.contains(QLatin1Char('j')))
        return 1.0;
    return 0.001;
}

std::optional<PowerMonitor::Reading> PowerMonitor::sample() {
    if (!available_)
        return std::nullopt;
    const double now = clock_();
    auto current = source_->readChannels();
    if (!current)
        return std::nullopt;

    const auto keep = [&] {
        prevSample_ = std::move(current);
        prevTime_ = now;
    };
    if (!prevSample_) {
        keep();
        return std::nullopt;
    }
    const double dt = now - prevTime_;
    if (!(dt > 0)) {
        keep();
        return std::nullopt;
    }

    QHash<QString, const EnergyChannel*> before;
    for (const EnergyChannel& channel : *prevSample_)
        before.insert(channel.id, &channel);

    Reading reading;
    for (const EnergyChannel& channel : *current) {
        const EnergyChannel* previous = before.value(channel.id);
        if (!previous)
            continue;
        const auto delta = counterDelta(*previous, channel);
        if (!delta)
            continue;
        const QString unit = channel.unit.isEmpty() ? QStringLiteral("mJ") : channel.unit;
        accumulate(reading, channel.name, (unitToJoules(unit) * static_cast<double>(*delta)) / dt);
    }
    keep();
    return reading;
}

} // namespace quelmo
