#include "platform/linux/metrics/ProcessToolRunner.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace quelmo::linux_platform {

namespace {

// Closes the descriptors it holds when it goes out of scope.
struct Pipe {
    int read = -1;
    int write = -1;
    bool open() {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0)
            return false;
        read = fds[0];
        write = fds[1];
        return true;
    }
    static void closeFd(int& fd) {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }
    ~Pipe() {
        closeFd(read);
        closeFd(write);
    }
};

} // namespace

std::optional<QByteArray> runProcessListingTool(const std::string& program) {
    Pipe out, err;
    if (!out.open() || !err.open())
        return std::nullopt;

    posix_spawn_file_actions_t actions;
    if (posix_spawn_file_actions_init(&actions) != 0)
        return std::nullopt;
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.write, STDERR_FILENO);

    std::string arg0 = program, arg1 = "-axco", arg2 = "pid=,%cpu=,rss=,user=,comm=";
    std::array<char*, 4> argv = {arg0.data(), arg1.data(), arg2.data(), nullptr};
    pid_t child = -1;
    const int spawned =
        ::posix_spawn(&child, program.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (spawned != 0)
        return std::nullopt;

    // Only the child may hold the writing ends, or the reads below would never see the end.
    Pipe::closeFd(out.write);
    Pipe::closeFd(err.write);

    QByteArray output;
    std::array<char, 16384> chunk;
    for (;;) {
        const ssize_t n = ::read(out.read, chunk.data(), chunk.size());
        if (n > 0)
            output.append(chunk.data(), n);
        else if (n == 0 || errno != EINTR)
            break;
    }
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return output;
}

} // namespace quelmo::linux_platform
