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

// One refresh that removes, inserts and reorders at once: every row that stays is the same row
// (its persistent index follows it), and only the roles that changed are told as changed.
TEST_F(ProcessListModelTest, RowsKeepTheirIdentityAcrossRefreshes) {
    model.setRows({proc(10, "a", 50), proc(20, "b", 30), proc(30, "c", 10), proc(40, "d", 5),
                   proc(50, "e", 1)});
    QList<QPersistentModelIndex> before;
    for (int i = 0; i < model.rowCount(); ++i)
        before.append(QPersistentModelIndex(model.index(i)));
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);

    // c and a leave; the order of the rest turns round; f and g arrive at both ends; only e's
    // CPU figure and d's memory change.
    model.setRows({proc(60, "f", 9), proc(50, "e", 2), proc(40, "d", 5, 64), proc(20, "b", 30),
                   proc(70, "g", 0)});

    EXPECT_EQ(pids(model), QList<qint64>({60, 50, 40, 20, 70}));
    EXPECT_FALSE(before[0].isValid());
    EXPECT_FALSE(before[2].isValid());
    for (const int was : {1, 3, 4}) {
        ASSERT_TRUE(before[was].isValid());
        EXPECT_EQ(before[was].data(ProcessListModel::PidRole), (was + 1) * 10);
    }
    EXPECT_EQ(removed.count(), 2);
    EXPECT_EQ(inserted.count(), 2);
    EXPECT_EQ(reset.count(), 0);
    QHash<qint64, QList<int>> changedRoles;
    for (const QList<QVariant>& signal : changed) {
        const QModelIndex row = signal[0].toModelIndex();
        EXPECT_EQ(row, signal[1].toModelIndex());
        changedRoles[row.data(ProcessListModel::PidRole).toLongLong()] =
            signal[2].value<QList<int>>();
    }
    EXPECT_EQ(changedRoles, (QHash<qint64, QList<int>>{{50, {ProcessListModel::CpuRole}},
                                                       {40, {ProcessListModel::RssRole}}}));
    EXPECT_EQ(model.data(model.index(1), ProcessListModel::CpuRole).toDouble(), 2);
}

TEST_F(ProcessListModelTest, AnUnchangedRefreshTouchesNoRow) {
    const QList<ProcInfo> rows{proc(1, "x", 5), proc(2, "y", 4)};
    model.setRows(rows);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    model.setRows(rows);
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(reset.count(), 0);
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
