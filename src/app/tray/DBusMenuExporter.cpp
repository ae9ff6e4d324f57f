#include "app/tray/DBusMenuExporter.h"

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
}

void DBusMenuExporter::setEntries(const QList<StatusMenuEntry>& entries) {
    entries_ = entries;
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
    return filtered(all, names);
}

DBusMenuLayoutItem DBusMenuExporter::item(int id, int depth, const QStringList& names) const {
    DBusMenuLayoutItem result{id, properties(id, names), {}};
    // A depth of -1 means "all levels"; the entries are leaves, so one level is all there is.
    if (id == 0 && depth != 0)
        for (int child = 1; child <= entries_.size(); ++child)
            result.children.append(item(child, depth - 1, names));
    return result;
}

QString DBusMenuExporter::textDirection() const {
    return QGuiApplication::layoutDirection() == Qt::RightToLeft ? QStringLiteral("rtl")
                                                                 : QStringLiteral("ltr");
}

uint DBusMenuExporter::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                                 DBusMenuLayoutItem& layout) {
    if (hasItem(parentId))
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
    return QDBusVariant(properties(id, {name}).value(name));
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

bool DBusMenuExporter::AboutToShow(int) {
    return false; // the menu never changes while it is open
}

QList<int> DBusMenuExporter::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    for (const int id : ids)
        if (!hasItem(id))
            idErrors.append(id);
    return {};
}

void DBusMenuExporter::handleEvent(int id, const QString& eventId) {
    if (eventId != QLatin1String("clicked") || id < 1 || id > entries_.size())
        return;
    // Answer the call before acting: the action may well be quitting the program.
    QMetaObject::invokeMethod(
        this, [this, index = id - 1] { emit triggered(index); }, Qt::QueuedConnection);
}

void DBusMenuExporter::failUnknownItem(int id) {
    if (calledFromDBus())
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("No menu item %1").arg(id));
}

} // namespace quelmo
