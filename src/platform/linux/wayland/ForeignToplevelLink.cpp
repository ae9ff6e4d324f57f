#include "platform/linux/wayland/ForeignToplevelLink.h"

#include "wlr-foreign-toplevel-management-unstable-v1-client-protocol.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <cstring>
#include <poll.h>
#include <wayland-client.h>

namespace quelmo::linux_platform {
namespace {

constexpr int startTimeoutMs = 1000;
constexpr std::uint32_t highestVersion = 3;

using Toplevel = ForeignToplevelLink::Toplevel;

Toplevel& toplevelOf(void* data) {
    return *static_cast<Toplevel*>(data);
}

void onTitle(void*, zwlr_foreign_toplevel_handle_v1*, const char*) {}
void onAppId(void* data, zwlr_foreign_toplevel_handle_v1*, const char* appId) {
    toplevelOf(data).pending.appId = QString::fromUtf8(appId);
}
void onOutputEnter(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}
void onOutputLeave(void*, zwlr_foreign_toplevel_handle_v1*, wl_output*) {}

void onState(void* data, zwlr_foreign_toplevel_handle_v1*, wl_array* states) {
    Toplevel::State& toplevel = toplevelOf(data).pending;
    toplevel.activated = false;
    toplevel.minimised = false;
    const std::size_t count = states->size / sizeof(std::uint32_t);
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t state = 0;
        std::memcpy(&state, static_cast<const char*>(states->data) + i * sizeof state,
                    sizeof state);
        if (state == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED)
            toplevel.activated = true;
        else if (state == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_MINIMIZED)
            toplevel.minimised = true;
    }
}

void onDone(void* data, zwlr_foreign_toplevel_handle_v1*) {
    Toplevel& toplevel = toplevelOf(data);
    toplevel.link->toplevelDone(toplevel);
}
void onClosed(void* data, zwlr_foreign_toplevel_handle_v1*) {
    Toplevel& toplevel = toplevelOf(data);
    toplevel.link->toplevelClosed(toplevel);
}
void onParent(void*, zwlr_foreign_toplevel_handle_v1*, zwlr_foreign_toplevel_handle_v1*) {}

const zwlr_foreign_toplevel_handle_v1_listener toplevelListener = {
    onTitle, onAppId, onOutputEnter, onOutputLeave, onState, onDone, onClosed, onParent};

void onToplevel(void* data, zwlr_foreign_toplevel_manager_v1*,
                zwlr_foreign_toplevel_handle_v1* handle) {
    static_cast<ForeignToplevelLink*>(data)->addToplevel(handle);
}
void onFinished(void*, zwlr_foreign_toplevel_manager_v1*) {}

const zwlr_foreign_toplevel_manager_v1_listener managerListener = {onToplevel, onFinished};

void onGlobal(void* data, wl_registry* registry, std::uint32_t name, const char* interface,
              std::uint32_t version) {
    if (std::strcmp(interface, zwlr_foreign_toplevel_manager_v1_interface.name) == 0)
        static_cast<ForeignToplevelLink*>(data)->bindManager(registry, name, version);
}
void onGlobalRemove(void*, wl_registry*, std::uint32_t) {}

const wl_registry_listener registryListener = {onGlobal, onGlobalRemove};

void onSyncDone(void* data, wl_callback*, std::uint32_t) {
    *static_cast<bool*>(data) = true;
}
const wl_callback_listener syncListener = {onSyncDone};

} // namespace

std::unique_ptr<ForeignToplevelLink> ForeignToplevelLink::connect(const char* display) {
    wl_display* connection = wl_display_connect(display);
    if (!connection)
        return nullptr;
    std::unique_ptr<ForeignToplevelLink> link(new ForeignToplevelLink(connection));
    // The globals first, then the windows the manager announces on binding.
    if (!link->roundtrip(startTimeoutMs) || !link->manager_ || !link->roundtrip(startTimeoutMs))
        return nullptr;
    link->notifier_ =
        std::make_unique<QSocketNotifier>(wl_display_get_fd(connection), QSocketNotifier::Read);
    QObject::connect(link->notifier_.get(), &QSocketNotifier::activated, link->notifier_.get(),
                     [raw = link.get()] { raw->onReadable(); });
    return link;
}

ForeignToplevelLink::ForeignToplevelLink(wl_display* display) : display_(display) {
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &registryListener, this);
}

