#include "core/cleanup/Termination.h"

namespace quelmo {

int requestTermination(const QList<qint64>& pids, const TerminationRoutes& routes) {
    int count = 0;
    for (const qint64 pid : pids) {
        const std::optional<std::uint64_t> startTime =
            routes.startTimeOf ? routes.startTimeOf(pid) : std::nullopt;
        // A pid known to belong to a later process now is left alone altogether.
        if (startTime && routes.signaller) {
            const std::optional<std::uint64_t> now = routes.signaller->startTimeNow(pid);
            if (now && *now != *startTime)
                continue;
        }
        // An application with windows is asked to close them, as if the user did (it may ask to
        // save first). That needs no handle on the process: the window manager passes the
        // request to the windows' owner.
        if (routes.desktop && routes.desktop->requestClose(pid)) {
            ++count;
            continue;
        }
        // Anything else gets SIGTERM, but only through a handle that pins the very process that
        // was listed: a pid whose start time is unknown, or that has gone, is not signalled.
        const std::unique_ptr<ProcessHandle> handle =
            startTime && routes.signaller ? routes.signaller->open(pid, *startTime) : nullptr;
        if (handle && handle->sendTerminate())
            ++count;
    }
    return count;
}

} // namespace quelmo
