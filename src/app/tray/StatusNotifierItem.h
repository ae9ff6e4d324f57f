#pragma once

#include "app/shell/ApplicationId.h"
#include "app/tray/ActivationGate.h"
#include "app/tray/CachedProperties.h"
#include "app/tray/DBusMenuExporter.h"
#include "app/tray/DBusTypes.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QObject>
#include <QPoint>

namespace quelmo {

// The desktop's StatusNotifierWatcher, which hosts (panels) learn the items from.
inline constexpr const char* statusNotifierWatcherService = "org.kde.StatusNotifierWatcher";
inline constexpr const char* statusNotifierWatcherPath = "/StatusNotifierWatcher";

// The item as a freedesktop StatusNotifierItem on the session bus, with its context menu
// published over dbusmenu and its title as an Ayatana label, which hosts that show labels draw
// beside the icon. The host calls Activate and ContextMenu with the pointer's position; every
// call is answered at once from what is already built, so no caller can make the item busy. The
// properties, slots and signals named as on the bus are what the generated adaptor relays.
class StatusNotifierItem : public QObject, public QDBusContext {
    Q_OBJECT
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ itemTitle)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ iconThemePath)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(quelmo::SniPixmaps IconPixmap READ iconPixmaps)
    Q_PROPERTY(QString IconAccessibleDesc READ iconAccessibleDesc)
    Q_PROPERTY(QString OverlayIconName READ noName)
    Q_PROPERTY(quelmo::SniPixmaps OverlayIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionIconName READ noName)
    Q_PROPERTY(quelmo::SniPixmaps AttentionIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionMovieName READ noName)
    Q_PROPERTY(quelmo::SniToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menuPath)
    Q_PROPERTY(QString XAyatanaLabel READ title)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide)

public:
    static constexpr const char* objectPath = "/StatusNotifierItem";

    explicit StatusNotifierItem(QDBusConnection bus, QObject* parent = nullptr);
    ~StatusNotifierItem() override;

    // Puts the item and its menu on the bus under a name of its own. False when the bus refused.
    bool publish();
    // Asks the desktop's watcher to show the item, by the item's well-known name or by its
    // object path; `done` reports whether it accepted.
    void registerWithWatcher(bool byPath, std::function<void(bool)> done);

    QString serviceName() const { return serviceName_; }
    DBusMenuExporter& menu() { return menu_; }

    void setTitle(const QString& title);
    // For hosts that open the item's menu on a left click and never tell the item of a single
    // click, the host opening the menu counts as the click. GNOME Shell's extension calls
    // Activate only on a double click and sends the menu's "opened" event (it asks AboutToShow
    // when the item arrives, too); Ayatana's indicator applet never calls Activate and asks
    // AboutToShow of the root each time it opens the menu.
    enum class MenuOpeningClick { None, OpenedEvent, AboutToShow };
    void setMenuOpeningClick(MenuOpeningClick kind) { menuOpeningClick_ = kind; }
    // Hosts that draw symbolic icons in the panel's own text colour get the icon's symbolic
    // twin by name (GNOME Shell's extension finds no twin on its own; Cinnamon draws a name
    // ending in "-symbolic" as nothing, so elsewhere the name has no suffix).
    void setSymbolicIcon(bool symbolic);
    // Whether the item offers its title as a label beside the icon. Only hosts known to draw
    // labels get one: the mere presence of the label makes MATE's notification area draw it
    // instead of the icon. The title is in the tooltip everywhere.
    void setLabelShown(bool shown);
    void setIcon(const QString& themePath, const SniPixmaps& pixmaps);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QString::fromLatin1(applicationId); }
    QString itemTitle() const { return QStringLiteral("Quelmo"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString iconThemePath() const { return iconThemePath_; }
    QString iconName() const;
    const SniPixmaps& iconPixmaps() const { return iconPixmaps_; }
    QString iconAccessibleDesc() const;
    QString noName() const { return {}; }
    SniPixmaps noPixmaps() const { return {}; }
    SniToolTip toolTip() const;
    bool itemIsMenu() const { return false; }
    QDBusObjectPath menuPath() const;
    // The live title ("23% 62%"), shown as the label and the tooltip.
    QString title() const { return title_; }
    QString labelGuide() const;

public slots:
    void ContextMenu(int x, int y);
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void XAyatanaSecondaryActivate(uint timestamp);
    void Scroll(int delta, const QString& orientation);
    void ProvideXdgActivationToken(const QString& token);

signals:
    // A click on the item; a null position when the host did not say where.
    void activated(QPoint position);
    // The host opened the item's menu, where that is how it tells of a click, or it told of a
    // click without saying where: the pointer is the place.
    void menuOpenedAsClick();
    void activatedAtPointer();
    void contextMenuRequested(QPoint position);

    // The protocol's signals, relayed to the bus by the adaptor.
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString& status);
    void XAyatanaNewLabel(const QString& label, const QString& guide);

private:
    QDBusConnection bus_;
    QString serviceName_;
    DBusMenuExporter menu_;
    QString title_;
    QString iconThemePath_;
    SniPixmaps iconPixmaps_;
    CachedProperties* properties_ = nullptr;
    bool published_ = false;
    MenuOpeningClick menuOpeningClick_ = MenuOpeningClick::None;
    bool symbolicIcon_ = false;
    bool labelShown_ = true;
    // Bursts of calls (a double click, a host or program flooding the bus) act once.
    ActivationGate activationGate_;
    ActivationGate contextMenuGate_;
};

} // namespace quelmo
