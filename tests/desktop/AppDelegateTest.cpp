#include "AppDelegate.h"

#include "FakePlatform.h"
#include "ShellFakes.h"
#include "TempSettings.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

struct Shell {
    ScriptedCpuTicks* cpu = new ScriptedCpuTicks;
    FixedProcesses* processes = new FixedProcesses;
    FakeStatusItem* item = nullptr;
    FakeSurface* surface = nullptr;
    int quits = 0;
    std::unique_ptr<AppDelegate> delegate;

    Shell() {
        TempSettings::clear();
        Platform platform;
        platform.cpuTicks.reset(cpu);
        auto* memory = new FixedMemory;
        memory->pages = MemoryPages{100000, 20000, 50000, 30000, 0, 16384}; // 30.5 % used
        platform.memory.reset(memory);
        processes->rows = {proc(10, "editor", 5, 300e6), proc(11, "browser", 40, 900e6)};
        platform.processes.reset(processes);
        AppDelegate::Shell parts{[this] {
                                     auto made = std::make_unique<FakeStatusItem>();
                                     item = made.get();
                                     return made;
                                 },
                                 [this](SystemMetrics&) {
                                     auto made = std::make_unique<FakeSurface>();
                                     surface = made.get();
                                     return made;
                                 },
                                 [this] { ++quits; }};
        delegate = std::make_unique<AppDelegate>(std::move(platform), std::move(parts));
    }

    SystemMetrics& metrics() { return delegate->metrics(); }
    void leftClick() { item->click(StatusClick::Button::Left); }
    void rightClick() { item->click(StatusClick::Button::Right); }
};

} // namespace

TEST(AppDelegateTest, LaunchShowsTheTitleAtOnceAndFollowsEveryTick) {
    Shell shell;
    EXPECT_EQ(shell.delegate->statusItem(), nullptr);
    shell.cpu->script = {std::vector<CpuTicks>{{100, 50, 800, 50}},
                         std::vector<CpuTicks>{{160, 70, 900, 70}}};
    shell.delegate->applicationDidFinishLaunching();
    ASSERT_NE(shell.item, nullptr);
    EXPECT_EQ(shell.item->titles, QStringList({"", "0% 31%"}));

    shell.metrics().update();
    EXPECT_EQ(shell.item->titles.last(), "50% 31%");
    ASSERT_EQ(shell.item->menu.size(), 1);
    EXPECT_EQ(shell.item->menu[0].title, "Quit Nuvex");
    EXPECT_EQ(shell.item->menu[0].shortcut, QKeySequence(Qt::CTRL | Qt::Key_Q));
}

TEST(AppDelegateTest, OpeningPollsAndRefreshesBeforeTheWindowShows) {
    Shell shell;
    shell.delegate->applicationDidFinishLaunching();
    EXPECT_FALSE(shell.metrics().pollProcesses());
    EXPECT_EQ(shell.surface, nullptr); // no window until the first open

    bool pollingAtShow = false;
    int snapshotsAtShow = -1;
    qsizetype topAtShow = -1;
    shell.leftClick();
    ASSERT_NE(shell.surface, nullptr);
    shell.delegate->popover().performClose();
    shell.surface->onShow = [&] {
        pollingAtShow = shell.metrics().pollProcesses();
        snapshotsAtShow = shell.processes->snapshots;
        topAtShow = shell.metrics().topCPU().size();
    };
    shell.processes->snapshots = 0;
    shell.leftClick();
    EXPECT_TRUE(pollingAtShow);
    EXPECT_EQ(snapshotsAtShow, 1);
    EXPECT_EQ(topAtShow, 2);
    EXPECT_EQ(shell.surface->shownAt.last(), QPoint(600, 12));
}

TEST(AppDelegateTest, ClosingStopsPollingThenEmptiesTheListsInOrder) {
    Shell shell;
    shell.delegate->applicationDidFinishLaunching();
    shell.leftClick();
    ASSERT_FALSE(shell.metrics().topCPU().isEmpty());

    QStringList emptied;
    bool pollingWhenEmptied = true;
    auto note = [&](const char* what) {
        return [&, what] {
            emptied << what;
            pollingWhenEmptied = shell.metrics().pollProcesses();
        };
    };
    auto& m = shell.metrics();
    QObject::connect(&m, &SystemMetrics::topCPUChanged, note("topCPU"));
    QObject::connect(&m, &SystemMetrics::topMemChanged, note("topMem"));
    QObject::connect(&m, &SystemMetrics::cleanupCandidatesChanged, note("candidates"));

    // Closed by the window itself (focus lost) rather than by a click: same bookkeeping.
    shell.surface->closeBy(PopoverSurface::CloseReason::FocusLost);
    EXPECT_EQ(emptied, QStringList({"topCPU", "topMem", "candidates"}));
    EXPECT_FALSE(pollingWhenEmptied);
    EXPECT_TRUE(m.topCPU().isEmpty());
    EXPECT_TRUE(m.topMem().isEmpty());

    const int snapshots = shell.processes->snapshots;
    m.update();
    EXPECT_EQ(shell.processes->snapshots, snapshots); // closed: no process table on a tick
}

TEST(AppDelegateTest, RightClickOnlyShowsTheMenuAndLeftClicksWorkAfterIt) {
    Shell shell;
    shell.delegate->applicationDidFinishLaunching();
    shell.leftClick();
    ASSERT_TRUE(shell.delegate->popover().isShown());

    shell.rightClick();
    EXPECT_TRUE(shell.delegate->popover().isShown());
    QMenu* menu = shell.delegate->contextMenu();
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->isVisible());
    ASSERT_EQ(menu->actions().size(), 1);
    EXPECT_EQ(menu->actions()[0]->text(), "Quit Nuvex");
    EXPECT_EQ(menu->actions()[0]->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));

    menu->hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(shell.delegate->contextMenu(), nullptr);
    shell.leftClick();
    EXPECT_FALSE(shell.delegate->popover().isShown());
}

TEST(AppDelegateTest, QuitComesFromTheOwnMenuShortcutAndFromTheHostMenu) {
    Shell shell;
    shell.delegate->applicationDidFinishLaunching();
    shell.rightClick();
    QKeyEvent other(QEvent::KeyPress, Qt::Key_W, Qt::ControlModifier);
    QCoreApplication::sendEvent(shell.delegate->contextMenu(), &other);
    EXPECT_EQ(shell.quits, 0);
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Q, Qt::ControlModifier);
    QCoreApplication::sendEvent(shell.delegate->contextMenu(), &press);
    EXPECT_EQ(shell.quits, 1);

    emit shell.item->menuEntryTriggered(1);
    EXPECT_EQ(shell.quits, 1);
    emit shell.item->menuEntryTriggered(0);
    EXPECT_EQ(shell.quits, 2);
}

TEST(AppDelegateTest, AnotherLaunchOpensThePopoverUnderTheItem) {
    Shell shell;
    shell.delegate->applicationDidFinishLaunching();
    shell.delegate->showPopover();
    shell.delegate->showPopover();
    EXPECT_TRUE(shell.delegate->popover().isShown());
    EXPECT_EQ(shell.surface->shownAt, QList<QPoint>({{1200, 10}, {1200, 10}}));
}
