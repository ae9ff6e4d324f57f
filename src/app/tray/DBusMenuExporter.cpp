#include "app/tray/DBusMenuExporter.h"

#include "app/tray/CachedInterfaceXml.h"
#include "app/tray/DBusMenuAdaptor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QGuiApplication>

namespace quelmo {

namespace {

QVariantMap filtered(QVariantMap all, const QStringList& names) {
    if (names.isEmpty())
        return all;
    QVariantMap kept;
    for (const QString& name : names)
        if (all.contains(name))
            kept.insert(name, all.value(name));
    return kept;
}

} // namespace

DBusMenuExporter::DBusMenuExporter(QObject* parent) : QObject(parent) {
    registerDBusTypes();
    new DBusMenuAdaptor(this);
    new CachedInterfaceXml(this);
    itemProperties_.append(allProperties(0));
    layout_ = item(0, -1, {});
}

void DBusMenuExporter::setEntries(const QList<StatusMenuEntry>& entries) {
    entries_ = entries;
    // Built once here, so that hosts asking again and again only get copies.
    itemProperties_.clear();
    for (int id = 0; id <= entries_.size(); ++id)
        itemProperties_.append(allProperties(id));
    layout_ = item(0, -1, {});
    ++revision_;
    emit LayoutUpdated(revision_, 0);
}

DBusMenuShortcut DBusMenuExporter::shortcutOf(const QKeySequence& sequence) {
    if (sequence.isEmpty())
        return {};
    const QKeyCombination chord = sequence[0];
    QStringList keys;
    const Qt::KeyboardModifiers mods = chord.keyboardModifiers();
    if (mods & Qt::ControlModifier)
        keys << QStringLiteral("Control");
    if (mods & Qt::AltModifier)
        keys << QStringLiteral("Alt");
    if (mods & Qt::ShiftModifier)
        keys << QStringLiteral("Shift");
    if (mods & Qt::MetaModifier)
        keys << QStringLiteral("Super");
    // Hosts look key names up as X keysym names: "q" for the letter key, "F4", "Delete".
    const QString key = QKeySequence(chord.key()).toString(QKeySequence::PortableText);
    keys << (key.size() == 1 && key.at(0).isLetter() ? key.toLower() : key);
    return {keys};
}

QVariantMap DBusMenuExporter::properties(int id, const QStringList& names) const {
    return hasItem(id) ? filtered(itemProperties_.value(id), names) : QVariantMap();
}

QVariantMap DBusMenuExporter::allProperties(int id) const {
    QVariantMap all;
    if (id == 0) {
        all.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    } else if (hasItem(id)) {
        const StatusMenuEntry& entry = entries_.at(id - 1);
        all.insert(QStringLiteral("label"), entry.title);
        all.insert(QStringLiteral("enabled"), true);
        all.insert(QStringLiteral("visible"), true);
        if (!entry.shortcut.isEmpty())
            all.insert(QStringLiteral("shortcut"), QVariant::fromValue(shortcutOf(entry.shortcut)));
    }
    return all;
}

DBusMenuLayoutItem DBusMenuExporter::item(int id, int depth, const QStringList& names) const {
    DBusMenuLayoutItem result{id, properties(id, names), {}};
    // Any negative depth means "all levels"; the entries are leaves, so one level is all there is.
    if (id == 0 && depth != 0)
        for (int child = 1; child <= entries_.size(); ++child)
            result.children.append(item(child, 0, names));
    return result;
}

QString DBusMenuExporter::textDirection() const {
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? QStringLiteral("rtl")
                                                                 : QStringLiteral("ltr");
}

uint DBusMenuExporter::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                 DBusMenuLayoutItem& layout) {
    if (parentId == 0 && recursionDepth != 0 && propertyNames.isEmpty())
        layout = layout_; // what hosts ask for every time
    else if (hasItem(parentId))
        layout = item(parentId, recursionDepth, propertyNames);
    else
        failUnknownItem(parentId);
    return revision_;
}

DBusMenuItemPropertiesList DBusMenuExporter::GetGroupProperties(const QList<int>& ids,
                                                                const QStringList& propertyNames) {
    DBusMenuItemPropertiesList result;
    for (const int id : ids)
        if (hasItem(id))
            result.append({id, properties(id, propertyNames)});
    return result;
}

QDBusVariant DBusMenuExporter::GetProperty(int id, const QString& name) {
    const QVariant value = properties(id, {name}).value(name);
    if (!value.isValid()) {
        // An empty variant cannot go on the bus, and a caller with no reply waits for its
        // timeout: say what is wrong instead.
        if (!hasItem(id))
            failUnknownItem(id);
        else if (calledFromDBus())
            sendErrorReply(QDBusError::InvalidArgs,
                           QStringLiteral("Menu item %1 has no property %2").arg(id).arg(name));
    }
    return QDBusVariant(value);
}

void DBusMenuExporter::Event(int id, const QString& eventId, const QDBusVariant&, uint) {
    handleEvent(id, eventId);
}

QList<int> DBusMenuExporter::EventGroup(const DBusMenuEventList& events) {
    QList<int> unknown;
    for (const DBusMenuEvent& event : events) {
        if (hasItem(event.id))
            handleEvent(event.id, event.eventId);
        else
            unknown.append(event.id);
    }
    return unknown;
}

bool DBusMenuExporter::AboutToShow(int id) {
    if (id == 0)
        emit aboutToShow();
    return false; // the menu never changes while it is open
}

QList<int> DBusMenuExporter::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    for (const int id : ids)
        if (!hasItem(id))
            idErrors.append(id);
    if (ids.contains(0))
        emit aboutToShow();
    return {};
}

void DBusMenuExporter::handleEvent(int id, const QString& eventId) {
    if (id == 0 && eventId == QLatin1String("opened")) {
        emit opened();
        return;
    }
    if (eventId != QLatin1String("clicked") || id < 1 || id > entries_.size())
        return;
    // Answer the call before acting: the action may well be quitting the program. A burst of
    // clicks on one entry acts once.
    const int index = id - 1;
    if (pendingTriggers_.contains(index))
        return;
    pendingTriggers_.insert(index);
    QMetaObject::invokeMethod(
        this,
        [this, index] {
            pendingTriggers_.remove(index);
            emit triggered(index);
        },
        Qt::QueuedConnection);
}

void DBusMenuExporter::failUnknownItem(int id) {
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("No menu item %1").arg(id));
}

} // namespace quelmo
