#include "FakePlatform.h"
#include "TempSettings.h"
#include "metrics/SystemMetrics.h"
#include "settings/SettingsKeys.h"

#include <QSettings>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

struct Hub {
    ScriptedCpuTicks* cpu = new ScriptedCpuTicks;
    FixedGpu* gpu = new FixedGpu;
    FixedMemory* memory = new FixedMemory;
    ScriptedEnergy* energy = new ScriptedEnergy;
    FixedProcesses* processes = new FixedProcesses;
    double now = 100.0;
    std::unique_ptr<SystemMetrics> metrics;

    Hub() {
        Platform platform;
        platform.cpuTicks.reset(cpu);
        platform.gpu.reset(gpu);
        platform.memory.reset(memory);
        platform.energy.reset(energy);
        platform.processes.reset(processes);
        platform.clock = [this] { return now; };
        metrics = std::make_unique<SystemMetrics>(std::move(platform));
    }
};

EnergyChannel channel(const QString& name, std::uint64_t value) {
    return {name, name, QStringLiteral("mJ"), value, 0};
}

class SystemMetricsTest : public ::testing::Test {
protected:
    void SetUp() override { TempSettings::clear(); }
};

TEST_F(SystemMetricsTest, TickPublishesInDesignedOrderAndCpuOnlyFromSecondSample) {
    Hub hub;
    hub.cpu->script = {std::vector<CpuTicks>{{100, 50, 800, 50}},
                       std::vector<CpuTicks>{{160, 70, 900, 70}}};
    hub.gpu->percents = {20, 55};
    hub.memory->pages = MemoryPages{100000, 20000, 50000, 30000, 0, 16384};

    QStringList order;
    auto& m = *hub.metrics;
    for (const auto& [signal, label] :
         std::vector<std::pair<void (SystemMetrics::*)(), QString>>{
             {&SystemMetrics::cpuTotalChanged, "cpu"},
             {&SystemMetrics::gpuChanged, "gpu"},
             {&SystemMetrics::memUsedChanged, "mem"},
             {&SystemMetrics::cpuWattsChanged, "power"}})
        QObject::connect(&m, signal, [&order, label = label] { order << label; });
    m.onUpdate = [&] { order << "onUpdate"; };

    m.start();
    EXPECT_EQ(order, QStringList({"gpu", "mem", "onUpdate"}));
    EXPECT_TRUE(m.cpuPerCore().isEmpty());
    EXPECT_DOUBLE_EQ(m.gpu(), 0.55);
    EXPECT_DOUBLE_EQ(m.memUsed(), 2621440000.0);
    EXPECT_DOUBLE_EQ(m.memFraction(), 0.30517578125);

    order.clear();
    m.update();
    EXPECT_EQ(order, QStringList({"cpu", "gpu", "mem", "onUpdate"}));
    EXPECT_DOUBLE_EQ(m.cpuTotal(), 0.5);
    EXPECT_EQ(m.cpuPerCore(), QList<double>({0.5}));
}

TEST_F(SystemMetricsTest, EveryAssignmentSignalsEvenWhenTheValueIsUnchanged) {
    Hub hub;
    int gpuSignals = 0;
    QObject::connect(hub.metrics.get(), &SystemMetrics::gpuChanged, [&] { ++gpuSignals; });
    hub.metrics->update();
    hub.metrics->update();
    EXPECT_EQ(gpuSignals, 2);
}

