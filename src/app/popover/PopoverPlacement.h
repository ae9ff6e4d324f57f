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

// The popover's window is made as tall as the popover may ever grow (`maxHeight`, within the
// room on its side of the click), so that its content can grow and shrink without the window
// being resized and drawn anew; only the part the content covers is shown. Hanging under the
// click, the content sits at the window's top; opened above it, at its bottom.
struct PopoverFrame {
    QRect window;
    bool contentAtBottom = false;

    // Whether content of `height` fits without placing the window again.
    bool fits(int height) const { return height <= window.height(); }
    // The part of the window (in its own coordinates) that content of `height` covers.
    QRect contentArea(int height) const;
};

// The frame for content of `contentHeight` at `anchor`: the content goes where
// `popoverGeometry` puts it, and the window reaches from there towards `maxHeight`.
PopoverFrame popoverFrame(QPoint anchor, int width, int contentHeight, int maxHeight,
                          const QRect& available);

} // namespace quelmo
