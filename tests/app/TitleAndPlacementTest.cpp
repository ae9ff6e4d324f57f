#include "app/popover/PopoverPlacement.h"
#include "app/tray/StatusTitle.h"

#include <gtest/gtest.h>
#include <limits>

using namespace quelmo;

TEST(StatusTitleTest, WholePercentsWithHalvesRoundedAwayFromZero) {
    const struct {
        double cpu, mem;
        const char* title;
    } rows[] = {{0.234, 0.617, "23% 62%"},
                {0.125, 0.1249, "13% 12%"},
                {0.005, 0.0049, "1% 0%"},
                {1.0, std::numeric_limits<double>::quiet_NaN(), "100% 0%"}};
    for (const auto& row : rows)
        EXPECT_EQ(statusTitle(row.cpu, row.mem), row.title);
}

TEST(PopoverPlacementTest, HangsCentredUnderTheClickAndStaysInsideTheArea) {
    const QSize size{320, 420};
    const QRect belowTopPanel(0, 28, 1280, 772), aboveBottomPanel(0, 0, 1280, 772);
    const QRect tall(0, 0, 1280, 1000);
    const struct {
        QPoint anchor;
        QRect available;
        QPoint topLeft;
    } rows[] = {
        {{600, 14}, belowTopPanel, {440, 28}}, // a click in the panel: just below it
        {{600, 100}, tall, {440, 104}},        // otherwise a small gap under the point
        {{1270, 14}, belowTopPanel, {960, 28}},
        {{10, 14}, belowTopPanel, {0, 28}},
        {{1300, 10}, QRect(1280, 0, 1920, 1080), {1280, 14}}, // a second screen's own edges
        {{1250, 786}, aboveBottomPanel, {960, 348}},          // no room below: above the point
        {{500, 576}, tall, {340, 580}},                       // bottom edge on the last row
        {{500, 577}, tall, {340, 153}},                       // one row lower: above instead
        {{100, 100}, QRect(10, 20, 300, 200), {10, 20}},      // too big: its top-left stays visible
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(popoverGeometry(row.anchor, size, row.available), QRect(row.topLeft, size));
    }
}

TEST(PopoverPlacementTest, WindowReachesTowardsTheTallestTheContentMayGrow) {
    const QRect belowTopPanel(0, 28, 1280, 772), aboveBottomPanel(0, 0, 1280, 772);

    // Under a top panel: content at the window's top, the window as tall as allowed.
    const PopoverFrame below = popoverFrame({600, 14}, 320, 420, 712, belowTopPanel);
    EXPECT_EQ(below.window, QRect(440, 28, 320, 712));
    EXPECT_FALSE(below.contentAtBottom);
    EXPECT_EQ(below.contentArea(420), QRect(0, 0, 320, 420));
    EXPECT_TRUE(below.fits(712));
    EXPECT_FALSE(below.fits(713));

    // Above a bottom panel: the content's bottom stays just above the click as it grows.
    const PopoverFrame above = popoverFrame({1250, 786}, 320, 420, 712, aboveBottomPanel);
    EXPECT_EQ(above.window, QRect(960, 56, 320, 712));
    EXPECT_TRUE(above.contentAtBottom);
    EXPECT_EQ(above.contentArea(420), QRect(0, 292, 320, 420));
    EXPECT_EQ(above.window.top() + above.contentArea(500).top() + 500, 786 - 4 - 14);

    // A click low on a screen without panels: the room below ends at the screen's edge.
    const PopoverFrame low = popoverFrame({500, 300}, 320, 300, 940, QRect(0, 0, 1280, 1000));
    EXPECT_EQ(low.window, QRect(340, 304, 320, 696));

    // Content taller than the area: the window is the content's size, pinned to the top-left.
    const PopoverFrame tooBig = popoverFrame({100, 100}, 320, 420, 380, QRect(10, 20, 300, 200));
    EXPECT_EQ(tooBig.window, QRect(10, 20, 320, 420));
}

