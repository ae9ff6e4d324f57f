#include "app/popover/Loop.h"

#include "app/popover/LoopClock.h"
#include "app/popover/PopoverRules.h"

#include <QSignalSpy>
#include <cmath>
#include <gtest/gtest.h>
#include <set>

namespace quelmo {
namespace {

TEST(LoopSteps, ChangeOnlyWhenTheDrawingCanShowItAndNeverMissAStep) {
    for (const auto& [halfPeriod, steps] : {std::pair{300, 3}, {700, 3}, {1800, 4}, {1600, 8}}) {
        SCOPED_TRACE(halfPeriod);
        qint64 t = 0;
        int changes = 0;
        std::set<double> levels;
        // Two whole periods, woken only at each announced change.
        for (;;) {
            const qint64 next = Loop::nextChangeAfter(t, halfPeriod, steps);
            ASSERT_GT(next, t);
            const double here = Loop::levelAt(static_cast<double>(t), halfPeriod, steps);
            // Nothing changes in between, and the change is a real one of one step.
            for (qint64 u = t; u < next; u += 7)
                ASSERT_EQ(Loop::levelAt(static_cast<double>(u), halfPeriod, steps), here);
            const double there = Loop::levelAt(static_cast<double>(next), halfPeriod, steps);
            EXPECT_NEAR(std::abs(there - here), 1.0 / steps, 1e-9);
            // Never farther from the true position than half a step.
            EXPECT_LE(std::abs(PopoverRules::loopPhase(static_cast<double>(t), halfPeriod) - here),
                      0.5 / steps + 1e-9);
            levels.insert(here);
            if (next > 4 * halfPeriod)
                break;
            t = next;
            ++changes;
        }
        EXPECT_EQ(changes, 4 * steps); // up and down twice, one wake per step
        EXPECT_EQ(levels.size(), static_cast<size_t>(steps + 1));
    }
    EXPECT_EQ(Loop::stepsFor(1.4), 3); // half pixels
    EXPECT_EQ(Loop::stepsFor(0.1), 1);
    EXPECT_EQ(Loop::stepsFor(0), 0);
    EXPECT_EQ(Loop::nextChangeAfter(100, 300, 0), -1);
    // Fast loops step on time, slow ones may wait half a step for another loop's frame.
    EXPECT_EQ(Loop::slackMs(300, 3), 0);
    EXPECT_EQ(Loop::slackMs(1800, 4), 225);
    EXPECT_EQ(Loop::nextChangeAfter(100, 0, 3), -1);
}

class LoopClockTest : public ::testing::Test {
protected:
    qint64 now = 1000;
    LoopClock clock{[this] { return now; }};

    // Runs the clock's wake-ups up to `until` (elapsed), as its timer would; returns how many.
    int runUntil(qint64 until) {
        int wakes = 0;
        while (clock.nextWakeMs() >= 0 && clock.nextWakeMs() <= until) {
            now += clock.nextWakeMs() - clock.elapsedMs();
            clock.step();
            ++wakes;
        }
        return wakes;
    }
};

TEST_F(LoopClockTest, WakesOnlyForVisibleStepsSharedOnItsGridAndNeverWhileStopped) {
    Loop snip, breathe;
    snip.setHalfPeriodMs(300);
    snip.setTravel(1.4);
    breathe.setHalfPeriodMs(1800);
    breathe.setTravel(1.9);
    snip.setClock(&clock);
    breathe.setClock(&clock);
    EXPECT_EQ(clock.nextWakeMs(), -1); // stopped: nothing scheduled

    clock.setRunning(true);
    QSignalSpy snipped(&snip, &Loop::phaseChanged);
    QSignalSpy breathed(&breathe, &Loop::phaseChanged);
    const int wakes = runUntil(3600);
    // Every wake is on the grid and shows a change; loops share wakes.
    EXPECT_EQ(snipped.count(), 6 * 2 * 3); // six periods of 0.6 s, three steps each way
    EXPECT_EQ(breathed.count(), 4 * 2);
    // The snip's steps each need a wake of their own; the slow breathing takes most of its
    // steps on those.
    EXPECT_GE(wakes, snipped.count());
    EXPECT_LT(wakes, snipped.count() + breathed.count() / 2);
    EXPECT_EQ(clock.nextWakeMs() % LoopClock::frameMs, 0);

    // A loop that stops rests at 0 and wakes nothing; with none moving the clock sleeps.
    snip.setRunning(false);
    breathe.setRunning(false);
    EXPECT_EQ(snip.phase(), 0);
    EXPECT_EQ(clock.nextWakeMs(), -1);

    // Stopped, time stands still; started again, the loops go on from there.
    breathe.setRunning(true);
    runUntil(4500);
    const double before = breathe.phase();
    const qint64 elapsed = clock.elapsedMs();
    clock.setRunning(false);
    now += 60000;
    EXPECT_EQ(clock.elapsedMs(), elapsed);
    EXPECT_EQ(clock.nextWakeMs(), -1);
    clock.setRunning(true);
    EXPECT_EQ(breathe.phase(), before);
    EXPECT_GT(clock.nextWakeMs(), elapsed);
}

// A frame drawn for something else carries a step due in a moment; one due later waits for
// its own wake, and a step taken early is never taken back by the wake that follows.
TEST_F(LoopClockTest, AFrameDrawnAnywayCarriesAStepDueInAMoment) {
    Loop snip;
    snip.setHalfPeriodMs(300);
    snip.setTravel(1.4);
    snip.setClock(&clock);
    clock.setRunning(true);
    QSignalSpy snipped(&snip, &Loop::phaseChanged);

    const qint64 due = clock.nextWakeMs();
    now += due - clock.elapsedMs() - LoopClock::rideAheadMs - 1;
    clock.frameComing();
    EXPECT_EQ(snipped.count(), 0);
    EXPECT_EQ(clock.nextWakeMs(), due);

    now += 2;
    clock.frameComing();
    EXPECT_EQ(snipped.count(), 1);
    const double stepped = snip.phase();
    EXPECT_GT(clock.nextWakeMs(), due);
    clock.step(); // a wake before the step's own time: nothing moves back
    EXPECT_EQ(snip.phase(), stepped);
    EXPECT_EQ(snipped.count(), 1);
}

TEST_F(LoopClockTest, LoopsOutliveOrPrecedeTheirClockSafely) {
    auto loop = std::make_unique<Loop>();
    loop->setHalfPeriodMs(300);
    loop->setTravel(2);
    {
        LoopClock shortLived([this] { return now; });
        loop->setClock(&shortLived);
        shortLived.setRunning(true);
        now += 150;
        shortLived.step();
        EXPECT_GT(loop->phase(), 0);
    }
    EXPECT_EQ(loop->clock(), nullptr);
    EXPECT_EQ(loop->phase(), 0);
    loop->setClock(&clock);
    clock.setRunning(true);
    loop.reset(); // leaves the clock, which then has nothing to wake for
    EXPECT_EQ(clock.nextWakeMs(), -1);
}

} // namespace
} // namespace quelmo
