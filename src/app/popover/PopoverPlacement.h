#pragma once

#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <optional>

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

// A screen as the popover sees it: its place in logical pixels (Qt's coordinates) and how many
// device pixels make one logical pixel.
struct ScreenSpace {
    QRect geometry;
    double devicePixelRatio = 1;
};

// Tray hosts and compositors speak in device pixels (the X root window's coordinates). A screen
// keeps its top-left corner in device pixels and scales the rest, so a device point on a screen
// maps to that corner plus its offset divided by the ratio. Nothing for a point on no screen.
std::optional<QPoint> logicalFromDevice(QPoint device, const QList<ScreenSpace>& screens);
// The way back, for a logical point on one of `screens` (else the point itself).
QPoint deviceFromLogical(QPoint logical, const QList<ScreenSpace>& screens);

// How far (logical pixels) a host's click point may lie from the pointer and still be taken as
// the place of the click: the size of a large panel icon, whose corner or centre some hosts
// report instead of the pointer.
inline constexpr int clickPointReach = 64;

// Where the popover hangs from an item whose place (logical) is known: the middle of its bottom
// edge in the upper half of its screen, of its top edge in the lower half, so that the popover
// clears the item (and a panel that does not reserve its space) on either side.
QPoint itemAnchor(const QRect& item, const QList<ScreenSpace>& screens);

// Where the popover hangs for a click a tray host reported at `reported` (device pixels). Some
// hosts report a point relative to their own widget ((0, 25), (8, 14)), which lands at the far
// left of the screen: the reported point is only taken when it lies on a screen near the
// `pointer` (logical). Otherwise the pointer, when it is on a screen; else the item's anchor
// when the host gives its geometry (`item`, logical); else the reported point.
QPoint clickAnchor(QPoint reported, std::optional<QPoint> pointer, std::optional<QRect> item,
                   const QList<ScreenSpace>& screens);

} // namespace quelmo
