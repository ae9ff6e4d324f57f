#include "TempSettings.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("quelmo"));
    QCoreApplication::setApplicationName(QStringLiteral("quelmo"));
    const quelmo::test::TempSettings settings; // never touch the real user's settings
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
