#pragma once

#include <QtGlobal>
#include <cstdint>
#include <memory>

namespace quelmo {

// A process pinned by a handle taken while it was known to be the same process, so nothing sent
// through it can reach a later process that reused the pid.
class ProcessHandle {
public:
    virtual ~ProcessHandle() = default;
    virtual qint64 pid() const = 0;
    // False once the pinned process has ended: from then on its pid may be given to another.
    virtual bool isRunning() = 0;
    virtual bool sendTerminate() = 0; // SIGTERM; never anything stronger
};

class ProcessSignaller {
public:
    virtual ~ProcessSignaller() = default;
    // A handle on the process that has `pid` now, if it is this user's and started at
    // `startTime`; nothing when the pid is gone or belongs to a process started at another time.
    virtual std::unique_ptr<ProcessHandle> open(qint64 pid, std::uint64_t startTime) = 0;
};

} // namespace quelmo
