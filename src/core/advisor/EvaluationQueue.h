#pragma once

// The model's verdicts on the cleanup candidates: one evaluation in flight for the whole program,
// the rest waiting in order, verdicts cached by candidate key until the language changes. A key
// whose evaluation failed is not queued again for a while, longer after each failure in a row.

#include "core/advisor/AIAdvisor.h"
#include "core/advisor/AIVerdict.h"
#include "core/cleanup/CleanupCandidate.h"

#include <QHash>
#include <QList>
#include <QString>
#include <functional>
#include <memory>

namespace quelmo {

using AIVerdictMap = QHash<QString, AIVerdict>;

class EvaluationQueue {
public:
    // Asks `advisor`, which must outlive the queue. `verdictsChanged` runs after every assignment
    // of the verdict cache. `clock` times the pauses after failures.
    explicit EvaluationQueue(AIAdvisor& advisor, std::function<void()> verdictsChanged = {},
                             AIAdvisor::Clock clock = AIAdvisor::monotonicMs);
    ~EvaluationQueue();
    EvaluationQueue(const EvaluationQueue&) = delete;
    EvaluationQueue& operator=(const EvaluationQueue&) = delete;

    // Queues every candidate whose key has no verdict, is not waiting yet and is not pausing
    // after a failure, then pumps. Does nothing while the model cannot be used.
    void queueCandidates(const QList<CleanupCandidate>& candidates);
    // Starts the next evaluation unless one is running or the model is not known to be usable.
    // Also runs whenever the advisor has looked at the model again.
    void pump();
    // Forgets every verdict, every waiting entry and every pause; an evaluation under way is
    // left to finish.
    void clear();

    const AIVerdictMap& verdicts() const { return verdicts_; }
    const QList<AIQueueEntry>& entries() const { return entries_; }
    bool busy() const { return busy_; }

    // The pause after a key's first failure; it doubles with each further failure in a row, up
    // to the longest, and ends with a verdict or a change of language.
    static constexpr qint64 firstRetryDelayMs = 30 * 1000;
    static constexpr qint64 longestRetryDelayMs = 10 * 60 * 1000;

private:
    struct Pause {
        qint64 until = 0; // on the queue's clock
        qint64 length = 0;
    };

    void setVerdicts(AIVerdictMap verdicts);
    void finished(const QString& key, std::optional<AIVerdict> verdict);
    bool pausing(const QString& key, qint64 now) const;

    AIAdvisor& advisor_;
    std::function<void()> verdictsChanged_;
    AIAdvisor::Clock clock_;
    AIVerdictMap verdicts_;
    QList<AIQueueEntry> entries_;
    QHash<QString, Pause> pauses_; // by key, after failures
    bool busy_ = false;
    QMetaObject::Connection lookAnswered_;
    // Held weakly by the evaluation under way, whose answer finds no queue once it is gone.
    std::shared_ptr<EvaluationQueue*> self_ = std::make_shared<EvaluationQueue*>(this);
};

} // namespace quelmo
