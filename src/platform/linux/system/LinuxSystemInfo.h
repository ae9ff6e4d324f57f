#pragma once

// This session's user, this process and the machine's thermal state.

#include "core/cleanup/SystemInfo.h"
#include "platform/linux/system/ThermalState.h"

namespace quelmo::linux_platform {

class LinuxSystemInfo final : public SystemInfo {
public:
    explicit LinuxSystemInfo(const QString& root, ThermalMonitor::Clock clock);
    QString userName() override;
    qint64 ownPid() override;
    bool thermalNominal() override;

private:
    ThermalMonitor thermal_;
    QString userName_; // looked up once: the user of a running process does not change
};

} // namespace quelmo::linux_platform
