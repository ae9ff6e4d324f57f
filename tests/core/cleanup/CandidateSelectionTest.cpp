// Which processes are offered for cutting, from plain inputs: nothing the user may be using,
// resource hogs, and idle applications only under strain, in the card's order.
#include "core/cleanup/CandidateSelection.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

constexpr double MiB = 1048576.0;
constexpr double GiB = 1073741824.0;
constexpr double now = 1.7e9; // seconds since 1970

// An ordinary application owned by `pid`; its desktop-entry id is the pid in decimal.
struct App {
    qint64 pid;
    double minutesAgo; // since it was last brought to the front; negative: never
    bool window = false;
    QString displayName = {};
};

// The inputs of one selection at sensitivity `s` with `apps` on the desktop, for user "alice"
// and own pid 4242. Rows of 1 GiB or more are resource hogs (ramHog) by their baselines.
struct Scene {
    SelectionInputs inputs;
    QHash<qint64, AppRecord> apps;
    QHash<QString, double> lastActive;
    bool thermalNominal = true;
    int thermalReads = 0;

    explicit Scene(double s, const std::vector<App>& list = {}) {
        inputs.userName = QStringLiteral("alice");
        inputs.ownPid = 4242;
        inputs.sensitivity = s;
        inputs.nowSeconds = now;
        for (const App& app : list) {
            const QString id = QString::number(app.pid);
            inputs.desktop.regularPIDs << app.pid;
            if (app.window)
                inputs.desktop.visiblePIDs << app.pid;
            apps.insert(app.pid, {id, app.displayName.isEmpty() ? "App " + id : app.displayName});
            if (app.minutesAgo >= 0)
                lastActive.insert(id, now - app.minutesAgo * 60.0);
        }
        inputs.application = [this](qint64 pid) {
            return apps.contains(pid) ? std::optional(apps.value(pid)) : std::nullopt;
        };
        inputs.lastActiveSeconds = [this](const QString& id) {
            return lastActive.contains(id) ? std::optional(lastActive.value(id)) : std::nullopt;
        };
        inputs.resourceReason = [](const ProcInfo& p) {
            return p.rss >= GiB ? std::optional(CleanupReason::ramHog) : std::nullopt;
        };
        inputs.strain.thermalNominal = [this] {
            ++thermalReads;
            return thermalNominal;
        };
    }
    Scene(const Scene&) = delete;

    QList<CleanupCandidate> candidates(const std::vector<ProcInfo>& rows) const {
        return selectCleanupCandidates(rows, inputs);
    }
    QList<qint64> select(const std::vector<ProcInfo>& rows) const {
        QList<qint64> pids;
        for (const CleanupCandidate& c : candidates(rows))
            pids << c.id();
        return pids;
    }
};

// Whatever they use, processes that are someone else's, this program, in front, part of the
// system, being cut or without a name to show stay; so do applications used within R minutes,
// or T with a window, and applications whose windows the desktop cannot show us.
TEST(CandidateSelectionTest, NothingTheUserMayBeUsingIsOffered) {
    for (const auto& [s, recent, windowed] :
         std::vector<std::tuple<double, double, double>>{{0, 24, 60}, {0.5, 13, 32.5}, {1, 2, 5}}) {
        SCOPED_TRACE(testing::Message() << "s = " << s);
        Scene scene(s, {App{1, recent - 0.1}, App{2, recent + 0.1}, App{3, windowed - 0.1, true},
                        App{4, windowed + 0.1, true}, App{5, -1}, App{6, -1, true}, App{16, -1}});
        scene.inputs.desktop.frontmostPID = 11;
        scene.inputs.desktop.unseenAppPIDs = {16};
        scene.inputs.cuttingPIDs = {15};
        const double hog = 2 * GiB;
        EXPECT_EQ(scene.select({proc(1, "a", 0, hog), proc(2, "b", 0, hog), proc(3, "c", 0, hog),
                                proc(4, "d", 0, hog), proc(5, "e", 0, hog), proc(6, "f", 0, hog),
                                proc(7, "g", 0, hog, "root"), proc(8, "h", 0, hog, "Alice"),
                                proc(4242, "quelmo-dev", 0, hog), proc(11, "in-front", 0, hog),
                                proc(12, "Xorg", 0, hog), proc(13, "Xorg helper", 0, hog),
                                proc(15, "to-cut", 0, hog), proc(16, "unseen", 0, hog),
                                proc(17, "", 0, hog), proc(18, " ", 0, hog)}),
                  QList<qint64>({2, 4, 5, 13}));
    }
}

