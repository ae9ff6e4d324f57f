#pragma once

#include <QString>

namespace quelmo {

// A load fraction (0 to 1) as a whole percentage, halves rounded away from zero. A reading that
// is not a finite number counts as 0 rather than reaching an undefined conversion.
int wholePercent(double fraction);

// The status item's title: "23% 62%" for CPU 0.234 and memory 0.617.
QString statusTitle(double cpuTotal, double memFraction);

// The widest title the item can show; hosts that show labels reserve this much room so the
// item does not jitter as the digits change.
inline constexpr const char* statusTitleGuide = "100% 100%";

} // namespace quelmo
