#include "app/shell/SingleInstance.h"

#include <QDBusMessage>
#include <QLocalServer>
#include <QLocalSocket>
#include <unistd.h>

namespace quelmo {

namespace {

constexpr int handOverTimeoutMs = 5000;

} // namespace

SingleInstance::SingleInstance(std::optional<QDBusConnection> bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)) {}

SingleInstance::~SingleInstance() = default;

QString SingleInstance::socketName() {
    QString display = qEnvironmentVariable("DISPLAY");
    display.replace(QLatin1Char('/'), QLatin1Char('_'));
    return QStringLiteral("quelmo-%1-%2").arg(getuid()).arg(display);
}

bool SingleInstance::handOver() {
    return bus_ && bus_->isConnected() ? handOverOnBus() : handOverOnSocket();
}

void SingleInstance::Activate() {
    emit activationRequested();
}

bool SingleInstance::handOverOnBus() {
    // The object goes up before the name, so a launch that sees the name can always call it.
    bus_->registerObject(QString::fromLatin1(objectPath), this,
                         QDBusConnection::ExportScriptableSlots);
    for (int attempt = 0; attempt < 2; ++attempt) {
        if (bus_->registerService(QString::fromLatin1(serviceName)))
            return false;
        const QDBusMessage call = QDBusMessage::createMethodCall(
            QString::fromLatin1(serviceName), QString::fromLatin1(objectPath),
            QString::fromLatin1(serviceName), QStringLiteral("Activate"));
        const QDBusMessage reply = bus_->call(call, QDBus::Block, handOverTimeoutMs);
        if (reply.type() == QDBusMessage::ReplyMessage)
            return true;
        // The other instance went away between the two steps: try to take its place.
    }
    return false;
}

bool SingleInstance::handOverOnSocket() {
    const QString name = socketName();
    QLocalSocket probe;
    probe.connectToServer(name);
    if (probe.waitForConnected(handOverTimeoutMs)) {
        probe.write("activate\n");
        probe.waitForBytesWritten(handOverTimeoutMs);
        probe.disconnectFromServer();
        return true;
    }
    // Nobody answers: whatever socket file is left belongs to an instance that died.
    QLocalServer::removeServer(name);
    server_ = new QLocalServer(this);
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    connect(server_, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* peer = server_->nextPendingConnection()) {
            connect(peer, &QLocalSocket::disconnected, peer, &QObject::deleteLater);
            connect(peer, &QLocalSocket::readyRead, this, [this, peer] {
                if (peer->readAll().startsWith("activate"))
                    emit activationRequested();
            });
        }
    });
    server_->listen(name);
    return false;
}

} // namespace quelmo
