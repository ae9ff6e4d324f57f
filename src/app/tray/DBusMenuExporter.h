#pragma once

#include "app/tray/DBusTypes.h"
#include "app/tray/StatusItem.h"

#include <QDBusContext>
#include <QObject>

namespace quelmo {

// Publishes a flat menu over com.canonical.dbusmenu, the protocol through which tray hosts
// draw an item's context menu themselves. Item 0 is the root; entry i has id i + 1.
class DBusMenuExporter : public QObject, protected QDBusContext {
    Q_OBJECT

public:
    static constexpr const char* objectPath = "/MenuBar";

    explicit DBusMenuExporter(QObject* parent = nullptr);

    void setEntries(const QList<StatusMenuEntry>& entries);
    uint revision() const { return revision_; }

    // The protocol's operations, as the adaptor forwards them.
    DBusMenuLayoutItem layout(int parentId, int depth, const QStringList& names);
    QVariantMap properties(int id, const QStringList& names) const;
    bool hasItem(int id) const { return id >= 0 && id <= entries_.size(); }
    void handleEvent(int id, const QString& eventId);

    // aas form of a key sequence's first chord, e.g. {{"Control", "q"}}.
    static DBusMenuShortcut shortcutOf(const QKeySequence& sequence);

signals:
    void triggered(int index);
    void layoutUpdated(uint revision, int parentId);

private:
    DBusMenuLayoutItem item(int id, int depth, const QStringList& names) const;
    void failUnknownItem(int id);

    QList<StatusMenuEntry> entries_;
    uint revision_ = 1;
};

} // namespace quelmo
