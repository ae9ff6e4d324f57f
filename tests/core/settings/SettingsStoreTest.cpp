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
    EXPECT_FALSE(QSettings().contains(baselinesKey)); // written every 30th observation
    engine.observe({});

    const QByteArray text = settingsFileText();
    for (const char* line : {"quelmo.lang=ko", "quelmo.catStyle=cheese", "nuvex.sensitivity=0.8",
                             "nuvex.baselines.v1=\"@ByteArray("})
        EXPECT_TRUE(text.contains(line)) << line;
    EXPECT_EQ(QSettings().allKeys().size(), 5);
    EXPECT_EQ(Preferences::langRaw(), "ko");
    EXPECT_EQ(Preferences::catStyleRaw(), "cheese");
    EXPECT_DOUBLE_EQ(SystemMetrics{Platform{}}.sensitivity(), 0.8);
    EXPECT_EQ(BaselineEngine(baselinesKey).baselines(), engine.baselines());
    EXPECT_EQ(FocusTracker(nullptr).lastActiveSeconds("mousepad"), 1.7e9);
}

TEST(SettingsStoreTest, DamagedFilesAndValuesReadAsDefaultsAndSpareTheOtherKeys) {
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
    EXPECT_EQ(QSettings().value(baselinesKey).toByteArray(), "not json");
    EXPECT_TRUE(settingsFileText().contains("quelmo.catStyle=black"));
}

} // namespace
