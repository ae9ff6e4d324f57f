// The X11 session on a real desktop: a private Xvfb with openbox, windows of our own test client
// and a real GTK application. Checks what the cleanup rules rely on: which processes count as
// ordinary and visible applications, activations reaching the focus history, application
// identity and polite closing through the window manager.

#include "platform/linux/x11/X11DesktopSession.h"

#include "core/cleanup/FocusTracker.h"
#include "core/settings/SettingsKeys.h"
#include "support/FakePlatform.h"
#include "support/FixtureTree.h"
#include "support/x11/ChildProcess.h"
#include "support/x11/XTestServer.h"

#include <QCoreApplication>
#include <QSettings>
#include <QThread>
#include <cstdlib>
#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

using namespace std::chrono_literals;
using test::ChildProcess;

class X11DesktopSessionTest : public ::testing::Test {
protected:
    // One desktop for the whole suite, stopped when the program ends.
    static test::XTestServer* server() {
        static const auto server =
            test::XTestServer::toolsInstalled() ? std::make_unique<test::XTestServer>() : nullptr;
        return server.get();
    }

    void SetUp() override {
        if (!server())
            GTEST_SKIP() << "Xvfb or openbox is not installed";
        ASSERT_TRUE(server()->ok()) << server()->error();
        tree.write("data/applications/test.alpha.desktop",
                   "[Desktop Entry]\nType=Application\nName=Alpha\nStartupWMClass=AlphaApp\n");
        tree.write("data/applications/test.bravo.desktop",
                   "[Desktop Entry]\nType=Application\nName=Bravo\n");
        // Our own entries first, then the system's, for the real application.
        session = X11DesktopSession::connect(
            {.dataDirs = {tree.path(QStringLiteral("data")), QStringLiteral("/usr/share")},
             .display = server()->display().c_str(),
             .language = [this] { return language; }});
        ASSERT_TRUE(session);
    }

    std::unique_ptr<ChildProcess> client(std::vector<std::string> args) {
        args.insert(args.begin(), QUELMO_TEST_CLIENT);
        auto c =
            std::make_unique<ChildProcess>(args, ChildProcess::Options{server()->environment()});
        EXPECT_EQ(c->readLine(30s), std::optional<std::string>("ready")) << "no test window";
        return c;
    }

    // Runs a command line on the test display; true when it succeeded.
    static bool run(const std::string& command) {
        return std::system(("DISPLAY=" + server()->display() + " " + command).c_str()) == 0;
    }

    // Lets the event loop run until `done` holds (twenty seconds at most).
    template <typename Done> static bool spinUntil(Done done) {
        for (int i = 0; i < 400 && !done(); ++i) {
            QCoreApplication::processEvents();
            QThread::msleep(50);
        }
        return done();
    }

    test::FixtureTree tree;
    QString language = QStringLiteral("en");
    std::unique_ptr<X11DesktopSession> session;
};

