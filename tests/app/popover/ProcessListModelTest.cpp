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

TEST_F(ProcessListModelTest, RowsKeepTheirIdentityAcrossRefreshes) {
    model.setRows({proc(10, "a", 50), proc(20, "b", 30), proc(30, "c", 10)});
    const QPersistentModelIndex b(model.index(1));
    QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    QSignalSpy moved(&model, &QAbstractItemModel::rowsMoved);
    QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);

    // b overtakes a, c leaves, d arrives; a and b are the same rows as before.
    model.setRows({proc(20, "b", 70), proc(10, "a", 40), proc(40, "d", 5)});

    EXPECT_EQ(pids(model), QList<qint64>({20, 10, 40}));
    ASSERT_TRUE(b.isValid());
    EXPECT_EQ(b.row(), 0);
    EXPECT_EQ(b.data(ProcessListModel::CpuRole).toDouble(), 70);
    EXPECT_EQ(removed.count(), 1);
    EXPECT_EQ(inserted.count(), 1);
    EXPECT_EQ(moved.count(), 1);
    EXPECT_EQ(changed.count(), 2);
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
