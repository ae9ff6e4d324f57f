#pragma once

// KWin (KDE Plasma) tells nothing about its windows to ordinary clients, but it runs scripts
// loaded over D-Bus (org.kde.kwin.Scripting), and a script may call D-Bus methods. The script
// here reports the window list to us as JSON whenever it may have changed, and each activation.

#include "platform/linux/wayland/CompositorLink.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

namespace quelmo::linux_platform::kwin {

inline constexpr auto reportInterface = "org.quelmo.KWinWindows";

// The script that reports to `service` (our bus name) at `path`; works with the scripting API
// of Plasma 5 and 6.
QByteArray reportingScript(const QString& service, const QString& path);

// A script that asks the window with this internal id to close; empty for an id that is not one.
QByteArray closingScript(const QString& windowId);

// The windows of a report, or of a single window's report (an activation).
std::vector<CompositorWindow> windowsOfReport(const QByteArray& json);
std::optional<CompositorWindow> windowOfReport(const QByteArray& json);

} // namespace quelmo::linux_platform::kwin
