// The hub on scriptable stand-ins for the machine, the desktop, the user and the signaller: the
// order of a tick, the process lists, the hold on cut processes, and what the selection sees.
#include "core/metrics/SystemMetrics.h"

#include "core/settings/SettingsKeys.h"
#include "support/FakePlatform.h"
#include "support/TempSettings.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSettings>
#include <QThread>
#include <QVariantMap>
#include <atomic>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

struct HubOnFakes {
    ScriptedCpuTicks* cpu = new ScriptedCpuTicks;
    ScriptedEnergy* energy = new ScriptedEnergy;
    FixedProcesses* processes = new FixedProcesses;
    FakeDesktop* desktop = new FakeDesktop;
    FakeSystem* system = new FakeSystem;
    FakeSignaller* signaller = new FakeSignaller;
    double now = 100;                                           // the power clock, in seconds
    std::vector<std::pair<int, std::function<void()>>> delayed; // (delay in ms, task)
    bool offThread = false; // tables read on a thread of their own
    std::unique_ptr<SystemMetrics> hub;

    // Runs the delayed tasks handed out so far, as their timers would.
    void runDelayed() {
        for (auto& [delayMs, task] : std::exchange(delayed, {}))
            task();
    }

    // Hands every fake above to a new hub; they stay reachable through the pointers.
    SystemMetrics& build() {
        Platform platform;
        platform.cpuTicks.reset(cpu);
        platform.energy.reset(energy);
        platform.processes.reset(processes);
        platform.readProcessesOffThread = offThread;
        platform.desktop.reset(desktop);
        platform.system.reset(system);
        platform.signaller.reset(signaller);
        platform.clock = [this] { return now; };
        platform.later = [this](int delayMs, std::function<void()> task) {
            delayed.emplace_back(delayMs, std::move(task));
        };
        hub = std::make_unique<SystemMetrics>(std::move(platform));
        return *hub;
    }
};

EnergyChannel channel(const QString& name, std::uint64_t millijoules) {
    return {name, name, QStringLiteral("mJ"), millijoules, 0};
}

// The pids of process rows or of candidates, in order.
template <typename Row> QList<qint64> ids(const QList<Row>& rows) {
    QList<qint64> pids;
    for (const Row& row : rows)
        pids << std::invoke(&Row::id, row);
    return pids;
}

// CPU, GPU, memory, power, then (only while the popover polls) the process lists, then ticked().
TEST(SystemMetricsTest, TicksPublishInOrderAndRatesWaitForASecondSample) {
    HubOnFakes fakes;
    fakes.cpu->script = {std::vector<CpuTicks>{{100, 50, 800, 50}},
                         std::vector<CpuTicks>{{160, 70, 900, 70}}};
    // A second apart: the neural engine uses 4 J, then 9 J (beyond its 8 W full scale).
    fakes.energy->script = {
        std::vector<EnergyChannel>{channel("ANE", 0), channel("CPU Energy", 0)},
        std::vector<EnergyChannel>{channel("ANE", 4000), channel("CPU Energy", 1500)},
        std::vector<EnergyChannel>{channel("ANE", 13000), channel("CPU Energy", 1500)}};
    fakes.processes->rows = {proc(1, "a", 5, 10), proc(2, "b", 9, 30), proc(3, "c", 5, 30),
                             proc(4, "d", 1, 5),  proc(5, "e", 9, 1),  proc(6, "f", 0, 50)};
    SystemMetrics& m = fakes.build();
    QStringList order;
    for (const auto& [signal, label] : std::vector<std::pair<void (SystemMetrics::*)(), QString>>{
             {&SystemMetrics::cpuTotalChanged, "cpu"},
             {&SystemMetrics::gpuChanged, "gpu"},
             {&SystemMetrics::memUsedChanged, "mem"},
             {&SystemMetrics::aneLoadChanged, "power"},
             {&SystemMetrics::topCPUChanged, "top"}})
        QObject::connect(&m, signal, [&order, name = label] { order << name; });
    QObject::connect(&m, &SystemMetrics::ticked, [&order] { order << "ticked"; });

    m.start();
    EXPECT_EQ(order, QStringList({"gpu", "mem", "ticked"}));

    m.setPollProcesses(true); // reads the process table at once
    order.clear();
    fakes.now += 1;
    m.update();
    EXPECT_EQ(order, QStringList({"cpu", "gpu", "mem", "power", "top", "ticked"}));
    EXPECT_DOUBLE_EQ(m.totalWatts(), 5.5);
    EXPECT_DOUBLE_EQ(m.aneLoad(), 0.5);
    EXPECT_EQ(ids(m.topCPU()), QList<qint64>({2, 5, 1, 3, 4})); // ties keep the listed order
    EXPECT_EQ(ids(m.topMem()), QList<qint64>({6, 2, 3, 1, 4}));
    fakes.now += 1;
    m.update();
    EXPECT_DOUBLE_EQ(m.aneLoad(), 1.0);
}

