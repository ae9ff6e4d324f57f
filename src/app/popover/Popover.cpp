#include "app/popover/Popover.h"

#include <QElapsedTimer>

namespace quelmo {

Q_LOGGING_CATEGORY(lcPopover, "quelmo.popover", QtWarningMsg)

Popover::Popover(SurfaceFactory makeSurface, Clock clock, QObject* parent)
    : QObject(parent), makeSurface_(std::move(makeSurface)), clock_(std::move(clock)) {}

Popover::~Popover() = default;

qint64 Popover::monotonicMs() {
    static QElapsedTimer sinceStart = [] {
        QElapsedTimer t;
        t.start();
        return t;
    }();
    return sinceStart.elapsed();
}

void Popover::toggle(QPoint anchor) {
    qCDebug(lcPopover) << "toggle at" << anchor << "shown" << shown_ << "since focus-loss close"
                       << (lastFocusLossCloseMs_ >= 0 ? clock_() - lastFocusLossCloseMs_ : -1);
    if (shown_) {
        performClose();
        return;
    }
    if (lastFocusLossCloseMs_ >= 0 && clock_() - lastFocusLossCloseMs_ < reopenGuardMs)
        return;
    show(anchor);
}

void Popover::show(QPoint anchor) {
    if (!surface_) {
        surface_ = makeSurface_();
        if (!surface_)
            return;
        connect(surface_.get(), &PopoverSurface::closedByUser, this, &Popover::surfaceClosed);
        connect(surface_.get(), &PopoverSurface::quitRequested, this, &Popover::quitRequested);
    }
    if (!shown_) {
        shown_ = true;
        emit willShow();
    }
    surface_->showAt(anchor);
}

void Popover::performClose() {
    if (!shown_)
        return;
    shown_ = false;
    if (surface_)
        surface_->hide();
    emit didClose();
}

void Popover::surfaceClosed(PopoverSurface::CloseReason reason) {
    qCDebug(lcPopover) << "window closed itself:" << reason;
    if (!shown_)
        return;
    if (reason == PopoverSurface::CloseReason::FocusLost)
        lastFocusLossCloseMs_ = clock_();
    shown_ = false;
    emit didClose();
}

void Popover::discardSurface() {
    performClose();
    surface_.reset();
}

} // namespace quelmo
