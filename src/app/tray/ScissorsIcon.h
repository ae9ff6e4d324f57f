#pragma once

#include "app/shell/ApplicationId.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QString>

namespace quelmo::scissors {

// The icon's name in a freedesktop icon theme, the one the installed symbolic icon has too. The
// "-symbolic" suffix asks hosts to recolour it with the panel's own foreground colour.
inline constexpr const char* iconName = QUELMO_APP_ID "-symbolic";
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

// Writes the symbolic icon where a tray host can find it by name: loose in `directory` (GTK
// hosts) and under hicolor/scalable/status (KDE hosts). Returns false when it cannot be written.
bool exportTo(const QString& directory);

} // namespace quelmo::scissors
