#pragma once

#include "core/metrics/ProcInfo.h"

#include <QAbstractListModel>
#include <QList>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// A list of process rows for the views. A refresh fills the rows in place (see
// KeyedUpdate::applyInPlace): the view keeps its row items and redraws only what changed.
class ProcessListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
    // The largest CPU percentage and resident size among the rows (the process list's scale).
    Q_PROPERTY(double maxCPU READ maxCPU NOTIFY rowsChanged)
    Q_PROPERTY(double maxRSS READ maxRSS NOTIFY rowsChanged)

public:
    enum Role { PidRole = Qt::UserRole + 1, NameRole, CpuRole, RssRole, UserRole };

    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    const QList<ProcInfo>& rows() const { return rows_; }
    void setRows(const QList<ProcInfo>& rows);

    double maxCPU() const;
    double maxRSS() const;

signals:
    void countChanged();
    void rowsChanged();

private:
    friend struct KeyedUpdate;
    static QVariant valueOf(const ProcInfo& row, int role);

    QList<ProcInfo> rows_;
};

} // namespace quelmo
