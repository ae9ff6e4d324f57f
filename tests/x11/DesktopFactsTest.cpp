// The pure parts of the desktop reader: unit names in cgroup files, /proc parsing, and which
// windows make a process an ordinary application or a visible one.

#include "FixtureTree.h"
#include "desktop/CgroupAppId.h"
#include "desktop/DesktopServices.h"
#include "desktop/ProcFiles.h"
#include "desktop/WindowRules.h"
#include "desktop/WindowSurvey.h"

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

namespace quelmo::linux_platform {
namespace {

std::optional<QString> idOf(const char* unit) {
    return appIdFromUnitName(QByteArrayView(unit));
}

TEST(CgroupAppId, ReadsTheIdFromEveryLaunchUnitShape) {
    EXPECT_EQ(idOf("app-gnome-org.gnome.Terminal-4242.scope"),
              QStringLiteral("org.gnome.Terminal"));
    EXPECT_EQ(idOf("app-org.xfce.mousepad-77.scope"), QStringLiteral("org.xfce.mousepad"));
    EXPECT_EQ(idOf("app-org.kde.konsole@a1b2c3.service"), QStringLiteral("org.kde.konsole"));
    EXPECT_EQ(idOf("app-gnome-firefox@12.service"), QStringLiteral("firefox"));
    EXPECT_EQ(idOf("app-firefox.service"), QStringLiteral("firefox"));
    // Dashes inside the id are escaped; the unescaped ones separate the fields.
    EXPECT_EQ(idOf("app-gnome-google\\x2dchrome-8810.scope"), QStringLiteral("google-chrome"));
    EXPECT_EQ(idOf("app-flatpak-org.gimp.GIMP-1234.scope"), QStringLiteral("org.gimp.GIMP"));
}

TEST(CgroupAppId, RefusesUnitsThatAreNotApplicationLaunches) {
    EXPECT_FALSE(idOf("app-org.gnome.Terminal.slice"));
    EXPECT_FALSE(idOf("vte-spawn-5d6c.scope"));
    EXPECT_FALSE(idOf("session-2.scope"));
    EXPECT_FALSE(idOf("app-firefox.scope")); // a scope always has its random part
    EXPECT_FALSE(idOf("app-a-b-c-d.scope")); // unescaped dash in the id: ambiguous
    EXPECT_FALSE(idOf("app--1.scope"));
    EXPECT_FALSE(idOf("app-.service"));
}

TEST(CgroupAppId, LooksOnlyAtTheProcessOwnUnit) {
    const QByteArray v2 = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                          "app-gnome-org.gnome.Evince-3141.scope\n";
    EXPECT_EQ(appIdFromCgroup(v2), QStringLiteral("org.gnome.Evince"));

    // A shell started by the terminal lives in the terminal's slice but is not the terminal.
    const QByteArray shell = "0::/user.slice/user-1000.slice/user@1000.service/app.slice/"
                             "app-org.gnome.Terminal.slice/vte-spawn-9f1e.scope\n";
    EXPECT_FALSE(appIdFromCgroup(shell));

    // Legacy hierarchy: the name=systemd line carries the unit.
    const QByteArray v1 = "12:pids:/user.slice\n"
                          "1:name=systemd:/user.slice/user-1000.slice/user@1000.service/"
                          "app-kde-org.kde.dolphin-55.scope\n";
    EXPECT_EQ(appIdFromCgroup(v1), QStringLiteral("org.kde.dolphin"));

    EXPECT_FALSE(appIdFromCgroup("0::/\n"));
    EXPECT_FALSE(appIdFromCgroup(QByteArray("\0\xff:::\n", 7)));
}

TEST(ProcFiles, ParsesStartTimeAndOwnerDespiteHostileNames) {
    // The command name holds spaces and a ')' followed by text that looks like fields.
    const QByteArray stat = "4242 (evil) 1 2 3 (x) S 1 4242 4242 0 -1 4194560 100 0 0 0 5 3 0 0 "
                            "20 0 1 0 987654 1000000 300 18446744073709551615";
    EXPECT_EQ(parseStartTime(stat), std::uint64_t{987654});
    EXPECT_FALSE(parseStartTime("4242 (short) S 1 2 3"));
    EXPECT_FALSE(parseStartTime("no parenthesis at all"));

    EXPECT_EQ(parseUids("Name:\tx\nUid:\t1000\t0\t1000\t1000\n")->effective, 0u);
    EXPECT_EQ(parseUids("Name:\tx\nUid:\t1000\t0\t1000\t1000\n")->real, 1000u);
    EXPECT_FALSE(parseUids("Name:\tx\nGid:\t1\t1\t1\t1\n"));
}

TEST(WindowRules, HeightFloorLayerAndOwner) {
    EXPECT_FALSE(countsAsVisible(WindowKind::Normal, 7, 39.5));
    EXPECT_TRUE(countsAsVisible(WindowKind::Normal, 7, 40.0));
    EXPECT_TRUE(countsAsVisible(WindowKind::Dialog, 7, std::nullopt)); // unknown height counts
    EXPECT_TRUE(countsAsVisible(WindowKind::Utility, 7, 500.0));
    EXPECT_FALSE(countsAsVisible(WindowKind::Dock, 7, 500.0));
    EXPECT_FALSE(countsAsVisible(WindowKind::Desktop, 7, 800.0));
    EXPECT_FALSE(countsAsVisible(WindowKind::Normal, std::nullopt, 500.0));
}

TEST(WindowRules, CurrentDesktop) {
    EXPECT_TRUE(isOnCurrentDesktop(1, 1));
    EXPECT_FALSE(isOnCurrentDesktop(0, 1));
    EXPECT_TRUE(isOnCurrentDesktop(allDesktops, 1));
    EXPECT_TRUE(isOnCurrentDesktop(std::nullopt, 1));
    EXPECT_TRUE(isOnCurrentDesktop(3, std::nullopt));
}

TEST(WindowRules, SummarizeSeparatesOrdinaryVisibleAndFrontmost) {
    const auto window = [](std::uint32_t id, qint64 pid) {
        WindowFacts w;
        w.id = id;
        w.pid = pid;
        w.viewable = true;
        w.desktop = 0;
        w.height = 300;
        return w;
    };
    DesktopFacts facts;
    facts.currentDesktop = 0;
    facts.activeWindow = 3;
    facts.windows.push_back(window(1, 10)); // ordinary, visible
    facts.windows.push_back(window(2, 10)); // second window of the same process
    auto dialog = window(3, 20);
    dialog.kind = WindowKind::Dialog; // visible, not a taskbar window
    facts.windows.push_back(dialog);
    auto tool = window(4, 30);
    tool.skipTaskbar = true; // visible, not a taskbar window
    facts.windows.push_back(tool);
    auto minimised = window(5, 40);
    minimised.hidden = true;
    minimised.viewable = false;
    facts.windows.push_back(minimised); // ordinary, not visible
    auto elsewhere = window(6, 50);
    elsewhere.desktop = 2;
    facts.windows.push_back(elsewhere); // ordinary, not visible
    auto panel = window(7, 60);
    panel.kind = WindowKind::Dock;
    facts.windows.push_back(panel); // neither
    auto strip = window(8, 70);
    strip.height = 39;
    facts.windows.push_back(strip); // ordinary, too short to count
    auto anonymous = window(9, 0);
    anonymous.pid.reset();
    facts.windows.push_back(anonymous); // no owner: nothing

    const DesktopSnapshot s = summarize(facts);
    EXPECT_EQ(s.regularPIDs, (QSet<qint64>{10, 40, 50, 70}));
    EXPECT_EQ(s.visiblePIDs, (QSet<qint64>{10, 20, 30}));
    EXPECT_EQ(s.frontmostPID, std::optional<qint64>(20));

    facts.activeWindow = 9; // the active window's owner is unknown
    EXPECT_FALSE(summarize(facts).frontmostPID);
}

TEST(WindowSurvey, WmPidIsTrustedOnlyFromThisMachine) {
    EXPECT_EQ(trustedWmPid(4242, "vm", "vm"), std::optional<qint64>(4242));
    EXPECT_EQ(trustedWmPid(4242, "VM.example.org", "vm"), std::optional<qint64>(4242));
    EXPECT_EQ(trustedWmPid(4242, "", "vm"), std::optional<qint64>(4242)); // not said: believed
    EXPECT_FALSE(trustedWmPid(4242, "buildhost", "vm"));
    EXPECT_FALSE(trustedWmPid(0, "vm", "vm"));
    EXPECT_FALSE(trustedWmPid(std::nullopt, "vm", "vm"));
}

TEST(DesktopServices, AFixtureRootGetsSystemFactsButNoLiveDesktop) {
    test::FixtureTree tree;
    Platform platform;
    addDesktopServices(platform, tree.root());
    ASSERT_TRUE(platform.system && platform.signaller);
    EXPECT_FALSE(platform.desktop); // the windows on screen do not belong to a fixture tree
    EXPECT_EQ(platform.system->ownPid(), getpid());
    const passwd* me = getpwuid(getuid());
    ASSERT_TRUE(me);
    EXPECT_EQ(platform.system->userName(), QString::fromLocal8Bit(me->pw_name));
    EXPECT_TRUE(platform.system->thermalNominal()); // an empty tree has no zones to worry about
}

} // namespace
} // namespace quelmo::linux_platform
