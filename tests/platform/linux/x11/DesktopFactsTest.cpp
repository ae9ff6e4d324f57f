// The pure parts of the desktop reader: launch units in cgroup files, which windows make a process
// an ordinary application or a visible one, and whose _NET_WM_PID is believed.

#include "platform/linux/apps/CgroupAppId.h"
#include "platform/linux/x11/WindowRules.h"
#include "platform/linux/x11/WindowSurvey.h"

#include <gtest/gtest.h>

namespace quelmo::linux_platform {
namespace {

TEST(CgroupAppId, ReadsTheIdOnlyFromApplicationLaunchUnits) {
    const auto id = [](const char* unit) {
        return appIdFromUnitName(QByteArrayView(unit)).value_or(QStringLiteral("none"));
    };
    EXPECT_EQ(id("app-gnome-org.gnome.Terminal-4242.scope"), QStringLiteral("org.gnome.Terminal"));
    EXPECT_EQ(id("app-org.xfce.mousepad-77.scope"), QStringLiteral("org.xfce.mousepad"));
    EXPECT_EQ(id("app-gnome-google\\x2dchrome-8810.scope"), QStringLiteral("google-chrome"));
    EXPECT_EQ(id("app-org.kde.konsole@a1b2c3.service"), QStringLiteral("org.kde.konsole"));
    EXPECT_EQ(id("app-gnome-firefox@12.service"), QStringLiteral("firefox"));
    EXPECT_EQ(id("app-firefox.scope"), QStringLiteral("none")); // a scope has its random part
    EXPECT_EQ(id("app-a-b-c-d.scope"), QStringLiteral("none")); // unescaped dashes: ambiguous

    EXPECT_EQ(appIdFromCgroup("0::/app.slice/app-gnome-org.gnome.Evince-31.scope\n"),
              QStringLiteral("org.gnome.Evince"));
    // A shell started by the terminal lives in the terminal's slice but is not the terminal.
    EXPECT_FALSE(appIdFromCgroup("0::/app.slice/app-org.gnome.Terminal.slice/vte-spawn-9f.scope"));
    // Legacy hierarchy: the name=systemd line carries the unit.
    EXPECT_EQ(appIdFromCgroup("12:pids:/\n1:name=systemd:/app-kde-org.kde.dolphin-55.scope\n"),
              QStringLiteral("org.kde.dolphin"));
}

TEST(WindowRules, SummarizeSeparatesOrdinaryVisibleAndFrontmost) {
    DesktopFacts facts;
    facts.currentDesktop = 1;
    facts.activeWindow = 7;
    for (qint64 pid = 10; pid <= 110; pid += 10)
        facts.windows.push_back({.pid = pid, .viewable = true, .desktop = 1, .height = 300});
    auto& w = facts.windows;         // w[0], pid 10: an ordinary window on screen
    w[1].id = 7;                     // 20: the active window...
    w[1].kind = WindowKind::Dialog;  // ...on screen, not a taskbar window
    w[2].skipTaskbar = true;         // 30: likewise
    w[3].hidden = true;              // 40: minimised
    w[4].viewable = false;           // 50: unmapped
    w[5].desktop = 0;                // 60: on another desktop
    w[6].kind = WindowKind::Dock;    // 70: another layer
    w[7].height = 39.5;              // 80: a strip
    w[8].height = 40;                // 90: just tall enough...
    w[8].desktop = allDesktops;      // ...on every desktop
    w[9].kind = WindowKind::Utility; // 100: unknown height counts
    w[9].height.reset();
    w[10].pid.reset(); // 110: owner unknown
    const DesktopSnapshot s = summarize(facts);
    EXPECT_EQ(s.regularPIDs, (QSet<qint64>{10, 40, 50, 60, 80, 90}));
    EXPECT_EQ(s.visiblePIDs, (QSet<qint64>{10, 20, 30, 90, 100}));
    EXPECT_EQ(s.frontmostPID, std::optional<qint64>(20));
}

TEST(WindowSurvey, WmPidIsTrustedOnlyFromThisMachine) {
    EXPECT_EQ(trustedWmPid(4242, "VM.example.org", "vm"), std::optional<qint64>(4242));
    EXPECT_EQ(trustedWmPid(4242, "", "vm"), std::optional<qint64>(4242)); // not said: believed
    EXPECT_FALSE(trustedWmPid(4242, "buildhost", "vm"));
    EXPECT_FALSE(trustedWmPid(0, "vm", "vm"));
}

} // namespace
} // namespace quelmo::linux_platform
