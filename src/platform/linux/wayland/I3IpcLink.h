#pragma once

// sway and other compositors speaking the i3 IPC, over their socket ($SWAYSOCK): the window
// tree (GET_TREE), read again whenever a window or workspace event says it changed, focus
// events as activations, and "[con_id=N] kill" to ask a window to close. Everything runs on the
// main thread's event loop; the only waits are bounded ones while connecting.

#include "platform/linux/wayland/CompositorLink.h"

#include <QByteArray>
#include <QLocalSocket>
#include <memory>

namespace quelmo::linux_platform {

class I3IpcLink final : public CompositorLink {
public:
    // Nothing when the socket cannot be reached or does not answer like a sway socket.
    static std::unique_ptr<I3IpcLink> connect(const QString& socketPath);
    ~I3IpcLink() override;
    I3IpcLink(const I3IpcLink&) = delete;
    I3IpcLink& operator=(const I3IpcLink&) = delete;

    const std::vector<CompositorWindow>& windows() const override { return windows_; }
    bool close(const CompositorWindow& window) override;

private:
    I3IpcLink() = default;
    bool start(const QString& socketPath);
    void send(std::uint32_t type, const QByteArray& payload);
    void requestTree();
    void onReadable();
    void onDisconnected();
    void handle(std::uint32_t type, const QByteArray& payload);

    std::unique_ptr<QLocalSocket> socket_;
    QByteArray buffer_;
    std::vector<CompositorWindow> windows_;
    bool treeRequested_ = false; // a GET_TREE is on its way
    bool treeStale_ = false;     // something changed since that request was sent
    bool treeReceived_ = false;
};

} // namespace quelmo::linux_platform
