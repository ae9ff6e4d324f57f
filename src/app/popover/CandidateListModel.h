#pragma once

#include "app/popover/CleanupRules.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// The cleanup candidates as the card shows them, one row per process, with the card's answers
// about them: which rows the advisor would keep, which ones "Cut all" takes and whether it is
// offered. A row keeps its identity (its pid) across updates (see KeyedUpdate), so the view's
// insert and remove transitions play for the rows that came or went alone. The row texts are
// produced in the language given with each update.
class CandidateListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int cutTargetCount READ cutTargetCount NOTIFY cutTargetCountChanged)
    Q_PROPERTY(bool cutAllOffered READ cutAllOffered NOTIFY cutTargetCountChanged)

public:
    enum Role {
        PidRole = Qt::UserRole + 1,
        NameRole,        // process name
        TitleRole,       // display name, else process name
        ReasonRole,      // raw value: spike, sustained, ramHog, idleApp
        ReasonLabelRole, // in the row's language
        ReasonSymbolRole,
        ReasonColorRole, // palette colour name
        RssRole,         // bytes
        IdleDetailRole,  // possibly empty
        HasWindowRole,
        HasVerdictRole,
        IsKeepRole,
        StatusColorRole, // palette colour name
        RiskLabelRole,
        BadgeColorRole, // the verdict badge's palette colour: Keep's, else the risk's
        ExplanationRole,
    };

    explicit CandidateListModel(QObject* parent = nullptr);

    void update(const QList<CleanupCandidate>& candidates, const cleanup_rules::Verdicts& verdicts,
                Language language);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    int count() const { return static_cast<int>(rows_.size()); }
    int cutTargetCount() const;
    bool cutAllOffered() const;
    // The process of a row, for the cut.
    std::optional<ProcInfo> procOf(qint64 pid) const;
    // The processes "Cut all" takes, in list order.
    QList<qint64> cutTargetPids() const;

signals:
    void countChanged();
    void cutTargetCountChanged();

private:
    friend struct KeyedUpdate;
    struct Row {
        CleanupCandidate candidate;
        std::optional<AIVerdict> verdict;
        Language language = Language::english;
    };
    static QVariant valueOf(const Row& row, int role);

    QList<Row> rows_;
};

} // namespace quelmo
