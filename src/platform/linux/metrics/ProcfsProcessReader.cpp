#include "platform/linux/metrics/ProcfsProcessReader.h"

#include "platform/linux/common/KernelText.h"
#include "platform/linux/common/ProcStat.h"
#include "platform/linux/common/RootPath.h"
#include "platform/linux/metrics/ProcessToolRunner.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <sys/resource.h>
#include <sys/select.h>
#include <unistd.h>
#include <vector>

namespace quelmo::linux_platform {

namespace {

constexpr std::size_t kernelCommLength = 15; // TASK_COMM_LEN without its terminating zero
// Longer names are cut: they are shown, stored with the statistics and put into prompts.
constexpr std::size_t maxNameBytes = 255;

// The file `leaf` of the process directory `pid` under the directory `dir`, opened for reading;
// -1 when it cannot be, as when the process has gone.
int openAt(int dir, std::string_view pid, const char* leaf) {
    std::array<char, 48> path{};
    std::snprintf(path.data(), path.size(), "%.*s/%s", static_cast<int>(pid.size()), pid.data(),
                  leaf);
    int fd = -1;
    do {
        fd = ::openat(dir, path.data(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    } while (fd < 0 && errno == EINTR);
    return fd;
}

// The contents of the open file `fd` from its start, at most `buffer.size()` bytes, in a single
// read (procfs hands a file over in one, made afresh for a read at offset 0); nothing when it
// cannot be read, as when the process has gone.
template <std::size_t N>
std::optional<std::string_view> preadInto(int fd, std::array<char, N>& buffer) {
    ssize_t n = 0;
    do {
        n = ::pread(fd, buffer.data(), buffer.size(), 0);
    } while (n < 0 && errno == EINTR);
    if (n < 0)
        return std::nullopt;
    return std::string_view(buffer.data(), static_cast<std::size_t>(n));
}

struct KeptFilePlan {
    std::size_t limit = 0;
    int floor = 0;
};

KeptFilePlan keptFilePlan() {
    constexpr rlim_t selectReach = FD_SETSIZE; // 1024: select() watches no higher number
    constexpr rlim_t most = 8192;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0)
        return {};
    const rlim_t soft = limit.rlim_cur;
    if (soft == RLIM_INFINITY || soft >= selectReach + 256)
        return {static_cast<std::size_t>(
                    std::min(most, soft == RLIM_INFINITY ? most : soft - selectReach)),
                static_cast<int>(selectReach)};
    return {static_cast<std::size_t>(soft / 4), 0};
}

// The file name of the first argument, when it begins with the kernel's cut of the name.
std::optional<std::string_view> nameInArgument(std::string_view argument, std::string_view comm) {
    const std::size_t slash = argument.rfind('/');
    if (slash != std::string_view::npos)
        argument.remove_prefix(slash + 1);
    if (!argument.starts_with(comm))
        return std::nullopt;
    return argument;
}

// In a command line rewritten into one string: the first word that begins with the kernel's cut
// of the name, at the start of the line or of a path's component, up to the first space past
// that cut.
std::optional<std::string_view> nameInRewrittenLine(std::string_view line, std::string_view comm) {
    for (std::size_t start = 0; start < line.size();) {
        if (line.substr(start).starts_with(comm))
            return line.substr(start, line.find(' ', start + comm.size()) - start);
        const std::size_t slash = line.find('/', start);
        if (slash == std::string_view::npos)
            break;
        start = slash + 1;
    }
    return std::nullopt;
}

// The longest prefix of `text` of at most `limit` bytes that does not end inside a UTF-8
// sequence.
std::size_t utf8PrefixLength(std::string_view text, std::size_t limit) {
    if (text.size() <= limit)
        return text.size();
    // Back over continuation bytes to the lead byte of the character the cut falls into; a
    // character has at most three of them, and beyond that the bytes are no UTF-8 anyway.
    for (std::size_t length = limit; length + 3 >= limit && length > 0; --length) {
        if ((static_cast<unsigned char>(text[length]) & 0xC0) != 0x80)
            return length;
    }
    return limit;
}

bool allDigits(std::string_view text) {
    if (text.empty())
        return false;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return false;
    }
    return true;
}

} // namespace

QString processName(std::string_view comm, std::string_view cmdline) {
    std::string_view name = comm;
    if (comm.size() == kernelCommLength && !cmdline.empty()) {
        const std::size_t end = cmdline.find('\0');
        const std::string_view first = cmdline.substr(0, end);
        // A process that rewrote its command line into one string keeps its arguments after
        // spaces in it, and those may hold slashes of their own.
        const bool rewritten = end == std::string_view::npos || end + 1 >= cmdline.size();
        if (const auto full =
                rewritten ? nameInRewrittenLine(first, comm) : nameInArgument(first, comm))
            name = *full;
    }
    std::string printable(name.substr(0, utf8PrefixLength(name, maxNameBytes)));
    for (char& c : printable) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            c = '?';
    }
    return QString::fromUtf8(printable.data(), static_cast<qsizetype>(printable.size()));
}

