#include "app/shell/GraphicalSession.h"

#include <xcb/xcb.h>

namespace quelmo {

namespace {

bool canOpenX11Display(const QByteArray& display) {
    xcb_connection_t* connection = xcb_connect(display.constData(), nullptr);
    const bool ok = connection && xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return ok;
}

} // namespace

std::optional<QString> graphicalSessionProblem() {
    const QByteArray display = qgetenv("DISPLAY");
    const bool wayland = !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
    if (display.isEmpty() && !wayland)
        return QStringLiteral("no graphical session found (neither DISPLAY nor WAYLAND_DISPLAY "
                              "is set); Quelmo runs in an X11 or Wayland desktop session");
    if (display.isEmpty())
        return QStringLiteral("this Wayland session has no XWayland (DISPLAY is not set); "
                              "Quelmo needs X11 or XWayland to place its popover");
    if (!canOpenX11Display(display))
        return QStringLiteral("cannot open the X11 display \"%1\"")
            .arg(QString::fromLocal8Bit(display));
    qputenv("QT_QPA_PLATFORM", "xcb");
    return std::nullopt;
}

} // namespace quelmo