TEST(SystemMetricsTest, CutProcessesStayHiddenForTheHoldAndLongerOnceThePopoverHasClosed) {
    HubOnFakes fakes;
    SystemMetrics& hub = fakes.build();
    hub.setPollProcesses(true); // reads the table at once
    fakes.signaller->running = {{101, 1010}};

    EXPECT_EQ(hub.terminate({{101, 1010}, {102, 1020}}), 1); // 102 has gone
    EXPECT_EQ(fakes.signaller->signalled, QList<qint64>({101}));
    EXPECT_EQ(hub.cuttingPIDs(), QSet<qint64>({101, 102}));
    EXPECT_EQ(fakes.processes->snapshots, 2); // refreshed at once...
    ASSERT_EQ(fakes.delayed.size(), 1u);
    EXPECT_EQ(fakes.delayed[0].first, 1600);
    fakes.runDelayed();
    EXPECT_TRUE(hub.cuttingPIDs().isEmpty());
    EXPECT_EQ(fakes.processes->snapshots, 3); // ...and again when the hold ends

    // With the popover closed by then the rows stay hidden and nothing more is read.
    hub.terminate({{101, 1010}});
    hub.setPollProcesses(false);
    fakes.runDelayed();
    EXPECT_EQ(hub.cuttingPIDs(), QSet<qint64>({101}));
    EXPECT_EQ(fakes.processes->snapshots, 4);
}

// A kernel table read at the uptimes the test sets: one busy process (50 % of a CPU) and two
// quiet ones.
struct ClockedProcesses : FixedProcesses {
    double uptime = 1000;
    std::uint64_t busyTicks = 0;
    std::optional<ProcessTable> readTable() override {
        ++snapshots;
        std::vector<ProcessRecord> records = {{300, "busy", "alice", busyTicks, 10, 0},
                                              {301, "quiet", "alice", 0, 20, 0},
                                              {302, "other", "alice", 0, 30, 0}};
        return ProcessTable{records, 100, uptime};
    }
    void advance(double seconds) {
        uptime += seconds;
        busyTicks += static_cast<std::uint64_t>(seconds * 50);
    }
};

// Figures repeated by the refresh inside a cut, or spread over the time the popover was closed,
// neither reach the statistics nor cost a busy process its place among the candidates.
TEST(SystemMetricsTest, BaselinesLearnOnlyFromFreshFiguresAndACutLeavesTheOtherRows) {
    TempSettings::clear();
    HubOnFakes fakes;
    auto* table = new ClockedProcesses;
    delete std::exchange(fakes.processes, table);
    SystemMetrics& hub = fakes.build();
    hub.setSensitivity(1.0);    // busy for 6 observations in a row is `sustained`
    hub.setPollProcesses(true); // reads the table at once: lifetime averages only
    for (int tick = 0; tick < 6; ++tick) {
        table->advance(1.0);
        hub.refreshProcesses();
    }
    ASSERT_EQ(ids(hub.cleanupCandidates()), QList<qint64>({300}));

    table->advance(0.3);
    hub.terminate({{302, 30}});
    EXPECT_EQ(ids(hub.cleanupCandidates()), QList<qint64>({300}));
    EXPECT_DOUBLE_EQ(hub.topCPU().front().cpu, 50.0);

    table->advance(600); // the popover closed for ten minutes
    hub.refreshProcesses();
    table->advance(1.0);
    hub.refreshProcesses();
    EXPECT_EQ(ids(hub.cleanupCandidates()), QList<qint64>({300}));

    hub.savePending();
    const auto stored = BaselineEngine::decode(
        BaselineEngine::openStore()->value(SettingsKeys::baselines).toByteArray(), 0);
    ASSERT_TRUE(stored);
    EXPECT_EQ(stored->baselines.value("busy").samples, 7); // six ticks, and one after the gap
}

