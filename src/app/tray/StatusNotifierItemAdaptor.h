#pragma once

#include "app/tray/DBusTypes.h"

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>

namespace quelmo {

class StatusNotifierItem;

// The org.kde.StatusNotifierItem interface of a StatusNotifierItem, with the Ayatana label
// extension.
class StatusNotifierItemAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_CLASSINFO("D-Bus Introspection",
                "<interface name=\"org.kde.StatusNotifierItem\">\n"
                "  <property name=\"Category\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"Id\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"Title\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"Status\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"WindowId\" type=\"i\" access=\"read\"/>\n"
                "  <property name=\"IconThemePath\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"IconName\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"IconPixmap\" type=\"a(iiay)\" access=\"read\"/>\n"
                "  <property name=\"IconAccessibleDesc\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"OverlayIconName\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"OverlayIconPixmap\" type=\"a(iiay)\" access=\"read\"/>\n"
                "  <property name=\"AttentionIconName\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"AttentionIconPixmap\" type=\"a(iiay)\" access=\"read\"/>\n"
                "  <property name=\"AttentionMovieName\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"ToolTip\" type=\"(sa(iiay)ss)\" access=\"read\"/>\n"
                "  <property name=\"ItemIsMenu\" type=\"b\" access=\"read\"/>\n"
                "  <property name=\"Menu\" type=\"o\" access=\"read\"/>\n"
                "  <property name=\"XAyatanaLabel\" type=\"s\" access=\"read\"/>\n"
                "  <property name=\"XAyatanaLabelGuide\" type=\"s\" access=\"read\"/>\n"
                "  <method name=\"ContextMenu\">\n"
                "    <arg name=\"x\" type=\"i\" direction=\"in\"/>\n"
                "    <arg name=\"y\" type=\"i\" direction=\"in\"/>\n"
                "  </method>\n"
                "  <method name=\"Activate\">\n"
                "    <arg name=\"x\" type=\"i\" direction=\"in\"/>\n"
                "    <arg name=\"y\" type=\"i\" direction=\"in\"/>\n"
                "  </method>\n"
                "  <method name=\"SecondaryActivate\">\n"
                "    <arg name=\"x\" type=\"i\" direction=\"in\"/>\n"
                "    <arg name=\"y\" type=\"i\" direction=\"in\"/>\n"
                "  </method>\n"
                "  <method name=\"Scroll\">\n"
                "    <arg name=\"delta\" type=\"i\" direction=\"in\"/>\n"
                "    <arg name=\"orientation\" type=\"s\" direction=\"in\"/>\n"
                "  </method>\n"
                "  <method name=\"ProvideXdgActivationToken\">\n"
                "    <arg name=\"token\" type=\"s\" direction=\"in\"/>\n"
                "  </method>\n"
                "  <signal name=\"NewTitle\"/>\n"
                "  <signal name=\"NewIcon\"/>\n"
                "  <signal name=\"NewAttentionIcon\"/>\n"
                "  <signal name=\"NewOverlayIcon\"/>\n"
                "  <signal name=\"NewToolTip\"/>\n"
                "  <signal name=\"NewStatus\">\n"
                "    <arg name=\"status\" type=\"s\"/>\n"
                "  </signal>\n"
                "  <signal name=\"XAyatanaNewLabel\">\n"
                "    <arg name=\"label\" type=\"s\"/>\n"
                "    <arg name=\"guide\" type=\"s\"/>\n"
                "  </signal>\n"
                "</interface>\n")
    Q_PROPERTY(QString Category READ category)
    Q_PROPERTY(QString Id READ id)
    Q_PROPERTY(QString Title READ title)
    Q_PROPERTY(QString Status READ status)
    Q_PROPERTY(int WindowId READ windowId)
    Q_PROPERTY(QString IconThemePath READ iconThemePath)
    Q_PROPERTY(QString IconName READ iconName)
    Q_PROPERTY(QList<quelmo::SniPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(QString IconAccessibleDesc READ iconAccessibleDesc)
    Q_PROPERTY(QString OverlayIconName READ emptyName)
    Q_PROPERTY(QList<quelmo::SniPixmap> OverlayIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionIconName READ emptyName)
    Q_PROPERTY(QList<quelmo::SniPixmap> AttentionIconPixmap READ noPixmaps)
    Q_PROPERTY(QString AttentionMovieName READ emptyName)
    Q_PROPERTY(quelmo::SniToolTip ToolTip READ toolTip)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu)
    Q_PROPERTY(QDBusObjectPath Menu READ menu)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide)

public:
    explicit StatusNotifierItemAdaptor(StatusNotifierItem* item);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("quelmo"); }
    QString title() const { return QStringLiteral("Quelmo"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    QString iconThemePath() const;
    QString iconName() const;
    SniPixmaps iconPixmap() const;
    QString iconAccessibleDesc() const;
    QString emptyName() const { return {}; }
    SniPixmaps noPixmaps() const { return {}; }
    SniToolTip toolTip() const;
    bool itemIsMenu() const { return false; }
    QDBusObjectPath menu() const;
    QString label() const;
    QString labelGuide() const;

public slots:
    void ContextMenu(int x, int y);
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void Scroll(int delta, const QString& orientation);
    void ProvideXdgActivationToken(const QString& token);

signals:
    void NewTitle();
    void NewIcon();
    void NewAttentionIcon();
    void NewOverlayIcon();
    void NewToolTip();
    void NewStatus(const QString& status);
    void XAyatanaNewLabel(const QString& label, const QString& guide);

private:
    StatusNotifierItem* item_;
};

} // namespace quelmo
