#include "platform/linux/x11/WindowRules.h"

namespace quelmo::linux_platform {

bool isLayerZero(WindowKind kind) {
    return kind == WindowKind::Normal || kind == WindowKind::Dialog || kind == WindowKind::Utility;
}

bool isOnCurrentDesktop(std::optional<std::uint32_t> desktop,
                        std::optional<std::uint32_t> current) {
    if (!desktop || !current || *desktop == allDesktops)
        return true;
    return *desktop == *current;
}

bool isOnScreen(const WindowFacts& window, std::optional<std::uint32_t> currentDesktop) {
    return window.viewable && !window.hidden && isOnCurrentDesktop(window.desktop, currentDesktop);
}

bool countsAsVisible(WindowKind kind, std::optional<qint64> pid, std::optional<double> height) {
    constexpr double minimumHeight = 40.0;
    if (!isLayerZero(kind) || !pid)
        return false;
    return !(height && *height < minimumHeight);
}

bool isTaskbarWindow(const WindowFacts& window) {
    return window.pid && window.kind == WindowKind::Normal && !window.skipTaskbar;
}

DesktopSnapshot summarize(const DesktopFacts& facts) {
    DesktopSnapshot snapshot;
    for (const WindowFacts& window : facts.windows) {
        if (isTaskbarWindow(window))
            snapshot.regularPIDs.insert(*window.pid);
        if (isOnScreen(window, facts.currentDesktop) &&
            countsAsVisible(window.kind, window.pid, window.height))
            snapshot.visiblePIDs.insert(*window.pid);
        if (facts.activeWindow && window.id == *facts.activeWindow && window.pid)
            snapshot.frontmostPID = window.pid;
    }
    return snapshot;
}

} // namespace quelmo::linux_platform
