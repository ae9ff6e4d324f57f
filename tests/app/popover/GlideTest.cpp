#include "app/popover/Glide.h"

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <gtest/gtest.h>

namespace quelmo {
namespace {

// Runs the event loop until `done` holds or two seconds have passed.
template <typename Done> bool waitUntil(Done done) {
    QElapsedTimer clock;
    clock.start();
    while (!done() && clock.elapsed() < 2000)
        QTest::qWait(5);
    return done();
}

TEST(GlideMotion, SpringsOvershootByTheirDampingAndEasesLandExactly) {
    // The mascot's wander: response 0.5 s, damping fraction 0.62, from 0 to 60.
    double peak = 0;
    double settledAt = -1;
    for (double t = 0; t <= 2; t += 0.001) {
        const Glide::State s = Glide::springAt({0, 0}, 60, 0.5, 0.62, t);
        peak = std::max(peak, s.value);
        if (settledAt < 0 && t > 0.1 && std::abs(s.value - 60) < 0.25 && std::abs(s.velocity) < 1)
            settledAt = t;
    }
    // A damped spring overshoots by exp(-pi z / sqrt(1 - z^2)) of the distance: 8.3 % here.
    EXPECT_NEAR(peak, 60 * (1 + std::exp(-M_PI * 0.62 / std::sqrt(1 - 0.62 * 0.62))), 0.05);
    EXPECT_GT(settledAt, 0.4);
    EXPECT_LT(settledAt, 1.0);
    // Starting with a speed keeps it: no jump in position or velocity.
    const Glide::State moving = Glide::springAt({10, 300}, 0, 0.45, 0.6, 0);
    EXPECT_DOUBLE_EQ(moving.value, 10);
    EXPECT_NEAR(moving.velocity, 300, 1e-9);
    // Critically damped: never past the target.
    for (double t = 0; t <= 1; t += 0.01)
        EXPECT_LE(Glide::springAt({0, 0}, 5, 0.3, 1, t).value, 5 + 1e-9);

    EXPECT_DOUBLE_EQ(Glide::easedAt(0, 2, 600, 300).value, 1);
    EXPECT_LT(Glide::easedAt(0, 2, 600, 60).value, 0.1);
    EXPECT_DOUBLE_EQ(Glide::easedAt(0, 2, 600, 600).value, 2);
    EXPECT_DOUBLE_EQ(Glide::easedAt(0, 2, 0, 0).value, 2);
}

// With the drawing's scale given, the value is told only in half-pixel moves: the slow ends of a
// spring draw far fewer frames, and the move still lands exactly on the target.
TEST(GlideMotion, TellsOnlyChangesOfHalfAPixelAndLandsOnTheTarget) {
    Glide everyFrame, halfPixel;
    for (Glide* glide : {&everyFrame, &halfPixel}) {
        glide->setResponse(0.5);
        glide->setDampingFraction(0.62);
        glide->setTarget(60);
    }
    halfPixel.setPixelsPerUnit(1);
    QSignalSpy all(&everyFrame, &Glide::valueChanged);
    QList<double> told;
    QObject::connect(&halfPixel, &Glide::valueChanged, [&] { told << halfPixel.value(); });
    for (int ms = 16; halfPixel.moving() || everyFrame.moving(); ms += 16) {
        everyFrame.advanceTo(ms);
        halfPixel.advanceTo(ms);
        ASSERT_LT(ms, 3000);
    }
    ASSERT_FALSE(told.isEmpty());
    EXPECT_EQ(told.last(), 60);
    EXPECT_EQ(halfPixel.value(), 60);
    for (qsizetype i = 1; i + 1 < told.size(); ++i)
        EXPECT_GE(std::abs(told[i] - told[i - 1]), 0.5);
    EXPECT_LT(told.size(), all.count() * 3 / 4);
}

TEST(GlideMotion, MovesOnTheAnimationTimerOnlyUntilItSettles) {
    Glide glide;
    glide.setResponse(0.2);
    glide.setDampingFraction(0.7);
    QSignalSpy values(&glide, &Glide::valueChanged);
    glide.setTarget(30);
    EXPECT_TRUE(glide.moving());
    EXPECT_EQ(glide.value(), 0);
    ASSERT_TRUE(waitUntil([&] { return !glide.moving(); }));
    EXPECT_EQ(glide.value(), 30);
    // Frame by frame, not in a few coarse steps.
    EXPECT_GT(values.count(), 8);
    values.clear();
    QTest::qWait(100);
    EXPECT_EQ(values.count(), 0); // still: nothing more to draw

    // Retargeted in mid-move it turns back from where it is, without a jump.
    glide.setTarget(0);
    ASSERT_TRUE(waitUntil([&] { return glide.value() < 25; }));
    const double there = glide.value();
    glide.setTarget(30);
    EXPECT_EQ(glide.value(), there);

    // Off screen it follows at once.
    glide.setAnimated(false);
    EXPECT_FALSE(glide.moving());
    EXPECT_EQ(glide.value(), 30);
    glide.setTarget(-4);
    EXPECT_EQ(glide.value(), -4);
}

} // namespace
} // namespace quelmo
