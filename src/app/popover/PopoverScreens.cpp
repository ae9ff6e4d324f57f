#include "app/popover/PopoverScreens.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace quelmo {

QList<ScreenSpace> popoverScreens() {
    QList<ScreenSpace> spaces;
    for (const QScreen* screen : QGuiApplication::screens())
        spaces.append({screen->geometry(), screen->devicePixelRatio()});
    return spaces;
}

std::optional<QPoint> knownPointer() {
    const bool waylandSession =
        !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
        qEnvironmentVariable("XDG_SESSION_TYPE") == QLatin1String("wayland");
    if (waylandSession)
        return std::nullopt;
    return QCursor::pos();
}

QPoint hostClickAnchor(QPoint reported) {
    return clickAnchor(reported, knownPointer(), std::nullopt, popoverScreens());
}

} // namespace quelmo
