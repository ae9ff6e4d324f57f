#include "app/shell/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
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
    if (gate_.admit())
        emit activationRequested();
}

bool SingleInstance::handOverOnBus() {
    // The object goes up before the name, so a launch that sees the name can always call it.
    bus_->registerObject(QString::fromLatin1(objectPath), this,
                         QDBusConnection::ExportScriptableSlots);
    const QString name = QString::fromLatin1(serviceName);
    QDBusConnectionInterface* names = bus_->interface();
    for (int attempt = 0; attempt < 3; ++attempt) {
        if (bus_->registerService(name))
            return false;
        // Whoever owns the name is the session's instance, whether or not it answers now (it may
        // be paused or busy): ask it to show its popover and step aside either way.
        const QDBusReply<QString> owner = names ? names->serviceOwner(name) : QDBusReply<QString>();
        if (owner.isValid() && !owner.value().isEmpty()) {
            const QDBusMessage call = QDBusMessage::createMethodCall(
                name, QString::fromLatin1(objectPath), name, QStringLiteral("Activate"));
            bus_->call(call, QDBus::Block, handOverTimeoutMs);
            return true;
        }
        // The other instance went away between the two steps: try to take its place.
    }
    // The bus refuses the name although nobody holds it: run rather than not at all.
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
                    Activate();
            });
        }
    });
    server_->listen(name);
    return false;
}

} // namespace quelmo
