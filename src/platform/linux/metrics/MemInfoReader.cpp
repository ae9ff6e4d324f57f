#include "platform/linux/metrics/MemInfoReader.h"

#include "platform/linux/common/KernelText.h"
#include "platform/linux/common/RootPath.h"

#include <QDir>
#include <array>

namespace quelmo::linux_platform {

namespace {

constexpr double kibibyte = 1024.0;

// meminfo keys used, in the order they are looked up.
enum Key {
    AnonPages,
    Shmem,
    Unevictable,
    SUnreclaim,
    KernelStack,
    PageTables,
    Zswap,
    Active,
    KeyCount
};
constexpr std::array<std::string_view, KeyCount> keyNames = {
    "AnonPages",   "Shmem",      "Unevictable", "SUnreclaim",
    "KernelStack", "PageTables", "Zswap",       "Active"};

// "Key:   1234 kB" -> 1234; nothing for any other shape.
std::optional<std::uint64_t> kibibytes(std::string_view value) {
    std::size_t pos = 0;
    const auto number = nextWord(value, pos);
    if (!number)
        return std::nullopt;
    const auto unit = nextWord(value, pos);
    if (unit && *unit != "kB")
        return std::nullopt;
    return parseUnsigned(*number);
}

} // namespace

MemInfoReader::MemInfoReader(const QString& root) : meminfo_(rootedPath(root, "proc/meminfo")) {
    // zram devices are set up at boot; the list is taken once so a tick never lists directories.
    const QDir block(QString::fromStdString(rootedPath(root, "sys/block")));
    for (const QString& device : block.entryList({QStringLiteral("zram*")}, QDir::AllEntries)) {
        KernelFile stat(rootedPath(root, "sys/block/" + device.toStdString() + "/mm_stat"));
        if (stat.isOpen())
            zramStats_.push_back(std::move(stat));
    }
}

double MemInfoReader::physicalBytes() {
    const auto text = meminfo_.read();
    const auto value = text ? keyedValue(*text, "MemTotal") : std::nullopt;
    const auto total = value ? kibibytes(*value) : std::nullopt;
    return total ? static_cast<double>(*total) * kibibyte : 0.0;
}

std::optional<MemoryPages> MemInfoReader::readPages() {
    double zram = 0;
    for (KernelFile& stat : zramStats_) {
        const auto text = stat.read();
        if (const auto bytes = text ? parseZramCompressedBytes(*text) : std::nullopt)
            zram += static_cast<double>(*bytes);
    }
    const auto text = meminfo_.read();
    if (!text)
        return std::nullopt;
    return parseMemInfo(*text, zram);
}

std::optional<MemoryPages> parseMemInfo(std::string_view meminfo, double zramCompressedBytes) {
    std::array<double, KeyCount> kib{};
    bool any = false;
    std::size_t pos = 0;
    // One pass over the lines; the file is ~50 lines and is read every tick.
    while (const auto line = nextLine(meminfo, pos)) {
        const std::size_t colon = line->find(':');
        if (colon == std::string_view::npos)
            continue;
        const std::string_view key = line->substr(0, colon);
        for (std::size_t k = 0; k < KeyCount; ++k) {
            if (key != keyNames[k])
                continue;
            if (const auto value = kibibytes(line->substr(colon + 1))) {
                kib[k] = static_cast<double>(*value);
                any = true;
            }
            break;
        }
    }
    if (!any)
        return std::nullopt;

    MemoryPages pages;
    pages.internal = kib[AnonPages] + kib[Shmem];
    pages.purgeable = 0;
    pages.wired = kib[Unevictable] + kib[SUnreclaim] + kib[KernelStack] + kib[PageTables];
    pages.compressed = kib[Zswap] + zramCompressedBytes / kibibyte;
    pages.active = kib[Active];
    pages.pageSize = kibibyte;
    return pages;
}

std::optional<std::uint64_t> parseZramCompressedBytes(std::string_view mmStat) {
    std::size_t pos = 0;
    if (!nextWord(mmStat, pos)) // orig_data_size
        return std::nullopt;
    const auto compressed = nextWord(mmStat, pos);
    return compressed ? parseUnsigned(trimmed(*compressed)) : std::nullopt;
}

} // namespace quelmo::linux_platform
