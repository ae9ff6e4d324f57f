#pragma once

// The i3 IPC protocol that sway (and i3) speak on $SWAYSOCK / $I3SOCK: every message is the
// magic "i3-ipc", the payload's length and the message type (32-bit, the machine's byte order),
// then a JSON payload. Replies carry the request's type; events have the high bit set.

#include "platform/linux/wayland/CompositorLink.h"

#include <QByteArray>
#include <QJsonObject>
#include <QPoint>
#include <QRect>
#include <cstdint>
#include <optional>
#include <vector>

namespace quelmo::linux_platform::i3ipc {

enum MessageType : std::uint32_t {
    runCommand = 0,
    subscribe = 2,
    getTree = 4,
    workspaceEvent = 0x80000000u,
    windowEvent = 0x80000003u,
};

struct Message {
    std::uint32_t type = 0;
    QByteArray payload;
};

QByteArray encode(std::uint32_t type, const QByteArray& payload);

// Takes the first whole message off the front of `buffer`; nothing while it is incomplete.
// A buffer that does not start with the magic is unusable: `broken` is set.
std::optional<Message> takeMessage(QByteArray& buffer, bool& broken);

// The windows of a GET_TREE reply, in tree order. Windows in the scratchpad count as
// minimised; the others are on screen when the compositor says they are visible.
std::vector<CompositorWindow> windowsOfTree(const QByteArray& tree);

// The window a "window" event is about, with what the event says of it.
struct WindowEvent {
    QString change; // "focus", "new", "close", "title", "move", ...
    CompositorWindow window;
};
std::optional<WindowEvent> parseWindowEvent(const QByteArray& payload);

// The command that asks a window to close, as its close button would; empty for a handle that
// is not a container id.
QByteArray closeCommand(const CompositorWindow& window);

// Where an X11 window (shown through XWayland) sits in a GET_TREE reply: its container, the
// container's rectangle, the free area of its workspace (the output without the bars) and the
// output's rectangle, all in the compositor's layout coordinates.
struct X11WindowPlace {
    qint64 container = -1;
    QRect rect;
    QRect workspace;
    QRect output;
};
std::optional<X11WindowPlace> findX11Window(const QByteArray& tree, quint32 window);

// "move position cursor" centres a floating window on the pointer, but keeps it on its output.
// The pointer's position as a window so moved tells it: its centre, or the output's edge on a
// side where that edge stopped the window.
QPoint pointerFromCentredWindow(const QRect& window, const QRect& output);

// The commands that centre a floating container on the pointer, and that move it to `topLeft`.
QByteArray moveToPointerCommand(qint64 container);
QByteArray moveCommand(qint64 container, QPoint topLeft);

} // namespace quelmo::linux_platform::i3ipc
