#pragma once

// The desktop of a Wayland session whose compositor tells nothing about its windows. What
// XWayland shows (the X11 session, when there is one) is kept; on top of it, every process of
// a launched application (one running in an application launch unit and not started from a
// terminal) counts as an application whose windows cannot be seen, which the cleanup rules
// never offer. Background processes and command-line programs are judged as usual.

#include "core/cleanup/DesktopSession.h"
#include "platform/linux/wayland/LaunchedProcesses.h"

#include <memory>

namespace quelmo::linux_platform {

// The rule: which of `processes` belong to a launched application whose windows may be open.
QSet<qint64> unseenApplications(const std::vector<LaunchedProcess>& processes);

class WaylandFallbackSession final : public DesktopSession {
public:
    // `xwayland` may be null (no X11 display); `root` is where /proc is read from.
    WaylandFallbackSession(std::unique_ptr<DesktopSession> xwayland, QString root);

    DesktopSnapshot snapshot() override;
    std::optional<AppRecord> application(qint64 pid) override;
    std::optional<QString> frontmostAppId() override;
    void setActivationHandler(std::function<void(const QString& appId)> handler) override;
    bool requestClose(ProcessHandle& process) override;

private:
    std::unique_ptr<DesktopSession> xwayland_;
    LaunchedProcessReader processes_;
};

} // namespace quelmo::linux_platform
