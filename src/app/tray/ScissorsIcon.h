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
// the recolourable twin beside it.
inline constexpr const char* iconName = QUELMO_APP_ID "-tray";
// What screen readers announce for the item.
inline constexpr const char* accessibleName = "Quelmo";

// The monochrome scissors drawn in `tint` at `size` × `size` pixels, transparent elsewhere.
QImage render(int size, const QColor& tint);

// The scissors at the sizes trays ask for, all in `tint`.
QIcon icon(const QColor& tint);

// Writes the icon where a tray host can find it by name: loose in `directory` (GTK hosts) and
// under hicolor/scalable/status (KDE hosts), as `iconName` drawn in `tint` and as its symbolic
// twin, which hosts recolour with the panel's own text colour. False when it cannot be written.
bool exportTo(const QString& directory, const QColor& tint);

} // namespace quelmo::scissors
