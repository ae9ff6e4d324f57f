#include "app/shell/LinuxShell.h"

#include "app/popover/QuickPopoverSurface.h"
#include "app/tray/TrayStatusItem.h"
#include "platform/linux/apps/AutostartEntry.h"

#include <QStandardPaths>

namespace quelmo {

QString trayIconDirectory() {
    const bool hasRuntimeDir = !qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR");
    const QString base = hasRuntimeDir
                             ? QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation) +
                                   QStringLiteral("/quelmo")
                             : QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    return base + QStringLiteral("/icons");
}

AppDelegate::Shell linuxShell(std::optional<QDBusConnection> bus) {
    return {
        [bus]() -> std::unique_ptr<StatusItem> {
            return std::make_unique<TrayStatusItem>(bus, trayIconDirectory());
        },
        [](SystemMetrics& metrics, PopoverViewState& viewState) -> std::unique_ptr<PopoverSurface> {
            return std::make_unique<QuickPopoverSurface>(
                metrics, std::make_unique<linux_platform::AutostartEntry>(), viewState);
        },
        nullptr,
    };
}

} // namespace quelmo
