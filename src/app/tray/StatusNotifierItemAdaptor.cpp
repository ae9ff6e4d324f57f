#include "app/tray/StatusNotifierItemAdaptor.h"

#include "app/tray/ScissorsIcon.h"
#include "app/tray/StatusNotifierItem.h"
#include "app/tray/StatusTitle.h"

namespace quelmo {

StatusNotifierItemAdaptor::StatusNotifierItemAdaptor(StatusNotifierItem* item)
    : QDBusAbstractAdaptor(item), item_(item) {
    connect(item, &StatusNotifierItem::newIcon, this, &StatusNotifierItemAdaptor::NewIcon);
    connect(item, &StatusNotifierItem::newToolTip, this, &StatusNotifierItemAdaptor::NewToolTip);
    connect(item, &StatusNotifierItem::newLabel, this,
            &StatusNotifierItemAdaptor::XAyatanaNewLabel);
}

QString StatusNotifierItemAdaptor::iconThemePath() const {
    return item_->iconThemePath();
}

QString StatusNotifierItemAdaptor::iconName() const {
    // Without a folder to find it in, a name would only make hosts look in vain.
    return item_->iconThemePath().isEmpty() ? QString() : QString::fromLatin1(scissors::iconName);
}

SniPixmaps StatusNotifierItemAdaptor::iconPixmap() const {
    return item_->iconPixmaps();
}

QString StatusNotifierItemAdaptor::iconAccessibleDesc() const {
    return QString::fromLatin1(scissors::accessibleName);
}

SniToolTip StatusNotifierItemAdaptor::toolTip() const {
    return item_->toolTip();
}

QDBusObjectPath StatusNotifierItemAdaptor::menu() const {
    return QDBusObjectPath(QString::fromLatin1(DBusMenuExporter::objectPath));
}

QString StatusNotifierItemAdaptor::label() const {
    return item_->title();
}

QString StatusNotifierItemAdaptor::labelGuide() const {
    return QString::fromLatin1(statusTitleGuide);
}

void StatusNotifierItemAdaptor::ContextMenu(int x, int y) {
    emit item_->contextMenuRequested({x, y});
}

void StatusNotifierItemAdaptor::Activate(int x, int y) {
    emit item_->activated({x, y});
}

void StatusNotifierItemAdaptor::SecondaryActivate(int, int) {
    // A middle click: the item has no secondary action.
}

void StatusNotifierItemAdaptor::Scroll(int, const QString&) {
    // Scrolling over the item changes nothing.
}

void StatusNotifierItemAdaptor::ProvideXdgActivationToken(const QString&) {
    // Only Wayland hosts send this; on X11 the popover asks for the focus itself.
}

} // namespace quelmo
