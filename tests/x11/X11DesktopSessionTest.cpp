// The X11 session on a real desktop: a private Xvfb with openbox, windows of our own test client
// and a real GTK application. Checks what the cleanup rules rely on: which processes count as
// ordinary and visible applications, which one is in front, activation events, application
// identity and polite closing through the window manager.

#include "desktop/X11DesktopSession.h"

#include "ChildProcess.h"
#include "FixtureTree.h"
#include "XTestServer.h"
#include "cleanup/FocusTracker.h"
#include "settings/SettingsKeys.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSettings>
#include <gtest/gtest.h>
#include <sstream>
#include <unistd.h>

namespace quelmo::linux_platform {
namespace {

using namespace std::chrono_literals;
using test::ChildProcess;
using test::XTestServer;

// One of our test client's processes with the windows it opened.
struct TestClient {
    std::unique_ptr<ChildProcess> process;
    std::vector<std::string> windows; // "0x..." ids
    qint64 pid() const { return process->pid(); }
};

class X11DesktopSessionTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        if (!XTestServer::toolsInstalled())
            return;
        server_ = new XTestServer;
    }
    static void TearDownTestSuite() {
        delete server_;
        server_ = nullptr;
    }

    void SetUp() override {
        if (!server_)
            GTEST_SKIP() << "Xvfb or openbox is not installed";
        ASSERT_TRUE(server_->ok()) << server_->error();
        tree.write("data/applications/test.alpha.desktop",
                   "[Desktop Entry]\nType=Application\nName=Alpha\nName[ko]=알파\n"
                   "StartupWMClass=AlphaApp\n");
        tree.write("data/applications/test.bravo.desktop",
                   "[Desktop Entry]\nType=Application\nName=Bravo\nStartupWMClass=BravoApp\n");
        tree.write("data/applications/test.charlie.desktop",
                   "[Desktop Entry]\nType=Application\nName=Charlie\nName[ko_KR]=찰리\n");
    }

    std::unique_ptr<X11DesktopSession> connect(QStringList dataDirs = {}) {
        X11DesktopSession::Options options;
        options.dataDirs =
            dataDirs.isEmpty() ? QStringList{tree.path(QStringLiteral("data"))} : dataDirs;
        options.display = server_->display().c_str();
        options.language = [this] { return language; };
        return X11DesktopSession::connect(options);
    }

    TestClient client(std::vector<std::string> args) {
        args.insert(args.begin(), QUELMO_TEST_CLIENT);
        TestClient c;
        c.process =
            std::make_unique<ChildProcess>(args, ChildProcess::Options{server_->environment(), -1});
        const auto line = c.process->readLine(30s);
        EXPECT_TRUE(line && line->rfind("ready", 0) == 0) << "test client did not start";
        if (line) {
            std::istringstream words(*line);
            std::string word;
            words >> word;
            while (words >> word)
                c.windows.push_back(word);
        }
        return c;
    }

    int tool(const std::vector<std::string>& argv) {
        return test::runCommand(argv, 30s, ChildProcess::Options{server_->environment(), -1});
    }

    // Lets the event loop run until `done` holds (twenty seconds at most).
    template <typename Done> static bool spinUntil(Done done) {
        QElapsedTimer timer;
        timer.start();
        while (!done() && timer.elapsed() < 20000)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
        return done();
    }

    static XTestServer* server_;
    test::FixtureTree tree;
    QString language = QStringLiteral("en");
};

XTestServer* X11DesktopSessionTest::server_ = nullptr;

