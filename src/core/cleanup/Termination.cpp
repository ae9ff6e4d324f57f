#include "core/cleanup/Termination.h"

namespace quelmo {

int requestTermination(const QList<ProcessIdentity>& targets, const TerminationRoutes& routes) {
    int count = 0;
    for (const ProcessIdentity& target : targets) {
        // Everything goes through a handle that pins the very process the user chose: a pid
        // whose start time is unknown, that has gone, or that a later process now holds, is
        // asked nothing at all, neither through its windows nor by signal.
        if (!target.startTime || !routes.signaller)
            continue;
        const std::unique_ptr<ProcessHandle> handle =
            routes.signaller->open(target.pid, *target.startTime);
        if (!handle)
            continue;
        // An application with windows is asked to close them, as if the user did (it may ask to
        // save first).
        if (routes.desktop && routes.desktop->requestClose(*handle)) {
            ++count;
            continue;
        }
        if (handle->sendTerminate())
            ++count;
    }
    return count;
}

} // namespace quelmo
