#include "app/tray/XEmbedTrayIcon.h"

#include "app/shell/X11Desktop.h"
#include "app/tray/ScissorsIcon.h"

#include <QCursor>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>

namespace quelmo {

XEmbedTrayIcon::XEmbedTrayIcon(QObject* parent) : QObject(parent) {
    retint();
    connect(&icon_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason reason) {
                // A second click soon after the first arrives as a double click; it still is
                // a click on the item, as StatusNotifierItem hosts report it.
                if (reason == QSystemTrayIcon::Trigger || reason == QSystemTrayIcon::DoubleClick)
                    emit clicked({StatusClick::Button::Left, QCursor::pos()});
                else if (reason == QSystemTrayIcon::Context)
                    emit clicked({StatusClick::Button::Right, QCursor::pos()});
            });
    qApp->installEventFilter(this);
    icon_.show();
}

XEmbedTrayIcon::~XEmbedTrayIcon() {
    qApp->removeEventFilter(this);
}

void XEmbedTrayIcon::setTitle(const QString& title) {
    icon_.setToolTip(title);
}

bool XEmbedTrayIcon::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange)
        retint();
    return QObject::eventFilter(watched, event);
}

void XEmbedTrayIcon::retint() {
    const QColor tint = x11::systemTrayForeground().value_or(
        QGuiApplication::palette().color(QPalette::Active, QPalette::WindowText));
    icon_.setIcon(scissors::icon(tint));
}

} // namespace quelmo
