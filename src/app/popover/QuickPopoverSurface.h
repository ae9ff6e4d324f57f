#pragma once

#include "app/popover/PopoverSurface.h"

#include <QQuickView>
#include <memory>

namespace quelmo {

class SystemMetrics;

namespace x11 {
class ActiveWindowWatch;
}

// The popover's window: a frameless, always-on-top Qt Quick window without a taskbar entry,
// placed under the click and kept inside the screen's free area. It closes itself when it
// loses the focus after having had it, or on Escape.
class QuickPopoverSurface : public PopoverSurface {
    Q_OBJECT

public:
    static constexpr int width = 320;
    static constexpr int height = 420;

    explicit QuickPopoverSurface(SystemMetrics& metrics, QObject* parent = nullptr);
    ~QuickPopoverSurface() override;

    void showAt(QPoint anchor) override;
    void hide() override;

private:
    class Window;
    void closeBy(CloseReason reason);
    void focusMoved(bool toThisWindow);

    std::unique_ptr<Window> window_;
    x11::ActiveWindowWatch* activeWindow_ = nullptr;
    bool hadFocus_ = false;
};

} // namespace quelmo
