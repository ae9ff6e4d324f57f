#include "core/advisor/AIAdvisor.h"

#include "core/advisor/AdvisorTexts.h"
#include "core/advisor/GenVerdict.h"
#include "core/texts/Texts.h"

#include <QTimer>
#include <algorithm>
#include <chrono>

namespace quelmo {

AIAdvisor::AIAdvisor(std::unique_ptr<LanguageModel> model, Clock clock, QObject* parent)
    : QObject(parent), model_(std::move(model)), clock_(std::move(clock)),
      availability_(model_->assumedAvailability()), lookTimer_(new QTimer(this)) {
    lookTimer_->setSingleShot(true);
    connect(lookTimer_, &QTimer::timeout, this, &AIAdvisor::refreshStatus);
    requestLook();
}

AIAdvisor::~AIAdvisor() = default;

qint64 AIAdvisor::monotonicMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

AIAdvisor::Status AIAdvisor::status() const {
    if (doubted() || !lookAnsweredAt_ || clock_() - *lookAnsweredAt_ >= refreshIntervalMs)
        requestLook();
    return statusFor(availability_, currentLanguage());
}

bool AIAdvisor::readyToEvaluate() const {
    return status().available && !doubted();
}

void AIAdvisor::requestLook() const {
    if (looking_)
        return; // its answer asks again if it is out of date by then
    const qint64 wait =
        lookStartedAt_
            ? std::clamp<qint64>(*lookStartedAt_ + minLookGapMs - clock_(), 0, minLookGapMs)
            : 0;
    // A timer already set for sooner stays; one set for later (by a clock that has moved on
    // since) is brought forward.
    if (lookTimer_->isActive() && lookTimer_->remainingTime() <= wait)
        return;
    lookTimer_->start(static_cast<int>(wait));
}

void AIAdvisor::refreshStatus() {
    if (looking_)
        return;
    looking_ = true;
    lookStartedAt_ = clock_();
    model_->probe([this, failuresBefore = failures_](ModelAvailability found) {
        looking_ = false;
        lookAnsweredAt_ = clock_();
        availability_ = found;
        failuresSeenByLook_ = failuresBefore;
        if (doubted()) // a request failed while this look was under way
            requestLook();
        emit statusRefreshed();
    });
}

AIAdvisor::Status AIAdvisor::statusFor(ModelAvailability availability, Language language) {
    switch (availability) {
    case ModelAvailability::available:
        return {true, {}};
    case ModelAvailability::deviceNotEligible:
        return {false, text(TextKey::modelNotSupported, language)};
    case ModelAvailability::appleIntelligenceNotEnabled:
        return {false, text(TextKey::modelTurnedOff, language)};
    case ModelAvailability::modelNotReady:
        return {false, text(TextKey::modelDownloading, language)};
    case ModelAvailability::otherReason:
        break;
    }
    return {false, text(TextKey::modelUnavailable, language)};
}

void AIAdvisor::evaluate(const AIQueueEntry& entry, Language language, Done done) {
    if (!status().available) {
        QTimer::singleShot(0, this, [done = std::move(done)] { done(std::nullopt); });
        return;
    }

    ModelRequest request;
    request.instructions = advisorInstructions(language);
    request.prompt = GenVerdict::promptWithSchema(buildPrompt(
        entry.name, entry.cpu, entry.rssMB, entry.reason, entry.idle, entry.hasWindow, language));
    request.format = GenVerdict::schemaText();
    model_->respond(request, [this, done = std::move(done)](std::optional<QString> answer) {
        std::optional<AIVerdict> verdict = answer ? verdictFromAnswer(*answer) : std::nullopt;
        if (!verdict) {
            // The runtime may have gone away or lost its model: not to be trusted again until
            // a new look says so.
            ++failures_;
            requestLook();
        }
        done(std::move(verdict));
    });
}

std::optional<AIVerdict> AIAdvisor::verdictFromAnswer(const QString& answer) const {
    const std::optional<GenVerdict> content = GenVerdict::fromJson(answer.toUtf8());
    if (!content)
        return std::nullopt;
    return AIVerdict{content->explanation, content->safeToQuit, normalizeRisk(content->risk),
                     normalizeRec(content->recommendation)};
}

QString AIAdvisor::normalizeRisk(const QString& s) {
    // Korean words are looked for in the text as it is, English words in its lower-cased form;
    // every danger and caution test comes before any safe test.
    const QString t = s.toLower();
    if (s.contains(QStringLiteral("위험")) || t.contains(QLatin1String("danger")))
        return QStringLiteral("위험");
    if (s.contains(QStringLiteral("주의")) || t.contains(QLatin1String("caution")) ||
        t.contains(QLatin1String("warn")))
        return QStringLiteral("주의");
    if (s.contains(QStringLiteral("안전")) || t.contains(QLatin1String("safe")))
        return QStringLiteral("안전");
    return QStringLiteral("주의");
}

QString AIAdvisor::normalizeRec(const QString& s) {
    // Every keep-side test comes before any cut-side test.
    const QString t = s.toLower();
    if (t.contains(QLatin1String("keep")) || s.contains(QStringLiteral("켜")) ||
        s.contains(QStringLiteral("유지")) || s.contains(QStringLiteral("둘")))
        return QStringLiteral("keep");
    if (t.contains(QLatin1String("cut")) || s.contains(QStringLiteral("닫")) ||
        s.contains(QStringLiteral("자르")))
        return QStringLiteral("cut");
    return QStringLiteral("keep");
}

} // namespace quelmo
