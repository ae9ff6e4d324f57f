#pragma once

// Hyprland, over its two IPC sockets: the window list ("j/clients" with "j/monitors" for what is
// shown), read again after every event that may change it, "activewindowv2" events as
// activations, and "dispatch closewindow" to ask a window to close. Hyprland answers requests
// one at a time and stalls while a request connection stays open, so each request opens its own
// connection, and a reply that does not arrive within two seconds is given up.

#include "platform/linux/wayland/CompositorLink.h"

#include <QByteArray>
#include <QLocalSocket>
#include <QObject>
#include <functional>
#include <memory>

namespace quelmo::linux_platform {

class HyprlandLink final : public CompositorLink {
public:
    // `socketFolder` holds .socket.sock and .socket2.sock. Nothing when they do not answer.
    static std::unique_ptr<HyprlandLink> connect(const QString& socketFolder);
    ~HyprlandLink() override;
    HyprlandLink(const HyprlandLink&) = delete;
    HyprlandLink& operator=(const HyprlandLink&) = delete;

    const std::vector<CompositorWindow>& windows() const override { return windows_; }
    bool close(const CompositorWindow& window) override;

private:
    explicit HyprlandLink(QString socketFolder);
    // Sends one request on a connection of its own; `onReply` gets the reply, or nothing.
    void request(const QByteArray& command, std::function<void(std::optional<QByteArray>)> onReply);
    void refresh();
    void onEvents();
    void focus(const QString& address);

    QString folder_;
    std::unique_ptr<QLocalSocket> events_;
    QByteArray eventBuffer_;
    std::vector<CompositorWindow> windows_;
    bool refreshing_ = false;
    bool refreshAgain_ = false;
    bool refreshed_ = false;
    QString pendingFocus_; // a window activated before the list knew it
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    QObject requests_; // owns the connections of requests in flight: none outlives the link
};

} // namespace quelmo::linux_platform
