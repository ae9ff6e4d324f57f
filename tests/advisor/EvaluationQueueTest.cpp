#include "FakeOllamaServer.h"
#include "QtPrinting.h"
#include "ScriptedModel.h"
#include "TempSettings.h"
#include "advisor/AdvisorTexts.h"
#include "advisor/OllamaModel.h"
#include "metrics/SystemMetrics.h"
#include "settings/SettingsKeys.h"

#include <QSettings>
#include <gtest/gtest.h>

using namespace quelmo::test;
using namespace Qt::StringLiterals;

namespace quelmo {

namespace {

CleanupCandidate candidate(qint64 pid, const QString& name, CleanupReason reason,
                           std::optional<QString> displayName = std::nullopt) {
    CleanupCandidate c;
    c.proc.id = pid;
    c.proc.name = name;
    c.proc.cpu = 42.5;
    c.proc.rss = 189379379.0; // 180.6 MiB
    c.reason = reason;
    if (reason == CleanupReason::idleApp)
        c.idleMinutes = 125.5;
    c.displayName = std::move(displayName);
    return c;
}

const QByteArray keepAnswer =
    R"({"explanation":"Web browser","safeToQuit":false,"risk":"CAUTION","recommendation":"keep"})";

QStringList names(const QList<AIQueueEntry>& queue) {
    QStringList found;
    for (const AIQueueEntry& entry : queue)
        found << entry.name;
    return found;
}

} // namespace

class EvaluationQueueTest : public ::testing::Test {
protected:
    void SetUp() override {
        TempSettings::clear();
        QSettings().setValue(SettingsKeys::lang, "en");
        hub = std::make_unique<SystemMetrics>(Platform{});
        model = new ScriptedModel;
        advisor()->setModel(std::unique_ptr<LanguageModel>(model));
    }

    AIAdvisor* advisor() const { return hub->findChild<AIAdvisor*>(); }

    // What a process refresh does last: publish the candidates, then queue the unjudged ones.
    void refresh(QList<CleanupCandidate> candidates) {
        hub->setCleanupCandidates(std::move(candidates));
        hub->queueAIEvaluations();
    }

