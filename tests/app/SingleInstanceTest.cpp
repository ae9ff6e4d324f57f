#include "app/shell/SingleInstance.h"

#include "app/PrivateBus.h"

#include <QDBusConnectionInterface>
#include <gtest/gtest.h>

using namespace quelmo;
using quelmo::test::PrivateBus;

namespace {

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
