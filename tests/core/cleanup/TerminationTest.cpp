// Asking cut processes to end: the windows' polite close first, SIGTERM only to the very process
// that was listed, and the count of requests delivered.
#include "core/cleanup/Termination.h"

#include "support/FakePlatform.h"

#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

TEST(TerminationTest, SignalsOnlyTheListedProcessesAndCountsDeliveredRequests) {
    FakeDesktop desktop;
    FakeSignaller signaller;
    // Start times as the process table listed them; 105 was never listed.
    const QHash<qint64, std::uint64_t> listed = {
        {100, 1000}, {101, 1010}, {102, 1020}, {103, 1030}, {104, 1040}};
    signaller.running = {{100, 1000}, {101, 1010}, {103, 99}, {104, 1040}};
    signaller.ignoresSignals = {104};
    desktop.withWindows = {100};

    // 100: closes its windows. 101: no windows, takes SIGTERM. 102: gone. 103: pid reused by a
    // later process. 104: ignores the signal. 105: start time unknown.
    const TerminationRoutes routes{&desktop, &signaller, [&](qint64 pid) {
                                       return listed.contains(pid)
                                                  ? std::optional(listed.value(pid))
                                                  : std::nullopt;
                                   }};
    EXPECT_EQ(requestTermination({100, 101, 102, 103, 104, 105}, routes), 2);
    EXPECT_EQ(desktop.closeRequests, QList<qint64>({100, 101, 104}));
    EXPECT_EQ(signaller.signalled, QList<qint64>({101, 104}));
}

} // namespace
