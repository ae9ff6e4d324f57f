#include "platform/linux/DesktopServices.h"

#include "platform/linux/common/RootPath.h"
#include "platform/linux/system/LinuxSystemInfo.h"
#include "platform/linux/system/PidfdSignaller.h"
#include "platform/linux/wayland/WaylandSessions.h"
#include "platform/linux/x11/X11DesktopSession.h"

namespace quelmo::linux_platform {

void addDesktopServices(Platform& platform, const QString& root) {
    platform.system = std::make_unique<LinuxSystemInfo>(root, platform.clock);
    platform.signaller = std::make_unique<PidfdSignaller>(root);

    // The X display only belongs with the live system: a fixture tree's pids would not match
    // the windows on screen. Without a display (no DISPLAY, Wayland without Xwayland) there is
    // no desktop to ask, and the rules see no windows and no application in front.
    const bool liveSystem = isLiveRoot(root);
    if (!liveSystem)
        return;
    X11DesktopSession::Options options;
    options.root = root;
    std::unique_ptr<DesktopSession> x11 = X11DesktopSession::connect(std::move(options));
    // In a Wayland session the X server only shows XWayland's windows: the compositor tells the
    // rest, or, where it cannot, launched applications are left alone.
    const SessionKind kind = sessionKindOf(QProcessEnvironment::systemEnvironment());
    platform.desktop = kind == SessionKind::X11 ? std::move(x11)
                                                : connectWaylandSession(kind, root, std::move(x11));
}

} // namespace quelmo::linux_platform
