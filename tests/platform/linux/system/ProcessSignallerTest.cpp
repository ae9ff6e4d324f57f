// Terminating real processes through the signaller: the polite signal arrives, an ignored signal
// is never followed by anything stronger, and a pid that is not the listed process is left alone.

#include "core/cleanup/Termination.h"
#include "platform/linux/system/PidfdSignaller.h"
#include "support/FixtureTree.h"
#include "support/x11/ChildProcess.h"

#include <QFile>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace quelmo::linux_platform {
namespace {

using namespace std::chrono_literals;

QByteArray statOf(pid_t pid) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Field 22 of /proc/[pid]/stat, read here independently of the code under test.
std::uint64_t startTimeOf(pid_t pid) {
    const QByteArray stat = statOf(pid);
    return stat.sliced(stat.lastIndexOf(')') + 2).split(' ').value(19).toULongLong();
}

TEST(ProcessSignaller, OnlyTheListedProcessOfThisUserIsAskedToEnd) {
    test::ChildProcess sleeper({"sleep", "600"});
    const std::uint64_t start = startTimeOf(sleeper.pid());
    PidfdSignaller signaller(QStringLiteral("/"));
    // The same pid with another start time is a reused pid.
    EXPECT_FALSE(signaller.open(sleeper.pid(), start + 1));
    EXPECT_FALSE(signaller.open(sleeper.pid(), start - 1));
    // Another user's process is refused even where the kernel would allow the signal (as root).
    test::FixtureTree tree;
    const QString proc = QStringLiteral("proc/%1/").arg(sleeper.pid());
    tree.write(proc + QStringLiteral("stat"), statOf(sleeper.pid()));
    PidfdSignaller onFixture(tree.root());
    for (const uid_t uid : {getuid() + 1, getuid()}) {
        tree.write(proc + QStringLiteral("status"), QByteArray("Uid:\t") + QByteArray::number(uid) +
                                                        "\t" + QByteArray::number(uid) + "\n");
        EXPECT_EQ(bool(onFixture.open(sleeper.pid(), start)), uid == getuid());
    }

    auto handle = signaller.open(sleeper.pid(), start);
    ASSERT_TRUE(handle);
    EXPECT_EQ(handle->pid(), sleeper.pid());
    EXPECT_TRUE(handle->isRunning());
    EXPECT_TRUE(handle->sendTerminate());
    const auto status = sleeper.waitForExit(20s);
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFSIGNALED(*status) && WTERMSIG(*status) == SIGTERM);
    EXPECT_FALSE(handle->isRunning());
    EXPECT_FALSE(handle->sendTerminate()); // the ended process, never a newcomer with its pid

    // A process that ignores the signal keeps running: nothing stronger follows.
    test::ChildProcess stubborn({"sh", "-c", "trap '' TERM; echo armed; exec sleep 600"});
    ASSERT_EQ(stubborn.readLine(20s), std::optional<std::string>("armed"));
    handle = signaller.open(stubborn.pid(), startTimeOf(stubborn.pid()));
    ASSERT_TRUE(handle);
    EXPECT_TRUE(handle->sendTerminate());
    EXPECT_FALSE(stubborn.waitForExit(1500ms));
}

// A child that ends at once, made as cheaply as the kernel allows; its pid, or -1.
pid_t passingChild() {
    const pid_t child = vfork();
    if (child == 0)
        _exit(0);
    if (child > 0)
        waitpid(child, nullptr, 0);
    return child;
}

// A forked child that sits until it is signalled, with the pid `wanted`; -1 when no child got
// it before `deadline`. Where this user may set the last pid handed out, the forks are aimed at
// `wanted`; elsewhere children that end at once make the pids go round until they come close.
pid_t forkOnto(pid_t wanted, std::chrono::steady_clock::time_point deadline) {
    constexpr pid_t near = 64;
    QFile last(QStringLiteral("/proc/sys/kernel/ns_last_pid"));
    const bool canAim = last.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    while (std::chrono::steady_clock::now() < deadline) {
        if (canAim) {
            last.write(QByteArray::number(wanted - 1));
        } else {
            const pid_t passed = passingChild();
            if (passed < wanted - near || passed >= wanted)
                continue;
        }
        // Real children from here, each ending at once unless it got the wanted pid.
        for (pid_t previous = 0; std::chrono::steady_clock::now() < deadline;) {
            const pid_t child = fork();
            if (child == 0) {
                prctl(PR_SET_PDEATHSIG, SIGKILL);
                if (getpid() != wanted)
                    _exit(0);
                for (;;)
                    pause();
            }
            if (child == wanted)
                return child;
            if (child > 0)
                waitpid(child, nullptr, 0);
            if (child < 0 || child > wanted || child < previous)
                break; // gone past it
            previous = child;
        }
    }
    return -1;
}

// The user chose a process; before the request goes out it ends and a newcomer of the same user
// is given its pid. The newcomer must not be asked anything.
TEST(ProcessSignaller, APidGivenToALaterProcessIsNeverSignalled) {
    test::ChildProcess chosen({"sleep", "600"});
    const pid_t pid = chosen.pid();
    std::this_thread::sleep_for(50ms); // a few clock ticks of life, as any listed process has
    const quelmo::ProcessIdentity shown{pid, startTimeOf(pid)}; // the row as it was drawn
    kill(pid, SIGTERM);
    ASSERT_TRUE(chosen.waitForExit(20s));

    const pid_t newcomer = forkOnto(pid, std::chrono::steady_clock::now() + 20s);
    if (newcomer < 0)
        GTEST_SKIP() << "pid " << pid << " did not come round again within 20 s";
    // Started later, though possibly in the same clock tick on a fast machine: the check then
    // cannot tell them apart, and there is nothing to show here.
    const std::uint64_t newcomerStart = startTimeOf(newcomer);
    if (newcomerStart == *shown.startTime) {
        kill(newcomer, SIGKILL);
        waitpid(newcomer, nullptr, 0);
        GTEST_SKIP() << "the newcomer started in the same clock tick";
    }

    PidfdSignaller signaller(QStringLiteral("/"));
    EXPECT_FALSE(signaller.open(pid, *shown.startTime));
    EXPECT_EQ(quelmo::requestTermination({shown}, {nullptr, &signaller}), 0);
    std::this_thread::sleep_for(200ms);
    EXPECT_EQ(waitpid(newcomer, nullptr, WNOHANG), 0) << "the newcomer was ended";

    // The newcomer itself, known by its own start time, can be asked.
    EXPECT_EQ(quelmo::requestTermination({{pid, newcomerStart}}, {nullptr, &signaller}), 1);
    int status = 0;
    EXPECT_EQ(waitpid(newcomer, &status, 0), newcomer);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM);
}

} // namespace
} // namespace quelmo::linux_platform
