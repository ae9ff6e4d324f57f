#pragma once

// Hyprland's IPC: requests on $XDG_RUNTIME_DIR/hypr/<instance>/.socket.sock (one connection per
// request: write it, read the reply until the compositor closes the connection), events on
// .socket2.sock as lines "EVENT>>DATA".

#include "platform/linux/wayland/CompositorLink.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

namespace quelmo::linux_platform::hyprland {

// The windows of a "j/clients" reply, shown or not as the "j/monitors" reply says: a window is
// on screen when it is mapped, not hidden, and its workspace is shown on a monitor; a window on
// a special workspace that is not shown counts as minimised (put away).
std::vector<CompositorWindow> windowsOf(const QByteArray& clients, const QByteArray& monitors);

struct Event {
    QString name;
    QString data;
};
// One event line (without its line break); nothing for a line that is not an event.
std::optional<Event> parseEvent(QByteArrayView line);

// The window address an "activewindowv2" event names, written as the clients list writes it.
QString addressOfActiveWindowEvent(const Event& event);

// The request that asks a window to close; empty for an address that is not one.
QByteArray closeRequest(const CompositorWindow& window);

// The instance's socket folder: $XDG_RUNTIME_DIR/hypr/<signature>, else /tmp/hypr/<signature>
// (older releases), whichever holds the request socket.
QString socketFolder(const QString& runtimeDir, const QString& signature);

} // namespace quelmo::linux_platform::hyprland
