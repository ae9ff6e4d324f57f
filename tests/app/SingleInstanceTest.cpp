#include "app/shell/SingleInstance.h"

#include <QDBusConnectionInterface>
#include <QProcess>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

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

const QString serviceName = QString::fromLatin1(SingleInstance::serviceName);

TEST(SingleInstanceTest, ALaunchStepsAsideWhileAnotherProcessOwnsTheNameEvenIfItNeverAnswers) {
    PrivateBus bus;
    ASSERT_TRUE(bus.ready());
    // An owner that answers nothing usefully: it publishes no object, as one that hangs or is
    // still starting up looks to a caller.
    QDBusConnection owner = bus.connect(QStringLiteral("owner"));
    ASSERT_TRUE(owner.registerService(serviceName));

    SingleInstance launch(bus.connect(QStringLiteral("launch")));
    EXPECT_TRUE(launch.handOver());
    EXPECT_EQ(owner.interface()->serviceOwner(serviceName).value(), owner.baseService());
}

TEST(SingleInstanceTest, TheFirstLaunchTakesTheNameAndALaterOneTakesOverWhenItIsGone) {
    PrivateBus bus;
    ASSERT_TRUE(bus.ready());
    {
        QDBusConnection first = bus.connect(QStringLiteral("first"));
        SingleInstance instance(first);
        EXPECT_FALSE(instance.handOver());
        EXPECT_EQ(first.interface()->serviceOwner(serviceName).value(), first.baseService());
    }
    bus.disconnect(QStringLiteral("first")); // the first instance has ended

    QDBusConnection next = bus.connect(QStringLiteral("next"));
    SingleInstance instance(next);
    EXPECT_FALSE(instance.handOver());
    EXPECT_EQ(next.interface()->serviceOwner(serviceName).value(), next.baseService());
}

} // namespace
