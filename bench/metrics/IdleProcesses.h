#pragma once

// Idle child processes that bring the machine to a desktop's process count for the duration of
// a benchmark run: each is `sleep`, ended (with its whole group) when the object goes.

#include <sys/types.h>
#include <vector>

class IdleProcesses {
public:
    // Starts as many children as it takes for /proc to list at least `total` processes. When run
    // as root the children run as the unprivileged user "nobody", as a desktop's own programs
    // run as the session's user rather than root.
    explicit IdleProcesses(int total);
    ~IdleProcesses();
    IdleProcesses(const IdleProcesses&) = delete;
    IdleProcesses& operator=(const IdleProcesses&) = delete;

    int started() const { return static_cast<int>(children_.size()); }

    // The number of processes /proc lists now.
    static int processCount();

private:
    std::vector<pid_t> children_;
};
