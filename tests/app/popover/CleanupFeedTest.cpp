#include "app/popover/CleanupFeed.h"

#include "core/metrics/SystemMetrics.h"
#include "support/FakePlatform.h"
#include "support/TempSettings.h"

#include <QTest>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

CleanupCandidate idleApp(qint64 pid, const QString& name, double minutes) {
    CleanupCandidate c;
    c.proc.id = pid;
    c.proc.name = name;
    c.reason = CleanupReason::idleApp;
    c.idleMinutes = minutes;
    return c;
}

} // namespace

// The card follows the hub: its candidates, its sensitivity both ways, and its terminate.
TEST(CleanupFeedTest, FollowsTheHub) {
    SystemMetrics hub(Platform{});
    CleanupFeed feed(hub);
    EXPECT_EQ(feed.candidates()->count(), 0);

    hub.setCleanupCandidates({idleApp(41, "mail", 90), idleApp(42, "notes", 20)});
    EXPECT_EQ(feed.candidates()->count(), 2);
    EXPECT_EQ(feed.candidates()->cutTargetCount(), 2);

    feed.setSensitivity(0.9);
    EXPECT_EQ(hub.sensitivity(), 0.9);
    hub.setSensitivity(0.2);
    EXPECT_EQ(feed.sensitivity(), 0.2);

    // A cut without a journey reaches the hub at once: the pids are held back from the list.
    feed.cut()->executeCut({{41, 410}, {42, 420}}, std::nullopt, {});
    EXPECT_TRUE(hub.cuttingPIDs().contains(41));
    EXPECT_TRUE(hub.cuttingPIDs().contains(42));
    EXPECT_EQ(feed.cut()->cutTrigger(), 1);
}

namespace {

// The machine's process table, changed by the test between ticks.
struct ChangingTable : ProcessSource {
    std::vector<ProcessRecord> records;
    double uptime = 1000;
    std::optional<ProcessTable> readTable() override {
        return ProcessTable{records, 100, uptime += 1.0};
    }
    std::optional<QByteArray> runProcessTool() override { return std::nullopt; }
};

constexpr double GiB = 1073741824.0;

} // namespace

// The user presses Cut on a row; while the mascot walks there, the process ends, another one of
// the user's takes its pid and a tick lists it. Only what the row showed at the press is asked to
// quit: the newcomer gets neither a window close nor a signal, and the other row's process,
// still the same, is asked as usual.
TEST(CleanupFeedTest, ACutReachesOnlyTheProcessesItsRowsShowedAtThePress) {
    test::TempSettings::clear();
    auto* table = new ChangingTable;
    auto* desktop = new test::FakeDesktop;
    auto* signaller = new test::FakeSignaller;
    Platform platform;
    platform.processes.reset(table);
    platform.desktop.reset(desktop);
    platform.signaller.reset(signaller);
    platform.system = std::make_unique<test::FakeSystem>();
    platform.later = [](int, std::function<void()>) {};
    SystemMetrics hub(std::move(platform));
    CleanupFeed feed(hub);

    // Two memory hogs of the user, each with a window.
    table->records = {{101, "mail", "alice", 0, 1010, 3 * GiB},
                      {102, "notes", "alice", 0, 1020, 3 * GiB}};
    signaller->running = {{101, 1010}, {102, 1020}};
    desktop->withWindows = {101, 102};
    hub.setPollProcesses(true);
    ASSERT_EQ(feed.candidates()->count(), 2);

    feed.cut()->cut({QVariant(101), QVariant(102)}, QVariant(101),
                    {{"-1", 40.0}, {"101", 131.0}, {"102", 160.0}});
    ASSERT_GT(feed.cut()->catTravelY(), 0); // the journey: the quit request comes later

    table->records[0] = {101, "innocent", "alice", 0, 2020, 3 * GiB};
    signaller->running[101] = 2020;
    hub.refreshProcesses();
    QTest::qWait(CutSequence::terminateAtMs + 100);

    EXPECT_EQ(desktop->closeRequests, QList<qint64>({102}));
    EXPECT_TRUE(signaller->signalled.isEmpty());
    EXPECT_TRUE(hub.cuttingPIDs().contains(101)); // the row goes, as after any cut
}
