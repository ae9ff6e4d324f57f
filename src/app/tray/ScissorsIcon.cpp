#include "app/tray/ScissorsIcon.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSaveFile>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>

namespace quelmo::scissors {

namespace {

QByteArray symbolicSvg() {
    QFile file(QStringLiteral(":/quelmo/icons/quelmo-scissors-symbolic.svg"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeIfChanged(const QString& path, const QByteArray& contents) {
    QFile existing(path);
    if (existing.open(QIODevice::ReadOnly) && existing.readAll() == contents)
        return true;
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() &&
           file.commit();
}

// The file paints with currentColor so that hosts can restyle it; where it is to keep one colour,
// the colour is written straight into the document.
QByteArray tintedSvg(const QColor& tint) {
    QByteArray svg = symbolicSvg();
    svg.replace("fill=\"currentColor\"", "fill=\"" + tint.name(QColor::HexRgb).toLatin1() + '"');
    return svg;
}

} // namespace

QImage render(int size, const QColor& tint) {
    const QByteArray svg = tintedSvg(tint);
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(svg);
    if (renderer.isValid()) {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer.render(&painter);
    }
    return image;
}

QIcon icon(const QColor& tint) {
    QIcon result;
    for (const int size : {16, 22, 24, 32, 48, 64})
        result.addPixmap(QPixmap::fromImage(render(size, tint)));
    return result;
}

namespace {

const QColor light(0xff, 0xff, 0xff);
const QColor dark(0x1e, 0x1e, 0x1e);

double luminance(const QColor& colour) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    const QColor rgb = colour.toRgb();
    return 0.2126 * linear(rgb.redF()) + 0.7152 * linear(rgb.greenF()) +
           0.0722 * linear(rgb.blueF());
}

QColor standingOutFrom(const QColor& background) {
    return contrastRatio(light, background) >= contrastRatio(dark, background) ? light : dark;
}

// The icon for hosts that load it by name and draw it as it is, on a panel of a colour nobody
// tells (Cinnamon's is dark, MATE's light): the glyph in `tint` over a rim of white or
// near-black, drawn as wider copies of the shapes beneath it, as every SVG renderer can. The
// view is widened by the rim so that it is not cut off at the edges.
QByteArray rimmedSvg(const QColor& tint) {
    const QByteArray glyph = tintedSvg(tint);
    const qsizetype shapes = glyph.indexOf("<path"), end = glyph.lastIndexOf("</svg>");
    if (shapes < 0 || end < shapes)
        return glyph;
    const QByteArray colour = standingOutFrom(tint).name(QColor::HexRgb).toLatin1();
    QByteArray rim = glyph.mid(shapes, end - shapes);
    rim.replace("fill=\"" + tint.name(QColor::HexRgb).toLatin1() + '"',
                "fill=\"" + colour + "\" stroke=\"" + colour +
                    "\" stroke-width=\"1.5\" stroke-linejoin=\"round\"");
    QByteArray svg = glyph.left(shapes) + rim + glyph.mid(shapes);
    svg.replace("viewBox=\"0 0 16 16\"", "viewBox=\"-0.75 -0.75 17.5 17.5\"");
    return svg;
}

} // namespace

double contrastRatio(const QColor& a, const QColor& b) {
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QColor tintOn(const QColor& background, const QColor& preferred) {
    if (preferred.isValid() && contrastRatio(preferred, background) >= minimumContrast)
        return preferred;
    return standingOutFrom(background);
}

QImage renderWithRim(int size, const QColor& tint) {
    const QImage glyph = render(size, tint);
    const QImage rim = render(size, standingOutFrom(tint));
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    for (int dx = -1; dx <= 1; ++dx) {
        for (int dy = -1; dy <= 1; ++dy) {
            if (dx != 0 || dy != 0)
                painter.drawImage(dx, dy, rim);
        }
    }
    painter.drawImage(0, 0, glyph);
    return image;
}

bool exportTo(const QString& directory, const QColor& tint, bool withSymbolicTwin) {
    const QByteArray symbolic = symbolicSvg();
    const QString themed = directory + QStringLiteral("/hicolor/scalable/status");
    const QString name = QString::fromLatin1(iconName);
    if (symbolic.isEmpty() || !QDir().mkpath(themed))
        return false;
    bool written = true;
    for (const QString& folder : {directory, themed}) {
        const QString stem = folder + QLatin1Char('/') + name;
        written = written && writeIfChanged(stem + QStringLiteral(".svg"), rimmedSvg(tint));
        const QString twin = stem + QStringLiteral("-symbolic.svg");
        if (withSymbolicTwin)
            written = written && writeIfChanged(twin, symbolic);
        else if (QFile::exists(twin))
            written = written && QFile::remove(twin);
    }
    return written;
}

} // namespace quelmo::scissors
