#include "ChildProcess.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <sstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char** environ;

namespace quelmo::test {

ChildProcess::ChildProcess(const std::vector<std::string>& argv, Options options) {
    // Everything the child needs is prepared before fork: after it only exec-safe calls run.
    std::vector<std::string> env;
    for (char** e = environ; *e; ++e)
        env.emplace_back(*e);
    for (const std::string& add : options.environment) {
        const std::string name = add.substr(0, add.find('=') + 1);
        std::erase_if(env, [&](const std::string& v) { return v.rfind(name, 0) == 0; });
        env.push_back(add);
    }
    std::vector<char*> argvPtrs;
    for (const std::string& a : argv)
        argvPtrs.push_back(const_cast<char*>(a.c_str()));
    argvPtrs.push_back(nullptr);
    std::vector<char*> envPtrs;
    for (const std::string& e : env)
        envPtrs.push_back(const_cast<char*>(e.c_str()));
    envPtrs.push_back(nullptr);

    int out[2];
    if (pipe2(out, O_CLOEXEC) != 0)
        return;
    const pid_t parent = getpid();
    pid_ = fork();
    if (pid_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (getppid() != parent)
            _exit(126);
        const int devNull = open("/dev/null", O_RDONLY);
        dup2(devNull, 0);
        dup2(out[1], 1);
        if (options.fdAsThree >= 0)
            dup2(options.fdAsThree, 3); // dup2 clears close-on-exec on the copy
        execvpe(argvPtrs[0], argvPtrs.data(), envPtrs.data());
        _exit(127);
    }
    close(out[1]);
    if (pid_ < 0) {
        close(out[0]);
        return;
    }
    stdout_ = out[0];
}

ChildProcess::~ChildProcess() {
    stop();
    if (stdout_ >= 0)
        close(stdout_);
}

std::optional<std::string> ChildProcess::readLine(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    for (;;) {
        const auto newline = buffered_.find('\n');
        if (newline != std::string::npos) {
            std::string line = buffered_.substr(0, newline);
            buffered_.erase(0, newline + 1);
            return line;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0 || stdout_ < 0)
            return std::nullopt;
        pollfd fd{stdout_, POLLIN, 0};
        if (poll(&fd, 1, static_cast<int>(left.count())) <= 0)
            continue;
        char chunk[512];
        const ssize_t n = read(stdout_, chunk, sizeof chunk);
        if (n <= 0) {
            close(stdout_);
            stdout_ = -1;
            continue;
        }
        buffered_.append(chunk, static_cast<std::size_t>(n));
    }
}

bool ChildProcess::running() {
    if (pid_ <= 0 || status_)
        return false;
    int status = 0;
    if (waitpid(pid_, &status, WNOHANG) == pid_)
        status_ = status;
    return !status_;
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds timeout) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (running() && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    return status_;
}

void ChildProcess::stop() {
    if (!running())
        return;
    kill(pid_, SIGTERM);
    if (waitForExit(std::chrono::seconds(3)))
        return;
    kill(pid_, SIGKILL);
    int status = 0;
    if (waitpid(pid_, &status, 0) == pid_)
        status_ = status;
}

int runCommand(const std::vector<std::string>& argv, std::chrono::milliseconds timeout,
               ChildProcess::Options options) {
    ChildProcess child(argv, std::move(options));
    const auto status = child.waitForExit(timeout);
    if (!status || !WIFEXITED(*status))
        return -1;
    return WEXITSTATUS(*status);
}

std::optional<std::uint64_t> startTimeOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const auto close = text.rfind(')');
    if (close == std::string::npos)
        return std::nullopt;
    std::istringstream fields(text.substr(close + 1));
    std::string field;
    for (int i = 3; i <= 22 && fields >> field; ++i) {
        if (i == 22)
            return std::stoull(field);
    }
    return std::nullopt;
}

} // namespace quelmo::test
