#include "app/popover/QuickPopoverSurface.h"

#include "app/popover/Popover.h"
#include "app/popover/PopoverPlacement.h"
#include "app/shell/X11Desktop.h"
#include "core/metrics/SystemMetrics.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>

namespace quelmo {

class QuickPopoverSurface::Window : public QQuickView {
public:
    explicit Window(QuickPopoverSurface& owner) : owner_(owner) {}

protected:
    void keyPressEvent(QKeyEvent* event) override {
        QQuickView::keyPressEvent(event);
        if (!event->isAccepted() && event->key() == Qt::Key_Escape) {
            event->accept();
            owner_.closeBy(CloseReason::Escape);
        }
    }

private:
    QuickPopoverSurface& owner_;
};

QuickPopoverSurface::QuickPopoverSurface(SystemMetrics& metrics, QObject* parent)
    : PopoverSurface(parent), window_(std::make_unique<Window>(*this)) {
    QQuickView& w = *window_;
    w.setTitle(QStringLiteral("Quelmo"));
    w.setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    w.setResizeMode(QQuickView::SizeRootObjectToView);
    w.setMinimumSize({width, height});
    w.setMaximumSize({width, height});
    w.resize(width, height);
    w.setInitialProperties({{QStringLiteral("metrics"), QVariant::fromValue(&metrics)}});
    w.setSource(QUrl(QStringLiteral("qrc:/quelmo/qml/Popover.qml")));

    // The focus as the window manager sees it (its active window) where there is one: Qt's
    // activation state can lag behind it when the popover is hidden and shown again quickly,
    // and then misses the moment the focus leaves.
    activeWindow_ = new x11::ActiveWindowWatch(this);
    if (activeWindow_->isWatching())
        connect(activeWindow_, &x11::ActiveWindowWatch::changed, this,
                [this](quint32 active) { focusMoved(active == window_->winId()); });
    else
        connect(&w, &QWindow::activeChanged, this, [this] { focusMoved(window_->isActive()); });
}

QuickPopoverSurface::~QuickPopoverSurface() = default;

void QuickPopoverSurface::showAt(QPoint anchor) {
    QScreen* screen = QGuiApplication::screenAt(anchor);
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    QQuickView& w = *window_;
    if (screen) {
        w.setScreen(screen);
        w.setGeometry(popoverGeometry(anchor, {width, height}, screen->availableGeometry()));
    }
    // Keep the panel out of taskbars and pagers: it belongs to the tray item, not to the window
    // list. (Window managers drop the state of a hidden window, so it is set on every show.)
    x11::skipTaskbarAndPager(w);
    w.show();
    w.raise();
    // The popover opens because of a click on the tray, which the program itself never saw;
    // asking the window manager as a pager would keeps focus-stealing prevention from
    // refusing the keyboard to it.
    if (!x11::activateAsPager(w))
        w.requestActivate();
}

void QuickPopoverSurface::focusMoved(bool toThisWindow) {
    qCDebug(lcPopover) << "focus moved, to the popover:" << toThisWindow << "had it" << hadFocus_
                       << "visible" << window_->isVisible();
    if (toThisWindow)
        hadFocus_ = true;
    else if (hadFocus_ && window_->isVisible())
        closeBy(CloseReason::FocusLost);
}

void QuickPopoverSurface::hide() {
    hadFocus_ = false;
    window_->hide();
}

void QuickPopoverSurface::closeBy(CloseReason reason) {
    hide();
    emit closedByUser(reason);
}

} // namespace quelmo
