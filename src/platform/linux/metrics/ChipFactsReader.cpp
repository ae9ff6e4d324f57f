#include "platform/linux/metrics/ChipFactsReader.h"

#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/KernelText.h"
#include "platform/linux/common/RootPath.h"

#include <map>
#include <string>

namespace quelmo::linux_platform {

namespace {

QString textOf(std::string_view bytes) {
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size())).simplified();
}

QString chipName(const QString& root, const std::string& cpuinfo) {
    if (const auto model = keyedValue(cpuinfo, "model name"); model && !model->empty())
        return textOf(*model);
    // The device-tree model is a NUL-terminated string.
    if (const auto model =
            readSmallFile(rootedPath(root, "sys/firmware/devicetree/base/model"), 4096)) {
        const std::string_view name =
            trimmed(std::string_view(*model).substr(0, model->find('\0')));
        if (!name.empty())
            return textOf(name);
    }
    for (const std::string_view key : {"Hardware", "Model"}) {
        if (const auto value = keyedValue(cpuinfo, key); value && !value->empty())
            return textOf(*value);
    }
    return {};
}

std::optional<std::vector<unsigned>> listedCpus(const QString& root, std::string_view relative) {
    const auto list = readSmallFile(rootedPath(root, relative), 65536);
    return list ? cpuList(*list) : std::nullopt;
}

// Performance and efficiency CPUs from the capacity classes of the online CPUs: the CPUs of the
// highest capacity are the performance cores, all others the efficiency cores. Nothing when a
// capacity is missing or every CPU has the same one.
std::optional<std::pair<int, int>> capacityClasses(const QString& root) {
    const auto online = listedCpus(root, "sys/devices/system/cpu/online");
    if (!online)
        return std::nullopt;
    std::map<std::uint64_t, int> cpusByCapacity;
    for (const unsigned cpu : *online) {
        const auto text = readSmallFile(
            rootedPath(root, "sys/devices/system/cpu/cpu" + std::to_string(cpu) + "/cpu_capacity"),
            64);
        const auto capacity = text ? parseUnsigned(trimmed(*text)) : std::nullopt;
        if (!capacity)
            return std::nullopt;
        ++cpusByCapacity[*capacity];
    }
    if (cpusByCapacity.size() < 2)
        return std::nullopt;
    int total = 0;
    for (const auto& [capacity, cpus] : cpusByCapacity)
        total += cpus;
    const int performance = cpusByCapacity.rbegin()->second;
    return std::pair{performance, total - performance};
}

} // namespace

ChipFactsReader::ChipFactsReader(QString root) : root_(std::move(root)) {}

ChipFacts ChipFactsReader::readChipFacts() {
    ChipFacts facts;
    const std::string cpuinfo =
        readSmallFile(rootedPath(root_, "proc/cpuinfo"), 4 << 20).value_or("");
    facts.name = chipName(root_, cpuinfo);

    const auto core = listedCpus(root_, "sys/devices/cpu_core/cpus");
    const auto atom = listedCpus(root_, "sys/devices/cpu_atom/cpus");
    if (core && atom) {
        facts.performanceCores = static_cast<int>(core->size());
        facts.efficiencyCores = static_cast<int>(atom->size());
    } else if (const auto classes = capacityClasses(root_)) {
        facts.performanceCores = classes->first;
        facts.efficiencyCores = classes->second;
    }
    if (const auto online = listedCpus(root_, "sys/devices/system/cpu/online"))
        facts.logicalCpus = static_cast<int>(online->size());
    return facts;
}

} // namespace quelmo::linux_platform
