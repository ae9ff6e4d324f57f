#pragma once

// The program's only client of the local language model: whether it can be used right now, and
// its judgement of one cleanup candidate.

#include "core/advisor/AIVerdict.h"
#include "core/advisor/LanguageModel.h"

#include <QElapsedTimer>
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

    explicit AIAdvisor(std::unique_ptr<LanguageModel> model, QObject* parent = nullptr);
    ~AIAdvisor() override;

    // The availability found by the last look at the model, with its reason text chosen in the
    // effective language at this call. Never waits: the look itself happens in the background,
    // once at construction and again after a failed evaluation or when a read finds it older
    // than `refreshIntervalMs`, so nothing is polled while nobody asks. Until the first look
    // has answered, this is the model's guess: not installed, or "Unavailable".
    Status status() const;

    // Asks the model about one candidate, in Korean when `korean` is true, else in English.
    // `done` receives the verdict, or nothing when the model is unavailable or anything in the
    // call fails. It is called exactly once, always later from the event loop, never from inside
    // this call; not at all if the advisor is destroyed first. Each call is a fresh request that
    // knows nothing of any earlier one.
    void evaluate(const AIQueueEntry& entry, bool korean, Done done);

    // The model's free text mapped to "위험", "주의" or "안전"; unknown text gives "주의".
    static QString normalizeRisk(const QString& s);
    // The model's free text mapped to "cut" or "keep"; unknown text gives "keep".
    static QString normalizeRec(const QString& s);

    // The availability reason texts, in Korean or English.
    static Status statusFor(ModelAvailability availability, bool korean);

    static constexpr qint64 refreshIntervalMs = 30000;

signals:
    // A look at the model has answered; `status()` may or may not have changed.
    void statusRefreshed();

private:
    void refreshStatus();
    std::optional<AIVerdict> verdictFromAnswer(const QString& answer) const;

    std::unique_ptr<LanguageModel> model_;
    ModelAvailability availability_ = ModelAvailability::otherReason;
    QElapsedTimer lookedAt_; // invalid until a look has answered, and after a failed evaluation
    bool looking_ = false;
    QTimer* lookSoon_; // zero-delay, single-shot: starts a look from the event loop
};

} // namespace quelmo