TEST_F(X11DesktopSessionTest, WhatCountsAsVisibleAndHowClosingAsks) {
    const auto normal = client({});
    const auto minimised = client({"--state", "minimized"});
    const auto tiny = client({"--size", "300x39"});
    const auto dock = client({"--type", "dock"});
    const auto elsewhere = client({"--desktop", "1"});

    const DesktopSnapshot s = session->snapshot();
    EXPECT_TRUE(s.regularPIDs.contains(normal->pid()) && s.visiblePIDs.contains(normal->pid()));
    for (const ChildProcess* unseen : {minimised.get(), tiny.get(), dock.get(), elsewhere.get()})
        EXPECT_FALSE(s.visiblePIDs.contains(unseen->pid())) << "pid " << unseen->pid();
    // Out of sight is still an ordinary application; a dock is none at all.
    EXPECT_TRUE(s.regularPIDs.contains(minimised->pid()) &&
                s.regularPIDs.contains(elsewhere->pid()));
    EXPECT_FALSE(s.regularPIDs.contains(dock->pid()));

    // Closing goes to every window of that process and to no other, and a process without
    // windows gets nothing. Windows are found by pid, so none is asked once the process pinned
    // for the cut has ended: its pid may be another's by then.
    const auto twoWindows = client({"--windows", "2"});
    ChildProcess windowless({"sleep", "600"});
    test::FakeHandle ended(normal->pid());
    ended.running = [] { return false; };
    EXPECT_FALSE(session->requestClose(ended));
    EXPECT_FALSE(normal->readLine(1s));
    test::FakeHandle pinned(normal->pid());
    EXPECT_TRUE(session->requestClose(pinned));
    EXPECT_EQ(normal->readLine(30s), std::optional<std::string>("closing"));
    EXPECT_TRUE(normal->waitForExit(30s));
    test::FakeHandle pinnedTwo(twoWindows->pid());
    EXPECT_TRUE(session->requestClose(pinnedTwo));
    for (int window = 0; window < 2; ++window)
        EXPECT_EQ(twoWindows->readLine(30s), std::optional<std::string>("closing")) << window;
    EXPECT_TRUE(twoWindows->waitForExit(30s));
    test::FakeHandle pinnedWindowless(windowless.pid());
    EXPECT_FALSE(session->requestClose(pinnedWindowless));
    EXPECT_TRUE(windowless.running() && minimised->running());
}

// The real focus tracker on the session: it starts with the application in front, and every
// activation another program makes is recorded and stored.
TEST_F(X11DesktopSessionTest, ActivationsUpdateTheFocusHistory) {
    QSettings().remove(QLatin1String(SettingsKeys::focusLastActive));
    const auto stored = [] {
        return QSettings().value(QLatin1String(SettingsKeys::focusLastActive)).toMap().keys();
    };
    const QString alphaId = QStringLiteral("test.alpha");
    const QString bravoId = QStringLiteral("test.bravo");
    const auto alpha = client({"--class", "alpha,AlphaApp"});
    const auto bravo = client({"--gtk-app-id", "test.bravo", "--class", "bravo,Bravo"});
    const auto stranger = client({"--class", "stranger,Stranger"}); // no installed entry: no id
    ASSERT_TRUE(run("xdotool search --classname alpha windowactivate --sync"));
    ASSERT_TRUE(spinUntil([&] { return session->frontmostAppId() == alphaId; }));

    FocusTracker tracker(session.get());
    const auto seeded = tracker.lastActiveSeconds(alphaId);
    ASSERT_TRUE(seeded);
    ASSERT_TRUE(run("wmctrl -x -a bravo.Bravo"));
    ASSERT_TRUE(spinUntil([&] { return tracker.lastActiveSeconds(bravoId).has_value(); }));
    const auto bravoFirst = tracker.lastActiveSeconds(bravoId);
    EXPECT_EQ(stored(), (QStringList{alphaId, bravoId})); // the seed went along with it

    // A window without an id leaves no trace; coming back to bravo after it is a new activation.
    ASSERT_TRUE(run("xdotool search --classname stranger windowactivate --sync"));
    ASSERT_TRUE(spinUntil([&] { return session->snapshot().frontmostPID == stranger->pid(); }));
    EXPECT_FALSE(session->frontmostAppId());
    ASSERT_TRUE(run("wmctrl -x -a bravo.Bravo"));
    ASSERT_TRUE(spinUntil([&] { return tracker.lastActiveSeconds(bravoId) > bravoFirst; }));
    EXPECT_EQ(stored(), (QStringList{alphaId, bravoId}));
}

