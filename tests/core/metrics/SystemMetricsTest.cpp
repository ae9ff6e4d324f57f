// The hub on scriptable stand-ins for the machine, the desktop, the user and the signaller: the
// order of a tick, the process lists, cutting processes, and which processes are offered for it.
#include "core/metrics/SystemMetrics.h"

#include "core/settings/SettingsKeys.h"
#include "support/FakePlatform.h"
#include "support/TempSettings.h"

#include <QSettings>
#include <QTest>
#include <QVariantMap>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

struct FakeDesktop : DesktopSession {
    DesktopSnapshot desktop;
    QHash<qint64, AppRecord> apps;
    QSet<qint64> withWindows; // processes that have windows to close
    QList<qint64> closeRequests;

    DesktopSnapshot snapshot() override { return desktop; }
    std::optional<AppRecord> application(qint64 pid) override {
        return apps.contains(pid) ? std::optional(apps.value(pid)) : std::nullopt;
    }
    std::optional<QString> frontmostAppId() override { return std::nullopt; }
    void setActivationHandler(std::function<void(const QString&)>) override {}
    bool requestClose(qint64 pid) override {
        closeRequests << pid;
        return withWindows.contains(pid);
    }
};

struct FakeSystem : SystemInfo {
    bool nominal = true;
    QString userName() override { return QStringLiteral("alice"); }
    qint64 ownPid() override { return 4242; }
    bool thermalNominal() override { return nominal; }
};

// A handle opens only for a running pid with the very start time asked for.
struct FakeSignaller : ProcessSignaller {
    QHash<qint64, std::uint64_t> running; // pid -> start time
    QSet<qint64> ignoresSignals;
    QList<qint64> signalled;

    struct Handle : ProcessHandle {
        std::function<bool()> send;
        bool sendTerminate() override { return send(); }
    };
    std::unique_ptr<ProcessHandle> open(qint64 pid, std::uint64_t startTime) override {
        if (!running.contains(pid) || running.value(pid) != startTime)
            return nullptr;
        auto handle = std::make_unique<Handle>();
        handle->send = [this, pid] {
            signalled << pid;
            return !ignoresSignals.contains(pid);
        };
        return handle;
    }
};

struct HubOnFakes {
    ScriptedCpuTicks* cpu = new ScriptedCpuTicks;
    ScriptedEnergy* energy = new ScriptedEnergy;
    FixedProcesses* processes = new FixedProcesses;
    FakeDesktop* desktop = new FakeDesktop;
    FakeSystem* system = new FakeSystem;
    FakeSignaller* signaller = new FakeSignaller;
    double now = 100; // the power clock, in seconds
    std::unique_ptr<SystemMetrics> hub;