TEST_F(SystemMetricsTest, PowerSumsInOrderAndClampsNeuralEngineLoad) {
    Hub hub;
    // Each sample one second apart; ANE deltas of 4 J, then 9 J, then 0 J.
    hub.energy->script = {
        std::vector<EnergyChannel>{channel("ANE", 0), channel("CPU Energy", 0)},
        std::vector<EnergyChannel>{channel("ANE", 4000), channel("CPU Energy", 1500)},
        std::vector<EnergyChannel>{channel("ANE", 13000), channel("CPU Energy", 1500)},
        std::vector<EnergyChannel>{channel("ANE", 13000), channel("CPU Energy", 1500)}};
    auto& m = *hub.metrics;
    m.update();
    EXPECT_EQ(m.totalWatts(), 0.0); // first sample: nothing yet
    hub.now += 1;
    m.update();
    EXPECT_DOUBLE_EQ(m.aneLoad(), 0.5);
    EXPECT_DOUBLE_EQ(m.totalWatts(), 5.5);
    hub.now += 1;
    m.update();
    EXPECT_DOUBLE_EQ(m.aneLoad(), 1.0);
    hub.now += 1;
    m.update();
    EXPECT_DOUBLE_EQ(m.aneLoad(), 0.0);
    // No reading (script exhausted): the watts keep their last values.
    hub.now += 1;
    m.update();
    EXPECT_DOUBLE_EQ(m.aneLoad(), 0.0);
    EXPECT_DOUBLE_EQ(m.cpuWatts(), 0.0);
}

TEST_F(SystemMetricsTest, TopListsAreStableAndCutToFive) {
    Hub hub;
    hub.processes->rows = {proc(1, "a", 5, 10), proc(2, "b", 9, 30), proc(3, "c", 5, 30),
                           proc(4, "d", 1, 5),  proc(5, "e", 9, 1),  proc(6, "f", 0, 50)};
    auto& m = *hub.metrics;
    m.refreshProcesses();
    QList<qint64> cpuIds, memIds;
    for (const auto& p : m.topCPU())
        cpuIds << p.id;
    for (const auto& p : m.topMem())
        memIds << p.id;
    EXPECT_EQ(cpuIds, QList<qint64>({2, 5, 1, 3, 4}));
    EXPECT_EQ(memIds, QList<qint64>({6, 2, 3, 1, 4}));

    hub.processes->rows = {proc(7, "g", 1, 1)};
    m.refreshProcesses();
    EXPECT_EQ(m.topCPU().size(), 1);
    hub.processes->rows.clear();
    m.refreshProcesses();
    EXPECT_TRUE(m.topCPU().isEmpty());
    EXPECT_TRUE(m.topMem().isEmpty());
}

TEST_F(SystemMetricsTest, ProcessTableIsReadOnlyWhilePolling) {
    Hub hub;
    auto& m = *hub.metrics;
    m.update();
    EXPECT_EQ(hub.processes->snapshots, 0);
    m.setPollProcesses(true);
    m.update();
    EXPECT_EQ(hub.processes->snapshots, 1);
}

TEST_F(SystemMetricsTest, SensitivityIsReadOnceAndWrittenOnlyWhenItChanges) {
    {
        Hub hub;
        EXPECT_DOUBLE_EQ(hub.metrics->sensitivity(), 0.5);
        EXPECT_FALSE(QSettings().contains(SettingsKeys::sensitivity));
        hub.metrics->setSensitivity(0.8);
    }
    EXPECT_DOUBLE_EQ(QSettings().value(SettingsKeys::sensitivity).toDouble(), 0.8);
    Hub reopened;
    EXPECT_DOUBLE_EQ(reopened.metrics->sensitivity(), 0.8);
}

TEST_F(SystemMetricsTest, CorruptStoredSensitivityFallsBackAndIsLeftAlone) {
    QSettings().setValue(SettingsKeys::sensitivity, QStringLiteral("not a number"));
    QSettings().setValue(SettingsKeys::lang, QStringLiteral("ko"));
    Hub hub;
    EXPECT_DOUBLE_EQ(hub.metrics->sensitivity(), 0.5);
    EXPECT_EQ(QSettings().value(SettingsKeys::sensitivity).toString(), "not a number");
    EXPECT_EQ(QSettings().value(SettingsKeys::lang).toString(), "ko");
}

} // namespace
