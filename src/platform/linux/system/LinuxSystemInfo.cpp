#include "platform/linux/system/LinuxSystemInfo.h"

#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace quelmo::linux_platform {

LinuxSystemInfo::LinuxSystemInfo(const QString& root, ThermalMonitor::Clock clock)
    : thermal_(root, std::move(clock)) {}

QString LinuxSystemInfo::userName() {
    if (!userName_.isEmpty())
        return userName_;
    const long suggested = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 4096);
    for (int attempt = 0; attempt < 8; ++attempt) {
        passwd entry{};
        passwd* found = nullptr;
        const int error = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
        if (error == ERANGE) {
            buffer.resize(buffer.size() * 2);
            continue;
        }
        if (error == 0 && found && found->pw_name)
            userName_ = QString::fromLocal8Bit(found->pw_name);
        break;
    }
    return userName_;
}

qint64 LinuxSystemInfo::ownPid() {
    return ::getpid();
}

bool LinuxSystemInfo::thermalNominal() {
    return thermal_.nominal();
}

} // namespace quelmo::linux_platform
