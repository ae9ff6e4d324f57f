#include "platform/linux/wayland/I3IpcLink.h"

#include "platform/linux/wayland/I3IpcProtocol.h"

#include <QDeadlineTimer>

namespace quelmo::linux_platform {
namespace {

constexpr int connectTimeoutMs = 1000;
constexpr int firstTreeTimeoutMs = 2000;

} // namespace

std::unique_ptr<I3IpcLink> I3IpcLink::connect(const QString& socketPath) {
    if (socketPath.isEmpty())
        return nullptr;
    std::unique_ptr<I3IpcLink> link(new I3IpcLink);
    if (!link->start(socketPath))
        return nullptr;
    return link;
}

I3IpcLink::~I3IpcLink() {
    if (socket_)
        QObject::disconnect(socket_.get(), nullptr, nullptr,
                            nullptr); // no calls into a half-gone link
}

bool I3IpcLink::start(const QString& socketPath) {
    socket_ = std::make_unique<QLocalSocket>();
    socket_->connectToServer(socketPath);
    if (!socket_->waitForConnected(connectTimeoutMs))
        return false;
    send(i3ipc::subscribe, R"(["window","workspace"])");
    requestTree();

    // The first tree is waited for, so the desktop is known from the first look on.
    const QDeadlineTimer deadline(firstTreeTimeoutMs);
    while (!treeReceived_ && socket_->state() == QLocalSocket::ConnectedState &&
           !deadline.hasExpired()) {
        if (socket_->bytesAvailable() == 0 &&
            !socket_->waitForReadyRead(int(std::max<qint64>(1, deadline.remainingTime()))))
            break;
        onReadable();
    }
    if (!treeReceived_)
        return false;
    QObject::connect(socket_.get(), &QLocalSocket::readyRead, socket_.get(),
                     [this] { onReadable(); });
    QObject::connect(socket_.get(), &QLocalSocket::disconnected, socket_.get(),
                     [this] { onDisconnected(); });
    return true;
}

void I3IpcLink::send(std::uint32_t type, const QByteArray& payload) {
    socket_->write(i3ipc::encode(type, payload));
    socket_->flush();
}

void I3IpcLink::requestTree() {
    if (treeRequested_) {
        treeStale_ = true; // asked again as soon as the answer in flight has arrived
        return;
    }
    treeRequested_ = true;
    treeStale_ = false;
    send(i3ipc::getTree, {});
}

void I3IpcLink::onReadable() {
    buffer_.append(socket_->readAll());
    bool broken = false;
    while (auto message = i3ipc::takeMessage(buffer_, broken))
        handle(message->type, message->payload);
    if (broken) // not a sway socket after all, or out of step: nothing more can be read from it
        socket_->abort();
}

void I3IpcLink::onDisconnected() {
    windows_.clear();
    buffer_.clear();
}

void I3IpcLink::handle(std::uint32_t type, const QByteArray& payload) {
    switch (type) {
    case i3ipc::getTree:
        windows_ = i3ipc::windowsOfTree(payload);
        treeReceived_ = true;
        treeRequested_ = false;
        if (treeStale_)
            requestTree();
        break;
    case i3ipc::windowEvent:
        if (const auto event = i3ipc::parseWindowEvent(payload);
            event && event->change == QLatin1String("focus")) {
            // The tree comes a moment later; until then the event tells who is in front.
            for (CompositorWindow& window : windows_)
                window.focused = window.handle == event->window.handle;
            windowFocused(event->window);
        }
        requestTree();
        break;
    case i3ipc::workspaceEvent:
        requestTree();
        break;
    default: // command results and the subscription's answer
        break;
    }
}

bool I3IpcLink::close(const CompositorWindow& window) {
    const QByteArray command = i3ipc::closeCommand(window);
    if (command.isEmpty() || socket_->state() != QLocalSocket::ConnectedState)
        return false;
    send(i3ipc::runCommand, command);
    return true;
}

} // namespace quelmo::linux_platform
