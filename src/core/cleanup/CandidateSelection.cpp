// The hub's cleanup side: which processes to offer, and terminating the ones the user cuts.
#include "core/Ranking.h"
#include "core/cleanup/FocusTracker.h"
#include "core/cleanup/ProtectedNames.h"
#include "core/metrics/SystemMetrics.h"

#include <QTimer>
#include <algorithm>

namespace quelmo {

namespace {

constexpr double idleAppMinRSS = 41943040.0; // 40 MiB
constexpr double idleAppMaxCPU = 2.0;        // per cent: at or above, the app is in use
constexpr double strainCPUTotal = 0.6;
constexpr double strainWatts = 14.0;
constexpr double idleAppMinSensitivity = 0.4;
constexpr double unknownIdleMinutes = 9999.0; // where hogs without an idle time sort
constexpr qsizetype maxCandidates = 6;
constexpr int cuttingHoldMs = 1600;

// Minutes an application must sit unused to be offered as idle.
double idleThreshold(double s) {
    return s <= 0 ? 60.0 : 60.0 - 55.0 * std::min(s, 1.0);
}

// Minutes within which an application counts as recently used.
double recentThreshold(double idle) {
    return std::max(0.4 * idle, 2.0);
}

// Orders and trims the offered candidates: biggest first, one per name, then the longest idle
// first (hogs, having no idle time, count as 9999 minutes), at most six.
QList<CleanupCandidate> ordered(QList<CleanupCandidate> offered) {
    rankHighestFirst(offered, [](const CleanupCandidate& c) { return c.proc.rss; });
    QSet<QString> seen;
    QList<CleanupCandidate> unique;
    for (const CleanupCandidate& c : offered) {
        const QString key = c.key();
        if (seen.contains(key))
            continue;
        seen.insert(key);
        unique.append(c);
    }
    rankHighestFirst(
        unique,
        [](const CleanupCandidate& c) { return c.idleMinutes.value_or(unknownIdleMinutes); },
        maxCandidates);
    return unique;
}

} // namespace

QList<CleanupCandidate>
SystemMetrics::computeCleanupCandidates(const std::vector<ProcInfo>& procs) const {
    // Without knowing whose session this is, nothing can be told apart from the user's own use.
    if (procs.empty() || !system_)
        return {};

    const QString userName = system_->userName();
    const qint64 ownPid = system_->ownPid();
    const DesktopSnapshot desktop = desktop_ ? desktop_->snapshot() : DesktopSnapshot{};
    const double s = sensitivity_;
    const double idleT = idleThreshold(s);
    const double recentR = recentThreshold(idleT);
    const double now = FocusTracker::nowSeconds();

    // The thermal state is read at most once per selection, and only when a row gets that far.
    std::optional<bool> thermalNominal;
    const auto underStrain = [&] {
        if (!thermalNominal)
            thermalNominal = system_->thermalNominal();
        return !*thermalNominal || cpuTotal_ >= strainCPUTotal || totalWatts_ >= strainWatts;
    };

    QList<CleanupCandidate> offered;
    for (const ProcInfo& p : procs) {
        if (p.user != userName || p.id == ownPid)
            continue;
        if (desktop.frontmostPID && p.id == *desktop.frontmostPID)
            continue;
        if (cuttingPIDs_.contains(p.id) || isProtectedProcessName(p.name))
            continue;
        // An application whose windows cannot be seen counts as a windowed application with no
        // usage history, and such an application is left alone.
        if (desktop.unseenAppPIDs.contains(p.id))
            continue;

        const bool isRegular = desktop.regularPIDs.contains(p.id);
        const bool hasWindow = desktop.visiblePIDs.contains(p.id);
        std::optional<double> idleMinutes;
        std::optional<QString> displayName;

        if (isRegular) {
            const std::optional<AppRecord> app = desktop_->application(p.id);
            const std::optional<double> lastActive =
                app && !app->appId.isEmpty() ? focus_.lastActiveSeconds(app->appId) : std::nullopt;
            if (app)
                displayName = app->displayName;
            if (!lastActive) {
                // A windowed application with no usage history is left alone.
                if (hasWindow)
                    continue;
            } else {
                const double minutes = (now - *lastActive) / 60.0;
                if (minutes < recentR || (hasWindow && minutes < idleT))
                    continue;
                idleMinutes = minutes;
            }
        }

        if (const auto resource = baseline_.reason(p)) {
            offered.append(CleanupCandidate{p, *resource, std::nullopt, false, std::nullopt});
            continue;
        }

        if (!underStrain() || s < idleAppMinSensitivity)
            continue;
        if (!isRegular || p.rss < idleAppMinRSS || !idleMinutes || *idleMinutes < idleT ||
            p.cpu >= idleAppMaxCPU || (hasWindow && *idleMinutes < 3.0 * idleT))
            continue;
        offered.append(
            CleanupCandidate{p, CleanupReason::idleApp, idleMinutes, hasWindow, displayName});
    }
    return ordered(std::move(offered));
}

int SystemMetrics::terminate(const QList<qint64>& pids) {
    int count = 0;
    for (const qint64 pid : pids) {
        // The handle pins the very process that was listed; a pid that has since gone, or been
        // reused by another process, is not touched.
        const std::optional<std::uint64_t> startTime = procMon_.startTimeOf(pid);
        std::unique_ptr<ProcessHandle> handle =
            startTime && signaller_ ? signaller_->open(pid, *startTime) : nullptr;
        if (!handle)
            continue;
        // An application with windows is asked to close them, as if the user did (it may ask to
        // save first); anything else, or an application that could not be asked, gets SIGTERM.
        // Nothing stronger is ever sent.
        if ((desktop_ && desktop_->requestClose(pid)) || handle->sendTerminate())
            ++count;
    }

    for (const qint64 pid : pids)
        cuttingPIDs_.insert(pid);
    refreshProcesses();

    // The rows stay hidden while the processes wind down. If the popover has closed by then, they
    // stay hidden: nothing is refreshed while it is closed.
    QTimer::singleShot(cuttingHoldMs, this, [this, pids] {
        if (!pollProcesses_)
            return;
        for (const qint64 pid : pids)
            cuttingPIDs_.remove(pid);
        refreshProcesses();
    });
    return count;
}

} // namespace quelmo
