#pragma once

// Signals through pidfds: a process is pinned by a descriptor taken while its start time proves
// it is the process that was listed, so a signal can never reach a later process that reused
// the pid. Only SIGTERM is ever sent, and only to processes of this user.

#include "core/cleanup/ProcessSignaller.h"

#include <QString>

namespace quelmo::linux_platform {

class PidfdSignaller final : public ProcessSignaller {
public:
    explicit PidfdSignaller(QString root);
    std::unique_ptr<ProcessHandle> open(qint64 pid, std::uint64_t startTime) override;

private:
    QString root_;
};

} // namespace quelmo::linux_platform
