#pragma once

#include "Platform.h"

#include <QString>

namespace quelmo::linux_platform {

// Fills the metric sources of `platform`: processes, CPU ticks, chip facts, GPU, memory, energy.
void addMetricsReaders(Platform& platform, const QString& root);

} // namespace quelmo::linux_platform
