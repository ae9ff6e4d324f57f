#include "platform/linux/wayland/WaylandFallbackSession.h"

namespace quelmo::linux_platform {

QSet<qint64> unseenApplications(const std::vector<LaunchedProcess>& processes) {
    QSet<qint64> unseen;
    for (const LaunchedProcess& process : processes) {
        // A program started from a terminal inside a terminal's launch unit is a command the
        // user ran, not the application itself.
        if (process.appId && !process.hasTerminal)
            unseen.insert(process.pid);
    }
    return unseen;
}

WaylandFallbackSession::WaylandFallbackSession(std::unique_ptr<DesktopSession> xwayland,
                                               QString root)
    : xwayland_(std::move(xwayland)), processes_(std::move(root)) {}

DesktopSnapshot WaylandFallbackSession::snapshot() {
    DesktopSnapshot snapshot = xwayland_ ? xwayland_->snapshot() : DesktopSnapshot{};
    snapshot.unseenAppPIDs = unseenApplications(processes_.read());
    return snapshot;
}

std::optional<AppRecord> WaylandFallbackSession::application(qint64 pid) {
    return xwayland_ ? xwayland_->application(pid) : std::nullopt;
}

std::optional<QString> WaylandFallbackSession::frontmostAppId() {
    return xwayland_ ? xwayland_->frontmostAppId() : std::nullopt;
}

void WaylandFallbackSession::setActivationHandler(std::function<void(const QString&)> handler) {
    if (xwayland_)
        xwayland_->setActivationHandler(std::move(handler));
}

bool WaylandFallbackSession::requestClose(ProcessHandle& process) {
    return xwayland_ && xwayland_->requestClose(process);
}

} // namespace quelmo::linux_platform
