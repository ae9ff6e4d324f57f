#pragma once

// A child process for the tests: started with its own environment additions, its output read
// line by line with a timeout, and always ended and reaped when the object goes away (SIGTERM,
// then SIGKILL after a grace period: these are our own helpers, not processes under test).

#include <chrono>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quelmo::test {

struct ChildOptions {
    std::vector<std::string> environment; // "NAME=value" added to ours
    int fdAsThree = -1;                   // handed to the child as its file descriptor 3
};

class ChildProcess {
public:
    using Options = ChildOptions;

    explicit ChildProcess(const std::vector<std::string>& argv, Options options = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    bool started() const { return pid_ > 0; }
    pid_t pid() const { return pid_; }

    // The next line of standard output, without its newline.
    std::optional<std::string> readLine(std::chrono::milliseconds timeout);
    bool running();
    // The wait status once the child has ended within `timeout`.
    std::optional<int> waitForExit(std::chrono::milliseconds timeout);
    void stop();

private:
    pid_t pid_ = -1;
    int stdout_ = -1;
    std::string buffered_;
    std::optional<int> status_;
};

// Runs a command to completion (at most `timeout`) and gives its exit code, or -1.
int runCommand(const std::vector<std::string>& argv, std::chrono::milliseconds timeout,
               ChildProcess::Options options = {});

// The start time (clock ticks since boot) of a live process, from /proc.
std::optional<std::uint64_t> startTimeOf(pid_t pid);

} // namespace quelmo::test
