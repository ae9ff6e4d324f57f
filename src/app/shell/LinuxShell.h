#pragma once

#include "app/shell/AppDelegate.h"

#include <QDBusConnection>
#include <optional>

namespace quelmo {

// The desktop parts of the program on Linux: the tray item (StatusNotifierItem or XEmbed) and
// the Qt Quick popover window. `bus` is the session bus, when there is one.
AppDelegate::Shell linuxShell(std::optional<QDBusConnection> bus);

// Where the tray icon is written for hosts to load: the per-session runtime folder when the
// session has one, else the user's cache.
QString trayIconDirectory();

} // namespace quelmo
