// The thermal state: trip-point margins, throttle counters, and how often the monitor looks.

#include "FixtureTree.h"
#include "desktop/ThermalState.h"

#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

TEST(ThermalRules, MarginToTheLowestPassiveOrHotTrip) {
    ThermalZone zone;
    zone.trips = {{QStringLiteral("critical"), 60000},
                  {QStringLiteral("hot"), 90000},
                  {QStringLiteral("passive"), 80000},
                  {QStringLiteral("active"), 50000}};
    zone.milliC = 74999;
    EXPECT_FALSE(zoneNearTrip(zone));
    zone.milliC = 75000; // exactly 5 °C below the passive trip
    EXPECT_TRUE(zoneNearTrip(zone));
    zone.milliC = 95000;
    EXPECT_TRUE(zoneNearTrip(zone));

    ThermalZone placeholder; // firmware that reports a 0 °C passive trip
    placeholder.trips = {{QStringLiteral("passive"), 0}};
    placeholder.milliC = 45000;
    EXPECT_FALSE(zoneNearTrip(placeholder));

    ThermalZone unreadable;
    unreadable.trips = {{QStringLiteral("passive"), 80000}};
    EXPECT_FALSE(zoneNearTrip(unreadable));
}

TEST(ThermalRules, OnlyACounterThatRoseCounts) {
    const QHash<QString, qint64> before{{QStringLiteral("a"), 5}, {QStringLiteral("b"), 9}};
    EXPECT_FALSE(throttleRose(before, before));
    EXPECT_TRUE(throttleRose(before, {{QStringLiteral("a"), 6}, {QStringLiteral("b"), 9}}));
    EXPECT_FALSE(throttleRose(before, {{QStringLiteral("a"), 4}}));  // a reset is not a rise
    EXPECT_FALSE(throttleRose(before, {{QStringLiteral("c"), 50}})); // new counter: no history
}

class ThermalMonitorTest : public ::testing::Test {
protected:
    test::FixtureTree tree;
    double now = 100.0;
    ThermalMonitor monitor{tree.root(), [this] { return now; }};

    void zone(const char* temp, const char* passive = "80000") {
        tree.write("sys/class/thermal/thermal_zone0/temp", temp);
        tree.write("sys/class/thermal/thermal_zone0/trip_point_0_type", "passive\n");
        tree.write("sys/class/thermal/thermal_zone0/trip_point_0_temp", passive);
        tree.write("sys/class/thermal/thermal_zone0/trip_point_1_type", "critical\n");
        tree.write("sys/class/thermal/thermal_zone0/trip_point_1_temp", "70000\n");
    }
    void throttle(const char* count) {
        tree.write("sys/devices/system/cpu/cpu0/thermal_throttle/core_throttle_count", count);
        tree.write("sys/devices/system/cpu/cpu0/thermal_throttle/core_throttle_total_time_ms",
                   "999999\n");
    }
};

TEST_F(ThermalMonitorTest, ReadsZonesFromTheTree) {
    zone("60000\n");
    EXPECT_TRUE(monitor.nominal());
    zone("76000\n");
    now += 1.0;
    EXPECT_FALSE(monitor.nominal());
    tree.write("sys/class/thermal/thermal_zone0/mode", "disabled\n");
    now += 1.0;
    EXPECT_TRUE(monitor.nominal());
}

TEST_F(ThermalMonitorTest, ThrottleRiseBetweenRecentLooks) {
    throttle("10\n");
    EXPECT_TRUE(monitor.nominal()); // first look: nothing to compare with
    throttle("11\n");
    now += 0.5;
    EXPECT_TRUE(monitor.nominal()); // same second: same answer, files not read again
    now += 0.5;
    EXPECT_FALSE(monitor.nominal());
    now += 1.0;
    EXPECT_TRUE(monitor.nominal()); // no further rise
    throttle("12\n");
    now += 30.0;
    EXPECT_TRUE(monitor.nominal()); // the previous look is too old to blame the rise on now
    throttle("13\n");
    now += 2.0;
    EXPECT_FALSE(monitor.nominal());
}

TEST_F(ThermalMonitorTest, MissingOrGarbledFilesAreNominal) {
    EXPECT_TRUE(monitor.nominal());
    zone("hot!\n", "\xff\xfe");
    throttle("lots\n");
    now += 5.0;
    EXPECT_TRUE(monitor.nominal());
}

} // namespace
} // namespace quelmo::linux_platform
