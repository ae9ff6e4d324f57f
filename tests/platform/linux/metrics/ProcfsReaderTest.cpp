#include "core/metrics/ProcessMonitor.h"
#include "platform/linux/metrics/ProcfsProcessReader.h"
#include "support/FixtureTree.h"

#include <QProcess>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <map>
#include <unistd.h>

using namespace quelmo;
using namespace quelmo::linux_platform;
using namespace quelmo::test;

namespace {

std::optional<QString> fixtureUsers(std::uint32_t uid) {
    if (uid == 0)
        return QStringLiteral("root");
    if (uid == 1000)
        return QStringLiteral("alice");
    return std::nullopt;
}

std::map<qint64, ProcessRecord> tableOf(const QString& root) {
    std::map<qint64, ProcessRecord> byPid;
    const auto table = ProcfsProcessReader(root, fixtureUsers).readTable();
    if (table) {
        for (const ProcessRecord& r : table->processes)
            byPid[r.pid] = r;
    }
    return byPid;
}

} // namespace

TEST(ProcfsProcessReaderTest, NamesTheKernelAllowsAndBrokenEntries) {
    const auto table = tableOf(machine("hostile"));
    std::map<qint64, std::string> names;
    for (const auto& [pid, r] : table)
        names[pid] = r.name.toStdString();
    // 103 (truncated stat), 104 (garbage), 105 (no stat), 106 (no status) and 110 (a negative
    // tick count) are left out; "acpi" is not a process.
    const std::map<qint64, std::string> expected = {
        {100, "Web Content"},
        {101, "x) (y)"},
        {102, "new?line"},
        {107, "WebKitWebProcess"},            // the 15-byte cut completed from argv[0]
        {108, "gnome-shell-calendar-server"}, // a rewritten command line stops at its arguments
        {109, "\xef\xbf\xbd\xef\xbf\xbd"
              "bad utf8"}}; // invalid UTF-8 replaced
    EXPECT_EQ(names, expected);

    const ProcessRecord& web = table.at(100);
    EXPECT_EQ(web.user, QStringLiteral("alice"));
    EXPECT_EQ(web.cpuTicks, 150u);
    EXPECT_EQ(web.startTime, 1000u);
    EXPECT_EQ(web.rssBytes, 256.0 * static_cast<double>(::sysconf(_SC_PAGESIZE)));
    EXPECT_EQ(table.at(102).user, QStringLiteral("root")); // the effective uid, not the real one
    EXPECT_EQ(table.at(102).realUser, QStringLiteral("alice"));
    EXPECT_EQ(table.at(101).realUser, QStringLiteral("root"));
    EXPECT_EQ(table.at(107).user, QStringLiteral("4242")); // no name: the uid, as ps prints it
    EXPECT_EQ(table.at(108).user, QString());              // unreadable Uid line
    EXPECT_EQ(table.at(108).realUser, QString());
}

// Names completed from the command line: a slash inside a rewritten line's arguments is not a
// path; a name of any length is cut to 255 bytes without splitting a character.
TEST(ProcfsProcessReaderTest, NamesFromCommandLinesStopWhereTheNameDoes) {
    using namespace std::string_view_literals;
    EXPECT_EQ(processName("rewrittenproces", "rewrittenprocess: worker --flag=/a/b"),
              QStringLiteral("rewrittenprocess:"));
    EXPECT_EQ(processName("WebKitWebProces", "/usr/lib/WebKitWebProcess\0--flag=/a/b\0"sv),
              QStringLiteral("WebKitWebProcess"));
    EXPECT_EQ(processName("somethingelse12", "other: --flag=/a/b"),
              QStringLiteral("somethingelse12"));

    // "\xc3\xa9" (e) straddles byte 255: the name ends before it.
    const std::string longName = "abcdefghijklmno" + std::string(239, 'x') + "\xc3\xa9tail";
    const QString cut = processName("abcdefghijklmno", longName);
    EXPECT_EQ(cut.toUtf8().size(), 254);
    EXPECT_TRUE(cut.endsWith('x'));
    const std::string ascii = "abcdefghijklmno" + std::string(120 * 1024, 'y');
    EXPECT_EQ(processName("abcdefghijklmno", ascii).size(), 255);
    EXPECT_EQ(processName("", ""), QString());
}

