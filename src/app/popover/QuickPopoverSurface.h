#pragma once

#include "app/popover/PopoverPlacement.h"
#include "app/popover/PopoverSurface.h"

#include <QQuickView>
#include <memory>
#include <optional>

namespace quelmo {

class CleanupFeed;
class LoginItemService;
class PopoverContext;
class PopoverViewState;
class SystemMetrics;

namespace x11 {
class ActiveWindowWatch;
}
namespace linux_platform {
class SwayWindowPlacer;
}

// The popover's window: a frameless, always-on-top Qt Quick window without a taskbar entry that
// shows PopoverView. It hangs under the click and stays inside the screen's free area. It is made
// as tall as the view may grow, once per open, and shows (and takes clicks on) only the part the
// view's content covers: the content grows and shrinks, animated, without the window being
// resized and drawn anew on every step. It closes itself when it loses the focus after having
// had it, or on Escape.
class QuickPopoverSurface : public PopoverSurface {
    Q_OBJECT

public:
    static constexpr int width = 320;

    // `loginItem` keeps the launch-at-login choice the footer switch shows; `viewState`, which
    // outlives the window, the sections the user opened.
    QuickPopoverSurface(SystemMetrics& metrics, std::unique_ptr<LoginItemService> loginItem,
                        PopoverViewState& viewState, QObject* parent = nullptr);
    ~QuickPopoverSurface() override;

    void showAt(QPoint anchor) override;
    void hide() override;
    // While the mascot is away from its lane, a cut is on its way.
    bool isBusy() const override;

private:
    class Window;
    void closeBy(CloseReason reason);
    void focusMoved(bool toThisWindow);
    // Places the window for the view's height under the anchor, as tall as the view may grow.
    void placeFrame();
    // Places it again for the compositor's pointer and free area (device pixels), where the
    // compositor decides where windows go; returns where the window's corner goes.
    QPoint placeForCompositor(QPoint pointer, const QRect& area);
    // Shows the part of the window the view's content covers; places the window again when the
    // content no longer fits it.
    void fitToContent();

    std::unique_ptr<Window> window_;
    std::unique_ptr<LoginItemService> loginItem_;
    PopoverContext* context_ = nullptr; // child QObject
    CleanupFeed* cleanup_ = nullptr;    // child QObject
    x11::ActiveWindowWatch* activeWindow_ = nullptr;
    std::unique_ptr<linux_platform::SwayWindowPlacer> compositorPlacer_;
    std::optional<QRect> compositorArea_; // the free area as the compositor tells it (logical)
    bool hadFocus_ = false;
    bool awaitingFirstFrame_ = false;
    QPoint anchor_;
    PopoverFrame frame_;
};

} // namespace quelmo
