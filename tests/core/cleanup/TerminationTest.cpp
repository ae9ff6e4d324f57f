// Asking cut processes to end: only the very process the user chose is asked anything, its
// windows first, SIGTERM otherwise, and the count of requests delivered.
#include "core/cleanup/Termination.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

TEST(TerminationTest, OnlyTheChosenProcessIsAskedThroughItsWindowsOrBySignal) {
    FakeDesktop desktop;
    FakeSignaller signaller;
    signaller.running = {{100, 1000}, {101, 1010}, {103, 99}, {104, 1040}, {105, 1050}};
    signaller.ignoresSignals = {104};
    desktop.withWindows = {100, 103, 105};

    // 100: closes its windows. 101: no windows, takes SIGTERM. 102: gone. 103: pid reused by a
    // later process, which is asked nothing, not even through its windows. 104: ignores the
    // signal. 105: the table told no start time, so nothing vouches for the pid.
    const QList<ProcessIdentity> chosen = {{100, 1000}, {101, 1010}, {102, 1020},
                                           {103, 1030}, {104, 1040}, {105, std::nullopt}};
    EXPECT_EQ(requestTermination(chosen, {&desktop, &signaller}), 2);
    EXPECT_EQ(desktop.closeRequests, QList<qint64>({100, 101, 104}));
    EXPECT_EQ(signaller.signalled, QList<qint64>({101, 104}));

    // Without a way to pin a process (no pidfds) nothing is asked, windows included.
    desktop.closeRequests.clear();
    EXPECT_EQ(requestTermination(chosen, {&desktop, nullptr}), 0);
    EXPECT_TRUE(desktop.closeRequests.isEmpty());
}

} // namespace