// Our own popover taking the focus: the application the user was working in stays in front (and
// so is never offered for cutting), and nothing counts as an activation until another program
// takes the focus. The "popover" here is a test window whose process the session takes as its own.
TEST_F(X11DesktopSessionTest, OurOwnWindowTakingTheFocusLeavesTheApplicationInFront) {
    const auto alpha = client({"--class", "alpha,AlphaApp"});
    const auto bravo = client({"--gtk-app-id", "test.bravo", "--class", "bravo,Bravo"});
    tree.write("data/applications/test.quelmo.desktop",
               "[Desktop Entry]\nType=Application\nName=Quelmo\n");
    const auto popover = client({"--gtk-app-id", "test.quelmo", "--class", "popover,Popover"});
    session = X11DesktopSession::connect({.dataDirs = {tree.path(QStringLiteral("data"))},
                                          .display = server()->display().c_str(),
                                          .language = [this] { return language; },
                                          .ownPid = popover->pid()});
    ASSERT_TRUE(session);
    QStringList activations;
    session->setActivationHandler([&](const QString& id) { activations << id; });

    ASSERT_TRUE(run("xdotool search --classname alpha windowactivate --sync"));
    ASSERT_TRUE(spinUntil([&] { return session->snapshot().frontmostPID == alpha->pid(); }));
    activations.clear();
    for (int opening = 0; opening < 2; ++opening) {
        ASSERT_TRUE(run("xdotool search --classname popover windowactivate --sync"));
        for (int i = 0; i < 10; ++i) { // let every focus event arrive
            QCoreApplication::processEvents();
            QThread::msleep(50);
        }
        EXPECT_EQ(session->snapshot().frontmostPID, std::optional<qint64>(alpha->pid()));
        EXPECT_EQ(session->frontmostAppId(), std::optional<QString>(QStringLiteral("test.alpha")));
        ASSERT_TRUE(run("xdotool search --classname alpha windowactivate --sync"));
    }
    EXPECT_FALSE(activations.contains(QStringLiteral("test.quelmo")));

    // Another application taking the focus from the popover is in front at once.
    ASSERT_TRUE(run("xdotool search --classname popover windowactivate --sync"));
    ASSERT_TRUE(run("wmctrl -x -a bravo.Bravo"));
    ASSERT_TRUE(spinUntil([&] { return session->snapshot().frontmostPID == bravo->pid(); }));
    ASSERT_TRUE(spinUntil([&] { return activations.contains(QStringLiteral("test.bravo")); }));
    EXPECT_FALSE(activations.contains(QStringLiteral("test.quelmo")));
}

// An application's id is remembered per process, and a later process that reuses the pid is a
// new one. Read here from the systemd unit in a copied /proc.
TEST_F(X11DesktopSessionTest, ARememberedApplicationIsForgottenWhenItsPidIsReused) {
    const auto startAt = [this](const char* startTime, const char* unit) {
        tree.write("proc/777/stat", QByteArray("777 (app) S 1 1 1 0 -1 4194560 120 0 3 0 0 0 0 "
                                               "0 20 0 1 0 ") +
                                        startTime + " 10485760 3\n");
        tree.write("proc/777/cgroup", QByteArray("0::/user.slice/user-1000.slice/user@1000."
                                                 "service/app.slice/") +
                                          unit + "\n");
    };
    session = X11DesktopSession::connect({.root = tree.root(),
                                          .dataDirs = {tree.path(QStringLiteral("data"))},
                                          .display = server()->display().c_str(),
                                          .language = [this] { return language; }});
    ASSERT_TRUE(session);
    const auto idOf777 = [this] { return session->application(777).value_or(AppRecord{}).appId; };

    startAt("5000", "app-test.alpha-1.scope");
    EXPECT_EQ(idOf777(), QStringLiteral("test.alpha"));
    startAt("5000", "app-test.bravo-2.scope"); // the same process: its id is remembered
    EXPECT_EQ(idOf777(), QStringLiteral("test.alpha"));
    startAt("6000", "app-test.bravo-2.scope"); // a later process with the same pid
    EXPECT_EQ(idOf777(), QStringLiteral("test.bravo"));
}

} // namespace
} // namespace quelmo::linux_platform
