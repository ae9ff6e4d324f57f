#include "platform/linux/metrics/CpuTicksReader.h"

#include "platform/linux/common/KernelText.h"
#include "platform/linux/common/RootPath.h"

#include <array>

namespace quelmo::linux_platform {

namespace {

// Columns of a cpuN line: user nice system idle iowait irq softirq steal guest guest_nice.
// Guest time is already inside user and nice, so it is not added again.
enum Column { User, Nice, System, Idle, IoWait, Irq, SoftIrq, Steal, ColumnCount };

bool isPerCpuLine(std::string_view line) {
    return line.size() > 3 && line.substr(0, 3) == "cpu" && line[3] >= '0' && line[3] <= '9';
}

std::optional<CpuTicks> parseCpuLine(std::string_view line) {
    std::size_t pos = 0;
    nextWord(line, pos); // "cpuN"
    std::array<std::uint64_t, ColumnCount> column{};
    int present = 0;
    while (present < ColumnCount) {
        const auto word = nextWord(line, pos);
        if (!word)
            break;
        const auto value = parseUnsigned(*word);
        if (!value)
            return std::nullopt;
        column[static_cast<std::size_t>(present++)] = *value;
    }
    // Kernels before 2.6.11 stop after iowait/irq; the four first columns are always there.
    if (present < Idle + 1)
        return std::nullopt;
    CpuTicks ticks;
    ticks.user = column[User];
    ticks.system = column[System] + column[Irq] + column[SoftIrq] + column[Steal];
    ticks.idle = column[Idle] + column[IoWait];
    ticks.nice = column[Nice];
    return ticks;
}

} // namespace

CpuTicksReader::CpuTicksReader(const QString& root) : stat_(rootedPath(root, "proc/stat")) {}

std::optional<std::vector<CpuTicks>> CpuTicksReader::readTicks() {
    const auto text = stat_.read();
    if (!text)
        return std::nullopt;
    return parseCpuTicks(*text);
}

std::optional<std::vector<CpuTicks>> parseCpuTicks(std::string_view procStat) {
    std::vector<CpuTicks> cpus;
    std::size_t pos = 0;
    while (const auto line = nextLine(procStat, pos)) {
        if (!isPerCpuLine(*line)) {
            // The CPU lines come first and together; nothing after them is needed.
            if (!cpus.empty())
                break;
            continue;
        }
        const auto ticks = parseCpuLine(*line);
        if (!ticks)
            return std::nullopt;
        cpus.push_back(*ticks);
    }
    if (cpus.empty())
        return std::nullopt;
    return cpus;
}

} // namespace quelmo::linux_platform
