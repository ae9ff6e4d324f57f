#pragma once

#include <QAbstractNativeEventFilter>
#include <QColor>
#include <QObject>
#include <optional>

class QWindow;

namespace quelmo::x11 {

// Marks a not yet mapped window as skipped by taskbars and pagers. Does nothing outside X11.
void skipTaskbarAndPager(QWindow& window);

// Asks the window manager to activate `window` on behalf of the user, the way pagers and
// taskbars do (_NET_ACTIVE_WINDOW, source 2). False when there is no X11 window manager to ask.
bool activateAsPager(QWindow& window);

// The foreground colour the XEmbed system tray asks symbolic icons to use
// (_NET_SYSTEM_TRAY_COLORS on the tray manager's window), when a tray publishes one.
std::optional<QColor> systemTrayForeground();

// Follows the window manager's idea of the active window (_NET_ACTIVE_WINDOW on the root
// window). Qt's own activation state can lag behind when a window is hidden and shown again in
// quick succession; the window manager's property is what the user sees.
class ActiveWindowWatch : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit ActiveWindowWatch(QObject* parent = nullptr);
    ~ActiveWindowWatch() override;

    // False outside X11 or without an EWMH window manager; the watch then never signals.
    bool isWatching() const { return root_ != 0; }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

signals:
    // The active window's id, 0 when no window is active.
    void changed(quint32 window);

private:
    quint32 activeWindow() const;

    quint32 root_ = 0;
    quint32 atom_ = 0;
};

} // namespace quelmo::x11
