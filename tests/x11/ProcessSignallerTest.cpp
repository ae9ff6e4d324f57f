// Terminating real processes through the signaller: the polite signal arrives, an ignored signal
// is never followed by anything stronger, and a pid that is not the listed process is left alone.

#include "ChildProcess.h"
#include "desktop/PidfdSignaller.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace quelmo::linux_platform {
namespace {

using namespace std::chrono_literals;
using test::ChildProcess;

// A child whose start time is known once it has exec'd into `argv`.
std::uint64_t startTime(ChildProcess& child) {
    const auto start = test::startTimeOf(child.pid());
    return start.value_or(0);
}

// The child has replaced itself with its program (so a signal reaches that program, not the
// copy of the test that fork made).
void waitForExec(ChildProcess& child, const char* program) {
    for (int i = 0; i < 250; ++i) {
        char exe[256] = {};
        const std::string link = "/proc/" + std::to_string(child.pid()) + "/exe";
        const ssize_t n = readlink(link.c_str(), exe, sizeof exe - 1);
        if (n > 0 && std::string(exe).find(program) != std::string::npos)
            return;
        std::this_thread::sleep_for(20ms);
    }
}

TEST(ProcessSignaller, TerminatesAWindowlessProcess) {
    ChildProcess sleeper({"sleep", "600"});
    ASSERT_TRUE(sleeper.started());
    waitForExec(sleeper, "sleep");
    PidfdSignaller signaller(QStringLiteral("/"));
    auto handle = signaller.open(sleeper.pid(), startTime(sleeper));
    ASSERT_TRUE(handle);
    EXPECT_TRUE(handle->sendTerminate());
    const auto status = sleeper.waitForExit(20s);
    ASSERT_TRUE(status);
    ASSERT_TRUE(WIFSIGNALED(*status));
    EXPECT_EQ(WTERMSIG(*status), SIGTERM);
    // The handle still refers to the ended process, never to a newcomer with its pid.
    EXPECT_FALSE(handle->sendTerminate());
}

TEST(ProcessSignaller, AProcessIgnoringTheSignalKeepsRunning) {
    ChildProcess stubborn({"sh", "-c", "trap '' TERM; echo armed; while :; do sleep 1; done"});
    ASSERT_EQ(stubborn.readLine(20s), std::optional<std::string>("armed"));
    PidfdSignaller signaller(QStringLiteral("/"));
    auto handle = signaller.open(stubborn.pid(), startTime(stubborn));
    ASSERT_TRUE(handle);
    EXPECT_TRUE(handle->sendTerminate());
    EXPECT_TRUE(handle->sendTerminate());
    EXPECT_FALSE(stubborn.waitForExit(1500ms)); // nothing stronger followed
    EXPECT_TRUE(stubborn.running());
}

TEST(ProcessSignaller, RefusesAPidThatIsNotTheListedProcess) {
    ChildProcess sleeper({"sleep", "600"});
    waitForExec(sleeper, "sleep");
    PidfdSignaller signaller(QStringLiteral("/"));
    // The same pid, but started at another time: a reused pid must not be signalled.
    EXPECT_FALSE(signaller.open(sleeper.pid(), startTime(sleeper) + 1));
    EXPECT_FALSE(signaller.open(sleeper.pid(), startTime(sleeper) - 1));
    EXPECT_TRUE(sleeper.running());

    sleeper.stop();
    EXPECT_FALSE(signaller.open(sleeper.pid(), startTime(sleeper)));
    EXPECT_FALSE(signaller.open(0, 0));
    EXPECT_FALSE(signaller.open(-1, 0));
}

TEST(ProcessSignaller, NeverSignalsAnotherUsersProcess) {
    PidfdSignaller signaller(QStringLiteral("/"));
    if (getuid() != 0) {
        // init belongs to root; its handle must not even be handed out.
        const auto initStart = test::startTimeOf(1);
        ASSERT_TRUE(initStart);
        EXPECT_FALSE(signaller.open(1, *initStart));
        return;
    }
    // As root the kernel would allow the signal: only our own check stands in the way.
    ChildProcess foreign(
        {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups", "sleep", "600"});
    waitForExec(foreign, "sleep");
    const auto start = test::startTimeOf(foreign.pid());
    ASSERT_TRUE(start);
    EXPECT_FALSE(signaller.open(foreign.pid(), *start));
    EXPECT_TRUE(foreign.running());
}

} // namespace
} // namespace quelmo::linux_platform
