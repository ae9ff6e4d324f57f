#pragma once

#include "app/popover/PopoverSurface.h"

#include <QLoggingCategory>
#include <QObject>
#include <QPoint>
#include <functional>
#include <memory>

namespace quelmo {

// Opening, closing and focus changes of the popover ("quelmo.popover", off unless enabled).
Q_DECLARE_LOGGING_CATEGORY(lcPopover)

// The transient panel under the status item. Its window is made on the first open, so a
// session that never opens the popover never loads the QML engine. Tells its owner just before
// it shows and just after it has closed, whichever way it closed.
class Popover : public QObject {
    Q_OBJECT

public:
    using SurfaceFactory = std::function<std::unique_ptr<PopoverSurface>()>;
    using Clock = std::function<qint64()>; // milliseconds, monotonic

    // Clicking the status item while the popover is open first takes the focus away from it,
    // which closes it, and then delivers the click, which would open it again at once. A click
    // this soon after a focus-loss close is taken as that same gesture and leaves it closed.
    static constexpr qint64 reopenGuardMs = 400;

    explicit Popover(SurfaceFactory makeSurface, Clock clock = monotonicMs,
                     QObject* parent = nullptr);
    ~Popover() override;

    bool isShown() const { return shown_; }
    // Opens under `anchor`, or closes when open; a click that merely follows a focus-loss close
    // does nothing.
    void toggle(QPoint anchor);
    // Opens (or keeps open) under `anchor`.
    void show(QPoint anchor);
    void performClose();
    // Releases the window and its QML engine (used on shutdown).
    void discardSurface();

    static qint64 monotonicMs();

signals:
    void willShow();
    // The window has drawn its first frame since it was shown.
    void firstFrameShown();
    void didClose();
    // Quit, chosen inside the popover.
    void quitRequested();

private:
    void surfaceClosed(PopoverSurface::CloseReason reason);

    SurfaceFactory makeSurface_;
    Clock clock_;
    std::unique_ptr<PopoverSurface> surface_;
    bool shown_ = false;
    qint64 lastFocusLossCloseMs_ = -1;
    qint64 openedAtMs_ = -1;   // when the last open was asked for, until its first frame
    qint64 openedAtCpuUs_ = 0; // the process's CPU time then
};

} // namespace quelmo
