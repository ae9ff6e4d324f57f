#include "settings/AppLang.h"

#include "TempSettings.h"
#include "cleanup/CleanupCandidate.h"
#include "settings/SettingsKeys.h"

#include <QSettings>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

void storeRaw(const char* raw) {
    QSettings().setValue(SettingsKeys::lang, raw);
}
void systemLanguages(const QStringList& languages) {
    AppLang::setPreferredLanguagesSource([languages] { return languages; });
}

class AppLangTest : public ::testing::Test {
protected:
    void SetUp() override { test::TempSettings::clear(); }
    void TearDown() override { AppLang::setPreferredLanguagesSource({}); }
};

TEST_F(AppLangTest, StoredChoiceWinsElseTheFirstPreferredLanguageDecides) {
    struct Case {
        const char* stored; // nullptr: nothing stored
        QStringList preferred;
        const char* expected;
    };
    for (const Case& c :
         {Case{nullptr, {"ko-KR", "en-US"}, "ko"}, Case{"auto", {"en-KR", "ko"}, "en"},
          Case{"auto", {"KO-kr"}, "ko"}, Case{"auto", {}, "en"}, Case{"en", {"ko-KR"}, "en"},
          Case{"ko", {"en-US"}, "ko"}, Case{"KO", {"en-US"}, "en"}, Case{"KO", {"ko-KR"}, "ko"},
          Case{"fr", {"fr-FR"}, "en"}}) {
        test::TempSettings::clear();
        if (c.stored)
            storeRaw(c.stored);
        systemLanguages(c.preferred);
        EXPECT_EQ(AppLang::effective(), QLatin1String(c.expected))
            << (c.stored ? c.stored : "(none)") << " / " << c.preferred.join(',').toStdString();
    }
    EXPECT_EQ(AppLang::stored(), AppLang(AppLang::automatic));         // "fr" is unknown...
    EXPECT_EQ(QSettings().value(SettingsKeys::lang).toString(), "fr"); // ...and left as it is
}

TEST_F(AppLangTest, ExactlyThreeRawValuesAndLabelsInTheEffectiveLanguage) {
    QStringList raws;
    for (const AppLang lang : AppLang::allCases())
        raws << lang.rawValue();
    EXPECT_EQ(raws, QStringList({"auto", "ko", "en"}));
    EXPECT_EQ(AppLang::fromRaw("ko"), AppLang(AppLang::ko));
    for (const char* bad : {"Auto", "KO", " en", "en-US", ""})
        EXPECT_FALSE(AppLang::fromRaw(bad)) << bad;

    systemLanguages({"en-US"});
    EXPECT_EQ(AppLang(AppLang::automatic).pickerLabel(), "System");
    EXPECT_EQ(AppLang(AppLang::ko).pickerLabel(), QString::fromUtf8("한국어"));
    EXPECT_EQ(label(CleanupReason::idleApp), "Unused app");
    AppLang::store(AppLang::ko);
    EXPECT_EQ(AppLang(AppLang::automatic).pickerLabel(), QString::fromUtf8("시스템"));
    EXPECT_EQ(AppLang(AppLang::en).pickerLabel(), "English");
    EXPECT_EQ(label(CleanupReason::idleApp), QString::fromUtf8("안 쓰는 앱"));
}

} // namespace
