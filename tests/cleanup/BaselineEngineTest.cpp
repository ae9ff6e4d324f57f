#include "cleanup/BaselineEngine.h"

#include "TempSettings.h"

#include <QSettings>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

const QString key = QStringLiteral("test.baselines");
constexpr double GiB = 1073741824.0;

ProcInfo row(qint64 id, const QString& name, double cpu, double rss = 0) {
    return ProcInfo{id, name, cpu, rss, QStringLiteral("alice")};
}

// A busy streak of `k` more for `pid`, under a throw-away name so other statistics stay put.
void heat(BaselineEngine& engine, qint64 pid, int k) {
    for (int i = 0; i < k; ++i)
        engine.observe({row(pid, "warm-up", 50)});
}

class BaselineEngineTest : public ::testing::Test {
protected:
    void SetUp() override { test::TempSettings::clear(); }
    static void store(const QByteArray& json) { QSettings().setValue(key, json); }
};

TEST_F(BaselineEngineTest, FoldsRowsPerNameFromZeroAndCountsBusyStreaksPerLivePid) {
    store(R"({"capped":{"mean":10,"meanSq":100,"samples":9223372036854774784}})");
    BaselineEngine engine(key);
    engine.observe(
        {row(1, "fresh", 20), row(2, "mdworker", 10), row(3, "mdworker", 30), row(4, "capped", 0)});
    EXPECT_EQ(engine.baselines().value("fresh"), (BaselineEngine::Stat{0.6, 12, 1}));
    EXPECT_DOUBLE_EQ(engine.baselines().value("mdworker").mean, 0.97 * 0.3 + 0.9);
    EXPECT_EQ(engine.baselines().value("mdworker").samples, 2);
    EXPECT_EQ(engine.baselines().value("capped").samples, 100000);
    EXPECT_DOUBLE_EQ(engine.baselines().value("capped").mean, 9.7);

    engine.observe({row(1, "a", 8.0), row(2, "a", 7.99), row(3, "a", 9)});
    engine.observe({row(1, "a", 8.0), row(2, "a", 9)}); // pid 3 is gone
    engine.observe({row(1, "a", 8.0), row(2, "a", 9), row(3, "a", 9)});
    EXPECT_EQ(engine.streak(1), 4);
    EXPECT_EQ(engine.streak(2), 2);
    EXPECT_EQ(engine.streak(3), 1);
}

// Each check sits right on a threshold, so a wrong rounding, comparison or coefficient shows.
TEST_F(BaselineEngineTest, ThresholdsFollowSensitivity) {
    struct Row {
        double s;
        int n;          // streak threshold
        double fastCPU; // sustained, fast form
        double width;   // spike width in bands
        double ramGiB;
    };
    for (const Row& t : {Row{0, 25, 40, 4, 3}, Row{0.5, 16, 27.5, 3, 2}, Row{1, 6, 15, 2, 1}}) {
        SCOPED_TRACE(testing::Message() << "s = " << t.s);
        store(R"({"hist":{"mean":10,"meanSq":116,"samples":20}})"); // d = 4: the band is 4
        BaselineEngine engine(key);
        engine.setSensitivity(t.s);

        heat(engine, 1, t.n - 1);
        EXPECT_EQ(engine.reason(row(1, "x", t.fastCPU)), std::nullopt);
        heat(engine, 1, 1);
        EXPECT_EQ(engine.reason(row(1, "x", t.fastCPU)), CleanupReason::sustained);
        EXPECT_EQ(engine.reason(row(1, "x", t.fastCPU - 0.01)), std::nullopt);
        heat(engine, 1, 9);
        EXPECT_EQ(engine.reason(row(1, "x", 8.0)), std::nullopt);
        heat(engine, 1, 1); // slow form: N + 10 busy observations at 8 % or more
        EXPECT_EQ(engine.reason(row(1, "x", 8.0)), CleanupReason::sustained);
        EXPECT_EQ(engine.reason(row(1, "x", 7.99)), std::nullopt);

        heat(engine, 2, 5); // below every N; pid 1 is gone
        const double spikeLine = 10 + t.width * 4;
        EXPECT_EQ(engine.reason(row(2, "hist", spikeLine)), std::nullopt);
        EXPECT_EQ(engine.reason(row(2, "hist", spikeLine + 0.01)), CleanupReason::spike);

        EXPECT_EQ(engine.reason(row(3, "x", 0, t.ramGiB * GiB)), CleanupReason::ramHog);
        EXPECT_EQ(engine.reason(row(3, "x", 0, t.ramGiB * GiB - 1)), std::nullopt);
    }
}

