#pragma once

// Which processes the cleanup card offers, and why. A pure rule over what the caller gathered:
// it asks nothing of the machine beyond the lookups handed to it.

#include "core/cleanup/CleanupCandidate.h"
#include "core/cleanup/DesktopSession.h"
#include "core/metrics/ProcInfo.h"

#include <QList>
#include <QSet>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace quelmo {

// How hard the machine is working; idle applications are only offered under strain.
struct StrainReading {
    double cpuTotal = 0;   // busy fraction of the whole CPU, 0 to 1
    double totalWatts = 0; // the machine's power draw
    // Whether the thermal state is nominal; asked at most once per selection, and only when a row
    // reaches the idle-application rule. Unset: nominal.
    std::function<bool()> thermalNominal;
};

struct SelectionInputs {
    QString userName;        // only this user's processes are offered
    qint64 ownPid = -1;      // this program, never offered
    DesktopSnapshot desktop; // ordinary applications, the one in front, those with windows
    // The application owning an ordinary application's pid; asked only for such pids.
    std::function<std::optional<AppRecord>(qint64 pid)> application;
    // When an application was last brought to the front, in seconds since 1970-01-01 UTC.
    std::function<std::optional<double>(const QString& appId)> lastActiveSeconds;
    // Why a process is a resource hog by its baselines, if it is one.
    std::function<std::optional<CleanupReason>(const ProcInfo& proc)> resourceReason;
    StrainReading strain;
    QSet<qint64> cuttingPIDs; // processes being cut, never offered
    double sensitivity = 0.5;
    double nowSeconds = 0; // the wall clock, in seconds since 1970-01-01 UTC
};

// At most six candidates from `procs`: resource hogs biggest first, then idle applications
// longest idle first, one per candidate key.
QList<CleanupCandidate> selectCleanupCandidates(const std::vector<ProcInfo>& procs,
                                                const SelectionInputs& inputs);

} // namespace quelmo