TEST_F(X11DesktopSessionTest, SnapshotCountsOnlyWhatTheUserCanSee) {
    auto session = connect();
    ASSERT_TRUE(session);

    auto normal = client({});
    auto untyped = client({"--type", "untyped"});
    auto minimised = client({"--minimized"});
    auto strip = client({"--size", "300x39"});
    auto justTallEnough = client({"--size", "300x40"});
    auto dock = client({"--type", "dock", "--size", "1280x60"});
    auto elsewhere = client({"--desktop", "1"});
    auto everywhere = client({"--desktop", "0xFFFFFFFF"});
    auto tool = client({"--skip-taskbar"});
    auto dialog = client({"--type", "dialog"});
    auto splash = client({"--type", "splash"});
    // No _NET_WM_PID: the X server's record of the client's process stands in.
    auto anonymous = client({"--no-pid", "--type", "utility"});
    // A pid written on another machine would name an unrelated local process (here: init).
    auto remote = client({"--pid", "1", "--machine", "elsewhere.example"});

    const DesktopSnapshot s = session->snapshot();
    const auto regular = [&](const TestClient& c) { return s.regularPIDs.contains(c.pid()); };
    const auto visible = [&](const TestClient& c) { return s.visiblePIDs.contains(c.pid()); };

    EXPECT_TRUE(regular(normal) && visible(normal));
    EXPECT_TRUE(regular(untyped) && visible(untyped));
    EXPECT_TRUE(regular(minimised));
    EXPECT_FALSE(visible(minimised));
    EXPECT_TRUE(regular(strip));
    EXPECT_FALSE(visible(strip));
    EXPECT_TRUE(visible(justTallEnough));
    EXPECT_FALSE(regular(dock) || visible(dock));
    EXPECT_TRUE(regular(elsewhere));
    EXPECT_FALSE(visible(elsewhere));
    EXPECT_TRUE(visible(everywhere));
    EXPECT_FALSE(regular(tool));
    EXPECT_TRUE(visible(tool));
    EXPECT_FALSE(regular(dialog));
    EXPECT_TRUE(visible(dialog));
    EXPECT_FALSE(regular(splash) || visible(splash));
    EXPECT_TRUE(visible(anonymous));
    EXPECT_FALSE(regular(anonymous)); // a utility window is not a taskbar window
    EXPECT_TRUE(regular(remote));
    EXPECT_FALSE(s.regularPIDs.contains(1));
}

TEST_F(X11DesktopSessionTest, ActivationsReachTheHandlerWithTheApplicationId) {
    auto session = connect();
    ASSERT_TRUE(session);
    auto alpha = client({"--class", "alpha,AlphaApp"});
    auto bravo = client({"--class", "bravo,BravoApp"});
    auto stranger = client({"--class", "stranger,Stranger"}); // no installed entry: no id
    QStringList activations;
    session->setActivationHandler([&](const QString& id) { activations << id; });

    ASSERT_EQ(tool({"xdotool", "windowactivate", "--sync", bravo.windows.at(0)}), 0);
    ASSERT_TRUE(spinUntil([&] { return activations.contains(QStringLiteral("test.bravo")); }));
    EXPECT_EQ(session->frontmostAppId(), QStringLiteral("test.bravo"));
    EXPECT_EQ(session->snapshot().frontmostPID, std::optional<qint64>(bravo.pid()));

    activations.clear();
    ASSERT_EQ(tool({"wmctrl", "-i", "-a", alpha.windows.at(0)}), 0);
    ASSERT_TRUE(spinUntil([&] { return !activations.isEmpty(); }));
    EXPECT_EQ(activations, QStringList{QStringLiteral("test.alpha")});

    // A window without an id is not reported; coming back to alpha afterwards is a new
    // activation.
    ASSERT_EQ(tool({"wmctrl", "-i", "-a", stranger.windows.at(0)}), 0);
    ASSERT_TRUE(spinUntil([&] { return session->snapshot().frontmostPID == stranger.pid(); }));
    EXPECT_FALSE(session->frontmostAppId());
    ASSERT_EQ(tool({"wmctrl", "-i", "-a", alpha.windows.at(0)}), 0);
    ASSERT_TRUE(spinUntil([&] { return activations.size() >= 2; }));
    EXPECT_EQ(activations,
              (QStringList{QStringLiteral("test.alpha"), QStringLiteral("test.alpha")}));
}

// The focus history on top of the real session: seeded with the application in front, then
// kept up to date and stored with every activation.
TEST_F(X11DesktopSessionTest, FocusHistoryFollowsTheDesktop) {
    auto session = connect();
    ASSERT_TRUE(session);
    QSettings().remove(QLatin1String(SettingsKeys::focusLastActive));
    auto alpha = client({"--class", "alpha,AlphaApp"});
    auto bravo = client({"--class", "bravo,BravoApp"});
    ASSERT_EQ(tool({"xdotool", "windowactivate", "--sync", alpha.windows.at(0)}), 0);
    ASSERT_TRUE(
        spinUntil([&] { return session->frontmostAppId() == QStringLiteral("test.alpha"); }));

    const double before = FocusTracker::nowSeconds();
    FocusTracker tracker(session.get());
    EXPECT_TRUE(tracker.lastActiveSeconds(QStringLiteral("test.alpha")));
    EXPECT_FALSE(tracker.lastActiveSeconds(QStringLiteral("test.bravo")));

    ASSERT_EQ(tool({"xdotool", "windowactivate", "--sync", bravo.windows.at(0)}), 0);
    ASSERT_TRUE(spinUntil(
        [&] { return tracker.lastActiveSeconds(QStringLiteral("test.bravo")).has_value(); }));
    EXPECT_GE(*tracker.lastActiveSeconds(QStringLiteral("test.bravo")), before);
    const QVariantMap stored =
        QSettings().value(QLatin1String(SettingsKeys::focusLastActive)).toMap();
    EXPECT_TRUE(stored.contains(QStringLiteral("test.bravo")));
    EXPECT_TRUE(stored.contains(QStringLiteral("test.alpha"))); // the seed went along with it
}