TEST(PopoverPlacementTest, DevicePointsMapToLogicalOnTheirOwnScreen) {
    // A 1× screen of 1920×1080 device pixels seen at scale 2, and a second one to its right
    // (Qt keeps a screen's top-left corner in device pixels).
    const QList<ScreenSpace> screens = {{QRect(0, 0, 960, 540), 2.0},
                                        {QRect(1920, 0, 1280, 800), 1.0}};
    EXPECT_EQ(logicalFromDevice({800, 14}, screens), QPoint(400, 7));
    EXPECT_EQ(logicalFromDevice({1919, 1079}, screens), QPoint(959, 539));
    EXPECT_EQ(logicalFromDevice({2000, 30}, screens), QPoint(2000, 30));
    EXPECT_EQ(logicalFromDevice({1920 + 1280, 0}, screens), std::nullopt);
    EXPECT_EQ(deviceFromLogical({400, 7}, screens), QPoint(800, 14));
    EXPECT_EQ(deviceFromLogical({2000, 30}, screens), QPoint(2000, 30));

    // An item at x=800 on the scaled screen: the popover hangs centred under x=400 (logical),
    // so it covers device pixels 480–1120 around the item.
    const auto anchor = clickAnchor({800, 28}, QPoint(401, 8), std::nullopt, screens);
    EXPECT_EQ(anchor, QPoint(400, 14));
    EXPECT_EQ(popoverGeometry(anchor, {320, 400}, screens[0].geometry).left(), 240);
}

TEST(PopoverPlacementTest, AClickPointFarFromThePointerIsNotTrusted) {
    const QList<ScreenSpace> screens = {{QRect(0, 0, 1280, 800), 1.0}};
    const QPoint pointer(1200, 12);
    const QRect item(1190, 2, 24, 24);
    const struct {
        QPoint reported;
        std::optional<QPoint> pointer;
        std::optional<QRect> item;
        QPoint anchor;
    } rows[] = {
        {{1202, 28}, pointer, item, {1202, 28}},            // the host's point, by the pointer
        {{1190, 2}, pointer, item, {1190, 2}},              // the item's corner, still near
        {{0, 25}, pointer, item, pointer},                  // relative to the host's widget
        {{8, 14}, pointer, std::nullopt, pointer},          // (and without an item geometry)
        {{5000, 5000}, pointer, item, pointer},             // on no screen at all
        {{8, 14}, std::nullopt, item, {1201, 25}},          // no pointer: the item's bottom centre
        {{640, 28}, std::nullopt, std::nullopt, {640, 28}}, // nothing else: the host's point
        {{8, 14}, QPoint(-50, -50), std::nullopt, {8, 14}}, // a pointer on no screen is unknown
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        EXPECT_EQ(clickAnchor(row.reported, row.pointer, row.item, screens), row.anchor);
    }
}

TEST(PopoverPlacementTest, AnItemAnchorsThePopoverOnTheSideAwayFromItsPanel) {
    const QList<ScreenSpace> screens = {{QRect(0, 0, 1280, 800), 1.0},
                                        {QRect(1280, 0, 1280, 800), 1.0}};
    EXPECT_EQ(itemAnchor(QRect(1250, 2, 24, 24), screens), QPoint(1261, 25));    // top panel
    EXPECT_EQ(itemAnchor(QRect(1250, 774, 24, 24), screens), QPoint(1261, 774)); // bottom
    EXPECT_EQ(itemAnchor(QRect(2500, 774, 24, 24), screens), QPoint(2511, 774)); // 2nd screen
    // A tray that reserves no room: the popover still starts below the icon, not over it.
    const QRect available(0, 0, 1280, 800);
    const QRect atTop =
        popoverGeometry(itemAnchor(QRect(1250, 2, 24, 24), screens), QSize(320, 400), available);
    EXPECT_GE(atTop.top(), 26);
    const QRect atBottom =
        popoverGeometry(itemAnchor(QRect(1250, 774, 24, 24), screens), QSize(320, 400), available);
    EXPECT_LT(atBottom.bottom(), 774);
}
