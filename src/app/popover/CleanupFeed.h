#pragma once

#include "app/popover/CandidateListModel.h"
#include "app/popover/CutSequence.h"
#include "core/advisor/AIAdvisor.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

class SystemMetrics;

// Everything the cleanup card shows, in the shape its views bind to: the candidate rows, the
// advisor's status, the sensitivity and the cut sequence; the rows' and the footer's texts in the
// current language. Fed from the hub in the program, or from a state file by the preview.
class CleanupFeed : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    Q_PROPERTY(quelmo::CandidateListModel* candidates READ candidates CONSTANT)
    Q_PROPERTY(quelmo::CutSequence* cut READ cut CONSTANT)
    Q_PROPERTY(bool advisorAvailable READ advisorAvailable NOTIFY advisorChanged)
    Q_PROPERTY(QString footerText READ footerText NOTIFY advisorChanged)
    Q_PROPERTY(double sensitivity READ sensitivity WRITE setSensitivity NOTIFY sensitivityChanged)

public:
    // Without a hub: the preview sets everything itself; cuts go to `terminate`.
    explicit CleanupFeed(CutSequence::Terminate terminate, QObject* parent = nullptr);
    // Follows the hub: its candidates and verdicts, its advisor, its sensitivity; cuts call the
    // hub's terminate.
    explicit CleanupFeed(SystemMetrics& hub, QObject* parent = nullptr);

    CandidateListModel* candidates() { return &candidates_; }
    CutSequence* cut() { return &cut_; }
    bool advisorAvailable() const { return live_.available; }
    QString footerText() const;
    double sensitivity() const { return sensitivity_; }
    void setSensitivity(double value);
    Language language() const { return language_; }

    // The preview's (and the hub connection's) inputs.
    void setCandidates(const QList<CleanupCandidate>& candidates,
                       const cleanup_rules::Verdicts& verdicts);
    void setAdvisorStatus(const AIAdvisor::Status& live, const AIAdvisor::Status& captured);

    // Takes the interface language afresh (it is also looked at on every candidate update).
    Q_INVOKABLE void refreshLanguage();
    // "Cut all": every row the advisor would not keep, as the rows show them now; the mascot
    // stays in its lane.
    Q_INVOKABLE void cutAll();

signals:
    void advisorChanged();
    void sensitivityChanged();

private:
    void pullFromHub();
    // A cut takes each process as its row shows it at the press.
    CutSequence::Identify rowIdentity() const;

    QPointer<SystemMetrics> hub_;
    CandidateListModel candidates_;
    CutSequence cut_;
    QList<CleanupCandidate> lastCandidates_;
    cleanup_rules::Verdicts lastVerdicts_;
    AIAdvisor::Status live_;
    AIAdvisor::Status captured_;
    double sensitivity_ = 0.5;
    Language language_ = Language::english;
};

} // namespace quelmo
