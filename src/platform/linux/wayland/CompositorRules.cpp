#include "platform/linux/wayland/CompositorRules.h"

namespace quelmo::linux_platform {

DesktopSnapshot summarizeWindows(const std::vector<CompositorWindow>& windows, qint64 ownPid,
                                 std::optional<qint64> lastFront) {
    constexpr double minimumHeight = 40.0;
    DesktopSnapshot snapshot;
    for (const CompositorWindow& window : windows) {
        if (!window.pid)
            continue;
        const qint64 pid = *window.pid;
        if (window.ordinary && !window.skipTaskbar)
            snapshot.regularPIDs.insert(pid);
        if (window.ordinary && window.onScreen && !window.minimised &&
            !(window.height && *window.height < minimumHeight))
            snapshot.visiblePIDs.insert(pid);
        if (window.focused)
            snapshot.frontmostPID = pid == ownPid ? lastFront : std::optional<qint64>(pid);
    }
    return snapshot;
}

std::optional<QString> desktopEntryIdOf(const CompositorWindow& window, DesktopEntryIndex& index) {
    if (window.appId.isEmpty())
        return std::nullopt;
    if (const InstalledApp* app = index.find(window.appId))
        return app->id;
    if (const InstalledApp* app = index.findByWindowClass(window.appId, window.appId))
        return app->id;
    if (window.xwayland)
        return std::nullopt;
    return window.appId;
}

} // namespace quelmo::linux_platform
