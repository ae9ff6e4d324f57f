#include "ChildProcess.h"

#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace quelmo::test {

using namespace std::chrono;

ChildProcess::ChildProcess(std::vector<std::string> argv, Options options) {
    // env(1) applies the additions, so that the child runs nothing but exec after fork.
    if (!options.environment.empty()) {
        argv.insert(argv.begin(), options.environment.begin(), options.environment.end());
        argv.insert(argv.begin(), "env");
    }
    std::vector<char*> args;
    for (std::string& a : argv)
        args.push_back(a.data());
    args.push_back(nullptr);
    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0)
        return;
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        dup2(out[1], 1);
        if (options.fdAsThree >= 0)
            dup2(options.fdAsThree, 3); // the copy loses close-on-exec
        execvp(args[0], args.data());
        _exit(127);
    }
    close(out[1]);
    stdout_ = out[0];
}

ChildProcess::~ChildProcess() {
    if (running()) {
        kill(pid_, SIGTERM);
        if (!waitForExit(seconds(3)))
            kill(pid_, SIGKILL);
        waitForExit(seconds(30));
    }
    close(stdout_);
}

std::optional<std::string> ChildProcess::readLine(milliseconds timeout) {
    const auto deadline = steady_clock::now() + timeout;
    std::string line;
    for (;;) {
        const auto left = duration_cast<milliseconds>(deadline - steady_clock::now()).count();
        pollfd fd{stdout_, POLLIN, 0};
        char c = 0;
        if (left <= 0 || poll(&fd, 1, static_cast<int>(left)) <= 0 || read(stdout_, &c, 1) != 1)
            return std::nullopt;
        if (c == '\n')
            return line;
        line += c;
    }
}

std::optional<int> ChildProcess::waitForExit(milliseconds timeout) {
    const auto deadline = steady_clock::now() + timeout;
    for (int status = 0; pid_ > 0 && !status_; std::this_thread::sleep_for(milliseconds(20))) {
        if (waitpid(pid_, &status, WNOHANG) == pid_)
            status_ = status;
        else if (steady_clock::now() >= deadline)
            break;
    }
    return status_;
}

} // namespace quelmo::test
