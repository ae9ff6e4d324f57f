#include "platform/linux/common/ProcStat.h"

#include <gtest/gtest.h>

using namespace quelmo::linux_platform;

namespace {

// A stat line of a real process, with `comm` and `flags` set.
std::string statLine(const std::string& comm, const std::string& flags = "4194560") {
    return "1234 (" + comm + ") S 1 1234 1234 0 -1 " + flags +
           " 120 0 0 0 11 22 0 0 20 0 1 0 333 10240 44 18446744073709551615 1 1 0 0 0 0 0 "
           "4096 0 0 0 0 17 1 0 0 0 0 0\n";
}

} // namespace

TEST(ProcStatTest, TheNameEndsAtTheLastParenthesis) {
    for (const std::string comm : {"a) b", "((x))", ") R 1 2 3", "", "tab\there", "\xff\xfe"}) {
        const std::string line = statLine(comm);
        const auto stat = parseProcStat(line);
        ASSERT_TRUE(stat) << comm;
        EXPECT_EQ(stat->comm, comm);
        EXPECT_EQ(stat->cpuTicks, 33u);
        EXPECT_EQ(stat->startTime, 333u);
        EXPECT_EQ(stat->rssPages, 44u);
    }
}

TEST(ProcStatTest, KernelThreadsAreToldByTheirFlags) {
    const std::string kworker = statLine("kworker/0:1", "69238880"); // PF_KTHREAD | PF_WQ_WORKER
    const std::string shell = statLine("bash", "4194560");
    EXPECT_TRUE(parseProcStat(kworker)->isKernelThread());
    EXPECT_FALSE(parseProcStat(shell)->isKernelThread());
}

TEST(ProcStatTest, MalformedLinesGiveNothing) {
    const std::string whole = statLine("x");
    for (const std::string& line :
         {std::string("7 (a R 1 7 7 0 -1 0 0 0 0 0 11 22 -3 -4 20 0 1 0 333 0 44"),
          std::string("7 )a( R 1 7 7 0 -1 0 0 0 0 0 11 22 -3 -4 20 0 1 0 333 0 44"),
          whole.substr(0, whole.find(" 333")),               // cut before the start time
          statLine("x", "-1"),                               // negative flags
          std::string("7 (x) R 1 7 7 0 -1 0 0 0 0 0 1a 22"), // letters in a figure
          std::string()}) {
        EXPECT_FALSE(parseProcStat(line)) << line;
    }
}

TEST(ProcStatTest, UidLineGivesRealEffectiveAndSaved) {
    const auto uids = parseStatusUids("Name:\tx\nUmask:\t0022\nUid:\t1000\t0\t0\t0\nGid:\t5\n");
    ASSERT_TRUE(uids);
    EXPECT_EQ(uids->real, 1000u);
    EXPECT_EQ(uids->effective, 0u);
    EXPECT_EQ(uids->saved, std::optional<std::uint32_t>(0));
    EXPECT_EQ(parseStatusUids("Uid:\t4294967295\t4294967294\t7\t0")->effective, 4294967294u);
    EXPECT_FALSE(parseStatusUids("Uid:\t1\t2\n")->saved); // a line without it

    EXPECT_FALSE(parseStatusUids("Uid:\t1\n"));
    EXPECT_FALSE(parseStatusUids("Uid:\t1\t4294967296\t0\t0\n"));
    EXPECT_FALSE(parseStatusUids("Name:\tUid:\t1\t2\n")); // only a line that starts with it
    EXPECT_FALSE(parseStatusUids(""));
}
