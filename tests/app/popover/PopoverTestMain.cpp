#include "support/TempSettings.h"

#include <QGuiApplication>
#include <QQuickWindow>
#include <gtest/gtest.h>

// The popover's views need a GUI application but no display: Qt Quick draws with its software
// renderer on the offscreen platform.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    QGuiApplication app(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("quelmo"));
    QGuiApplication::setApplicationName(QStringLiteral("quelmo"));
    const quelmo::test::TempSettings settings; // never touch the real user's settings
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