    // Hands every fake above to a new hub; they stay reachable through the pointers.
    SystemMetrics& build() {
        Platform platform;
        platform.cpuTicks.reset(cpu);
        platform.energy.reset(energy);
        platform.processes.reset(processes);
        platform.desktop.reset(desktop);
        platform.system.reset(system);
        platform.signaller.reset(signaller);
        platform.clock = [this] { return now; };
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

// CPU, GPU, memory, power, then (only while the popover polls) the process lists, then onUpdate.
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
        QObject::connect(&m, signal, [&order, label = label] { order << label; });
    m.onUpdate = [&] { order << "onUpdate"; };

    m.start();
    EXPECT_EQ(order, QStringList({"gpu", "mem", "onUpdate"}));

    order.clear();
    fakes.now += 1;
    m.setPollProcesses(true);
    m.update();
    EXPECT_EQ(order, QStringList({"cpu", "gpu", "mem", "power", "top", "onUpdate"}));
    EXPECT_DOUBLE_EQ(m.totalWatts(), 5.5);
    EXPECT_DOUBLE_EQ(m.aneLoad(), 0.5);
    EXPECT_EQ(ids(m.topCPU()), QList<qint64>({2, 5, 1, 3, 4})); // ties keep the listed order
    EXPECT_EQ(ids(m.topMem()), QList<qint64>({6, 2, 3, 1, 4}));
    fakes.now += 1;
    m.update();
    EXPECT_DOUBLE_EQ(m.aneLoad(), 1.0);
}

// The kernel's process table with start times, so that the hub can vouch for each pid it signals.
struct ListedProcesses : FixedProcesses {
    std::optional<ProcessTable> readTable() override {
        ++snapshots;
        std::vector<ProcessRecord> records;
        for (qint64 pid : {100, 101, 102, 103, 104})
            records.push_back({pid, "p", "alice", 0, static_cast<std::uint64_t>(pid) * 10, 0});
        return ProcessTable{records, 100, 1000.0};
    }
};

TEST(SystemMetricsTest, TerminateSignalsOnlyTheListedProcessesAndHidesThemWhileTheyWindDown) {
    HubOnFakes fakes;
    delete std::exchange(fakes.processes, new ListedProcesses);
    SystemMetrics& hub = fakes.build();
    hub.refreshProcesses(); // the hub now knows each pid's start time
    fakes.signaller->running = {{100, 1000}, {101, 1010}, {103, 99}, {104, 1040}};
    fakes.signaller->ignoresSignals = {104};
    fakes.desktop->withWindows = {100};

    // 100: closes its windows. 101: no windows, takes SIGTERM. 102: gone. 103: pid reused by a
    // later process. 104: ignores the signal. 105: never listed, so its start time is unknown.
    hub.setPollProcesses(true);
    EXPECT_EQ(hub.terminate({100, 101, 102, 103, 104, 105}), 2);
    EXPECT_EQ(fakes.desktop->closeRequests, QList<qint64>({100, 101, 104}));
    EXPECT_EQ(fakes.signaller->signalled, QList<qint64>({101, 104}));
    EXPECT_EQ(hub.cuttingPIDs(), QSet<qint64>({100, 101, 102, 103, 104, 105}));
    EXPECT_EQ(fakes.processes->snapshots, 2); // refreshed at once...
    QTest::qWait(2500);
    EXPECT_TRUE(hub.cuttingPIDs().isEmpty());
    EXPECT_EQ(fakes.processes->snapshots, 3); // ...and again when the hold ends

    // With the popover closed the rows stay hidden and nothing more is read.
    hub.setPollProcesses(false);
    hub.terminate({101});
    QTest::qWait(2500);
    EXPECT_EQ(hub.cuttingPIDs(), QSet<qint64>({101}));
    EXPECT_EQ(fakes.processes->snapshots, 4);
}

constexpr double MiB = 1048576.0;
constexpr double GiB = 1073741824.0;

// An ordinary application owned by `pid`; its desktop-entry id is the pid in decimal.
struct App {
    qint64 pid;
    double minutesAgo; // since it was last brought to the front; negative: never
    bool window = false;
    QString displayName = {};
};

// A hub at sensitivity `s` with `apps` on the desktop.
struct Session : HubOnFakes {
    explicit Session(double s, const std::vector<App>& apps = {}) {
        TempSettings::clear();
        QVariantMap history;
        for (const App& app : apps) {
            const QString id = QString::number(app.pid);
            desktop->desktop.regularPIDs << app.pid;
            if (app.window)
                desktop->desktop.visiblePIDs << app.pid;
            desktop->apps.insert(app.pid,
                                 {id, app.displayName.isEmpty() ? "App " + id : app.displayName});
            if (app.minutesAgo >= 0)
                history.insert(id, FocusTracker::nowSeconds() - app.minutesAgo * 60.0);
        }
        QSettings().setValue(SettingsKeys::focusLastActive, history);
        build().setSensitivity(s);
    }

    // Two ticks a second apart: the CPU `busyPercent` % busy, drawing `milliwatts`.
    void load(std::uint64_t busyPercent, std::uint64_t milliwatts) {
        cpu->script = {std::vector<CpuTicks>{{0, 0, 0, 0}},
                       std::vector<CpuTicks>{{busyPercent, 0, 100 - busyPercent, 0}}};
        energy->script = {std::vector<EnergyChannel>{{"c", "CPU Energy", "mJ", 0, 0}},
                          std::vector<EnergyChannel>{{"c", "CPU Energy", "mJ", milliwatts, 0}}};
        for (int i = 0; i < 2; ++i, now += 1)
            hub->update();
    }