constexpr double MiB = 1048576.0;
constexpr double GiB = 1073741824.0;

// The hub hands the selection its own readings, the desktop, the focus history, the baselines
// and the pids being cut: at s = 0.5 an application idle for 100 minutes is offered once the CPU
// is 60 % busy, next to a 2 GiB memory hog; a hog being cut, or of another user, is not.
TEST(SystemMetricsTest, SelectionSeesTheHubsReadingsHistoryBaselinesAndCuts) {
    TempSettings::clear();
    QSettings().setValue(SettingsKeys::focusLastActive,
                         QVariantMap{{"notes", FocusTracker::nowSeconds() - 100 * 60.0}});
    HubOnFakes fakes;
    fakes.desktop->desktop.regularPIDs = {50};
    fakes.desktop->apps.insert(50, {"notes", QStringLiteral("Notes")});
    SystemMetrics& hub = fakes.build();
    hub.setSensitivity(0.5);
    hub.terminate({{61, std::nullopt}});
    const std::vector<ProcInfo> rows = {proc(50, "notes", 0, 500 * MiB),
                                        proc(60, "hog", 0, 2 * GiB), proc(61, "cut", 0, 2 * GiB),
                                        proc(62, "theirs", 0, 2 * GiB, "root")};
    fakes.processes->rows = rows;

    hub.refreshProcesses();
    EXPECT_EQ(ids(hub.cleanupCandidates()), QList<qint64>({60}));

    fakes.cpu->script = {std::vector<CpuTicks>{{0, 0, 0, 0}},
                         std::vector<CpuTicks>{{60, 0, 40, 0}}};
    hub.update();
    hub.update();
    hub.refreshProcesses();
    EXPECT_EQ(ids(hub.cleanupCandidates()), QList<qint64>({60, 50}));
    EXPECT_EQ(hub.cleanupCandidates().last().displayName, "Notes");
}

// Tables read on the scan thread, one script entry per reading in the order they are read; the
// counters are the only thing the test reads while that thread runs.
struct ScriptedTables : FixedProcesses {
    std::deque<std::vector<qint64>> script; // the pids of each reading, all alice's, 2 GiB each
    std::atomic<int> reads = 0;
    std::atomic<int> releases = 0;
    std::optional<ProcessTable> readTable() override {
        std::vector<ProcessRecord> records;
        for (const qint64 pid : script.empty() ? std::vector<qint64>{} : script.front())
            records.push_back({pid, QStringLiteral("p%1").arg(pid), QStringLiteral("alice"), 0,
                               static_cast<std::uint64_t>(pid), 2 * GiB + double(pid)});
        if (!script.empty())
            script.pop_front();
        ++reads;
        return ProcessTable{records, 100, 1000.0 + reads};
    }
    void release() override { ++releases; }
};

bool spinUntil(const std::function<bool()>& done) {
    QElapsedTimer waited;
    waited.start();
    while (!done() && waited.elapsed() < 10000) {
        QCoreApplication::processEvents();
        QThread::msleep(1);
    }
    QCoreApplication::processEvents();
    return done();
}

