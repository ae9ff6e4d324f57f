// What the metrics cost on this machine:
//   HubTickPopoverClosed  one hub update() with the popover closed, on the real Linux readers
//   ProcfsFloor           the least a procfs snapshot that opens files can do: list /proc, take
//                         each directory's owner and read each process's stat, parsing nothing
//   KeptStatFloor         the least any procfs snapshot can do: list /proc and read again each
//                         process's stat, kept open from the last look, parsing nothing
//   ProcessSnapshot       one process-table snapshot from procfs, as the popover takes it every
//                         second (the reader keeps what it learnt from the one before)
//   FirstProcessSnapshot  the first snapshot after the popover opens (a reader that knows nothing)
//   PsToolAndParse        running `/bin/ps -axco pid=,%cpu=,rss=,user=,comm=` once and parsing it
//   HubRefreshOnMainThread  what the hub does on the main thread with a table once it has it:
//                         CPU figures, baselines, top lists, candidates
// each with about 300 processes (a desktop), then with 5,000 (a build server): the machine is
// brought to that many with idle children, which end with the run. The snapshots and `ps` are
// printed side by side against the floors, with the CPU of the `ps` child included.
//
// Then the hub runs with the popover open for a few seconds at 5,000 processes, once with the
// table read on the main thread and once as the program reads it, on a thread of its own; a 5 ms
// timer on the main thread measures how long the main thread was held up (its stall), and the
// process's CPU is taken over the run.
//
// Run: build/<dir>/bench/bench_metrics [--benchmark_min_time=2] [--stall_seconds=10]

#include "IdleProcesses.h"
#include "core/metrics/ProcessListText.h"
#include "core/metrics/ProcessMonitor.h"
#include "core/metrics/SystemMetrics.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/metrics/ProcessToolRunner.h"
#include "platform/linux/metrics/ProcfsProcessReader.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <memory>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>

using namespace quelmo;

