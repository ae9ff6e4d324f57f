// The thermal state: trip-point margins, throttle counters, and how often the monitor looks.

#include "platform/linux/system/ThermalState.h"
#include "support/FixtureTree.h"

#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

TEST(ThermalRules, MarginToTheLowestPassiveOrHotTripAndCounterRises) {
    ThermalZone zone{74999,
                     {{QStringLiteral("critical"), 60000},
                      {QStringLiteral("hot"), 90000},
                      {QStringLiteral("passive"), 0}, // a placeholder some firmware leaves
                      {QStringLiteral("passive"), 80000}}};
    EXPECT_FALSE(zoneNearTrip(zone));
    zone.milliC = 75000; // exactly 5 °C below the passive trip
    EXPECT_TRUE(zoneNearTrip(zone));

    const QHash<QString, qint64> before{{QStringLiteral("a"), 5}, {QStringLiteral("b"), 9}};
    EXPECT_TRUE(throttleRose(before, {{QStringLiteral("a"), 6}, {QStringLiteral("b"), 9}}));
    EXPECT_FALSE(throttleRose(before, {{QStringLiteral("a"), 4}}));  // a reset is not a rise
    EXPECT_FALSE(throttleRose(before, {{QStringLiteral("c"), 50}})); // new counter: no history
}

TEST(ThermalMonitor, ReadsTheTreeAtMostOnceASecondAndComparesRecentLooksOnly) {
    test::FixtureTree tree;
    double now = 100.0;
    ThermalMonitor monitor(tree.root(), [&] { return now; });
    const QString zone = QStringLiteral("sys/class/thermal/thermal_zone0/");
    tree.write(zone + QStringLiteral("trip_point_0_type"), "passive\n");
    tree.write(zone + QStringLiteral("trip_point_0_temp"), "80000\n");
    tree.write(zone + QStringLiteral("temp"), "76000\n");
    EXPECT_FALSE(monitor.nominal());
    tree.write(zone + QStringLiteral("mode"), "disabled\n");
    now += 1.0;
    EXPECT_TRUE(monitor.nominal());

    const QString counter =
        QStringLiteral("sys/devices/system/cpu/cpu0/thermal_throttle/core_throttle_count");
    tree.write(counter, "10\n");
    now += 1.0;
    EXPECT_TRUE(monitor.nominal()); // first look at the counter: nothing to compare with
    tree.write(counter, "11\n");
    now += 0.5;
    EXPECT_TRUE(monitor.nominal()); // same second: same answer, files not read again
    now += 0.5;
    EXPECT_FALSE(monitor.nominal());
    tree.write(counter, "12\n");
    now += 10.5;
    EXPECT_TRUE(monitor.nominal()); // the previous look is too old to blame the rise on now
    tree.write(counter, "13\n");
    now += 10.0;
    EXPECT_FALSE(monitor.nominal());
}

} // namespace
} // namespace quelmo::linux_platform
