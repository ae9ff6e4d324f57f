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
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace quelmo::linux_platform {

namespace {

constexpr std::size_t kernelCommLength = 15; // TASK_COMM_LEN without its terminating zero
// Longer names are cut: they are shown, stored with the statistics and put into prompts.
constexpr std::size_t maxNameBytes = 255;

// The contents of `name` under the directory `dir`, at most `buffer.size()` bytes, in a single
// read (procfs hands a file over in one); nothing when it cannot be opened or read, as when the
// process has gone.
template <std::size_t N>
std::optional<std::string_view> readInto(int dir, const char* name, std::array<char, N>& buffer) {
    int fd = -1;
    do {
        fd = ::openat(dir, name, O_RDONLY | O_CLOEXEC | O_NOCTTY);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0)
        return std::nullopt;
    ssize_t n = 0;
    do {
        n = ::read(fd, buffer.data(), buffer.size());
    } while (n < 0 && errno == EINTR);
    ::close(fd);
    if (n < 0)
        return std::nullopt;
    return std::string_view(buffer.data(), static_cast<std::size_t>(n));
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

ProcfsProcessReader::ProcfsProcessReader(const QString& root, UserLookup lookup)
    : procPath_(rootedPath(root, "proc")), toolPath_(rootedPath(root, "bin/ps")),
      uptime_(rootedPath(root, "proc/uptime")), users_(std::move(lookup)),
      ownersAreEffectiveUids_(isLiveRoot(root)) {
    if (const long hz = ::sysconf(_SC_CLK_TCK); hz > 0)
        ticksPerSecond_ = static_cast<std::uint64_t>(hz);
    if (const long page = ::sysconf(_SC_PAGESIZE); page > 0)
        pageSize_ = static_cast<double>(page);
}

ProcfsProcessReader::~ProcfsProcessReader() {
    if (proc_)
        ::closedir(proc_);
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

    bool listedAny = false;
    while (const dirent* entry = ::readdir(proc_)) {
        const std::string_view name(entry->d_name);
        if (!allDigits(name))
            continue;
        listedAny = true;
        if (auto record = readProcess(name))
            table.processes.push_back(std::move(*record));
    }
    // An empty directory is an unmounted /proc: this machine has no table to give.
    if (!listedAny)
        return std::nullopt;
    return table;
}

std::optional<ProcessRecord> ProcfsProcessReader::readProcess(std::string_view pid) {
    const auto id = parseUnsigned(pid);
    if (!id || *id > static_cast<std::uint64_t>(INT64_MAX))
        return std::nullopt;
    const int dir = ::dirfd(proc_);
    std::array<char, 48> path{};
    const auto file = [&](const char* leaf) {
        std::snprintf(path.data(), path.size(), "%.*s/%s", static_cast<int>(pid.size()), pid.data(),
                      leaf);
        return path.data();
    };

    // The owner of /proc/[pid] is the process's effective uid, except for a process that is not
    // dumpable (one that changed its credentials, or asked not to be), whose directory is
    // root's. Only those, and every process of a fixture tree, whose files belong to whoever
    // copied them, need the Uid line of status; kernel threads are root's.
    struct stat owner {};
    if (::fstatat(dir, file(""), &owner, 0) != 0)
        return std::nullopt;
    std::array<char, 4096> statBuffer;
    const auto statText = readInto(dir, file("stat"), statBuffer);
    const auto stat = statText ? parseProcStat(*statText) : std::nullopt;
    if (!stat)
        return std::nullopt;
    std::uint32_t effectiveUid = owner.st_uid;
    bool ownerKnown = true;
    if (!ownersAreEffectiveUids_ || (owner.st_uid == 0 && !stat->isKernelThread())) {
        std::array<char, 1024> statusBuffer; // the Uid line is within the first few hundred bytes
        const auto status = readInto(dir, file("status"), statusBuffer);
        if (!status)
            return std::nullopt; // gone between the two reads
        const auto uids = parseStatusUids(*status);
        ownerKnown = uids.has_value();
        effectiveUid = uids ? uids->effective : 0;
    }

    ProcessRecord record;
    record.pid = static_cast<qint64>(*id);
    if (stat->comm.size() == kernelCommLength) {
        std::array<char, 4096> cmdlineBuffer;
        const auto cmdline = readInto(dir, file("cmdline"), cmdlineBuffer);
        record.name = processName(stat->comm, cmdline.value_or(std::string_view()));
    } else {
        record.name = processName(stat->comm, {});
    }
    if (ownerKnown)
        record.user = users_.nameOf(effectiveUid);
    record.cpuTicks = stat->cpuTicks;
    record.startTime = stat->startTime;
    record.rssBytes = static_cast<double>(stat->rssPages) * pageSize_;
    return record;
}

std::optional<QByteArray> ProcfsProcessReader::runProcessTool() {
    return runProcessListingTool(toolPath_);
}

} // namespace quelmo::linux_platform
