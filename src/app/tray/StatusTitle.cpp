#include "app/tray/StatusTitle.h"

#include <cmath>

namespace quelmo {

int wholePercent(double fraction) {
    const double percent = fraction * 100.0;
    if (!std::isfinite(percent))
        return 0;
    // std::round rounds halves away from zero, the rounding the title is defined with.
    return static_cast<int>(std::round(percent));
}

QString statusTitle(double cpuTotal, double memFraction) {
    return QString::number(wholePercent(cpuTotal)) + QStringLiteral("% ") +
           QString::number(wholePercent(memFraction)) + QStringLiteral("%");
}

} // namespace quelmo