TEST_F(X11DesktopSessionTest, ApplicationIdentityAndLocalisedName) {
    auto session = connect();
    ASSERT_TRUE(session);
    auto declared = client({"--gtk-app-id", "test.charlie", "--class", "charlie,Whatever"});
    auto byClass = client({"--class", "alpha,AlphaApp"});
    auto unknown = client({"--class", "nobody,Nobody"});
    auto hidden = client({"--class", "alpha,AlphaApp", "--minimized"});

    const auto charlie = session->application(declared.pid());
    ASSERT_TRUE(charlie);
    EXPECT_EQ(charlie->appId, QStringLiteral("test.charlie"));
    EXPECT_EQ(charlie->displayName, QStringLiteral("Charlie"));
    language = QStringLiteral("ko"); // the name follows the interface language on every call
    EXPECT_EQ(session->application(declared.pid())->displayName, QStringLiteral("찰리"));
    EXPECT_EQ(session->application(byClass.pid())->displayName, QStringLiteral("알파"));
    EXPECT_EQ(session->application(hidden.pid())->appId, QStringLiteral("test.alpha"));

    // What one pass learnt about the windows is not carried into the next one.
    auto late = client({"--class", "bravo,BravoApp"});
    QCoreApplication::processEvents();
    ASSERT_TRUE(session->application(late.pid()));
    EXPECT_EQ(session->application(late.pid())->appId, QStringLiteral("test.bravo"));

    EXPECT_FALSE(session->application(unknown.pid()));
    EXPECT_FALSE(session->application(getpid())); // no windows, no launch unit
    EXPECT_FALSE(session->application(999999999));
}

TEST_F(X11DesktopSessionTest, CloseRequestsGoToThatProcessWindowsOnly) {
    auto session = connect();
    ASSERT_TRUE(session);
    auto twoWindows = client({"--windows", "2"});
    auto bystander = client({});
    auto stubborn = client({"--ignore-close"});
    ChildProcess windowless({"sleep", "600"});

    EXPECT_TRUE(session->requestClose(twoWindows.pid()));
    EXPECT_EQ(twoWindows.process->readLine(30s), std::optional<std::string>("closing"));
    EXPECT_TRUE(twoWindows.process->waitForExit(30s));

    // Asking is all it does: an application that does not close stays, and nothing follows.
    EXPECT_TRUE(session->requestClose(stubborn.pid()));
    EXPECT_FALSE(stubborn.process->waitForExit(1500ms));

    EXPECT_FALSE(session->requestClose(windowless.pid()));
    EXPECT_TRUE(windowless.running());
    EXPECT_TRUE(bystander.process->running());
    EXPECT_FALSE(session->snapshot().regularPIDs.contains(twoWindows.pid()));
}

// A real GTK application from the distribution: its id, its name in both languages, and a
// close request through the window manager.
TEST_F(X11DesktopSessionTest, MousepadIsRecognisedAndClosesPolitely) {
    auto session = connect({QStringLiteral("/usr/share")});
    ASSERT_TRUE(session);
    if (access("/usr/bin/mousepad", X_OK) != 0)
        GTEST_SKIP() << "mousepad is not installed";

    // A private session bus, so the application neither finds nor leaves a bus behind.
    ChildProcess bus({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1"},
                     ChildProcess::Options{server_->environment(), -1});
    const auto address = bus.readLine(30s);
    ASSERT_TRUE(address);
    auto environment = server_->environment();
    environment.push_back("DBUS_SESSION_BUS_ADDRESS=" + *address);
    ChildProcess mousepad({"mousepad"}, ChildProcess::Options{environment, -1});

    ASSERT_TRUE(spinUntil([&] { return session->snapshot().regularPIDs.contains(mousepad.pid()); }))
        << "no mousepad window appeared";
    const auto record = session->application(mousepad.pid());
    ASSERT_TRUE(record);
    EXPECT_EQ(record->appId, QStringLiteral("org.xfce.mousepad"));
    EXPECT_EQ(record->displayName, QStringLiteral("Mousepad"));
    language = QStringLiteral("ko");
    EXPECT_EQ(session->application(mousepad.pid())->displayName, QStringLiteral("마우스패드"));

    EXPECT_TRUE(session->requestClose(mousepad.pid()));
    EXPECT_TRUE(mousepad.waitForExit(30s)) << "mousepad did not close";
}

} // namespace
} // namespace quelmo::linux_platform
