#pragma once

#include <QColor>
#include <QImage>
#include <QRect>
#include <optional>

namespace quelmo {

// The colour most of `pixels` have outside `hole` (where the icon itself sits): the panel's
// background around the icon, whatever else (a neighbouring icon, a border) shares the ring.
// Nothing when too few pixels lie outside the hole to tell.
std::optional<QColor> dominantColourAround(const QImage& pixels, const QRect& hole);

// The colour of the tray behind the X11 window `icon` (docked in an XEmbed tray): read from the
// nearest window it is embedded in that has opaque pixels around it. Nothing outside X11, or
// when no window around the icon can be read.
std::optional<QColor> trayBackgroundBehind(quint32 icon);

} // namespace quelmo
