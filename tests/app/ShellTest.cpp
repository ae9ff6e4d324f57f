#include "app/popover/QuickPopoverSurface.h"
#include "app/shell/AppDelegate.h"
#include "core/settings/LoginItem.h"
#include "support/FakePlatform.h"
#include "support/TempSettings.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPointer>
#include <QQuickItem>
#include <QQuickView>
#include <QThread>
#include <QTimer>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;
using Reason = PopoverSurface::CloseReason;

namespace {

struct FakeStatusItem : StatusItem {
    void setTitle(const QString&) override {}
    void setMenu(const QList<StatusMenuEntry>&) override {}
    QPoint anchorHint() const override { return {}; }
};

struct FakeSurface : PopoverSurface {
    std::function<void()> onShow; // runs where the window would appear
    bool busy = false;
    void showAt(QPoint) override { onShow ? onShow() : void(); }
    void hide() override {}
    bool isBusy() const override { return busy; }
};

struct NoLoginItem : LoginItemService {
    std::optional<QString> apply(bool) override { return QStringLiteral("none here"); }
    bool isEnabled() override { return false; }
};

// The delegate, launched, on stand-ins with two processes; with the real popover window when
// asked (drawn offscreen).
struct Shell {
    FixedProcesses* processes = new FixedProcesses;
    FakeStatusItem* item = nullptr;
    FakeSurface* surface = nullptr;
    std::function<void()> onShow;
    int quits = 0;
    std::unique_ptr<AppDelegate> delegate;

    explicit Shell(bool realWindow = false) {
        TempSettings::clear();
        Platform platform;
        processes->rows = {proc(10, "editor", 5, 300e6), proc(11, "browser", 40, 900e6)};
        platform.processes.reset(processes);
        auto makeItem = [this] { return std::unique_ptr<StatusItem>(item = new FakeStatusItem); };
        auto makeSurface =
            [this, realWindow](SystemMetrics& metrics,
                               PopoverViewState& state) -> std::unique_ptr<PopoverSurface> {
            if (realWindow)
                return std::make_unique<QuickPopoverSurface>(
                    metrics, std::make_unique<NoLoginItem>(), state);
            surface = new FakeSurface;
            surface->onShow = onShow;
            return std::unique_ptr<PopoverSurface>(surface);
        };
        delegate = std::make_unique<AppDelegate>(
            std::move(platform), AppDelegate::Shell{makeItem, makeSurface, [this] { ++quits; }});
        delegate->applicationDidFinishLaunching();
    }