ProcfsProcessReader::ProcfsProcessReader(const QString& root, UserLookup lookup,
                                         std::size_t keptFiles)
    : procPath_(rootedPath(root, "proc")), toolPath_(rootedPath(root, "bin/ps")),
      uptime_(rootedPath(root, "proc/uptime")), users_(std::move(lookup)),
      keptFileLimit_(keptFiles), keptFloor_(keptFilePlan().floor) {
    if (const long hz = ::sysconf(_SC_CLK_TCK); hz > 0)
        ticksPerSecond_ = static_cast<std::uint64_t>(hz);
    if (const long page = ::sysconf(_SC_PAGESIZE); page > 0)
        pageSize_ = static_cast<double>(page);
}

ProcfsProcessReader::~ProcfsProcessReader() {
    release();
    if (proc_)
        ::closedir(proc_);
}

std::size_t ProcfsProcessReader::keptFileLimit() {
    return keptFilePlan().limit;
}

void ProcfsProcessReader::release() {
    // What was learnt stays: the next table sweeps out what has ended meanwhile.
    for (auto& [pid, known] : known_)
        forget(known);
}

std::optional<ProcessTable> ProcfsProcessReader::readTable() {
    if (!proc_)
        proc_ = ::opendir(procPath_.c_str());
    if (!proc_)
        return std::nullopt;
    ::rewinddir(proc_);

    ProcessTable table;
    table.ticksPerSecond = ticksPerSecond_;
    if (const auto text = uptime_.read()) {
        std::size_t pos = 0;
        if (const auto word = nextWord(*text, pos)) {
            double seconds = 0;
            const auto [end, error] =
                std::from_chars(word->data(), word->data() + word->size(), seconds);
            if (error == std::errc() && seconds >= 0)
                table.uptimeSeconds = seconds;
        }
    }

    ++tables_;
    table.processes.reserve(known_.size());
    bool listedAny = false;
    while (const dirent* entry = ::readdir(proc_)) {
        const std::string_view name(entry->d_name);
        if (!allDigits(name))
            continue;
        listedAny = true;
        const auto id = parseUnsigned(name);
        if (!id || *id > static_cast<std::uint64_t>(INT64_MAX))
            continue;
        if (auto record = readProcess(static_cast<qint64>(*id), name))
            table.processes.push_back(std::move(*record));
    }
    // What the listing no longer holds has ended.
    for (auto it = known_.begin(); it != known_.end();) {
        if (it->second.lastSeen == tables_) {
            ++it;
        } else {
            forget(it->second);
            it = known_.erase(it);
        }
    }
    // An empty directory is an unmounted /proc: this machine has no table to give.
    if (!listedAny)
        return std::nullopt;
    return table;
}

