#include "platform/linux/metrics/EnergyReader.h"

#include "platform/linux/common/KernelText.h"
#include "platform/linux/common/RootPath.h"

#include <QDir>
#include <QRegularExpression>
#include <QSet>
#include <algorithm>

namespace quelmo::linux_platform {

namespace {

const QString cpuEnergy = QStringLiteral("CPU Energy");
const QString gpuUncore = QStringLiteral("GPU");
const QString gpuEnergy = QStringLiteral("GPU Energy");
const QString dram = QStringLiteral("DRAM");
const QString microjoules = QStringLiteral("uJ");
const QString millijoules = QStringLiteral("mJ");

std::optional<std::uint64_t> readCounter(KernelFile& file) {
    const auto text = file.read();
    return text ? parseUnsigned(trimmed(*text)) : std::nullopt;
}

std::optional<std::string> readTrimmed(const std::string& path) {
    auto text = readSmallFile(path, 4096);
    if (!text)
        return std::nullopt;
    return std::string(trimmed(*text));
}

struct Zone {
    QString entry; // "intel-rapl:0:0"
    std::string name;
    std::string dir;
};

// "intel-rapl:0:0" -> "intel-rapl:0": the package a subzone belongs to.
QString parentZone(const QString& entry) {
    const qsizetype colon = entry.lastIndexOf(QLatin1Char(':'));
    const qsizetype first = entry.indexOf(QLatin1Char(':'));
    return colon > first ? entry.left(colon) : QString();
}

std::string lowerAscii(std::string_view text) {
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

} // namespace

QString hwmonEnergyChannel(std::string_view label) {
    const std::string lower = lowerAscii(trimmed(label));
    const auto has = [&](std::string_view part) { return lower.find(part) != std::string::npos; };
    if (lower.empty() || has("core")) // "Ecore000": one core, already inside its socket
        return {};
    if (has("socket") || has("package") || has("pkg") || has("cpu"))
        return cpuEnergy;
    if (has("gpu"))
        return gpuUncore;
    if (has("dram") || has("mem"))
        return dram;
    return {};
}

EnergyReader::EnergyReader(const QString& root, std::shared_ptr<NvmlLibrary> nvml)
    : nvml_(std::move(nvml)) {
    addPowercapZones(root);
    addHwmonCounters(root);
    if (nvml_) {
        for (std::size_t device = 0; device < nvml_->deviceCount(); ++device) {
            if (nvml_->totalEnergyMillijoules(device))
                nvmlDevices_.push_back({device, QStringLiteral("nvml:%1").arg(device)});
        }
    }
}

void EnergyReader::addPowercapZones(const QString& root) {
    const QDir powercap(QString::fromStdString(rootedPath(root, "sys/class/powercap")));
    const QStringList entries = powercap.entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    // The MMIO interface repeats the package counter of the MSR one: use it only on its own.
    const bool haveMsrZones = std::any_of(entries.begin(), entries.end(), [](const QString& e) {
        return e.startsWith(QLatin1String("intel-rapl:"));
    });

    std::vector<Zone> readable;
    std::vector<KernelFile> counters;
    for (const QString& entry : entries) {
        if (haveMsrZones && entry.startsWith(QLatin1String("intel-rapl-mmio:")))
            continue;
        const std::string dir = rootedPath(root, "sys/class/powercap/" + entry.toStdString());
        const auto name = readTrimmed(dir + "/name");
        if (!name)
            continue;
        KernelFile counter(dir + "/energy_uj");
        if (!readCounter(counter))
            continue;
        readable.push_back(Zone{entry, *name, dir});
        counters.push_back(std::move(counter));
    }

    // A package whose core zone is readable is not counted as CPU too.
    QSet<QString> packagesWithCore;
    for (const Zone& zone : readable) {
        if (zone.name == "core")
            packagesWithCore.insert(parentZone(zone.entry));
    }
    for (std::size_t i = 0; i < readable.size(); ++i) {
        const Zone& zone = readable[i];
        QString channel;
        if (zone.name == "core")
            channel = cpuEnergy;
        else if (zone.name.rfind("package-", 0) == 0 && !packagesWithCore.contains(zone.entry))
            channel = cpuEnergy;
        else if (zone.name == "uncore")
            channel = gpuUncore;
        else if (zone.name == "dram")
            channel = dram;
        if (channel.isEmpty())
            continue;
        const auto rangeText = readTrimmed(zone.dir + "/max_energy_range_uj");
        const std::uint64_t range = rangeText ? parseUnsigned(*rangeText).value_or(0) : 0;
        files_.push_back(
            FileChannel{QString::fromStdString(zone.dir), channel, range, std::move(counters[i])});
    }
}

void EnergyReader::addHwmonCounters(const QString& root) {
    static const QRegularExpression input(QStringLiteral("^energy([0-9]+)_input$"));
    const QString base = QString::fromStdString(rootedPath(root, "sys/class/hwmon"));
    // Only what powercap does not already measure, so nothing is counted twice.
    const bool haveCpu = hasChannel(cpuEnergy), haveGpu = hasChannel(gpuUncore),
               haveDram = hasChannel(dram);
    for (const QString& hwmon : QDir(base).entryList(QDir::AllEntries | QDir::NoDotAndDotDot)) {
        const std::string dir = rootedPath(root, "sys/class/hwmon/" + hwmon.toStdString());
        const QDir files(QString::fromStdString(dir));
        for (const QString& file : files.entryList(QDir::Files)) {
            const auto match = input.match(file);
            if (!match.hasMatch())
                continue;
            const auto label =
                readTrimmed(dir + "/energy" + match.captured(1).toStdString() + "_label");
            const QString channel = label ? hwmonEnergyChannel(*label) : QString();
            if (channel.isEmpty() || (channel == cpuEnergy && haveCpu) ||
                (channel == gpuUncore && haveGpu) || (channel == dram && haveDram))
                continue;
            const std::string path = dir + "/" + file.toStdString();
            KernelFile counter(path);
            if (!readCounter(counter))
                continue;
            files_.push_back(
                FileChannel{QString::fromStdString(path), channel, 0, std::move(counter)});
        }
    }
}

bool EnergyReader::hasChannel(const QString& name) const {
    for (const FileChannel& file : files_) {
        if (file.name == name)
            return true;
    }
    return false;
}

bool EnergyReader::available() {
    return !files_.empty() || !nvmlDevices_.empty();
}

std::optional<std::vector<EnergyChannel>> EnergyReader::readChannels() {
    std::vector<EnergyChannel> channels;
    channels.reserve(files_.size() + nvmlDevices_.size());
    for (FileChannel& file : files_) {
        if (const auto value = readCounter(file.counter))
            channels.push_back(EnergyChannel{file.id, file.name, microjoules, *value, file.range});
    }
    for (const auto& [device, id] : nvmlDevices_) {
        if (const auto value = nvml_->totalEnergyMillijoules(device))
            channels.push_back(EnergyChannel{id, gpuEnergy, millijoules, *value, 0});
    }
    if (channels.empty())
        return std::nullopt;
    return channels;
}

} // namespace quelmo::linux_platform
