#include "core/cleanup/BaselineEngine.h"
#include "core/cleanup/FocusTracker.h"
#include "core/metrics/SystemMetrics.h"
#include "core/settings/Preferences.h"
#include "core/settings/SettingsKeys.h"
#include "support/TempSettings.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <cmath>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

const QString baselinesKey = QString::fromLatin1(SettingsKeys::baselines);

QByteArray settingsFileText() {
    QSettings().sync();
    QFile file(QSettings().fileName());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Replaces the whole settings file, as a damaged disk or a careless edit would.
void writeSettingsFile(const QByteArray& bytes) {
    QSettings().sync();
    QDir().mkpath(QFileInfo(QSettings().fileName()).absolutePath());
    QFile file(QSettings().fileName());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

TEST(SettingsStoreTest, EveryKeyIsStoredUnderItsNameAndSurvivesARestart) {
    test::TempSettings::clear();
    SystemMetrics hub{Platform{}};
    EXPECT_TRUE(QSettings().allKeys().isEmpty()); // nothing is written before a change
    hub.setSensitivity(0.8);
    Preferences::setLangRaw("ko");
    Preferences::setCatStyleRaw("cheese");
    QSettings().setValue(SettingsKeys::focusLastActive, QVariantMap{{"mousepad", 1.7e9}});
    BaselineEngine engine(baselinesKey);
    for (int i = 0; i < 29; ++i)
        engine.observe({ProcInfo{1, "mousepad", 12.0, 0, "alice"}});
    EXPECT_FALSE(BaselineEngine::openStore()->contains(baselinesKey)); // every 30th observation
    engine.observe({});
    engine.waitForWrites();

    const QByteArray text = settingsFileText();
    for (const char* line : {"quelmo.lang=ko", "quelmo.catStyle=cheese", "nuvex.sensitivity=0.8"})
        EXPECT_TRUE(text.contains(line)) << line;
    EXPECT_EQ(QSettings().allKeys().size(), 4);
    // The one document that grows has a file of its own beside it.
    const std::unique_ptr<QSettings> baselines = BaselineEngine::openStore();
    EXPECT_EQ(QFileInfo(baselines->fileName()).dir(), QFileInfo(QSettings().fileName()).dir());
    EXPECT_EQ(baselines->allKeys(), QStringList{baselinesKey});
    EXPECT_EQ(Preferences::langRaw(), "ko");
    EXPECT_EQ(Preferences::catStyleRaw(), "cheese");
    EXPECT_DOUBLE_EQ(SystemMetrics{Platform{}}.sensitivity(), 0.8);
    EXPECT_EQ(BaselineEngine(baselinesKey).baselines(), engine.baselines());
    EXPECT_EQ(FocusTracker(nullptr).lastActiveSeconds("mousepad"), 1.7e9);
}

TEST(SettingsStoreTest, DamagedFilesAndValuesReadAsDefaultsAndSpareTheOtherKeys) {
    test::TempSettings::clear();
    writeSettingsFile(QByteArrayLiteral("[General]\n"
                                        "quelmo.catStyle=black\n"
                                        "quelmo.lang=@ByteArray(ko)\n"
                                        "\xff\xfe\x00\x01garbage ==== [[[\n"
                                        "nuvex.sensitivity=@Variant(\\0\\0\\0\\xff\\xff)\n"
                                        "nuvex.baselines.v1=@ByteArray(not json)\n"
                                        "quelmo.focus.lastActive.v1=12 monkeys, more\n"));
    EXPECT_EQ(Preferences::langRaw(), "auto");
    EXPECT_TRUE(BaselineEngine(baselinesKey).baselines().isEmpty());
    EXPECT_FALSE(FocusTracker(nullptr).lastActiveSeconds("12 monkeys"));
    SystemMetrics hub{Platform{}};
    EXPECT_DOUBLE_EQ(hub.sensitivity(), 0.5);
    hub.setSensitivity(0.3); // rewrites the file
    EXPECT_EQ(Preferences::catStyleRaw(), "black");
    EXPECT_EQ(BaselineEngine::openStore()->value(baselinesKey).toByteArray(), "not json");
    EXPECT_FALSE(QSettings().contains(baselinesKey)); // moved out, as it was
    EXPECT_TRUE(settingsFileText().contains("quelmo.catStyle=black"));
}

TEST(SettingsStoreTest, TheFocusHistoryKeepsTheMostRecentApplications) {
    test::TempSettings::clear();
    QVariantMap history;
    for (qsizetype i = 0; i < FocusTracker::maxEntries + 3; ++i)
        history.insert(QStringLiteral("app-%1").arg(i), 1.7e9 + static_cast<double>(i));
    QSettings().setValue(SettingsKeys::focusLastActive, history);
    const FocusTracker tracker(nullptr);
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(tracker.lastActiveSeconds(QStringLiteral("app-%1").arg(i))) << i;
    EXPECT_EQ(tracker.lastActiveSeconds("app-3"), 1.7e9 + 3);
}

TEST(SettingsStoreTest, AStoredSensitivityThatIsNotAFiniteNumberLeavesTheDefault) {
    for (const char* text : {"nan", "NaN", "inf", "-inf", "1e999", "-1e999", "0x1p3", ""}) {
        writeSettingsFile(QByteArray("[General]\nnuvex.sensitivity=") + text + "\n");
        EXPECT_DOUBLE_EQ(SystemMetrics{Platform{}}.sensitivity(), 0.5) << text;
    }
    for (const double value : {std::nan(""), HUGE_VAL}) { // stored as typed values
        test::TempSettings::clear();
        QSettings().setValue(SettingsKeys::sensitivity, value);
        EXPECT_DOUBLE_EQ(SystemMetrics{Platform{}}.sensitivity(), 0.5) << value;
    }
    // Finite values are used as they are, even outside the slider's range.
    for (const double value : {0.8, -3.0, 1e300}) {
        writeSettingsFile(QByteArray("[General]\nnuvex.sensitivity=") +
                          QByteArray::number(value, 'g', 17) + "\n");
        EXPECT_DOUBLE_EQ(SystemMetrics{Platform{}}.sensitivity(), value) << value;
    }
}

} // namespace
