#include "core/advisor/EvaluationQueue.h"

#include "core/texts/Language.h"

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

EvaluationQueue::EvaluationQueue(AIAdvisor& advisor, std::function<void()> verdictsChanged,
                                 AIAdvisor::Clock clock)
    : advisor_(advisor), verdictsChanged_(std::move(verdictsChanged)), clock_(std::move(clock)) {
    // Entries held back while the model was in doubt go on once a look finds it usable.
    lookAnswered_ =
        QObject::connect(&advisor_, &AIAdvisor::statusRefreshed, &advisor_, [this] { pump(); });
}

EvaluationQueue::~EvaluationQueue() {
    QObject::disconnect(lookAnswered_);
}

void EvaluationQueue::queueCandidates(const QList<CleanupCandidate>& candidates) {
    if (!advisor_.status().available)
        return;
    const qint64 now = clock_();
    for (const CleanupCandidate& candidate : candidates) {
        const QString key = candidate.key();
        if (verdicts_.contains(key) || pausing(key, now))
            continue;
        if (std::any_of(entries_.cbegin(), entries_.cend(),
                        [&](const AIQueueEntry& queued) { return queued.name == key; }))
            continue;
        entries_.append(queueEntry(candidate));
    }
    pump();
}

void EvaluationQueue::pump() {
    if (!advisor_.readyToEvaluate())
        return;
    if (busy_)
        return;
    if (entries_.isEmpty())
        return;
    busy_ = true;
    const AIQueueEntry entry = entries_.takeFirst();

    // The language is the one in effect as the evaluation starts. The answer comes back through
    // the event loop on this thread.
    std::weak_ptr<EvaluationQueue*> self = self_;
    advisor_.evaluate(entry, currentLanguage(),
                      [self, name = entry.name](std::optional<AIVerdict> verdict) {
                          const std::shared_ptr<EvaluationQueue*> alive = self.lock();
                          if (!alive)
                              return;
                          (*alive)->finished(name, std::move(verdict));
                      });
}

void EvaluationQueue::finished(const QString& key, std::optional<AIVerdict> verdict) {
    if (verdict) {
        pauses_.remove(key);
        AIVerdictMap verdicts = verdicts_;
        verdicts.insert(key, *verdict);
        setVerdicts(std::move(verdicts));
    } else {
        const qint64 now = clock_();
        const auto last = pauses_.constFind(key);
        const qint64 length = last == pauses_.cend()
                                  ? firstRetryDelayMs
                                  : std::min(last->length * 2, longestRetryDelayMs);
        pauses_.insert(key, {now + length, length});
        // A key queued again while it was being asked waits out its pause as well.
        entries_.removeIf([&](const AIQueueEntry& queued) { return queued.name == key; });
        // Failure runs long over are forgotten, so the table holds only keys failing lately.
        pauses_.removeIf([now](QHash<QString, Pause>::iterator pause) {
            return pause->until + longestRetryDelayMs < now;
        });
    }
    busy_ = false;
    pump();
}

bool EvaluationQueue::pausing(const QString& key, qint64 now) const {
    const auto pause = pauses_.constFind(key);
    return pause != pauses_.cend() && now < pause->until;
}

void EvaluationQueue::clear() {
    // An evaluation already running is left to finish: its verdict, in the old language, lands
    // in the emptied cache and is replaced once its key has been asked again.
    setVerdicts({});
    entries_.clear();
    pauses_.clear();
}

void EvaluationQueue::setVerdicts(AIVerdictMap verdicts) {
    verdicts_ = std::move(verdicts);
    if (verdictsChanged_)
        verdictsChanged_();
}

} // namespace quelmo
