#pragma once

#include <QHash>
#include <QQuickImageProvider>

namespace quelmo {

// Draws the popover's symbols for QML, from the Phosphor SVGs kept with the program, in any colour
// or as a gradient. Everything is painted on the CPU, so it works with the software renderer.
//
//   image://symbol/<name>?color=RRGGBB[AA]                    one colour
//   image://symbol/<name>?from=RRGGBB[AA]&to=RRGGBB[AA]       top-left to bottom-right gradient
//   image://symbol/<name>?across=RRGGBB[AA],RRGGBB[AA],...    left to right, stops evenly spaced
//
// <name> is a symbol name from icons/phosphor/symbols.json ("scissors", "cpu", ...). An unknown
// name draws nothing (a transparent image of the requested size).
class SymbolImageProvider : public QQuickImageProvider {
public:
    SymbolImageProvider();

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

    // The QML source for a symbol: `to` is only used when it is not fully transparent.
    static QString url(const QString& name, const QColor& color, const QColor& to = {});
    // The QML source for a symbol shaded left to right through `stops` (at least one).
    static QString urlAcross(const QString& name, const QList<QColor>& stops);

    static constexpr int defaultSize = 32;

private:
    QHash<QString, QString> files_; // symbol name -> resource path
};

} // namespace quelmo
