#include "app/popover/SymbolImageProvider.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLinearGradient>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrlQuery>

namespace quelmo {

namespace {

const QString iconFolder = QStringLiteral(":/quelmo/icons/phosphor/");

QString hex(const QColor& color) {
    const QColor c = color.toRgb();
    QString text = QString::asprintf("%02x%02x%02x", c.red(), c.green(), c.blue());
    if (c.alpha() != 255)
        text += QString::asprintf("%02x", c.alpha());
    return text;
}

QColor fromHex(const QString& text) {
    bool ok = false;
    const uint value = text.toUInt(&ok, 16);
    if (!ok)
        return Qt::black;
    if (text.size() == 8)
        return QColor((value >> 24) & 0xff, (value >> 16) & 0xff, (value >> 8) & 0xff,
                      value & 0xff);
    return QColor((value >> 16) & 0xff, (value >> 8) & 0xff, value & 0xff);
}

} // namespace

SymbolImageProvider::SymbolImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {
    QFile table(iconFolder + QStringLiteral("symbols.json"));
    if (!table.open(QIODevice::ReadOnly))
        return;
    const QJsonObject names = QJsonDocument::fromJson(table.readAll()).object();
    for (auto it = names.begin(); it != names.end(); ++it)
        files_.insert(it.key(), iconFolder + it.value().toString());
}

QString SymbolImageProvider::url(const QString& name, const QColor& color, const QColor& to) {
    QString source = QStringLiteral("image://symbol/") + name;
    if (to.isValid() && to.alpha() > 0)
        return source + QStringLiteral("?from=") + hex(color) + QStringLiteral("&to=") + hex(to);
    return source + QStringLiteral("?color=") + hex(color);
}

QString SymbolImageProvider::urlAcross(const QString& name, const QList<QColor>& stops) {
    QStringList colours;
    for (const QColor& stop : stops)
        colours.append(hex(stop));
    return QStringLiteral("image://symbol/") + name + QStringLiteral("?across=") +
           colours.join(QLatin1Char(','));
}

QImage SymbolImageProvider::requestImage(const QString& id, QSize* size,
                                         const QSize& requestedSize) {
    const QString name = id.section(QLatin1Char('?'), 0, 0);
    const QUrlQuery query(id.section(QLatin1Char('?'), 1));
    const QSize target(requestedSize.width() > 0 ? requestedSize.width() : defaultSize,
                       requestedSize.height() > 0 ? requestedSize.height() : defaultSize);
    if (size)
        *size = target;

    QImage image(target, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(files_.value(name));
    if (!renderer.isValid())
        return image;

    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter, QRectF(QPointF(0, 0), target));
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    if (query.hasQueryItem(QStringLiteral("across"))) {
        const QStringList stops =
            query.queryItemValue(QStringLiteral("across")).split(QLatin1Char(','));
        QLinearGradient gradient(0, 0, target.width(), 0);
        for (qsizetype i = 0; i < stops.size(); ++i)
            gradient.setColorAt(stops.size() > 1 ? double(i) / double(stops.size() - 1) : 0,
                                fromHex(stops[i]));
        painter.fillRect(image.rect(), gradient);
    } else if (query.hasQueryItem(QStringLiteral("from"))) {
        QLinearGradient gradient(0, 0, target.width(), target.height());
        gradient.setColorAt(0, fromHex(query.queryItemValue(QStringLiteral("from"))));
        gradient.setColorAt(1, fromHex(query.queryItemValue(QStringLiteral("to"))));
        painter.fillRect(image.rect(), gradient);
    } else {
        painter.fillRect(image.rect(), fromHex(query.queryItemValue(QStringLiteral("color"))));
    }
    return image;
}

} // namespace quelmo
