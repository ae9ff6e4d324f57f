#pragma once

// The machine's process table. Implemented by a reader under platform/linux (rooted at a
// directory, so fixture trees can stand in for /); faked in a few lines in tests. Readers only
// read: every decision stays in the monitors.

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace quelmo {

// One process as the kernel's process table describes it, before any arithmetic.
struct ProcessRecord {
    qint64 pid = 0;
    QString name;                // the full executable name
    QString user;                // the owner's user name (the uid in decimal when it has none)
    std::uint64_t cpuTicks = 0;  // user + system time used so far, in clock ticks
    std::uint64_t startTime = 0; // clock ticks after boot at which the process started
    double rssBytes = 0;         // resident memory
    // The user of the real uid, spelt as `user`. Empty where the table does not tell
    // (initialised so that records written field by field may leave it out).
    QString realUser = {};
};

// The whole table, with the clock facts needed to turn tick counts into percentages.
struct ProcessTable {
    std::vector<ProcessRecord> processes; // in the order the kernel listed them
    std::uint64_t ticksPerSecond = 100;   // the kernel's clock tick rate for the fields above
    double uptimeSeconds = 0;             // seconds since boot when the table was read
};

class ProcessSource {
public:
    virtual ~ProcessSource() = default;
    // The kernel's process table; nothing when this machine has none to read (no /proc).
    virtual std::optional<ProcessTable> readTable() = 0;
    // Runs the process-listing tool "/bin/ps -axco pid=,%cpu=,rss=,user=,comm=" and returns
    // everything it wrote on standard output; nothing when it could not be started.
    virtual std::optional<QByteArray> runProcessTool() = 0;
    // Lets go of whatever the source keeps from one table to the next (open files, names and
    // owners it has looked up); called when no table is wanted for a while.
    virtual void release() {}
};

} // namespace quelmo
