#pragma once

#include "core/metrics/ProcInfo.h"
#include "core/texts/Language.h"
#include "core/texts/TextKey.h"

#include <QString>
#include <optional>

namespace quelmo {

enum class CleanupReason { spike, sustained, ramHog, idleApp };

// Everything a reason is besides its rule: how it is stored, what it is called and how its chip
// looks (a palette colour name and a symbol name).
struct CleanupReasonInfo {
    CleanupReason reason;
    const char* raw;
    TextKey label;
    const char* colour;
    const char* symbol;
};
const CleanupReasonInfo& infoOf(CleanupReason reason);

QString rawValue(CleanupReason reason);
std::optional<CleanupReason> cleanupReasonFromRaw(const QString& raw);
QString label(CleanupReason reason); // in the effective interface language
QString label(CleanupReason reason, Language language);

struct CleanupCandidate {
    ProcInfo proc;
    CleanupReason reason = CleanupReason::spike;
    std::optional<double> idleMinutes; // only for idleApp
    bool hasWindow = false;            // only ever true for idleApp
    std::optional<QString> displayName;

    qint64 id() const { return proc.id; }
    // The key of the verdict cache and the model queue.
    QString key() const { return displayName.value_or(proc.name); }
};

} // namespace quelmo
