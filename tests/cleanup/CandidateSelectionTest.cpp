#include "CleanupFakes.h"
#include "FakePlatform.h"
#include "TempSettings.h"
#include "metrics/SystemMetrics.h"
#include "settings/SettingsKeys.h"

#include <QSettings>
#include <QVariantMap>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

constexpr double MiB = 1048576.0;
constexpr double GiB = 1073741824.0;

// A hub on fakes. `minutesAgo`: when each desktop-entry id was last brought to the front.
struct Session {
    ScriptedCpuTicks* cpu = new ScriptedCpuTicks;
    ScriptedEnergy* energy = new ScriptedEnergy;
    FixedProcesses* processes = new FixedProcesses;
    FakeDesktop* desktop = new FakeDesktop;
    FakeSystem* system = new FakeSystem;
    double clock = 100;
    std::unique_ptr<SystemMetrics> hub;

    explicit Session(double sensitivity, const QHash<QString, double>& minutesAgo = {}) {
        TempSettings::clear();
        QVariantMap history;
        for (auto it = minutesAgo.constBegin(); it != minutesAgo.constEnd(); ++it)
            history.insert(it.key(), FocusTracker::nowSeconds() - *it * 60.0);
        QSettings().setValue(SettingsKeys::focusLastActive, history);
        Platform platform;
        platform.cpuTicks.reset(cpu);
        platform.energy.reset(energy);
        platform.processes.reset(processes);
        platform.desktop.reset(desktop);
        platform.system.reset(system);
        platform.clock = [this] { return clock; };
        hub = std::make_unique<SystemMetrics>(std::move(platform));
        hub->setSensitivity(sensitivity);
    }

    // An ordinary application; its display name is its id in capitals.
    void app(qint64 pid, const QString& appId, bool window = false) {
        desktop->desktop.regularPIDs << pid;
        desktop->apps.insert(pid, AppRecord{appId, appId.toUpper()});
        if (window)
            desktop->desktop.visiblePIDs << pid;
    }

    // Two ticks a second apart: the CPU `busyPercent` % busy, drawing `milliwatts`.
    void load(std::uint64_t busyPercent, std::uint64_t milliwatts) {
        cpu->script = {std::vector<CpuTicks>{{0, 0, 0, 0}},
                       std::vector<CpuTicks>{{busyPercent, 0, 100 - busyPercent, 0}}};
        energy->script = {std::vector<EnergyChannel>{{"c", "CPU Energy", "mJ", 0, 0}},
                          std::vector<EnergyChannel>{{"c", "CPU Energy", "mJ", milliwatts, 0}}};
        for (int i = 0; i < 2; ++i, clock += 1)
            hub->update();
    }

    QList<qint64> select(std::vector<ProcInfo> rows) {
        processes->rows = std::move(rows);
        hub->refreshProcesses();
        QList<qint64> pids;
        for (const CleanupCandidate& c : hub->cleanupCandidates())
            pids << c.id();
        return pids;
    }
};

TEST(CandidateSelectionTest, NothingTheUserMayBeUsingIsOffered) {
    Session session(0.5);
    session.desktop->desktop.frontmostPID = 11;
    const double hog = 2 * GiB; // a memory hog at s = 0.5
    const std::vector<ProcInfo> rows = {proc(10, "root-hog", 0, hog, "root"),
                                        proc(9, "case-hog", 0, hog, "Alice"),
                                        proc(4242, "quelmo-dev", 0, hog),
                                        proc(11, "in-front", 0, hog),
                                        proc(12, "Xorg", 0, hog),
                                        proc(13, "MDWorker_Shared", 0, hog),
                                        proc(14, "Finder Helper", 0, hog),
                                        proc(15, "to-cut", 0, hog),
                                        proc(16, "plain-hog", 0, hog),
                                        proc(17, "small", 0, hog - 1)};
    EXPECT_EQ(session.select(rows), QList<qint64>({14, 15, 16}));
    EXPECT_EQ(session.desktop->snapshots, 1);
    session.hub->terminate({15});
    EXPECT_EQ(session.select(rows), QList<qint64>({14, 16}));
    EXPECT_TRUE(session.select({}).isEmpty());
}

