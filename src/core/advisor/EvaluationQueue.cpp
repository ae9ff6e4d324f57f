// The hub's model queue: one evaluation in flight for the whole program, verdicts cached by
// candidate key until the language changes.
#include "core/metrics/SystemMetrics.h"
#include "core/settings/AppLang.h"

#include <algorithm>

namespace quelmo {

namespace {

constexpr double bytesToMebibytes = 9.5367431640625e-7; // 2^-20

AIQueueEntry queueEntry(const CleanupCandidate& candidate) {
    AIQueueEntry entry;
    entry.name = candidate.key();
    entry.cpu = candidate.proc.cpu;
    entry.rssMB = candidate.proc.rss * bytesToMebibytes;
    entry.reason = label(candidate.reason); // in the language of this moment
    entry.idle = candidate.idleMinutes;
    entry.hasWindow = candidate.hasWindow;
    return entry;
}

} // namespace

void SystemMetrics::queueAIEvaluations() {
    if (!advisor_->status().available)
        return;
    for (const CleanupCandidate& candidate : std::as_const(cleanupCandidates_)) {
        const QString key = candidate.key();
        if (aiVerdicts_.contains(key))
            continue;
        if (std::any_of(aiQueue_.cbegin(), aiQueue_.cend(),
                        [&](const AIQueueEntry& queued) { return queued.name == key; }))
            continue;
        aiQueue_.append(queueEntry(candidate));
    }
    pumpAI();
}

void SystemMetrics::pumpAI() {
    if (!advisor_->status().available)
        return;
    if (aiBusy_)
        return;
    if (aiQueue_.isEmpty())
        return;
    aiBusy_ = true;
    const AIQueueEntry entry = aiQueue_.takeFirst();

    // The language is the one in effect as the evaluation starts. The answer comes back through
    // the event loop on this thread; the advisor is the hub's child, so if the hub is gone by
    // then, so is the request, and nothing here runs.
    const bool korean = AppLang::effective() == QLatin1String("ko");
    advisor_->evaluate(entry, korean, [this, name = entry.name](std::optional<AIVerdict> verdict) {
        if (verdict) {
            AIVerdictMap verdicts = aiVerdicts_;
            verdicts.insert(name, *verdict);
            setAIVerdicts(std::move(verdicts));
        }
        aiBusy_ = false;
        pumpAI();
    });
}

void SystemMetrics::reevaluateAI() {
    // An evaluation already running is left to finish: its verdict, in the old language, lands
    // in the emptied cache and is replaced once its key has been asked again.
    setAIVerdicts({});
    aiQueue_.clear();
    if (pollProcesses_)
        queueAIEvaluations();
}

} // namespace quelmo
