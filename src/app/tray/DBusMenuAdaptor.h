#pragma once

#include "app/tray/DBusTypes.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>

namespace quelmo {

class DBusMenuExporter;

// The com.canonical.dbusmenu interface of a DBusMenuExporter.
class DBusMenuAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_CLASSINFO("D-Bus Introspection",
                "<interface name=\"com.canonical.dbusmenu\">\n"
                "  <property name=\"Version\" type=\"u\" access=\"read\"/>\n"
                "  <property name=\"TextDirection\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"Status\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"IconThemePath\" type=\"as\" access=\"read\"/>\n"
                "  <method name=\"GetLayout\">\n"
                "    <arg type=\"i\" name=\"parentId\" direction=\"in\"/>\n"
                "    <arg type=\"i\" name=\"recursionDepth\" direction=\"in\"/>\n"
                "    <arg type=\"as\" name=\"propertyNames\" direction=\"in\"/>\n"
                "    <arg type=\"u\" name=\"revision\" direction=\"out\"/>\n"
                "    <arg type=\"(ia{sv}av)\" name=\"layout\" direction=\"out\"/>\n"
                "  </method>\n"
                "  <method name=\"GetGroupProperties\">\n"
                "    <arg type=\"ai\" name=\"ids\" direction=\"in\"/>\n"
                "    <arg type=\"as\" name=\"propertyNames\" direction=\"in\"/>\n"
                "    <arg type=\"a(ia{sv})\" name=\"properties\" direction=\"out\"/>\n"
                "  </method>\n"
                "  <method name=\"GetProperty\">\n"
                "    <arg type=\"i\" name=\"id\" direction=\"in\"/>\n"
                "    <arg type=\"s\" name=\"name\" direction=\"in\"/>\n"
                "    <arg type=\"v\" name=\"value\" direction=\"out\"/>\n"
                "  </method>\n"
                "  <method name=\"Event\">\n"
                "    <arg type=\"i\" name=\"id\" direction=\"in\"/>\n"
                "    <arg type=\"s\" name=\"eventId\" direction=\"in\"/>\n"
                "    <arg type=\"v\" name=\"data\" direction=\"in\"/>\n"
                "    <arg type=\"u\" name=\"timestamp\" direction=\"in\"/>\n"
                "  </method>\n"
                "  <method name=\"EventGroup\">\n"
                "    <arg type=\"a(isvu)\" name=\"events\" direction=\"in\"/>\n"
                "    <arg type=\"ai\" name=\"idErrors\" direction=\"out\"/>\n"
                "  </method>\n"
                "  <method name=\"AboutToShow\">\n"
                "    <arg type=\"i\" name=\"id\" direction=\"in\"/>\n"
                "    <arg type=\"b\" name=\"needUpdate\" direction=\"out\"/>\n"
                "  </method>\n"
                "  <method name=\"AboutToShowGroup\">\n"
                "    <arg type=\"ai\" name=\"ids\" direction=\"in\"/>\n"
                "    <arg type=\"ai\" name=\"updatesNeeded\" direction=\"out\"/>\n"
                "    <arg type=\"ai\" name=\"idErrors\" direction=\"out\"/>\n"
                "  </method>\n"
                "  <signal name=\"LayoutUpdated\">\n"
                "    <arg type=\"u\" name=\"revision\"/>\n"
                "    <arg type=\"i\" name=\"parent\"/>\n"
                "  </signal>\n"
                "  <signal name=\"ItemActivationRequested\">\n"
                "    <arg type=\"i\" name=\"id\"/>\n"
                "    <arg type=\"u\" name=\"timestamp\"/>\n"
                "  </signal>\n"
                "</interface>\n")
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    explicit DBusMenuAdaptor(DBusMenuExporter* menu);

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

public slots:
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                   quelmo::DBusMenuLayoutItem& layout);
    QList<quelmo::DBusMenuItemProperties> GetGroupProperties(const QList<int>& ids,
                                                             const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    QList<int> EventGroup(const QList<quelmo::DBusMenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

signals:
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    DBusMenuExporter* menu_;
};

} // namespace quelmo
