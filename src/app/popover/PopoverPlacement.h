#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace quelmo {

// Gap between the point the popover hangs from and its edge.
inline constexpr int popoverAnchorGap = 4;

// Where a popover of `size` goes for a click at `anchor`: centred under the point, and never
// over a panel, so it starts below the available area's top when the point lies in a top panel.
// When there is no room below (a bottom panel), it opens above the point instead. The result
// always lies inside `available` (the screen minus its panels) when it fits there at all;
// a popover larger than the area is pinned to the area's top-left corner.
QRect popoverGeometry(QPoint anchor, QSize size, const QRect& available);

} // namespace quelmo
