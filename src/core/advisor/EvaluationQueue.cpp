#include "core/advisor/EvaluationQueue.h"

#include "core/settings/AppLang.h"

#include <algorithm>

namespace quelmo {

namespace {

AIQueueEntry queueEntry(const CleanupCandidate& candidate) {
    AIQueueEntry entry;
    entry.name = candidate.key();
    entry.cpu = candidate.proc.cpu;
    entry.rssMB = candidate.proc.rssMB();
    entry.reason = label(candidate.reason); // in the language of this moment
    entry.idle = candidate.idleMinutes;
    entry.hasWindow = candidate.hasWindow;
    return entry;
}

} // namespace

EvaluationQueue::EvaluationQueue(AIAdvisor& advisor, std::function<void()> verdictsChanged)
    : advisor_(advisor), verdictsChanged_(std::move(verdictsChanged)) {}

void EvaluationQueue::queueCandidates(const QList<CleanupCandidate>& candidates) {
    if (!advisor_.status().available)
        return;
    for (const CleanupCandidate& candidate : candidates) {
        const QString key = candidate.key();
        if (verdicts_.contains(key))
            continue;
        if (std::any_of(entries_.cbegin(), entries_.cend(),
                        [&](const AIQueueEntry& queued) { return queued.name == key; }))
            continue;
        entries_.append(queueEntry(candidate));
    }
    pump();
}

void EvaluationQueue::pump() {
    if (!advisor_.status().available)
        return;
    if (busy_)
        return;
    if (entries_.isEmpty())
        return;
    busy_ = true;
    const AIQueueEntry entry = entries_.takeFirst();

    // The language is the one in effect as the evaluation starts. The answer comes back through
    // the event loop on this thread.
    const bool korean = AppLang::effective() == QLatin1String("ko");
    std::weak_ptr<EvaluationQueue*> self = self_;
    advisor_.evaluate(entry, korean, [self, name = entry.name](std::optional<AIVerdict> verdict) {
        const std::shared_ptr<EvaluationQueue*> alive = self.lock();
        if (!alive)
            return;
        EvaluationQueue& queue = **alive;
        if (verdict) {
            AIVerdictMap verdicts = queue.verdicts_;
            verdicts.insert(name, *verdict);
            queue.setVerdicts(std::move(verdicts));
        }
        queue.busy_ = false;
        queue.pump();
    });
}

void EvaluationQueue::clear() {
    // An evaluation already running is left to finish: its verdict, in the old language, lands
    // in the emptied cache and is replaced once its key has been asked again.
    setVerdicts({});
    entries_.clear();
}

void EvaluationQueue::setVerdicts(AIVerdictMap verdicts) {
    verdicts_ = std::move(verdicts);
    if (verdictsChanged_)
        verdictsChanged_();
}

} // namespace quelmo
