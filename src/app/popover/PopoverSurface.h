#pragma once

#include <QObject>
#include <QPoint>

namespace quelmo {

// The window that shows the popover's content. The popover decides when it opens and closes;
// the surface places itself under the anchor, shows, and reports when it closes on its own.
class PopoverSurface : public QObject {
    Q_OBJECT

public:
    enum class CloseReason { FocusLost, Escape };
    Q_ENUM(CloseReason)

    using QObject::QObject;

    // Shows the window hanging under `anchor` (global coordinates) and asks for the keyboard.
    virtual void showAt(QPoint anchor) = 0;
    // Hides the window without reporting `closedByUser`.
    virtual void hide() = 0;
    // Work begun in the window that must finish before it may be released (a cut on its way).
    virtual bool isBusy() const { return false; }

signals:
    // The window went away by itself: it lost the focus or the user pressed Escape. It is
    // already hidden when this arrives.
    void closedByUser(quelmo::PopoverSurface::CloseReason reason);
    // The user asked, from inside the popover, to end the program.
    void quitRequested();
    // The first frame after `showAt` is on screen.
    void firstFrameShown();
};

} // namespace quelmo
