#pragma once

#include "app/popover/CleanupRules.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// The cleanup candidates as the card shows them, one row per process. A row keeps its identity
// (its pid) across updates: rows that stay are changed in place or moved, new ones are inserted
// and gone ones removed, so the view's insert and remove transitions play for those alone. The
// row texts are produced in the language given with each update.
class CandidateListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(int cutTargetCount READ cutTargetCount NOTIFY cutTargetCountChanged)

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
        RiskColorRole,
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
    // The process of a row, for the cut.
    std::optional<ProcInfo> procOf(qint64 pid) const;
    // The processes "Cut all" takes, in list order.
    Q_INVOKABLE QVariantList cutTargetPids() const;

signals:
    void countChanged();
    void cutTargetCountChanged();

private:
    struct Row {
        CleanupCandidate candidate;
        std::optional<AIVerdict> verdict;
        Language language = Language::english;
        bool operator==(const Row&) const;
    };
    qsizetype indexOf(qint64 pid, qsizetype from) const;

    QList<Row> rows_;
};

} // namespace quelmo
