#include "app/popover/CleanupRules.h"

#include <cmath>
#include <numbers>

namespace quelmo::cleanup_rules {

namespace {

QString pick(bool korean, const char* ko, const char* en) {
    return QString::fromUtf8(korean ? ko : en);
}

const QString riskSafe = QStringLiteral("안전");
const QString riskDanger = QStringLiteral("위험");
const QString riskCaution = QStringLiteral("주의");

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
    if (verdict->risk == riskDanger)
        return QStringLiteral("rose");
    if (verdict->risk == riskCaution)
        return QStringLiteral("peach");
    return QStringLiteral("sage");
}

QString riskColor(const QString& risk) {
    if (risk == riskSafe)
        return QStringLiteral("sage");
    if (risk == riskDanger)
        return QStringLiteral("rose");
    return QStringLiteral("peach");
}

QString badgeColor(const std::optional<AIVerdict>& verdict) {
    if (isKeep(verdict))
        return QStringLiteral("sage");
    return riskColor(verdict ? verdict->risk : QString());
}

QString riskLabel(const QString& risk, bool korean) {
    if (risk == riskSafe)
        return pick(korean, "안전", "Safe");
    if (risk == riskDanger)
        return pick(korean, "위험", "Danger");
    return pick(korean, "주의", "Caution");
}

namespace {

// How each reason's chip looks: its symbol and its palette colour.
struct ReasonLook {
    CleanupReason reason;
    const char* symbol;
    const char* color;
};
constexpr ReasonLook reasonLooks[] = {
    {CleanupReason::spike, "exclamationmark.triangle.fill", "peach"},
    {CleanupReason::sustained, "flame.fill", "rose"},
    {CleanupReason::ramHog, "memorychip.fill", "sage"},
    {CleanupReason::idleApp, "moon.zzz.fill", "lav"},
};

const ReasonLook* lookOf(CleanupReason reason) {
    for (const ReasonLook& look : reasonLooks)
        if (look.reason == reason)
            return &look;
    return nullptr;
}

} // namespace

QString reasonColor(CleanupReason reason) {
    const ReasonLook* look = lookOf(reason);
    return QLatin1String(look ? look->color : "gray");
}

QString reasonSymbol(CleanupReason reason) {
    const ReasonLook* look = lookOf(reason);
    return look ? QLatin1String(look->symbol) : QString();
}

QString idleText(double minutes, bool korean) {
    if (minutes < 60) {
        const auto n = std::max<qint64>(static_cast<qint64>(std::trunc(minutes)), 1);
        return QString::number(n) + pick(korean, "분 전", "m ago");
    }
    const auto hours = static_cast<qint64>(std::trunc(minutes / 60));
    const auto rest = static_cast<qint64>(std::trunc(std::fmod(minutes, 60.0)));
    if (rest == 0)
        return QString::number(hours) + pick(korean, "시간 전", "h ago");
    return QString::number(hours) + pick(korean, "시간 ", "h ") + QString::number(rest) +
           pick(korean, "분 전", "m ago");
}

QString idleDetail(const CleanupCandidate& c, bool korean) {
    if (c.idleMinutes) {
        QString line =
            pick(korean, "마지막 사용 ", "Last used ") + idleText(*c.idleMinutes, korean);
        if (!c.hasWindow)
            line += pick(korean, " · 창 없음", " · no window");
        return line;
    }
    if (c.reason == CleanupReason::idleApp)
        return pick(korean, "이번 세션에 안 띄움 · 창 없음", "Not opened this session · no window");
    return {};
}

QString footerText(const AIAdvisor::Status& live, const AIAdvisor::Status& captured, bool korean) {
    if (live.available)
        return pick(korean, "Apple Intelligence · 온디바이스 분석",
                    "Apple Intelligence · on-device");
    if (!captured.available && !captured.reason.isEmpty())
        return pick(korean, "AI 설명 꺼짐 — ", "AI notes off — ") + captured.reason;
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

QVariantMap texts(bool korean) {
    const auto t = [korean](const char* ko, const char* en) { return pick(korean, ko, en); };
    return {
        {QStringLiteral("cutPick"), t("Cut 추천", "Cut pick")},
        {QStringLiteral("cutAll"), t("모두 Cut", "Cut all")},
        {QStringLiteral("cut"), QStringLiteral("Cut")},
        {QStringLiteral("keep"), t("유지", "Keep")},
        {QStringLiteral("cutKeptTip"),
         t("AI는 유지 권장 — 그래도 자르려면 클릭", "AI suggests keeping — click to cut anyway")},
        {QStringLiteral("cutNowTip"), t("바로 자르기", "Cut now")},
        {QStringLiteral("nothingToClean"),
         t("정리할 게 없어요. 평소보다 과하게 자원 먹거나 켜둔 채 안 쓰는 앱이 없습니다.",
           "Nothing to clean up. No app is hogging resources or left running unused.")},
        {QStringLiteral("judgedByAI"),
         t("Apple Intelligence가 판단", "Judged by Apple Intelligence")},
        {QStringLiteral("aiNotesOff"), t("AI 설명 꺼짐", "AI notes off")},
        {QStringLiteral("onDevice"), t("온디바이스", "On-device")},
        {QStringLiteral("seeHowItDecides"), t("판단 기준 보기", "See how it decides")},
        {QStringLiteral("criteriaTitle"),
         t("어떻게 '안 쓰는 것'만 고르나", "How it picks only the unused")},
        {QStringLiteral("thinking"),
         t("Apple Intelligence 판단 중…", "Apple Intelligence is thinking…")},
        {QStringLiteral("sensitivity"), t("민감도", "Sensitivity")},
        {QStringLiteral("lax"), t("관대", "Lax")},
        {QStringLiteral("keen"), t("민감", "Keen")},
    };
}

QVariantList criteriaItems(bool korean) {
    struct Item {
        const char* symbol;
        const char* color;
        const char* titleKo;
        const char* titleEn;
        const char* detailKo;
        const char* detailEn;
        bool groupEnd;
    };
    static constexpr Item items[] = {
        {"hand.raised.fill", "sage", "지금 쓰는 건 안 건드려요", "Never touches what you're using",
         "화면에 창이 떠 있거나 · 방금 본 앱 · 지금 CPU 쓰는 앱은 자원을 많이 써도 Cut 후보에서 "
         "빼요",
         "Apps with a visible window · just used · using CPU now are excluded, even if heavy",
         false},
        {"eye.slash.fill", "blue", "안 본 지 오래됨", "Idle for a while",
         "마지막으로 띄운 지 오래(민감도에 따라 10~60분)",
         "Not opened in a while (10–60 min by sensitivity)", false},
        {"macwindow", "blue", "보이는 창 없음", "No visible window",
         "창이 다 내려가 화면에 안 보이는 상태", "All windows hidden, nothing on screen", false},
        {"flame.fill", "peach", "또는 자원 폭주", "Or resource spikes",
         "평소보다 비정상 급등·장시간 과점유·메모리 과다",
         "Abnormal spike · sustained hog · high memory", false},
        {"thermometer.medium", "rose", "한가할 땐 쉬어요", "Rests when idle",
         "맥이 쾌적하면 AI·NPU 안 돌려 배터리 아낌. 더워지거나 무거워질 때만 깨어나 정리",
         "When your Mac is comfy, AI/NPU rest to save battery; wake only when it heats up or "
         "slows",
         true},
        {"scissors", "pink", "AI가 'cut'", "AI says 'cut'",
         "잊고 켜둔 일반 앱·끝난 작업 → 닫아도 됨",
         "Forgotten apps · finished tasks → safe to close", false},
        {"checkmark.shield.fill", "sage", "AI가 'keep'", "AI says 'keep'",
         "음악·동기화·백업·메신저·작업 중·방금 본 것 → 유지(기본 제외)",
         "Music · sync · backup · messengers · in use · just seen → keep (excluded)", true},
        {"lock.fill", "lav", "온디바이스 판단", "On-device judgment",
         "Apple Intelligence가 기기 안에서만, 데이터는 안 나감",
         "Apple Intelligence stays on your Mac — no data leaves", false},
        {"hand.raised.fill", "gray", "항상 사람이 확정", "You always confirm",
         "시스템·현재 쓰는 앱·Quelmo은 제외 / 종료는 Cut 눌러야 실행",
         "System · in-use apps · Quelmo itself excluded / nothing quits until you tap Cut", false},
    };
    QVariantList list;
    for (const Item& item : items)
        list.append(QVariantMap{
            {QStringLiteral("symbol"), QString::fromLatin1(item.symbol)},
            {QStringLiteral("color"), QString::fromLatin1(item.color)},
            {QStringLiteral("title"), pick(korean, item.titleKo, item.titleEn)},
            {QStringLiteral("detail"), pick(korean, item.detailKo, item.detailEn)},
            {QStringLiteral("groupEnd"), item.groupEnd},
        });
    return list;
}

} // namespace quelmo::cleanup_rules
