#include "advisor/OllamaModel.h"

#include "FakeOllamaServer.h"
#include "QtPrinting.h"
#include "ScriptedModel.h"
#include "advisor/AIAdvisor.h"
#include "advisor/AdvisorTexts.h"
#include "advisor/GenVerdict.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::test;
using namespace Qt::StringLiterals;
using Answer = FakeOllamaServer::Answer;

namespace {

const QByteArray qwen = R"({"name":"qwen2.5:0.5b","size":397807936,"details":{"family":"qwen2"}})";
const QByteArray llama = R"({"name":"llama3.2:3b","size":2019393189,"details":{"family":"llama"}})";
const QByteArray nomic =
    R"({"name":"nomic-embed-text","size":274302450,"details":{"family":"nomic-bert"}})";
const QByteArray minilm =
    R"({"name":"all-minilm:22m","size":45960996,"details":{"family":"bert"}})";
const QByteArray chat = R"(["completion"])";
const QByteArray embedding = R"(["embedding"])";
const QByteArray goodAnswer =
    R"({"explanation":"Image viewer","safeToQuit":true,"risk":"SAFE","recommendation":"cut"})";
const AIQueueEntry preview{"Preview", 0.3, 180.6, "Unused app", 125.5, false};

// An advisor on the real client, pointed at `endpoint`, once its first look has answered.
struct Client {
    OllamaModel* model;
    AIAdvisor advisor;

    explicit Client(const QUrl& endpoint, bool installed = false, int answerTimeoutMs = 60000)
        : model(new OllamaModel(
              OllamaOptions{endpoint, answerTimeoutMs, 10000, [installed] { return installed; }})),
          advisor(std::unique_ptr<LanguageModel>(model)) {
        bool looked = false;
        QObject::connect(&advisor, &AIAdvisor::statusRefreshed, [&looked] { looked = true; });
        EXPECT_TRUE(waitUntil([&] { return looked; }));
    }

