#include "app/popover/CandidateListModel.h"

#include <QSet>

namespace quelmo {

namespace rules = cleanup_rules;

bool CandidateListModel::Row::operator==(const Row& other) const {
    const CleanupCandidate& a = candidate;
    const CleanupCandidate& b = other.candidate;
    return a.proc.id == b.proc.id && a.proc.startTime == b.proc.startTime &&
           a.proc.name == b.proc.name && a.proc.rss == b.proc.rss && a.reason == b.reason &&
           a.idleMinutes == b.idleMinutes && a.hasWindow == b.hasWindow &&
           a.displayName == b.displayName && verdict == other.verdict && language == other.language;
}

CandidateListModel::CandidateListModel(QObject* parent) : QAbstractListModel(parent) {}

qsizetype CandidateListModel::indexOf(qint64 pid, qsizetype from) const {
    for (qsizetype i = from; i < rows_.size(); ++i)
        if (rows_[i].candidate.id() == pid)
            return i;
    return -1;
}

void CandidateListModel::update(const QList<CleanupCandidate>& candidates,
                                const rules::Verdicts& verdicts, Language language) {
    const int oldCount = count();
    const int oldTargets = cutTargetCount();

    QSet<qint64> wanted;
    for (const CleanupCandidate& c : candidates)
        wanted.insert(c.id());
    for (qsizetype i = rows_.size() - 1; i >= 0; --i) {
        if (wanted.contains(rows_[i].candidate.id()))
            continue;
        beginRemoveRows({}, static_cast<int>(i), static_cast<int>(i));
        rows_.removeAt(i);
        endRemoveRows();
    }

    for (qsizetype i = 0; i < candidates.size(); ++i) {
        const CleanupCandidate& c = candidates[i];
        Row fresh{c, rules::verdictOf(c, verdicts), language};
        const qsizetype at = indexOf(c.id(), i);
        const int row = static_cast<int>(i);
        if (at < 0) {
            beginInsertRows({}, row, row);
            rows_.insert(i, std::move(fresh));
            endInsertRows();
            continue;
        }
        if (at != i) {
            beginMoveRows({}, static_cast<int>(at), static_cast<int>(at), {}, row);
            rows_.move(at, i);
            endMoveRows();
        }
        if (!(rows_[i] == fresh)) {
            rows_[i] = std::move(fresh);
            emit dataChanged(index(row), index(row));
        }
    }

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
    const Row& row = rows_[index.row()];
    const CleanupCandidate& c = row.candidate;
    const bool keep = row.verdict && row.verdict->recommendation == QLatin1String("keep");
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
        return keep;
    case StatusColorRole:
        return rules::statusColor(row.verdict);
    case RiskLabelRole:
        return row.verdict ? rules::riskLabel(row.verdict->risk, row.language) : QString();
    case RiskColorRole:
        return row.verdict ? rules::riskColor(row.verdict->risk) : QString();
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
        {RiskColorRole, "riskColor"},
        {ExplanationRole, "explanation"},
    };
}

int CandidateListModel::cutTargetCount() const {
    return static_cast<int>(cutTargetPids().size());
}

std::optional<ProcInfo> CandidateListModel::procOf(qint64 pid) const {
    const qsizetype at = indexOf(pid, 0);
    if (at < 0)
        return std::nullopt;
    return rows_[at].candidate.proc;
}

QVariantList CandidateListModel::cutTargetPids() const {
    QVariantList pids;
    for (const Row& row : rows_)
        if (!row.verdict || row.verdict->recommendation != QLatin1String("keep"))
            pids.append(row.candidate.id());
    return pids;
}

} // namespace quelmo
