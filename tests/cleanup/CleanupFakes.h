#pragma once

// Stand-ins for the desktop session, the system facts and the process signaller.

#include "cleanup/DesktopSession.h"

#include <QHash>
#include <QList>

namespace quelmo::test {

struct FakeDesktop : DesktopSession {
    DesktopSnapshot desktop;
    QHash<qint64, AppRecord> apps;
    std::optional<QString> frontApp;
    std::function<void(const QString&)> handler;
    QSet<qint64> withWindows; // processes that have windows to close
    QList<qint64> closeRequests, applicationLookups;
    int snapshots = 0;

    DesktopSnapshot snapshot() override { return ++snapshots, desktop; }
    std::optional<AppRecord> application(qint64 pid) override {
        applicationLookups << pid;
        return apps.contains(pid) ? std::optional(apps.value(pid)) : std::nullopt;
    }
    std::optional<QString> frontmostAppId() override { return frontApp; }
    void setActivationHandler(std::function<void(const QString&)> h) override { handler = h; }
    bool requestClose(qint64 pid) override {
        closeRequests << pid;
        return withWindows.contains(pid);
    }
    void activate(const QString& appId) const { handler(appId); }
};

struct FakeSystem : SystemInfo {
    bool nominal = true;
    int thermalReads = 0;
    QString userName() override { return QStringLiteral("alice"); }
    qint64 ownPid() override { return 4242; }
    bool thermalNominal() override { return ++thermalReads, nominal; }
};

// A handle opens only for a running pid with the very start time asked for.
struct FakeSignaller : ProcessSignaller {
    QHash<qint64, std::uint64_t> running;
    QSet<qint64> ignoresSignals;
    QList<qint64> terminated;

    struct Handle : ProcessHandle {
        FakeSignaller* owner;
        qint64 pid;
        Handle(FakeSignaller* o, qint64 p) : owner(o), pid(p) {}
        bool sendTerminate() override {
            if (owner->ignoresSignals.contains(pid))
                return false;
            return owner->terminated << pid, true;
        }
    };
    std::unique_ptr<ProcessHandle> open(qint64 pid, std::uint64_t startTime) override {
        if (running.value(pid, ~std::uint64_t(0)) != startTime)
            return nullptr;
        return std::make_unique<Handle>(this, pid);
    }
};

} // namespace quelmo::test
