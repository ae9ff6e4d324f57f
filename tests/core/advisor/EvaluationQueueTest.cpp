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

// A queue asking a scripted model through a real advisor, in English unless a test says otherwise,
// both on a clock the test moves.
class EvaluationQueueTest : public ::testing::Test {
protected:
    void SetUp() override { QSettings().setValue(SettingsKeys::lang, "en"); }
    void TearDown() override { QSettings().remove(SettingsKeys::lang); }

    QStringList queued() const {
        QStringList names;
        std::ranges::transform(queue.entries(), std::back_inserter(names), &AIQueueEntry::name);
        return names;
    }

    // Lets the advisor's looks that are due run.
    static void runLooks() { QCoreApplication::processEvents(); }

    qint64 now = 0;                           // milliseconds
    ScriptedModel* model = new ScriptedModel; // owned by the advisor
    AIAdvisor advisor{std::unique_ptr<LanguageModel>(model), [this] { return now; }};
    int verdictChanges = 0;
    EvaluationQueue queue{advisor, [this] { ++verdictChanges; }, [this] { return now; }};
};

TEST_F(EvaluationQueueTest, EachKeyQueuedOnceOneAtATimeAndAFailedKeyPauses) {
    const QList<CleanupCandidate> candidates = {
        candidate("firefox-bin", idleApp, "Firefox"), candidate("node", spike),
        candidate("Firefox", ramHog),  // the same key, by its process name
        candidate("firefox", ramHog)}; // keys are case-sensitive
    queue.queueCandidates(candidates);
    ASSERT_EQ(model->requests.size(), 1);
    EXPECT_TRUE(model->requests[0].prompt.startsWith(
        buildPrompt("Firefox", 42.5, 180.6, "Unused app", 125.5, false, Language::english)));
    EXPECT_EQ(queued(), QStringList({"node", "firefox"}));
    EXPECT_TRUE(queue.busy());

    model->answer(std::nullopt); // Firefox fails and leaves no verdict; node is asked next
    runLooks();
    EXPECT_TRUE(queue.verdicts().isEmpty());
    ASSERT_EQ(model->requests.size(), 2);
    EXPECT_TRUE(model->requests[1].prompt.startsWith("App/process: 'node'\n"));
    // The failed key pauses; the key in flight is queued again: it is in no queue or cache.
    queue.queueCandidates(candidates);
    EXPECT_EQ(queued(), QStringList({"firefox", "node"}));
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
    EXPECT_EQ(model->requests[2].instructions, advisorInstructions(Language::korean));
    EXPECT_TRUE(model->requests[2].prompt.contains("- 탐지 사유: '메모리 과다'"));
}

TEST_F(EvaluationQueueTest, AFailureHoldsTheQueueUntilALookFindsTheModelUsable) {
    runLooks();
    EXPECT_EQ(model->probes, 1);
    const QList<CleanupCandidate> candidates = {candidate("a", spike), candidate("b", spike),
                                                candidate("c", spike)};
    queue.queueCandidates(candidates);

    // The runtime stops while "a" is being asked: nothing else is sent to it, nothing is dropped.
    now = 10000;
    model->availability = ModelAvailability::appleIntelligenceNotEnabled;
    model->answer(std::nullopt);
    EXPECT_EQ(model->requests.size(), 1);
    EXPECT_EQ(queued(), QStringList({"b", "c"}));
    runLooks();
    EXPECT_EQ(model->probes, 2);
    EXPECT_EQ(advisor.status().reason, "Apple Intelligence is turned off");
    queue.queueCandidates(candidates);
    EXPECT_EQ(queued(), QStringList({"b", "c"}));
    EXPECT_FALSE(queue.busy());

    // Back again: the next look, at the latest when the last one is old, lets the queue go on
    // without waiting for a refresh.
    model->availability = ModelAvailability::available;
    now += AIAdvisor::refreshIntervalMs;
    advisor.status();
    runLooks();
    ASSERT_EQ(model->requests.size(), 2);
    EXPECT_TRUE(model->requests[1].prompt.startsWith("App/process: 'b'\n"));

    // A model answering nonsense: each failure waits for a look, and looks are paced, so a
    // failing model is asked at most once per gap between looks.
    now += AIAdvisor::minLookGapMs;
    model->answer("Sure! Here is your JSON.");
    runLooks();
    EXPECT_EQ(model->probes, 4);
    EXPECT_EQ(model->requests.size(), 3); // "c", after the look
    now += 1000;
    model->answer(std::nullopt);
    runLooks();
    EXPECT_EQ(model->probes, 4);
    EXPECT_TRUE(queue.entries().isEmpty() && !queue.busy());
    queue.queueCandidates({candidate("d", spike)});
    EXPECT_EQ(model->requests.size(), 3);
    now += AIAdvisor::minLookGapMs;
    advisor.status(); // any reader, such as the cleanup card, brings the due look forward
    runLooks();
    EXPECT_EQ(model->probes, 5);
    EXPECT_EQ(model->requests.size(), 4);
}

TEST_F(EvaluationQueueTest, AFailingKeyWaitsLongerAfterEachFailureUntilTheLanguageChanges) {
    const QList<CleanupCandidate> node = {candidate("node", spike)};
    // Asks again whenever "node" may be queued at `at`; answers it with `answer`.
    const auto askedAt = [&](qint64 at, std::optional<QString> answer) {
        now = at;
        const qsizetype before = model->requests.size();
        queue.queueCandidates(node);
        if (model->requests.size() == before)
            return false;
        model->answer(std::move(answer));
        runLooks();
        return true;
    };
    // Queued again while in flight, as designed; the failure's pause holds that entry back too.
    queue.queueCandidates(node);
    queue.queueCandidates(node);
    EXPECT_EQ(queued(), QStringList({"node"}));
    model->answer(std::nullopt);
    runLooks();
    EXPECT_TRUE(queue.entries().isEmpty());
    EXPECT_EQ(model->requests.size(), 1);
    EXPECT_FALSE(askedAt(29999, std::nullopt));
    EXPECT_TRUE(askedAt(30000, "{}"));
    EXPECT_FALSE(askedAt(89999, std::nullopt));
    EXPECT_TRUE(askedAt(90000, std::nullopt));
    EXPECT_FALSE(askedAt(209999, std::nullopt));
    // The pause stops growing at its longest.
    qint64 at = 210000;
    for (int i = 0; i < 8; ++i) {
        ASSERT_TRUE(askedAt(at, std::nullopt)) << i;
        at += std::min(EvaluationQueue::firstRetryDelayMs << (i + 3),
                       EvaluationQueue::longestRetryDelayMs);
    }
    EXPECT_FALSE(askedAt(at - 1, std::nullopt));
    // A new language starts afresh: asked at once, and a success leaves no pause behind.
    queue.clear();
    EXPECT_TRUE(askedAt(at - 1, keepAnswer));
    EXPECT_TRUE(queue.verdicts().contains("node"));
    queue.clear();
    EXPECT_TRUE(askedAt(at, std::nullopt));
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
