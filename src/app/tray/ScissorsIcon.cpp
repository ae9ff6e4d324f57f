#include "app/tray/ScissorsIcon.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QSaveFile>
#include <QSvgRenderer>

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

bool exportTo(const QString& directory, const QColor& tint) {
    const QByteArray symbolic = symbolicSvg();
    const QString themed = directory + QStringLiteral("/hicolor/scalable/status");
    const QString name = QString::fromLatin1(iconName);
    if (symbolic.isEmpty() || !QDir().mkpath(themed))
        return false;
    bool written = true;
    for (const QString& folder : {directory, themed}) {
        written = written &&
                  writeIfChanged(folder + QLatin1Char('/') + name + QStringLiteral(".svg"),
                                 tintedSvg(tint)) &&
                  writeIfChanged(folder + QLatin1Char('/') + name + QStringLiteral("-symbolic.svg"),
                                 symbolic);
    }
    return written;
}

} // namespace quelmo::scissors
