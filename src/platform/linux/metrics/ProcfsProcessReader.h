#pragma once

#include "core/metrics/sources/ProcessSource.h"
#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/ProcStat.h"
#include "platform/linux/common/UserNames.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

struct __dirstream;

namespace quelmo::linux_platform {

// The process table from procfs: for every /proc/[pid], its stat (name, CPU ticks, start time,
// resident pages), its real, effective and saved uid (the Uid line of its status) and, for a
// name cut to the kernel's 15 bytes, the start of its command line. Where /proc cannot be
// listed, `runProcessTool` runs <root>/bin/ps instead.
//
// What a process's status and command line say is learnt once, when the process is first seen,
// and kept while the same process (same start time) runs under the same kernel name; a process
// that runs another program gets a new name, and so is looked at again. Each process's stat is
// kept open and read again from its start, one system call per process and table, up to a
// number of files that leaves the rest of the program its own (see `keptFileLimit`).
class ProcfsProcessReader final : public ProcessSource {
public:
    explicit ProcfsProcessReader(const QString& root, UserLookup lookup = systemUserName,
                                 std::size_t keptFiles = keptFileLimit());
    ~ProcfsProcessReader() override;
    ProcfsProcessReader(const ProcfsProcessReader&) = delete;
    ProcfsProcessReader& operator=(const ProcfsProcessReader&) = delete;

    std::optional<ProcessTable> readTable() override;
    std::optional<QByteArray> runProcessTool() override;
    // Closes the files kept open; what it learnt of each process stays for the next table.
    void release() override;

    // How many stat files may stay open: above 1024, where select() cannot reach and nothing
    // else of the program looks, as many as the limit on open files leaves up to 8192; with no
    // room there, a quarter of that limit.
    static std::size_t keptFileLimit();
    std::size_t keptFiles() const { return keptFiles_; }

private:
    // What the reader learnt of one process when it first saw it.
    struct KnownProcess {
        int stat = -1; // its stat, kept open; -1 when over the limit
        std::uint64_t startTime = 0;
        std::string comm;
        QString name;
        QString user;
        QString realUser;
        std::uint64_t lastSeen = 0; // the table that listed it last
    };

    std::optional<ProcessRecord> readProcess(qint64 pid, std::string_view pidText);
    bool learn(KnownProcess& known, std::string_view pidText, const ProcStat& stat);
    void keep(KnownProcess& known, int fd);
    void forget(KnownProcess& known);

    std::string procPath_;
    std::string toolPath_;
    __dirstream* proc_ = nullptr; // kept open and rewound for every table
    KernelFile uptime_;
    UserNames users_;
    std::uint64_t ticksPerSecond_ = 100;
    double pageSize_ = 4096;
    std::unordered_map<qint64, KnownProcess> known_;
    std::uint64_t tables_ = 0;
    std::size_t keptFiles_ = 0;
    std::size_t keptFileLimit_;
    int keptFloor_ = 0; // the lowest number a kept file takes
};

// The executable's name: `comm`, or, when the kernel cut it to 15 bytes, the file name of the
// command line's first argument when that begins with `comm` (in a command line rewritten into
// one string, the word that begins with `comm`, up to the first space past it). At most 255
// bytes, cut on a character boundary; control characters become '?', as `ps` prints them.
QString processName(std::string_view comm, std::string_view cmdline);

} // namespace quelmo::linux_platform
