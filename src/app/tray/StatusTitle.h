#pragma once

#include <QString>

namespace quelmo {

// The status item's title: "23% 62%" for CPU 0.234 and memory 0.617.
QString statusTitle(double cpuTotal, double memFraction);

// The widest title the item can show; hosts that show labels reserve this much room so the
// item does not jitter as the digits change.
inline QString statusTitleGuide() {
    return statusTitle(1.0, 1.0); // "100% 100%"
}

} // namespace quelmo
