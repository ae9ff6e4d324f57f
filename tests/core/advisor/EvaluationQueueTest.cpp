#include "core/advisor/EvaluationQueue.h"

#include "ScriptedModel.h"
#include "core/advisor/AdvisorTexts.h"
#include "core/settings/SettingsKeys.h"
#include "support/QtPrinting.h"

#include <QCoreApplication>
#include <QSettings>
#include <algorithm>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;

namespace {

using enum CleanupReason;

// 189379379 bytes are 180.6 MiB but 189.4 MB, which the prompt would show as 189.
CleanupCandidate candidate(const QString& name, CleanupReason reason,
                           std::optional<QString> displayName = std::nullopt) {
    const std::optional<double> idle = reason == idleApp ? std::optional(125.5) : std::nullopt;
    return {{0, name, 42.5, 189379379.0, {}}, reason, idle, false, displayName};
}

const QString keepAnswer =
    R"({"explanation":"Web browser","safeToQuit":false,"risk":"CAUTION","recommendation":"keep"})";

// A queue asking a scripted model through a real advisor, in English unless a test says otherwise.
class EvaluationQueueTest : public ::testing::Test {
protected:
    void SetUp() override { QSettings().setValue(SettingsKeys::lang, "en"); }
    void TearDown() override { QSettings().remove(SettingsKeys::lang); }

    QStringList queued() const {
        QStringList names;
        std::ranges::transform(queue.entries(), std::back_inserter(names), &AIQueueEntry::name);
        return names;
    }

    ScriptedModel* model = new ScriptedModel; // owned by the advisor
    AIAdvisor advisor{std::unique_ptr<LanguageModel>(model)};
    int verdictChanges = 0;
    EvaluationQueue queue{advisor, [this] { ++verdictChanges; }};
};

TEST_F(EvaluationQueueTest, EachKeyQueuedOnceOneAtATimeAndAFailureQueuedAgain) {
    const QList<CleanupCandidate> candidates = {
        candidate("firefox-bin", idleApp, "Firefox"), candidate("node", spike),
        candidate("Firefox", ramHog),  // the same key, by its process name
        candidate("firefox", ramHog)}; // keys are case-sensitive
    queue.queueCandidates(candidates);
    ASSERT_EQ(model->requests.size(), 1);
    EXPECT_TRUE(model->requests[0].prompt.startsWith(
        buildPrompt("Firefox", 42.5, 180.6, "Unused app", 125.5, false, false)));
    EXPECT_EQ(queued(), QStringList({"node", "firefox"}));
    EXPECT_TRUE(queue.busy());

    model->answer(std::nullopt); // Firefox fails and leaves no verdict; node is asked next
    EXPECT_TRUE(queue.verdicts().isEmpty());
    ASSERT_EQ(model->requests.size(), 2);
    EXPECT_TRUE(model->requests[1].prompt.startsWith("App/process: 'node'\n"));
    // The failed key is queued again, and so is the key in flight: it is in no queue or cache.
    queue.queueCandidates(candidates);
    EXPECT_EQ(queued(), QStringList({"firefox", "Firefox", "node"}));
    model->answer(keepAnswer);
    EXPECT_EQ(queue.verdicts().value("node"), (AIVerdict{"Web browser", false, "주의", "keep"}));
    EXPECT_EQ(verdictChanges, 1);
    EXPECT_EQ(model->requests.size(), 3);
}

TEST_F(EvaluationQueueTest, OnlyClearingEmptiesTheCacheAndTheNextRoundAsksInTheNewLanguage) {
    queue.queueCandidates({candidate("node", spike), candidate("gimp", ramHog)});
    model->answer(keepAnswer); // node; gimp is asked next
    // Gone and back with another reason: still cached.
    queue.queueCandidates({});
    queue.queueCandidates({candidate("node", ramHog)});
    EXPECT_TRUE(queue.entries().isEmpty());

    QSettings().setValue(SettingsKeys::lang, "ko");
    queue.clear();
    EXPECT_TRUE(queue.verdicts().isEmpty());
    queue.queueCandidates({candidate("node", ramHog)});
    EXPECT_EQ(queued(), QStringList({"node"})); // gimp's evaluation is left to finish
    model->answer(keepAnswer);                  // its English answer lands in the emptied cache
    EXPECT_TRUE(queue.verdicts().contains("gimp"));
    ASSERT_EQ(model->requests.size(), 3);
    EXPECT_EQ(model->requests[2].instructions, advisorInstructions(true));
    EXPECT_TRUE(model->requests[2].prompt.contains("- 탐지 사유: '메모리 과다'"));
}

TEST(EvaluationQueueOfflineTest, AModelThatCannotBeUsedIsNeverAskedAndNothingWaitsForIt) {
    auto* offline = new ScriptedModel;
    offline->availability = ModelAvailability::modelNotReady;
    AIAdvisor advisor{std::unique_ptr<LanguageModel>(offline)};
    EvaluationQueue queue(advisor);
    QCoreApplication::processEvents(); // the advisor's first look answers
    queue.queueCandidates({candidate("node", spike)});
    EXPECT_TRUE(queue.entries().isEmpty());
    EXPECT_FALSE(queue.busy());
    EXPECT_TRUE(offline->requests.isEmpty());
}

} // namespace
