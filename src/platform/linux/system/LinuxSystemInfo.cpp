#include "platform/linux/system/LinuxSystemInfo.h"

#include <unistd.h>

namespace quelmo::linux_platform {

LinuxSystemInfo::LinuxSystemInfo(const QString& root, ThermalMonitor::Clock clock)
    : thermal_(root, std::move(clock)) {}

QString LinuxSystemInfo::userName() {
    return users_.nameOf(::getuid());
}

qint64 LinuxSystemInfo::ownPid() {
    return ::getpid();
}

bool LinuxSystemInfo::thermalNominal() {
    return thermal_.nominal();
}

} // namespace quelmo::linux_platform
