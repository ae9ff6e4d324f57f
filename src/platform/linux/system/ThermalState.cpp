#include "platform/linux/system/ThermalState.h"

#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/KernelText.h"
#include "platform/linux/common/RootPath.h"

#include <QDir>
#include <QRegularExpression>
#include <algorithm>

namespace quelmo::linux_platform {
namespace {

constexpr qint64 marginMilliC = 5000;
constexpr double lookInterval = 1.0;
constexpr double freshLookAge = 10.0;

} // namespace

bool zoneNearTrip(const ThermalZone& zone) {
    if (!zone.milliC)
        return false;
    std::optional<qint64> lowest;
    for (const TripPoint& trip : zone.trips) {
        if ((trip.type == QLatin1String("passive") || trip.type == QLatin1String("hot")) &&
            trip.milliC > 0)
            lowest = lowest ? std::min(*lowest, trip.milliC) : trip.milliC;
    }
    return lowest && *zone.milliC >= *lowest - marginMilliC;
}

bool throttleRose(const QHash<QString, qint64>& before, const QHash<QString, qint64>& now) {
    for (auto it = now.constBegin(); it != now.constEnd(); ++it) {
        const auto previous = before.constFind(it.key());
        if (previous != before.constEnd() && it.value() > *previous)
            return true;
    }
    return false;
}

std::vector<ThermalZone> readThermalZones(const QString& root) {
    static const QRegularExpression tripType(QStringLiteral("^trip_point_(\\d+)_type$"));
    std::vector<ThermalZone> zones;
    const QDir base(QString::fromStdString(rootedPath(root, "sys/class/thermal")));
    for (const QString& name : base.entryList({QStringLiteral("thermal_zone*")},
                                              QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name)) {
        const QString dir = base.filePath(name);
        const auto mode = readSmallFile((dir + QStringLiteral("/mode")).toStdString(), 64);
        if (mode && trimmed(*mode) == "disabled")
            continue;
        ThermalZone zone;
        zone.milliC = readIntegerFile((dir + QStringLiteral("/temp")).toStdString());
        for (const QString& file : QDir(dir).entryList(QDir::Files, QDir::Name)) {
            const auto match = tripType.match(file);
            if (!match.hasMatch())
                continue;
            const auto type = readSmallFile((dir + QLatin1Char('/') + file).toStdString(), 64);
            const auto temp = readIntegerFile(
                (dir + QStringLiteral("/trip_point_%1_temp").arg(match.captured(1))).toStdString());
            if (type && temp)
                zone.trips.push_back({QString::fromLatin1(trimmed(*type)), *temp});
        }
        zones.push_back(std::move(zone));
    }
    return zones;
}

QHash<QString, qint64> readThrottleCounts(const QString& root) {
    static const QRegularExpression cpuName(QStringLiteral("^cpu\\d+$"));
    QHash<QString, qint64> counts;
    const QDir cpus(QString::fromStdString(rootedPath(root, "sys/devices/system/cpu")));
    for (const QString& cpu : cpus.entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
        if (!cpuName.match(cpu).hasMatch())
            continue;
        const QDir throttle(cpus.filePath(cpu + QStringLiteral("/thermal_throttle")));
        for (const QString& file :
             throttle.entryList({QStringLiteral("*_throttle_count")}, QDir::Files)) {
            const QString path = throttle.filePath(file);
            if (const auto value = readIntegerFile(path.toStdString()))
                counts.insert(path, *value);
        }
    }
    return counts;
}

ThermalMonitor::ThermalMonitor(QString root, Clock clock)
    : root_(std::move(root)), clock_(std::move(clock)) {}

bool ThermalMonitor::nominal() {
    const double now = clock_();
    if (lastLook_ && now - *lastLook_ < lookInterval && now >= *lastLook_)
        return lastNominal_;

    const QHash<QString, qint64> counts = readThrottleCounts(root_);
    const bool comparable = lastLook_ && now - *lastLook_ <= freshLookAge && now >= *lastLook_;
    bool strained = comparable && throttleRose(lastCounts_, counts);
    if (!strained) {
        const auto zones = readThermalZones(root_);
        strained = std::any_of(zones.begin(), zones.end(), zoneNearTrip);
    }
    lastLook_ = now;
    lastCounts_ = counts;
    lastNominal_ = !strained;
    return lastNominal_;
}

} // namespace quelmo::linux_platform
