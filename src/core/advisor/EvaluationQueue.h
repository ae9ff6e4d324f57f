#pragma once

// The model's verdicts on the cleanup candidates: one evaluation in flight for the whole program,
// the rest waiting in order, verdicts cached by candidate key until the language changes.

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
    // of the verdict cache.
    explicit EvaluationQueue(AIAdvisor& advisor, std::function<void()> verdictsChanged = {});
    EvaluationQueue(const EvaluationQueue&) = delete;
    EvaluationQueue& operator=(const EvaluationQueue&) = delete;

    // Queues every candidate whose key has no verdict and is not waiting yet, then pumps. Does
    // nothing while the model cannot be used.
    void queueCandidates(const QList<CleanupCandidate>& candidates);
    // Starts the next evaluation unless one is running or the model cannot be used.
    void pump();
    // Forgets every verdict and every waiting entry; an evaluation under way is left to finish.
    void clear();

    const AIVerdictMap& verdicts() const { return verdicts_; }
    const QList<AIQueueEntry>& entries() const { return entries_; }
    bool busy() const { return busy_; }

private:
    void setVerdicts(AIVerdictMap verdicts);

    AIAdvisor& advisor_;
    std::function<void()> verdictsChanged_;
    AIVerdictMap verdicts_;
    QList<AIQueueEntry> entries_;
    bool busy_ = false;
    // Held weakly by the evaluation under way, whose answer finds no queue once it is gone.
    std::shared_ptr<EvaluationQueue*> self_ = std::make_shared<EvaluationQueue*>(this);
};

} // namespace quelmo
