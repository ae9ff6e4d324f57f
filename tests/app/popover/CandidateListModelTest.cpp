#include "app/popover/CandidateListModel.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

CleanupCandidate candidate(qint64 pid, const QString& name, double rss = 100e6) {
    CleanupCandidate c;
    c.proc.id = pid;
    c.proc.name = name;
    c.proc.rss = rss;
    c.reason = CleanupReason::sustained;
    return c;
}

QList<qint64> pids(const CandidateListModel& model) {
    QList<qint64> found;
    for (int row = 0; row < model.rowCount(); ++row)
        found.append(model.data(model.index(row), CandidateListModel::PidRole).toLongLong());
    return found;
}

class CandidateListModelTest : public ::testing::Test {
protected:
    CandidateListModel model;
    QAbstractItemModelTester tester{&model,
                                    QAbstractItemModelTester::FailureReportingMode::Warning};
    QSignalSpy inserted{&model, &QAbstractItemModel::rowsInserted};
    QSignalSpy removed{&model, &QAbstractItemModel::rowsRemoved};
    QSignalSpy moved{&model, &QAbstractItemModel::rowsMoved};
    QSignalSpy changed{&model, &QAbstractItemModel::dataChanged};
    QSignalSpy reset{&model, &QAbstractItemModel::modelReset};

    void clearSpies() {
        for (QSignalSpy* spy : {&inserted, &removed, &moved, &changed, &reset})
            spy->clear();
    }
};

} // namespace

// Rows are kept by pid: only what came or went is inserted or removed, what stayed is changed in
// place or moved, so the views animate exactly those rows.
TEST_F(CandidateListModelTest, RowsKeepTheirIdentityAcrossUpdates) {
    model.update({candidate(10, "a"), candidate(20, "b"), candidate(30, "c")}, {},
                 Language::english);
    EXPECT_EQ(pids(model), (QList<qint64>{10, 20, 30}));
    EXPECT_EQ(inserted.size(), 3);
    clearSpies();

    // The same list again: nothing at all.
    model.update({candidate(10, "a"), candidate(20, "b"), candidate(30, "c")}, {},
                 Language::english);
    EXPECT_EQ(inserted.size() + removed.size() + moved.size() + changed.size(), 0);

    // The middle one goes, the last one grows.
    model.update({candidate(10, "a"), candidate(30, "c", 200e6)}, {}, Language::english);
    EXPECT_EQ(pids(model), (QList<qint64>{10, 30}));
    ASSERT_EQ(removed.size(), 1);
    EXPECT_EQ(removed[0][1].toInt(), 1);
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex().row(), 1);
    EXPECT_EQ(model.data(model.index(1), CandidateListModel::RssRole).toDouble(), 200e6);
    clearSpies();

    // A newcomer in front and the order turned round.
    model.update({candidate(40, "d"), candidate(30, "c", 200e6), candidate(10, "a")}, {},
                 Language::english);
    EXPECT_EQ(pids(model), (QList<qint64>{40, 30, 10}));
    EXPECT_EQ(inserted.size(), 1);
    EXPECT_EQ(removed.size(), 0);
    EXPECT_EQ(moved.size(), 1);
    EXPECT_EQ(reset.size(), 0);
    clearSpies();

    // A pid taken over by a process that looks the same: nothing to redraw, but a cut must ask
    // the new one.
    CleanupCandidate reused = candidate(10, "a");
    reused.proc.startTime = 777;
    model.update({candidate(40, "d"), candidate(30, "c", 200e6), reused}, {}, Language::english);
    EXPECT_EQ(changed.size(), 0);
    EXPECT_EQ(model.procOf(10)->startTime, 777u);
}

// The card's answers follow the verdicts: two rows to cut offer "Cut all"; once one is to be kept
// it is no longer offered, though both rows stay. A verdict changes only the rows' verdict roles.
TEST_F(CandidateListModelTest, CountsAndRowsFollowTheVerdicts) {
    QList<CleanupCandidate> two{candidate(1, "a"), candidate(2, "b")};
    const auto verdict = [](const char* recommendation, const char* risk) {
        return AIVerdict{QStringLiteral("A helper"), true, QString::fromUtf8(risk),
                         QString::fromLatin1(recommendation)};
    };
    model.update(two, {}, Language::english);
    QSignalSpy targetsChanged(&model, &CandidateListModel::cutTargetCountChanged);
    clearSpies();

    model.update(two, {{"a", verdict("cut", "주의")}, {"b", verdict("cut", "안전")}},
                 Language::english);
    EXPECT_EQ(model.cutTargetCount(), 2);
    EXPECT_TRUE(model.cutAllOffered());
    ASSERT_EQ(changed.size(), 2);
    const auto roles = changed[0][2].value<QList<int>>();
    EXPECT_TRUE(roles.contains(CandidateListModel::StatusColorRole));
    EXPECT_TRUE(roles.contains(CandidateListModel::HasVerdictRole));
    EXPECT_FALSE(roles.contains(CandidateListModel::TitleRole));
    EXPECT_FALSE(roles.contains(CandidateListModel::RssRole));
    EXPECT_FALSE(roles.contains(CandidateListModel::IsKeepRole));

    model.update(two, {{"a", verdict("cut", "주의")}, {"b", verdict("keep", "안전")}},
                 Language::korean);
    EXPECT_EQ(model.count(), 2);
    EXPECT_EQ(model.cutTargetCount(), 1);
    EXPECT_FALSE(model.cutAllOffered());
    EXPECT_EQ(model.cutTargetPids(), QList<qint64>{1});
    EXPECT_EQ(targetsChanged.size(), 1);

    const QModelIndex a = model.index(0);
    EXPECT_EQ(model.data(a, CandidateListModel::StatusColorRole), "peach");
    EXPECT_EQ(model.data(a, CandidateListModel::RiskLabelRole), "주의");
    EXPECT_EQ(model.data(a, CandidateListModel::BadgeColorRole), "peach");
    EXPECT_EQ(model.data(a, CandidateListModel::ReasonLabelRole), "장시간 과점유");
    EXPECT_FALSE(model.data(a, CandidateListModel::IsKeepRole).toBool());
    const QModelIndex b = model.index(1);
    EXPECT_TRUE(model.data(b, CandidateListModel::IsKeepRole).toBool());
    EXPECT_EQ(model.procOf(2)->name, "b");
    EXPECT_FALSE(model.procOf(3));
}
