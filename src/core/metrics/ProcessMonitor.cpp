#include "core/metrics/ProcessMonitor.h"

#include "core/metrics/ProcessListText.h"

#include <cmath>

namespace quelmo {

ProcessMonitor::ProcessMonitor(std::unique_ptr<ProcessSource> source)
    : source_(std::move(source)) {}

std::vector<ProcInfo> ProcessMonitor::snapshot() {
    return take(source_ ? read(*source_) : ProcessScan{});
}

ProcessScan ProcessMonitor::read(ProcessSource& source) {
    ProcessScan scan;
    scan.table = source.readTable();
    if (scan.table)
        return scan;
    const auto output = source.runProcessTool();
    const auto text = output ? decodeProcessListText(*output) : std::nullopt;
    if (text)
        scan.toolRows = parseProcessListText(*text);
    return scan;
}

std::vector<ProcInfo> ProcessMonitor::take(ProcessScan scan) {
    if (scan.table)
        return fromTable(std::move(*scan.table));
    return fromProcessTool(std::move(scan.toolRows));
}

std::optional<std::uint64_t> ProcessMonitor::startTimeOf(qint64 pid) const {
    const auto found = lastStartTimes_.constFind(pid);
    if (found == lastStartTimes_.constEnd())
        return std::nullopt;
    return *found;
}

double ProcessMonitor::lifetimeCpuPercent(std::uint64_t cpuTicks, std::uint64_t startTime,
                                          const ProcessTable& clock) {
    const std::uint64_t hz = clock.ticksPerSecond;
    if (hz == 0)
        return 0.0;
    // Whole seconds of life, and CPU time in thousandths of a second, as `ps` counts them.
    const double lived =
        clock.uptimeSeconds - static_cast<double>(startTime) / static_cast<double>(hz);
    if (!(lived >= 1.0))
        return 0.0;
    const auto seconds = static_cast<std::uint64_t>(std::floor(lived));
    const std::uint64_t perMille = (cpuTicks * 1000u / hz) / seconds;
    if (perMille > 999)
        return static_cast<double>(perMille / 10);
    return static_cast<double>(perMille) / 10.0;
}

std::vector<ProcInfo> ProcessMonitor::fromTable(ProcessTable table) {
    // Only a recent reference old enough to span a few clock ticks gives a meaningful
    // difference. A closer snapshot repeats the figures that reference published and leaves it
    // in place for the next one; after a gap (or a clock that went back) every process starts
    // afresh, with the figure a new process gets.
    const double window = referenceTime_ ? table.uptimeSeconds - *referenceTime_ : 0.0;
    const bool stale = referenceTime_ && (window > maximumWindowSeconds || !(window >= 0.0));
    const bool measurable = referenceTime_ && !stale && window >= minimumWindowSeconds;
    const bool repeats = referenceTime_ && !stale && !measurable;
    if (stale)
        reference_.clear();
    figuresAreFresh_ = measurable;
    const double ticksPerSecond = static_cast<double>(table.ticksPerSecond);

    QHash<qint64, Reading> readings;
    readings.reserve(static_cast<qsizetype>(table.processes.size()));
    lastStartTimes_.clear();
    lastStartTimes_.reserve(static_cast<qsizetype>(table.processes.size()));
    std::vector<ProcInfo> rows;
    rows.reserve(table.processes.size());

    for (ProcessRecord& record : table.processes) {
        const auto previous = reference_.constFind(record.pid);
        const bool sameProcess =
            previous != reference_.constEnd() && previous->startTime == record.startTime;
        double cpu = 0;
        if (sameProcess && repeats)
            cpu = previous->cpu;
        else if (sameProcess && record.cpuTicks >= previous->cpuTicks && ticksPerSecond > 0)
            cpu = static_cast<double>(record.cpuTicks - previous->cpuTicks) / ticksPerSecond /
                  window * 100.0;
        else
            cpu = lifetimeCpuPercent(record.cpuTicks, record.startTime, table);

        readings.insert(record.pid, Reading{record.startTime, record.cpuTicks, cpu});
        lastStartTimes_.insert(record.pid, record.startTime);

        ProcInfo row;
        row.id = record.pid;
        row.name = std::move(record.name);
        row.cpu = cpu;
        row.rss = record.rssBytes;
        row.user = std::move(record.user);
        row.realUser = std::move(record.realUser);
        row.startTime = record.startTime;
        rows.push_back(std::move(row));
    }

    if (!repeats) {
        reference_ = std::move(readings);
        referenceTime_ = table.uptimeSeconds;
    }
    return rows;
}

std::vector<ProcInfo> ProcessMonitor::fromProcessTool(std::vector<ProcInfo> rows) {
    // The tool's rows carry no start time, so no pid can be vouched for afterwards. Its figures
    // are its own, taken as they come.
    lastStartTimes_.clear();
    figuresAreFresh_ = true;
    return rows;
}

} // namespace quelmo
