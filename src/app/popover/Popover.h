#pragma once

#include "app/popover/PopoverSurface.h"
#include "app/popover/PopoverViewState.h"

#include <QLoggingCategory>
#include <QObject>
#include <QPoint>
#include <QTimer>
#include <functional>
#include <memory>

namespace quelmo {

// Opening, closing and focus changes of the popover ("quelmo.popover", off unless enabled).
Q_DECLARE_LOGGING_CATEGORY(lcPopover)

// The transient panel under the status item. Its window is made on the first open, so a
// session that never opens the popover never loads the QML engine. Once closed, the window is
// kept for a quick reopening for `releaseAfterMs`, then released with its engine and the freed
// memory given back; what the user opened in it (`viewState`) stays with the popover. Tells its
// owner just before it shows and just after it has closed, whichever way it closed.
class Popover : public QObject {
    Q_OBJECT

public:
    // Makes the window; it shows and changes `viewState`, which outlives it.
    using SurfaceFactory = std::function<std::unique_ptr<PopoverSurface>(PopoverViewState&)>;
    using Clock = std::function<qint64()>; // milliseconds, monotonic

    // Clicking the status item while the popover is open first takes the focus away from it,
    // which closes it, and then delivers the click, which would open it again at once. A click
    // this soon after a focus-loss close is taken as that same gesture and leaves it closed.
    static constexpr qint64 reopenGuardMs = 400;
    // How long a closed popover keeps its window for reopening at once (about 8 ms, against
    // 55-60 ms once released) before releasing it and its QML engine.
    static constexpr int releaseAfterMs = 60'000;

    explicit Popover(SurfaceFactory makeSurface, Clock clock = monotonicMs,
                     int releaseDelayMs = releaseAfterMs, QObject* parent = nullptr);
    ~Popover() override;

    bool isShown() const { return shown_; }
    // Opens under `anchor`, or closes when open; a click that merely follows a focus-loss close
    // does nothing.
    void toggle(QPoint anchor);
    // Opens (or keeps open) under `anchor`.
    void show(QPoint anchor);
    void performClose();
    // Closes and releases the window and its QML engine at once (used on shutdown).
    void discardSurface();
    bool hasSurface() const { return surface_ != nullptr; }
    PopoverViewState& viewState() { return viewState_; }

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
    // The window, closed for `releaseAfterMs`, goes unless a cut in it is still on its way.
    void releaseIdleSurface();

    SurfaceFactory makeSurface_;
    Clock clock_;
    PopoverViewState viewState_; // outlives every window
    std::unique_ptr<PopoverSurface> surface_;
    QTimer releaseTimer_;
    bool shown_ = false;
    qint64 lastFocusLossCloseMs_ = -1;
    qint64 openedAtMs_ = -1;   // when the last open was asked for, until its first frame
    qint64 openedAtCpuUs_ = 0; // the process's CPU time then
};

} // namespace quelmo
