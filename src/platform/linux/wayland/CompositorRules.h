#pragma once

// What the cleanup rules need from a compositor's window list, decided on plain window facts.

#include "core/cleanup/DesktopSession.h"
#include "platform/linux/apps/DesktopEntryIndex.h"
#include "platform/linux/wayland/CompositorLink.h"

#include <optional>
#include <vector>

namespace quelmo::linux_platform {

// The ordinary applications, the processes with a visible window (on screen, at least 40 pixels
// high when the height is known) and the process in front. `ownPid`'s windows (Quelmo's own
// popover) never make the frontmost process: while one of them has the focus, `lastFront` (the
// process that was in front before) stays in front.
DesktopSnapshot summarizeWindows(const std::vector<CompositorWindow>& windows, qint64 ownPid,
                                 std::optional<qint64> lastFront);

// The desktop-entry id a window's application id stands for: an installed entry of that id,
// else the entry whose window class or id matches it, else (for a native Wayland window, whose
// application id names its desktop entry by convention) the id as the application declares it.
std::optional<QString> desktopEntryIdOf(const CompositorWindow& window, DesktopEntryIndex& index);

} // namespace quelmo::linux_platform
