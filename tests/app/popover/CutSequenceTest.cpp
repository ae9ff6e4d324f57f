#include "app/popover/CutSequence.h"

#include <gtest/gtest.h>
#include <map>

using namespace quelmo;

namespace {

// Steps scheduled by the sequence, run by hand in time order.
struct ManualClock {
    std::multimap<int, std::function<void()>> pending;

    CutSequence::Schedule schedule() {
        return [this](int delayMs, std::function<void()> step) {
            pending.emplace(delayMs, std::move(step));
        };
    }
    // Runs every step due up to `ms`.
    void runUntil(int ms) {
        while (!pending.empty() && pending.begin()->first <= ms) {
            auto step = std::move(pending.begin()->second);
            pending.erase(pending.begin());
            step();
        }
    }
};

const QHash<qint64, double> rows{{-1, 40}, {7, 62}, {8, 131}};

// Each row's process, as the card would tell it: pid n started at tick 1000 + n.
ProcessIdentity listed(qint64 pid) {
    return {pid, 1000 + static_cast<std::uint64_t>(pid)};
}
QList<ProcessIdentity> listedAll(std::initializer_list<qint64> pids) {
    QList<ProcessIdentity> identities;
    for (const qint64 pid : pids)
        identities.append(listed(pid));
    return identities;
}
using Cuts = QList<QList<ProcessIdentity>>;

// A sequence on the manual clock that notes each quit request it makes.
class CutSequenceTest : public ::testing::Test {
protected:
    ManualClock clock;
    Cuts terminated;
    CutSequence cut{[this](const QList<ProcessIdentity>& targets) { terminated.append(targets); },
                    listed, clock.schedule()};
};

} // namespace

TEST_F(CutSequenceTest, JourneyToTheRowThenSnipThenQuitThenBack) {
    cut.executeCut(listedAll({8}), 8, rows);
    EXPECT_EQ(cut.catTravelY(), 131 - 40 - 22);
    EXPECT_EQ(cut.cutTrigger(), 0);
    const double goingSpring = cut.travelSpring();

    clock.runUntil(CutSequence::snipAtMs - 1);
    EXPECT_EQ(cut.cutTrigger(), 0);
    clock.runUntil(CutSequence::snipAtMs);
    EXPECT_EQ(cut.cutTrigger(), 1);
    EXPECT_TRUE(terminated.isEmpty());
    clock.runUntil(CutSequence::terminateAtMs);
    EXPECT_EQ(terminated, Cuts{listedAll({8})});
    EXPECT_EQ(cut.catTravelY(), 69);
    clock.runUntil(CutSequence::returnAtMs);
    EXPECT_EQ(cut.catTravelY(), 0);
    EXPECT_NE(cut.travelSpring(), goingSpring); // it walks back on a softer spring
    clock.runUntil(CutSequence::repeatGuardMs);
    EXPECT_TRUE(clock.pending.empty());
}

// A row too close to the lane, one whose place is unknown, and every "Cut all": the snip and the
// quit request come at once, with nothing left for later; "Cut all" asks only what is not yet
// being cut.
TEST_F(CutSequenceTest, NoJourneyCutsAtOnce) {
    cut.executeCut(listedAll({7}), 7, rows);
    cut.executeCut(listedAll({9}), 9, rows);
    cut.executeCut(listedAll({7, 8, 9}), std::nullopt, rows);
    EXPECT_EQ(cut.cutTrigger(), 3);
    EXPECT_EQ(terminated, (Cuts{listedAll({7}), listedAll({9}), listedAll({8})}));
    EXPECT_EQ(cut.catTravelY(), 0);
    for (const auto& [dueMs, step] : clock.pending) // only the guards against a second press
        EXPECT_EQ(dueMs, CutSequence::repeatGuardMs);

    cut.executeCut({}, 8, rows);
    EXPECT_EQ(cut.cutTrigger(), 3);
    EXPECT_EQ(terminated.size(), 3);
}

// The QML entry point: pids and positions as QML hands them over. Each pid becomes the process
// its row shows at the press, and that process is what is asked to quit at the end of the
// journey, even if by then the row (and the pid) belong to a process started later.
TEST(CutSequenceOwnClock, TakesQmlValuesAndKeepsTheProcessesOfThePress) {
    ManualClock clock;
    Cuts terminated;
    QHash<qint64, ProcessIdentity> shown{{8, {8, 1008}}, {3, {3, 1003}}};
    CutSequence cut([&](const QList<ProcessIdentity>& targets) { terminated.append(targets); },
                    [&](qint64 pid) {
                        return shown.value(pid, {pid, std::nullopt});
                    },
                    clock.schedule());
    cut.cut({QVariant(8)}, QVariant(8.0), {{"-1", 40.0}, {"8", 131.0}});
    EXPECT_EQ(cut.catTravelY(), 69);
    shown[8] = {8, 5555}; // a tick: pid 8 is now another process
    clock.runUntil(CutSequence::returnAtMs);
    EXPECT_EQ(terminated, (Cuts{{{8, 1008}}}));

    cut.cut({QVariant(3), QVariant(4)}, QVariant(), {}); // 4 has no row: its pid alone
    EXPECT_EQ(terminated.last(), (QList<ProcessIdentity>{{3, 1003}, {4, std::nullopt}}));
}

// Steps that come due after the sequence is gone do nothing.
TEST(CutSequenceOwnClock, LaterStepsOutliveNothing) {
    ManualClock clock;
    int terminations = 0;
    {
        CutSequence cut([&](const QList<ProcessIdentity>&) { ++terminations; }, listed,
                        clock.schedule());
        cut.executeCut(listedAll({8}), 8, rows);
    }
    clock.runUntil(CutSequence::returnAtMs);
    EXPECT_EQ(terminations, 0);
}

// A double click on Cut, or Cut all right after a row's Cut: each process is asked once.
TEST_F(CutSequenceTest, APidPressedAgainIsNotCutTwice) {
    cut.executeCut(listedAll({8}), 8, rows);
    cut.executeCut(listedAll({8}), 8, rows);
    cut.executeCut(listedAll({7, 8}), std::nullopt, rows);
    clock.runUntil(CutSequence::returnAtMs);
    EXPECT_EQ(terminated, (Cuts{listedAll({7}), listedAll({8})}));

    // Later the pid may be another process's: it can be cut again.
    clock.runUntil(CutSequence::repeatGuardMs);
    cut.executeCut(listedAll({8}), std::nullopt, rows);
    EXPECT_EQ(terminated.size(), 3);
}
