#include "QtPrinting.h"
#include "advisor/AdvisorTexts.h"

#include <QCryptographicHash>
#include <QStringList>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace Qt::StringLiterals;

namespace {

QByteArray sha256(const QString& text) {
    return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex();
}

QString signalLine(std::optional<double> idle, bool korean) {
    return buildPrompt("x", 0, 0, "r", idle, false, korean).split('\n').value(2);
}

TEST(AdvisorTexts, InstructionsAreTheExactBytes) {
    const QString english = advisorInstructions(false);
    const QString korean = advisorInstructions(true);
    EXPECT_EQ(english.toUtf8().size(), 849);
    EXPECT_EQ(korean.toUtf8().size(), 996);
    EXPECT_EQ(sha256(english), "568a3022749b38929a957b9116bdcc2e36f1c001d19508e68d05072dcec92561");
    EXPECT_EQ(sha256(korean), "53ad4799fe6f9f7b04e8b46237e5adc5b51c47dea868492076208998edb62d80");
    for (const QString& text : {english, korean}) {
        const QStringList lines = text.split('\n');
        ASSERT_EQ(lines.size(), 12); // so no line feed after the last line
        EXPECT_TRUE(lines[3].isEmpty() && lines[9].isEmpty());
        EXPECT_TRUE(lines[10].contains(u"\u2014 SAFE / CAUTION / DANGER."));
    }
}

TEST(AdvisorTexts, PromptsMatchTheWorkedExamples) {
    EXPECT_EQ(buildPrompt("Preview", 0.3, 180.6, "Unused app", 125.5, false, false),
              "App/process: 'Preview'\n"
              "Behavior signals:\n"
              "- Last seen 2h 5m ago\n"
              "- Visible window on screen: no\n"
              "- CPU 0%, RAM 180MB\n"
              "- Detection reason: 'Unused app'\n"
              "Decide whether it's unused and safe to close (cut), or should stay (keep).");
    EXPECT_EQ(buildPrompt("Preview", 12.9, 2048.7, u"안 쓰는 앱"_s, 125.5, true, true),
              u"앱/프로세스: 'Preview'\n"
              u"행동 신호:\n"
              u"- 마지막으로 본 지 2시간 5분 전\n"
              u"- 화면에 보이는 창: 있음\n"
              u"- CPU 12%, RAM 2048MB\n"
              u"- 탐지 사유: '안 쓰는 앱'\n"
              u"지금 안 쓰는 거라 닫아도 되는지(cut), 아니면 켜둬야 하는지(keep) 판단해줘."_s);
}

TEST(AdvisorTexts, IdlePhrasingAtTheHourAndMinuteBoundaries) {
    EXPECT_EQ(signalLine(59.99, false), "- Last seen 59m ago");
    EXPECT_EQ(signalLine(60.0, false), "- Last seen 1h 0m ago");
    EXPECT_EQ(signalLine(0.5, false), "- Last seen 0m ago");
    EXPECT_EQ(signalLine(119.999, false), "- Last seen 1h 59m ago");
    EXPECT_EQ(signalLine(std::nullopt, false), "- Never brought to front this session");
    EXPECT_EQ(signalLine(59.99, true), u"- 마지막으로 본 지 59분 전"_s);
    EXPECT_EQ(signalLine(60.0, true), u"- 마지막으로 본 지 1시간 0분 전"_s);
    EXPECT_EQ(signalLine(std::nullopt, true), u"- 이번 세션에서 한 번도 앞에 띄운 적 없음"_s);
}

TEST(AdvisorTexts, NumbersTruncateAndTextsGoInUnescaped) {
    const QString prompt =
        buildPrompt("Bob's \"App\"", 150.7, 0.9, "it's", std::nullopt, true, false);
    EXPECT_TRUE(prompt.startsWith("App/process: 'Bob's \"App\"'\n"));
    EXPECT_TRUE(prompt.contains("\n- Visible window on screen: yes\n- CPU 150%, RAM 0MB\n"));
    EXPECT_TRUE(prompt.contains("- Detection reason: 'it's'\n"));
    EXPECT_EQ(wholeNumber(-2.9), "-2");
    EXPECT_EQ(wholeNumber(-0.4), "0");
}

} // namespace
