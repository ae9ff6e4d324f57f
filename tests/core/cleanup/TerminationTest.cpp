// Asking cut processes to end: the windows' polite close first, SIGTERM only to the very process
// that was listed, and the count of requests delivered.
#include "core/cleanup/Termination.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

TEST(TerminationTest, WindowsAreAskedWithoutAHandleAndSignalsGoOnlyToTheListedProcess) {
    FakeDesktop desktop;
    FakeSignaller signaller;
    // Start times as the process table listed them; 105 and 106 were never listed (the listing
    // tool tells no start times).
    const QHash<qint64, std::uint64_t> listed = {
        {100, 1000}, {101, 1010}, {102, 1020}, {103, 1030}, {104, 1040}};
    signaller.running = {{100, 1000}, {101, 1010}, {103, 99}, {104, 1040}, {106, 1060}};
    signaller.ignoresSignals = {104};
    desktop.withWindows = {100, 103, 105};

    // 100: closes its windows. 101: no windows, takes SIGTERM. 102: gone. 103: pid reused by a
    // later process, which is not asked anything. 104: ignores the signal. 105: start time
    // unknown, but its windows can still be asked. 106: start time unknown and no windows:
    // nothing can be sent safely.
    const TerminationRoutes routes{&desktop, &signaller, [&](qint64 pid) {
                                       return listed.contains(pid)
                                                  ? std::optional(listed.value(pid))
                                                  : std::nullopt;
                                   }};
    EXPECT_EQ(requestTermination({100, 101, 102, 103, 104, 105, 106}, routes), 3);
    EXPECT_EQ(desktop.closeRequests, QList<qint64>({100, 101, 102, 104, 105, 106}));
    EXPECT_EQ(signaller.signalled, QList<qint64>({101, 104}));

    // Without a way to signal at all (no pidfds), windows are still asked to close.
    desktop.closeRequests.clear();
    EXPECT_EQ(requestTermination({100, 101}, {&desktop, nullptr, routes.startTimeOf}), 1);
    EXPECT_EQ(desktop.closeRequests, QList<qint64>({100, 101}));
}

} // namespace
