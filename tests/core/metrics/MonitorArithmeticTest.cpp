#include "core/metrics/CPUMonitor.h"
#include "core/metrics/ChipInfo.h"
#include "core/metrics/GPUMonitor.h"
#include "core/metrics/MemoryMonitor.h"
#include "core/metrics/PowerMonitor.h"
#include "support/FakePlatform.h"

#include <QThread>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

CPUMonitor cpuMonitor(ScriptedCpuTicks*& ticks) {
    ticks = new ScriptedCpuTicks;
    return CPUMonitor(std::unique_ptr<CpuTicksSource>(ticks));
}

EnergyChannel channel(const QString& name, std::uint64_t value, const QString& unit = "mJ",
                      std::uint64_t range = 0) {
    return {name, name, unit, value, range};
}

struct Power {
    ScriptedEnergy* energy = new ScriptedEnergy;
    double now = 10.0;
    PowerMonitor monitor{std::unique_ptr<EnergySource>(energy), [this] { return now; }};

    // Feeds two samples `dt` seconds apart and returns the second reading.
    std::optional<PowerMonitor::Reading> between(std::vector<EnergyChannel> before,
                                                 std::vector<EnergyChannel> after, double dt) {
        energy->script = {std::move(before), std::move(after)};
        monitor.sample();
        now += dt;
        return monitor.sample();
    }
};

} // namespace

TEST(CPUMonitorTest, BusyFractionFromWrappingDifferences) {
    ScriptedCpuTicks* ticks = nullptr;
    CPUMonitor cpu = cpuMonitor(ticks);
    const std::uint64_t above32 = 1ull << 32; // /proc/stat counters are 64-bit
    ticks->script = {std::vector<CpuTicks>{{100, 50, 800, 50}, {4294967290u, 0, 100, 0}},
                     std::nullopt, // a failed read keeps the last good counters as the reference
                     std::vector<CpuTicks>{{160, 70, 900, 70}, {above32 + 10, 0, 148, 0}},
                     std::vector<CpuTicks>{{160, 70, 900, 70}}, // a CPU went offline
                     std::vector<CpuTicks>{{160, 70, 900, 70}}};

    EXPECT_TRUE(cpu.sample().perCore.empty());
    const auto failed = cpu.sample();
    EXPECT_TRUE(failed.perCore.empty());
    EXPECT_EQ(failed.total, 0.0);

    const auto reading = cpu.sample();
    ASSERT_EQ(reading.perCore.size(), 2u);
    EXPECT_DOUBLE_EQ(reading.perCore[0], 0.5);  // (60 + 20 + 20) / 200: nice counts as busy
    EXPECT_DOUBLE_EQ(reading.perCore[1], 0.25); // user wrapped: 16 busy against 48 idle
    EXPECT_DOUBLE_EQ(reading.total, 0.375);     // the mean of the CPUs, not of their ticks

    EXPECT_TRUE(cpu.sample().perCore.empty()); // a new CPU count is the new reference
    const auto idle = cpu.sample();
    ASSERT_EQ(idle.perCore.size(), 1u);
    EXPECT_EQ(idle.perCore[0], 0.0); // no tick at all: not busy
}

TEST(GPUMonitorTest, TheBusiestDeviceWinsWithinZeroToOne) {
    const auto gpu = [](std::vector<std::int64_t> percents) {
        auto* source = new FixedGpu;
        source->percents = std::move(percents);
        return GPUMonitor(std::unique_ptr<GpuLoadSource>(source)).sample();
    };
    EXPECT_DOUBLE_EQ(gpu({55, 20}), 0.55);
    EXPECT_EQ(gpu({150}), 1.0);
    EXPECT_EQ(gpu({-5}), 0.0);
    EXPECT_EQ(gpu({}), 0.0);
    EXPECT_EQ(GPUMonitor(nullptr).sample(), 0.0);
}

TEST(MemoryMonitorTest, PrimaryFormulaFallbackAndCaps) {
    const auto used = [](std::optional<MemoryPages> pages, double total) {
        auto* source = new FixedMemory;
        source->pages = pages;
        return MemoryMonitor(std::unique_ptr<MemorySource>(source), total).sample();
    };
    // internal − purgeable + wired + compressed, in pages of 1 KiB.
    const auto primary = used(MemoryPages{2500, 0, 211, 10, 3000, 1024}, 8 << 20);
    EXPECT_EQ(primary.used, (2500 + 211 + 10) * 1024.0);
    EXPECT_DOUBLE_EQ(primary.fraction, primary.used / (8 << 20));

    const auto fallback = used(MemoryPages{1000, 5000, 1000, 0, 4000, 16384}, 1e12);
    EXPECT_EQ(fallback.used, (1000 + 4000 + 0) * 16384.0);

    const auto capped = used(MemoryPages{1000, 0, 0, 0, 0, 4096}, 1000.0);
    EXPECT_EQ(capped.used, 1000.0);
    EXPECT_EQ(capped.fraction, 1.0);
    EXPECT_EQ(used(MemoryPages{1, 0, 0, 0, 0, 4096}, 0).fraction, 0.0);

    const auto unreadable = used(std::nullopt, 5000.0);
    EXPECT_EQ(unreadable.used, 0.0);
    EXPECT_EQ(unreadable.total, 5000.0);
    EXPECT_EQ(unreadable.fraction, 0.0);
}

