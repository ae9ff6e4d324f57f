#include "platform/linux/common/ProcStat.h"

#include "platform/linux/common/KernelText.h"

#include <limits>

namespace quelmo::linux_platform {

namespace {

constexpr std::uint64_t kernelThreadFlag = 0x00200000; // PF_KTHREAD

std::optional<std::uint32_t> uidOf(std::optional<std::string_view> word) {
    const auto value = word ? parseUnsigned(*word) : std::nullopt;
    if (!value || *value > std::numeric_limits<std::uint32_t>::max())
        return std::nullopt;
    return static_cast<std::uint32_t>(*value);
}

} // namespace

bool ProcStat::isKernelThread() const {
    return (flags & kernelThreadFlag) != 0;
}

std::optional<ProcStat> parseProcStat(std::string_view stat) {
    const std::size_t open = stat.find('(');
    const std::size_t close = stat.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open)
        return std::nullopt;
    ProcStat parsed;
    parsed.comm = stat.substr(open + 1, close - open - 1);

    // Fields after the name, counted from 0: state is field 3 of the kernel's numbering.
    constexpr int flags = 9 - 3, utime = 14 - 3, stime = 15 - 3, starttime = 22 - 3, rss = 24 - 3;
    std::size_t pos = close + 1;
    std::uint64_t user = 0, system = 0;
    for (int field = 0; field <= rss; ++field) {
        const auto word = nextWord(stat, pos);
        if (!word)
            return std::nullopt;
        std::uint64_t* const target = field == flags       ? &parsed.flags
                                      : field == utime     ? &user
                                      : field == stime     ? &system
                                      : field == starttime ? &parsed.startTime
                                      : field == rss       ? &parsed.rssPages
                                                           : nullptr;
        if (!target)
            continue;
        const auto value = parseUnsigned(trimmed(*word));
        if (!value)
            return std::nullopt;
        *target = *value;
    }
    parsed.cpuTicks = user + system;
    return parsed;
}

std::optional<ProcessUids> parseStatusUids(std::string_view status) {
    std::size_t pos = 0;
    while (const auto line = nextLine(status, pos)) {
        if (line->substr(0, 4) != "Uid:")
            continue;
        std::size_t at = 4;
        const auto real = uidOf(nextWord(*line, at));
        const auto effective = uidOf(nextWord(*line, at));
        if (!real || !effective)
            return std::nullopt;
        return ProcessUids{*real, *effective, uidOf(nextWord(*line, at))};
    }
    return std::nullopt;
}

} // namespace quelmo::linux_platform
