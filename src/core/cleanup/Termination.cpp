#include "core/cleanup/Termination.h"

namespace quelmo {

int requestTermination(const QList<qint64>& pids, const TerminationRoutes& routes) {
    int count = 0;
    for (const qint64 pid : pids) {
        // An application with windows is asked to close them, as if the user did (it may ask to
        // save first). That needs no handle on the process: the window manager passes the
        // request to the windows' owner.
        if (routes.desktop && routes.desktop->requestClose(pid)) {
            ++count;
            continue;
        }
        // Anything else gets SIGTERM, but only through a handle that pins the very process that
        // was listed: a pid whose start time is unknown, that has gone, or that a later process
        // reused, is not signalled.
        const std::optional<std::uint64_t> startTime =
            routes.startTimeOf ? routes.startTimeOf(pid) : std::nullopt;
        const std::unique_ptr<ProcessHandle> handle =
            startTime && routes.signaller ? routes.signaller->open(pid, *startTime) : nullptr;
        if (handle && handle->sendTerminate())
            ++count;
    }
    return count;
}

} // namespace quelmo
