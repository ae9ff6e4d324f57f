#pragma once

#include "app/popover/PopoverSurface.h"

#include <QQuickView>
#include <memory>

namespace quelmo {

class CleanupFeed;
class LoginItemService;
class PopoverContext;
class SystemMetrics;

namespace x11 {
class ActiveWindowWatch;
}

// The popover's window: a frameless, always-on-top Qt Quick window without a taskbar entry that
// shows PopoverView. It is as tall as the view asks (its content, up to the screen's limit), hangs
// under the click and stays inside the screen's free area as its height changes. It closes itself
// when it loses the focus after having had it, or on Escape.
class QuickPopoverSurface : public PopoverSurface {
    Q_OBJECT

public:
    static constexpr int width = 320;

    // `loginItem` keeps the launch-at-login choice the footer switch shows.
    QuickPopoverSurface(SystemMetrics& metrics, std::unique_ptr<LoginItemService> loginItem,
                        QObject* parent = nullptr);
    ~QuickPopoverSurface() override;

    void showAt(QPoint anchor) override;
    void hide() override;

private:
    class Window;
    void closeBy(CloseReason reason);
    void focusMoved(bool toThisWindow);
    // Sizes the window to the view's height and places it under the anchor again.
    void fitToContent();

    std::unique_ptr<Window> window_;
    std::unique_ptr<LoginItemService> loginItem_;
    PopoverContext* context_ = nullptr; // child QObject
    CleanupFeed* cleanup_ = nullptr;    // child QObject
    x11::ActiveWindowWatch* activeWindow_ = nullptr;
    bool hadFocus_ = false;
    bool awaitingFirstFrame_ = false;
    QPoint anchor_;
};

} // namespace quelmo
