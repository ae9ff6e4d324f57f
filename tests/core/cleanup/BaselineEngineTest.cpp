#include "core/cleanup/BaselineEngine.h"

#include "support/FakePlatform.h"
#include "support/TempSettings.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QSettings>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

const QString key = QStringLiteral("test.baselines");
constexpr double GiB = 1073741824.0;

// A busy streak of `k` more for `pid`, under a throw-away name so other statistics stay put.
void heat(BaselineEngine& engine, qint64 pid, int k) {
    for (int i = 0; i < k; ++i)
        engine.observe({proc(pid, "warm-up", 50, 0)});
}

// Starts from a clean settings file holding `document` as the stored statistics.
void store(const QByteArray& document) {
    TempSettings::clear();
    BaselineEngine::openStore()->setValue(key, document);
}

TEST(BaselineEngineTest, FoldsEachNameFromZeroAndCountsBusyStreaksPerLivePid) {
    store(R"({"capped":{"mean":10,"meanSq":100,"samples":9223372036854774784}})");
    BaselineEngine engine(key);
    engine.observe({proc(1, "fresh", 20, 0), proc(2, "capped", 0, 0)});
    EXPECT_EQ(engine.baselines().value("fresh"), (BaselineEngine::Stat{0.6, 12, 1}));
    EXPECT_EQ(engine.baselines().value("capped"),
              (BaselineEngine::Stat{0.97 * 10, 0.97 * 100, 100000}));

    engine.observe({proc(1, "a", 8.0, 0), proc(2, "a", 7.99, 0), proc(3, "a", 9, 0)});
    engine.observe({proc(1, "a", 8.0, 0), proc(2, "a", 9, 0)}); // pid 3 is gone
    engine.observe({proc(1, "a", 8.0, 0), proc(2, "a", 9, 0), proc(3, "a", 9, 0)});
    EXPECT_EQ(engine.streak(1), 4);
    EXPECT_EQ(engine.streak(2), 2);
    EXPECT_EQ(engine.streak(3), 1);
}

// Each check sits right on a threshold, so a wrong rounding, comparison or coefficient shows.
TEST(BaselineEngineTest, ThresholdsFollowSensitivity) {
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
        EXPECT_EQ(engine.reason(proc(1, "x", t.fastCPU, 0)), std::nullopt);
        heat(engine, 1, 1);
        EXPECT_EQ(engine.reason(proc(1, "x", t.fastCPU, 0)), CleanupReason::sustained);
        EXPECT_EQ(engine.reason(proc(1, "x", t.fastCPU - 0.01, 0)), std::nullopt);
        heat(engine, 1, 9);
        EXPECT_EQ(engine.reason(proc(1, "x", 8.0, 0)), std::nullopt);
        heat(engine, 1, 1); // slow form: N + 10 busy observations at 8 % or more
        EXPECT_EQ(engine.reason(proc(1, "x", 8.0, 0)), CleanupReason::sustained);
        EXPECT_EQ(engine.reason(proc(1, "x", 7.99, 0)), std::nullopt);

        heat(engine, 2, 5); // below every N; pid 1 is gone
        const double spikeLine = 10 + t.width * 4;
        EXPECT_EQ(engine.reason(proc(2, "hist", spikeLine, 0)), std::nullopt);
        EXPECT_EQ(engine.reason(proc(2, "hist", spikeLine + 0.01, 0)), CleanupReason::spike);

        EXPECT_EQ(engine.reason(proc(3, "x", 0, t.ramGiB * GiB)), CleanupReason::ramHog);
        EXPECT_EQ(engine.reason(proc(3, "x", 0, t.ramGiB * GiB - 1)), std::nullopt);
    }
}

TEST(BaselineEngineTest, SpikeGatesAndTheOrderOfTheTests) {
    // At s = 0.5 the spike line is mean + 3 bands; a band is never below 2.
    store(R"({"h":{"mean":2,"meanSq":5,"samples":100},"few":{"mean":2,"meanSq":5,"samples":19},)"
          R"("odd":{"mean":2,"meanSq":1,"samples":100}})");
    BaselineEngine engine(key);
    heat(engine, 1, 4);
    EXPECT_EQ(engine.reason(proc(1, "h", 15, 0)), std::nullopt); // needs a streak of 5
    heat(engine, 1, 1);
    EXPECT_EQ(engine.reason(proc(1, "h", 15, 0)), CleanupReason::spike);
    EXPECT_EQ(engine.reason(proc(1, "h", 14.9, 0)), std::nullopt);
    EXPECT_EQ(engine.reason(proc(1, "odd", 15, 0)), CleanupReason::spike); // no real root
    EXPECT_EQ(engine.reason(proc(1, "few", 99, 0)), std::nullopt);

    heat(engine, 1, 11); // streak 16 = N
    EXPECT_EQ(engine.reason(proc(1, "h", 30, 8 * GiB)), CleanupReason::sustained);
    EXPECT_EQ(engine.reason(proc(1, "h", 20, 8 * GiB)), CleanupReason::spike);
    heat(engine, 1, 10); // streak 26 = N + 10
    EXPECT_EQ(engine.reason(proc(1, "x", 9, 8 * GiB)), CleanupReason::ramHog);
    EXPECT_EQ(engine.reason(proc(1, "x", 9, 0)), CleanupReason::sustained);
}

// A stored entry as JSON text; a negative `lastSeen` leaves the member out, as older versions did.
QByteArray entry(const QString& name, qint64 samples, qint64 lastSeen) {
    QJsonObject fields{{"mean", 1.5}, {"meanSq", 4.0}, {"samples", samples}};
    if (lastSeen >= 0)
        fields.insert("lastSeen", lastSeen);
    return QJsonDocument(QJsonObject{{name, fields}}).toJson(QJsonDocument::Compact);
}

