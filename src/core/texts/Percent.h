#pragma once

#include <QString>

namespace quelmo {

// Every percent figure the program shows: a whole number and "%", no space ("23%", "150%").
// Halves round away from zero; a figure that is not a finite number shows as "0%".
QString percentText(double percent);

// A load fraction as a percent figure: 0.234 gives "23%".
inline QString fractionText(double fraction) {
    return percentText(fraction * 100.0);
}

} // namespace quelmo
