#include "core/settings/AppLang.h"

#include <gtest/gtest.h>

using namespace quelmo;

// Only the first preferred language counts, a stored choice must match exactly, and the "auto"
// label follows the language it resolves to.
TEST(AppLangTest, ResolvesStoredChoiceThenFirstPreferredLanguage) {
    const struct {
        QString stored;
        QStringList preferred;
        QString expected;
    } rows[] = {
        {"auto", {"ko-KR", "en-US"}, "ko"},
        {"auto", {"en-KR", "ko-KR"}, "en"},
        {"auto", {"KO-Kore-KR"}, "ko"},
        {"auto", {}, "en"},
        {"en", {"ko-KR"}, "en"},
        {"KO", {"en-US"}, "en"},
        {"fr", {"ko"}, "ko"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.stored.toStdString() + " " + row.preferred.join(',').toStdString());
        EXPECT_EQ(AppLang::resolve(row.stored, row.preferred), row.expected);
    }
    EXPECT_FALSE(AppLang::fromRaw("Auto"));
    EXPECT_EQ(AppLang::fromRaw("auto"), AppLang(AppLang::automatic));
}
