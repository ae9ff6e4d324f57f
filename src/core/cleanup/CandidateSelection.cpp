#include "core/cleanup/CandidateSelection.h"

#include "core/Ranking.h"
#include "core/cleanup/ProtectedNames.h"

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

QList<CleanupCandidate> selectCleanupCandidates(const std::vector<ProcInfo>& procs,
                                                const SelectionInputs& in) {
    if (procs.empty())
        return {};
    const double s = in.sensitivity;
    const double idleT = idleThreshold(s);
    const double recentR = recentThreshold(idleT);
    const DesktopSnapshot& desktop = in.desktop;

    std::optional<bool> thermalNominal;
    const auto underStrain = [&] {
        if (!thermalNominal)
            thermalNominal = in.strain.thermalNominal ? in.strain.thermalNominal() : true;
        return !*thermalNominal || in.strain.cpuTotal >= strainCPUTotal ||
               in.strain.totalWatts >= strainWatts;
    };

    QList<CleanupCandidate> offered;
    for (const ProcInfo& p : procs) {
        if (p.user != in.userName || p.id == in.ownPid)
            continue;
        // A cut signals only a process whose real and effective user are both the user's; one
        // that merely acts as the user (a privileged program that took on the user's effective
        // uid) is someone else's and could not be cut. Where the table does not tell the real
        // user (the process-listing tool), the owner decides.
        if (!p.realUser.isEmpty() && p.realUser != in.userName)
            continue;
        if (desktop.frontmostPID && p.id == *desktop.frontmostPID)
            continue;
        if (in.cuttingPIDs.contains(p.id) || isProtectedProcessName(p.name))
            continue;
        // A process without a name cannot be shown, told apart from others, or judged.
        if (p.name.trimmed().isEmpty())
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
            const std::optional<AppRecord> app =
                in.application ? in.application(p.id) : std::nullopt;
            const std::optional<double> lastActive =
                app && !app->appId.isEmpty() && in.lastActiveSeconds
                    ? in.lastActiveSeconds(app->appId)
                    : std::nullopt;
            if (app)
                displayName = app->displayName;
            if (!lastActive) {
                // A windowed application with no usage history is left alone.
                if (hasWindow)
                    continue;
            } else {
                const double minutes = (in.nowSeconds - *lastActive) / 60.0;
                if (minutes < recentR || (hasWindow && minutes < idleT))
                    continue;
                idleMinutes = minutes;
            }
        }

        if (const auto resource = in.resourceReason ? in.resourceReason(p) : std::nullopt) {
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

} // namespace quelmo
