#pragma once

// The two per-process files of /proc every reader needs: stat and the Uid line of status.

#include <cstdint>
#include <optional>
#include <string_view>

namespace quelmo::linux_platform {

// The fields of /proc/[pid]/stat that the readers use.
struct ProcStat {
    std::string_view comm;       // between the first '(' and the LAST ')': names may hold both
    std::uint64_t flags = 0;     // the kernel's PF_* flags
    std::uint64_t cpuTicks = 0;  // utime + stime
    std::uint64_t startTime = 0; // clock ticks after boot
    std::uint64_t rssPages = 0;

    bool isKernelThread() const;
};
std::optional<ProcStat> parseProcStat(std::string_view stat);

struct ProcessUids {
    std::uint32_t real = 0;
    std::uint32_t effective = 0;
    std::optional<std::uint32_t> saved; // the saved set-user-ID, where the line holds it
};

// The real, effective and saved uid of the "Uid:" line of /proc/[pid]/status text.
std::optional<ProcessUids> parseStatusUids(std::string_view status);

} // namespace quelmo::linux_platform
