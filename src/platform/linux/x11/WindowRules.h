#pragma once

// What the rules above need from the desktop's window list, decided on plain window facts so
// that it can be checked without an X server.

#include "core/cleanup/DesktopSession.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace quelmo::linux_platform {

// The window type the window manager goes by (the first one it knows in _NET_WM_WINDOW_TYPE).
enum class WindowKind {
    Normal,
    Dialog,
    Utility,
    Dock,
    Desktop,
    Toolbar,
    Menu,
    Splash,
    Notification,
    Other
};

struct WindowFacts {
    std::uint32_t id = 0;
    std::optional<qint64> pid; // owning process, when known
    WindowKind kind = WindowKind::Normal;
    bool skipTaskbar = false;             // _NET_WM_STATE_SKIP_TASKBAR
    bool hidden = false;                  // _NET_WM_STATE_HIDDEN (minimised, shaded away)
    bool viewable = false;                // mapped, with every ancestor mapped
    std::optional<std::uint32_t> desktop; // _NET_WM_DESKTOP; 0xFFFFFFFF = on every desktop
    std::optional<double> height;         // from the window's geometry
};

struct DesktopFacts {
    std::vector<WindowFacts> windows; // bottom to top
    std::optional<std::uint32_t> activeWindow;
    std::optional<std::uint32_t> currentDesktop;
};

inline constexpr std::uint32_t allDesktops = 0xFFFFFFFFu;

// Windows of the ordinary layer: normal windows, dialogs and utility windows. Docks, desktops,
// toolbars, menus, splash screens and notifications live on other layers.
bool isLayerZero(WindowKind kind);

// On the desktop shown now. A window manager without desktops, or a window without a desktop
// of its own, counts as on it.
bool isOnCurrentDesktop(std::optional<std::uint32_t> desktop, std::optional<std::uint32_t> current);

// Drawn on screen now: viewable, not minimised, on the current desktop.
bool isOnScreen(const WindowFacts& window, std::optional<std::uint32_t> currentDesktop);

// Whether an on-screen window makes its owner count as having a visible window: it must be on
// layer 0, its owner must be known, and when its height is known it must be at least 40 pixels
// (anything shorter is a strip or a bar, not a window someone works in).
bool countsAsVisible(WindowKind kind, std::optional<qint64> pid, std::optional<double> height);

// A window that makes its process an ordinary (taskbar) application.
bool isTaskbarWindow(const WindowFacts& window);

DesktopSnapshot summarize(const DesktopFacts& facts);

} // namespace quelmo::linux_platform
