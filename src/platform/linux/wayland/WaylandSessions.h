#pragma once

// Which desktop session Quelmo runs in, told from the session's environment, and the source of
// desktop facts that goes with it.

#include "core/cleanup/DesktopSession.h"

#include <QProcessEnvironment>
#include <QString>
#include <memory>

namespace quelmo::linux_platform {

enum class SessionKind {
    X11,      // no Wayland display: the X server is the desktop
    Sway,     // sway or another compositor speaking the i3 IPC ($SWAYSOCK)
    Hyprland, // $HYPRLAND_INSTANCE_SIGNATURE
    Plasma,   // KWin ($KDE_FULL_SESSION, or KDE in $XDG_CURRENT_DESKTOP)
    Gnome,    // GNOME Shell: nothing to ask without an extension
    Wayland,  // another Wayland compositor
};

SessionKind sessionKindOf(const QProcessEnvironment& environment);

// The desktop source for a Wayland session of `kind`: the compositor's own when it answers,
// else the fallback that keeps what XWayland shows (`xwayland`, may be null) and leaves every
// launched application alone.
std::unique_ptr<DesktopSession> connectWaylandSession(SessionKind kind, const QString& root,
                                                      std::unique_ptr<DesktopSession> xwayland);

} // namespace quelmo::linux_platform
