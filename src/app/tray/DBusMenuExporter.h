#pragma once

#include "app/tray/DBusTypes.h"
#include "app/tray/StatusItem.h"

#include <QDBusContext>
#include <QObject>
#include <QSet>

namespace quelmo {

// Publishes a flat menu over com.canonical.dbusmenu, the protocol through which tray hosts
// draw an item's context menu themselves. Item 0 is the root; entry i has id i + 1. The
// properties, slots and signals named as on the bus are what the generated adaptor relays.
class DBusMenuExporter : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_PROPERTY(uint Version READ version)
    Q_PROPERTY(QString TextDirection READ textDirection)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath)

public:
    static constexpr const char* objectPath = "/MenuBar";

    explicit DBusMenuExporter(QObject* parent = nullptr);

    void setEntries(const QList<StatusMenuEntry>& entries);
    uint revision() const { return revision_; }

    uint version() const { return 3; }
    QString textDirection() const;
    QString status() const { return QStringLiteral("normal"); }
    QStringList iconThemePath() const { return {}; }

    // aas form of a key sequence's first chord, e.g. {{"Control", "q"}}.
    static DBusMenuShortcut shortcutOf(const QKeySequence& sequence);

public slots:
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                   quelmo::DBusMenuLayoutItem& layout);
    quelmo::DBusMenuItemPropertiesList GetGroupProperties(const QList<int>& ids,
                                                          const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
    QList<int> EventGroup(const quelmo::DBusMenuEventList& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

signals:
    void triggered(int index);
    // The host has opened the menu (its root).
    void opened();
    // The host asked whether the root needs updating, as hosts do before showing the menu (and
    // GNOME Shell's extension also when the item arrives).
    void aboutToShow();

    // The protocol's signals, relayed to the bus by the adaptor.
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    QVariantMap properties(int id, const QStringList& names) const;
    QVariantMap allProperties(int id) const;
    bool hasItem(int id) const { return id >= 0 && id <= entries_.size(); }
    void handleEvent(int id, const QString& eventId);
    DBusMenuLayoutItem item(int id, int depth, const QStringList& names) const;
    void failUnknownItem(int id);

    QList<StatusMenuEntry> entries_;
    QList<QVariantMap> itemProperties_; // by id
    DBusMenuLayoutItem layout_;         // the whole menu with every property
    QSet<int> pendingTriggers_;
    uint revision_ = 1;
};

} // namespace quelmo
