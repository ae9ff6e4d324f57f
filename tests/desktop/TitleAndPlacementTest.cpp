#include "PopoverPlacement.h"
#include "StatusTitle.h"

#include <gtest/gtest.h>
#include <limits>

using namespace quelmo;

TEST(StatusTitleTest, RoundsHalvesAwayFromZero) {
    EXPECT_EQ(statusTitle(0.234, 0.617), "23% 62%");
    EXPECT_EQ(statusTitle(0.125, 1.0), "13% 100%");
    EXPECT_EQ(statusTitle(0.005, 0.0), "1% 0%");
    EXPECT_EQ(wholePercent(0.1249), 12);
    EXPECT_EQ(wholePercent(0.0049), 0);
    EXPECT_EQ(wholePercent(0.675), 68);
}

TEST(StatusTitleTest, ReadingsThatAreNotNumbersShowAsZero) {
    EXPECT_EQ(wholePercent(std::numeric_limits<double>::quiet_NaN()), 0);
    EXPECT_EQ(wholePercent(std::numeric_limits<double>::infinity()), 0);
}

TEST(StatusTitleTest, GuideIsAsWideAsTheWidestTitle) {
    EXPECT_EQ(statusTitle(1.0, 1.0).size(), QString::fromLatin1(statusTitleGuide).size());
}

namespace {

const QSize popover{320, 420};

} // namespace

TEST(PopoverPlacementTest, HangsCentredUnderTheClickAndBelowATopPanel) {
    const QRect belowPanel(0, 28, 1280, 772);
    EXPECT_EQ(popoverGeometry({600, 14}, popover, belowPanel), QRect(440, 28, 320, 420));
    const QRect wholeScreen(0, 0, 1280, 800);
    EXPECT_EQ(popoverGeometry({600, 100}, popover, wholeScreen), QRect(440, 104, 320, 420));
}

TEST(PopoverPlacementTest, StaysInsideTheLeftAndRightEdges) {
    const QRect area(0, 28, 1280, 772);
    EXPECT_EQ(popoverGeometry({1270, 14}, popover, area).topLeft(), QPoint(960, 28));
    EXPECT_EQ(popoverGeometry({10, 14}, popover, area).topLeft(), QPoint(0, 28));
    // A second screen to the right: its own edges count, not those of the first.
    const QRect second(1280, 0, 1920, 1080);
    EXPECT_EQ(popoverGeometry({1300, 10}, popover, second).topLeft(), QPoint(1280, 14));
}

TEST(PopoverPlacementTest, OpensAboveWhenThereIsNoRoomBelow) {
    const QRect abovePanel(0, 0, 1280, 772); // a 28-pixel panel at the bottom
    EXPECT_EQ(popoverGeometry({1250, 786}, popover, abovePanel), QRect(960, 348, 320, 420));
}

TEST(PopoverPlacementTest, UsesTheLastPixelRowBeforeMovingUp) {
    const QRect area(0, 0, 1280, 800);
    // Bottom edge exactly on the last row: fits as is.
    EXPECT_EQ(popoverGeometry({500, 376}, popover, area).y(), 380);
    // One row further down it would stick out; with no room above either, it is pushed up.
    EXPECT_EQ(popoverGeometry({500, 377}, popover, area).y(), 380);
}

TEST(PopoverPlacementTest, LargerThanTheAreaKeepsItsTopLeftVisible) {
    const QRect tiny(10, 20, 300, 200);
    EXPECT_EQ(popoverGeometry({100, 100}, popover, tiny).topLeft(), QPoint(10, 20));
}
