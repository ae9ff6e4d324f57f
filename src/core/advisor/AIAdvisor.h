#pragma once

// The program's only client of the local language model: whether it can be used right now, and
// its judgement of one cleanup candidate.

#include "core/advisor/AIVerdict.h"
#include "core/advisor/LanguageModel.h"
#include "core/texts/Language.h"

#include <QList>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

class QTimer;

namespace quelmo {

class AIAdvisor : public QObject {
    Q_OBJECT

public:
    // Either available, or unavailable with a reason ready to show, in the user's language.
    struct Status {
        bool available = false;
        QString reason; // empty when available

        bool operator==(const Status&) const = default;
    };

    using Done = std::function<void(std::optional<AIVerdict>)>;
    using Clock = std::function<qint64()>; // milliseconds on a monotonic clock

    explicit AIAdvisor(std::unique_ptr<LanguageModel> model, Clock clock = monotonicMs,
                       QObject* parent = nullptr);
    ~AIAdvisor() override;

    // The availability found by the last look at the model, with its reason text chosen in the
    // effective language at this call. Never waits: the look itself happens in the background,
    // once at construction and again after a failed evaluation or when a read finds it older
    // than `refreshIntervalMs`, so nothing is polled while nobody asks. Looks start at most once
    // every `minLookGapMs`. Until the first look has answered, this is the model's guess: not
    // installed, or "Unavailable".
    Status status() const;

    // Whether an evaluation should start now: the last look found the model available and no
    // request has failed since that look started. After a failure this stays false until a new
    // look has answered, which it asks for.
    bool readyToEvaluate() const;

    // Asks the model about one candidate, in the given language.
    // `done` receives the verdict, or nothing when the model is unavailable or anything in the
    // call fails. It is called exactly once, always later from the event loop, never from inside
    // this call; not at all if the advisor is destroyed first. Each call is a fresh request that
    // knows nothing of any earlier one.
    void evaluate(const AIQueueEntry& entry, Language language, Done done);

    // The model's free text mapped to "위험", "주의" or "안전"; unknown text gives "주의".
    static QString normalizeRisk(const QString& s);
    // The model's free text mapped to "cut" or "keep"; unknown text gives "keep".
    static QString normalizeRec(const QString& s);

    // The availability with its reason text in the given language.
    static Status statusFor(ModelAvailability availability, Language language);

    static qint64 monotonicMs();

    static constexpr qint64 refreshIntervalMs = 30000;
    static constexpr qint64 minLookGapMs = 5000;

signals:
    // A look at the model has answered; `status()` may or may not have changed.
    void statusRefreshed();

private:
    // Starts a look from the event loop, as soon as the gap since the last one allows.
    void requestLook() const;
    void refreshStatus();
    bool doubted() const { return failures_ != failuresSeenByLook_; }
    std::optional<AIVerdict> verdictFromAnswer(const QString& answer) const;

    std::unique_ptr<LanguageModel> model_;
    Clock clock_;
    ModelAvailability availability_ = ModelAvailability::otherReason;
    std::optional<qint64> lookStartedAt_;
    std::optional<qint64> lookAnsweredAt_;
    bool looking_ = false;
    // Failed requests so far, and how many of them the last answered look had seen start.
    quint64 failures_ = 0;
    quint64 failuresSeenByLook_ = 0;
    QTimer* lookTimer_; // single-shot
};

} // namespace quelmo
