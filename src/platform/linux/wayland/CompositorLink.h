#pragma once

// What a Wayland compositor tells about its windows, whichever protocol it speaks: the windows
// with their process, application id, focus, visibility, minimised state and size, the focus
// changes as they happen, and a way to ask a window to close.

#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace quelmo::linux_platform {

struct CompositorWindow {
    QString handle;            // the compositor's own name for the window
    std::optional<qint64> pid; // the owning process, when the compositor knows it
    QString appId;             // the Wayland application id, or an XWayland window's class
    bool xwayland = false;     // an X11 window shown through XWayland
    bool focused = false;
    bool onScreen = false;  // drawn now: on a shown workspace, not minimised, not covered by a tab
    bool minimised = false; // minimised, or put away (a scratchpad, a hidden special workspace)
    bool ordinary = true;   // an application window, dialog or utility (not a panel or a popup)
    bool skipTaskbar = false;
    std::optional<double> height; // in logical pixels
};

class CompositorLink {
public:
    virtual ~CompositorLink() = default;

    // The windows as last reported; empty once the compositor is gone.
    virtual const std::vector<CompositorWindow>& windows() const = 0;

    // Asks the compositor to close the window, as its close button would. True when the request
    // was sent.
    virtual bool close(const CompositorWindow& window) = 0;

    // Called on the main thread each time a window gets the focus.
    void setFocusHandler(std::function<void(const CompositorWindow&)> handler) {
        focusHandler_ = std::move(handler);
    }

protected:
    void windowFocused(const CompositorWindow& window) const {
        if (focusHandler_) {
            const auto handler = focusHandler_; // it may replace itself while running
            handler(window);
        }
    }

private:
    std::function<void(const CompositorWindow&)> focusHandler_;
};

} // namespace quelmo::linux_platform