namespace {

constexpr int desktopProcesses = 300;
constexpr int serverProcesses = 5000;

// Brings the machine to at least `total` processes; the children of a larger count end when a
// smaller one is asked for again.
void holdProcesses(int total) {
    static std::vector<std::pair<int, std::unique_ptr<IdleProcesses>>> groups;
    while (!groups.empty() && groups.back().first > total)
        groups.pop_back();
    if (IdleProcesses::processCount() < total)
        groups.emplace_back(total, std::make_unique<IdleProcesses>(total));
}

double seconds(const rusage& usage) {
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
}

// CPU seconds used so far by `who` (RUSAGE_SELF, RUSAGE_CHILDREN, RUSAGE_THREAD).
double cpuSeconds(int who) {
    rusage usage{};
    ::getrusage(who, &usage);
    return seconds(usage);
}

double cpuSecondsWithChildren() {
    return cpuSeconds(RUSAGE_SELF) + cpuSeconds(RUSAGE_CHILDREN);
}

// Records the CPU used per iteration, children included, as the counter "cpu_all_us", and the
// machine's process count as "processes".
template <typename Body> void timed(benchmark::State& state, Body body) {
    holdProcesses(static_cast<int>(state.range(0)));
    const double before = cpuSecondsWithChildren();
    for (auto _ : state)
        body();
    state.counters["cpu_all_us"] = benchmark::Counter((cpuSecondsWithChildren() - before) * 1e6,
                                                      benchmark::Counter::kAvgIterations);
    state.counters["processes"] = IdleProcesses::processCount();
}

void HubTickPopoverClosed(benchmark::State& state) {
    SystemMetrics hub(linux_platform::makePlatform());
    hub.update(); // the first tick only stores the counters' starting points
    timed(state, [&] { hub.update(); });
}

void ProcfsFloor(benchmark::State& state) {
    DIR* proc = ::opendir("/proc");
    std::size_t rows = 0;
    timed(state, [&] {
        ::rewinddir(proc);
        const int dir = ::dirfd(proc);
        rows = 0;
        std::array<char, sizeof(dirent::d_name) + 8> path; // the name and "/stat"
        std::array<char, 4096> stat;
        while (const dirent* entry = ::readdir(proc)) {
            if (entry->d_name[0] < '0' || entry->d_name[0] > '9')
                continue;
            struct stat owner {};
            if (::fstatat(dir, entry->d_name, &owner, 0) != 0)
                continue;
            std::snprintf(path.data(), path.size(), "%s/stat", entry->d_name);
            const int fd = ::openat(dir, path.data(), O_RDONLY | O_CLOEXEC);
            if (fd < 0)
                continue;
            rows += ::read(fd, stat.data(), stat.size()) > 0 && owner.st_uid != ~0u;
            ::close(fd);
        }
    });
    ::closedir(proc);
    benchmark::DoNotOptimize(rows);
}

void KeptStatFloor(benchmark::State& state) {
    DIR* proc = ::opendir("/proc");
    std::unordered_map<long, int> kept; // pid -> its stat, open
    std::size_t rows = 0;
    const auto look = [&] {
        ::rewinddir(proc);
        const int dir = ::dirfd(proc);
        rows = 0;
        std::array<char, sizeof(dirent::d_name) + 8> path;
        std::array<char, 4096> stat;
        while (const dirent* entry = ::readdir(proc)) {
            if (entry->d_name[0] < '0' || entry->d_name[0] > '9')
                continue;
            int& fd = kept.try_emplace(std::atol(entry->d_name), -1).first->second;
            if (fd < 0) {
                std::snprintf(path.data(), path.size(), "%s/stat", entry->d_name);
                fd = ::openat(dir, path.data(), O_RDONLY | O_CLOEXEC);
            }
            rows += fd >= 0 && ::pread(fd, stat.data(), stat.size(), 0) > 0;
        }
    };
    holdProcesses(static_cast<int>(state.range(0)));
    look(); // the files are opened once, as the reader opens them the first time
    timed(state, look);
    for (const auto& [pid, fd] : kept) {
        if (fd >= 0)
            ::close(fd);
    }
    ::closedir(proc);
    benchmark::DoNotOptimize(rows);
}

void ProcessSnapshot(benchmark::State& state) {
    ProcessMonitor monitor(
        std::make_unique<linux_platform::ProcfsProcessReader>(QStringLiteral("/")));
    holdProcesses(static_cast<int>(state.range(0)));
    monitor.snapshot();
    std::size_t rows = 0;
    timed(state, [&] { rows = monitor.snapshot().size(); });
    benchmark::DoNotOptimize(rows);
}

void FirstProcessSnapshot(benchmark::State& state) {
    std::size_t rows = 0;
    timed(state, [&] {
        ProcessMonitor monitor(
            std::make_unique<linux_platform::ProcfsProcessReader>(QStringLiteral("/")));
        rows = monitor.snapshot().size();
    });
    benchmark::DoNotOptimize(rows);
}

// The machine's table, read once and handed out again a second later each time, so that only the
// work done with a table on the main thread is timed: the CPU figures, the baselines, the top
// lists and the candidates.
class ReplayedTable : public ProcessSource {
public:
    explicit ReplayedTable(ProcessTable table) : table_(std::move(table)) {}
    std::optional<ProcessTable> readTable() override {
        table_.uptimeSeconds += 1.0;
        for (ProcessRecord& record : table_.processes)
            record.cpuTicks += static_cast<std::uint64_t>(record.pid % 7);
        return table_;
    }
    std::optional<QByteArray> runProcessTool() override { return std::nullopt; }

private:
    ProcessTable table_;
};

void HubRefreshOnMainThread(benchmark::State& state) {
    holdProcesses(static_cast<int>(state.range(0)));
    Platform platform = linux_platform::makePlatform();
    platform.model.reset();
    auto table = linux_platform::ProcfsProcessReader(QStringLiteral("/")).readTable();
    if (!table) {
        state.SkipWithError("no process table");
        return;
    }
    platform.processes = std::make_unique<ReplayedTable>(std::move(*table));
    platform.readProcessesOffThread = false;
    SystemMetrics hub(std::move(platform));
    hub.setPollProcesses(true);
    timed(state, [&] { hub.refreshProcesses(); });
}

void PsToolAndParse(benchmark::State& state) {
    std::size_t rows = 0;
    timed(state, [&] {
        const auto output = linux_platform::runProcessListingTool("/bin/ps");
        const auto text = output ? decodeProcessListText(*output) : std::nullopt;
        rows = text ? parseProcessListText(*text).size() : 0;
    });
    benchmark::DoNotOptimize(rows);
}

#define QUELMO_SNAPSHOT_BENCHMARKS(processes)                                                      \
    BENCHMARK(ProcfsFloor)->Arg(processes)->Unit(benchmark::kMicrosecond)->UseRealTime();          \
    BENCHMARK(KeptStatFloor)->Arg(processes)->Unit(benchmark::kMicrosecond)->UseRealTime();        \
    BENCHMARK(ProcessSnapshot)->Arg(processes)->Unit(benchmark::kMicrosecond)->UseRealTime();      \
    BENCHMARK(FirstProcessSnapshot)->Arg(processes)->Unit(benchmark::kMicrosecond)->UseRealTime(); \
    BENCHMARK(PsToolAndParse)->Arg(processes)->Unit(benchmark::kMicrosecond)->UseRealTime();       \
    BENCHMARK(HubRefreshOnMainThread)->Arg(processes)->Unit(benchmark::kMicrosecond)

BENCHMARK(HubTickPopoverClosed)->Arg(desktopProcesses)->Unit(benchmark::kMicrosecond);
QUELMO_SNAPSHOT_BENCHMARKS(desktopProcesses);
QUELMO_SNAPSHOT_BENCHMARKS(serverProcesses);

// The console report, keeping each benchmark's figures for the comparison at the end.
class ComparingReporter : public benchmark::ConsoleReporter {
public:
    struct Figures {
        double wallUs = 0;
        double cpuAllUs = 0;
        int processes = 0;
    };
    std::map<std::string, Figures> figures;

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const auto counter = [&](const char* name) {
                const auto found = run.counters.find(name);
                return found == run.counters.end() ? 0.0 : found->second.value;
            };
            figures[run.benchmark_name()] = {run.GetAdjustedRealTime(), counter("cpu_all_us"),
                                             static_cast<int>(counter("processes"))};
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

void printComparison(const ComparingReporter& reporter, int processes) {
    const auto find = [&](const char* name) {
        const auto found = reporter.figures.find(std::string(name) + "/" +
                                                 std::to_string(processes) + "/real_time");
        return found == reporter.figures.end() ? nullptr : &found->second;
    };
    const auto* floor = find("ProcfsFloor");
    const auto* kept = find("KeptStatFloor");
    const auto* ours = find("ProcessSnapshot");
    const auto* first = find("FirstProcessSnapshot");
    const auto* ps = find("PsToolAndParse");
    if (!floor || !kept || !ours || !first || !ps || floor->cpuAllUs <= 0 || ours->cpuAllUs <= 0)
        return;
    std::printf("\none process snapshot, %d processes listed\n", ours->processes);
    std::printf("%-50s %10s %8s %14s %8s\n", "", "wall (us)", "x floor", "CPU+children", "x floor");
    for (const auto& [label, it] :
         {std::pair{"floor: list /proc, fstatat, open+read stat", floor},
          std::pair{"floor: list /proc, pread stat kept open", kept},
          std::pair{"procfs (ProcessMonitor), every second", ours},
          std::pair{"procfs (ProcessMonitor), first after opening", first},
          std::pair{"ps -axco pid=,%cpu=,rss=,user=,comm= + parse", ps}}) {
        std::printf("%-50s %10.0f %7.2fx %14.0f %7.2fx\n", label, it->wallUs,
                    it->wallUs / floor->wallUs, it->cpuAllUs, it->cpuAllUs / floor->cpuAllUs);
    }
    std::printf("%-50s %10s %7.1fx %14s %7.1fx\n", "ps / procfs every second", "",
                ps->wallUs / ours->wallUs, "", ps->cpuAllUs / ours->cpuAllUs);
}

struct OpenPopoverFigures {
    int processes = 0;
    int refreshes = 0;
    double maxStallMs = 0;
    double p99StallMs = 0;
    int stallsOver50Ms = 0;
    double cpuPercent = 0;     // the whole process, of one core
    double mainCpuPercent = 0; // the main thread alone
};

// The hub with the popover open for `seconds`: the one-second tick refreshes the process table.
OpenPopoverFigures runOpenPopover(bool offThread, int seconds) {
    Platform platform = linux_platform::makePlatform();
    platform.model.reset(); // no model runtime: only the table and the rules
    platform.readProcessesOffThread = offThread;
    SystemMetrics hub(std::move(platform));
    OpenPopoverFigures figures;
    QObject::connect(&hub, &SystemMetrics::topCPUChanged, [&] { ++figures.refreshes; });
    hub.start();
    hub.setPollProcesses(true);

    // A timer due every 5 ms on the main thread: any lateness beyond its period is a stall.
    constexpr qint64 periodNs = 5'000'000;
    std::vector<double> stallsMs;
    QElapsedTimer clock;
    QTimer probe;
    probe.setTimerType(Qt::PreciseTimer);
    probe.setInterval(5);
    qint64 last = 0;
    QObject::connect(&probe, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        stallsMs.push_back(static_cast<double>(std::max<qint64>(0, now - last - periodNs)) / 1e6);
        last = now;
    });