    SystemMetrics& metrics() { return delegate->metrics(); }
    void click(StatusClick::Button button, bool late = false) {
        emit item->clicked({button, {600, 12}, late});
    }
};

void runEventsFor(int ms) {
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

TEST(PopoverTest, AClickRightAfterAFocusLossCloseIsPartOfThatGestureAndLeavesItClosed) {
    qint64 now = 10'000;
    FakeSurface* surface = nullptr;
    Popover popover(
        [&](PopoverViewState&) {
            return std::unique_ptr<PopoverSurface>(surface = new FakeSurface);
        },
        [&] { return now; });
    int closes = 0;
    QObject::connect(&popover, &Popover::didClose, [&] { ++closes; });

    popover.toggle({});
    emit surface->closedByUser(Reason::FocusLost);
    now += Popover::reopenGuardMs - 1;
    popover.toggle({});
    EXPECT_FALSE(popover.isShown());
    now += 1;
    popover.toggle({});
    EXPECT_TRUE(popover.isShown());

    emit surface->closedByUser(Reason::Escape); // a key, not a click: nothing to swallow
    popover.toggle({});
    EXPECT_TRUE(popover.isShown());
    popover.toggle({});
    emit surface->closedByUser(Reason::FocusLost); // late, after the popover closed itself
    popover.toggle({});
    EXPECT_TRUE(popover.isShown());
    EXPECT_EQ(closes, 3);
}

TEST(PopoverTest, AClosedWindowIsReleasedAfterTheDelayButNotWhileOpenReopenedOrMidCut) {
    constexpr int delayMs = 20;
    QPointer<FakeSurface> surface;
    QList<PopoverViewState*> statesGiven;
    Popover popover(
        [&](PopoverViewState& state) {
            statesGiven.append(&state);
            return std::unique_ptr<PopoverSurface>(surface = new FakeSurface);
        },
        Popover::monotonicMs, delayMs);

    popover.show({});
    runEventsFor(3 * delayMs);
    EXPECT_TRUE(surface); // open
    popover.performClose();
    popover.show({}); // reopened within the delay
    runEventsFor(3 * delayMs);
    EXPECT_TRUE(surface);

    emit surface->closedByUser(PopoverSurface::CloseReason::Escape);
    runEventsFor(3 * delayMs);
    EXPECT_FALSE(surface);
    EXPECT_FALSE(popover.hasSurface());

    popover.show({}); // the window is made again, for the same state
    ASSERT_TRUE(surface);
    EXPECT_EQ(statesGiven, QList<PopoverViewState*>(2, &popover.viewState()));
    surface->busy = true; // a cut on its way
    popover.performClose();
    runEventsFor(3 * delayMs);
    ASSERT_TRUE(surface);
    surface->busy = false;
    runEventsFor(3 * delayMs);
    EXPECT_FALSE(surface);
}

TEST(AppDelegateTest, OpeningPollsOnceTheWindowHasDrawnItsFirstFrame) {
    Shell shell;
    EXPECT_FALSE(shell.metrics().pollProcesses());
    EXPECT_EQ(shell.surface, nullptr); // no window (nor QML engine) until the first open
    auto seen = [&] {
        return QStringLiteral("polling %1, snapshots %2, top %3")
            .arg(shell.metrics().pollProcesses() ? "on" : "off")
            .arg(shell.processes->snapshots)
            .arg(shell.metrics().topCPU().size())
            .toStdString();
    };
    std::string atShow; // what the window would see as it appears
    shell.onShow = [&] { atShow = seen(); };
    shell.click(StatusClick::Button::Left);
    EXPECT_TRUE(shell.delegate->popover().isShown());
    EXPECT_EQ(atShow, "polling off, snapshots 0, top 0");
    emit shell.surface->firstFrameShown();
    EXPECT_EQ(seen(), "polling on, snapshots 1, top 2");

    // Closed before its first frame: a frame drawn as it goes does not start polling.
    emit shell.surface->closedByUser(Reason::Escape);
    shell.click(StatusClick::Button::Left);
    emit shell.surface->closedByUser(Reason::Escape);
    emit shell.surface->firstFrameShown();
    EXPECT_EQ(seen(), "polling off, snapshots 1, top 0");
}

TEST(AppDelegateTest, ClosingStopsPollingThenEmptiesTheListsInOrder) {
    Shell shell;
    shell.click(StatusClick::Button::Left);
    emit shell.surface->firstFrameShown();
    auto& m = shell.metrics();
    ASSERT_FALSE(m.topCPU().isEmpty());

    QStringList emptied;
    auto note = [&](const char* what) {
        return [&, what] { emptied << what + QString(m.pollProcesses() ? " polling" : ""); };
    };
    QObject::connect(&m, &SystemMetrics::topCPUChanged, note("topCPU"));
    QObject::connect(&m, &SystemMetrics::topMemChanged, note("topMem"));
    QObject::connect(&m, &SystemMetrics::cleanupCandidatesChanged, note("candidates"));
    emit shell.surface->closedByUser(Reason::FocusLost);
    EXPECT_EQ(emptied.join(", ").toStdString(), "topCPU, topMem, candidates");
    EXPECT_TRUE(m.topCPU().isEmpty() && m.topMem().isEmpty());

    const int snapshots = shell.processes->snapshots;
    m.update();
    EXPECT_EQ(shell.processes->snapshots, snapshots); // closed: no process table on a tick
}

TEST(AppDelegateTest, RightClickOnlyShowsTheOwnMenuWhichQuitsOnCtrlQ) {
    Shell shell;
    shell.click(StatusClick::Button::Left);
    shell.click(StatusClick::Button::Right);
    EXPECT_TRUE(shell.delegate->popover().isShown());
    QMenu* menu = shell.delegate->contextMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->isVisible());
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_EQ(menu->actions()[0]->text(), "Quit Nuvex");
    QKeyEvent ctrlQ(QEvent::KeyPress, Qt::Key_Q, Qt::ControlModifier);
    QCoreApplication::sendEvent(menu, &ctrlQ);
    EXPECT_EQ(shell.quits, 1);

    // Once dismissed the menu is gone, and a left click toggles the popover again.
    menu->hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(shell.delegate->contextMenu(), nullptr);
    shell.click(StatusClick::Button::Left);
    EXPECT_FALSE(shell.delegate->popover().isShown());
}

TEST(AppDelegateTest, AClickTheHostTellsOfLateDoesNotReopenWhatItClosed) {
    // GNOME Shell: pressing the item takes the focus from the open popover, which closes it,
    // and the shell reports the click only after its double-click time.
    Shell shell;
    shell.click(StatusClick::Button::Left, true);
    ASSERT_TRUE(shell.delegate->popover().isShown());
    emit shell.surface->closedByUser(Reason::FocusLost);
    QThread::msleep(Popover::reopenGuardMs + 100); // the shell's wait, longer than a gesture
    shell.click(StatusClick::Button::Left, true);
    EXPECT_FALSE(shell.delegate->popover().isShown());
    shell.click(StatusClick::Button::Left); // a click told at once still opens it
    EXPECT_TRUE(shell.delegate->popover().isShown());
}

TEST(AppDelegateTest, TheSectionsTheUserOpenedOutliveTheReleasedWindow) {
    Shell shell(true);
    const auto view = [] {
        for (QWindow* window : QGuiApplication::topLevelWindows())
            if (auto* quick = qobject_cast<QQuickView*>(window); quick && quick->rootObject())
                return quick->rootObject();
        return static_cast<QQuickItem*>(nullptr);
    };
    shell.delegate->showPopover();
    ASSERT_NE(view(), nullptr);
    auto* card = view()->findChild<QQuickItem*>("cleanupCard");
    ASSERT_NE(card, nullptr);
    QMetaObject::invokeMethod(view(), "toggle", Q_ARG(QVariant, "memory"));
    QMetaObject::invokeMethod(card, "toggleRequested");
    QMetaObject::invokeMethod(card, "criteriaToggled");

    shell.delegate->popover().discardSurface();
    ASSERT_EQ(view(), nullptr);
    shell.delegate->showPopover();
    ASSERT_NE(view(), nullptr);
    card = view()->findChild<QQuickItem*>("cleanupCard");
    ASSERT_NE(card, nullptr);
    EXPECT_EQ(view()->property("expanded").toStringList(), QStringList({"memory", "cleanup"}));
    EXPECT_TRUE(card->property("expanded").toBool());
    EXPECT_TRUE(card->property("showCriteria").toBool());
}
