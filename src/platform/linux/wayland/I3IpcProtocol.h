#pragma once

// The i3 IPC protocol that sway (and i3) speak on $SWAYSOCK / $I3SOCK: every message is the
// magic "i3-ipc", the payload's length and the message type (32-bit, the machine's byte order),
// then a JSON payload. Replies carry the request's type; events have the high bit set.

#include "platform/linux/wayland/CompositorLink.h"

#include <QByteArray>
#include <QJsonObject>
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

} // namespace quelmo::linux_platform::i3ipc
