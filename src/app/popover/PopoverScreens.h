#pragma once

#include "app/popover/PopoverPlacement.h"

#include <QList>
#include <QPoint>
#include <optional>

namespace quelmo {

// The screens as the popover's windows see them (Qt's logical coordinates and scale).
QList<ScreenSpace> popoverScreens();

// The pointer's position (logical) when the program can know it: under X11. In a Wayland
// session XWayland only learns of the pointer while it is over an X11 window, so its position
// says nothing about a click on the panel.
std::optional<QPoint> knownPointer();

// Where the popover hangs for a click a tray host reported at `reported` (device pixels); see
// clickAnchor.
QPoint hostClickAnchor(QPoint reported);

} // namespace quelmo
