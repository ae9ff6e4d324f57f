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
