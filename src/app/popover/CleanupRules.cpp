#include "app/popover/CleanupRules.h"

#include "core/texts/Texts.h"

#include <cmath>
#include <numbers>

namespace quelmo::cleanup_rules {

namespace {

// A risk as the advisor stores it, its word and its badge's colour; anything else is a caution.
struct RiskInfo {
    const char8_t* risk;
    TextKey label;
    const char* colour;
};
constexpr RiskInfo safe{u8"안전", TextKey::riskSafe, "sage"};
constexpr RiskInfo danger{u8"위험", TextKey::riskDanger, "rose"};
constexpr RiskInfo caution{u8"주의", TextKey::riskCaution, "peach"};

bool is(const QString& risk, const RiskInfo& info) {
    return risk == QString::fromUtf8(info.risk);
}

const RiskInfo& riskInfo(const QString& risk) {
    if (is(risk, safe))
        return safe;
    if (is(risk, danger))
        return danger;
    return caution;
}

} // namespace

std::optional<AIVerdict> verdictOf(const CleanupCandidate& c, const Verdicts& verdicts) {
    const auto found = verdicts.constFind(c.key());
    if (found == verdicts.constEnd())
        return std::nullopt;
    return *found;
}

bool isKeep(const std::optional<AIVerdict>& verdict) {
    return verdict && verdict->recommendation == QLatin1String("keep");
}

bool isKeep(const CleanupCandidate& c, const Verdicts& verdicts) {
    return isKeep(verdictOf(c, verdicts));
}

QList<CleanupCandidate> cutTargets(const QList<CleanupCandidate>& candidates,
                                   const Verdicts& verdicts) {
    QList<CleanupCandidate> targets;
    for (const CleanupCandidate& c : candidates)
        if (!isKeep(c, verdicts))
            targets.append(c);
    return targets;
}

QString statusColor(const std::optional<AIVerdict>& verdict) {
    if (!verdict)
        return QStringLiteral("gray");
    if (isKeep(verdict))
        return QStringLiteral("sage");
    // Only the two stated worries colour the dot; any other risk text reads as safe here.
    if (is(verdict->risk, danger) || is(verdict->risk, caution))
        return riskColor(verdict->risk);
    return QStringLiteral("sage");
}

QString riskColor(const QString& risk) {
    return QString::fromLatin1(riskInfo(risk).colour);
}

QString badgeColor(const std::optional<AIVerdict>& verdict) {
    if (isKeep(verdict))
        return QStringLiteral("sage");
    return riskColor(verdict ? verdict->risk : QString());
}

QString riskLabel(const QString& risk, Language language) {
    return text(riskInfo(risk).label, language);
}

QString idleText(double minutes, Language language) {
    if (minutes < 60) {
        const auto n = std::max<qint64>(static_cast<qint64>(std::trunc(minutes)), 1);
        return textWith(TextKey::minutesAgo, language, QString::number(n));
    }
    const auto hours = QString::number(static_cast<qint64>(std::trunc(minutes / 60)));
    const auto rest = static_cast<qint64>(std::trunc(std::fmod(minutes, 60.0)));
    if (rest == 0)
        return textWith(TextKey::hoursAgo, language, hours);
    return textWith(TextKey::hoursMinutesAgo, language, hours, QString::number(rest));
}

QString idleDetail(const CleanupCandidate& c, Language language) {
    if (c.idleMinutes)
        return textWith(c.hasWindow ? TextKey::lastUsed : TextKey::lastUsedNoWindow, language,
                        idleText(*c.idleMinutes, language));
    if (c.reason == CleanupReason::idleApp)
        return text(TextKey::notOpenedThisSession, language);
    return {};
}

QString footerText(const AIAdvisor::Status& live, const AIAdvisor::Status& captured,
                   Language language) {
    if (live.available)
        return text(TextKey::footerOnDevice, language);
    if (!captured.available && !captured.reason.isEmpty())
        return textWith(TextKey::footerNotesOff, language, captured.reason);
    return {};
}

double travelDistance(const QHash<qint64, double>& rowYs, std::optional<qint64> travelTo) {
    if (!travelTo)
        return 0;
    const auto row = rowYs.constFind(*travelTo);
    const auto lane = rowYs.constFind(laneKey);
    if (row == rowYs.constEnd() || lane == rowYs.constEnd())
        return 0;
    const double d = (*row - *lane) - laneToRowOffset;
    return d > 0 ? d : 0;
}

SpringParameters springFor(double response, double dampingFraction) {
    constexpr double step = 0.016; // seconds per step of Qt Quick's spring
    const double omega = 2 * std::numbers::pi / response;
    return {step * omega * omega, step * 2 * dampingFraction * omega};
}

QVariantList criteriaItems(Language language) {
    struct Item {
        const char* symbol;
        const char* color;
        TextKey title;
        TextKey detail;
        bool groupEnd;
    };
    using K = TextKey;
    static constexpr Item items[] = {
        {"hand.raised.fill", "sage", K::neverTouchesInUse, K::neverTouchesInUseDetail, false},
        {"eye.slash.fill", "blue", K::idleForAWhile, K::idleForAWhileDetail, false},
        {"macwindow", "blue", K::noVisibleWindow, K::noVisibleWindowDetail, false},
        {"flame.fill", "peach", K::orResourceSpikes, K::orResourceSpikesDetail, false},
        {"thermometer.medium", "rose", K::restsWhenIdle, K::restsWhenIdleDetail, true},
        {"scissors", "pink", K::aiSaysCut, K::aiSaysCutDetail, false},
        {"checkmark.shield.fill", "sage", K::aiSaysKeep, K::aiSaysKeepDetail, true},
        {"lock.fill", "lav", K::onDeviceJudgment, K::onDeviceJudgmentDetail, false},
        {"hand.raised.fill", "gray", K::youAlwaysConfirm, K::youAlwaysConfirmDetail, false},
    };
    QVariantList list;
    for (const Item& item : items)
        list.append(QVariantMap{
            {QStringLiteral("symbol"), QString::fromLatin1(item.symbol)},
            {QStringLiteral("color"), QString::fromLatin1(item.color)},
            {QStringLiteral("title"), text(item.title, language)},
            {QStringLiteral("detail"), text(item.detail, language)},
            {QStringLiteral("groupEnd"), item.groupEnd},
        });
    return list;
}

} // namespace quelmo::cleanup_rules