TEST(PowerMonitorTest, UnitTableIsTriedInOrder) {
    // mJ, uJ, nJ and no label are read through the channels below.
    EXPECT_EQ(PowerMonitor::unitToJoules(QStringLiteral("\u00b5J")), 0.000001);
    EXPECT_EQ(PowerMonitor::unitToJoules("kJ"), 1.0);
    EXPECT_EQ(PowerMonitor::unitToJoules("MJ"), 0.001); // lower-cased first: "mj"
    EXPECT_EQ(PowerMonitor::unitToJoules("W"), 0.001);
}

TEST(PowerMonitorTest, WattsPerComponentFromTheNameTable) {
    Power p;
    auto r = p.between({channel("CPU Energy", 0)}, {channel("CPU Energy", 1500)}, 0.5);
    ASSERT_TRUE(r);
    EXPECT_DOUBLE_EQ(r->cpuWatts, 3.0);

    r = p.between({channel("CPU Energy", 0, "nJ")}, {channel("CPU Energy", 2000000, "nJ")}, 1.0);
    EXPECT_DOUBLE_EQ(r->cpuWatts, 0.002);

    r = p.between({channel("GPU Energy", 0), channel("GPU", 0), channel("ANE", 0),
                   channel("ANE0", 0), channel("DRAM", 0, "uJ"), channel("ECPU", 0),
                   channel("cpu energy", 0), channel("CPU Energy", 0, "")},
                  {channel("GPU Energy", 3000), channel("GPU", 2500), channel("ANE", 400),
                   channel("ANE0", 100), channel("DRAM", 700000, "uJ"), channel("ECPU", 9000),
                   channel("cpu energy", 9000), channel("CPU Energy", 250, "")},
                  1.0);
    EXPECT_DOUBLE_EQ(r->gpuWatts, 3.0); // the larger of the two GPU channels, not their sum
    EXPECT_DOUBLE_EQ(r->aneWatts, 0.5);
    EXPECT_DOUBLE_EQ(r->dramWatts, 0.7);
    EXPECT_DOUBLE_EQ(r->cpuWatts, 0.25); // no unit label: millijoules; other names ignored
}

TEST(PowerMonitorTest, CountersThatWrapAtTheirRange) {
    Power p;
    const std::uint64_t range = 262143328850;
    auto r = p.between({channel("CPU Energy", range - 500000, "uJ", range)},
                       {channel("CPU Energy", 1500000, "uJ", range)}, 1.0);
    EXPECT_DOUBLE_EQ(r->cpuWatts, 2.0);
    // Going back without a known range is no measurement at all.
    r = p.between({channel("CPU Energy", 5000)}, {channel("CPU Energy", 1000)}, 1.0);
    EXPECT_EQ(r->cpuWatts, 0.0);
}

TEST(PowerMonitorTest, FirstSampleStalledClockAndFailedSamples) {
    Power p;
    p.energy->script = {std::vector<EnergyChannel>{channel("DRAM", 0)},
                        std::vector<EnergyChannel>{channel("DRAM", 1000)}, std::nullopt,
                        std::vector<EnergyChannel>{channel("DRAM", 3000)}};
    EXPECT_FALSE(p.monitor.sample()); // first: only stored
    EXPECT_FALSE(p.monitor.sample()); // same instant: stored as the new reference
    p.now += 1.0;
    EXPECT_FALSE(p.monitor.sample()); // no sample: the reference stays
    p.now += 1.0;
    const auto r = p.monitor.sample();
    ASSERT_TRUE(r);
    EXPECT_DOUBLE_EQ(r->dramWatts, 1.0); // 2 J over the 2 s since the reference

    auto* absent = new ScriptedEnergy;
    absent->isAvailable = false;
    absent->script = {std::vector<EnergyChannel>{channel("DRAM", 0)},
                      std::vector<EnergyChannel>{channel("DRAM", 1000)}};
    double now = 0;
    PowerMonitor unavailable(std::unique_ptr<EnergySource>(absent), [&] { return now++; });
    EXPECT_FALSE(unavailable.sample());
    EXPECT_FALSE(unavailable.sample());
}

TEST(ChipInfoTest, CoreSummary) {
    EXPECT_EQ(ChipInfo::coreSummary({"", 10, 4, 14}), QStringLiteral("10P + 4E"));
    EXPECT_EQ(ChipInfo::coreSummary({"", 0, 4, 6}), QStringLiteral("6 cores"));
    EXPECT_EQ(ChipInfo::coreSummary({}),
              QStringLiteral("%1 cores").arg(QThread::idealThreadCount()));
}
