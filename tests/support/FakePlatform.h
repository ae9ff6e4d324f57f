#pragma once

// Scriptable stand-ins for the machine, for tests of the hub and the rules above the readers.

#include "core/Platform.h"
#include "core/metrics/ProcInfo.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <deque>
#include <functional>
#include <utility>

namespace quelmo::test {

// Readings handed out one per call, in order; nothing once they run out.
template <typename Reading>
std::optional<Reading> nextOf(std::deque<std::optional<Reading>>& script) {
    std::optional<Reading> next;
    if (!script.empty()) {
        next.swap(script.front());
        script.pop_front();
    }
    return next;
}

struct ScriptedCpuTicks : CpuTicksSource {
    std::deque<std::optional<std::vector<CpuTicks>>> script;
    std::optional<std::vector<CpuTicks>> readTicks() override { return nextOf(script); }
};

struct FixedGpu : GpuLoadSource {
    std::vector<std::int64_t> percents;
    std::vector<std::int64_t> readDevicePercents() override { return percents; }
};

struct FixedMemory : MemorySource {
    double physical = 8589934592.0;
    std::optional<MemoryPages> pages;
    double physicalBytes() override { return physical; }
    std::optional<MemoryPages> readPages() override { return pages; }
};

struct ScriptedEnergy : EnergySource {
    bool isAvailable = true;
    std::deque<std::optional<std::vector<EnergyChannel>>> script;
    bool available() override { return isAvailable; }
    std::optional<std::vector<EnergyChannel>> readChannels() override { return nextOf(script); }
};

// Lists `rows` as the process-listing tool would print them (the kernel table is absent), so
// the rows come back through the monitor unchanged.
struct FixedProcesses : ProcessSource {
    std::vector<ProcInfo> rows;
    int snapshots = 0;
    std::optional<ProcessTable> readTable() override {
        ++snapshots;
        return std::nullopt;
    }
    std::optional<QByteArray> runProcessTool() override {
        QString text;
        for (const ProcInfo& p : rows)
            text += QStringLiteral("%1 %2 %3 %4 %5\n")
                        .arg(p.id)
                        .arg(QString::number(p.cpu, 'g', 17),
                             QString::number(p.rss / 1024.0, 'g', 17), p.user, p.name);
        return text.toUtf8();
    }
};

// A handle on a pid that the test says is running or not; it records nothing by itself.
struct FakeHandle : ProcessHandle {
    qint64 id = 0;
    std::function<bool()> running = [] { return true; };
    std::function<bool()> send = [] { return true; };
    explicit FakeHandle(qint64 pid) : id(pid) {}
    qint64 pid() const override { return id; }
    bool isRunning() override { return running(); }
    bool sendTerminate() override { return send(); }
};

// A desktop whose snapshot and applications the test sets; it records every close request.
struct FakeDesktop : DesktopSession {
    DesktopSnapshot desktop;
    QHash<qint64, AppRecord> apps;
    QSet<qint64> withWindows; // processes that have windows to close
    QList<qint64> closeRequests;

    DesktopSnapshot snapshot() override { return desktop; }
    std::optional<AppRecord> application(qint64 pid) override {
        return apps.contains(pid) ? std::optional(apps.value(pid)) : std::nullopt;
    }
    std::optional<QString> frontmostAppId() override { return std::nullopt; }
    void setActivationHandler(std::function<void(const QString&)>) override {}
    bool requestClose(ProcessHandle& process) override {
        if (!process.isRunning())
            return false;
        closeRequests << process.pid();
        return withWindows.contains(process.pid());
    }
};

struct FakeSystem : SystemInfo {
    bool nominal = true;
    QString userName() override { return QStringLiteral("alice"); }
    qint64 ownPid() override { return 4242; }
    bool thermalNominal() override { return nominal; }
};

// The machine's process table as pid -> start time, which a test may change at any moment (a
// process ends, another takes its pid). A handle opens only for a pid running with the very
// start time asked for, and stays with that process: once the table no longer lists it, the
// handle sees it ended and its signals reach nobody.
struct FakeSignaller : ProcessSignaller {
    QHash<qint64, std::uint64_t> running; // pid -> start time
    QSet<qint64> ignoresSignals;
    QList<qint64> signalled;

    std::unique_ptr<ProcessHandle> open(qint64 pid, std::uint64_t startTime) override {
        if (!running.contains(pid) || running.value(pid) != startTime)
            return nullptr;
        auto handle = std::make_unique<FakeHandle>(pid);
        const auto alive = [this, pid, startTime] {
            return running.contains(pid) && running.value(pid) == startTime;
        };
        handle->running = alive;
        handle->send = [this, pid, alive] {
            if (!alive())
                return false;
            signalled << pid;
            return !ignoresSignals.contains(pid);
        };
        return handle;
    }
};

inline ProcInfo proc(qint64 id, const QString& name, double cpu, double rss,
                     const QString& user = QStringLiteral("alice"),
                     std::optional<std::uint64_t> startTime = std::nullopt) {
    ProcInfo p;
    p.id = id;
    p.name = name;
    p.cpu = cpu;
    p.rss = rss;
    p.user = user;
    p.startTime = startTime;
    return p;
}

} // namespace quelmo::test
