#include "TempSettings.h"
#include "cleanup/BaselineEngine.h"
#include "cleanup/FocusTracker.h"
#include "metrics/SystemMetrics.h"
#include "settings/AppLang.h"
#include "settings/Preferences.h"
#include "settings/SettingsKeys.h"

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

class SettingsStoreTest : public ::testing::Test {
protected:
    void SetUp() override { test::TempSettings::clear(); }
};

TEST_F(SettingsStoreTest, EveryKeyIsWrittenUnderItsNameAndReadBackAfterARestart) {
    Preferences::setLangRaw("ko");
    Preferences::setCatStyleRaw("cheese");
    SystemMetrics{Platform{}}.setSensitivity(0.8);
    BaselineEngine engine(baselinesKey);
    for (int i = 0; i < 30; ++i)
        engine.observe({ProcInfo{1, "mousepad", 12.0, 0, "alice"}});

    const QByteArray text = settingsFileText();
    for (const char* line : {"quelmo.lang=ko", "quelmo.catStyle=cheese", "nuvex.sensitivity=0.8",
                             "nuvex.baselines.v1=\"@ByteArray("})
        EXPECT_TRUE(text.contains(line)) << line;
    EXPECT_EQ(Preferences::langRaw(), "ko");
    EXPECT_EQ(Preferences::catStyleRaw(), "cheese");
    EXPECT_DOUBLE_EQ(SystemMetrics{Platform{}}.sensitivity(), 0.8);
    EXPECT_EQ(BaselineEngine(baselinesKey).baselines().value("mousepad").samples, 30);
}

TEST_F(SettingsStoreTest, DamagedFilesAndValuesReadAsDefaultsAndSpareTheOtherKeys) {
    writeSettingsFile("[General]\n"
                      "quelmo.catStyle=black\n"
                      "quelmo.lang=@Variant(\\x1\\x2\\xff\n"
                      "\xff\xfe\x00\x01garbage ==== [[[\n"
                      "nuvex.sensitivity=@ByteArray(zz\n"
                      "nuvex.baselines.v1=@Variant(\\0\\0\\0\\xff\\xff)\n"
                      "quelmo.focus.lastActive.v1=12 monkeys, more\n");
    EXPECT_EQ(AppLang::stored(), AppLang(AppLang::automatic));
    EXPECT_TRUE(BaselineEngine(baselinesKey).baselines().isEmpty());
    EXPECT_FALSE(FocusTracker(nullptr).lastActiveSeconds("12 monkeys"));
    SystemMetrics hub{Platform{}};
    EXPECT_DOUBLE_EQ(hub.sensitivity(), 0.5);
    hub.setSensitivity(0.3);
    EXPECT_EQ(Preferences::catStyleRaw(), "black");
    EXPECT_TRUE(settingsFileText().contains("quelmo.catStyle=black"));

    QByteArray noise;
    quint32 x = 2463534242u; // xorshift: the same noise on every run
    for (int i = 0; i < 4096; ++i, x ^= x << 13, x ^= x >> 17, x ^= x << 5)
        noise.append(static_cast<char>(x & 0xff));
    writeSettingsFile(noise);
    EXPECT_EQ(Preferences::catStyleRaw(), "white");
    EXPECT_TRUE(BaselineEngine(baselinesKey).baselines().isEmpty());
    EXPECT_DOUBLE_EQ(SystemMetrics{Platform{}}.sensitivity(), 0.5);
}

} // namespace
