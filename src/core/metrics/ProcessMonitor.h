#pragma once

#include "core/metrics/ProcInfo.h"
#include "core/metrics/sources/ProcessSource.h"

#include <QHash>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quelmo {

// A snapshot of the process table, one row per process, in the order the source listed them.
//
// From the kernel's table, a process's CPU figure is its CPU time over the wall time since the
// previous snapshot that listed the same process (same pid and same start time), in percent of
// one logical CPU. A process seen for the first time gets its lifetime average, the figure the
// procps `ps` tool prints. Where the machine has no such table, the process-listing tool is run
// and its text parsed instead.
class ProcessMonitor {
public:
    explicit ProcessMonitor(std::unique_ptr<ProcessSource> source);
    std::vector<ProcInfo> snapshot();
    // The start time (kernel clock ticks since boot) of `pid` as of the last snapshot; used to
    // make sure a signal only ever reaches the process that was listed.
    std::optional<std::uint64_t> startTimeOf(qint64 pid) const;

    // Average CPU use over the process's whole life, rounded as procps `ps` rounds its %cpu:
    // down to tenths, and down to whole percent above 99.9.
    static double lifetimeCpuPercent(std::uint64_t cpuTicks, std::uint64_t startTime,
                                     const ProcessTable& clock);

    // Snapshots closer together than this reuse the figures of the earlier one: the tick counts
    // move in steps of 1/100 s, so a few milliseconds would turn one tick into a huge spike.
    static constexpr double minimumWindowSeconds = 0.5;

private:
    struct Reading {
        std::uint64_t startTime = 0;
        std::uint64_t cpuTicks = 0;
        double cpu = 0; // the percentage published for this reading
    };

    std::vector<ProcInfo> fromTable(ProcessTable table);
    std::vector<ProcInfo> fromProcessTool();

    std::unique_ptr<ProcessSource> source_;
    QHash<qint64, Reading> reference_; // the readings later snapshots compare against
    std::optional<double> referenceTime_;
    QHash<qint64, std::uint64_t> lastStartTimes_;
};

} // namespace quelmo
