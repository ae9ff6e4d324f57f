#pragma once

#include <QtGlobal>
#include <cstdint>
#include <memory>
#include <optional>

namespace quelmo {

// A process pinned by a handle taken while it was known to be the same process, so the
// signal can never reach a later process that reused the pid.
class ProcessHandle {
public:
    virtual ~ProcessHandle() = default;
    virtual bool sendTerminate() = 0; // SIGTERM; never anything stronger
};

class ProcessSignaller {
public:
    virtual ~ProcessSignaller() = default;
    // Nothing when the pid is gone or now belongs to a process started at another time.
    virtual std::unique_ptr<ProcessHandle> open(qint64 pid, std::uint64_t startTime) = 0;
    // When the process that has `pid` now was started; nothing when there is none, or it cannot
    // be told.
    virtual std::optional<std::uint64_t> startTimeNow(qint64 pid) = 0;
};

} // namespace quelmo