QJsonObject storedDocument() {
    return QJsonDocument::fromJson(BaselineEngine::openStore()->value(key).toByteArray()).object();
}

constexpr qint64 day = 20000;

TEST(BaselineStoreTest, NamesNotSeenForLongAgeOutAndYoungOnesSooner) {
    QByteArray document = "{";
    const auto add = [&](const QString& name, qint64 samples, qint64 lastSeen) {
        QByteArray member = entry(name, samples, lastSeen);
        document += member.mid(1, member.size() - 2) + ",";
    };
    add("month", 100, day - BaselineEngine::maxIdleDays);
    add("month-and-a-day", 100, day - BaselineEngine::maxIdleDays - 1);
    add("young", BaselineEngine::spikeSamples - 1, day - BaselineEngine::youngIdleDays);
    add("young-gone", BaselineEngine::spikeSamples - 1, day - BaselineEngine::youngIdleDays - 1);
    add("grown", BaselineEngine::spikeSamples, day - BaselineEngine::youngIdleDays - 1);
    add("from-an-older-version", 5, -1);
    document.back() = '}';
    store(document);

    qint64 today = day;
    BaselineEngine engine(key, [&] { return today; });
    EXPECT_EQ(QStringList(engine.baselines().keys()).size(), 4);
    for (const char* kept : {"month", "young", "grown", "from-an-older-version"})
        EXPECT_TRUE(engine.baselines().contains(kept)) << kept;
    EXPECT_EQ(engine.lastSeen("from-an-older-version"), day);
    EXPECT_EQ(engine.baselines().value("month"), (BaselineEngine::Stat{1.5, 4.0, 100}));

    // Observing stamps the day; a later save forgets what has not been seen since.
    engine.observe({proc(1, "grown", 10, 0)});
    today = day + BaselineEngine::maxIdleDays + 1;
    for (int i = 1; i < BaselineEngine::saveEvery; ++i)
        engine.observe({proc(2, "fresh", 1, 0)});
    engine.waitForWrites();
    EXPECT_EQ(QStringList(engine.baselines().keys()), QStringList{"fresh"});
    const QJsonObject stored = storedDocument();
    EXPECT_EQ(stored.keys(), QStringList{"fresh"});
    EXPECT_EQ(stored.value("fresh").toObject().value("lastSeen").toInteger(), today);
    EXPECT_EQ(stored.value("fresh").toObject().value("samples").toInteger(), 29);
}

TEST(BaselineStoreTest, BeyondTheCapTheLongestUnseenAndLeastSampledGoFirst) {
    const qint64 over = 5;
    QJsonObject members;
    for (qint64 i = 0; i < BaselineEngine::maxEntries + over; ++i)
        members.insert(QStringLiteral("name-%1").arg(i),
                       QJsonObject{{"mean", 1},
                                   {"meanSq", 1},
                                   {"samples", 50 + i},
                                   {"lastSeen", i < 3 ? day - 1 : day}});
    store(QJsonDocument(members).toJson(QJsonDocument::Compact));

    BaselineEngine engine(key, [] { return day; });
    EXPECT_EQ(engine.baselines().size(), BaselineEngine::maxEntries);
    // The three seen a day earlier go first, then the two with the fewest samples.
    for (int i = 0; i < over; ++i)
        EXPECT_FALSE(engine.baselines().contains(QStringLiteral("name-%1").arg(i))) << i;
    EXPECT_TRUE(engine.baselines().contains(QStringLiteral("name-%1").arg(over)));

    // A flood of new names is cut back at the next save; it never pushes out established history.
    std::vector<ProcInfo> flood;
    for (int i = 0; i < 100; ++i)
        flood.push_back(proc(i, QStringLiteral("new-%1").arg(i), 0, 0));
    for (int i = 0; i < BaselineEngine::saveEvery; ++i)
        engine.observe(flood);
    engine.waitForWrites();
    EXPECT_EQ(engine.baselines().size(), BaselineEngine::maxEntries);
    EXPECT_FALSE(engine.baselines().contains("new-99"));
    EXPECT_TRUE(engine.baselines().contains(QStringLiteral("name-%1").arg(over)));
    EXPECT_EQ(storedDocument().size(), BaselineEngine::maxEntries);
}

TEST(BaselineStoreTest, UnreadableDaysDiscardTheDocumentAndFlushWritesAtOnce) {
    for (const char* seen : {R"("yesterday")", "1.5", "null"}) {
        store(QByteArray(R"({"a":{"mean":1,"meanSq":1,"samples":3,"lastSeen":)") + seen + "}}");
        EXPECT_TRUE(BaselineEngine(key).baselines().isEmpty()) << seen;
    }

    TempSettings::clear();
    BaselineEngine engine(key, [] { return day; });
    engine.observe({proc(1, "editor", 20, 0)});
    EXPECT_FALSE(BaselineEngine::openStore()->contains(key));
    engine.flush(); // what a clean exit calls: no wait for the 30th observation
    EXPECT_EQ(BaselineEngine(key, [] { return day; }).baselines().value("editor"),
              (BaselineEngine::Stat{0.6, 12, 1}));
}

// The keys left beside it, and no copy there, are checked in the settings test.
TEST(BaselineStoreTest, ADocumentInTheSettingsFileMovesToItsOwnFile) {
    TempSettings::clear();
    QSettings().setValue(key, entry("editor", 40, day));
    EXPECT_EQ(BaselineEngine(key, [] { return day; }).baselines().value("editor").samples, 40);
    EXPECT_EQ(BaselineEngine(key, [] { return day; }).baselines().value("editor").samples, 40);
}

} // namespace
