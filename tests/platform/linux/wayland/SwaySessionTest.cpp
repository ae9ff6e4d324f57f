// Quelmo's desktop source in a real sway session (run by sway_session.py): native Wayland
// clients (foot, and mousepad through GTK's Wayland backend) brought to the front, put away in
// the scratchpad and closed, as the cleanup rules see them.

#include "core/metrics/SystemMetrics.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/wayland/CompositorSession.h"
#include "platform/linux/wayland/ForeignToplevelLink.h"
#include "platform/linux/wayland/WaylandSessions.h"
#include "support/FakePlatform.h"
#include "support/TempSettings.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>
#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

// Lets the event loop run until `done` holds (ten seconds at most).
template <typename Done> bool spinUntil(Done done) {
    for (int i = 0; i < 500 && !done(); ++i) {
        QCoreApplication::processEvents();
        QThread::msleep(20);
    }
    return done();
}

bool sway(const QString& command) {
    QProcess swaymsg;
    swaymsg.start(QStringLiteral("swaymsg"), {command});
    const bool ok = swaymsg.waitForFinished(5000) && swaymsg.exitStatus() == QProcess::NormalExit &&
                    swaymsg.exitCode() == 0;
    if (!ok)
        ADD_FAILURE() << command.toStdString() << ": " << swaymsg.readAll().toStdString();
    return ok;
}

class SwaySessionTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        if (qEnvironmentVariableIsEmpty("SWAYSOCK"))
            return;
        foot = start(QStringLiteral("foot"), {QStringLiteral("sleep"), QStringLiteral("600")});
        QProcessEnvironment gtk = QProcessEnvironment::systemEnvironment();
        gtk.insert(QStringLiteral("GDK_BACKEND"), QStringLiteral("wayland"));
        gtk.insert(QStringLiteral("NO_AT_BRIDGE"), QStringLiteral("1"));
        mousepad = start(QStringLiteral("mousepad"), {}, gtk);
    }
    static void TearDownTestSuite() {
        for (QProcess* client : {foot, mousepad}) {
            if (client && client->state() != QProcess::NotRunning) {
                client->terminate();
                client->waitForFinished(2000);
            }
            delete client;
        }
        foot = mousepad = nullptr;
    }

    static QProcess*
    start(const QString& program, const QStringList& args,
          const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment()) {
        auto* process = new QProcess;
        process->setProcessEnvironment(env);
        process->setStandardOutputFile(QProcess::nullDevice());
        process->setStandardErrorFile(QProcess::nullDevice()); // their chatter is not ours
        process->start(program, args);
        process->waitForStarted();
        return process;
    }

    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("SWAYSOCK"))
            GTEST_SKIP() << "not in a sway session (run through sway_session.py)";
        ASSERT_EQ(sessionKindOf(QProcessEnvironment::systemEnvironment()), SessionKind::Sway);
        session = connectWaylandSession(SessionKind::Sway, QStringLiteral("/"), nullptr);
        ASSERT_TRUE(session);
        ASSERT_TRUE(clientsShow(*session)) << "the clients' windows never showed";
    }

    // Until every client still running is an ordinary application of `desktop`.
    static bool clientsShow(DesktopSession& desktop) {
        return spinUntil([&] {
            const auto regular = desktop.snapshot().regularPIDs;
            const std::vector<QProcess*> running = clients();
            return std::all_of(running.begin(), running.end(), [&](QProcess* client) {
                return client->state() != QProcess::Running ||
                       regular.contains(client->processId());
            });
        });
    }
    static std::vector<QProcess*> clients() { return {foot, mousepad}; }

    static inline QProcess* foot = nullptr;
    static inline QProcess* mousepad = nullptr;
    std::unique_ptr<DesktopSession> session;
};

TEST_F(SwaySessionTest, ActivationsAreRecordedByDesktopEntry) {
    QStringList activated;
    session->setActivationHandler([&](const QString& id) { activated << id; });
    const QString footPid = QString::number(foot->processId());
    const QString mousepadPid = QString::number(mousepad->processId());
    // The terminal brought to the front twice, the editor in between: three activations.
    for (const QString& pid : {footPid, mousepadPid, footPid})
        ASSERT_TRUE(sway(QStringLiteral("[pid=%1] focus").arg(pid)));
    ASSERT_TRUE(spinUntil([&] { return activated.size() >= 3; }))
        << activated.join(u',').toStdString();
    EXPECT_EQ(activated, (QStringList{"foot", "org.xfce.mousepad", "foot"}));
    EXPECT_EQ(session->frontmostAppId(), std::optional<QString>(QStringLiteral("foot")));
    ASSERT_TRUE(spinUntil([&] { return session->snapshot().frontmostPID == foot->processId(); }));

    const auto app = session->application(mousepad->processId());
    ASSERT_TRUE(app);
    EXPECT_EQ(app->appId, QStringLiteral("org.xfce.mousepad"));
    EXPECT_TRUE(app->displayName && !app->displayName->isEmpty());
}

