#pragma once

#include "core/metrics/sources/ChipFactsSource.h"

#include <QString>

namespace quelmo::ChipInfo {

// "10P + 4E" on hybrid machines, otherwise "N cores".
QString coreSummary(const ChipFacts& facts);

} // namespace quelmo::ChipInfo
