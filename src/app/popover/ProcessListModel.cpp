#include "app/popover/ProcessListModel.h"

#include "app/popover/KeyedUpdate.h"
#include "app/popover/PopoverRules.h"

namespace quelmo {

int ProcessListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant ProcessListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    return valueOf(rows_.at(index.row()), role);
}

QVariant ProcessListModel::valueOf(const ProcInfo& row, int role) {
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

void ProcessListModel::setRows(const QList<ProcInfo>& rows) {
    const qsizetype countBefore = rows_.size();
    static const QList<int> roles{PidRole, Qt::DisplayRole, NameRole, CpuRole, RssRole, UserRole};
    // The top five change members every second or so; rows taken in place keep their items, so
    // no row is made and thrown away (which would cost the view a frame of its own to clear).
    KeyedUpdate::applyInPlace(*this, rows_, rows, &valueOf, roles);
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
