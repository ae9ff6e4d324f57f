#include "app/popover/Popover.h"

#include <QElapsedTimer>
#include <ctime>

#if defined(__GLIBC__)
#include <malloc.h>
#endif

namespace quelmo {

Q_LOGGING_CATEGORY(lcPopover, "quelmo.popover", QtWarningMsg)

Popover::Popover(SurfaceFactory makeSurface, Clock clock, int releaseDelayMs, QObject* parent)
    : QObject(parent), makeSurface_(std::move(makeSurface)), clock_(std::move(clock)) {
    releaseTimer_.setSingleShot(true);
    releaseTimer_.setInterval(releaseDelayMs);
    connect(&releaseTimer_, &QTimer::timeout, this, &Popover::releaseIdleSurface);
}

Popover::~Popover() = default;

namespace {

// CPU time the whole process has used, in microseconds: how much work an open cost, whatever
// else the machine was doing meanwhile.
qint64 processCpuUs() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<qint64>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}

// glibc keeps freed memory at the top of its heaps and in its per-thread arenas for reuse; after
// the engine has gone, hand it back to the system.
void returnFreedHeap() {
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}

} // namespace

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
    if (!shown_) {
        openedAtMs_ = clock_();
        openedAtCpuUs_ = processCpuUs();
    }
    releaseTimer_.stop();
    if (!surface_) {
        surface_ = makeSurface_(viewState_);
        if (!surface_)
            return;
        connect(surface_.get(), &PopoverSurface::closedByUser, this, &Popover::surfaceClosed);
        connect(surface_.get(), &PopoverSurface::quitRequested, this, &Popover::quitRequested);
        connect(surface_.get(), &PopoverSurface::firstFrameShown, this, [this] {
            if (openedAtMs_ >= 0) {
                // Measured by bench/app/idle.sh.
                qCDebug(lcPopover)
                    << "first frame" << clock_() - openedAtMs_ << "ms after the activation, CPU"
                    << (processCpuUs() - openedAtCpuUs_) / 1000 << "ms";
                openedAtMs_ = -1;
            }
            if (shown_)
                emit firstFrameShown();
        });
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
    releaseTimer_.start();
    emit didClose();
}

void Popover::surfaceClosed(PopoverSurface::CloseReason reason) {
    qCDebug(lcPopover) << "window closed itself:" << reason;
    if (!shown_)
        return;
    if (reason == PopoverSurface::CloseReason::FocusLost)
        lastFocusLossCloseMs_ = clock_();
    shown_ = false;
    releaseTimer_.start();
    emit didClose();
}

void Popover::discardSurface() {
    performClose();
    releaseTimer_.stop();
    surface_.reset();
}

void Popover::releaseIdleSurface() {
    if (shown_ || !surface_)
        return;
    if (surface_->isBusy()) {
        releaseTimer_.start();
        return;
    }
    qCDebug(lcPopover) << "releasing the closed window";
    surface_.reset();
    returnFreedHeap();
}

} // namespace quelmo