    QList<qint64> select(std::vector<ProcInfo> rows) {
        processes->rows = std::move(rows);
        hub->refreshProcesses();
        return ids(hub->cleanupCandidates());
    }
};

// Whatever they use, processes that are someone else's, this program, in front, part of the
// system or being cut stay; so do applications used within R minutes, or T with a window.
TEST(CandidateSelectionTest, NothingTheUserMayBeUsingIsOffered) {
    for (const auto& [s, recent, windowed] :
         std::vector<std::tuple<double, double, double>>{{0, 24, 60}, {0.5, 13, 32.5}, {1, 2, 5}}) {
        SCOPED_TRACE(testing::Message() << "s = " << s);
        Session session(s,
                        {App{1, recent - 0.1}, App{2, recent + 0.1}, App{3, windowed - 0.1, true},
                         App{4, windowed + 0.1, true}, App{5, -1}, App{6, -1, true}});
        session.desktop->desktop.frontmostPID = 11;
        session.hub->terminate({15});
        const double hog = (3 - 2 * s) * GiB; // just a memory hog
        EXPECT_EQ(session.select({proc(1, "a", 0, hog), proc(2, "b", 0, hog), proc(3, "c", 0, hog),
                                  proc(4, "d", 0, hog), proc(5, "e", 0, hog), proc(6, "f", 0, hog),
                                  proc(7, "g", 0, hog, "root"), proc(8, "h", 0, hog, "Alice"),
                                  proc(4242, "quelmo-dev", 0, hog), proc(11, "in-front", 0, hog),
                                  proc(12, "Xorg", 0, hog), proc(13, "Xorg helper", 0, hog),
                                  proc(15, "to-cut", 0, hog)}),
                  QList<qint64>({2, 4, 5, 13}));
    }
}

// A desktop that cannot show an application's windows: that application is left alone whatever
// it uses and however long ago it was last seen in front; other processes are judged as usual.
TEST(CandidateSelectionTest, ApplicationsWhoseWindowsCannotBeSeenAreNeverOffered) {
    Session session(1, {App{20, 500}, App{21, 500}});
    session.system->nominal = false;
    session.desktop->desktop.unseenAppPIDs = {20, 22};
    const double hog = 3 * GiB;
    EXPECT_EQ(
        session.select({proc(20, "idle-native", 0, 200 * MiB), proc(21, "idle-x", 0, 200 * MiB),
                        proc(22, "native-hog", 0, hog), proc(23, "cli-hog", 0, hog)}),
        QList<qint64>({23, 21}));
}

// At s = 0.5, T = 32.5 minutes; with a window, 3 T = 97.5. Pid 30 is just inside every limit.
TEST(CandidateSelectionTest, IdleAppsNeedTimeMemoryAQuietCPUAndNoRecentWindow) {
    Session session(0.5, {App{30, 33}, App{31, 32}, App{32, 97, true}, App{33, 98, true},
                          App{35, 60}, App{36, 60}, App{38, -1}});
    session.system->nominal = false;
    EXPECT_EQ(session.select({proc(30, "p30", 1.99, 40 * MiB), proc(31, "p31", 1, 200 * MiB),
                              proc(32, "p32", 1, 200 * MiB), proc(33, "p33", 1, 200 * MiB),
                              proc(35, "p35", 1, 40 * MiB - 1), proc(36, "p36", 2.0, 200 * MiB),
                              proc(38, "p38", 0, 200 * MiB)}),
              QList<qint64>({33, 30}));
    EXPECT_TRUE(session.hub->cleanupCandidates().first().hasWindow); // only idle apps have one
}

TEST(CandidateSelectionTest, IdleAppsNeedStrainAndSensitivityOfAtLeastPoint4) {
    const auto offered = [](double s, bool thermalNominal, std::uint64_t busy, std::uint64_t mW) {
        Session session(s, {{50, 100}});
        session.system->nominal = thermalNominal;
        session.load(busy, mW);
        return !session.select({proc(50, "notes", 0, 500 * MiB)}).isEmpty();
    };
    EXPECT_FALSE(offered(0.5, true, 59, 13900));
    EXPECT_TRUE(offered(0.5, true, 60, 0));
    EXPECT_TRUE(offered(0.5, true, 0, 14000));
    EXPECT_FALSE(offered(0.39, false, 100, 20000));
    EXPECT_TRUE(offered(0.4, true, 60, 0));
}

TEST(CandidateSelectionTest, HogsFirstByMemoryThenIdleAppsLongestFirstOnePerNameAtMostSix) {
    Session session(
        0.5, {{46, 50, false, "Notes"}, {47, 40}, {48, 7 * 24 * 60}, {49, 60, false, "Notes"}});
    session.system->nominal = false;
    const QList<qint64> offered = session.select(
        {proc(40, "dup", 0, 3 * GiB), proc(41, "dup", 0, 5 * GiB), proc(42, "dup", 0, 4 * GiB),
         proc(43, "hogA", 0, 3 * GiB), proc(44, "hogB", 0, 6 * GiB), proc(45, "hogC", 0, 3 * GiB),
         proc(46, "notes", 0, 300 * MiB), proc(47, "mail", 0, 100 * MiB),
         proc(48, "old", 0, 50 * MiB), proc(49, "notes-helper", 0, 200 * MiB)});
    // A week idle (over 9999 minutes) goes ahead of the hogs. Of the two "Notes" the bigger one
    // stays, though it was used more recently; pid 47 (40 minutes) would be seventh.
    EXPECT_EQ(offered, QList<qint64>({48, 44, 41, 43, 45, 46}));
}

} // namespace
