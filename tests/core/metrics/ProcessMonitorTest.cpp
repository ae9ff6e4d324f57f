#include "core/metrics/ProcessMonitor.h"

#include "core/metrics/ProcessListText.h"

#include <deque>
#include <gtest/gtest.h>
#include <map>

using namespace quelmo;

namespace {

struct ScriptedProcesses : ProcessSource {
    std::deque<std::optional<ProcessTable>> tables;
    std::optional<QByteArray> toolOutput;
    int toolRuns = 0;
    std::optional<ProcessTable> readTable() override {
        if (tables.empty())
            return std::nullopt;
        std::optional<ProcessTable> next;
        next.swap(tables.front());
        tables.pop_front();
        return next;
    }
    std::optional<QByteArray> runProcessTool() override {
        ++toolRuns;
        return toolOutput;
    }
};

ProcessRecord record(qint64 pid, std::uint64_t ticks, std::uint64_t start) {
    ProcessRecord r;
    r.pid = pid;
    r.name = QStringLiteral("p%1").arg(pid);
    r.user = QStringLiteral("alice");
    r.cpuTicks = ticks;
    r.startTime = start;
    r.rssBytes = 4096.0 * static_cast<double>(pid);
    return r;
}

ProcessTable table(double uptime, std::vector<ProcessRecord> processes) {
    return ProcessTable{std::move(processes), 100, uptime};
}

std::map<qint64, double> cpuById(const std::vector<ProcInfo>& rows) {
    std::map<qint64, double> cpu;
    for (const ProcInfo& row : rows)
        cpu[row.id] = row.cpu;
    return cpu;
}

struct Monitor {
    ScriptedProcesses* source = new ScriptedProcesses;
    ProcessMonitor monitor{std::unique_ptr<ProcessSource>(source)};
};

} // namespace

TEST(ProcessMonitorTest, ComparesWithTheSameProcessOnlyAndOtherwiseUsesTheLifetimeAverage) {
    Monitor m;
    m.source->tables.push_back(table(1000.0, {record(10, 25000, 50000), record(11, 10, 99950)}));
    // Two seconds later: 10 used 1.5 s more; pid 11 now belongs to a process started later;
    // 12 is new and has been running since boot.
    m.source->tables.push_back(
        table(1002.0, {record(10, 25150, 50000), record(11, 301, 99990), record(12, 1234, 0)}));

    const auto first = m.monitor.snapshot();
    ASSERT_EQ(first.size(), 2u);
    EXPECT_EQ(first[0].cpu, 50.0); // 250 s of CPU over 500 s of life
    EXPECT_EQ(first[1].cpu, 0.0);  // alive for less than a whole second
    EXPECT_EQ(first[0].rss, 40960.0);
    EXPECT_EQ(first[0].name, QStringLiteral("p10"));

    const auto second = cpuById(m.monitor.snapshot());
    EXPECT_DOUBLE_EQ(second.at(10), 75.0);
    // 3.01 s of CPU over 2 whole seconds is 1505 per mille: above 99.9 only whole percent.
    EXPECT_EQ(second.at(11), 150.0);
    // 12340 ms over 1002 s is 12 per mille: tenths, rounded down.
    EXPECT_DOUBLE_EQ(second.at(12), 1.2);

    EXPECT_EQ(m.monitor.startTimeOf(11), std::optional<std::uint64_t>(99990));
    EXPECT_FALSE(m.monitor.startTimeOf(13).has_value());
}

TEST(ProcessMonitorTest, LifetimeAverageCountsWholeSecondsAsPsDoes) {
    const ProcessTable clock{{}, 100, 3.999};
    // 10 ms of CPU over 3 whole seconds (3.999 rounds down) is 3 per mille.
    EXPECT_DOUBLE_EQ(ProcessMonitor::lifetimeCpuPercent(1, 0, clock), 0.3);
    EXPECT_EQ(ProcessMonitor::lifetimeCpuPercent(300, 0, clock), 100.0); // 1000 per mille
    EXPECT_DOUBLE_EQ(ProcessMonitor::lifetimeCpuPercent(299, 0, clock), 99.6);
    EXPECT_EQ(ProcessMonitor::lifetimeCpuPercent(5, 500, clock), 0.0); // starts in the future
    EXPECT_EQ(ProcessMonitor::lifetimeCpuPercent(5, 0, ProcessTable{{}, 0, 100}), 0.0);
}

TEST(ProcessMonitorTest, SnapshotsCloseTogetherRepeatTheLastFigures) {
    Monitor m;
    m.source->tables.push_back(table(1000.0, {record(10, 1000, 0)}));
    m.source->tables.push_back(table(1001.0, {record(10, 1075, 0)}));
    m.source->tables.push_back(table(1001.1, {record(10, 1080, 0), record(20, 50, 0)}));
    m.source->tables.push_back(table(1002.0, {record(10, 1125, 0), record(20, 60, 0)}));

    m.monitor.snapshot();
    EXPECT_FALSE(m.monitor.figuresAreFresh()); // lifetime averages
    EXPECT_DOUBLE_EQ(cpuById(m.monitor.snapshot()).at(10), 75.0);
    EXPECT_TRUE(m.monitor.figuresAreFresh());
    const auto close = cpuById(m.monitor.snapshot());
    EXPECT_DOUBLE_EQ(close.at(10), 75.0);      // not 50 % from 5 ticks in 0.1 s
    EXPECT_DOUBLE_EQ(close.at(20), 0.0);       // new: its lifetime average (0.5 s in 1001 s)
    EXPECT_FALSE(m.monitor.figuresAreFresh()); // already counted once
    // Measured against the snapshot of 1001.0, one second earlier.
    EXPECT_DOUBLE_EQ(cpuById(m.monitor.snapshot()).at(10), 50.0);
    EXPECT_TRUE(m.monitor.figuresAreFresh());
}

