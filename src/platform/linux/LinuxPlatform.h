#pragma once

#include "core/Platform.h"

#include <QString>

namespace quelmo::linux_platform {

// Every reader of this machine, rooted at `root` ("/" on a live system, a fixture tree in tests).
Platform makePlatform(const QString& root = QStringLiteral("/"));

} // namespace quelmo::linux_platform
