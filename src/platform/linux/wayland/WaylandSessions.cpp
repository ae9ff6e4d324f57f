#include "platform/linux/wayland/WaylandSessions.h"

#include "platform/linux/wayland/CompositorSession.h"
#include "platform/linux/wayland/ForeignToplevelLink.h"
#include "platform/linux/wayland/HyprlandLink.h"
#include "platform/linux/wayland/HyprlandProtocol.h"
#include "platform/linux/wayland/I3IpcLink.h"
#include "platform/linux/wayland/KWinScriptLink.h"
#include "platform/linux/wayland/WaylandFallbackSession.h"

namespace quelmo::linux_platform {
namespace {

bool desktopNamed(const QProcessEnvironment& environment, QLatin1String name) {
    const QStringList desktops = environment.value(QStringLiteral("XDG_CURRENT_DESKTOP"))
                                     .split(QLatin1Char(':'), Qt::SkipEmptyParts);
    return std::any_of(desktops.begin(), desktops.end(), [&](const QString& desktop) {
        return desktop.compare(name, Qt::CaseInsensitive) == 0;
    });
}

} // namespace

SessionKind sessionKindOf(const QProcessEnvironment& environment) {
    const bool wayland =
        !environment.value(QStringLiteral("WAYLAND_DISPLAY")).isEmpty() ||
        environment.value(QStringLiteral("XDG_SESSION_TYPE")) == QLatin1String("wayland");
    if (!wayland)
        return SessionKind::X11;
    if (!environment.value(QStringLiteral("SWAYSOCK")).isEmpty())
        return SessionKind::Sway;
    if (!environment.value(QStringLiteral("HYPRLAND_INSTANCE_SIGNATURE")).isEmpty())
        return SessionKind::Hyprland;
    if (environment.value(QStringLiteral("KDE_FULL_SESSION")) == QLatin1String("true") ||
        desktopNamed(environment, QLatin1String("KDE")))
        return SessionKind::Plasma;
    if (desktopNamed(environment, QLatin1String("GNOME")))
        return SessionKind::Gnome;
    return SessionKind::Wayland;
}

std::unique_ptr<DesktopSession> connectWaylandSession(SessionKind kind, const QString& root,
                                                      std::unique_ptr<DesktopSession> xwayland) {
    std::unique_ptr<CompositorLink> link;
    if (kind == SessionKind::Sway)
        link = I3IpcLink::connect(qEnvironmentVariable("SWAYSOCK"));
    if (kind == SessionKind::Hyprland)
        link = HyprlandLink::connect(
            hyprland::socketFolder(qEnvironmentVariable("XDG_RUNTIME_DIR"),
                                   qEnvironmentVariable("HYPRLAND_INSTANCE_SIGNATURE")));
    if (kind == SessionKind::Plasma)
        link = KWinScriptLink::connect();
    // GNOME Shell offers an unprivileged client nothing to ask; any wlroots compositor (and
    // others that took the protocol up) tells its windows through the foreign-toplevel protocol.
    if (!link && kind != SessionKind::Gnome)
        link = ForeignToplevelLink::connect();
    if (!link)
        return std::make_unique<WaylandFallbackSession>(std::move(xwayland), root);
    CompositorSession::Options options;
    options.root = root;
    return std::make_unique<CompositorSession>(std::move(link), std::move(options));
}

} // namespace quelmo::linux_platform
