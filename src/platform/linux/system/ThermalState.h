#pragma once

// Whether the machine is thermally strained, from the kernel's thermal zones and the CPUs'
// throttle counters. Nominal unless a zone is within 5 °C of its lowest passive or hot trip
// point, or a throttle counter rose since the previous look.

#include <QHash>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace quelmo::linux_platform {

struct TripPoint {
    QString type; // "passive", "hot", "critical", "active"
    qint64 milliC = 0;
};

struct ThermalZone {
    std::optional<qint64> milliC; // current temperature; absent when unreadable
    std::vector<TripPoint> trips;
};

// The zone is at most 5 °C below its lowest passive/hot trip point (or above it). Trip points
// at or below 0 °C are placeholders some firmware leaves, not limits.
bool zoneNearTrip(const ThermalZone& zone);

// A counter present in both looks went up.
bool throttleRose(const QHash<QString, qint64>& before, const QHash<QString, qint64>& now);

// Reads /sys/class/thermal/thermal_zone*/ under `root`.
std::vector<ThermalZone> readThermalZones(const QString& root);
// Every /sys/devices/system/cpu/cpu*/thermal_throttle/*_throttle_count under `root`, by path.
QHash<QString, qint64> readThrottleCounts(const QString& root);

// The stateful reading the rules ask for. The answer is computed at most once a second (the
// rules may ask once per process in one pass and must get one answer), and a counter rise is
// only believed against a look at most ten seconds old: after a long pause the first look
// starts afresh instead of blaming old throttling on the present.
class ThermalMonitor {
public:
    using Clock = std::function<double()>; // seconds, monotonic
    explicit ThermalMonitor(QString root, Clock clock);
    bool nominal();

private:
    QString root_;
    Clock clock_;
    std::optional<double> lastLook_;
    QHash<QString, qint64> lastCounts_;
    bool lastNominal_ = true;
};

} // namespace quelmo::linux_platform