TEST(ProcfsProcessReaderTest, RealTreesAndLifetimeAverages) {
    const auto vm = tableOf(machine("this-vm"));
    EXPECT_EQ(vm.at(2).rssBytes, 0.0);
    // A 15-byte name whose argv[0] says something else keeps the kernel's name.
    EXPECT_EQ(vm.at(1162).name, QStringLiteral("memfd:sealed-91"));
    EXPECT_EQ(vm.at(1163).name, QStringLiteral("bash"));

    ProcessMonitor monitor(
        std::make_unique<ProcfsProcessReader>(machine("intel-laptop"), fixtureUsers));
    std::map<qint64, ProcInfo> rows;
    for (const ProcInfo& p : monitor.snapshot())
        rows[p.id] = p;
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_DOUBLE_EQ(rows.at(2001).cpu, 10.0); // 400 s of CPU in 4000 s
    EXPECT_DOUBLE_EQ(rows.at(2002).cpu, 42.8); // 1500 s in 3500 s, tenths rounded down
    EXPECT_EQ(rows.at(2002).name, QStringLiteral("Isolated Web Co"));
    EXPECT_EQ(monitor.startTimeOf(2002), std::optional<std::uint64_t>(150000));
}

TEST(ProcfsProcessReaderTest, WithoutProcTheListingToolIsRunWithItsTwoArguments) {
    ProcfsProcessReader reader(machine("no-proc"), fixtureUsers);
    EXPECT_FALSE(reader.readTable()); // an empty /proc is an unmounted one

    ProcessMonitor monitor(std::make_unique<ProcfsProcessReader>(machine("no-proc"), fixtureUsers));
    const auto rows = monitor.snapshot();
    ASSERT_EQ(rows.size(), 3u); // "bad line" and the tab-separated line are skipped
    EXPECT_EQ(rows[1].id, 123);
    EXPECT_EQ(rows[1].name, QStringLiteral("Web Content"));
    EXPECT_EQ(rows[1].rss, 20480.0 * 1024);
    EXPECT_EQ(rows[2].name, QStringLiteral("Xwayland")); // the last line has no line feed
    EXPECT_FALSE(monitor.startTimeOf(123));

    ProcfsProcessReader nothing(QStringLiteral("/nonexistent/quelmo"), fixtureUsers);
    EXPECT_FALSE(nothing.readTable());
    EXPECT_FALSE(nothing.runProcessTool());
}

