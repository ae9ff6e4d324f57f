#pragma once

// Batched reads of the window manager's client list and of each client window's properties.
// Every read sends all its requests first and only then collects the replies, so a desktop of
// any size costs a fixed number of round trips to the X server.

#include "platform/linux/apps/AppIdentity.h"
#include "platform/linux/x11/WindowRules.h"
#include "platform/linux/x11/XcbConnection.h"

#include <optional>
#include <vector>

namespace quelmo::linux_platform {

// Every managed top-level window with what the rules need: three round trips.
DesktopFacts surveyDesktop(XcbConnection& x);

// The managed top-level client windows (_NET_CLIENT_LIST with anything only
// _NET_CLIENT_LIST_STACKING has yet).
std::vector<xcb_window_t> clientWindows(XcbConnection& x);

// _NET_ACTIVE_WINDOW; nothing when no window is active.
std::optional<xcb_window_t> activeWindow(XcbConnection& x);

// The owning process of each window (same order): _NET_WM_PID when the window comes from this
// machine, else the X server's record of the client's process (X-Resource extension).
std::vector<std::optional<qint64>> processesOf(XcbConnection& x,
                                               const std::vector<xcb_window_t>& windows);

// The application hints of each window (same order).
std::vector<WindowHints> hintsOf(XcbConnection& x, const std::vector<xcb_window_t>& windows);

// _NET_WM_PID is only meaningful on the machine that wrote it: a window shown from another
// host (WM_CLIENT_MACHINE names another machine) would otherwise point at an unrelated local
// process. Host names are compared up to their first dot, ignoring case.
std::optional<qint64> trustedWmPid(std::optional<std::uint32_t> wmPid,
                                   const QByteArray& clientMachine, const QByteArray& hostName);

} // namespace quelmo::linux_platform
