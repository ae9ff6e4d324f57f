#pragma once

#include "core/metrics/sources/ProcessSource.h"
#include "platform/linux/metrics/KernelFile.h"

#include <QHash>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

struct __dirstream;

namespace quelmo::linux_platform {

// A user's name from the system's user database; nothing when the uid has none.
using UserLookup = std::function<std::optional<QString>(std::uint32_t uid)>;
std::optional<QString> systemUserName(std::uint32_t uid);

// The process table from procfs: for every /proc/[pid], its stat (name, CPU ticks, start time,
// resident pages), the effective uid of its status, and for a name cut to the kernel's 15 bytes
// the start of its command line. Where /proc cannot be listed, `runProcessTool` runs
// <root>/bin/ps instead.
class ProcfsProcessReader final : public ProcessSource {
public:
    explicit ProcfsProcessReader(const QString& root, UserLookup lookup = systemUserName);
    ~ProcfsProcessReader() override;
    ProcfsProcessReader(const ProcfsProcessReader&) = delete;
    ProcfsProcessReader& operator=(const ProcfsProcessReader&) = delete;

    std::optional<ProcessTable> readTable() override;
    std::optional<QByteArray> runProcessTool() override;

private:
    std::optional<ProcessRecord> readProcess(std::string_view pid);
    const QString& userName(std::uint32_t uid);

    std::string procPath_;
    std::string toolPath_;
    __dirstream* proc_ = nullptr; // kept open and rewound for every table
    KernelFile uptime_;
    UserLookup lookup_;
    QHash<std::uint32_t, QString> users_;
    std::uint64_t ticksPerSecond_ = 100;
    double pageSize_ = 4096;
};

// The fields of /proc/[pid]/stat that the table uses.
struct ProcStat {
    std::string_view comm;       // between the first '(' and the last ')'
    std::uint64_t cpuTicks = 0;  // utime + stime
    std::uint64_t startTime = 0; // clock ticks after boot
    std::uint64_t rssPages = 0;
};
std::optional<ProcStat> parseProcStat(std::string_view stat);

// The effective uid of /proc/[pid]/status text.
std::optional<std::uint32_t> parseStatusUid(std::string_view status);

// The executable's name: `comm`, or, when the kernel cut it to 15 bytes, the file name of the
// command line's first argument when that begins with `comm`. Control characters become '?',
// as `ps` prints them.
QString processName(std::string_view comm, std::string_view cmdline);

} // namespace quelmo::linux_platform