TEST_F(SwaySessionTest, TheScratchpadCountsAsMinimised) {
    const qint64 editor = mousepad->processId();
    const auto visible = [&] { return session->snapshot().visiblePIDs.contains(editor); };
    ASSERT_TRUE(spinUntil(visible));
    ASSERT_TRUE(sway(QStringLiteral("[pid=%1] move scratchpad").arg(editor)));
    ASSERT_TRUE(spinUntil([&] { return !visible(); }));
    const DesktopSnapshot away = session->snapshot();
    EXPECT_TRUE(away.regularPIDs.contains(editor)); // still an ordinary application
    EXPECT_TRUE(away.visiblePIDs.contains(foot->processId()));
    ASSERT_TRUE(sway(QStringLiteral("[pid=%1] scratchpad show").arg(editor)));
    EXPECT_TRUE(spinUntil(visible));
}

// Whatever it uses, the application in front is not offered; a background hog is.
TEST_F(SwaySessionTest, TheApplicationInFrontIsNeverOffered) {
    test::TempSettings::clear();
    ASSERT_TRUE(sway(QStringLiteral("[pid=%1] focus").arg(foot->processId())));
    ASSERT_TRUE(spinUntil([&] { return session->snapshot().frontmostPID == foot->processId(); }));

    Platform platform = makePlatform(); // the session's own sources, chosen from its environment
    platform.model.reset();
    auto* processes = new test::FixedProcesses;
    const QString me = platform.system->userName();
    constexpr double hog = 6.0 * 1024 * 1024 * 1024;
    processes->rows = {test::proc(foot->processId(), QStringLiteral("foot"), 0, hog, me),
                       test::proc(999999, QStringLiteral("hog"), 0, hog - 1, me)};
    platform.processes.reset(processes);
    platform.readProcessesOffThread = false; // the table at once, on this thread
    SystemMetrics hub(std::move(platform));
    hub.setSensitivity(1);
    hub.refreshProcesses();
    QList<qint64> offered;
    for (const CleanupCandidate& c : hub.cleanupCandidates())
        offered << c.proc.id;
    EXPECT_EQ(offered, QList<qint64>{999999});
}

// The same desktop through the foreign-toplevel protocol, which names no processes: they are
// found through the windows' desktop entries. The editor is closed through the protocol.
TEST_F(SwaySessionTest, ForeignToplevelsFindTheirProcessesThroughDesktopEntries) {
    auto link = ForeignToplevelLink::connect();
    ASSERT_TRUE(link) << "sway offers the foreign-toplevel protocol";
    CompositorSession toplevels(std::move(link), {});
    ASSERT_TRUE(clientsShow(toplevels));
    ASSERT_TRUE(sway(QStringLiteral("[pid=%1] focus").arg(foot->processId())));
    ASSERT_TRUE(spinUntil([&] { return toplevels.snapshot().frontmostPID == foot->processId(); }));
    QStringList activated;
    toplevels.setActivationHandler([&](const QString& id) { activated << id; });
    for (const QProcess* client : {mousepad, foot})
        ASSERT_TRUE(sway(QStringLiteral("[pid=%1] focus").arg(client->processId())));
    ASSERT_TRUE(spinUntil([&] { return activated.size() >= 2; }))
        << activated.join(u',').toStdString();
    EXPECT_EQ(activated, (QStringList{"org.xfce.mousepad", "foot"}));
    const DesktopSnapshot seen = toplevels.snapshot();
    EXPECT_EQ(seen.frontmostPID, std::optional<qint64>(foot->processId()));
    EXPECT_TRUE(seen.visiblePIDs.contains(mousepad->processId()));
    const auto editor = toplevels.application(mousepad->processId());
    EXPECT_EQ(editor ? editor->appId : QString(), QStringLiteral("org.xfce.mousepad"));

    test::FakeHandle editorProcess(mousepad->processId());
    ASSERT_TRUE(toplevels.requestClose(editorProcess));
    ASSERT_TRUE(mousepad->waitForFinished(5000));
    EXPECT_EQ(mousepad->exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(foot->state(), QProcess::Running); // only the editor was asked
}

// Runs last: the terminal is asked to close through the compositor, and it quits by itself.
TEST_F(SwaySessionTest, ZClosingAsksTheApplicationToQuit) {
    test::FakeHandle nobody(999999);
    EXPECT_FALSE(session->requestClose(nobody)); // no windows: nothing to ask
    test::FakeHandle terminal(foot->processId());
    ASSERT_TRUE(session->requestClose(terminal));
    ASSERT_TRUE(foot->waitForFinished(5000));
    EXPECT_EQ(foot->exitStatus(), QProcess::NormalExit); // not ended by a signal
    EXPECT_TRUE(
        spinUntil([&] { return !session->snapshot().regularPIDs.contains(foot->processId()); }));
}

} // namespace
} // namespace quelmo::linux_platform
