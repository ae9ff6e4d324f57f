// What the metrics cost on this machine:
//   HubTickPopoverClosed  one hub update() with the popover closed, on the real Linux readers
//   ProcessSnapshot       one process-table snapshot from procfs
//   PsToolAndParse        running `/bin/ps -axco pid=,%cpu=,rss=,user=,comm=` once and parsing it
// The last two are printed side by side at the end, with the CPU of the `ps` child included.
//
// Run: build/<dir>/bench/bench_metrics [--benchmark_min_time=2]

#include "core/metrics/ProcessListText.h"
#include "core/metrics/ProcessMonitor.h"
#include "core/metrics/SystemMetrics.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/metrics/ProcessToolRunner.h"
#include "platform/linux/metrics/ProcfsProcessReader.h"

#include <QCoreApplication>
#include <QStandardPaths>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <sys/resource.h>

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
    ComparingReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    const auto procfs = reporter.figures.find("ProcessSnapshot/real_time");
    const auto ps = reporter.figures.find("PsToolAndParse/real_time");
    if (procfs != reporter.figures.end() && ps != reporter.figures.end() &&
        procfs->second.wallUs > 0 && procfs->second.cpuAllUs > 0) {
        std::printf("\n%-44s %12s %22s\n", "one process snapshot", "wall (us)",
                    "CPU incl. children (us)");
        std::printf("%-44s %12.0f %22.0f\n", "procfs (ProcessMonitor)", procfs->second.wallUs,
                    procfs->second.cpuAllUs);
        std::printf("%-44s %12.0f %22.0f\n", "ps -axco pid=,%cpu=,rss=,user=,comm= + parse",
                    ps->second.wallUs, ps->second.cpuAllUs);
        std::printf("%-44s %11.1fx %21.1fx\n", "ps / procfs",
                    ps->second.wallUs / procfs->second.wallUs,
                    ps->second.cpuAllUs / procfs->second.cpuAllUs);
    }
    if (const auto tick = reporter.figures.find("HubTickPopoverClosed");
        tick != reporter.figures.end())
        std::printf("\nhub tick, popover closed: %.1f us CPU (goal: under 100 us)\n",
                    tick->second.cpuAllUs);
    return 0;
}
