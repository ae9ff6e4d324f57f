#pragma once

// The desktop as an X11 window manager that follows the EWMH conventions presents it: which
// processes own ordinary windows, which window is in front, which ones are on screen, and the
// means to ask an application to close its windows. Works under Xwayland too.
//
// Activations arrive as PropertyNotify events of _NET_ACTIVE_WINDOW on the root window, read
// from our own connection's socket by the main event loop (no thread, no polling).

#include "core/cleanup/DesktopSession.h"
#include "platform/linux/apps/AppIdentity.h"
#include "platform/linux/apps/DesktopEntryIndex.h"
#include "platform/linux/x11/WindowRules.h"
#include "platform/linux/x11/XcbConnection.h"

#include <QHash>
#include <QSocketNotifier>
#include <QString>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>

namespace quelmo::linux_platform {

class X11DesktopSession final : public DesktopSession {
public:
    struct Options {
        QString root = QStringLiteral("/"); // where /proc is read from
        QStringList dataDirs;               // XDG data folders, in precedence order
        const char* display = nullptr;      // nullptr: $DISPLAY
        std::function<QString()> language;  // the interface language; AppLang by default
        qint64 ownPid = 0;                  // whose windows are Quelmo's own; 0: this process
    };

    // Nothing when no X display can be reached.
    static std::unique_ptr<X11DesktopSession> connect(Options options);
    ~X11DesktopSession() override;

    DesktopSnapshot snapshot() override;
    std::optional<AppRecord> application(qint64 pid) override;
    std::optional<QString> frontmostAppId() override;
    void setActivationHandler(std::function<void(const QString& appId)> handler) override;
    bool requestClose(ProcessHandle& process) override;

private:
    // What a process was found to be. A found id holds for the life of the process; "no id" is
    // asked again after a few seconds, since a window that names the application may come later.
    struct CachedId {
        std::uint64_t startTime = 0;
        std::optional<QString> appId;
        std::chrono::steady_clock::time_point checkedAt;
    };

    // The owner of every managed window, read once per pass of the rules: dropped as soon as
    // control is back in the event loop.
    struct WindowOwners {
        std::vector<xcb_window_t> windows;
        std::vector<std::optional<qint64>> pids;
    };

    X11DesktopSession(std::unique_ptr<XcbConnection> x, Options options);

    std::optional<QString> appIdOfProcess(qint64 pid);
    std::optional<QString> appIdOfWindow(xcb_window_t window);
    std::vector<WindowHints> hintsOfProcess(qint64 pid);
    const WindowOwners& windowOwners();
    std::vector<xcb_window_t> windowsOf(const WindowOwners& owners, qint64 pid) const;

    // The window whose application is in front: the active one, except that our own popover
    // never counts; while it holds the focus, the window active before it still is in front.
    // `facts`, when given, already knows the windows' owners.
    std::optional<xcb_window_t> frontmostWindow(std::optional<xcb_window_t> active,
                                                const DesktopFacts* facts = nullptr);

    void watchRootWindow();
    void onSocketReadable();
    void scheduleDrain();
    void drainEvents();
    bool isActiveWindowChange(const xcb_generic_event_t& event) const;
    void noticeActiveWindow(int changes);
    xcb_timestamp_t serverTime();

    std::unique_ptr<XcbConnection> x_;
    Options options_;
    DesktopEntryIndex index_;
    std::unique_ptr<QSocketNotifier> notifier_;
    std::function<void(const QString&)> activationHandler_;
    std::optional<xcb_window_t> lastActive_;
    std::optional<xcb_window_t> lastOtherActive_; // the latest active window not of our own
    xcb_window_t probeWindow_ = XCB_WINDOW_NONE;
    std::deque<XcbReply<xcb_generic_event_t>> setAside_; // events read while waiting for another
    QHash<qint64, CachedId> idCache_;
    std::optional<WindowOwners> ownersThisPass_;
    bool draining_ = false;
    bool drainScheduled_ = false;
};

} // namespace quelmo::linux_platform
