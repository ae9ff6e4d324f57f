#include "platform/linux/system/PidfdSignaller.h"

#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/ProcStat.h"
#include "platform/linux/common/RootPath.h"

#include <csignal>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quelmo::linux_platform {
namespace {

class PidfdHandle final : public ProcessHandle {
public:
    PidfdHandle(qint64 pid, int fd) : pid_(pid), fd_(fd) {}
    ~PidfdHandle() override { ::close(fd_); }
    PidfdHandle(const PidfdHandle&) = delete;
    PidfdHandle& operator=(const PidfdHandle&) = delete;

    qint64 pid() const override { return pid_; }

    bool isRunning() override {
        // A pidfd turns readable when its process ends.
        pollfd ready{fd_, POLLIN, 0};
        return ::poll(&ready, 1, 0) == 0;
    }

    bool sendTerminate() override {
        return ::syscall(SYS_pidfd_send_signal, fd_, SIGTERM, nullptr, 0) == 0;
    }

private:
    qint64 pid_;
    int fd_;
};

} // namespace

PidfdSignaller::PidfdSignaller(QString root) : root_(std::move(root)) {}

std::unique_ptr<ProcessHandle> PidfdSignaller::open(qint64 pid, std::uint64_t startTime) {
    if (pid <= 0 || pid > 0x7FFFFFFF)
        return nullptr;
    // Open first, verify after: if the pid still shows the expected start time once the
    // descriptor exists, the descriptor refers to that very process. (Had the pid changed hands
    // in between, the holder now would have started after the descriptor was opened, so after
    // the process that was listed.)
    const long fd = ::syscall(SYS_pidfd_open, static_cast<pid_t>(pid), 0u);
    if (fd < 0)
        return nullptr;
    auto handle = std::make_unique<PidfdHandle>(pid, static_cast<int>(fd));

    const auto stat = readSmallFile(procPath(root_, pid, "stat"));
    const auto parsed = stat ? parseProcStat(*stat) : std::nullopt;
    if (!parsed || parsed->startTime != startTime)
        return nullptr;

    // Another user's process is never signalled, even where the permissions would allow it.
    const auto status = readSmallFile(procPath(root_, pid, "status"));
    const auto uids = status ? parseStatusUids(*status) : std::nullopt;
    const uid_t me = ::getuid();
    if (!uids || uids->real != me || uids->effective != me)
        return nullptr;
    return handle;
}

} // namespace quelmo::linux_platform
