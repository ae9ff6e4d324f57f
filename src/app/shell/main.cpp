#include "app/shell/AppDelegate.h"
#include "app/shell/ApplicationId.h"
#include "app/shell/CommandLine.h"
#include "app/shell/GraphicalSession.h"
#include "app/shell/LinuxShell.h"
#include "app/shell/QuitSignals.h"
#include "app/shell/SingleInstance.h"
#include "platform/linux/LinuxPlatform.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QQuickWindow>
#include <QTimer>
#include <cstdio>
#include <optional>

namespace {

std::optional<QDBusConnection> sessionBus() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}

// Answers --help, --version and command lines that are not understood; these need no display.
std::optional<int> answeredCommandLine(int argc, char* argv[]) {
    if (argc <= 1)
        return std::nullopt;
    const QCoreApplication reader(argc, argv);
    const std::optional<quelmo::CommandLineAnswer> answer =
        quelmo::answerCommandLine(QCoreApplication::arguments());
    if (!answer)
        return std::nullopt;
    std::fputs(qUtf8Printable(answer->standardOutput), stdout);
    std::fputs(qUtf8Printable(answer->standardError), stderr);
    return answer->exitCode;
}

} // namespace

int main(int argc, char* argv[]) {
    QCoreApplication::setOrganizationName(QStringLiteral("quelmo"));
    QCoreApplication::setApplicationName(QStringLiteral("quelmo"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(quelmo::applicationVersion));
    if (const std::optional<int> status = answeredCommandLine(argc, argv))
        return *status;

    // Checked before Qt starts, so that a missing display is one plain line, not Qt's abort.
    if (const std::optional<QString> problem = quelmo::graphicalSessionProblem()) {
        std::fprintf(stderr, "quelmo: %s\n", qPrintable(*problem));
        return 1;
    }

    QApplication app(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Quelmo"));
    QApplication::setDesktopFileName(QString::fromLatin1(quelmo::applicationId));
    // A tray utility: closing the popover never ends the program.
    QApplication::setQuitOnLastWindowClosed(false);

    // The popover is small and mostly still: Qt Quick's software renderer draws it without
    // loading an OpenGL driver, which would otherwise stay resident (about 90 MiB with Mesa)
    // for the rest of the session once the popover has been opened.
    if (qEnvironmentVariableIsEmpty("QT_QUICK_BACKEND"))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);

    // Logging out, Ctrl+C or a closed terminal end the program as its Quit entry does.
    quelmo::QuitSignals quitSignals;

    const std::optional<QDBusConnection> bus = sessionBus();
    quelmo::SingleInstance instance(bus);
    if (instance.handOver())
        return 0;

    quelmo::AppDelegate delegate(quelmo::linux_platform::makePlatform(), quelmo::linuxShell(bus));
    QObject::connect(&instance, &quelmo::SingleInstance::activationRequested, &delegate,
                     &quelmo::AppDelegate::showPopover);
    QObject::connect(&quitSignals, &quelmo::QuitSignals::received, &delegate,
                     &quelmo::AppDelegate::quit);
    QTimer::singleShot(0, &delegate, &quelmo::AppDelegate::applicationDidFinishLaunching);
    const int status = QApplication::exec();
    delegate.metrics().savePending();
    return status;
}
