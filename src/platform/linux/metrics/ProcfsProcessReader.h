#pragma once

#include "core/metrics/sources/ProcessSource.h"
#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/UserNames.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct __dirstream;

namespace quelmo::linux_platform {

// The process table from procfs: for every /proc/[pid], its stat (name, CPU ticks, start time,
// resident pages), its effective uid (the directory's owner, or the Uid line of its status where
// the owner cannot tell), and for a name cut to the kernel's 15 bytes the start of its command
// line. Where /proc cannot be listed, `runProcessTool` runs
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

    std::string procPath_;
    std::string toolPath_;
    __dirstream* proc_ = nullptr; // kept open and rewound for every table
    KernelFile uptime_;
    UserNames users_;
    bool ownersAreEffectiveUids_; // true on the live /proc, not in a copy of one
    std::uint64_t ticksPerSecond_ = 100;
    double pageSize_ = 4096;
};

// The executable's name: `comm`, or, when the kernel cut it to 15 bytes, the file name of the
// command line's first argument when that begins with `comm` (in a command line rewritten into
// one string, the word that begins with `comm`, up to the first space past it). At most 255
// bytes, cut on a character boundary; control characters become '?', as `ps` prints them.
QString processName(std::string_view comm, std::string_view cmdline);

} // namespace quelmo::linux_platform
