#include "app/popover/CleanupFeed.h"

#include "core/metrics/SystemMetrics.h"

namespace quelmo {

CutSequence::Identify CleanupFeed::rowIdentity() const {
    return [this](qint64 pid) {
        const std::optional<ProcInfo> row = candidates_.procOf(pid);
        return ProcessIdentity{pid, row ? row->startTime : std::nullopt};
    };
}

CleanupFeed::CleanupFeed(CutSequence::Terminate terminate, QObject* parent)
    : QObject(parent), candidates_(this), cut_(std::move(terminate), rowIdentity(), {}, this),
      language_(currentLanguage()) {}

CleanupFeed::CleanupFeed(SystemMetrics& hub, QObject* parent)
    : QObject(parent), hub_(&hub), candidates_(this),
      cut_(
          [hub = QPointer<SystemMetrics>(&hub)](const QList<ProcessIdentity>& targets) {
              hub ? void(hub->terminate(targets)) : void();
          },
          rowIdentity(), {}, this),
      captured_(hub.aiStatus()), sensitivity_(hub.sensitivity()), language_(currentLanguage()) {
    connect(&hub, &SystemMetrics::cleanupCandidatesChanged, this, &CleanupFeed::pullFromHub);
    connect(&hub, &SystemMetrics::aiVerdictsChanged, this, &CleanupFeed::pullFromHub);
    connect(&hub, &SystemMetrics::sensitivityChanged, this, [this] {
        if (hub_ && hub_->sensitivity() != sensitivity_) {
            sensitivity_ = hub_->sensitivity();
            emit sensitivityChanged();
        }
    });
    if (const AIAdvisor* advisor = hub.advisor())
        connect(advisor, &AIAdvisor::statusRefreshed, this, &CleanupFeed::pullFromHub);
    pullFromHub();
}

void CleanupFeed::pullFromHub() {
    if (!hub_)
        return;
    // The advisor's status is asked afresh whenever the card changes.
    if (const AIAdvisor* advisor = hub_->advisor())
        setAdvisorStatus(advisor->status(), hub_->aiStatus());
    setCandidates(hub_->cleanupCandidates(), hub_->aiVerdicts());
}

QString CleanupFeed::footerText() const {
    return cleanup_rules::footerText(live_, captured_, language_);
}

void CleanupFeed::setSensitivity(double value) {
    if (value == sensitivity_)
        return;
    sensitivity_ = value;
    if (hub_)
        hub_->setSensitivity(value);
    emit sensitivityChanged();
}

void CleanupFeed::setCandidates(const QList<CleanupCandidate>& candidates,
                                const cleanup_rules::Verdicts& verdicts) {
    lastCandidates_ = candidates;
    lastVerdicts_ = verdicts;
    const Language language = currentLanguage();
    if (language != language_) {
        language_ = language;
        emit advisorChanged(); // the footer's words
    }
    candidates_.update(candidates, verdicts, language_);
}

void CleanupFeed::setAdvisorStatus(const AIAdvisor::Status& live,
                                   const AIAdvisor::Status& captured) {
    if (live == live_ && captured == captured_)
        return;
    live_ = live;
    captured_ = captured;
    emit advisorChanged();
}

void CleanupFeed::cutAll() {
    const CutSequence::Identify identify = rowIdentity();
    QList<ProcessIdentity> targets;
    for (const qint64 pid : candidates_.cutTargetPids())
        targets.append(identify(pid));
    cut_.executeCut(targets, std::nullopt, {});
}

void CleanupFeed::refreshLanguage() {
    if (hub_)
        pullFromHub();
    else
        setCandidates(lastCandidates_, lastVerdicts_);
}

} // namespace quelmo