// At s = 0.5, R = 13 and T = 32.5 minutes: recent use drops an application before its resource
// use is even looked at.
TEST(CandidateSelectionTest, RecentlyUsedApplicationsAreLeftAloneWhateverTheyUse) {
    Session session(0.5, {{"w20", 20}, {"w40", 40}, {"b12", 12.9}, {"b13", 13.1}});
    session.app(20, "w20", true);
    session.app(21, "w40", true);
    session.app(22, "b12");
    session.app(23, "b13");
    session.app(24, "never-used");
    session.app(25, "never-used-windowed", true);
    session.app(29, "plasma", true);
    session.desktop->desktop.regularPIDs << 28; // has just exited: no application record
    session.desktop->desktop.visiblePIDs << 27 << 28;
    std::vector<ProcInfo> rows;
    for (qint64 pid = 20; pid <= 28; ++pid)
        rows.push_back(proc(pid, QStringLiteral("p%1").arg(pid), 0, 3 * GiB));
    rows.push_back(proc(29, "plasmashell", 0, 3 * GiB));

    EXPECT_EQ(session.select(rows), QList<qint64>({21, 23, 24, 26, 27}));
    EXPECT_EQ(session.desktop->applicationLookups, QList<qint64>({20, 21, 22, 23, 24, 25, 28}));
    const CleanupCandidate& windowed = session.hub->cleanupCandidates().first();
    EXPECT_EQ(windowed.reason, CleanupReason::ramHog);
    EXPECT_FALSE(windowed.hasWindow || windowed.idleMinutes || windowed.displayName);
}

TEST(CandidateSelectionTest, IdleApplicationsNeedTimeMemoryAQuietCPUAndNoRecentWindow) {
    Session session(0.5, {{"i33", 33}, {"i32", 32}, {"w97", 97}, {"w98", 98}, {"i60", 60}});
    session.system->nominal = false;
    for (const auto& [pid, appId] : std::vector<std::pair<qint64, QString>>{
             {30, "i33"}, {31, "i32"}, {34, "i60"}, {35, "i60"}, {36, "i60"}, {38, "none"}})
        session.app(pid, appId);
    session.app(32, "w97", true);
    session.app(33, "w98", true);
    const std::vector<ProcInfo> rows = {
        proc(30, "p30", 1, 200 * MiB),   proc(31, "p31", 1, 200 * MiB),
        proc(32, "p32", 1, 200 * MiB),   proc(33, "p33", 1, 200 * MiB),
        proc(34, "p34", 1.99, 40 * MiB), proc(35, "p35", 1, 40 * MiB - 1),
        proc(36, "p36", 2.0, 200 * MiB), proc(37, "daemon", 0, 200 * MiB),
        proc(38, "p38", 0, 200 * MiB)};
    EXPECT_EQ(session.select(rows), QList<qint64>({33, 34, 30}));
    const CleanupCandidate& windowed = session.hub->cleanupCandidates().first();
    EXPECT_EQ(windowed.reason, CleanupReason::idleApp);
    EXPECT_TRUE(windowed.hasWindow);
    EXPECT_EQ(windowed.displayName, "W98");
    EXPECT_NEAR(windowed.idleMinutes.value_or(0), 98, 0.5);
}

TEST(CandidateSelectionTest, IdleApplicationsNeedStrainAndSensitivityOfAtLeastPoint4) {
    const auto offered = [](double s, bool thermalNominal, std::uint64_t busy, std::uint64_t mW) {
        Session session(s, {{"notes", 100}});
        session.app(50, "notes");
        session.system->nominal = thermalNominal;
        session.load(busy, mW);
        const bool any =
            !session.select({proc(50, "notes", 0, 500 * MiB), proc(51, "x", 0, 1)}).isEmpty();
        EXPECT_EQ(session.system->thermalReads, 1); // asked first, once per selection
        return any;
    };
    EXPECT_FALSE(offered(0.5, true, 59, 13900));
    EXPECT_TRUE(offered(0.5, true, 60, 0));
    EXPECT_TRUE(offered(0.5, true, 0, 14000));
    EXPECT_TRUE(offered(0.5, false, 0, 0));
    EXPECT_FALSE(offered(0.39, false, 100, 20000));
    EXPECT_TRUE(offered(0.4, true, 60, 0));
}

TEST(CandidateSelectionTest, HogsFirstByMemoryThenIdleAppsLongestFirstOnePerNameAtMostSix) {
    Session session(0.5, {{"notes", 50}, {"notes2", 60}, {"mail", 100}, {"old", 7 * 24 * 60}});
    session.system->nominal = false;
    session.app(46, "notes");
    session.app(47, "mail");
    session.app(48, "old");
    session.app(49, "notes2");
    session.desktop->apps[49].displayName = "NOTES"; // shows the same name as pid 46
    const QList<qint64> offered = session.select(
        {proc(40, "dup", 0, 3 * GiB), proc(41, "dup", 0, 5 * GiB), proc(42, "dup", 0, 4 * GiB),
         proc(43, "hogA", 0, 3 * GiB), proc(44, "hogB", 0, 6 * GiB), proc(45, "hogC", 0, 3 * GiB),
         proc(46, "notes", 0, 300 * MiB), proc(47, "mail", 0, 100 * MiB),
         proc(48, "old", 0, 50 * MiB), proc(49, "notes-helper", 0, 200 * MiB)});
    // A week idle (over 9999 minutes) goes ahead of the hogs; "NOTES" (50 min) is seventh.
    EXPECT_EQ(offered, QList<qint64>({48, 44, 41, 43, 45, 47}));
}

} // namespace