// While the popover polls, a tick's readings wait for the table it asked for, so that the
// view changes once a second, not twice; closing the popover lets held readings out at once.
TEST(SystemMetricsTest, WhilePollingReadingsArriveWithTheirTable) {
    HubOnFakes fakes;
    fakes.cpu->script = {std::vector<CpuTicks>{{100, 0, 900, 0}},
                         std::vector<CpuTicks>{{200, 0, 900, 0}},
                         std::vector<CpuTicks>{{300, 0, 1000, 0}}};
    auto* tables = new ScriptedTables;
    delete std::exchange(fakes.processes, tables);
    fakes.offThread = true;
    SystemMetrics& hub = fakes.build();
    hub.update(); // the first sample: no rate yet
    QList<int> readsAtTick;
    QObject::connect(&hub, &SystemMetrics::ticked, [&] { readsAtTick << tables->reads; });
    hub.setPollProcesses(true);
    ASSERT_TRUE(spinUntil([&] { return tables->reads == 1; }));

    hub.update();
    EXPECT_TRUE(readsAtTick.isEmpty());
    EXPECT_DOUBLE_EQ(hub.cpuTotal(), 0);
    ASSERT_TRUE(spinUntil([&] { return readsAtTick.size() == 1; }));
    EXPECT_EQ(readsAtTick, QList<int>({2}));
    EXPECT_DOUBLE_EQ(hub.cpuTotal(), 1.0);

    hub.update();
    hub.setPollProcesses(false);
    EXPECT_EQ(readsAtTick.size(), 2);
    EXPECT_DOUBLE_EQ(hub.cpuTotal(), 0.5);
}

// Read on a thread of their own, tables arrive later and in the order asked. A table asked for
// before a cut's hold ended (read while the process was still winding down) does not bring its
// row back; the first one asked for after it does, if the process is still there.
TEST(SystemMetricsTest, TablesReadOffThreadArriveInOrderAndAStaleOneKeepsACutRowHidden) {
    TempSettings::clear();
    HubOnFakes fakes;
    auto* tables = new ScriptedTables;
    tables->script = {{100, 101}, {100, 101}, {100, 101}};
    delete std::exchange(fakes.processes, tables);
    fakes.signaller->running = {{101, 101}};
    fakes.offThread = true;
    SystemMetrics& hub = fakes.build();
    hub.setSensitivity(1.0); // 1 GiB is a memory hog
    QList<QList<qint64>> published;
    QObject::connect(&hub, &SystemMetrics::cleanupCandidatesChanged,
                     [&] { published << ids(hub.cleanupCandidates()); });

    hub.setPollProcesses(true);
    EXPECT_TRUE(published.isEmpty()); // not read yet on this thread
    ASSERT_TRUE(spinUntil([&] { return published.size() == 1; }));
    EXPECT_EQ(published.takeFirst(), QList<qint64>({101, 100}));

    hub.update();                              // the tick asks for the second table...
    EXPECT_EQ(hub.terminate({{101, 101}}), 1); // ...the cut for one more, folded into a third
    EXPECT_EQ(published.takeFirst(), QList<qint64>({100})); // the row goes at once
    fakes.runDelayed(); // the hold ends before the second table has arrived
    ASSERT_TRUE(spinUntil([&] { return tables->reads == 3 && published.size() == 2; }));
    EXPECT_EQ(published, QList<QList<qint64>>({{100}, {101, 100}}));
    EXPECT_TRUE(hub.cuttingPIDs().isEmpty());

    // A table asked for before the popover closed does not fill the emptied lists again, and the
    // reader lets go of what it keeps.
    hub.refreshProcesses();
    hub.setPollProcesses(false);
    EXPECT_EQ(published.takeLast(), QList<qint64>());
    published.clear();
    ASSERT_TRUE(spinUntil([&] { return tables->reads == 4 && tables->releases == 1; }));
    QCoreApplication::processEvents();
    EXPECT_TRUE(hub.cleanupCandidates().isEmpty());
    EXPECT_TRUE(published.isEmpty());
}

} // namespace