std::optional<ProcessRecord> ProcfsProcessReader::readProcess(qint64 pid,
                                                              std::string_view pidText) {
    std::array<char, 4096> statBuffer;
    std::optional<std::string_view> statText;
    auto found = known_.find(pid);
    if (found != known_.end() && found->second.stat >= 0) {
        statText = preadInto(found->second.stat, statBuffer);
        // The kept file belongs to the process that was; a later one under its pid is new.
        if (!statText || statText->empty()) {
            forget(found->second);
            known_.erase(found);
            found = known_.end();
            statText.reset();
        }
    }
    int opened = -1;
    if (!statText) {
        opened = openAt(::dirfd(proc_), pidText, "stat");
        statText = opened >= 0 ? preadInto(opened, statBuffer) : std::nullopt;
    }
    const auto stat = statText ? parseProcStat(*statText) : std::nullopt;
    if (!stat) {
        if (opened >= 0)
            ::close(opened);
        if (found != known_.end()) {
            forget(found->second);
            known_.erase(found);
        }
        return std::nullopt;
    }

    if (found == known_.end())
        found = known_.try_emplace(pid).first;
    KnownProcess& known = found->second;
    const bool sameProgram =
        known.lastSeen != 0 && known.startTime == stat->startTime && known.comm == stat->comm;
    if (!sameProgram && !learn(known, pidText, *stat)) {
        if (opened >= 0)
            ::close(opened);
        forget(known);
        known_.erase(found);
        return std::nullopt; // gone between the reads
    }
    known.lastSeen = tables_;
    if (opened >= 0)
        keep(known, opened);

    ProcessRecord record;
    record.pid = pid;
    record.name = known.name;
    record.user = known.user;
    record.realUser = known.realUser;
    record.cpuTicks = stat->cpuTicks;
    record.startTime = stat->startTime;
    record.rssBytes = static_cast<double>(stat->rssPages) * pageSize_;
    return record;
}

bool ProcfsProcessReader::learn(KnownProcess& known, std::string_view pidText,
                                const ProcStat& stat) {
    const int dir = ::dirfd(proc_);
    // Kernel threads are root's and have no status worth reading; every other process's owner
    // and the users allowed to signal it come from its Uid line.
    std::optional<ProcessUids> uids = ProcessUids{0, 0, 0};
    if (!stat.isKernelThread()) {
        std::array<char, 1024> statusBuffer; // the Uid line is within the first few hundred bytes
        const int status = openAt(dir, pidText, "status");
        const auto text = status >= 0 ? preadInto(status, statusBuffer) : std::nullopt;
        if (status >= 0)
            ::close(status);
        if (!text)
            return false;
        uids = parseStatusUids(*text);
    }

    known.startTime = stat.startTime;
    known.comm.assign(stat.comm);
    if (stat.comm.size() == kernelCommLength) {
        std::array<char, 4096> cmdlineBuffer;
        const int cmdline = openAt(dir, pidText, "cmdline");
        const auto text = cmdline >= 0 ? preadInto(cmdline, cmdlineBuffer) : std::nullopt;
        if (cmdline >= 0)
            ::close(cmdline);
        known.name = processName(stat.comm, text.value_or(std::string_view()));
    } else {
        known.name = processName(stat.comm, {});
    }
    known.user = uids ? users_.nameOf(uids->effective) : QString();
    known.realUser = uids ? users_.nameOf(uids->real) : QString();
    return true;
}

void ProcfsProcessReader::keep(KnownProcess& known, int fd) {
    if (known.stat >= 0 || keptFiles_ >= keptFileLimit_) {
        ::close(fd);
        return;
    }
    if (keptFloor_ > 0) {
        const int moved = ::fcntl(fd, F_DUPFD_CLOEXEC, keptFloor_);
        ::close(fd);
        if (moved < 0)
            return;
        fd = moved;
    }
    known.stat = fd;
    ++keptFiles_;
}

void ProcfsProcessReader::forget(KnownProcess& known) {
    if (known.stat < 0)
        return;
    ::close(known.stat);
    known.stat = -1;
    --keptFiles_;
}

std::optional<QByteArray> ProcfsProcessReader::runProcessTool() {
    return runProcessListingTool(toolPath_);
}

} // namespace quelmo::linux_platform