    std::unique_ptr<SystemMetrics> hub;
    ScriptedModel* model = nullptr;
};

TEST_F(EvaluationQueueTest, EachKeyIsQueuedOnceAndOneEvaluationRunsAtATime) {
    const QList<CleanupCandidate> candidates = {
        candidate(1, "firefox-bin", CleanupReason::idleApp, "Firefox"),
        candidate(2, "node", CleanupReason::spike),
        candidate(3, "firefox-bin", CleanupReason::idleApp, "Firefox"),
        candidate(4, "Firefox", CleanupReason::ramHog),  // same key by its process name
        candidate(5, "firefox", CleanupReason::ramHog)}; // keys are case-sensitive
    refresh(candidates);

    ASSERT_EQ(model->requests.size(), 1);
    EXPECT_TRUE(hub->aiBusy());
    EXPECT_TRUE(model->requests[0].prompt.startsWith(
        buildPrompt("Firefox", 42.5, 180.6, "Unused app", 125.5, false, false)));
    ASSERT_EQ(names(hub->aiQueue()), QStringList({"node", "firefox"}));
    const AIQueueEntry node = hub->aiQueue()[0];
    EXPECT_EQ(node, (AIQueueEntry{"node", 42.5, 189379379.0 / 1048576.0, "Unusual spike",
                                  std::nullopt, false}));

    // The key in flight is in neither queue nor cache, so the next refresh queues it again.
    refresh(candidates);
    EXPECT_EQ(names(hub->aiQueue()), QStringList({"node", "firefox", "Firefox"}));
    EXPECT_EQ(model->requests.size(), 1);

    model->answer(keepAnswer);
    EXPECT_EQ(hub->aiVerdicts().value("Firefox"),
              (AIVerdict{"Web browser", false, u"주의"_s, "keep"}));
    ASSERT_EQ(model->requests.size(), 2);
    EXPECT_TRUE(model->requests[1].prompt.startsWith("App/process: 'node'"));
    EXPECT_EQ(names(hub->aiQueue()), QStringList({"firefox", "Firefox"}));
}

TEST_F(EvaluationQueueTest, OnlyReevaluateEmptiesTheCache) {
    refresh({candidate(1, "node", CleanupReason::spike)});
    model->answer(keepAnswer);
    ASSERT_TRUE(hub->aiVerdicts().contains("node"));
    EXPECT_FALSE(hub->aiBusy());

    // Gone and back with other figures and another reason: the old verdict still stands.
    refresh({});
    CleanupCandidate changed = candidate(9, "node", CleanupReason::ramHog);
    changed.proc.cpu = 3;
    refresh({changed});
    hub->setSensitivity(0.9);
    refresh({changed});
    EXPECT_EQ(model->requests.size(), 1);
    EXPECT_TRUE(hub->aiQueue().isEmpty());

    hub->setPollProcesses(false);
    hub->reevaluateAI();
    EXPECT_TRUE(hub->aiVerdicts().isEmpty());
    EXPECT_TRUE(hub->aiQueue().isEmpty());
    EXPECT_EQ(model->requests.size(), 1);

    hub->setPollProcesses(true);
    hub->reevaluateAI();
    EXPECT_EQ(model->requests.size(), 2);
}

TEST_F(EvaluationQueueTest, FailedEvaluationLeavesNoVerdictAndIsQueuedAgain) {
    const QList<CleanupCandidate> candidates = {candidate(1, "node", CleanupReason::spike),
                                                candidate(2, "gimp", CleanupReason::ramHog)};
    refresh(candidates);
    model->fail();
    EXPECT_FALSE(hub->aiVerdicts().contains("node"));
    EXPECT_TRUE(hub->aiBusy()); // gimp is being asked now
    EXPECT_TRUE(hub->aiQueue().isEmpty());

    refresh(candidates);
    EXPECT_EQ(names(hub->aiQueue()), QStringList({"node", "gimp"}));
    model->fail();             // gimp fails in turn; node goes next
    model->answer(keepAnswer); // node, at last; gimp is asked once more
    EXPECT_TRUE(hub->aiVerdicts().contains("node"));
    EXPECT_FALSE(hub->aiVerdicts().contains("gimp"));
    EXPECT_EQ(model->requests.size(), 4);
    EXPECT_TRUE(model->requests[3].prompt.startsWith("App/process: 'gimp'"));
}

TEST_F(EvaluationQueueTest, NothingIsQueuedWhileTheModelIsUnavailable) {
    auto* offline = new ScriptedModel;
    offline->availability = ModelAvailability::modelNotReady;
    advisor()->setModel(std::unique_ptr<LanguageModel>(offline));
    refresh({candidate(1, "node", CleanupReason::spike)});
    refresh({candidate(1, "node", CleanupReason::spike)});
    EXPECT_TRUE(hub->aiQueue().isEmpty());
    EXPECT_FALSE(hub->aiBusy());
    EXPECT_TRUE(offline->requests.isEmpty());
}

TEST_F(EvaluationQueueTest, LanguageChangeAsksAgainInTheNewLanguage) {
    hub->setPollProcesses(true);
    const QList<CleanupCandidate> candidates = {
        candidate(1, "firefox-bin", CleanupReason::idleApp, "Firefox"),
        candidate(2, "gimp", CleanupReason::ramHog)};
    refresh(candidates);
    ASSERT_EQ(model->requests.size(), 1);

    QSettings().setValue(SettingsKeys::lang, "ko");
    hub->reevaluateAI();
    EXPECT_TRUE(hub->aiVerdicts().isEmpty());
    ASSERT_EQ(names(hub->aiQueue()), QStringList({"Firefox", "gimp"}));
    EXPECT_EQ(hub->aiQueue()[0].reason, u"안 쓰는 앱"_s);
    EXPECT_EQ(hub->aiQueue()[1].reason, u"메모리 과다"_s);
    EXPECT_EQ(model->requests.size(), 1); // the running evaluation is left to finish

    model->answer(keepAnswer); // the English answer still lands, in the emptied cache
    EXPECT_EQ(hub->aiVerdicts().value("Firefox").explanation, "Web browser");
    ASSERT_EQ(model->requests.size(), 2);
    EXPECT_EQ(model->requests[1].instructions, advisorInstructions(true));
    EXPECT_TRUE(model->requests[1].prompt.contains(u"- 탐지 사유: '안 쓰는 앱'"_s));

    model->answer(
        R"({"explanation":"웹 브라우저","safeToQuit":false,"risk":"주의","recommendation":"켜둘 것"})");
    EXPECT_EQ(hub->aiVerdicts().value("Firefox"),
              (AIVerdict{u"웹 브라우저"_s, false, u"주의"_s, "keep"}));
    QSettings().remove(SettingsKeys::lang);
}

TEST_F(EvaluationQueueTest, HubDestroyedWhileAnAnswerIsOnItsWay) {
    FakeOllamaServer server;
    server.serveModels("[]", R"([{"name":"qwen2.5:0.5b","size":1}])",
                       {{"qwen2.5:0.5b", R"(["completion"])"}});
    FakeOllamaServer::Answer late = FakeOllamaServer::chatAnswer(keepAnswer);
    late.delayMs = 150;
    server.on("POST", "/api/chat", late);
    advisor()->setModel(std::make_unique<OllamaModel>(OllamaOptions{server.url()}));
    ASSERT_TRUE(waitUntil([&] { return advisor()->status().available; }));

    refresh({candidate(1, "node", CleanupReason::spike)});
    ASSERT_TRUE(waitUntil([&] { return !server.requestsTo("/api/chat").isEmpty(); }));
    hub.reset();
    settle(300); // the answer arrives to nobody
    SUCCEED();
}

} // namespace quelmo
