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

} // namespace

QImage render(int size, const QColor& tint) {
    // The file paints with currentColor so that hosts can restyle it; for our own pixels the
    // colour is written straight into the document.
    QByteArray svg = symbolicSvg();
    svg.replace("fill=\"currentColor\"", "fill=\"" + tint.name(QColor::HexRgb).toLatin1() + '"');

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

bool exportTo(const QString& directory) {
    const QByteArray svg = symbolicSvg();
    const QString themed = directory + QStringLiteral("/hicolor/scalable/status");
    const QString file = QString::fromLatin1(iconName) + QStringLiteral(".svg");
    return !svg.isEmpty() && QDir().mkpath(themed) &&
           writeIfChanged(directory + QLatin1Char('/') + file, svg) &&
           writeIfChanged(themed + QLatin1Char('/') + file, svg);
}

} // namespace quelmo::scissors
