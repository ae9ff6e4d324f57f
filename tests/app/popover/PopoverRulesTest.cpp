#include "app/popover/PopoverRules.h"

#include "app/popover/CatStyle.h"

#include <QColor>
#include <gtest/gtest.h>
#include <limits>

namespace quelmo {
namespace {

using namespace PopoverRules;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

TEST(PopoverFormats, MemorySwitchesToGigabytesAtOneGibibyte) {
    EXPECT_EQ(mem(1073741824.0), "1.0GB");
    EXPECT_EQ(mem(1073741823.0), "1024MB");
    EXPECT_EQ(mem(0), "0MB");
    EXPECT_EQ(mem(524288000.0), "500MB");
}

TEST(PopoverSize, FollowsContentUpToTheScreensLimit) {
    EXPECT_EQ(popoverHeight(1000, maxHeight(900.0)), 840);
    EXPECT_EQ(popoverHeight(1000, maxHeight(400.0)), 380);
    EXPECT_EQ(popoverHeight(300, maxHeight(900.0)), 300);
    EXPECT_EQ(maxHeight(std::nullopt), 740);
    EXPECT_EQ(popoverHeight(1000, maxHeight(std::nullopt)), 740);
}

TEST(PopoverLoops, RunToOneAndBackEasedAtBothEnds) {
    EXPECT_DOUBLE_EQ(loopPhase(0, 700), 0);
    EXPECT_DOUBLE_EQ(loopPhase(350, 700), 0.5);
    EXPECT_DOUBLE_EQ(loopPhase(700, 700), 1);
    EXPECT_DOUBLE_EQ(loopPhase(1050, 700), 0.5);
    EXPECT_NEAR(loopPhase(1400, 700), 0, 1e-12);
    EXPECT_NEAR(loopPhase(10 * 1400 + 700, 700), 1, 1e-9); // many loops later, still in step
    // Eased: slow near the ends, fast in the middle.
    EXPECT_LT(loopPhase(70, 700), 0.1 * 0.5);
    EXPECT_GT(loopPhase(630, 700), 1 - 0.1 * 0.5);
    // Nothing to loop over: it stands still.
    EXPECT_EQ(loopPhase(500, 0), 0);
    EXPECT_EQ(loopPhase(std::numeric_limits<double>::quiet_NaN(), 700), 0);
}

TEST(PopoverBars, KeepTheirMinimumWidths) {
    EXPECT_EQ(barFillWidth(200, 0), 3);
    EXPECT_EQ(barFillWidth(200, 1.7), 200);
    EXPECT_EQ(barFillWidth(200, nan), 3);
    EXPECT_EQ(barFillWidth(200, -0.5), 3);
    EXPECT_EQ(barFillWidth(200, 0.5), 100);
    // Before the first layout the track has no width: nothing sticks out of it.
    EXPECT_EQ(barFillWidth(0, 0.5), 0);

    EXPECT_EQ(coreFillScale(0), 0.02);
    EXPECT_EQ(coreFillScale(1.3), 1);
    EXPECT_EQ(coreFillScale(0.4), 0.4);
    EXPECT_EQ(coreFillScale(nan), 0.02);
}

// The per-core strip of the popover's 288 points: every core at least 2 wide, in rows when needed.
TEST(PopoverBars, CoreStripKeepsEveryCoreVisibleOnBigMachines) {
    const double width = 288;
    for (const int cores : {1, 8, 57, 58, 64, 96, 97, 128, 256, 1024}) {
        const int columns = coreColumns(cores, width);
        const double spacing = coreSpacing(cores, width);
        const int rows = (cores + columns - 1) / columns;
        EXPECT_GE((width - spacing * (columns - 1)) / columns, minCoreWidth) << cores;
        EXPECT_LE(columns, cores) << cores;
        // No row more than needed: the rows before the last are full.
        EXPECT_GT(cores, (rows - 1) * columns) << cores;
    }
    EXPECT_EQ(coreColumns(0, width), 1);
}

TEST(PopoverBars, ProcessListScalesToItsBusiestRow) {
    EXPECT_EQ(processMaxValue({}), 1);
    EXPECT_EQ(processMaxValue({0, 0}), 0.0001);
    EXPECT_EQ(processMaxValue({12, 150, 3}), 150);
    EXPECT_EQ(processMaxValue({-5}), 0.0001);

    // A list whose busiest process uses 0 % draws every bar at the 2-point minimum.
    const double idleMax = processMaxValue({0, 0, 0});
    EXPECT_EQ(processFillWidth(180, 0, idleMax), 2);
    EXPECT_EQ(processFillWidth(180, 150, 150), 180);
    EXPECT_EQ(processFillWidth(180, 75, 150), 90);
}

// An idle machine's bar is empty rather than divided by zero (the render test checks a split).
TEST(PopoverBars, NoPowerSplitsIntoNothing) {
    for (double share : powerShares(0, 0, 0, 0))
        EXPECT_EQ(share, 0);
}

TEST(PopoverSections, ToggleTwiceRestores) {
    const QStringList start{"memory"};
    EXPECT_EQ(toggled(start, "cpu"), QStringList({"memory", "cpu"}));
    EXPECT_EQ(toggled(start, "memory"), QStringList());
    EXPECT_EQ(toggled(toggled(start, "cpu"), "cpu"), start);
}

TEST(CatStyles, UnknownStoredTextDrawsAsWhite) {
    for (const QString& raw : {QStringLiteral("tabby"), QStringLiteral("Black"), QString()}) {
        SCOPED_TRACE(raw.toStdString());
        EXPECT_FALSE(CatStyle::fromRaw(raw));
        EXPECT_EQ(CatStyle::forStored(raw).fur(), CatStyle::forStored("white").fur());
        EXPECT_EQ(CatStyle::forStored(raw).outline(), CatStyle::forStored("white").outline());
    }
}

} // namespace
} // namespace quelmo
