#pragma once

#include "core/metrics/sources/SystemSources.h"

#include <QString>

namespace quelmo::ChipInfo {

// "10P + 4E" on hybrid machines, otherwise "N cores".
QString coreSummary(const ChipFacts& facts);

} // namespace quelmo::ChipInfo
