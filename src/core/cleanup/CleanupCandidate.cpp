#include "core/cleanup/CleanupCandidate.h"

#include "core/texts/Texts.h"

#include <array>

namespace quelmo {

namespace {

// In the order of CleanupReason.
constexpr std::array<CleanupReasonInfo, 4> reasons{{
    {CleanupReason::spike, "spike", TextKey::reasonSpike, "peach", "exclamationmark.triangle.fill"},
    {CleanupReason::sustained, "sustained", TextKey::reasonSustained, "rose", "flame.fill"},
    {CleanupReason::ramHog, "ramHog", TextKey::reasonRamHog, "sage", "memorychip.fill"},
    {CleanupReason::idleApp, "idleApp", TextKey::reasonIdleApp, "lav", "moon.zzz.fill"},
}};

constexpr bool inReasonOrder() {
    for (std::size_t i = 0; i < reasons.size(); ++i)
        if (static_cast<std::size_t>(reasons[i].reason) != i)
            return false;
    return true;
}
static_assert(inReasonOrder());

} // namespace

const CleanupReasonInfo& infoOf(CleanupReason reason) {
    const auto index = static_cast<std::size_t>(reason);
    return reasons[index < reasons.size() ? index : 0];
}

QString rawValue(CleanupReason reason) {
    return QString::fromLatin1(infoOf(reason).raw);
}

std::optional<CleanupReason> cleanupReasonFromRaw(const QString& raw) {
    for (const CleanupReasonInfo& info : reasons)
        if (raw == QLatin1String(info.raw))
            return info.reason;
    return std::nullopt;
}

QString label(CleanupReason reason) {
    return label(reason, currentLanguage());
}

QString label(CleanupReason reason, Language language) {
    return text(infoOf(reason).label, language);
}

} // namespace quelmo