TEST_F(BaselineEngineTest, SpikeGatesAndTheOrderOfTheTests) {
    // At s = 0.5 the spike line is mean + 3 bands; a band is never below 2.
    store(R"({"h":{"mean":2,"meanSq":5,"samples":100},"few":{"mean":2,"meanSq":5,"samples":19},)"
          R"("odd":{"mean":2,"meanSq":1,"samples":100}})");
    BaselineEngine engine(key);
    heat(engine, 1, 4);
    EXPECT_EQ(engine.reason(row(1, "h", 15)), std::nullopt); // needs a streak of 5
    heat(engine, 1, 1);
    EXPECT_EQ(engine.reason(row(1, "h", 15)), CleanupReason::spike);
    EXPECT_EQ(engine.reason(row(1, "h", 14.9)), std::nullopt);
    EXPECT_EQ(engine.reason(row(1, "odd", 15)), CleanupReason::spike); // no real root
    EXPECT_EQ(engine.reason(row(1, "few", 99)), std::nullopt);

    heat(engine, 1, 11); // streak 16 = N
    EXPECT_EQ(engine.reason(row(1, "h", 30, 8 * GiB)), CleanupReason::sustained);
    EXPECT_EQ(engine.reason(row(1, "h", 20, 8 * GiB)), CleanupReason::spike);
    heat(engine, 1, 10); // streak 26 = N + 10
    EXPECT_EQ(engine.reason(row(1, "x", 9, 8 * GiB)), CleanupReason::ramHog);
    EXPECT_EQ(engine.reason(row(1, "x", 9)), CleanupReason::sustained);
}

TEST_F(BaselineEngineTest, EveryThirtiethObservationSavesBytesThatLoadBack) {
    BaselineEngine engine(key);
    for (int i = 0; i < 29; ++i)
        engine.observe({row(1, "app", 12)});
    EXPECT_FALSE(QSettings().contains(key));
    engine.observe({}); // an empty snapshot counts too
    EXPECT_EQ(QSettings().value(key).metaType().id(), QMetaType::QByteArray);
    EXPECT_EQ(BaselineEngine(key).baselines(), engine.baselines());
    heat(engine, 1, 29);
    EXPECT_FALSE(BaselineEngine(key).baselines().contains("warm-up"));
    heat(engine, 1, 1);
    EXPECT_TRUE(BaselineEngine(key).baselines().contains("warm-up"));
}

TEST_F(BaselineEngineTest, UnreadableDocumentsLeaveTheEngineEmptyAndTheBytesAlone) {
    for (const QByteArray& document : {
             QByteArray("not json"),
             QByteArray("[]"),
             QByteArray(R"({"a":{"mean":1,"meanSq":1}})"),
             QByteArray(R"({"a":{"mean":1,"meanSq":1,"samples":2.5}})"),
             QByteArray(R"({"a":{"mean":1,"meanSq":1,"samples":1e30}})"),
             QByteArray(R"({"a":{"mean":"1","meanSq":1,"samples":3}})"),
             QByteArray(R"({"ok":{"mean":1,"meanSq":1,"samples":3},"a":7})"),
         }) {
        store(document);
        EXPECT_TRUE(BaselineEngine(key).baselines().isEmpty()) << document.constData();
        EXPECT_EQ(QSettings().value(key).toByteArray(), document);
    }

    // A save that cannot be encoded (an infinite mean square) is skipped.
    const QByteArray good = R"({"a":{"mean":1,"meanSq":2,"samples":3.0}})";
    store(good);
    BaselineEngine engine(key);
    EXPECT_EQ(engine.baselines().value("a"), (BaselineEngine::Stat{1, 2, 3}));
    heat(engine, 1, 29);
    engine.observe({row(1, "broken", 1e200)});
    EXPECT_EQ(QSettings().value(key).toByteArray(), good);
}

} // namespace
