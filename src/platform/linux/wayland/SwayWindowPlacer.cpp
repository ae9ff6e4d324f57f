#include "platform/linux/wayland/SwayWindowPlacer.h"

namespace quelmo::linux_platform {
namespace {

constexpr int connectTimeoutMs = 1000;
// The compositor maps the window a moment after it is shown: looked for every 20 ms, 2 s long.
constexpr int lookIntervalMs = 20;
constexpr int lookAttempts = 100;
// A size change reaches the compositor through XWayland, which may come after the move that
// follows it: the move is sent once more a little later.
constexpr int repeatMoveMs = 150;

} // namespace

std::unique_ptr<SwayWindowPlacer> SwayWindowPlacer::connect(const QString& socketPath) {
    if (socketPath.isEmpty())
        return nullptr;
    std::unique_ptr<SwayWindowPlacer> placer(new SwayWindowPlacer);
    placer->socket_ = std::make_unique<QLocalSocket>();
    placer->socket_->connectToServer(socketPath);
    if (!placer->socket_->waitForConnected(connectTimeoutMs))
        return nullptr;
    SwayWindowPlacer* self = placer.get();
    QObject::connect(self->socket_.get(), &QLocalSocket::readyRead, self->socket_.get(),
                     [self] { self->onReadable(); });
    QObject::connect(self->socket_.get(), &QLocalSocket::disconnected, self->socket_.get(), [self] {
        self->replies_.clear();
        self->buffer_.clear();
    });
    self->retry_.setSingleShot(true);
    self->retry_.setInterval(lookIntervalMs);
    QObject::connect(&self->retry_, &QTimer::timeout, self->socket_.get(),
                     [self] { self->lookForWindow(self->generation_); });
    self->repeatMove_.setSingleShot(true);
    self->repeatMove_.setInterval(repeatMoveMs);
    QObject::connect(&self->repeatMove_, &QTimer::timeout, self->socket_.get(), [self] {
        if (self->topLeft_)
            self->move(*self->topLeft_);
    });
    return placer;
}

SwayWindowPlacer::~SwayWindowPlacer() {
    if (socket_)
        QObject::disconnect(socket_.get(), nullptr, nullptr, nullptr);
}

void SwayWindowPlacer::send(std::uint32_t type, const QByteArray& payload, Reply reply) {
    if (socket_->state() != QLocalSocket::ConnectedState)
        return;
    replies_.push_back(std::move(reply));
    socket_->write(i3ipc::encode(type, payload));
    socket_->flush();
}

void SwayWindowPlacer::onReadable() {
    buffer_.append(socket_->readAll());
    bool broken = false;
    while (auto message = i3ipc::takeMessage(buffer_, broken)) {
        if (replies_.empty())
            continue; // nothing was asked: not a reply of ours
        Reply reply = std::move(replies_.front());
        replies_.pop_front();
        if (reply)
            reply(message->payload);
    }
    if (broken)
        socket_->abort();
}

void SwayWindowPlacer::placeWhenMapped(quint32 window, Place place) {
    forget();
    window_ = window;
    place_ = std::move(place);
    attemptsLeft_ = lookAttempts;
    lookForWindow(generation_);
}

void SwayWindowPlacer::lookForWindow(quint64 generation) {
    send(i3ipc::getTree, {}, [this, generation](const QByteArray& tree) {
        if (generation != generation_)
            return;
        const auto found = i3ipc::findX11Window(tree, window_);
        if (!found) {
            if (--attemptsLeft_ > 0)
                retry_.start();
            return;
        }
        container_ = found->container;
        send(i3ipc::runCommand, i3ipc::moveToPointerCommand(*container_));
        placeAtPointer(generation);
    });
}

void SwayWindowPlacer::placeAtPointer(quint64 generation) {
    send(i3ipc::getTree, {}, [this, generation](const QByteArray& tree) {
        if (generation != generation_ || !place_)
            return;
        const auto found = i3ipc::findX11Window(tree, window_);
        if (!found || found->container != container_)
            return;
        const QPoint pointer = i3ipc::pointerFromCentredWindow(found->rect, found->output);
        const QRect area = found->workspace.isValid() ? found->workspace : found->output;
        if (const auto topLeft = place_(pointer, area))
            moveAgain(*topLeft);
    });
}

void SwayWindowPlacer::moveAgain(QPoint topLeft) {
    if (!container_)
        return;
    topLeft_ = topLeft;
    move(topLeft);
    repeatMove_.start();
}

void SwayWindowPlacer::move(QPoint topLeft) {
    if (container_)
        send(i3ipc::runCommand, i3ipc::moveCommand(*container_, topLeft));
}

void SwayWindowPlacer::forget() {
    ++generation_;
    retry_.stop();
    repeatMove_.stop();
    container_.reset();
    topLeft_.reset();
    place_ = nullptr;
    window_ = 0;
}

} // namespace quelmo::linux_platform
