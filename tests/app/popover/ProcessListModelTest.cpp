#include "app/popover/ProcessListModel.h"

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace quelmo {
namespace {

ProcInfo proc(qint64 pid, const char* name, double cpu, double rss = 0) {
    ProcInfo p;
    p.id = pid;
    p.name = QString::fromLatin1(name);
    p.cpu = cpu;
    p.rss = rss;
    return p;
}

QList<qint64> pids(const ProcessListModel& model) {
    QList<qint64> result;
    for (int i = 0; i < model.rowCount(); ++i)
        result.append(model.data(model.index(i), ProcessListModel::PidRole).toLongLong());
    return result;
}

class ProcessListModelTest : public ::testing::Test {
protected:
    ProcessListModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

// A refresh of the same length makes and throws away no row, whoever comes and goes: each place
// is told as changed only in the roles that changed there. Rows beyond it go or come at the end.
TEST_F(ProcessListModelTest, RefreshesFillRowsInPlace) {
    model.setRows({proc(10, "a", 50), proc(20, "b", 30), proc(30, "c", 10)});
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);

    // a leaves and f comes first; b stays where it was with another figure; c is unchanged.
    model.setRows({proc(60, "f", 50), proc(20, "b", 31), proc(30, "c", 10)});

    EXPECT_EQ(pids(model), QList<qint64>({60, 20, 30}));
    EXPECT_EQ(inserted.count() + removed.count() + reset.count(), 0);
    QHash<int, QList<int>> changedRoles;
    for (const QList<QVariant>& signal : changed) {
        EXPECT_EQ(signal[0].toModelIndex(), signal[1].toModelIndex());
        changedRoles[signal[0].toModelIndex().row()] = signal[2].value<QList<int>>();
    }
    using R = ProcessListModel::Role;
    EXPECT_EQ(changedRoles, (QHash<int, QList<int>>{{0, {R::PidRole, Qt::DisplayRole, R::NameRole}},
                                                    {1, {R::CpuRole}}}));

    model.setRows({proc(20, "b", 31)});
    EXPECT_EQ(pids(model), QList<qint64>({20}));
    ASSERT_EQ(removed.count(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 1);
    EXPECT_EQ(removed[0][2].toInt(), 2);
    model.setRows({proc(20, "b", 31), proc(70, "g", 0)});
    EXPECT_EQ(pids(model), QList<qint64>({20, 70}));
    EXPECT_EQ(inserted.count(), 1);
}

TEST_F(ProcessListModelTest, EmptyingAndScale) {
    EXPECT_EQ(model.maxCPU(), 1);
    model.setRows({proc(1, "x", 0, 2048), proc(2, "y", 150, 1024)});
    EXPECT_EQ(model.maxCPU(), 150);
    EXPECT_EQ(model.maxRSS(), 2048);
    QSignalSpy count(&model, &ProcessListModel::countChanged);
    model.setRows({});
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(count.count(), 1);
    EXPECT_EQ(model.maxRSS(), 1);
}

} // namespace
} // namespace quelmo
