// The compositor side of the desktop on recorded replies: sway's window tree and events as the
// i3 IPC carries them, the rules that turn a window list into what the cleanup rules see, and
// the session's activations, application names and polite close over a scripted compositor.

#include "platform/linux/wayland/CompositorSession.h"

#include "platform/linux/wayland/CompositorRules.h"
#include "platform/linux/wayland/EntryProcesses.h"
#include "platform/linux/wayland/I3IpcProtocol.h"
#include "support/FakePlatform.h"
#include "support/FixtureTree.h"

#include <QFile>
#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

QByteArray recorded(const char* name) {
    QFile file(QStringLiteral(QUELMO_FIXTURES_DIR "/") + QLatin1String(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

CompositorWindow window(const char* handle, std::optional<qint64> pid, const char* appId) {
    CompositorWindow w;
    w.handle = QString::fromUtf8(handle);
    w.pid = pid;
    w.appId = QString::fromUtf8(appId);
    w.onScreen = true;
    return w;
}

TEST(I3Ipc, MessagesAreFramedAndReadBackInAnyChunks) {
    const QByteArray stream = i3ipc::encode(i3ipc::getTree, "{}") +
                              i3ipc::encode(i3ipc::windowEvent, R"({"change":"focus"})");
    QByteArray buffer;
    bool broken = false;
    std::vector<i3ipc::Message> read;
    for (const char byte : stream) { // one byte at a time, as slowly as a socket may deliver
        buffer.append(byte);
        while (auto message = i3ipc::takeMessage(buffer, broken))
            read.push_back(*message);
    }
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[0].type, i3ipc::getTree);
    EXPECT_EQ(read[1].payload, QByteArray(R"({"change":"focus"})"));
    EXPECT_FALSE(broken);
    EXPECT_TRUE(buffer.isEmpty());

    for (QByteArray bad :
         {QByteArray("HTTP/1.1 400"), QByteArray("i3-ipc\xff\xff\xff\x7f\0\0\0\0", 14)}) {
        broken = false;
        EXPECT_FALSE(i3ipc::takeMessage(bad, broken));
        EXPECT_TRUE(broken) << bad.toStdString();
    }
}

TEST(I3Ipc, TheTreeGivesEveryWindowWithWhatTheRulesNeed) {
    const std::vector<CompositorWindow> windows =
        i3ipc::windowsOfTree(recorded("sway/get_tree.json"));
    ASSERT_EQ(windows.size(), 3u);
    const CompositorWindow& editor = windows[0]; // put away in the scratchpad
    EXPECT_EQ(editor.appId, QStringLiteral("mousepad"));
    EXPECT_EQ(editor.pid, std::optional<qint64>(22119));
    EXPECT_TRUE(editor.minimised);
    EXPECT_FALSE(editor.onScreen);
    const CompositorWindow& terminal = windows[1]; // in front, in a tabbed container
    EXPECT_EQ(terminal.handle, QStringLiteral("5"));
    EXPECT_TRUE(terminal.focused && terminal.onScreen && !terminal.xwayland);
    EXPECT_EQ(terminal.height, std::optional<double>(695));
    const CompositorWindow& eyes = windows[2]; // a floating XWayland window
    EXPECT_TRUE(eyes.xwayland && eyes.onScreen && eyes.ordinary);
    EXPECT_EQ(eyes.appId, QStringLiteral("XEyes"));
    EXPECT_EQ(eyes.height, std::optional<double>(102));

    EXPECT_TRUE(i3ipc::windowsOfTree("not json").empty());
    EXPECT_TRUE(i3ipc::windowsOfTree(R"({"nodes":[{"nodes":7}]})").empty());

    const auto focus = i3ipc::parseWindowEvent(recorded("sway/window_focus_event.json"));
    ASSERT_TRUE(focus);
    EXPECT_EQ(focus->change, QStringLiteral("focus"));
    EXPECT_EQ(focus->window.pid, std::optional<qint64>(22118));
    EXPECT_EQ(i3ipc::closeCommand(focus->window), QByteArray("[con_id=5] kill"));
    EXPECT_EQ(i3ipc::closeCommand(window("5] exec rm -rf ~ [", 1, "")), QByteArray());
}

TEST(CompositorRules, SummarizeSeparatesOrdinaryVisibleAndFrontmost) {
    std::vector<CompositorWindow> w = {window("a", 10, "x"), window("b", 20, "x"),
                                       window("c", 30, "x"), window("d", 40, "x"),
                                       window("e", 50, "x"), window("f", 60, "x")};
    w[1].minimised = true;   // 20: put away
    w[2].onScreen = false;   // 30: on another workspace, or a hidden tab
    w[3].height = 39;        // 40: a strip
    w[4].ordinary = false;   // 50: a panel
    w[5].skipTaskbar = true; // 60: visible, but not an application of the taskbar
    w[5].height = 40;
    w[0].focused = true;
    w.push_back(window("g", std::nullopt, "no-pid"));
    DesktopSnapshot s = summarizeWindows(w, 4242, std::nullopt);
    EXPECT_EQ(s.regularPIDs, (QSet<qint64>{10, 20, 30, 40}));
    EXPECT_EQ(s.visiblePIDs, (QSet<qint64>{10, 60}));
    EXPECT_EQ(s.frontmostPID, std::optional<qint64>(10));

    // Our own popover in front: the application in front before it stays there.
    w[0].focused = false;
    w.push_back(window("popover", 4242, "quelmo"));
    w.back().focused = true;
    EXPECT_EQ(summarizeWindows(w, 4242, 30).frontmostPID, std::optional<qint64>(30));
    EXPECT_FALSE(summarizeWindows(w, 4242, std::nullopt).frontmostPID);
}

TEST(CompositorRules, ApplicationIdsNameTheirDesktopEntries) {
    test::FixtureTree tree;
    tree.write("applications/org.xfce.mousepad.desktop",
               "[Desktop Entry]\nType=Application\nName=Mousepad\n");
    tree.write("applications/foot.desktop", "[Desktop Entry]\nType=Application\nName=Foot\n");
    tree.write("applications/org.gimp.GIMP.desktop",
               "[Desktop Entry]\nType=Application\nName=GIMP\nStartupWMClass=Gimp-2.10\n");
    DesktopEntryIndex index({tree.path(".")});
    const auto id = [&](const char* appId, bool xwayland = false) {
        CompositorWindow w = window("", 1, appId);
        w.xwayland = xwayland;
        return desktopEntryIdOf(w, index).value_or(QStringLiteral("none"));
    };
    EXPECT_EQ(id("foot"), QStringLiteral("foot"));
    EXPECT_EQ(id("mousepad"), QStringLiteral("org.xfce.mousepad"));    // by the entry's last part
    EXPECT_EQ(id("Gimp-2.10", true), QStringLiteral("org.gimp.GIMP")); // by the window class
    EXPECT_EQ(id("com.example.Uninstalled"), QStringLiteral("com.example.Uninstalled"));
    EXPECT_EQ(id("XEyes", true), QStringLiteral("none")); // an X11 class names no entry
    EXPECT_EQ(id(""), QStringLiteral("none"));
}

// For compositors that name no process: the launch unit first, else the entry's program; and
// several instances of one application cannot be told apart.
TEST(EntryProcesses, AnEntryStandsForItsLaunchedProcessesElseItsProgram) {
    const auto entry = [](const char* exec, const char* tryExec = "") {
        DesktopEntry e;
        e.values.insert(QStringLiteral("Exec"), QString::fromUtf8(exec));
        if (*tryExec)
            e.values.insert(QStringLiteral("TryExec"), QString::fromUtf8(tryExec));
        return programOfEntry(e);
    };
    EXPECT_EQ(entry("mousepad %U"), QStringLiteral("mousepad"));
    EXPECT_EQ(entry("env GDK_BACKEND=x11 LANG=C /opt/app/bin/tool --new"), QStringLiteral("tool"));
    EXPECT_EQ(entry("\"/opt/My App/run\" %f"), QStringLiteral("run"));
    EXPECT_EQ(entry("launcher", "/usr/bin/real"), QStringLiteral("real"));
    EXPECT_EQ(entry(""), QString());

    const std::vector<LaunchedProcess> running = {
        {1, QStringLiteral("foot"), false, QStringLiteral("foot"),
         QStringLiteral("app-foot-1.scope")},
        {2, QStringLiteral("foot"), true, QStringLiteral("make"),
         QStringLiteral("app-foot-1.scope")},
        {3, std::nullopt, false, QStringLiteral("mousepad"), QStringLiteral("session-2.scope")},
        {4, std::nullopt, false, QStringLiteral("mousepad"), QStringLiteral("session-2.scope")},
        {5, std::nullopt, false, QStringLiteral("foot"), QStringLiteral("session-2.scope")}};
    EXPECT_EQ(processesOfEntry("foot", "foot", running), QSet<qint64>{1}); // launched wins
    EXPECT_EQ(processesOfEntry("org.xfce.mousepad", "mousepad", running), (QSet<qint64>{3, 4}));
    EXPECT_TRUE(processesOfEntry("gimp", "gimp", running).isEmpty());
    EXPECT_TRUE(isOneInstance({1}, running));
    EXPECT_TRUE(isOneInstance({1, 2}, running));  // one launch unit
    EXPECT_FALSE(isOneInstance({3, 4}, running)); // two programs of the login session
    EXPECT_FALSE(isOneInstance({1, 5}, running));
}

// A compositor whose windows, focus changes and close requests the test sets and reads.
struct ScriptedCompositor : CompositorLink {
    std::vector<CompositorWindow> list;
    QStringList closed;
    const std::vector<CompositorWindow>& windows() const override { return list; }
    bool close(const CompositorWindow& w) override {
        closed << w.handle;
        return true;
    }
    void focus(const CompositorWindow& w) { windowFocused(w); }
};

TEST(CompositorSession, ActivationsNamesAndPoliteCloseGoThroughTheCompositor) {
    test::FixtureTree tree;
    tree.write("data/applications/foot.desktop",
               "[Desktop Entry]\nType=Application\nName=Foot\nName[ko]=풋\n");
    tree.write("proc/30/cgroup", "0::/user.slice/app.slice/app-org.gnome.Calculator-3.scope\n");
    auto* compositor = new ScriptedCompositor;
    compositor->list = {window("1", 10, "foot"), window("2", 10, "foot"),
                        window("3", 30, "calculator"), window("4", 4242, "quelmo")};
    compositor->list[0].focused = true;
    QString language = QStringLiteral("ko");
    CompositorSession session(
        std::unique_ptr<CompositorLink>(compositor),
        {.root = tree.path("."), .dataDirs = {tree.path("data")}, .ownPid = 4242, .language = [&] {
             return language;
         }});
    QStringList activated;
    session.setActivationHandler([&](const QString& id) { activated << id; });

    compositor->focus(compositor->list[2]); // the launch unit names it, not its window
    compositor->focus(compositor->list[3]); // our own popover: not an activation
    compositor->focus(compositor->list[0]);
    EXPECT_EQ(activated, (QStringList{"org.gnome.Calculator", "foot"}));

    const auto foot = session.application(10);
    ASSERT_TRUE(foot);
    EXPECT_EQ(foot->displayName, std::optional<QString>(QStringLiteral("풋")));
    EXPECT_FALSE(session.application(99));
    EXPECT_EQ(session.frontmostAppId(), std::optional<QString>(QStringLiteral("foot")));

    // While the popover has the focus, the terminal stays in front.
    compositor->list[0].focused = false;
    compositor->list[3].focused = true;
    compositor->focus(compositor->list[3]);
    EXPECT_EQ(session.snapshot().frontmostPID, std::optional<qint64>(10));
    EXPECT_EQ(session.frontmostAppId(), std::optional<QString>(QStringLiteral("foot")));

    test::FakeHandle ended(10); // the pinned process has ended: its pid may be another's
    ended.running = [] { return false; };
    EXPECT_FALSE(session.requestClose(ended));
    EXPECT_TRUE(compositor->closed.isEmpty());
    test::FakeHandle terminal(10);
    EXPECT_TRUE(session.requestClose(terminal)); // every window of the process is asked
    test::FakeHandle windowless(77);
    EXPECT_FALSE(session.requestClose(windowless));
    EXPECT_EQ(compositor->closed, (QStringList{"1", "2"}));
}

TEST(I3Ipc, AnX11WindowIsFoundWithTheFreeAreaAroundIt) {
    // xeyes, floating on workspace 1 of the headless output.
    const auto xeyes = i3ipc::findX11Window(recorded("sway/get_tree.json"), 4194314);
    ASSERT_TRUE(xeyes);
    EXPECT_EQ(xeyes->container, 6);
    EXPECT_EQ(xeyes->rect, QRect(563, 310, 154, 102));
    EXPECT_EQ(xeyes->workspace, QRect(0, 0, 1280, 720));
    EXPECT_EQ(xeyes->output, QRect(0, 0, 1280, 720));
    EXPECT_FALSE(i3ipc::findX11Window(recorded("sway/get_tree.json"), 4194315));
    EXPECT_FALSE(i3ipc::findX11Window("[]", 4194314));

    // On the second output, under a 23-pixel bar.
    const QByteArray twoOutputs = R"({"type":"root","nodes":[
        {"type":"output","rect":{"x":0,"y":0,"width":1280,"height":720},"nodes":[
          {"type":"workspace","name":"1","rect":{"x":0,"y":0,"width":1280,"height":720}}]},
        {"type":"output","rect":{"x":1280,"y":0,"width":1920,"height":1080},"nodes":[
          {"type":"workspace","name":"2","rect":{"x":1280,"y":23,"width":1920,"height":1057},
           "floating_nodes":[{"type":"floating_con","id":41,"window":77,
             "rect":{"x":2000,"y":200,"width":320,"height":660}}]}]}]})";
    const auto popover = i3ipc::findX11Window(twoOutputs, 77);
    ASSERT_TRUE(popover);
    EXPECT_EQ(popover->container, 41);
    EXPECT_EQ(popover->workspace, QRect(1280, 23, 1920, 1057));
    EXPECT_EQ(popover->output, QRect(1280, 0, 1920, 1080));
    EXPECT_EQ(i3ipc::moveToPointerCommand(41), QByteArray("[con_id=41] move position cursor"));
    EXPECT_EQ(i3ipc::moveCommand(41, {2100, 23}),
              QByteArray("[con_id=41] move absolute position 2100 23"));
}

TEST(I3Ipc, ThePointerIsWhereAWindowCentredOnItWentOrBeyondTheEdgeThatStoppedIt) {
    const QRect output(0, 0, 1280, 720);
    // sway put the window's corner at the pointer less half its size.
    EXPECT_EQ(i3ipc::pointerFromCentredWindow(QRect(140, 100, 320, 400), output), QPoint(300, 300));
    // Stopped by the top and right edges (a tray at the top right): the pointer is on them.
    EXPECT_EQ(i3ipc::pointerFromCentredWindow(QRect(960, 0, 320, 660), output), QPoint(1279, 0));
    // Stopped by the bottom and left edges.
    EXPECT_EQ(i3ipc::pointerFromCentredWindow(QRect(0, 60, 320, 660), output), QPoint(0, 719));
    // As large as the output: nothing stopped it more on one side, so its middle.
    EXPECT_EQ(i3ipc::pointerFromCentredWindow(output, output), QPoint(640, 360));
}

} // namespace
} // namespace quelmo::linux_platform
