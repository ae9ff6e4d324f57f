#include "core/advisor/AIAdvisor.h"
#include "core/advisor/AdvisorTexts.h"
#include "core/advisor/GenVerdict.h"
#include "support/QtPrinting.h"

#include <QCryptographicHash>
#include <gtest/gtest.h>

using namespace quelmo;

namespace {

std::string sha256(const QString& text) {
    return QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Sha256).toHex().data();
}

// The model's answers were tuned against exactly these bytes, so a digest of the whole text is
// the comparison: any changed, added or dropped byte (a trailing line feed too) fails it.
TEST(AdvisorTexts, InstructionsAndSchemaAreTheExactBytes) {
    EXPECT_EQ(sha256(advisorInstructions(Language::english)),
              "568a3022749b38929a957b9116bdcc2e36f1c001d19508e68d05072dcec92561");
    EXPECT_EQ(sha256(advisorInstructions(Language::korean)),
              "53ad4799fe6f9f7b04e8b46237e5adc5b51c47dea868492076208998edb62d80");
    // The four properties in their order, with their types and guides and no other constraint,
    // shown to the model after the candidate prompt and one blank line.
    EXPECT_EQ(sha256(GenVerdict::promptWithSchema("P")),
              "1ae32a4fdaef5b865ecce6471e3e03d46a1668edf8151bbff141ac130bc82948");
}

TEST(AdvisorTexts, PromptsMatchTheWorkedExamplesAndTheIdleBoundaries) {
    EXPECT_EQ(buildPrompt("Preview", 0.3, 180.6, "Unused app", 125.5, false, Language::english),
              "App/process: 'Preview'\n"
              "Behavior signals:\n"
              "- Last seen 2h 5m ago\n"
              "- Visible window on screen: no\n"
              "- CPU 0%, RAM 180MB\n"
              "- Detection reason: 'Unused app'\n"
              "Decide whether it's unused and safe to close (cut), or should stay (keep).");
    // The Korean twin, with a window and figures of two and four digits, whose text is
    //   앱/프로세스: 'Preview'
    //   행동 신호:
    //   - 마지막으로 본 지 2시간 5분 전
    //   - 화면에 보이는 창: 있음
    //   - CPU 12%, RAM 2048MB
    //   - 탐지 사유: '안 쓰는 앱'
    //   지금 안 쓰는 거라 닫아도 되는지(cut), 아니면 켜둬야 하는지(keep) 판단해줘.
    EXPECT_EQ(
        sha256(buildPrompt("Preview", 12.9, 2048.7, "안 쓰는 앱", 125.5, true, Language::korean)),
        "409fc201d71b54f0aa6f7588ce4bc44181e4f7d30d66aa0f94f847f0ade2cb70");

    constexpr Language english = Language::english;
    constexpr Language korean = Language::korean;
    const std::tuple<std::optional<double>, Language, const char*> idleLines[] = {
        {59.99, english, "- Last seen 59m ago"},
        {60.0, english, "- Last seen 1h 0m ago"},
        {119.999, english, "- Last seen 1h 59m ago"},
        {std::nullopt, english, "- Never brought to front this session"},
        {59.99, korean, "- 마지막으로 본 지 59분 전"},
        {std::nullopt, korean, "- 이번 세션에서 한 번도 앞에 띄운 적 없음"}};
    for (const auto& [idle, language, line] : idleLines)
        EXPECT_EQ(buildPrompt("x", 0, 0, "r", idle, false, language).split('\n').value(2), line);
    // A name that looks like a marker is sent as it is.
    EXPECT_EQ(buildPrompt("%2", 0, 0, "r", 1, false, english).split('\n').value(0),
              "App/process: '%2'");
    EXPECT_EQ(wholeNumber(-0.4), "0"); // never "-0"
}

// Each answer maps one way under the right order of tests and another way under a wrong one.
TEST(AIAdvisor, NormalizersTestDangerAndCautionBeforeSafeAndKeepBeforeCut) {
    const auto risk = &AIAdvisor::normalizeRisk;
    const auto rec = &AIAdvisor::normalizeRec;
    const std::tuple<QString (*)(const QString&), const char*, QStringList> rows[] = {
        {risk, "위험", {"DANGER", "safe, not dangerous", "주의, 위험할 수도"}},
        {risk, "주의", {"CAUTION", "Warning", "", "Safe with caution", "안전하지만 주의"}},
        {risk, "안전", {"SAFE", "unsafe", "안전"}},
        {rec, "keep", {"Keep running", "close", "", "cut, don't keep", "켜둘 것", "유지"}},
        {rec, "keep", {"둘 다 닫기"}},
        {rec, "cut", {"cut", "CUT", "scuttle", "닫아도 됨", "자르기"}}};
    for (const auto& [normalize, expected, answers] : rows)
        for (const QString& answer : answers)
            EXPECT_EQ(normalize(answer), expected) << answer.toStdString();
}

} // namespace