    std::optional<AIVerdict> evaluate(bool korean = false) {
        std::optional<std::optional<AIVerdict>> result;
        advisor.evaluate(preview, korean, [&](std::optional<AIVerdict> v) { result = v; });
        EXPECT_TRUE(waitUntil([&] { return result.has_value(); }));
        return result.value_or(std::nullopt);
    }
};

TEST(OllamaModel, RequestCarriesInstructionsPromptAndSchema) {
    FakeOllamaServer server;
    server.serveModels("[]", "[" + qwen + "]", {{"qwen2.5:0.5b", chat}});
    server.on("POST", "/api/chat", FakeOllamaServer::chatAnswer(goodAnswer));
    Client client(server.url());
    EXPECT_EQ(client.evaluate(), (AIVerdict{"Image viewer", true, u"안전"_s, "cut"}));
    client.evaluate(true);

    const auto chats = server.requestsTo("/api/chat");
    ASSERT_EQ(chats.size(), 2);
    for (const bool korean : {false, true}) {
        const QByteArray raw = chats[korean].body;
        const QJsonObject body = QJsonDocument::fromJson(raw).object();
        EXPECT_EQ(body.value("model"), "qwen2.5:0.5b");
        EXPECT_EQ(body.value("stream"), false);
        EXPECT_FALSE(body.contains("options"));
        const QJsonArray messages = body.value("messages").toArray();
        ASSERT_EQ(messages.size(), 2); // a fresh conversation each time
        EXPECT_EQ(messages[0].toObject(),
                  QJsonObject({{"role", "system"}, {"content", advisorInstructions(korean)}}));
        const QString prompt =
            buildPrompt("Preview", 0.3, 180.6, "Unused app", 125.5, false, korean);
        EXPECT_EQ(
            messages[1].toObject(),
            QJsonObject({{"role", "user"}, {"content", GenVerdict::promptWithSchema(prompt)}}));
        EXPECT_EQ(body.value("format").toObject(), GenVerdict::schema());
        EXPECT_TRUE(raw.contains(",\"format\":" + GenVerdict::schemaText())); // order kept
    }
}

TEST(OllamaModel, BadAnswersYieldNoVerdict) {
    Answer never;
    never.never = true;
    Answer redirect = FakeOllamaServer::reply(302, {});
    redirect.extraHeaders = "Location: http://192.0.2.1/api/chat\r\n";
    const QList<std::pair<const char*, Answer>> answers = {
        {"too slow", never},
        {"malformed body", FakeOllamaServer::reply(200, R"({"message":{"content":)")},
        {"content not JSON", FakeOllamaServer::chatAnswer("Sure! It is an image viewer.")},
        {"risk missing", FakeOllamaServer::chatAnswer(
                             R"({"explanation":"x","safeToQuit":true,"recommendation":"cut"})")},
        {"no message", FakeOllamaServer::reply(200, R"({"done":true})")},
        {"server error", FakeOllamaServer::reply(500, R"({"error":"out of memory"})")},
        {"model gone", FakeOllamaServer::reply(404, R"({"error":"model not found"})")},
        {"redirect elsewhere", redirect}};
    for (const auto& [what, answer] : answers) {
        SCOPED_TRACE(what);
        FakeOllamaServer server;
        server.serveModels("[]", "[" + qwen + "]", {{"qwen2.5:0.5b", chat}});
        server.on("POST", "/api/chat", answer);
        Client client(server.url(), false, 300);
        ASSERT_TRUE(client.advisor.status().available);
        EXPECT_EQ(client.evaluate(), std::nullopt);
    }
}

TEST(OllamaModel, NoRuntimeOrAForeignAddressYieldsNothing) {
    QUrl closedPort = FakeOllamaServer().url();
    for (const bool installed : {false, true}) {
        Client client(closedPort, installed);
        EXPECT_EQ(client.advisor.status().reason,
                  installed ? "Apple Intelligence is turned off"
                            : "Apple Intelligence not supported on this Mac");
        EXPECT_EQ(client.evaluate(), std::nullopt);
    }
    // Refused before any request is made: no waiting for a connection that cannot come.
    for (const char* foreign : {"http://192.0.2.1:11434", "http://example.com:11434"}) {
        QElapsedTimer clock;
        clock.start();
        Client client{QUrl(foreign), true};
        EXPECT_EQ(client.advisor.status().reason, "Unavailable");
        EXPECT_EQ(client.evaluate(), std::nullopt);
        EXPECT_LT(clock.elapsed(), 5000);
    }
    EXPECT_EQ(loopbackEndpoint(QUrl("http://localhost:11434")), QUrl("http://127.0.0.1:11434"));
    for (const char* ok : {"http://127.8.9.10:1", "http://[::1]:11434"})
        EXPECT_EQ(loopbackEndpoint(QUrl(ok)), QUrl(ok)) << ok;
    for (const char* refused :
         {"http://10.0.0.2:1", "http://0.0.0.0:1", "http://localhost.example:1",
          "http://127.0.0.1.nip.io:1", "https://127.0.0.1:1", "http://[::2]:1"})
        EXPECT_EQ(loopbackEndpoint(QUrl(refused)), std::nullopt) << refused;
}

TEST(OllamaModel, AvailabilityFollowsTheRuntime) {
    struct Case {
        const char* what;
        QByteArray loaded, installed;
        QHash<QString, QByteArray> capabilities;
        QString reason, chatModel; // reason empty when available
    };
    const QList<Case> cases = {
        {"only embedding models",
         "[]",
         "[" + nomic + "," + minilm + "]",
         {{"nomic-embed-text", embedding}, {"all-minilm:22m", embedding}},
         "Model is downloading",
         ""},
        {"nothing installed", "[]", "[]", {}, "Model is downloading", ""},
        {"smallest that can chat",
         "[]",
         "[" + llama + "," + nomic + "," + qwen + "]",
         {{"llama3.2:3b", chat}, {"nomic-embed-text", embedding}, {"qwen2.5:0.5b", chat}},
         "",
         "qwen2.5:0.5b"},
        {"loaded model first",
         "[" + llama + "]",
         "[" + qwen + "," + llama + "]",
         {{"llama3.2:3b", chat}, {"qwen2.5:0.5b", chat}},
         "",
         "llama3.2:3b"},
        {"runtime too old to tell",
         "[]",
         "[" + minilm + "," + nomic + "," + qwen + "]",
         {},
         "",
         "qwen2.5:0.5b"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        FakeOllamaServer server;
        server.serveModels(c.loaded, c.installed, c.capabilities);
        Client client(server.url());
        EXPECT_EQ(client.advisor.status(), (AIAdvisor::Status{c.reason.isEmpty(), c.reason}));
        EXPECT_EQ(client.model->chatModel(), c.chatModel);
    }
    FakeOllamaServer foreign; // something else on the port: 404 to everything
    EXPECT_EQ(Client(foreign.url()).advisor.status().reason, "Unavailable");
}

TEST(AIAdvisor, UnavailableModelIsNeverAsked) {
    auto* model = new ScriptedModel;
    model->availability = ModelAvailability::appleIntelligenceNotEnabled;
    AIAdvisor advisor{std::unique_ptr<LanguageModel>(model)};
    std::optional<std::optional<AIVerdict>> result;
    advisor.evaluate(preview, false, [&](std::optional<AIVerdict> v) { result = v; });
    EXPECT_FALSE(result) << "answered from inside evaluate";
    ASSERT_TRUE(waitUntil([&] { return result.has_value(); }));
    EXPECT_EQ(*result, std::nullopt);
    EXPECT_TRUE(model->requests.isEmpty());
}

TEST(AIAdvisor, ReplacingTheModelAnswersWaitingEvaluations) {
    auto* model = new ScriptedModel;
    AIAdvisor advisor{std::unique_ptr<LanguageModel>(model)};
    int calls = 0;
    advisor.evaluate(preview, false, [&](std::optional<AIVerdict> v) { calls += v ? 10 : 1; });
    ASSERT_EQ(model->requests.size(), 1);
    advisor.setModel(std::make_unique<ScriptedModel>());
    settle(50);
    EXPECT_EQ(calls, 1);
}

} // namespace