    const double cpuBefore = cpuSeconds(RUSAGE_SELF);
    const double mainBefore = cpuSeconds(RUSAGE_THREAD);
    clock.start();
    probe.start();
    QEventLoop loop;
    QTimer::singleShot(seconds * 1000, &loop, &QEventLoop::quit);
    loop.exec();
    const double wall = static_cast<double>(clock.nsecsElapsed()) / 1e9;
    figures.cpuPercent = (cpuSeconds(RUSAGE_SELF) - cpuBefore) / wall * 100.0;
    figures.mainCpuPercent = (cpuSeconds(RUSAGE_THREAD) - mainBefore) / wall * 100.0;
    figures.processes = IdleProcesses::processCount();

    std::sort(stallsMs.begin(), stallsMs.end());
    if (!stallsMs.empty()) {
        figures.maxStallMs = stallsMs.back();
        figures.p99StallMs = stallsMs[(stallsMs.size() - 1) * 99 / 100];
        figures.stallsOver50Ms = static_cast<int>(
            stallsMs.end() - std::upper_bound(stallsMs.begin(), stallsMs.end(), 50.0));
    }
    return figures;
}

void printOpenPopover(int seconds) {
    holdProcesses(serverProcesses);
    std::printf("\nthe popover open for %d s, %d processes listed\n", seconds,
                IdleProcesses::processCount());
    std::printf("%-34s %9s %13s %13s %12s %10s %13s\n", "table read", "refreshes", "max stall ms",
                "p99 stall ms", "stalls>50ms", "CPU %", "main thread %");
    for (const bool offThread : {false, true}) {
        const OpenPopoverFigures f = runOpenPopover(offThread, seconds);
        std::printf("%-34s %9d %13.1f %13.1f %12d %10.2f %13.2f\n",
                    offThread ? "on its own thread (the program)" : "on the main thread",
                    f.refreshes, f.maxStallMs, f.p99StallMs, f.stallsOver50Ms, f.cpuPercent,
                    f.mainCpuPercent);
    }
    std::printf("goal: no stall over 50 ms\n");
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true); // never touch the user's settings
    QCoreApplication::setOrganizationName(QStringLiteral("quelmo-bench"));
    int stallSeconds = 10;
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--stall_seconds=", 16) == 0)
            stallSeconds = std::max(0, std::atoi(argv[i] + 16));
    }
    benchmark::Initialize(&argc, argv);
    ComparingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    printComparison(reporter, desktopProcesses);
    printComparison(reporter, serverProcesses);
    if (const auto tick = reporter.figures.find("HubTickPopoverClosed/300");
        tick != reporter.figures.end())
        std::printf("\nhub tick, popover closed: %.1f us CPU (goal: under 100 us)\n",
                    tick->second.cpuAllUs);
    if (stallSeconds > 0)
        printOpenPopover(stallSeconds);
    holdProcesses(0);
    return 0;
}
