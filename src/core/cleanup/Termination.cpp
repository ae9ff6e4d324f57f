#include "core/cleanup/Termination.h"

namespace quelmo {

int requestTermination(const QList<qint64>& pids, const TerminationRoutes& routes) {
    int count = 0;
    for (const qint64 pid : pids) {
        // The handle pins the very process that was listed; a pid that has since gone, or been
        // reused by another process, is not touched.
        const std::optional<std::uint64_t> startTime =
            routes.startTimeOf ? routes.startTimeOf(pid) : std::nullopt;
        std::unique_ptr<ProcessHandle> handle =
            startTime && routes.signaller ? routes.signaller->open(pid, *startTime) : nullptr;
        if (!handle)
            continue;
        // An application with windows is asked to close them, as if the user did (it may ask to
        // save first); anything else, or an application that could not be asked, gets SIGTERM.
        if ((routes.desktop && routes.desktop->requestClose(pid)) || handle->sendTerminate())
            ++count;
    }
    return count;
}

} // namespace quelmo
