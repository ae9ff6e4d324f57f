#include "app/tray/DBusMenuAdaptor.h"

#include "app/tray/DBusMenuExporter.h"

#include <QGuiApplication>

namespace quelmo {

DBusMenuAdaptor::DBusMenuAdaptor(DBusMenuExporter* menu) : QDBusAbstractAdaptor(menu), menu_(menu) {
    connect(menu, &DBusMenuExporter::layoutUpdated, this, &DBusMenuAdaptor::LayoutUpdated);
}

QString DBusMenuAdaptor::textDirection() const {
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? QStringLiteral("rtl")
                                                                 : QStringLiteral("ltr");
}

uint DBusMenuAdaptor::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                DBusMenuLayoutItem& layout) {
    layout = menu_->layout(parentId, recursionDepth, propertyNames);
    return menu_->revision();
}

DBusMenuItemPropertiesList DBusMenuAdaptor::GetGroupProperties(const QList<int>& ids,
                                                               const QStringList& propertyNames) {
    DBusMenuItemPropertiesList result;
    for (const int id : ids)
        if (menu_->hasItem(id))
            result.append({id, menu_->properties(id, propertyNames)});
    return result;
}

QDBusVariant DBusMenuAdaptor::GetProperty(int id, const QString& name) {
    return QDBusVariant(menu_->properties(id, {name}).value(name));
}

void DBusMenuAdaptor::Event(int id, const QString& eventId, const QDBusVariant&, uint) {
    menu_->handleEvent(id, eventId);
}

QList<int> DBusMenuAdaptor::EventGroup(const DBusMenuEventList& events) {
    QList<int> unknown;
    for (const DBusMenuEvent& event : events) {
        if (menu_->hasItem(event.id))
            menu_->handleEvent(event.id, event.eventId);
        else
            unknown.append(event.id);
    }
    return unknown;
}

bool DBusMenuAdaptor::AboutToShow(int) {
    return false; // the menu never changes while it is open
}

QList<int> DBusMenuAdaptor::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    for (const int id : ids)
        if (!menu_->hasItem(id))
            idErrors.append(id);
    return {};
}

} // namespace quelmo
