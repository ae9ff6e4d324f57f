#include "app/tray/StatusNotifierItem.h"

#include "app/tray/StatusNotifierItemAdaptor.h"
#include "app/tray/StatusTitle.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace quelmo {

namespace {

constexpr const char* watcherService = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";

} // namespace

StatusNotifierItem::StatusNotifierItem(QDBusConnection bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)),
      // The name form the protocol suggests: unique per process and per item.
      serviceName_(QStringLiteral("org.kde.StatusNotifierItem-%1-1")
                       .arg(QCoreApplication::applicationPid())) {
    registerDBusTypes();
    new StatusNotifierItemAdaptor(this);
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

void StatusNotifierItem::registerWithWatcher(std::function<void(bool)> done) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QString::fromLatin1(watcherService), QString::fromLatin1(watcherPath),
        QString::fromLatin1(watcherService), QStringLiteral("RegisterStatusNotifierItem"));
    call << serviceName_;
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
    emit newToolTip();
    emit newLabel(title_, QString::fromLatin1(statusTitleGuide));
}

void StatusNotifierItem::setIcon(const QString& themePath, const SniPixmaps& pixmaps) {
    iconThemePath_ = themePath;
    iconPixmaps_ = pixmaps;
    emit newIcon();
}

SniToolTip StatusNotifierItem::toolTip() const {
    return {QString(), {}, title_, QString()};
}

} // namespace quelmo
