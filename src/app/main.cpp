#include "LinuxPlatform.h"
#include "metrics/SystemMetrics.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("quelmo"));
    QApplication::setApplicationName(QStringLiteral("quelmo"));
    quelmo::SystemMetrics metrics(quelmo::linux_platform::makePlatform());
    metrics.start();
    return QApplication::exec();
}
