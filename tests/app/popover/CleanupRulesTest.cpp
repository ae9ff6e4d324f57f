#include "app/popover/CleanupRules.h"

#include <gtest/gtest.h>

using namespace quelmo;
namespace rules = quelmo::cleanup_rules;

constexpr Language english = Language::english;
constexpr Language korean = Language::korean;

namespace {

CleanupCandidate candidate(qint64 pid, const QString& name) {
    CleanupCandidate c;
    c.proc.id = pid;
    c.proc.name = name;
    return c;
}

AIVerdict verdict(const QString& recommendation, const QString& risk = QStringLiteral("안전")) {
    return AIVerdict{QStringLiteral("note"), recommendation == QLatin1String("cut"), risk,
                     recommendation};
}

} // namespace

// A bulk cut takes every candidate the advisor did not ask to keep, and is offered from two on.
TEST(CleanupRulesTest, BulkCutLeavesKeptCandidatesOut) {
    QList<CleanupCandidate> two{candidate(1, "a"), candidate(2, "b")};
    two[1].displayName = QStringLiteral("Bee"); // verdicts go by display name when there is one
    rules::Verdicts verdicts{{"a", verdict("cut")}, {"Bee", verdict("cut")}};
    EXPECT_EQ(rules::cutTargets(two, verdicts).size(), 2);

    verdicts["Bee"] = verdict("keep");
    const auto targets = rules::cutTargets(two, verdicts);
    ASSERT_EQ(targets.size(), 1);
    EXPECT_EQ(targets[0].id(), 1);
    EXPECT_LT(targets.size(), rules::cutAllMinimum);
    EXPECT_TRUE(rules::isKeep(two[1], verdicts));
    EXPECT_FALSE(rules::isKeep(two[1], {{"b", verdict("keep")}}));

    const QList<CleanupCandidate> unjudged{candidate(1, "a"), candidate(2, "b"), candidate(3, "c")};
    EXPECT_EQ(rules::cutTargets(unjudged, {}).size(), 3);
}

// The status dot: no verdict, then keep, then the risk; a risk word the program does not know is
// told as caution.
TEST(CleanupRulesTest, StatusColourAndRiskWordsFollowTheirOrder) {
    EXPECT_EQ(rules::statusColor(std::nullopt), "gray");
    EXPECT_EQ(rules::statusColor(verdict("keep", "위험")), "sage");
    EXPECT_EQ(rules::statusColor(verdict("cut", "위험")), "rose");
    EXPECT_EQ(rules::statusColor(verdict("cut", "주의")), "peach");
    EXPECT_EQ(rules::statusColor(verdict("cut", "안전")), "sage");
    EXPECT_EQ(rules::statusColor(verdict("cut", "???")), "sage");

    EXPECT_EQ(rules::riskLabel("", english), "Caution");
    EXPECT_EQ(rules::riskColor(""), "peach");
}

TEST(CleanupRulesTest, IdleTextAndDetailInBothLanguages) {
    const std::pair<double, const char*> times[] = {
        {0.3, "1m ago"},    {59.9, "59m ago"},      {60, "1h ago"},
        {125, "2h 5m ago"}, {179.99, "2h 59m ago"},
    };
    for (const auto& [minutes, shown] : times)
        EXPECT_EQ(rules::idleText(minutes, english), shown) << minutes;

    CleanupCandidate hidden = candidate(1, "app");
    hidden.reason = CleanupReason::idleApp;
    hidden.idleMinutes = 60;
    EXPECT_EQ(rules::idleDetail(hidden, english), "Last used 1h ago · no window");

    CleanupCandidate windowed = hidden;
    windowed.hasWindow = true;
    windowed.idleMinutes = 5;
    EXPECT_EQ(rules::idleDetail(windowed, english), "Last used 5m ago");

    CleanupCandidate neverOpened = hidden;
    neverOpened.idleMinutes.reset();
    EXPECT_EQ(rules::idleDetail(neverOpened, english), "Not opened this session · no window");

    CleanupCandidate spike = candidate(2, "hog");
    spike.reason = CleanupReason::spike;
    EXPECT_EQ(rules::idleDetail(spike, english), "");
}

// The mascot travels from its lane to 22 points above the row's middle, and only for more
// than 6 points.
TEST(CleanupRulesTest, TravelDistanceFromRowPositions) {
    const QHash<qint64, double> ys{{rules::laneKey, 100}, {7, 120}, {8, 129}, {9, 180}};
    EXPECT_EQ(rules::travelDistance({{9, 180}}, 9), 0);
    EXPECT_EQ(rules::travelDistance(ys, 7), 0);
    EXPECT_FALSE(rules::hasJourney(rules::travelDistance(ys, 7)));
    EXPECT_EQ(rules::travelDistance(ys, 8), 7);
    EXPECT_TRUE(rules::hasJourney(rules::travelDistance(ys, 8)));
    EXPECT_FALSE(rules::hasJourney(6.0));
}

TEST(CleanupRulesTest, FooterTellsTheAdvisorsState) {
    const AIAdvisor::Status available{true, {}};
    const AIAdvisor::Status off{false, QStringLiteral("Model not ready")};
    EXPECT_EQ(rules::footerText(off, off, korean), "AI 설명 꺼짐 — Model not ready");
    EXPECT_EQ(rules::footerText(off, available, english), "");
    EXPECT_EQ(rules::footerText(off, AIAdvisor::Status{false, {}}, english), "");
}

// Qt Quick's spring, stepped every 16 ms, settles like a spring of the asked response: a
// damping fraction near 1 lands without overshoot in about one response, a lower one overshoots.
TEST(CleanupRulesTest, SpringParametersGiveTheDesignedFeel) {
    const auto simulate = [](rules::SpringParameters p, double seconds, double* peak) {
        double x = 0, v = 0;
        *peak = 0;
        for (int i = 0; i < static_cast<int>(seconds / 0.016); ++i) {
            v = v + p.spring * (1 - x) - p.damping * v;
            x += v * 0.016;
            *peak = std::max(*peak, x);
        }
        return x;
    };
    double peak = 0;
    EXPECT_NEAR(simulate(rules::springFor(0.5, 0.85), 0.6, &peak), 1.0, 0.02);
    EXPECT_LT(peak, 1.02);
    simulate(rules::springFor(0.3, 0.72), 1.0, &peak);
    EXPECT_GT(peak, 1.005);
    EXPECT_LT(peak, 1.1);
}
