#include "Popover.h"

#include "ShellFakes.h"

#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

struct PopoverRig {
    FakeSurface* surface = nullptr;
    int surfacesMade = 0;
    qint64 now = 10'000;
    QStringList events;
    Popover popover{[this] {
                        ++surfacesMade;
                        auto made = std::make_unique<FakeSurface>();
                        surface = made.get();
                        surface->onShow = [this] { events << "shown"; };
                        return made;
                    },
                    [this] { return now; }};

    PopoverRig() {
        QObject::connect(&popover, &Popover::willShow, [this] { events << "willShow"; });
        QObject::connect(&popover, &Popover::didClose, [this] { events << "didClose"; });
    }
};

} // namespace

TEST(PopoverTest, MakesItsWindowOnFirstOpenAndAnnouncesBeforeShowing) {
    PopoverRig rig;
    EXPECT_EQ(rig.surfacesMade, 0);
    rig.popover.toggle({500, 10});
    EXPECT_TRUE(rig.popover.isShown());
    EXPECT_EQ(rig.events, QStringList({"willShow", "shown"}));
    EXPECT_EQ(rig.surface->shownAt, QList<QPoint>({{500, 10}}));

    rig.popover.toggle({500, 10});
    EXPECT_FALSE(rig.popover.isShown());
    EXPECT_EQ(rig.surface->hides, 1);
    rig.popover.toggle({700, 10});
    EXPECT_EQ(rig.surfacesMade, 1);
    EXPECT_EQ(rig.events, QStringList({"willShow", "shown", "didClose", "willShow", "shown"}));
}

TEST(PopoverTest, ShowingAgainWhileOpenMovesItWithoutAnnouncingTwice) {
    PopoverRig rig;
    rig.popover.show({100, 10});
    rig.popover.show({900, 10});
    EXPECT_EQ(rig.events.count("willShow"), 1);
    EXPECT_EQ(rig.surface->shownAt.size(), 2);
    rig.popover.performClose();
    rig.popover.performClose();
    EXPECT_EQ(rig.events.count("didClose"), 1);
}

TEST(PopoverTest, ClickRightAfterAFocusLossCloseLeavesItClosed) {
    PopoverRig rig;
    rig.popover.toggle({500, 10});
    rig.surface->closeBy(PopoverSurface::CloseReason::FocusLost);
    EXPECT_FALSE(rig.popover.isShown());
    EXPECT_EQ(rig.events.count("didClose"), 1);

    rig.now += Popover::reopenGuardMs - 1;
    rig.popover.toggle({500, 10});
    EXPECT_FALSE(rig.popover.isShown());

    rig.now += 1;
    rig.popover.toggle({500, 10});
    EXPECT_TRUE(rig.popover.isShown());
}

TEST(PopoverTest, EscapeDoesNotSwallowTheNextClick) {
    PopoverRig rig;
    rig.popover.toggle({500, 10});
    rig.surface->closeBy(PopoverSurface::CloseReason::Escape);
    EXPECT_FALSE(rig.popover.isShown());
    rig.popover.toggle({500, 10});
    EXPECT_TRUE(rig.popover.isShown());
}

TEST(PopoverTest, ALateCloseReportFromTheWindowIsIgnored) {
    PopoverRig rig;
    rig.popover.toggle({500, 10});
    rig.popover.performClose();
    rig.surface->closeBy(PopoverSurface::CloseReason::FocusLost);
    EXPECT_EQ(rig.events.count("didClose"), 1);
    rig.popover.toggle({500, 10}); // no guard armed by the stale report
    EXPECT_TRUE(rig.popover.isShown());
}
