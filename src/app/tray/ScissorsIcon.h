#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QString>

namespace quelmo::scissors {

// The icon's name in a freedesktop icon theme. The "-symbolic" suffix asks hosts to recolour it
// with the panel's own foreground colour.
inline constexpr const char* iconName = "quelmo-scissors-symbolic";
// What screen readers announce for the item.
inline constexpr const char* accessibleName = "Quelmo";

// The monochrome scissors drawn in `tint` at `size` × `size` pixels, transparent elsewhere.
QImage render(int size, const QColor& tint);

// The scissors at the sizes trays ask for, all in `tint`.
QIcon icon(const QColor& tint);

// Writes the symbolic icon where a tray host can find it by name: loose in `directory` (GTK
// hosts) and under hicolor/scalable/status (KDE hosts). Returns false when it cannot be written.
bool exportTo(const QString& directory);

} // namespace quelmo::scissors
