#include "CleanupFakes.h"
#include "TempSettings.h"
#include "metrics/SystemMetrics.h"

#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

// The kernel's process table with start times, so that the hub can vouch for each pid it signals.
struct ListedProcesses : ProcessSource {
    std::vector<ProcessRecord> records;
    int reads = 0;
    std::optional<ProcessTable> readTable() override {
        ++reads;
        return ProcessTable{records, 100, 1000.0};
    }
    std::optional<QByteArray> runProcessTool() override { return std::nullopt; }
};

void runEventLoopFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

class TerminateTest : public ::testing::Test {
protected:
    void SetUp() override {
        TempSettings::clear();
        Platform platform;
        platform.processes.reset(processes);
        platform.desktop.reset(desktop);
        platform.system.reset(new FakeSystem);
        platform.signaller.reset(signaller);
        hub = std::make_unique<SystemMetrics>(std::move(platform));

        for (qint64 pid : {100, 101, 102, 103, 104})
            processes->records.push_back({pid, "p", "alice", 0, std::uint64_t(pid) * 10, 0});
        hub->refreshProcesses(); // the hub now knows each pid's start time
        signaller->running = {{100, 1000}, {101, 1010}, {103, 99}, {104, 1040}};
        signaller->ignoresSignals = {104};
        desktop->withWindows = {100};
    }

    ListedProcesses* processes = new ListedProcesses;
    FakeDesktop* desktop = new FakeDesktop;
    FakeSignaller* signaller = new FakeSignaller;
    std::unique_ptr<SystemMetrics> hub;
};

TEST_F(TerminateTest, AsksWindowsFirstThenSignalsOnlyProcessesStillKnownToBeTheListedOnes) {
    // 100: closes its windows. 101: no windows, takes SIGTERM. 102: gone. 103: pid reused by a
    // later process. 104: ignores the signal. 105: never listed, so its start time is unknown.
    const int readsBefore = processes->reads;
    const QList<qint64> pids = {100, 101, 102, 103, 104, 105};
    EXPECT_EQ(hub->terminate(pids), 2);

    EXPECT_EQ(desktop->closeRequests, QList<qint64>({100, 101, 104}));
    EXPECT_EQ(signaller->terminated, QList<qint64>({101}));
    EXPECT_EQ(hub->cuttingPIDs(), QSet<qint64>(pids.begin(), pids.end()));
    EXPECT_EQ(processes->reads, readsBefore + 1); // refreshed at once
}

TEST_F(TerminateTest, ThePidsAreReleasedAfterTheHoldOnlyWhileThePopoverIsOpen) {
    hub->setPollProcesses(true);
    hub->terminate({101, 102});
    const int readsAfterCut = processes->reads;
    EXPECT_EQ(hub->cuttingPIDs().size(), 2);
    runEventLoopFor(2500);
    EXPECT_TRUE(hub->cuttingPIDs().isEmpty());
    EXPECT_EQ(processes->reads, readsAfterCut + 1);

    hub->setPollProcesses(false);
    hub->terminate({101});
    runEventLoopFor(2500);
    EXPECT_EQ(hub->cuttingPIDs(), QSet<qint64>({101}));
    EXPECT_EQ(processes->reads, readsAfterCut + 2); // only the immediate refresh

    // A hub that is gone before the hold ends is left alone.
    hub->setPollProcesses(true);
    hub->terminate({100});
    hub.reset();
    runEventLoopFor(2000);
}

} // namespace