TEST(ProcfsProcessReaderTest, TheListingToolCannotHoldTheProgramUp) {
    // A tool that writes pages of warnings (more than a pipe holds) and waits for input before
    // printing: with its error or input left on an unread pipe it would never finish.
    FixtureTree tree;
    QDir().mkpath(tree.path(QStringLiteral("proc")));
    tree.write(QStringLiteral("bin/ps"), "#!/bin/sh\n"
                                         "head -c 300000 /dev/zero | tr '\\0' w >&2\n"
                                         "cat >/dev/null\n"
                                         "echo '  42  1.5  2048 alice  Web Content'\n");
    QFile::setPermissions(tree.path(QStringLiteral("bin/ps")),
                          QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    ProcfsProcessReader reader(tree.root(), fixtureUsers);
    EXPECT_EQ(reader.runProcessTool(),
              std::optional<QByteArray>("  42  1.5  2048 alice  Web Content\n"));
}

namespace {

QByteArray statLine(qint64 pid, const char* comm, std::uint64_t ticks, std::uint64_t start) {
    return QStringLiteral("%1 (%2) S 1 1 1 0 -1 4194560 0 0 0 0 %3 0 0 0 20 0 1 0 %4 1 64 1")
        .arg(pid)
        .arg(QLatin1String(comm))
        .arg(ticks)
        .arg(start)
        .toLatin1();
}

QByteArray uidLine(int real, int effective, int saved) {
    return QStringLiteral("Name:\tx\nUid:\t%1\t%2\t%3\t%2\n")
        .arg(real)
        .arg(effective)
        .arg(saved)
        .toLatin1();
}

} // namespace

// A process's status and command line are read when it is first seen and again only when the pid
// holds another process (a new start time) or runs another program (a new kernel name); its stat
// is read on every table, kept open where the limit allows and closed once it has ended.
TEST(ProcfsProcessReaderTest, WhatAProcessIsIsLearntOnceAndAgainWhenItChanges) {
    FixtureTree tree;
    tree.write(QStringLiteral("proc/uptime"), "5000.00 100.00\n");
    const auto process = [&](const char* comm, std::uint64_t ticks, std::uint64_t start) {
        tree.write(QStringLiteral("proc/300/stat"), statLine(300, comm, ticks, start));
    };
    process("editor", 10, 500);
    tree.write(QStringLiteral("proc/300/status"), uidLine(1000, 1000, 1000));
    tree.write(QStringLiteral("proc/300/cmdline"), QByteArray("editor\0", 7));
    tree.write(QStringLiteral("proc/301/stat"), statLine(301, "shell", 0, 400));
    tree.write(QStringLiteral("proc/301/status"), uidLine(1000, 1000, 1000));

    for (const std::size_t limit : {std::size_t{8}, std::size_t{0}}) {
        SCOPED_TRACE(testing::Message() << "files kept at most: " << limit);
        ProcfsProcessReader reader(tree.root(), fixtureUsers, limit);
        const auto row = [&](qint64 pid) {
            const auto table = reader.readTable();
            if (table) {
                for (const ProcessRecord& r : table->processes) {
                    if (r.pid == pid)
                        return r;
                }
            }
            return ProcessRecord{};
        };
        process("editor", 10, 500);
        tree.write(QStringLiteral("proc/300/status"), uidLine(1000, 1000, 1000));
        EXPECT_EQ(row(300).user, QStringLiteral("alice"));
        EXPECT_EQ(reader.keptFiles(), std::min<std::size_t>(limit, 2));

        // The same process: new figures, but what it is stays as it was learnt.
        tree.write(QStringLiteral("proc/300/status"), uidLine(0, 0, 0));
        process("editor", 25, 500);
        const ProcessRecord again = row(300);
        EXPECT_EQ(again.cpuTicks, 25u);
        EXPECT_EQ(again.user, QStringLiteral("alice"));

        // Another program in the same process (a set-user-ID one), then another process under
        // the same pid: each is looked at afresh.
        process("sudo", 25, 500);
        const ProcessRecord changed = row(300);
        EXPECT_EQ(changed.name, QStringLiteral("sudo"));
        EXPECT_EQ(changed.user, QStringLiteral("root"));
        tree.write(QStringLiteral("proc/300/status"), uidLine(0, 1000, 1000));
        process("sudo", 0, 900);
        const ProcessRecord reused = row(300);
        EXPECT_EQ(reused.startTime, 900u);
        EXPECT_EQ(reused.user, QStringLiteral("alice"));
        EXPECT_EQ(reused.realUser, QStringLiteral("root"));

        // Closed at release, learnt facts kept; a process that has ended leaves its file.
        reader.release();
        EXPECT_EQ(reader.keptFiles(), 0u);
        EXPECT_EQ(row(300).user, QStringLiteral("alice"));
        tree.remove(QStringLiteral("proc/301"));
        EXPECT_EQ(row(301).pid, 0);
        EXPECT_EQ(reader.keptFiles(), std::min<std::size_t>(limit, 1));
        tree.write(QStringLiteral("proc/301/stat"), statLine(301, "shell", 0, 400));
        tree.write(QStringLiteral("proc/301/status"), uidLine(1000, 1000, 1000));
    }
}

// On the live system: the stat files kept open take numbers from 1024 up where the limit on open
// files allows, so the rest of the program (and anything still watching its files with
// select(), which reaches no higher) keeps the low ones; a process that ends drops out.
TEST(ProcfsProcessReaderTest, KeptFilesLeaveTheLowNumbersAndEndWithTheirProcess) {
    QProcess sleeper;
    sleeper.start(QStringLiteral("sleep"), {QStringLiteral("30")});
    ASSERT_TRUE(sleeper.waitForStarted());
    ProcfsProcessReader reader(QStringLiteral("/"));
    const auto lists = [&](qint64 pid) {
        const auto table = reader.readTable();
        return table && std::any_of(table->processes.begin(), table->processes.end(),
                                    [&](const ProcessRecord& r) { return r.pid == pid; });
    };
    EXPECT_TRUE(lists(sleeper.processId()));
    EXPECT_GT(reader.keptFiles(), 0u);
    EXPECT_LE(reader.keptFiles(), ProcfsProcessReader::keptFileLimit());
    const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    EXPECT_GE(next, 0);
    EXPECT_LT(next, 1024);
    ::close(next);

    sleeper.kill();
    sleeper.waitForFinished();
    EXPECT_FALSE(lists(sleeper.processId()));
}
