#pragma once

#include "app/shell/ApplicationId.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QString>

namespace quelmo::scissors {

// The name the status item gives its icon. Hosts that look a name ending in "-symbolic" up only
// in the desktop's icon theme (Cinnamon) would find nothing, so the name has no suffix; hosts
// that prefer symbolic icons (GNOME Shell) ask for the name with "-symbolic" appended and find
// the recolourable twin beside it, where there is one.
inline constexpr const char* iconName = QUELMO_APP_ID "-tray";
// What screen readers announce for the item.
inline constexpr const char* accessibleName = "Quelmo";

// The monochrome scissors drawn in `tint` at `size` × `size` pixels, transparent elsewhere.
QImage render(int size, const QColor& tint);

// The scissors at the sizes trays ask for, all in `tint`.
QIcon icon(const QColor& tint);

// The contrast ratio of two opaque colours by their relative luminance, from 1 (equal) to 21
// (black on white).
double contrastRatio(const QColor& a, const QColor& b);
// The least contrast the icon keeps with the panel behind it.
inline constexpr double minimumContrast = 3.0;
// The colour to draw the icon in on `background`: `preferred` (the palette's or the tray's
// own) while it stands out enough, else white or near-black, whichever stands out more; one of
// the two always reaches 4:1.
QColor tintOn(const QColor& background, const QColor& preferred);

// For hosts that draw the item's own pixels on a panel of a colour nobody tells: the scissors
// in `tint` inside a one-pixel rim of white or near-black, whichever stands out more from
// `tint`, so the icon stands out on light and dark panels alike.
QImage renderWithRim(int size, const QColor& tint);

// Writes the icon where a tray host can find it by name: loose in `directory` (GTK hosts) and
// under hicolor/scalable/status (KDE hosts), as `iconName` drawn in `tint` and, with
// `withSymbolicTwin`, as its symbolic twin, which hosts recolour with the panel's own text
// colour. Without it a twin written before is removed: Cinnamon's status watcher picks the twin
// whenever it finds one and hands the applet its file, which the applet then takes for a
// themed name and draws as nothing. False when it cannot be written.
bool exportTo(const QString& directory, const QColor& tint, bool withSymbolicTwin);

} // namespace quelmo::scissors
