// The readers on this machine, against the tools an administrator would check them with.

#include "core/metrics/ProcessListText.h"
#include "core/metrics/ProcessMonitor.h"
#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/ProcStat.h"
#include "platform/linux/metrics/ProcessToolRunner.h"
#include "platform/linux/metrics/ProcfsProcessReader.h"

#include <QFile>
#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <string>

using namespace quelmo;
using namespace quelmo::linux_platform;

namespace {

std::map<qint64, ProcInfo> byPid(const std::vector<ProcInfo>& rows) {
    std::map<qint64, ProcInfo> map;
    for (const ProcInfo& row : rows)
        map[row.id] = row;
    return map;
}

double uptimeSeconds() {
    QFile file("/proc/uptime");
    file.open(QIODevice::ReadOnly);
    return file.readAll().split(' ').value(0).toDouble();
}

// ps prints at most 8 characters of a user name, cutting longer ones to 7 and a '+'.
bool sameUser(const QString& ours, const QString& ps) {
    if (ps.size() == 8 && ps.endsWith(QLatin1Char('+')))
        return ours.startsWith(ps.chopped(1));
    return ours == ps;
}

// A name as it comes back from the listing's columns: spaces around it lost, runs of them one.
QString asListed(const QString& name) {
    return name.split(QLatin1Char(' '), Qt::SkipEmptyParts).join(QLatin1Char(' '));
}

// procps prints the kernel's name, cut to 15 bytes; ours completes a cut name from argv[0].
// A kernel worker renames itself after the work it picks up ("kworker/1:0-events").
bool sameName(const QString& ours, const QString& ps) {
    const QString listed = asListed(ours);
    if (ps.startsWith(QLatin1String("kworker/")))
        return listed.section(QLatin1Char('-'), 0, 0) == ps.section(QLatin1Char('-'), 0, 0);
    if (ps.toUtf8().size() == 15)
        return listed.startsWith(ps);
    return listed == ps;
}

} // namespace

TEST(SystemComparisonTest, ProcfsSnapshotAgreesWithPs) {
    ProcessMonitor before(std::make_unique<ProcfsProcessReader>(QStringLiteral("/")));
    ProcessMonitor after(std::make_unique<ProcfsProcessReader>(QStringLiteral("/")));
    const double start = uptimeSeconds();
    const auto ours = byPid(before.snapshot()); // first snapshots: lifetime averages, as ps
    const auto output = runProcessListingTool("/bin/ps");
    const auto oursAfter = byPid(after.snapshot());
    ASSERT_TRUE(output);
    const auto text = decodeProcessListText(*output);
    ASSERT_TRUE(text);
    const auto ps = byPid(parseProcessListText(*text));
    ASSERT_GT(ps.size(), 3u);
    const double now = uptimeSeconds();

    // Only processes that held still from our first look to our second are compared: one that
    // ended, got its pid reused, ran another program or changed its owner while the tools ran
    // (a child between fork and exec, a daemon dropping privileges) may have shown ps either.
    int compared = 0;
    for (const auto& [pid, mine] : ours) {
        const auto later = oursAfter.find(pid);
        if (later == oursAfter.end() || after.startTimeOf(pid) != before.startTimeOf(pid) ||
            later->second.name != mine.name || later->second.user != mine.user)
            continue;
        // A line without a name is no process to the listing's reader.
        if (asListed(mine.name).isEmpty())
            continue;
        SCOPED_TRACE(mine.name.toStdString());
        const auto theirs = ps.find(pid);
        ASSERT_NE(theirs, ps.end()) << "pid " << pid << " missing from ps";
        EXPECT_TRUE(sameUser(mine.user, theirs->second.user)) << theirs->second.user.toStdString();
        EXPECT_TRUE(sameName(mine.name, theirs->second.name)) << theirs->second.name.toStdString();
        // The resident size of one that kept it between our looks (one that ended became a
        // zombie of none).
        const double slack = std::max(1.0 * (1 << 20), 0.1 * std::max(mine.rss, later->second.rss));
        if (std::abs(mine.rss - later->second.rss) <= slack) {
            EXPECT_NEAR(theirs->second.rss, mine.rss, 2 * slack);
        }
        // The same lifetime average, for processes old enough that a second does not matter.
        const double age = now - static_cast<double>(*before.startTimeOf(pid)) / 100.0;
        if (age > 120) {
            EXPECT_NEAR(mine.cpu, theirs->second.cpu, 0.5 + 0.05 * theirs->second.cpu);
        }
        ++compared;
    }
    EXPECT_GT(compared, 3);
    // Whatever ps listed that we did not was born after our first look (ps itself, at least)
    // or has ended since.
    for (const auto& [pid, row] : ps) {
        if (ours.count(pid) || oursAfter.count(pid))
            continue;
        const auto stat = readSmallFile("/proc/" + std::to_string(pid) + "/stat");
        const auto parsed = stat ? parseProcStat(*stat) : std::nullopt;
        if (parsed) {
            EXPECT_GE(static_cast<double>(parsed->startTime) + 1.0, start * 100.0)
                << "pid " << pid << " (" << row.name.toStdString() << ") missing from our table";
        }
    }
}
