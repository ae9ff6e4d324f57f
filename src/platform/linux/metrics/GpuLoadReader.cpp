#include "platform/linux/metrics/GpuLoadReader.h"

#include "platform/linux/common/KernelText.h"
#include "platform/linux/common/RootPath.h"

#include <QDir>
#include <QRegularExpression>

namespace quelmo::linux_platform {

GpuLoadReader::GpuLoadReader(const QString& root, std::shared_ptr<NvmlLibrary> nvml)
    : nvml_(std::move(nvml)), intel_(root) {
    // "card0", "card1", ...; the connector entries ("card0-DP-1") are not devices.
    static const QRegularExpression card(QStringLiteral("^card[0-9]+$"));
    const QDir drm(QString::fromStdString(rootedPath(root, "sys/class/drm")));
    for (const QString& entry : drm.entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        if (!card.match(entry).hasMatch())
            continue;
        const std::string device = "sys/class/drm/" + entry.toStdString() + "/device/";
        AmdCard amd{KernelFile(rootedPath(root, device + "gpu_busy_percent")),
                    KernelFile(rootedPath(root, device + "power/runtime_status"))};
        if (amd.busyPercent.isOpen())
            amdCards_.push_back(std::move(amd));
    }
}

std::vector<std::int64_t> GpuLoadReader::readDevicePercents() {
    std::vector<std::int64_t> percents;
    for (AmdCard& amd : amdCards_) {
        if (const auto status = amd.runtimeStatus.read();
            status && trimmed(*status) == "suspended") {
            percents.push_back(0);
            continue;
        }
        const auto text = amd.busyPercent.read();
        if (const auto percent = text ? parseSigned(trimmed(*text)) : std::nullopt)
            percents.push_back(*percent);
    }
    if (nvml_) {
        for (std::size_t device = 0; device < nvml_->deviceCount(); ++device) {
            if (const auto percent = nvml_->utilizationPercent(device))
                percents.push_back(*percent);
        }
    }
    for (const std::int64_t percent : intel_.readPercents())
        percents.push_back(percent);
    return percents;
}

} // namespace quelmo::linux_platform
