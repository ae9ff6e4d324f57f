// A Wayland session whose compositor tells nothing: processes of launched applications may be
// in use and are never offered; background processes and command-line programs still are.

#include "platform/linux/wayland/WaylandFallbackSession.h"
#include "platform/linux/wayland/WaylandSessions.h"
#include "support/FakePlatform.h"
#include "support/FixtureTree.h"

#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

using test::FixtureTree;

// A /proc/[pid]/stat line with the given command name, controlling terminal and start time.
QByteArray statLine(qint64 pid, const QByteArray& name, qint64 tty, std::uint64_t start) {
    return QByteArray::number(pid) + " (" + name + ") S 1 " + QByteArray::number(pid) + " " +
           QByteArray::number(pid) + " " + QByteArray::number(tty) +
           " -1 4194560 100 0 0 0 5 3 0 0 20 0 1 0 " + QByteArray::number(start) +
           " 1000000 250 18446744073709551615 1 1 0 0 0 0 0 4096 0 0 0 0 17 1 0 0 0 0 0\n";
}

struct Machine : FixtureTree {
    void process(qint64 pid, const QByteArray& name, const QByteArray& unitPath, qint64 tty = 0,
                 std::uint64_t start = 500) const {
        const QString folder = QStringLiteral("proc/%1/").arg(pid);
        write(folder + "stat", statLine(pid, name, tty, start));
        write(folder + "cgroup", "0::" + unitPath + "\n");
    }
};

// A typical desktop: two launched applications, one with a helper and a shell of its own, a
// terminal with a command the user runs in it, and services of the session and the system.
void populate(const Machine& m) {
    m.process(100, "mousepad",
              "/user.slice/user-1000.slice/user@1000.service/app.slice/"
              "app-org.xfce.mousepad-77.scope");
    m.process(101, "Web Content",
              "/user.slice/user-1000.slice/user@1000.service/app.slice/"
              "app-gnome-firefox\\x2desr-31.scope");
    m.process(102, "foot",
              "/user.slice/user-1000.slice/user@1000.service/app.slice/"
              "app-foot-5.scope");
    m.process(103, "make (cc1plus)",
              "/user.slice/user-1000.slice/user@1000.service/app.slice/"
              "app-foot-5.scope",
              34816);
    m.process(104, "pipewire",
              "/user.slice/user-1000.slice/user@1000.service/session.slice/"
              "pipewire.service");
    m.process(105, "vim",
              "/user.slice/user-1000.slice/user@1000.service/app.slice/"
              "app-org.gnome.Terminal.slice/vte-spawn-9f.scope",
              34817);
    m.process(1, "systemd", "/init.scope");
    m.write("proc/106/cgroup", "0::/app.slice/app-org.xfce.mousepad-78.scope\n"); // no stat: gone
    m.write("proc/self/stat", "not a process");
}

TEST(WaylandFallback, OnlyLaunchedApplicationsOutsideTerminalsCountAsUnseen) {
    Machine m;
    populate(m);
    LaunchedProcessReader reader(m.path("."));
    EXPECT_EQ(unseenApplications(reader.read()), (QSet<qint64>{100, 101, 102}));

    // A launch unit is read once per process: the same process keeps its unit, a new process
    // under the same pid (another start time) is read afresh, and a malformed file is nothing.
    m.write("proc/100/cgroup", "0::/app.slice/app-org.gnome.Calculator-9.scope\n");
    m.process(102, "bash", "/user.slice/session.slice/bash.service", 0, 900);
    m.write("proc/101/stat", "101 (Web Content S 1");
    m.write("proc/101/cgroup", QByteArray("\xff\x00:::\n", 6));
    std::vector<LaunchedProcess> again = reader.read();
    std::erase_if(again, [](const LaunchedProcess& p) { return p.pid != 100 && p.pid != 102; });
    ASSERT_EQ(again.size(), 2u);
    EXPECT_EQ(again[0].appId.value_or(QString()), QStringLiteral("org.xfce.mousepad"));
    EXPECT_FALSE(again[1].appId);
    EXPECT_EQ(unseenApplications(reader.read()), (QSet<qint64>{100}));
}

TEST(WaylandFallback, KeepsWhatXwaylandShowsAndAddsTheUnseenApplications) {
    struct Xwayland : DesktopSession {
        DesktopSnapshot snapshot() override {
            return {.regularPIDs = {7}, .frontmostPID = 7, .visiblePIDs = {7}, .unseenAppPIDs = {}};
        }
        std::optional<AppRecord> application(qint64) override { return AppRecord{"xterm", {}}; }
        std::optional<QString> frontmostAppId() override { return QStringLiteral("xterm"); }
        void setActivationHandler(std::function<void(const QString&)>) override {}
        bool requestClose(ProcessHandle& process) override { return process.pid() == 7; }
    };
    Machine m;
    populate(m);
    WaylandFallbackSession withX(std::make_unique<Xwayland>(), m.path("."));
    const DesktopSnapshot seen = withX.snapshot();
    EXPECT_EQ(seen.frontmostPID, std::optional<qint64>(7));
    EXPECT_EQ(seen.unseenAppPIDs, (QSet<qint64>{100, 101, 102}));
    test::FakeHandle seven(7), hundred(100);
    EXPECT_TRUE(withX.requestClose(seven));
    EXPECT_EQ(withX.frontmostAppId(), std::optional<QString>(QStringLiteral("xterm")));

    WaylandFallbackSession alone(nullptr, m.path("."));
    EXPECT_EQ(alone.snapshot().unseenAppPIDs.size(), 3);
    EXPECT_FALSE(alone.snapshot().frontmostPID);
    EXPECT_FALSE(
        alone.requestClose(hundred)); // no compositor to ask: the cut falls back to SIGTERM
    EXPECT_FALSE(alone.frontmostAppId());
}

TEST(WaylandSessions, TheSessionKindComesFromTheEnvironment) {
    const auto kind = [](std::initializer_list<std::pair<const char*, const char*>> variables) {
        QProcessEnvironment environment;
        for (const auto& [name, value] : variables)
            environment.insert(QString::fromLatin1(name), QString::fromLatin1(value));
        return sessionKindOf(environment);
    };
    EXPECT_EQ(kind({{"DISPLAY", ":0"}, {"XDG_CURRENT_DESKTOP", "KDE"}}), SessionKind::X11);
    EXPECT_EQ(kind({{"XDG_SESSION_TYPE", "wayland"}}), SessionKind::Wayland);
    EXPECT_EQ(kind({{"WAYLAND_DISPLAY", "wayland-1"}, {"SWAYSOCK", "/run/s.sock"}}),
              SessionKind::Sway);
    EXPECT_EQ(kind({{"WAYLAND_DISPLAY", "w"}, {"XDG_CURRENT_DESKTOP", "ubuntu:GNOME"}}),
              SessionKind::Gnome);
    EXPECT_EQ(kind({{"WAYLAND_DISPLAY", "w"}, {"XDG_CURRENT_DESKTOP", "gnome-flashback"}}),
              SessionKind::Wayland);
}

} // namespace
} // namespace quelmo::linux_platform
