#pragma once

#include "core/Platform.h"

#include <QString>

namespace quelmo::linux_platform {

// Fills the metric sources of `platform`: processes, CPU ticks, chip facts, GPU, memory, energy.
// NVIDIA's library is only consulted for the live machine (`root` "/"): a fixture tree cannot
// hold a driver.
void addMetricsReaders(Platform& platform, const QString& root);

} // namespace quelmo::linux_platform
