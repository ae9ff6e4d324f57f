#include "app/tray/DBusTypes.h"

#include <QDBusMetaType>
#include <QtEndian>

namespace quelmo {

SniPixmap toSniPixmap(const QImage& image) {
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    SniPixmap pixmap{argb.width(), argb.height(), {}};
    pixmap.argb.resize(static_cast<qsizetype>(argb.width()) * argb.height() * 4);
    auto* out = reinterpret_cast<uchar*>(pixmap.argb.data());
    for (int y = 0; y < argb.height(); ++y) {
        const auto* row = reinterpret_cast<const quint32*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x, out += 4)
            qToBigEndian<quint32>(row[x], out);
    }
    return pixmap;
}

void registerDBusTypes() {
    static const bool registered = [] {
        qDBusRegisterMetaType<SniPixmap>();
        qDBusRegisterMetaType<SniPixmaps>();
        qDBusRegisterMetaType<SniToolTip>();
        qDBusRegisterMetaType<DBusMenuLayoutItem>();
        qDBusRegisterMetaType<DBusMenuItemProperties>();
        qDBusRegisterMetaType<DBusMenuItemPropertiesList>();
        qDBusRegisterMetaType<DBusMenuEvent>();
        qDBusRegisterMetaType<DBusMenuEventList>();
        qDBusRegisterMetaType<DBusMenuShortcut>();
        return true;
    }();
    Q_UNUSED(registered);
}

QDBusArgument& operator<<(QDBusArgument& arg, const SniPixmap& value) {
    arg.beginStructure();
    arg << value.width << value.height << value.argb;
    arg.endStructure();
    return arg;
}

const QDBusArgument& operator>>(const QDBusArgument& arg, SniPixmap& value) {
    arg.beginStructure();
    arg >> value.width >> value.height >> value.argb;
    arg.endStructure();
    return arg;
}

QDBusArgument& operator<<(QDBusArgument& arg, const SniToolTip& value) {
    arg.beginStructure();
    arg << value.iconName << value.icons << value.title << value.description;
    arg.endStructure();
    return arg;
}

const QDBusArgument& operator>>(const QDBusArgument& arg, SniToolTip& value) {
    arg.beginStructure();
    arg >> value.iconName >> value.icons >> value.title >> value.description;
    arg.endStructure();
    return arg;
}

QDBusArgument& operator<<(QDBusArgument& arg, const DBusMenuLayoutItem& value) {
    arg.beginStructure();
    arg << value.id << value.properties;
    arg.beginArray(qMetaTypeId<QDBusVariant>());
    for (const DBusMenuLayoutItem& child : value.children)
        arg << QDBusVariant(QVariant::fromValue(child));
    arg.endArray();
    arg.endStructure();
    return arg;
}

const QDBusArgument& operator>>(const QDBusArgument& arg, DBusMenuLayoutItem& value) {
    arg.beginStructure();
    arg >> value.id >> value.properties;
    value.children.clear();
    arg.beginArray();
    while (!arg.atEnd()) {
        QDBusVariant wrapped;
        arg >> wrapped;
        DBusMenuLayoutItem child;
        const QVariant inner = wrapped.variant();
        if (inner.canConvert<QDBusArgument>())
            inner.value<QDBusArgument>() >> child;
        value.children.append(child);
    }
    arg.endArray();
    arg.endStructure();
    return arg;
}

QDBusArgument& operator<<(QDBusArgument& arg, const DBusMenuItemProperties& value) {
    arg.beginStructure();
    arg << value.id << value.properties;
    arg.endStructure();
    return arg;
}

const QDBusArgument& operator>>(const QDBusArgument& arg, DBusMenuItemProperties& value) {
    arg.beginStructure();
    arg >> value.id >> value.properties;
    arg.endStructure();
    return arg;
}

QDBusArgument& operator<<(QDBusArgument& arg, const DBusMenuEvent& value) {
    arg.beginStructure();
    arg << value.id << value.eventId << value.data << value.timestamp;
    arg.endStructure();
    return arg;
}

const QDBusArgument& operator>>(const QDBusArgument& arg, DBusMenuEvent& value) {
    arg.beginStructure();
    arg >> value.id >> value.eventId >> value.data >> value.timestamp;
    arg.endStructure();
    return arg;
}

} // namespace quelmo
