#include "platform/linux/wayland/HyprlandLink.h"

#include "platform/linux/wayland/HyprlandProtocol.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

namespace quelmo::linux_platform {
namespace {

constexpr int replyTimeoutMs = 2000;
constexpr int connectTimeoutMs = 1000;

} // namespace

std::unique_ptr<HyprlandLink> HyprlandLink::connect(const QString& socketFolder) {
    if (socketFolder.isEmpty())
        return nullptr;
    std::unique_ptr<HyprlandLink> link(new HyprlandLink(socketFolder));
    link->events_->connectToServer(socketFolder + QStringLiteral("/.socket2.sock"));
    if (!link->events_->waitForConnected(connectTimeoutMs))
        return nullptr;
    // The first list is waited for, so the desktop is known from the first look on.
    link->refresh();
    const QDeadlineTimer deadline(2 * replyTimeoutMs);
    while (!link->refreshed_ && link->refreshing_ && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, 50);
    if (!link->refreshed_)
        return nullptr;
    return link;
}

HyprlandLink::HyprlandLink(QString socketFolder)
    : folder_(std::move(socketFolder)), events_(std::make_unique<QLocalSocket>()) {
    QObject::connect(events_.get(), &QLocalSocket::readyRead, events_.get(),
                     [this] { onEvents(); });
    QObject::connect(events_.get(), &QLocalSocket::disconnected, events_.get(),
                     [this] { windows_.clear(); });
}

HyprlandLink::~HyprlandLink() {
    *alive_ = false; // replies still on their way find nothing to tell
    QObject::disconnect(events_.get(), nullptr, nullptr, nullptr);
}

void HyprlandLink::request(const QByteArray& command,
                           std::function<void(std::optional<QByteArray>)> onReply) {
    auto* socket = new QLocalSocket(&requests_);
    auto reply = std::make_shared<QByteArray>();
    auto finished = std::make_shared<bool>(false);
    const auto finish = [socket, reply, finished, onReply, alive = alive_](bool complete) {
        if (*finished)
            return;
        *finished = true;
        socket->deleteLater();
        if (*alive)
            onReply(complete ? std::optional<QByteArray>(*reply) : std::nullopt);
    };
    QObject::connect(socket, &QLocalSocket::connected, socket,
                     [socket, command] { socket->write(command); });
    QObject::connect(socket, &QLocalSocket::readyRead, socket,
                     [socket, reply] { reply->append(socket->readAll()); });
    QObject::connect(socket, &QLocalSocket::disconnected, socket, [socket, reply, finish] {
        reply->append(socket->readAll());
        finish(true);
    });
    QObject::connect(socket, &QLocalSocket::errorOccurred, socket,
                     [socket, finish](QLocalSocket::LocalSocketError error) {
                         if (error != QLocalSocket::PeerClosedError)
                             finish(false);
                         else if (socket->state() == QLocalSocket::UnconnectedState)
                             finish(true);
                     });
    QTimer::singleShot(replyTimeoutMs, socket, [socket, finish] {
        socket->abort(); // never keep the compositor waiting on us
        finish(false);
    });
    socket->connectToServer(folder_ + QStringLiteral("/.socket.sock"));
}

void HyprlandLink::refresh() {
    if (refreshing_) {
        refreshAgain_ = true;
        return;
    }
    refreshing_ = true;
    refreshAgain_ = false;
    request("j/monitors", [this](std::optional<QByteArray> monitors) {
        if (!monitors) {
            refreshing_ = false;
            return;
        }
        request("j/clients", [this, monitors](std::optional<QByteArray> clients) {
            refreshing_ = false;
            if (clients) {
                windows_ = hyprland::windowsOf(*clients, *monitors);
                refreshed_ = true;
                if (!pendingFocus_.isEmpty())
                    focus(std::exchange(pendingFocus_, QString()));
            }
            if (refreshAgain_)
                refresh();
        });
    });
}

void HyprlandLink::onEvents() {
    eventBuffer_.append(events_->readAll());
    bool changed = false;
    qsizetype end = 0;
    while ((end = eventBuffer_.indexOf('\n')) >= 0) {
        const QByteArray line = eventBuffer_.first(end);
        eventBuffer_.remove(0, end + 1);
        const auto event = hyprland::parseEvent(line);
        if (!event)
            continue;
        changed = true;
        if (const QString address = hyprland::addressOfActiveWindowEvent(*event);
            !address.isEmpty())
            focus(address);
    }
    if (eventBuffer_.size() > 1024 * 1024)
        eventBuffer_.clear(); // no line break in a megabyte: not an event stream
    if (changed)
        refresh();
}

void HyprlandLink::focus(const QString& address) {
    for (CompositorWindow& window : windows_)
        window.focused = window.handle == address;
    for (const CompositorWindow& window : windows_) {
        if (window.handle == address) {
            const CompositorWindow focused = window; // the handler may change the list
            windowFocused(focused);
            return;
        }
    }
    pendingFocus_ = address; // a new window: told once the list has it
}

bool HyprlandLink::close(const CompositorWindow& window) {
    const QByteArray command = hyprland::closeRequest(window);
    if (command.isEmpty() || events_->state() != QLocalSocket::ConnectedState)
        return false;
    request(command, [](std::optional<QByteArray>) {});
    return true;
}

} // namespace quelmo::linux_platform
