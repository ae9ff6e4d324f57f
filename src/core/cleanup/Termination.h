#pragma once

// Asking processes the user cut to end: politely first, then with SIGTERM, never anything
// stronger.

#include "core/cleanup/DesktopSession.h"
#include "core/cleanup/ProcessSignaller.h"

#include <QList>
#include <cstdint>
#include <functional>
#include <optional>

namespace quelmo {

struct TerminationRoutes {
    DesktopSession* desktop = nullptr;     // asks a process's windows to close; may be none
    ProcessSignaller* signaller = nullptr; // SIGTERM through a pinned handle; may be none
    // When each process was started, as the process table listed it; nothing when unknown.
    std::function<std::optional<std::uint64_t>(qint64 pid)> startTimeOf;
};

// Asks each process in `pids` to end and returns how many requests were delivered.
int requestTermination(const QList<qint64>& pids, const TerminationRoutes& routes);

} // namespace quelmo
