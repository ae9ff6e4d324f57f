#pragma once

#include "app/tray/StatusItem.h"

#include <QDBusConnection>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

class QDBusServiceWatcher;

namespace quelmo {

class StatusNotifierItem;
class XEmbedTrayIcon;

// The status item on a Linux desktop: a StatusNotifierItem while a host for those runs, an
// XEmbed tray icon otherwise. It follows the host coming and going (a panel restarting, a panel
// started after the program) and checks that the host keeps the item once it took it, so the
// item is always wherever the desktop can show it.
class TrayStatusItem : public StatusItem {
    Q_OBJECT

public:
    // `iconDirectory` is where the symbolic icon is written for hosts to load by name.
    explicit TrayStatusItem(std::optional<QDBusConnection> bus, const QString& iconDirectory,
                            QObject* parent = nullptr);
    ~TrayStatusItem() override;

    void setTitle(const QString& title) override;
    void setMenu(const QList<StatusMenuEntry>& entries) override;
    QPoint anchorHint() const override;

private slots:
    void chooseHost();
    void hostRegistered();
    void itemUnregistered(const QString& entry);

private:
    enum class Kind { None, StatusNotifier, XEmbed };

    void fallBack();
    void askForHost(std::function<void(bool)> answer);
    void askWatcher(const QString& property, std::function<void(const QVariant&)> answer);
    void checkRegistration();
    // Hosts that need the item to behave differently, told apart by their watcher.
    enum class Host { GnomeShell, Ayatana, Other };
    void learnHost(std::function<void(Host)> answer);
    bool namesThisItem(const QString& entry) const;
    void useStatusNotifier();
    void useXEmbed();
    void noteClick(StatusClick click);

    std::optional<QDBusConnection> bus_;
    QString iconDirectory_;
    bool iconWritten_ = false;
    std::unique_ptr<StatusNotifierItem> notifier_;
    std::unique_ptr<XEmbedTrayIcon> xembed_;
    QDBusServiceWatcher* watcherWatch_ = nullptr;
    // XEmbed is only the fallback: a panel that restarts drops its watcher for a moment, and at
    // login the program may start before the panel. Waiting a little before docking in an
    // XEmbed tray keeps the item from showing up twice or flickering between the two.
    QTimer fallbackDelay_;
    QTimer registrationCheck_;
    int reRegistrations_ = 0; // since the item was last seen registered
    Kind kind_ = Kind::None;
    quint64 generation_ = 0; // ignores answers to questions asked before a later change
    QString title_;
    std::optional<QPoint> lastClick_;
};

} // namespace quelmo
