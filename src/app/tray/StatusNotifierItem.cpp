#include "app/tray/StatusNotifierItem.h"

#include "app/tray/CachedInterfaceXml.h"
#include "app/tray/ScissorsIcon.h"
#include "app/tray/StatusNotifierItemAdaptor.h"
#include "app/tray/StatusTitle.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <algorithm>

namespace quelmo {

namespace {

// Hosts send screen coordinates, which X11 keeps in 16 bits; anything beyond is nonsense from
// the bus and is kept from reaching any arithmetic.
QPoint clampedPoint(int x, int y) {
    constexpr int low = -32768, high = 32767;
    return {std::clamp(x, low, high), std::clamp(y, low, high)};
}

} // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)),
      // The name form the protocol suggests: unique per process and per item.
      serviceName_(QStringLiteral("org.kde.StatusNotifierItem-%1-1")
                       .arg(QCoreApplication::applicationPid())) {
    registerDBusTypes();
    new StatusNotifierItemAdaptor(this);
    auto menuOpening = [this](MenuOpeningClick kind) {
        if (menuOpeningClick_ == kind && activationGate_.admit())
            emit menuOpenedAsClick();
    };
    connect(&menu_, &DBusMenuExporter::opened, this,
            [menuOpening] { menuOpening(MenuOpeningClick::OpenedEvent); });
    connect(&menu_, &DBusMenuExporter::aboutToShow, this,
            [menuOpening] { menuOpening(MenuOpeningClick::AboutToShow); });
    new CachedInterfaceXml(this);
    properties_ = new CachedProperties(this, this, QStringLiteral("org.kde.StatusNotifierItem"));
}

StatusNotifierItem::~StatusNotifierItem() {
    if (published_) {
        bus_.unregisterService(serviceName_);
        bus_.unregisterObject(QString::fromLatin1(objectPath));
        bus_.unregisterObject(QString::fromLatin1(DBusMenuExporter::objectPath));
    }
}

bool StatusNotifierItem::publish() {
    if (published_)
        return true;
    published_ = bus_.isConnected() &&
                 bus_.registerObject(QString::fromLatin1(DBusMenuExporter::objectPath), &menu_) &&
                 bus_.registerObject(QString::fromLatin1(objectPath), this) &&
                 bus_.registerService(serviceName_);
    return published_;
}

void StatusNotifierItem::registerWithWatcher(bool byPath, std::function<void(bool)> done) {
    QDBusMessage call =
        QDBusMessage::createMethodCall(QString::fromLatin1(statusNotifierWatcherService),
                                       QString::fromLatin1(statusNotifierWatcherPath),
                                       QString::fromLatin1(statusNotifierWatcherService),
                                       QStringLiteral("RegisterStatusNotifierItem"));
    // By object path the watcher takes the caller's unique name and needs no look-up of who
    // owns a well-known name.
    call << (byPath ? QString::fromLatin1(objectPath) : serviceName_);
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(call, 5000), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [done = std::move(done)](QDBusPendingCallWatcher* self) {
                self->deleteLater();
                done(!self->isError());
            });
}

void StatusNotifierItem::setTitle(const QString& title) {
    if (title == title_)
        return;
    title_ = title;
    properties_->invalidate();
    emit NewToolTip();
    if (labelShown_)
        emit XAyatanaNewLabel(title_, labelGuide());
}

void StatusNotifierItem::setLabelShown(bool shown) {
    if (shown == labelShown_)
        return;
    labelShown_ = shown;
    properties_->setHidden(
        shown ? QStringList()
              : QStringList{QStringLiteral("XAyatanaLabel"), QStringLiteral("XAyatanaLabelGuide")});
    if (shown)
        emit XAyatanaNewLabel(title_, labelGuide());
}

void StatusNotifierItem::setIcon(const QString& themePath, const SniPixmaps& pixmaps) {
    iconThemePath_ = themePath;
    iconPixmaps_ = pixmaps;
    properties_->invalidate();
    emit NewIcon();
}

SniToolTip StatusNotifierItem::toolTip() const {
    return {QString(), {}, title_, QString()};
}

void StatusNotifierItem::setSymbolicIcon(bool symbolic) {
    if (symbolic == symbolicIcon_)
        return;
    symbolicIcon_ = symbolic;
    properties_->invalidate();
    emit NewIcon();
}

QString StatusNotifierItem::iconName() const {
    // Without a folder to find it in, a name would only make hosts look in vain.
    if (iconThemePath_.isEmpty())
        return {};
    const QString name = QString::fromLatin1(scissors::iconName);
    return symbolicIcon_ ? name + QStringLiteral("-symbolic") : name;
}

QString StatusNotifierItem::iconAccessibleDesc() const {
    return QString::fromLatin1(scissors::accessibleName);
}

QDBusObjectPath StatusNotifierItem::menuPath() const {
    return QDBusObjectPath(QString::fromLatin1(DBusMenuExporter::objectPath));
}

QString StatusNotifierItem::labelGuide() const {
    return statusTitleGuide();
}

void StatusNotifierItem::ContextMenu(int x, int y) {
    if (contextMenuGate_.admit())
        emit contextMenuRequested(clampedPoint(x, y));
}

void StatusNotifierItem::Activate(int x, int y) {
    if (activationGate_.admit())
        emit activated(clampedPoint(x, y));
}

void StatusNotifierItem::SecondaryActivate(int x, int y) {
    // A middle click; hosts that keep the left click for the menu (Ayatana's indicator applet)
    // leave it as the one way to the popover.
    Activate(x, y);
}

void StatusNotifierItem::XAyatanaSecondaryActivate(uint) {
    // Ayatana's indicator applet tells of a middle click this way, with no position.
    if (activationGate_.admit())
        emit activatedAtPointer();
}

void StatusNotifierItem::Scroll(int, const QString&) {
    // Scrolling over the item changes nothing.
}

void StatusNotifierItem::ProvideXdgActivationToken(const QString&) {
    // Only Wayland hosts send this; on X11 the popover asks for the focus itself.
}

} // namespace quelmo
