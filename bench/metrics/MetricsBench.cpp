// What the metrics cost on this machine:
//   HubTickPopoverClosed  one hub update() with the popover closed, on the real Linux readers
//   ProcfsFloor           the least any procfs snapshot can do: list /proc, take each
//                         directory's owner and read each process's stat, parsing nothing
//   ProcessSnapshot       one process-table snapshot from procfs
//   PsToolAndParse        running `/bin/ps -axco pid=,%cpu=,rss=,user=,comm=` once and parsing it
// The last three are printed side by side at the end, with the CPU of the `ps` child included.
// First the machine is brought to at least 300 processes with idle children, which end with the
// run.
//
// Run: build/<dir>/bench/bench_metrics [--benchmark_min_time=2]

#include "IdleProcesses.h"
#include "core/metrics/ProcessListText.h"
#include "core/metrics/ProcessMonitor.h"
#include "core/metrics/SystemMetrics.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/metrics/ProcessToolRunner.h"
#include "platform/linux/metrics/ProcfsProcessReader.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <array>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <map>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace quelmo;

namespace {

// CPU seconds used so far by this process and by its waited-for children.
double cpuSecondsWithChildren() {
    const auto seconds = [](int who) {
        rusage usage{};
        ::getrusage(who, &usage);
        return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1e-6;
    };
    return seconds(RUSAGE_SELF) + seconds(RUSAGE_CHILDREN);
}

// Records the CPU used per iteration, children included, as the counter "cpu_all_us".
template <typename Body> void timed(benchmark::State& state, Body body) {
    const double before = cpuSecondsWithChildren();
    for (auto _ : state)
        body();
    state.counters["cpu_all_us"] = benchmark::Counter((cpuSecondsWithChildren() - before) * 1e6,
                                                      benchmark::Counter::kAvgIterations);
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
    state.counters["processes"] = static_cast<double>(rows);
}

void ProcessSnapshot(benchmark::State& state) {
    ProcessMonitor monitor(
        std::make_unique<linux_platform::ProcfsProcessReader>(QStringLiteral("/")));
    std::size_t rows = 0;
    timed(state, [&] { rows = monitor.snapshot().size(); });
    state.counters["processes"] = static_cast<double>(rows);
}

void PsToolAndParse(benchmark::State& state) {
    std::size_t rows = 0;
    timed(state, [&] {
        const auto output = linux_platform::runProcessListingTool("/bin/ps");
        const auto text = output ? decodeProcessListText(*output) : std::nullopt;
        rows = text ? parseProcessListText(*text).size() : 0;
    });
    state.counters["processes"] = static_cast<double>(rows);
}

BENCHMARK(HubTickPopoverClosed)->Unit(benchmark::kMicrosecond);
BENCHMARK(ProcfsFloor)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(ProcessSnapshot)->Unit(benchmark::kMicrosecond)->UseRealTime();
BENCHMARK(PsToolAndParse)->Unit(benchmark::kMicrosecond)->UseRealTime();

// The console report, keeping each benchmark's figures for the comparison at the end.
class ComparingReporter : public benchmark::ConsoleReporter {
public:
    struct Figures {
        double wallUs = 0;
        double cpuAllUs = 0;
    };
    std::map<std::string, Figures> figures;

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            const auto cpu = run.counters.find("cpu_all_us");
            figures[run.benchmark_name()] = {run.GetAdjustedRealTime(),
                                             cpu == run.counters.end() ? 0.0 : cpu->second.value};
        }
        ConsoleReporter::ReportRuns(runs);
    }
};

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true); // never touch the user's settings
    QCoreApplication::setOrganizationName(QStringLiteral("quelmo-bench"));
    benchmark::Initialize(&argc, argv);
    const IdleProcesses idle(300);
    ComparingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const auto floor = reporter.figures.find("ProcfsFloor/real_time");
    const auto procfs = reporter.figures.find("ProcessSnapshot/real_time");
    const auto ps = reporter.figures.find("PsToolAndParse/real_time");
    if (floor != reporter.figures.end() && procfs != reporter.figures.end() &&
        ps != reporter.figures.end() && floor->second.wallUs > 0 && floor->second.cpuAllUs > 0) {
        std::printf("\none process snapshot, %d processes (%d idle children started)\n",
                    IdleProcesses::processCount(), idle.started());
        std::printf("%-46s %10s %8s %14s %8s\n", "", "wall (us)", "x floor", "CPU+children",
                    "x floor");
        for (const auto& [label, it] :
             {std::pair{"floor: list /proc, fstatat, read stat", floor},
              std::pair{"procfs (ProcessMonitor)", procfs},
              std::pair{"ps -axco pid=,%cpu=,rss=,user=,comm= + parse", ps}}) {
            std::printf("%-46s %10.0f %7.2fx %14.0f %7.2fx\n", label, it->second.wallUs,
                        it->second.wallUs / floor->second.wallUs, it->second.cpuAllUs,
                        it->second.cpuAllUs / floor->second.cpuAllUs);
        }
        std::printf("%-46s %10s %7.1fx %14s %7.1fx\n", "ps / procfs", "",
                    ps->second.wallUs / procfs->second.wallUs, "",
                    ps->second.cpuAllUs / procfs->second.cpuAllUs);
    }
    if (const auto tick = reporter.figures.find("HubTickPopoverClosed");
        tick != reporter.figures.end())
        std::printf("\nhub tick, popover closed: %.1f us CPU (goal: under 100 us)\n",
                    tick->second.cpuAllUs);
    return 0;
}
