#pragma once

// What the cleanup rules need to know about the user's desktop, and the means to close a
// process politely. Implemented over X11/EWMH and Wayland compositors under platform/linux;
// faked in tests.

#include "core/cleanup/ProcessSignaller.h"

#include <QSet>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

namespace quelmo {

// One look at the desktop, taken once per candidate selection.
struct DesktopSnapshot {
    QSet<qint64> regularPIDs;           // processes owning a taskbar (ordinary) application window
    std::optional<qint64> frontmostPID; // the process of the active window
    QSet<qint64> visiblePIDs;           // processes owning a visible window on the current desktop
    // Processes of launched applications whose windows this session cannot see (a Wayland
    // compositor that tells nothing about them). Any of them may be in use right now.
    QSet<qint64> unseenAppPIDs;
};

// An application's identity: its desktop-entry id and its display name in the current language.
struct AppRecord {
    QString appId;                      // desktop-entry id, e.g. "org.xfce.mousepad"
    std::optional<QString> displayName; // the entry's localised Name
};

class DesktopSession {
public:
    virtual ~DesktopSession() = default;

    virtual DesktopSnapshot snapshot() = 0;
    virtual std::optional<AppRecord> application(qint64 pid) = 0;

    // The desktop-entry id of the application in front now, if any.
    virtual std::optional<QString> frontmostAppId() = 0;
    // Called on the main thread with the desktop-entry id of each newly activated application.
    virtual void setActivationHandler(std::function<void(const QString& appId)> handler) = 0;

    // Asks every top-level window of the pinned process to close through the window manager.
    // The windows are matched by pid, so nothing is sent unless `process` is still running once
    // they have been found: until it ends, no other process can hold its pid. True when at least
    // one window was asked.
    virtual bool requestClose(ProcessHandle& process) = 0;
};

} // namespace quelmo
