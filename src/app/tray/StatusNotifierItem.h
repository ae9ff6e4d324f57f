#pragma once

#include "app/tray/DBusMenuExporter.h"
#include "app/tray/DBusTypes.h"

#include <QDBusConnection>
#include <QObject>
#include <QPoint>

namespace quelmo {

// The item as a freedesktop StatusNotifierItem on the session bus, with its context menu
// published over dbusmenu and its title as an Ayatana label, which hosts that show labels draw
// beside the icon. The host calls Activate and ContextMenu with the pointer's position.
class StatusNotifierItem : public QObject {
    Q_OBJECT

public:
    static constexpr const char* objectPath = "/StatusNotifierItem";

    explicit StatusNotifierItem(QDBusConnection bus, QObject* parent = nullptr);
    ~StatusNotifierItem() override;

    // Puts the item and its menu on the bus under a name of its own. False when the bus refused.
    bool publish();
    // Asks the desktop's watcher to show the item; `done` reports whether it accepted.
    void registerWithWatcher(std::function<void(bool)> done);

    QString serviceName() const { return serviceName_; }
    DBusMenuExporter& menu() { return menu_; }

    void setTitle(const QString& title);
    void setIcon(const QString& themePath, const SniPixmaps& pixmaps);

    // What the adaptor reports.
    QString title() const { return title_; }
    QString iconThemePath() const { return iconThemePath_; }
    const SniPixmaps& iconPixmaps() const { return iconPixmaps_; }
    SniToolTip toolTip() const;

signals:
    void activated(QPoint position);
    void contextMenuRequested(QPoint position);
    // Signals of the protocol, relayed to the bus by the adaptor.
    void newIcon();
    void newToolTip();
    void newLabel(const QString& label, const QString& guide);

private:
    QDBusConnection bus_;
    QString serviceName_;
    DBusMenuExporter menu_;
    QString title_;
    QString iconThemePath_;
    SniPixmaps iconPixmaps_;
    bool published_ = false;
};

} // namespace quelmo
