#include "core/advisor/AIAdvisor.h"

#include "core/advisor/AdvisorTexts.h"
#include "core/advisor/GenVerdict.h"
#include "core/settings/AppLang.h"

#include <QTimer>

namespace quelmo {

AIAdvisor::AIAdvisor(std::unique_ptr<LanguageModel> model, QObject* parent)
    : QObject(parent), model_(std::move(model)), availability_(model_->assumedAvailability()),
      lookSoon_(new QTimer(this)) {
    lookSoon_->setSingleShot(true);
    lookSoon_->setInterval(0);
    connect(lookSoon_, &QTimer::timeout, this, &AIAdvisor::refreshStatus);
    lookSoon_->start();
}

AIAdvisor::~AIAdvisor() = default;

AIAdvisor::Status AIAdvisor::status() const {
    if (!looking_ && !lookSoon_->isActive() &&
        (!lookedAt_.isValid() || lookedAt_.hasExpired(refreshIntervalMs)))
        lookSoon_->start();
    return statusFor(availability_, AppLang::effective() == QLatin1String("ko"));
}

void AIAdvisor::refreshStatus() {
    if (looking_)
        return;
    looking_ = true;
    model_->probe([this](ModelAvailability found) {
        looking_ = false;
        lookedAt_.start();
        availability_ = found;
        emit statusRefreshed();
    });
}

AIAdvisor::Status AIAdvisor::statusFor(ModelAvailability availability, bool korean) {
    switch (availability) {
    case ModelAvailability::available:
        return {true, {}};
    case ModelAvailability::deviceNotEligible:
        return {false, korean ? QStringLiteral("이 기기는 Apple Intelligence 미지원")
                              : QStringLiteral("Apple Intelligence not supported on this Mac")};
    case ModelAvailability::appleIntelligenceNotEnabled:
        return {false, korean ? QStringLiteral("Apple Intelligence가 꺼져 있음")
                              : QStringLiteral("Apple Intelligence is turned off")};
    case ModelAvailability::modelNotReady:
        return {false, korean ? QStringLiteral("모델 다운로드 중")
                              : QStringLiteral("Model is downloading")};
    case ModelAvailability::otherReason:
        break;
    }
    return {false, korean ? QStringLiteral("사용 불가") : QStringLiteral("Unavailable")};
}

void AIAdvisor::evaluate(const AIQueueEntry& entry, bool korean, Done done) {
    if (!status().available) {
        QTimer::singleShot(0, this, [done = std::move(done)] { done(std::nullopt); });
        return;
    }

    ModelRequest request;
    request.instructions = advisorInstructions(korean);
    request.prompt = GenVerdict::promptWithSchema(buildPrompt(
        entry.name, entry.cpu, entry.rssMB, entry.reason, entry.idle, entry.hasWindow, korean));
    request.format = GenVerdict::schemaText();
    model_->respond(request, [this, done = std::move(done)](std::optional<QString> answer) {
        std::optional<AIVerdict> verdict = answer ? verdictFromAnswer(*answer) : std::nullopt;
        if (!verdict)
            lookedAt_.invalidate(); // the runtime may have gone away: look again at the next read
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
