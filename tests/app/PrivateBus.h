#pragma once

#include <QDBusConnection>
#include <QProcess>
#include <QStringList>

namespace quelmo::test {

// A session bus of the test's own, gone with the object.
class PrivateBus {
public:
    PrivateBus() {
        daemon_.start(QStringLiteral("dbus-daemon"),
                      {QStringLiteral("--session"), QStringLiteral("--nofork"),
                       QStringLiteral("--print-address=1")});
        if (daemon_.waitForReadyRead(10000))
            address_ = QString::fromUtf8(daemon_.readLine().trimmed());
    }
    ~PrivateBus() {
        for (const QString& name : connections_)
            QDBusConnection::disconnectFromBus(name);
        daemon_.terminate();
        daemon_.waitForFinished(5000);
    }
    bool ready() const { return !address_.isEmpty(); }
    QString address() const { return address_; }

    // A new client of this bus; `name` tells connections apart within the test.
    QDBusConnection connect(const QString& name) {
        connections_.append(name);
        return QDBusConnection::connectToBus(address_, name);
    }
    void disconnect(const QString& name) { QDBusConnection::disconnectFromBus(name); }

private:
    QProcess daemon_;
    QString address_;
    QStringList connections_;
};

} // namespace quelmo::test
