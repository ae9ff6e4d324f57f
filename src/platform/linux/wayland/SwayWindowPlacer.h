#pragma once

// Places an XWayland window of this program under sway (and other compositors speaking the i3
// IPC on $SWAYSOCK), which centres a floating X11 window when it maps and whenever it asks for
// a new size, whatever position it asks for. Once the window is mapped, it is centred on the
// compositor's pointer (which XWayland does not see while it is over a panel), the pointer's
// position is read back from where the window went, and the window is moved to where the
// program wants it for that pointer. Everything runs on the main thread's event loop.

#include "platform/linux/wayland/I3IpcProtocol.h"

#include <QByteArray>
#include <QLocalSocket>
#include <QPoint>
#include <QRect>
#include <QTimer>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace quelmo::linux_platform {

class SwayWindowPlacer {
public:
    // Where the window's top-left corner goes for the pointer at `pointer` with `area` free on
    // its output (the output without its bars), both in layout coordinates; nothing to leave
    // the window where it is.
    using Place = std::function<std::optional<QPoint>(QPoint pointer, const QRect& area)>;

    // Nothing when the socket cannot be reached.
    static std::unique_ptr<SwayWindowPlacer> connect(const QString& socketPath);
    ~SwayWindowPlacer();
    SwayWindowPlacer(const SwayWindowPlacer&) = delete;
    SwayWindowPlacer& operator=(const SwayWindowPlacer&) = delete;

    // The X11 window `window` is being shown: place it by `place` once the compositor maps it.
    void placeWhenMapped(quint32 window, Place place);
    // The shown window changed its size, and the compositor centres it again: back to `topLeft`.
    void moveAgain(QPoint topLeft);
    // The window was hidden; its container is gone with it.
    void forget();

private:
    using Reply = std::function<void(const QByteArray&)>;

    SwayWindowPlacer() = default;
    void send(std::uint32_t type, const QByteArray& payload, Reply reply = {});
    void onReadable();
    void lookForWindow(quint64 generation);
    void placeAtPointer(quint64 generation);
    void move(QPoint topLeft);

    std::unique_ptr<QLocalSocket> socket_;
    QByteArray buffer_;
    std::deque<Reply> replies_; // one per request, in the order they were sent
    QTimer retry_;
    QTimer repeatMove_;
    quint32 window_ = 0;
    Place place_;
    std::optional<qint64> container_;
    std::optional<QPoint> topLeft_;
    int attemptsLeft_ = 0;
    quint64 generation_ = 0; // answers about an earlier showing are ignored
};

} // namespace quelmo::linux_platform
