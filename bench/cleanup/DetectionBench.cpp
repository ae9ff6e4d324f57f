// One refresh's detection work while the popover is open, with 300 processes and 20 application
// windows: folding the table into the baselines, the two top lists, and the candidate selection
// with its X11 snapshot and application lookups. The process rows come from memory, so reading
// /proc is not part of it (bench_metrics measures that).

#include "DesktopBenchEnvironment.h"
#include "core/metrics/SystemMetrics.h"
#include "platform/linux/x11/X11DesktopSession.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace quelmo::bench {
namespace {

constexpr int processCount = 300;
const QString benchUser = QStringLiteral("bench-user");

// A process table that advances by one second of ticks on every read, so the CPU figures keep
// moving as they would on a live machine.
class SyntheticProcesses : public ProcessSource {
public:
    explicit SyntheticProcesses(const std::vector<qint64>& windowPids) {
        for (int i = 0; i < processCount; ++i) {
            ProcessRecord r;
            r.pid = i < static_cast<int>(windowPids.size())
                        ? windowPids[static_cast<std::size_t>(i)]
                        : 100000 + i;
            r.name = QStringLiteral("proc-%1").arg(i % 240); // some names shared, as helpers are
            r.user = i % 5 == 0 ? QStringLiteral("root") : benchUser;
            r.startTime = 1000 + static_cast<std::uint64_t>(i);
            r.rssBytes = (i % 7 == 0 ? 3.5e9 : 5e7) + i * 4096.0;
            table_.processes.push_back(r);
        }
        table_.ticksPerSecond = 100;
    }

    std::optional<ProcessTable> readTable() override {
        table_.uptimeSeconds += 1.0;
        for (std::size_t i = 0; i < table_.processes.size(); ++i)
            table_.processes[i].cpuTicks += i % 9 == 0 ? 60 : i % 3; // a few busy, most idle
        return table_;
    }
    std::optional<QByteArray> runProcessTool() override { return std::nullopt; }

private:
    ProcessTable table_{{}, 100, 5000.0};
};

class BenchSystem : public SystemInfo {
public:
    QString userName() override { return benchUser; }
    qint64 ownPid() override { return QCoreApplication::applicationPid(); }
    bool thermalNominal() override { return false; } // under strain: idle apps are examined too
};

void detectionRefresh(benchmark::State& state) {
    DesktopBenchEnvironment& desktop = DesktopBenchEnvironment::instance();
    if (!desktop.ok()) {
        state.SkipWithError(desktop.error().c_str());
        return;
    }
    const QTemporaryDir settingsDir; // the baselines are saved every 30th refresh
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsDir.path());

    linux_platform::X11DesktopSession::Options options;
    options.display = desktop.display().c_str();
    auto session = linux_platform::X11DesktopSession::connect(options);
    if (!session) {
        state.SkipWithError("cannot connect to the benchmark display");
        return;
    }
    Platform platform;
    platform.processes = std::make_unique<SyntheticProcesses>(desktop.clientPids());
    platform.desktop = std::move(session);
    platform.system = std::make_unique<BenchSystem>();
    SystemMetrics metrics(std::move(platform));
    metrics.setSensitivity(1.0);
    metrics.setPollProcesses(true);

    for (auto _ : state) {
        metrics.refreshProcesses();
        QCoreApplication::processEvents(); // the session reads its X events between refreshes
    }
    state.counters["processes"] = processCount;
    state.counters["windows"] = DesktopBenchEnvironment::windowCount;
    state.counters["candidates"] = static_cast<double>(metrics.cleanupCandidates().size());
}
BENCHMARK(detectionRefresh)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace quelmo::bench
