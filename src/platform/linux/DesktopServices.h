#pragma once

#include "core/Platform.h"

#include <QString>

namespace quelmo::linux_platform {

// Fills the desktop services of `platform`: the X11 session, system facts, the process signaller.
void addDesktopServices(Platform& platform, const QString& root);

} // namespace quelmo::linux_platform