// The popover closed for ten minutes: process 10 idled, then spun for the last 10 s. Spread over
// the whole gap that would read 1.7 %; the snapshot after a gap gives the lifetime average
// instead, and the next one measures over the second since.
TEST(ProcessMonitorTest, AReferenceOlderThanAFewSecondsIsNotUsed) {
    Monitor m;
    m.source->tables.push_back(table(1000.0, {record(10, 1000, 0)}));
    m.source->tables.push_back(table(1001.0, {record(10, 1075, 0)}));
    m.source->tables.push_back(table(1601.0, {record(10, 2075, 0)}));
    m.source->tables.push_back(table(1602.0, {record(10, 2175, 0)}));
    m.source->tables.push_back(table(1500.0, {record(10, 2175, 0)})); // a clock gone back

    m.monitor.snapshot();
    m.monitor.snapshot();
    EXPECT_DOUBLE_EQ(cpuById(m.monitor.snapshot()).at(10), 1.2); // 20.75 s in 1601 whole s
    EXPECT_FALSE(m.monitor.figuresAreFresh());
    EXPECT_DOUBLE_EQ(cpuById(m.monitor.snapshot()).at(10), 100.0);
    EXPECT_TRUE(m.monitor.figuresAreFresh());
    m.monitor.snapshot();
    EXPECT_FALSE(m.monitor.figuresAreFresh());
}

TEST(ProcessMonitorTest, WithoutAKernelTableRunsTheToolAndParsesItsText) {
    Monitor m;
    m.source->tables.push_back(table(1000.0, {record(10, 0, 7)}));
    m.monitor.snapshot();
    EXPECT_TRUE(m.monitor.startTimeOf(10).has_value());

    m.source->toolOutput = QByteArray("  10  2.5  100 bob  Web Content\n");
    const auto rows = m.monitor.snapshot();
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].name, QStringLiteral("Web Content"));
    EXPECT_EQ(m.source->toolRuns, 1);
    // The tool says nothing about start times: no pid can be vouched for any more.
    EXPECT_FALSE(m.monitor.startTimeOf(10).has_value());

    m.source->toolOutput = QByteArray("  10  2.5  100 bob  caf\xc3");
    EXPECT_TRUE(m.monitor.snapshot().empty()); // cut inside a UTF-8 sequence
    m.source->toolOutput.reset();
    EXPECT_TRUE(m.monitor.snapshot().empty()); // could not be started
    EXPECT_TRUE(ProcessMonitor(nullptr).snapshot().empty());
}

TEST(ProcessListTextTest, ParsesTheToolsColumns) {
    const auto rows = parseProcessListText(u"  123   0.0   1024 alice   Finder\n"
                                           u"77 12.5 20480 bob Web  Content \n"
                                           u"\n"
                                           u"+8 -1 1e1 root kworker/0:1\n"
                                           u"9 .5 5. carol \u00e9t\u00e9");
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0].id, 123);
    EXPECT_EQ(rows[0].rss, 1048576.0);
    EXPECT_EQ(rows[0].user, QStringLiteral("alice"));
    EXPECT_EQ(rows[0].name, QStringLiteral("Finder"));
    EXPECT_EQ(rows[1].name, QStringLiteral("Web Content")); // a run of spaces comes back as one
    EXPECT_EQ(rows[1].cpu, 12.5);
    EXPECT_EQ(rows[1].rss, 20971520.0);
    EXPECT_EQ(rows[2].id, 8);
    EXPECT_EQ(rows[2].rss, 10240.0);
    EXPECT_EQ(rows[3].name, QString::fromUtf8("\xc3\xa9t\xc3\xa9")); // last line, no line feed
    EXPECT_EQ(rows[3].cpu, 0.5);
}

TEST(ProcessListTextTest, SkipsLinesThatDoNotHoldFiveGoodFields) {
    EXPECT_TRUE(parseProcessListText(u"1 0.0 10 alice").empty());         // four fields
    EXPECT_TRUE(parseProcessListText(u"x1 0.0 10 alice Finder").empty()); // id not an integer
    EXPECT_TRUE(parseProcessListText(u"1 0,5 10 alice Finder").empty());  // decimal comma
    EXPECT_TRUE(parseProcessListText(u"1 0.0 1O alice Finder").empty());  // letter O
    EXPECT_TRUE(parseProcessListText(u"1\t0.0 10 alice Finder").empty()); // a tab separates nothing
    EXPECT_TRUE(parseProcessListText(u"1 nan 10 alice Finder").empty());
    EXPECT_TRUE(parseProcessListText(u"99999999999999999999 0 1 a b").empty()); // overflows
    EXPECT_TRUE(parseProcessListText(u"").empty());
    EXPECT_EQ(parseProcessListText(u"1 0.0 10 alice Finder\r\n2 1 1 a b").front().name,
              QStringLiteral("Finder\r"));
}

TEST(ProcessListTextTest, AcceptsOnlyValidUtf8) {
    EXPECT_EQ(decodeProcessListText("1 0 1 a caf\xc3\xa9\n"),
              QString::fromUtf8("1 0 1 a caf\xc3\xa9\n"));
    EXPECT_FALSE(decodeProcessListText("1 0 1 a \xff\n").has_value());
    EXPECT_FALSE(decodeProcessListText("1 0 1 a \xed\xa0\x80").has_value()); // a lone surrogate
    EXPECT_EQ(decodeProcessListText(""), QString());
}
