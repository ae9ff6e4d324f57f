#include "platform/linux/system/PidfdSignaller.h"

#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/ProcStat.h"
#include "platform/linux/common/RootPath.h"

#include <csignal>
#include <sys/syscall.h>
#include <unistd.h>

namespace quelmo::linux_platform {
namespace {

class PidfdHandle final : public ProcessHandle {
public:
    explicit PidfdHandle(int fd) : fd_(fd) {}
    ~PidfdHandle() override { ::close(fd_); }
    PidfdHandle(const PidfdHandle&) = delete;
    PidfdHandle& operator=(const PidfdHandle&) = delete;

    bool sendTerminate() override {
        return ::syscall(SYS_pidfd_send_signal, fd_, SIGTERM, nullptr, 0) == 0;
    }

private:
    int fd_;
};

} // namespace

PidfdSignaller::PidfdSignaller(QString root) : root_(std::move(root)) {}

std::unique_ptr<ProcessHandle> PidfdSignaller::open(qint64 pid, std::uint64_t startTime) {
    if (pid <= 0 || pid > 0x7FFFFFFF)
        return nullptr;
    // Open first, verify after: if the pid still shows the expected start time once the
    // descriptor exists, the descriptor refers to that very process.
    const long fd = ::syscall(SYS_pidfd_open, static_cast<pid_t>(pid), 0u);
    if (fd < 0)
        return nullptr;
    auto handle = std::make_unique<PidfdHandle>(static_cast<int>(fd));

    if (startTimeNow(pid) != startTime)
        return nullptr;

    // Another user's process is never signalled, even where the permissions would allow it.
    const auto status = readSmallFile(procPath(root_, pid, "status"));
    const auto uids = status ? parseStatusUids(*status) : std::nullopt;
    const uid_t me = ::getuid();
    if (!uids || uids->real != me || uids->effective != me)
        return nullptr;
    return handle;
}

std::optional<std::uint64_t> PidfdSignaller::startTimeNow(qint64 pid) {
    const auto stat = readSmallFile(procPath(root_, pid, "stat"));
    const auto parsed = stat ? parseProcStat(*stat) : std::nullopt;
    if (!parsed)
        return std::nullopt;
    return parsed->startTime;
}

} // namespace quelmo::linux_platform
