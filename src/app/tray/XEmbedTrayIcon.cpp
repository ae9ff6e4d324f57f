#include "app/tray/XEmbedTrayIcon.h"

#include "app/popover/PopoverScreens.h"
#include "app/shell/X11Desktop.h"
#include "app/tray/ScissorsIcon.h"
#include "app/tray/XEmbedTrayBackground.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QMouseEvent>
#include <QPalette>
#include <QWidget>
#include <algorithm>

namespace quelmo {

namespace {

// Qt draws a tray icon in a small window of its own, named so.
constexpr QLatin1String iconWindowName("QSystemTrayIconSys");
constexpr int retintIntervalMs = 1500;
constexpr int retints = 6;

QWidget* iconWindow() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto found = std::find_if(windows.begin(), windows.end(), [](const QWidget* w) {
        return w->objectName() == iconWindowName;
    });
    return found != windows.end() ? *found : nullptr;
}

} // namespace

XEmbedTrayIcon::XEmbedTrayIcon(QObject* parent) : QObject(parent) {
    retint();
    // Qt reports a press on the icon; the popover opens on release, as hosts of
    // StatusNotifierItems do it, so the clicks are taken from the icon's window (eventFilter).
    qApp->installEventFilter(this);
    // Where a StatusNotifierItem host runs, Qt shows the icon through that host instead and
    // draws no window of its own: the host's clicks then come as activations.
    connect(&icon_, &QSystemTrayIcon::activated, this,
            [this](QSystemTrayIcon::ActivationReason why) {
                if (iconWindow())
                    return; // the window's own clicks are taken on release (eventFilter)
                if (why == QSystemTrayIcon::Trigger || why == QSystemTrayIcon::DoubleClick)
                    emit clicked({StatusClick::Button::Left, QCursor::pos()});
                else if (why == QSystemTrayIcon::Context)
                    emit clicked({StatusClick::Button::Right, QCursor::pos()});
            });
    icon_.show();
    retintsLeft_ = retints;
    retintLater_.setInterval(retintIntervalMs);
    connect(&retintLater_, &QTimer::timeout, this, [this] {
        retint();
        if (--retintsLeft_ <= 0)
            retintLater_.stop();
    });
    retintLater_.start();
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
    if (!watched->isWidgetType() || watched->objectName() != iconWindowName)
        return QObject::eventFilter(watched, event);
    // Docked, or moved along the tray: what lies around the icon may have changed.
    if (event->type() == QEvent::Show || event->type() == QEvent::Move) {
        retintsLeft_ = std::max(retintsLeft_, 2);
        retintLater_.start();
    }
    if (event->type() == QEvent::MouseButtonRelease) {
        // Only a release over the icon is a click (a press dragged away is not). A second click
        // soon after the first arrives as a double click; its release still is a click on the
        // item, as StatusNotifierItem hosts report it. The popover hangs from the icon itself:
        // some trays reserve no room on the screen, and a popover under the pointer would
        // cover them.
        const auto* release = static_cast<QMouseEvent*>(event);
        if (!static_cast<QWidget*>(watched)->rect().contains(release->position().toPoint()))
            return QObject::eventFilter(watched, event);
        const QRect icon = icon_.geometry();
        const QPoint at = icon.isValid() ? itemAnchor(icon, popoverScreens()) : QCursor::pos();
        if (release->button() == Qt::LeftButton)
            emit clicked({StatusClick::Button::Left, at});
        else if (release->button() == Qt::RightButton)
            emit clicked({StatusClick::Button::Right, QCursor::pos()});
    }
    return QObject::eventFilter(watched, event);
}

void XEmbedTrayIcon::retint() {
    const QColor text = QApplication::palette().color(QPalette::Active, QPalette::WindowText);
    QColor tint = text;
    if (const auto asked = x11::systemTrayForeground()) {
        tint = *asked;
    } else if (const QWidget* window = iconWindow(); window && window->isVisible()) {
        if (const auto behind = trayBackgroundBehind(static_cast<quint32>(window->winId())))
            tint = scissors::tintOn(*behind, text);
    }
    if (tint == tint_)
        return;
    tint_ = tint;
    icon_.setIcon(scissors::icon(tint));
}

} // namespace quelmo
