#include "core/cleanup/CleanupCandidate.h"
#include "core/texts/Percent.h"
#include "core/texts/Texts.h"
#include "support/QtPrinting.h"

#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>
#include <limits>

namespace quelmo {
namespace {

QString en(TextKey key) {
    return text(key, Language::english);
}

QString ko(TextKey key) {
    return text(key, Language::korean);
}

QList<int> placeholders(const QString& text) {
    QList<int> found;
    static const QRegularExpression marker(QStringLiteral("%(\\d+)"));
    for (const QRegularExpressionMatch& m : marker.globalMatch(text))
        found.append(m.captured(1).toInt());
    std::sort(found.begin(), found.end());
    return found;
}

// A missing, misplaced or half-translated entry, or a template whose two languages take
// different values, fails here before any view shows it.
TEST(TextTable, EveryKeyHasBothLanguagesAndTheSamePlaceholders) {
    ASSERT_EQ(textTable().size(), static_cast<std::size_t>(TextKey::keyCount));
    for (std::size_t i = 0; i < textTable().size(); ++i) {
        const auto key = static_cast<TextKey>(i);
        SCOPED_TRACE(en(key).toStdString());
        EXPECT_EQ(textTable()[i].key, key);
        EXPECT_FALSE(en(key).isEmpty());
        EXPECT_FALSE(ko(key).isEmpty());
        const QList<int> markers = placeholders(en(key));
        EXPECT_EQ(placeholders(ko(key)), markers);
        for (qsizetype m = 0; m < markers.size(); ++m)
            EXPECT_EQ(markers[m], m + 1) << "placeholders run %1, %2, ... without gaps";
    }
}

TEST(TextTable, TextsAreTheExactBytesAndTemplatesFillInOnePass) {
    EXPECT_EQ(en(TextKey::quitNuvex), "Quit Nuvex");
    EXPECT_EQ(en(TextKey::collecting), "Collecting…");
    EXPECT_EQ(ko(TextKey::modelNotSupported), "이 기기는 Apple Intelligence 미지원");
    EXPECT_EQ(en(TextKey::idleForAWhileDetail), "Not opened in a while (10–60 min by sensitivity)");
    EXPECT_EQ(textWith(TextKey::hoursMinutesAgo, Language::korean, "2", "5"), "2시간 5분 전");
    // A value that looks like a marker is not filled in again.
    EXPECT_EQ(textWith(TextKey::footerNotesOff, Language::english, QStringLiteral("%1 down")),
              "AI notes off — %1 down");
}

TEST(PercentText, WholeNumbersWithHalvesAwayFromZero) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double inf = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> fractions[] = {
        {0.5, "50%"},  {0.004, "0%"},  {0.125, "13%"}, {0.005, "1%"},
        {1.0, "100%"}, {-0.004, "0%"}, {nan, "0%"},    {inf, "0%"}};
    for (const auto& [fraction, shown] : fractions)
        EXPECT_EQ(fractionText(fraction), shown) << fraction;
    EXPECT_EQ(percentText(150.4), "150%"); // a process may use more than one CPU
}

TEST(CleanupReasons, RawValuesRoundTripAndEachHasItsOwnWords) {
    QSet<QString> labels;
    for (const CleanupReason reason : {CleanupReason::spike, CleanupReason::sustained,
                                       CleanupReason::ramHog, CleanupReason::idleApp}) {
        EXPECT_EQ(cleanupReasonFromRaw(rawValue(reason)), reason);
        labels.insert(label(reason, Language::english));
        labels.insert(label(reason, Language::korean));
    }
    EXPECT_EQ(labels.size(), 8);
    EXPECT_FALSE(cleanupReasonFromRaw("Spike"));
}

} // namespace
} // namespace quelmo
