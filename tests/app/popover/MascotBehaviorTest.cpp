#include "app/popover/MascotBehavior.h"

#include <QSignalSpy>
#include <algorithm>
#include <deque>
#include <gtest/gtest.h>
#include <vector>

namespace quelmo {
namespace {

// Time moves only when the test says so; due calls run in order of their due time.
class HandClock : public MascotClock {
public:
    Token callAfter(int ms, std::function<void()> action) override {
        pending_.push_back({now_ + ms, next_, std::move(action)});
        return next_++;
    }
    void cancel(Token token) override {
        std::erase_if(pending_, [token](const Call& c) { return c.token == token; });
    }
    void advance(qint64 ms) {
        const qint64 until = now_ + ms;
        for (;;) {
            auto due = std::min_element(pending_.begin(), pending_.end(), [](auto& a, auto& b) {
                return a.due != b.due ? a.due < b.due : a.token < b.token;
            });
            if (due == pending_.end() || due->due > until)
                break;
            Call call = std::move(*due);
            pending_.erase(due);
            now_ = call.due;
            call.action();
        }
        now_ = until;
    }
    size_t pending() const { return pending_.size(); }

private:
    struct Call {
        qint64 due;
        Token token;
        std::function<void()> action;
    };
    std::vector<Call> pending_;
    qint64 now_ = 0;
    Token next_ = 1;
};

// The next draw from `queue`; an empty queue draws the middle value.
template <typename T> auto drawFrom(std::deque<T>& queue) {
    return [&queue](T lo, T hi) {
        if (queue.empty())
            return (lo + hi) / 2;
        const T drawn = queue.front();
        queue.pop_front();
        return drawn;
    };
}

class MascotBehaviorTest : public ::testing::Test {
protected:
    std::deque<double> reals;
    std::deque<int> wholes;
    HandClock clock;
    MascotBehavior cat{clock, MascotBehavior::Random{drawFrom(reals), drawFrom(wholes)}};
};

TEST_F(MascotBehaviorTest, SleepsWithoutTargets) {
    QSignalSpy blinks(&cat, &MascotBehavior::blinkChanged);
    cat.setActive(true);
    EXPECT_FALSE(cat.awake());
    EXPECT_TRUE(cat.timersRunning());
    wholes = {40, 1, 40, 1, 40, 1, 40, 1, 40, 1, 40, 1, 40, 1};
    clock.advance(10000);
    EXPECT_EQ(cat.x(), 0);
    EXPECT_EQ(cat.look(), 0);
    EXPECT_EQ(blinks.count(), 0);
}

TEST_F(MascotBehaviorTest, WakesForTargetsThenWandersRestsAndBlinks) {
    cat.setActive(true);
    cat.setHasTargets(true);
    EXPECT_TRUE(cat.awake());
    EXPECT_EQ(cat.motion(), MascotBehavior::Motion::wake);

    reals = {5};
    wholes = {-60, 1};
    clock.advance(1500);
    EXPECT_EQ(cat.x(), -60);
    EXPECT_EQ(cat.look(), 1);
    EXPECT_FALSE(cat.resting());
    EXPECT_EQ(cat.motion(), MascotBehavior::Motion::wander);

    reals = {1.9}; // under 2: the cat sits down, centred
    clock.advance(1500);
    EXPECT_TRUE(cat.resting());
    EXPECT_EQ(cat.x(), 0);
    EXPECT_EQ(cat.look(), 0);

    // The first blink is due at 3.6 s and lasts 0.13 s.
    clock.advance(3600 - 3000);
    EXPECT_TRUE(cat.blink());
    clock.advance(130);
    EXPECT_FALSE(cat.blink());
}

TEST_F(MascotBehaviorTest, FallsAsleepCentredWhenTargetsGo) {
    cat.setActive(true);
    cat.setHasTargets(true);
    reals = {5};
    wholes = {25, -1};
    clock.advance(1500);
    ASSERT_EQ(cat.x(), 25);
    cat.setHasTargets(false);
    EXPECT_FALSE(cat.awake());
    EXPECT_EQ(cat.x(), 0);
    EXPECT_EQ(cat.look(), 0);

    cat.setHasTargets(true);
    reals = {0.5};
    clock.advance(1500);
    ASSERT_TRUE(cat.resting());
    cat.setHasTargets(false);
    EXPECT_FALSE(cat.resting());
}

TEST_F(MascotBehaviorTest, EachCutSnipsAndLooksUpAgain) {
    cat.setActive(true);
    cat.setHasTargets(true);
    cat.setTrigger(1);
    EXPECT_TRUE(cat.lookDown());
    EXPECT_EQ(cat.x(), 0);
    EXPECT_EQ(cat.motion(), MascotBehavior::Motion::aim);
    clock.advance(60);
    EXPECT_TRUE(cat.bladeClose());
    clock.advance(100);
    EXPECT_FALSE(cat.bladeClose());
    clock.advance(390);
    EXPECT_FALSE(cat.lookDown());
    EXPECT_EQ(cat.motion(), MascotBehavior::Motion::lookUp);

    // A second cut before the first has ended starts over and still ends looking up.
    cat.setTrigger(2);
    clock.advance(300);
    cat.setTrigger(3);
    clock.advance(300);
    EXPECT_TRUE(cat.lookDown());
    clock.advance(250);
    EXPECT_FALSE(cat.lookDown());
    EXPECT_FALSE(cat.bladeClose());
}

TEST_F(MascotBehaviorTest, LeavingTheScreenStopsEverything) {
    cat.setActive(true);
    cat.setHasTargets(true);
    cat.setTrigger(1);
    clock.advance(100);
    cat.setActive(false);
    EXPECT_FALSE(cat.timersRunning());
    EXPECT_EQ(clock.pending(), 0u);
    EXPECT_FALSE(cat.lookDown());
    EXPECT_FALSE(cat.bladeClose());

    // Shown again, it wakes as the targets say and its timers run again.
    cat.setActive(true);
    EXPECT_TRUE(cat.awake());
    EXPECT_TRUE(cat.timersRunning());
}

} // namespace
} // namespace quelmo
