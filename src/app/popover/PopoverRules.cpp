#include "app/popover/PopoverRules.h"

#include "core/texts/Percent.h"

#include <algorithm>
#include <cmath>

namespace quelmo::PopoverRules {

namespace {

constexpr double gib = 1073741824.0;
constexpr double mib = 1048576.0;

} // namespace

QString pct(double fraction) {
    return fractionText(fraction);
}

QString mem(double bytes) {
    if (bytes >= gib)
        return QString::asprintf("%.1fGB", bytes / gib);
    return QString::asprintf("%.0fMB", bytes / mib);
}

QString memDetail(double usedBytes, double totalBytes) {
    return QString::asprintf("%.1f / %.1f GB", usedBytes / gib, totalBytes / gib);
}

QString fixed(double value, int decimals) {
    return QString::asprintf("%.*f", std::clamp(decimals, 0, 6), value);
}

double maxHeight(std::optional<double> availableHeight) {
    if (!availableHeight)
        return heightWithoutScreen;
    return std::max(*availableHeight - screenMargin, minimumMaxHeight);
}

double popoverHeight(double contentHeight, double maxHeight) {
    return std::min(contentHeight, maxHeight);
}

double barFillWidth(double trackWidth, double value) {
    if (std::isnan(value))
        value = 0;
    const double width = trackWidth * std::clamp(value, 0.0, 1.0);
    return std::max(width, std::min(barMinimumWidth, trackWidth));
}

double coreSpacing(int cores, double width) {
    constexpr double wide = 3;
    return cores * (minCoreWidth + wide) - wide <= width ? wide : 1;
}

int coreColumns(int cores, double width) {
    const double spacing = coreSpacing(cores, width);
    const int fitting = static_cast<int>(std::floor((width + spacing) / (minCoreWidth + spacing)));
    return std::clamp(fitting, 1, std::max(cores, 1));
}

double coreFillScale(double load) {
    if (std::isnan(load))
        return coreMinimumScale;
    return std::clamp(load, coreMinimumScale, 1.0);
}

double processMaxValue(const QList<double>& values) {
    if (values.isEmpty())
        return 1;
    double largest = 0;
    for (double v : values)
        if (v > largest)
            largest = v;
    return std::max(largest, 0.0001);
}

double processFillWidth(double trackWidth, double value, double maxValue) {
    double share = value / maxValue;
    if (!std::isfinite(share) || share < 0)
        share = 0;
    return std::max(trackWidth * std::min(share, 1.0), processBarMinimumWidth);
}

std::array<double, 4> powerShares(double cpu, double gpu, double ane, double dram) {
    const double total = std::max(cpu + gpu + ane + dram, 0.0001);
    const auto share = [total](double watts) { return std::max(watts, 0.0) / total; };
    return {share(cpu), share(gpu), share(ane), share(dram)};
}

double loopPhase(double elapsedMs, double halfPeriodMs) {
    if (!(halfPeriodMs > 0) || !std::isfinite(elapsedMs))
        return 0;
    const double t = std::fmod(std::abs(elapsedMs) / halfPeriodMs, 2.0);
    const double x = t < 1 ? t : 2 - t;
    // Ease in and out: a quadratic on each half.
    return x < 0.5 ? 2 * x * x : 1 - 2 * (1 - x) * (1 - x);
}

QStringList sections() {
    return {QStringLiteral("cpu"), QStringLiteral("memory"), QStringLiteral("cleanup")};
}

QStringList toggled(const QStringList& expanded, const QString& section) {
    QStringList result = expanded;
    if (result.contains(section))
        result.removeAll(section);
    else
        result.append(section);
    return result;
}

} // namespace quelmo::PopoverRules
