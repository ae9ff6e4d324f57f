#include "QtPrinting.h"
#include "ScriptedModel.h"
#include "core/advisor/AdvisorTexts.h"
#include "core/metrics/SystemMetrics.h"
#include "core/settings/SettingsKeys.h"

#include <QSettings>
#include <algorithm>
#include <gtest/gtest.h>

using namespace quelmo::test;

namespace quelmo {

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

} // namespace

// A hub whose advisor asks a scripted model. Processes are not polled until a test says so.
class EvaluationQueueTest : public ::testing::Test {
protected:
    void SetUp() override {
        QSettings().setValue(SettingsKeys::lang, "en");
        hub->findChild<AIAdvisor*>()->setModel(std::unique_ptr<LanguageModel>(model));
    }
    void TearDown() override { QSettings().remove(SettingsKeys::lang); }

    // What a process refresh does last: publish the candidates, then queue the unjudged ones.
    void refresh(QList<CleanupCandidate> candidates) {
        hub->setCleanupCandidates(std::move(candidates));
        hub->queueAIEvaluations();
    }
    QStringList queued() const {
        QStringList names;
        std::ranges::transform(hub->aiQueue(), std::back_inserter(names), &AIQueueEntry::name);
        return names;
    }

    std::unique_ptr<SystemMetrics> hub = std::make_unique<SystemMetrics>(Platform{});
    ScriptedModel* model = new ScriptedModel; // owned by the hub's advisor from SetUp on
};

TEST_F(EvaluationQueueTest, EachKeyQueuedOnceOneAtATimeAndAFailureQueuedAgain) {
    const QList<CleanupCandidate> candidates = {
        candidate("firefox-bin", idleApp, "Firefox"), candidate("node", spike),
        candidate("Firefox", ramHog),  // the same key, by its process name
        candidate("firefox", ramHog)}; // keys are case-sensitive
    refresh(candidates);
    ASSERT_EQ(model->requests.size(), 1);
    EXPECT_TRUE(model->requests[0].prompt.startsWith(
        buildPrompt("Firefox", 42.5, 180.6, "Unused app", 125.5, false, false)));
    EXPECT_EQ(queued(), QStringList({"node", "firefox"}));

    model->answer(std::nullopt); // Firefox fails and leaves no verdict; node is asked next
    EXPECT_TRUE(hub->aiVerdicts().isEmpty());
    ASSERT_EQ(model->requests.size(), 2);
    EXPECT_TRUE(model->requests[1].prompt.startsWith("App/process: 'node'\n"));
    // The failed key is queued again, and so is the key in flight: it is in no queue or cache.
    refresh(candidates);
    EXPECT_EQ(queued(), QStringList({"firefox", "Firefox", "node"}));
    model->answer(keepAnswer);
    EXPECT_EQ(hub->aiVerdicts().value("node"), (AIVerdict{"Web browser", false, "주의", "keep"}));
    EXPECT_EQ(model->requests.size(), 3);
}

TEST_F(EvaluationQueueTest,
       OnlyReevaluateEmptiesTheCacheItAsksInTheNewLanguageAndNeverWhileUnavailable) {
    refresh({candidate("node", spike), candidate("gimp", ramHog)});
    model->answer(keepAnswer); // node; gimp is asked next
    // Gone and back with another reason, at another sensitivity: still cached.
    refresh({});
    hub->setSensitivity(0.9);
    refresh({candidate("node", ramHog)});
    EXPECT_TRUE(hub->aiQueue().isEmpty());

    hub->reevaluateAI(); // processes are not polled: nothing is queued again
    EXPECT_TRUE(hub->aiVerdicts().isEmpty());
    EXPECT_TRUE(hub->aiQueue().isEmpty());
    hub->setPollProcesses(true);
    QSettings().setValue(SettingsKeys::lang, "ko");
    hub->reevaluateAI();
    EXPECT_EQ(queued(), QStringList({"node"})); // gimp's evaluation is left to finish
    model->answer(keepAnswer);                  // its English answer lands in the emptied cache
    EXPECT_TRUE(hub->aiVerdicts().contains("gimp"));
    ASSERT_EQ(model->requests.size(), 3);
    EXPECT_EQ(model->requests[2].instructions, advisorInstructions(true));
    EXPECT_TRUE(model->requests[2].prompt.contains("- 탐지 사유: '메모리 과다'"));

    // A model that cannot be used is never asked, and nothing waits for it.
    auto* offline = new ScriptedModel;
    offline->availability = ModelAvailability::modelNotReady;
    hub->findChild<AIAdvisor*>()->setModel(std::unique_ptr<LanguageModel>(offline));
    hub->reevaluateAI();
    EXPECT_TRUE(hub->aiQueue().isEmpty());
    EXPECT_TRUE(offline->requests.isEmpty());
}

} // namespace quelmo
