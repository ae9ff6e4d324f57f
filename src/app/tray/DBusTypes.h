#pragma once

// The structured D-Bus types of the tray protocols (org.kde.StatusNotifierItem and
// com.canonical.dbusmenu), with their QtDBus marshalling.

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusVariant>
#include <QImage>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace quelmo {

// One icon image: ARGB32, big-endian ("network byte order"), row by row.
struct SniPixmap {
    int width = 0;
    int height = 0;
    QByteArray argb;
};
using SniPixmaps = QList<SniPixmap>;

// (sa(iiay)ss): icon name, icon images, title, description.
struct SniToolTip {
    QString iconName;
    SniPixmaps icons;
    QString title;
    QString description;
};

// (ia{sv}av): a menu item, its properties and its children (each wrapped in a variant).
struct DBusMenuLayoutItem {
    int id = 0;
    QVariantMap properties;
    QList<DBusMenuLayoutItem> children;
};

// (ia{sv}): one item's properties.
struct DBusMenuItemProperties {
    int id = 0;
    QVariantMap properties;
};
using DBusMenuItemPropertiesList = QList<DBusMenuItemProperties>;

// (isvu): one event of EventGroup.
struct DBusMenuEvent {
    int id = 0;
    QString eventId;
    QDBusVariant data;
    uint timestamp = 0;
};
using DBusMenuEventList = QList<DBusMenuEvent>;

// aas: a shortcut as lists of key names ({"Control", "q"}).
using DBusMenuShortcut = QList<QStringList>;

// Converts an image to the tray's pixel layout.
SniPixmap toSniPixmap(const QImage& image);

// Registers every type above with QtDBus; safe to call more than once.
void registerDBusTypes();

QDBusArgument& operator<<(QDBusArgument& arg, const SniPixmap& value);
const QDBusArgument& operator>>(const QDBusArgument& arg, SniPixmap& value);
QDBusArgument& operator<<(QDBusArgument& arg, const SniToolTip& value);
const QDBusArgument& operator>>(const QDBusArgument& arg, SniToolTip& value);
QDBusArgument& operator<<(QDBusArgument& arg, const DBusMenuLayoutItem& value);
const QDBusArgument& operator>>(const QDBusArgument& arg, DBusMenuLayoutItem& value);
QDBusArgument& operator<<(QDBusArgument& arg, const DBusMenuItemProperties& value);
const QDBusArgument& operator>>(const QDBusArgument& arg, DBusMenuItemProperties& value);
QDBusArgument& operator<<(QDBusArgument& arg, const DBusMenuEvent& value);
const QDBusArgument& operator>>(const QDBusArgument& arg, DBusMenuEvent& value);

} // namespace quelmo

Q_DECLARE_METATYPE(quelmo::SniPixmap)
Q_DECLARE_METATYPE(quelmo::SniToolTip)
Q_DECLARE_METATYPE(quelmo::DBusMenuLayoutItem)
Q_DECLARE_METATYPE(quelmo::DBusMenuItemProperties)
Q_DECLARE_METATYPE(quelmo::DBusMenuEvent)
