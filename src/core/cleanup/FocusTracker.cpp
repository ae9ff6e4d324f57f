#include "cleanup/FocusTracker.h"

namespace quelmo {

FocusTracker::FocusTracker(DesktopSession*) {}

std::optional<QDateTime> FocusTracker::lastActive(const QString& appId) const {
    const auto it = lastActive_.constFind(appId);
    if (it == lastActive_.constEnd())
        return std::nullopt;
    return *it;
}

} // namespace quelmo
