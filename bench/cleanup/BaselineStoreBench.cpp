// The baseline store at its cap: the observation that saves it (run on the main thread every 30th
// refresh while the popover is open), the write it hands to the writer thread, and loading it at
// start. Each case works on a settings file
// in a private temporary folder that holds a full store of realistic names.

#include "core/cleanup/BaselineEngine.h"
#include "core/metrics/ProcInfo.h"

#include <QSettings>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace quelmo::bench {
namespace {

const QString key = QStringLiteral("bench.baselines");

// Names shaped like those a Linux desktop churns through: kernel workers, build tools, helpers.
QString churnName(int i) {
    switch (i % 3) {
    case 0:
        return QStringLiteral("kworker/u16:%1-events_unbound").arg(i);
    case 1:
        return QStringLiteral("cc1plus-job-%1").arg(i);
    default:
        return QStringLiteral("org.example.Helper.%1").arg(i);
    }
}

// A settings folder holding a store of `count` names, all seen today.
class FullStore {
public:
    explicit FullStore(int count) {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir_.path());
        BaselineEngine::Document document;
        const qint64 today = BaselineEngine::utcDay();
        for (int i = 0; i < count; ++i) {
            const QString name = churnName(i);
            document.baselines.insert(name, {3.41 + i % 17, 40.2 + i % 31, 1830 + i});
            document.lastSeen.insert(name, today);
        }
        const std::unique_ptr<QSettings> file = BaselineEngine::openStore();
        file->setValue(key, *BaselineEngine::encode(document));
        file->sync();
    }

private:
    QTemporaryDir dir_;
};

std::vector<ProcInfo> snapshot() {
    std::vector<ProcInfo> procs;
    for (int i = 0; i < 300; ++i)
        procs.push_back({100 + i, churnName(i), 1.0 * (i % 40), 5e7, QStringLiteral("bench")});
    return procs;
}

void BM_SavingObservationAtCap(benchmark::State& state) {
    FullStore store(static_cast<int>(state.range(0)));
    BaselineEngine engine(key);
    const std::vector<ProcInfo> procs = snapshot();
    for (auto _ : state) {
        state.PauseTiming();
        for (int i = 1; i < BaselineEngine::saveEvery; ++i)
            engine.observe(procs);
        state.ResumeTiming();
        engine.observe(procs); // the 30th: folds the snapshot and saves
        state.PauseTiming();
        engine.waitForWrites();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_SavingObservationAtCap)
    ->Arg(BaselineEngine::maxEntries)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// The main thread's observation and the writer's encoding and file write, back to back.
void BM_SaveUntilWrittenAtCap(benchmark::State& state) {
    FullStore store(static_cast<int>(state.range(0)));
    BaselineEngine engine(key);
    const std::vector<ProcInfo> procs = snapshot();
    for (auto _ : state) {
        state.PauseTiming();
        for (int i = 1; i < BaselineEngine::saveEvery; ++i)
            engine.observe(procs);
        state.ResumeTiming();
        engine.observe(procs);
        engine.waitForWrites();
    }
}
BENCHMARK(BM_SaveUntilWrittenAtCap)
    ->Arg(BaselineEngine::maxEntries)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_LoadingAtCap(benchmark::State& state) {
    FullStore store(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        BaselineEngine engine(key);
        benchmark::DoNotOptimize(engine.baselines().size());
    }
}
BENCHMARK(BM_LoadingAtCap)
    ->Arg(BaselineEngine::maxEntries)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
} // namespace quelmo::bench
