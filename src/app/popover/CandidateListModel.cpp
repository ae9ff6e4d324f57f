#include "app/popover/CandidateListModel.h"

#include "app/popover/KeyedUpdate.h"

namespace quelmo {

namespace rules = cleanup_rules;

CandidateListModel::CandidateListModel(QObject* parent) : QAbstractListModel(parent) {}

void CandidateListModel::update(const QList<CleanupCandidate>& candidates,
                                const rules::Verdicts& verdicts, Language language) {
    const int oldCount = count();
    const int oldTargets = cutTargetCount();

    QList<Row> fresh;
    fresh.reserve(candidates.size());
    for (const CleanupCandidate& c : candidates)
        fresh.append({c, rules::verdictOf(c, verdicts), language});
    QList<int> roles = roleNames().keys();
    roles.append(Qt::DisplayRole);
    KeyedUpdate::apply(
        *this, rows_, fresh, [](const Row& row) { return row.candidate.id(); }, &valueOf, roles);

    if (count() != oldCount)
        emit countChanged();
    if (cutTargetCount() != oldTargets)
        emit cutTargetCountChanged();
}

int CandidateListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant CandidateListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rows_.size())
        return {};
    return valueOf(rows_[index.row()], role);
}

QVariant CandidateListModel::valueOf(const Row& row, int role) {
    const CleanupCandidate& c = row.candidate;
    switch (role) {
    case PidRole:
        return c.id();
    case NameRole:
        return c.proc.name;
    case Qt::DisplayRole:
    case TitleRole:
        return c.key();
    case ReasonRole:
        return rawValue(c.reason);
    case ReasonLabelRole:
        return label(c.reason, row.language);
    case ReasonSymbolRole:
        return QString::fromLatin1(infoOf(c.reason).symbol);
    case ReasonColorRole:
        return QString::fromLatin1(infoOf(c.reason).colour);
    case RssRole:
        return c.proc.rss;
    case IdleDetailRole:
        return rules::idleDetail(c, row.language);
    case HasWindowRole:
        return c.hasWindow;
    case HasVerdictRole:
        return row.verdict.has_value();
    case IsKeepRole:
        return rules::isKeep(row.verdict);
    case StatusColorRole:
        return rules::statusColor(row.verdict);
    case RiskLabelRole:
        return row.verdict ? rules::riskLabel(row.verdict->risk, row.language) : QString();
    case BadgeColorRole:
        return rules::badgeColor(row.verdict);
    case ExplanationRole:
        return row.verdict ? row.verdict->explanation : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> CandidateListModel::roleNames() const {
    return {
        {PidRole, "pid"},
        {NameRole, "name"},
        {TitleRole, "title"},
        {ReasonRole, "reason"},
        {ReasonLabelRole, "reasonLabel"},
        {ReasonSymbolRole, "reasonSymbol"},
        {ReasonColorRole, "reasonColor"},
        {RssRole, "rss"},
        {IdleDetailRole, "idleDetail"},
        {HasWindowRole, "hasWindow"},
        {HasVerdictRole, "hasVerdict"},
        {IsKeepRole, "isKeep"},
        {StatusColorRole, "statusColor"},
        {RiskLabelRole, "riskLabel"},
        {BadgeColorRole, "badgeColor"},
        {ExplanationRole, "explanation"},
    };
}

int CandidateListModel::cutTargetCount() const {
    return static_cast<int>(cutTargetPids().size());
}

bool CandidateListModel::cutAllOffered() const {
    return cutTargetCount() >= rules::cutAllMinimum;
}

std::optional<ProcInfo> CandidateListModel::procOf(qint64 pid) const {
    for (const Row& row : rows_)
        if (row.candidate.id() == pid)
            return row.candidate.proc;
    return std::nullopt;
}

QList<qint64> CandidateListModel::cutTargetPids() const {
    QList<qint64> pids;
    for (const Row& row : rows_)
        if (!rules::isKeep(row.verdict))
            pids.append(row.candidate.id());
    return pids;
}

} // namespace quelmo
