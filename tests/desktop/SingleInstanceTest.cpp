#include "SingleInstance.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

// Without a session bus the instances meet on a local socket named after the user and the
// display; a display name of the test's own keeps it apart from any real session.
class SingleInstanceWithoutBusTest : public ::testing::Test {
protected:
    void SetUp() override {
        qputenv("DISPLAY", QByteArray("quelmo-test-") +
                               QByteArray::number(QCoreApplication::applicationPid()));
    }
    void TearDown() override { QFile::remove(socketPath()); }
    static QString socketPath() {
        return QDir::tempPath() + QLatin1Char('/') + SingleInstance::socketName();
    }
};

} // namespace

TEST_F(SingleInstanceWithoutBusTest, ALaterLaunchHandsOverAndTheFirstOpensItsPopover) {
    SingleInstance first(std::nullopt);
    ASSERT_FALSE(first.handOver());
    QSignalSpy asked(&first, &SingleInstance::activationRequested);

    SingleInstance second(std::nullopt);
    EXPECT_TRUE(second.handOver());
    EXPECT_TRUE(asked.wait(5000));
    EXPECT_EQ(asked.size(), 1);
}

TEST_F(SingleInstanceWithoutBusTest, ASocketLeftByAnInstanceThatDiedIsTakenOver) {
    QFile stale(socketPath());
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.close();

    SingleInstance instance(std::nullopt);
    EXPECT_FALSE(instance.handOver());
    SingleInstance later(std::nullopt);
    EXPECT_TRUE(later.handOver());
}
