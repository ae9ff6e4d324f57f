#pragma once

// Asking processes the user cut to end: politely first, then with SIGTERM, never anything
// stronger.

#include "core/cleanup/DesktopSession.h"
#include "core/cleanup/ProcessIdentity.h"
#include "core/cleanup/ProcessSignaller.h"

#include <QList>

namespace quelmo {

struct TerminationRoutes {
    DesktopSession* desktop = nullptr;     // asks a process's windows to close; may be none
    ProcessSignaller* signaller = nullptr; // pins a process; without it nothing is asked
};

// Asks each of `targets` (the processes as they were listed when the user chose them) to end
// and returns how many requests were delivered.
int requestTermination(const QList<ProcessIdentity>& targets, const TerminationRoutes& routes);

} // namespace quelmo