ForeignToplevelLink::~ForeignToplevelLink() {
    notifier_.reset();
    for (const auto& toplevel : toplevels_)
        zwlr_foreign_toplevel_handle_v1_destroy(toplevel->handle);
    if (manager_)
        zwlr_foreign_toplevel_manager_v1_destroy(manager_);
    if (registry_)
        wl_registry_destroy(registry_);
    wl_display_disconnect(display_);
}

void ForeignToplevelLink::bindManager(wl_registry* registry, std::uint32_t name,
                                      std::uint32_t version) {
    if (manager_)
        return;
    manager_ = static_cast<zwlr_foreign_toplevel_manager_v1*>(
        wl_registry_bind(registry, name, &zwlr_foreign_toplevel_manager_v1_interface,
                         std::min(version, highestVersion)));
    zwlr_foreign_toplevel_manager_v1_add_listener(manager_, &managerListener, this);
}

void ForeignToplevelLink::addToplevel(zwlr_foreign_toplevel_handle_v1* handle) {
    auto toplevel = std::make_unique<Toplevel>();
    toplevel->link = this;
    toplevel->handle = handle;
    toplevel->name = QStringLiteral("toplevel-%1").arg(nextName_++);
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &toplevelListener, toplevel.get());
    toplevels_.push_back(std::move(toplevel));
}

void ForeignToplevelLink::toplevelDone(Toplevel& toplevel) {
    // The changes apply together; a window that was not active before becomes so.
    const bool newlyActive =
        toplevel.pending.activated && !(toplevel.announced && toplevel.current.activated);
    toplevel.current = toplevel.pending;
    toplevel.announced = true;
    publish();
    if (!newlyActive)
        return;
    for (const CompositorWindow& window : windows_) {
        if (window.handle == toplevel.name) {
            const CompositorWindow focused = window; // the handler may change the list
            windowFocused(focused);
            return;
        }
    }
}

void ForeignToplevelLink::toplevelClosed(Toplevel& toplevel) {
    zwlr_foreign_toplevel_handle_v1_destroy(toplevel.handle);
    std::erase_if(toplevels_, [&](const auto& t) { return t.get() == &toplevel; });
    publish();
}

void ForeignToplevelLink::publish() {
    windows_.clear();
    for (const auto& toplevel : toplevels_) {
        if (!toplevel->announced)
            continue;
        CompositorWindow window;
        window.handle = toplevel->name;
        window.appId = toplevel->current.appId;
        window.focused = toplevel->current.activated;
        window.minimised = toplevel->current.minimised;
        // The protocol tells neither workspaces nor sizes: a window that is not minimised is
        // taken as shown, so that nothing in use is offered.
        window.onScreen = !toplevel->current.minimised;
        windows_.push_back(std::move(window));
    }
}

bool ForeignToplevelLink::broken() const {
    return wl_display_get_error(display_) != 0;
}

bool ForeignToplevelLink::roundtrip(int timeoutMs) {
    bool done = false;
    wl_callback* callback = wl_display_sync(display_);
    wl_callback_add_listener(callback, &syncListener, &done);
    const QDeadlineTimer deadline(timeoutMs);
    while (!done && !broken()) {
        if (wl_display_dispatch_pending(display_) < 0 || done)
            break;
        wl_display_flush(display_);
        if (wl_display_prepare_read(display_) != 0)
            continue; // more events queued already: dispatch them first
        pollfd fd{wl_display_get_fd(display_), POLLIN, 0};
        if (::poll(&fd, 1, int(std::max<qint64>(0, deadline.remainingTime()))) <= 0) {
            wl_display_cancel_read(display_);
            break;
        }
        if (wl_display_read_events(display_) < 0)
            break;
    }
    wl_callback_destroy(callback);
    return done;
}

void ForeignToplevelLink::onReadable() {
    bool ok = true;
    while (ok && wl_display_prepare_read(display_) != 0)
        ok = wl_display_dispatch_pending(display_) >= 0;
    ok = ok && wl_display_read_events(display_) >= 0 && wl_display_dispatch_pending(display_) >= 0;
    wl_display_flush(display_);
    if (!ok || broken()) { // the compositor has gone: nothing more will be told
        notifier_->setEnabled(false);
        windows_.clear();
    }
}

bool ForeignToplevelLink::close(const CompositorWindow& window) {
    if (broken())
        return false;
    for (const auto& toplevel : toplevels_) {
        if (toplevel->name == window.handle) {
            zwlr_foreign_toplevel_handle_v1_close(toplevel->handle);
            wl_display_flush(display_);
            return true;
        }
    }
    return false;
}

} // namespace quelmo::linux_platform
