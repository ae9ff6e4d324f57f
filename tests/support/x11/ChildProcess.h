#pragma once

// A child process for the tests: started with additions to our environment, its output read
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

    explicit ChildProcess(std::vector<std::string> argv, Options options = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t pid() const { return pid_; }
    // The next line of standard output, without its newline.
    std::optional<std::string> readLine(std::chrono::milliseconds timeout);
    // The wait status once the child has ended within `timeout`.
    std::optional<int> waitForExit(std::chrono::milliseconds timeout);
    bool running() { return pid_ > 0 && !waitForExit(std::chrono::milliseconds(0)); }

private:
    pid_t pid_ = -1;
    int stdout_ = -1;
    std::optional<int> status_;
};

} // namespace quelmo::test