// The user's process by its effective uid alone is not offered: its real user must be the
// user's too, or a cut could not signal it. A row that does not say (from the process-listing
// tool) goes by its owner.
TEST(CandidateSelectionTest, OnlyProcessesTheUserMaySignalAreOffered) {
    const auto row = [](qint64 pid, const QString& real) {
        ProcInfo p = proc(pid, QStringLiteral("p%1").arg(pid), 0, 2 * GiB + double(pid));
        p.realUser = real;
        return p;
    };
    Scene scene(0.5);
    EXPECT_EQ(scene.select({row(1, "root"), row(2, "bob"), row(3, "alice"), row(4, "")}),
              QList<qint64>({4, 3}));
}

// At s = 0.5, T = 32.5 minutes; with a window, 3 T = 97.5. Pid 30 is just inside every limit.
TEST(CandidateSelectionTest, IdleAppsNeedTimeMemoryAQuietCPUAndNoRecentWindow) {
    Scene scene(0.5, {App{30, 33}, App{31, 32}, App{32, 97, true}, App{33, 98, true}, App{35, 60},
                      App{36, 60}, App{38, -1}});
    scene.thermalNominal = false;
    const QList<CleanupCandidate> offered =
        scene.candidates({proc(30, "p30", 1.99, 40 * MiB), proc(31, "p31", 1, 200 * MiB),
                          proc(32, "p32", 1, 200 * MiB), proc(33, "p33", 1, 200 * MiB),
                          proc(35, "p35", 1, 40 * MiB - 1), proc(36, "p36", 2.0, 200 * MiB),
                          proc(38, "p38", 0, 200 * MiB)});
    ASSERT_EQ(offered.size(), 2);
    EXPECT_EQ(offered[0].id(), 33);
    EXPECT_TRUE(offered[0].hasWindow);
    EXPECT_EQ(offered[0].displayName, "App 33");
    EXPECT_NEAR(*offered[0].idleMinutes, 98, 1e-6);
    EXPECT_EQ(offered[1].id(), 30);
    EXPECT_EQ(scene.thermalReads, 1); // once per selection, however many rows reach the rule
}

// A hog is offered for its resource reason without any of the idle application's fields, even
// when it is an ordinary application that has sat idle with a window for long.
TEST(CandidateSelectionTest, ResourceHogsCarryOnlyTheirReason) {
    Scene scene(0.5, {App{20, 200, true, "Editor"}});
    const QList<CleanupCandidate> offered = scene.candidates({proc(20, "editor", 50, 2 * GiB)});
    ASSERT_EQ(offered.size(), 1);
    EXPECT_EQ(offered[0].reason, CleanupReason::ramHog);
    EXPECT_FALSE(offered[0].hasWindow);
    EXPECT_FALSE(offered[0].idleMinutes);
    EXPECT_FALSE(offered[0].displayName);
    EXPECT_EQ(scene.thermalReads, 0); // no row reached the idle-application rule
}

TEST(CandidateSelectionTest, IdleAppsNeedStrainAndSensitivityOfAtLeastPoint4) {
    const auto offered = [](double s, bool thermalNominal, double cpuTotal, double watts) {
        Scene scene(s, {{50, 100}});
        scene.thermalNominal = thermalNominal;
        scene.inputs.strain.cpuTotal = cpuTotal;
        scene.inputs.strain.totalWatts = watts;
        return !scene.select({proc(50, "notes", 0, 500 * MiB)}).isEmpty();
    };
    EXPECT_FALSE(offered(0.5, true, 0.59, 13.9));
    EXPECT_TRUE(offered(0.5, true, 0.6, 0));
    EXPECT_TRUE(offered(0.5, true, 0, 14.0));
    EXPECT_TRUE(offered(0.5, false, 0, 0));
    EXPECT_FALSE(offered(0.39, false, 1, 20));
    EXPECT_TRUE(offered(0.4, true, 0.6, 0));
}

TEST(CandidateSelectionTest, HogsFirstByMemoryThenIdleAppsLongestFirstOnePerNameAtMostSix) {
    Scene scene(0.5,
                {{46, 50, false, "Notes"}, {47, 40}, {48, 7 * 24 * 60}, {49, 60, false, "Notes"}});
    scene.thermalNominal = false;
    const QList<qint64> offered = scene.select(
        {proc(40, "dup", 0, 3 * GiB), proc(41, "dup", 0, 5 * GiB), proc(42, "dup", 0, 4 * GiB),
         proc(43, "hogA", 0, 3 * GiB), proc(44, "hogB", 0, 6 * GiB), proc(45, "hogC", 0, 3 * GiB),
         proc(46, "notes", 0, 300 * MiB), proc(47, "mail", 0, 100 * MiB),
         proc(48, "old", 0, 50 * MiB), proc(49, "notes-helper", 0, 200 * MiB)});
    // A week idle (over 9999 minutes) goes ahead of the hogs. Of the two "Notes" the bigger one
    // stays, though it was used more recently; pid 47 (40 minutes) would be seventh.
    EXPECT_EQ(offered, QList<qint64>({48, 44, 41, 43, 45, 46}));
}

} // namespace
