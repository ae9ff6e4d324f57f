// The desktop reads of one candidate selection, with 20 application windows open: the window
// snapshot (taken once a second while the popover is open) and the application lookup of each
// ordinary application.

#include "DesktopBenchEnvironment.h"
#include "platform/linux/apps/DesktopEntryIndex.h"
#include "platform/linux/x11/X11DesktopSession.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace quelmo::bench {
namespace {

using linux_platform::X11DesktopSession;

// Each selection pass is one turn of the event loop, which also reads the session's queued
// events and ends what it remembers for the pass; the benchmarks include that turn.
void endPass() {
    QCoreApplication::processEvents();
}

std::unique_ptr<X11DesktopSession> openSession(benchmark::State& state) {
    DesktopBenchEnvironment& desktop = DesktopBenchEnvironment::instance();
    if (!desktop.ok()) {
        state.SkipWithError(desktop.error().c_str());
        return nullptr;
    }
    X11DesktopSession::Options options;
    options.display = desktop.display().c_str();
    options.language = [] { return QStringLiteral("en"); };
    auto session = X11DesktopSession::connect(options);
    if (!session)
        state.SkipWithError("cannot connect to the benchmark display");
    return session;
}

void desktopSnapshot(benchmark::State& state) {
    auto session = openSession(state);
    if (!session)
        return;
    std::size_t regular = 0;
    for (auto _ : state) {
        const DesktopSnapshot snapshot = session->snapshot();
        regular = static_cast<std::size_t>(snapshot.regularPIDs.size());
        benchmark::DoNotOptimize(regular);
        endPass();
    }
    state.counters["regular_apps"] = static_cast<double>(regular);
}
BENCHMARK(desktopSnapshot)->Unit(benchmark::kMicrosecond);

// Every ordinary application looked up once, as a selection does; the session remembers what it
// found (ids for good, "no id" for a few seconds), so this is the steady state while the popover
// stays open.
void applicationLookupsWarm(benchmark::State& state) {
    auto session = openSession(state);
    if (!session)
        return;
    const auto& pids = DesktopBenchEnvironment::instance().clientPids();
    int found = 0;
    for (auto _ : state) {
        found = 0;
        for (const qint64 pid : pids)
            found += session->application(pid).has_value() ? 1 : 0;
        benchmark::DoNotOptimize(found);
        endPass();
    }
    state.counters["lookups"] = static_cast<double>(pids.size());
    state.counters["with_id"] = found;
}
BENCHMARK(applicationLookupsWarm)->Unit(benchmark::kMicrosecond);

// The same with nothing remembered yet: the first selection that meets these processes.
void applicationLookupsCold(benchmark::State& state) {
    const auto& pids = DesktopBenchEnvironment::instance().clientPids();
    for (auto _ : state) {
        state.PauseTiming();
        auto session = openSession(state);
        if (!session)
            return;
        state.ResumeTiming();
        int found = 0;
        for (const qint64 pid : pids)
            found += session->application(pid).has_value() ? 1 : 0;
        benchmark::DoNotOptimize(found);
        endPass();
        state.PauseTiming();
        session.reset();
        state.ResumeTiming();
    }
    state.counters["lookups"] = static_cast<double>(pids.size());
}
BENCHMARK(applicationLookupsCold)->Unit(benchmark::kMicrosecond);

// One refresh's worth of desktop work: the snapshot and a lookup per ordinary application.
void snapshotAndLookups(benchmark::State& state) {
    auto session = openSession(state);
    if (!session)
        return;
    for (auto _ : state) {
        const DesktopSnapshot snapshot = session->snapshot();
        int found = 0;
        for (const qint64 pid : snapshot.regularPIDs)
            found += session->application(pid).has_value() ? 1 : 0;
        benchmark::DoNotOptimize(found);
        endPass();
    }
}
BENCHMARK(snapshotAndLookups)->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace quelmo::bench
