// Terminating real processes through the signaller: the polite signal arrives, an ignored signal
// is never followed by anything stronger, and a pid that is not the listed process is left alone.

#include "platform/linux/system/PidfdSignaller.h"
#include "support/FixtureTree.h"
#include "support/x11/ChildProcess.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/wait.h>
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
    EXPECT_EQ(signaller.startTimeNow(sleeper.pid()), start);
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
    EXPECT_TRUE(handle->sendTerminate());
    const auto status = sleeper.waitForExit(20s);
    ASSERT_TRUE(status);
    EXPECT_TRUE(WIFSIGNALED(*status) && WTERMSIG(*status) == SIGTERM);
    EXPECT_FALSE(handle->sendTerminate()); // the ended process, never a newcomer with its pid

    // A process that ignores the signal keeps running: nothing stronger follows.
    test::ChildProcess stubborn({"sh", "-c", "trap '' TERM; echo armed; exec sleep 600"});
    ASSERT_EQ(stubborn.readLine(20s), std::optional<std::string>("armed"));
    handle = signaller.open(stubborn.pid(), startTimeOf(stubborn.pid()));
    ASSERT_TRUE(handle);
    EXPECT_TRUE(handle->sendTerminate());
    EXPECT_FALSE(stubborn.waitForExit(1500ms));
}

} // namespace
} // namespace quelmo::linux_platform
