#pragma once

#include "core/metrics/ProcInfo.h"
#include "core/metrics/sources/ProcessSource.h"

#include <QHash>
#include <QMetaType>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace quelmo {

// What one reading of the machine's process table brought back, before any arithmetic: the
// kernel's table, or else the rows of the process-listing tool. A plain value, made on whichever
// thread reads and handed to the monitor on the main thread.
struct ProcessScan {
    std::optional<ProcessTable> table;
    std::vector<ProcInfo> toolRows;
};

// A snapshot of the process table, one row per process, in the order the source listed them.
//
// From the kernel's table, a process's CPU figure is its CPU time over the wall time since the
// previous snapshot that listed the same process (same pid and same start time), in percent of
// one logical CPU. A process seen for the first time gets its lifetime average, the figure the
// procps `ps` tool prints. So does every process when the previous snapshot is too old to be a
// reference (the popover was closed for a while): a difference spread over minutes would hide
// what each process does now. Where the machine has no such table, the process-listing tool is
// run and its text parsed instead.
class ProcessMonitor {
public:
    // Without a source the monitor only does the arithmetic on the readings it is handed.
    ProcessMonitor() = default;
    explicit ProcessMonitor(std::unique_ptr<ProcessSource> source);
    // Reads the source and turns the reading into rows, at once.
    std::vector<ProcInfo> snapshot();

    // Reads the table from `source`, falling back to the listing tool; touches no monitor, so it
    // may run on any thread.
    static ProcessScan read(ProcessSource& source);
    // The rows of a reading, measured against the readings taken before it.
    std::vector<ProcInfo> take(ProcessScan scan);

    // The start time (kernel clock ticks since boot) of `pid` as of the last snapshot. A cut
    // takes the start time from the row the user chose, never from here: by the time it is
    // carried out, the pid may belong to another process.
    std::optional<std::uint64_t> startTimeOf(qint64 pid) const;

    // Average CPU use over the process's whole life, rounded as procps `ps` rounds its %cpu:
    // down to tenths, and down to whole percent above 99.9.
    static double lifetimeCpuPercent(std::uint64_t cpuTicks, std::uint64_t startTime,
                                     const ProcessTable& clock);

    // Snapshots closer together than this reuse the figures of the earlier one: the tick counts
    // move in steps of 1/100 s, so a few milliseconds would turn one tick into a huge spike.
    static constexpr double minimumWindowSeconds = 0.5;
    // A reference older than this is not one: the next snapshot starts afresh.
    static constexpr double maximumWindowSeconds = 3.0;

    // Whether the CPU figures of the last snapshot were measured just now, over the interval
    // since the one before. Not so for the first snapshot, the first after a gap, or one so
    // close to the last that it repeats its figures: those must not be counted again, nor
    // stand for what a process did over minutes, in long-term statistics.
    bool figuresAreFresh() const { return figuresAreFresh_; }

private:
    struct Reading {
        std::uint64_t startTime = 0;
        std::uint64_t cpuTicks = 0;
        double cpu = 0; // the percentage published for this reading
    };

    std::vector<ProcInfo> fromTable(ProcessTable table);
    std::vector<ProcInfo> fromProcessTool(std::vector<ProcInfo> rows);

    std::unique_ptr<ProcessSource> source_;
    QHash<qint64, Reading> reference_; // the readings later snapshots compare against
    std::optional<double> referenceTime_;
    QHash<qint64, std::uint64_t> lastStartTimes_;
    bool figuresAreFresh_ = false;
};

} // namespace quelmo

Q_DECLARE_METATYPE(quelmo::ProcessScan)
