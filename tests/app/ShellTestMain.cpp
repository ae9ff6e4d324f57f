#include "support/TempSettings.h"

#include <QApplication>
#include <gtest/gtest.h>

// The shell's tests need a widgets application (menus, icons) but no display: Qt draws into
// memory on the offscreen platform.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_QUICK_BACKEND", "software");
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("quelmo"));
    QApplication::setApplicationName(QStringLiteral("quelmo"));
    QApplication::setQuitOnLastWindowClosed(false);
    const quelmo::test::TempSettings settings; // never touch the real user's settings
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
