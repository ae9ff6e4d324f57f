#pragma once

// Any wlroots-based compositor (and others that offer it) through the foreign-toplevel
// management protocol (zwlr_foreign_toplevel_manager_v1): each window's application id, its
// activated and minimised states, and a close request. The protocol names no process; the
// session finds the processes through the application's desktop entry. Events are read from
// the display's socket by the main event loop; the only waits are bounded ones at start-up.

#include "platform/linux/wayland/CompositorLink.h"

#include <QSocketNotifier>
#include <memory>

struct wl_display;
struct wl_registry;
struct zwlr_foreign_toplevel_manager_v1;
struct zwlr_foreign_toplevel_handle_v1;

namespace quelmo::linux_platform {

class ForeignToplevelLink final : public CompositorLink {
public:
    // Nothing when no Wayland display answers or the compositor does not offer the protocol.
    // `display`: a display name or nullptr for $WAYLAND_DISPLAY.
    static std::unique_ptr<ForeignToplevelLink> connect(const char* display = nullptr);
    ~ForeignToplevelLink() override;
    ForeignToplevelLink(const ForeignToplevelLink&) = delete;
    ForeignToplevelLink& operator=(const ForeignToplevelLink&) = delete;

    const std::vector<CompositorWindow>& windows() const override { return windows_; }
    bool close(const CompositorWindow& window) override;

    // One window as the protocol describes it, between two "done" events and after.
    struct Toplevel {
        ForeignToplevelLink* link = nullptr;
        zwlr_foreign_toplevel_handle_v1* handle = nullptr;
        struct State {
            QString appId;
            bool activated = false;
            bool minimised = false;
        };
        QString name;           // our handle for it
        State pending;          // what the events since the last "done" said
        State current;          // as of the last "done"
        bool announced = false; // a first "done" has been received
    };

    // Protocol callbacks (C linkage needs plain functions).
    void addToplevel(zwlr_foreign_toplevel_handle_v1* handle);
    void toplevelDone(Toplevel& toplevel);
    void toplevelClosed(Toplevel& toplevel);
    void bindManager(wl_registry* registry, std::uint32_t name, std::uint32_t version);

private:
    explicit ForeignToplevelLink(wl_display* display);
    bool roundtrip(int timeoutMs);
    void onReadable();
    void publish();
    bool broken() const;

    wl_display* display_ = nullptr;
    wl_registry* registry_ = nullptr;
    zwlr_foreign_toplevel_manager_v1* manager_ = nullptr;
    std::vector<std::unique_ptr<Toplevel>> toplevels_;
    std::vector<CompositorWindow> windows_;
    std::unique_ptr<QSocketNotifier> notifier_;
    quint64 nextName_ = 1;
};

} // namespace quelmo::linux_platform
