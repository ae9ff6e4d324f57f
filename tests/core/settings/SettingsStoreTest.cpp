#include "core/cleanup/BaselineEngine.h"
#include "core/cleanup/FocusTracker.h"
#include "core/metrics/SystemMetrics.h"
#include "core/settings/Preferences.h"
#include "core/settings/SettingsKeys.h"
#include "support/FakePlatform.h"
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
    // The other keys are read back from files written by hand in the tests below.
    EXPECT_EQ(BaselineEngine(baselinesKey).baselines(), engine.baselines());
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

TEST(SettingsStoreTest, AStoredSensitivityThatIsNotAFiniteNumberLeavesTheDefault) {
    for (const char* text : {"nan", "-inf", "1e999", "0x1p3", ""}) {
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

namespace {

// A desktop that lets the test bring applications to the front.
struct ActivatingDesktop : test::FakeDesktop {
    std::function<void(const QString&)> activated;
    void setActivationHandler(std::function<void(const QString&)> handler) override {
        activated = std::move(handler);
    }
};

QVariantMap storedHistory() {
    return QSettings().value(SettingsKeys::focusLastActive).toMap();
}

// Two sessions of one user share the settings: each save keeps the other's applications, the
// later time of an application wins, and the history stays within its bound.
TEST(SettingsStoreTest, FocusHistoriesOfTwoSessionsMergeOnEverySave) {
    test::TempSettings::clear();
    ActivatingDesktop seatOne, seatTwo;
    FocusTracker one(&seatOne), two(&seatTwo); // both loaded the same, empty history
    seatOne.activated("mail");
    seatTwo.activated("notes");
    seatOne.activated("editor");
    EXPECT_EQ(QSet<QString>(storedHistory().keyBegin(), storedHistory().keyEnd()),
              (QSet<QString>{"mail", "notes", "editor"}));

    // The other session used the mail later than this one: its time stays, here too.
    const double later = FocusTracker::nowSeconds() + 3600;
    QVariantMap history = storedHistory();
    history.insert("mail", later);
    QSettings().setValue(SettingsKeys::focusLastActive, history);
    seatTwo.activated("mail");
    EXPECT_EQ(storedHistory().value("mail").toDouble(), later);
    seatTwo.activated("notes");
    EXPECT_EQ(two.lastActiveSeconds("mail"), later);

    // A history over its bound on disk loses its oldest when loaded, and again when saved with
    // one new application; the newest stay.
    history.clear();
    for (qsizetype i = 0; i <= FocusTracker::maxEntries; ++i)
        history.insert(QStringLiteral("app-%1").arg(i), 1.7e9 + static_cast<double>(i));
    QSettings().setValue(SettingsKeys::focusLastActive, history);
    const FocusTracker loaded(nullptr);
    EXPECT_FALSE(loaded.lastActiveSeconds("app-0"));
    EXPECT_EQ(loaded.lastActiveSeconds("app-1"), 1.7e9 + 1);
    seatOne.activated("terminal");
    const QVariantMap stored = storedHistory();
    EXPECT_EQ(stored.size(), FocusTracker::maxEntries);
    EXPECT_TRUE(stored.contains("terminal") && stored.contains("app-1000"));
    EXPECT_FALSE(stored.contains("app-1"));
}

// The settings folder is deleted while the program runs: whichever save comes next, every
// setting is written again.
TEST(SettingsStoreTest, ASaveAfterTheFolderWasDeletedWritesEverySettingAgain) {
    test::TempSettings::clear();
    SystemMetrics hub{Platform{}};
    ActivatingDesktop desktop;
    FocusTracker tracker(&desktop);
    BaselineEngine engine(baselinesKey);
    hub.setSensitivity(0.8);
    Preferences::setLangRaw("ko");
    Preferences::setCatStyleRaw("cheese");
    desktop.activated("mail");
    const QString folder = QFileInfo(QSettings().fileName()).absolutePath();
    const auto expectEverySetting = [](const char* after) {
        const QByteArray text = settingsFileText();
        for (const char* line : {"quelmo.lang=ko", "nuvex.sensitivity=0.8"})
            EXPECT_TRUE(text.contains(line)) << line << " after " << after;
        EXPECT_TRUE(storedHistory().contains("mail")) << "after " << after;
    };

    ASSERT_TRUE(QDir(folder).removeRecursively());
    Preferences::setCatStyleRaw("black");
    expectEverySetting("a preference");
    EXPECT_TRUE(settingsFileText().contains("quelmo.catStyle=black"));

    ASSERT_TRUE(QDir(folder).removeRecursively());
    desktop.activated("notes");
    expectEverySetting("an activation");
    EXPECT_TRUE(settingsFileText().contains("quelmo.catStyle=black"));

    ASSERT_TRUE(QDir(folder).removeRecursively());
    for (int i = 0; i < 30; ++i) // the 30th observation stores the baselines
        engine.observe({ProcInfo{1, "mail", 12.0, 0, "alice"}});
    engine.waitForWrites();
    expectEverySetting("the baselines");
    EXPECT_TRUE(BaselineEngine::openStore()->contains(baselinesKey));
}

} // namespace
