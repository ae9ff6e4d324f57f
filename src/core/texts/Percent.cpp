#include "core/texts/Percent.h"

#include <cmath>

namespace quelmo {

namespace {

long long whole(double value) {
    // std::round rounds halves away from zero; the range check keeps the conversion defined.
    if (!std::isfinite(value) || std::abs(value) > 1e15)
        return 0;
    return static_cast<long long>(std::round(value));
}

} // namespace

QString percentText(double percent) {
    return QString::number(whole(percent)) + QLatin1Char('%');
}

} // namespace quelmo
