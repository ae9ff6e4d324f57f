#include "core/cleanup/CleanupCandidate.h"

#include "core/settings/AppLang.h"

namespace quelmo {

QString rawValue(CleanupReason reason) {
    switch (reason) {
    case CleanupReason::spike:
        return QStringLiteral("spike");
    case CleanupReason::sustained:
        return QStringLiteral("sustained");
    case CleanupReason::ramHog:
        return QStringLiteral("ramHog");
    case CleanupReason::idleApp:
        return QStringLiteral("idleApp");
    }
    return {};
}

std::optional<CleanupReason> cleanupReasonFromRaw(const QString& raw) {
    for (const CleanupReason r : {CleanupReason::spike, CleanupReason::sustained,
                                  CleanupReason::ramHog, CleanupReason::idleApp})
        if (rawValue(r) == raw)
            return r;
    return std::nullopt;
}

QString label(CleanupReason reason) {
    const bool korean = AppLang::effective() == QLatin1String("ko");
    switch (reason) {
    case CleanupReason::spike:
        return korean ? QStringLiteral("비정상 급등") : QStringLiteral("Unusual spike");
    case CleanupReason::sustained:
        return korean ? QStringLiteral("장시간 과점유") : QStringLiteral("Sustained hog");
    case CleanupReason::ramHog:
        return korean ? QStringLiteral("메모리 과다") : QStringLiteral("High memory");
    case CleanupReason::idleApp:
        return korean ? QStringLiteral("안 쓰는 앱") : QStringLiteral("Unused app");
    }
    return {};
}

} // namespace quelmo
