#pragma once

#include "core/metrics/sources/MemorySource.h"
#include "platform/linux/metrics/KernelFile.h"

#include <string_view>
#include <vector>

namespace quelmo::linux_platform {

// Memory counts from /proc/meminfo, in kibibytes (so the "page size" of the arithmetic is
// 1024 bytes): internal = AnonPages + Shmem; nothing is purgeable; wired = Unevictable +
// SUnreclaim + KernelStack + PageTables; compressed = Zswap plus what zram devices hold
// compressed; active = Active. Physical memory is MemTotal.
class MemInfoReader final : public MemorySource {
public:
    explicit MemInfoReader(const QString& root);
    double physicalBytes() override;
    std::optional<MemoryPages> readPages() override;

private:
    KernelFile meminfo_;
    std::vector<KernelFile> zramStats_; // the mm_stat file of every zram device at start
};

// The counts of /proc/meminfo text plus `zramCompressedBytes`; nothing when the text holds
// none of the counts used.
std::optional<MemoryPages> parseMemInfo(std::string_view meminfo, double zramCompressedBytes);

// The compressed size (second column, bytes) of a zram device's mm_stat.
std::optional<std::uint64_t> parseZramCompressedBytes(std::string_view mmStat);

} // namespace quelmo::linux_platform
