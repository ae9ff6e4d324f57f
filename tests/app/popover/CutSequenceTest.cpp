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

} // namespace

TEST(CutSequenceTest, JourneyToTheRowThenSnipThenQuitThenBack) {
    ManualClock clock;
    QList<QList<qint64>> terminated;
    CutSequence cut([&](const QList<qint64>& pids) { terminated.append(pids); }, clock.schedule());

    cut.executeCut({8}, 8, rows);
    EXPECT_EQ(cut.catTravelY(), 131 - 40 - 22);
    EXPECT_EQ(cut.cutTrigger(), 0);
    const double goingSpring = cut.travelSpring();

    clock.runUntil(CutSequence::snipAtMs - 1);
    EXPECT_EQ(cut.cutTrigger(), 0);
    clock.runUntil(CutSequence::snipAtMs);
    EXPECT_EQ(cut.cutTrigger(), 1);
    EXPECT_TRUE(terminated.isEmpty());
    clock.runUntil(CutSequence::terminateAtMs);
    EXPECT_EQ(terminated, (QList<QList<qint64>>{{8}}));
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
TEST(CutSequenceTest, NoJourneyCutsAtOnce) {
    ManualClock clock;
    QList<QList<qint64>> terminated;
    CutSequence cut([&](const QList<qint64>& pids) { terminated.append(pids); }, clock.schedule());

    cut.executeCut({7}, 7, rows);
    cut.executeCut({9}, 9, rows);
    cut.executeCut({7, 8, 9}, std::nullopt, rows);
    EXPECT_EQ(cut.cutTrigger(), 3);
    EXPECT_EQ(terminated, (QList<QList<qint64>>{{7}, {9}, {8}}));
    EXPECT_EQ(cut.catTravelY(), 0);
    for (const auto& [dueMs, step] : clock.pending) // only the guards against a second press
        EXPECT_EQ(dueMs, CutSequence::repeatGuardMs);

    cut.executeCut({}, 8, rows);
    EXPECT_EQ(cut.cutTrigger(), 3);
    EXPECT_EQ(terminated.size(), 3);
}

// The QML entry point: pids and positions as QML hands them over.
TEST(CutSequenceTest, TakesQmlValues) {
    ManualClock clock;
    QList<QList<qint64>> terminated;
    CutSequence cut([&](const QList<qint64>& pids) { terminated.append(pids); }, clock.schedule());
    cut.cut({QVariant(8)}, QVariant(8.0), {{"-1", 40.0}, {"8", 131.0}});
    EXPECT_EQ(cut.catTravelY(), 69);
    cut.cut({QVariant(3), QVariant(4)}, QVariant(), {});
    EXPECT_EQ(terminated, (QList<QList<qint64>>{{3, 4}}));
}

// Steps that come due after the sequence is gone do nothing.
TEST(CutSequenceTest, LaterStepsOutliveNothing) {
    ManualClock clock;
    int terminations = 0;
    {
        CutSequence cut([&](const QList<qint64>&) { ++terminations; }, clock.schedule());
        cut.executeCut({8}, 8, rows);
    }
    clock.runUntil(CutSequence::returnAtMs);
    EXPECT_EQ(terminations, 0);
}

// A double click on Cut, or Cut all right after a row's Cut: each process is asked once.
TEST(CutSequenceTest, APidPressedAgainIsNotCutTwice) {
    ManualClock clock;
    QList<QList<qint64>> terminated;
    CutSequence cut([&](const QList<qint64>& pids) { terminated.append(pids); }, clock.schedule());

    cut.executeCut({8}, 8, rows);
    cut.executeCut({8}, 8, rows);
    cut.executeCut({7, 8}, std::nullopt, rows);
    clock.runUntil(CutSequence::returnAtMs);
    EXPECT_EQ(terminated, (QList<QList<qint64>>{{7}, {8}}));

    // Later the pid may be another process's: it can be cut again.
    clock.runUntil(CutSequence::repeatGuardMs);
    cut.executeCut({8}, std::nullopt, rows);
    EXPECT_EQ(terminated.size(), 3);
}
