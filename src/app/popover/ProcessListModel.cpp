#include "app/popover/ProcessListModel.h"

#include "app/popover/PopoverRules.h"

#include <QSet>

namespace quelmo {

int ProcessListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ProcessListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const ProcInfo& row = rows_.at(index.row());
    switch (role) {
    case PidRole:
        return row.id;
    case Qt::DisplayRole:
    case NameRole:
        return row.name;
    case CpuRole:
        return row.cpu;
    case RssRole:
        return row.rss;
    case UserRole:
        return row.user;
    default:
        return {};
    }
}

QHash<int, QByteArray> ProcessListModel::roleNames() const {
    return {{PidRole, "pid"},
            {NameRole, "name"},
            {CpuRole, "cpu"},
            {RssRole, "rss"},
            {UserRole, "user"}};
}

int ProcessListModel::indexOf(qint64 pid, int from) const {
    for (int i = from; i < rows_.size(); ++i)
        if (rows_.at(i).id == pid)
            return i;
    return -1;
}

void ProcessListModel::setRows(const QList<ProcInfo>& rows) {
    const qsizetype countBefore = rows_.size();

    QSet<qint64> wanted;
    for (const ProcInfo& row : rows)
        wanted.insert(row.id);
    for (int i = static_cast<int>(rows_.size()) - 1; i >= 0; --i) {
        if (!wanted.contains(rows_.at(i).id)) {
            beginRemoveRows({}, i, i);
            rows_.removeAt(i);
            endRemoveRows();
        }
    }

    for (int i = 0; i < rows.size(); ++i) {
        const ProcInfo& row = rows.at(i);
        const int at = indexOf(row.id, i);
        if (at < 0) {
            beginInsertRows({}, i, i);
            rows_.insert(i, row);
            endInsertRows();
            continue;
        }
        if (at != i) {
            beginMoveRows({}, at, at, {}, i);
            rows_.move(at, i);
            endMoveRows();
        }
        ProcInfo& current = rows_[i];
        if (current.name != row.name || current.cpu != row.cpu || current.rss != row.rss ||
            current.user != row.user) {
            current = row;
            emit dataChanged(index(i), index(i));
        }
    }

    if (rows_.size() != countBefore)
        emit countChanged();
    emit rowsChanged();
}

double ProcessListModel::maxCPU() const {
    QList<double> values;
    for (const ProcInfo& row : rows_)
        values.append(row.cpu);
    return PopoverRules::processMaxValue(values);
}

double ProcessListModel::maxRSS() const {
    QList<double> values;
    for (const ProcInfo& row : rows_)
        values.append(row.rss);
    return PopoverRules::processMaxValue(values);
}

} // namespace quelmo
