#include "app/tray/StatusTitle.h"

#include "core/texts/Percent.h"

namespace quelmo {

QString statusTitle(double cpuTotal, double memFraction) {
    return fractionText(cpuTotal) + QLatin1Char(' ') + fractionText(memFraction);
}

} // namespace quelmo
