#include "platform/ollama/OllamaModel.h"

#include "AdvisorClient.h"
#include "core/advisor/AIAdvisor.h"
#include "core/advisor/AdvisorTexts.h"
#include "core/advisor/GenVerdict.h"
#include "core/metrics/SystemMetrics.h"
#include "support/QtPrinting.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::ollama_platform;
using namespace quelmo::test;
using Answer = FakeOllamaServer::Answer;

namespace {

TEST(OllamaModel, RequestCarriesInstructionsPromptAndSchemaAndBadAnswersYieldNothing) {
    FakeOllamaServer server;
    serveQwen(server);
    auto client = std::make_unique<Client>(server.url());
    EXPECT_EQ(client->evaluate(), (AIVerdict{" Image viewer", true, "안전", "cut"}));
    const QByteArray raw = server.lastBody; // the look is over: the chat is the last request
    const QString prompt =
        buildPrompt("Preview", 0.3, 180.6, "Unused app", 125.5, false, Language::english);
    // A fresh conversation each time, with no sampling options and no streaming.
    const QJsonArray messages = {
        QJsonObject{{"role", "system"}, {"content", advisorInstructions(Language::english)}},
        QJsonObject{{"role", "user"}, {"content", GenVerdict::promptWithSchema(prompt)}}};
    EXPECT_EQ(QJsonDocument::fromJson(raw).object(),
              (QJsonObject{{"model", "qwen:0.5b"},
                           {"messages", messages},
                           {"stream", false},
                           {"format", GenVerdict::schema()}}));
    EXPECT_TRUE(raw.contains(",\"format\":" + GenVerdict::schemaText())); // key order kept

    for (const Answer& bad : {Answer{200, FakeOllamaServer::chatAnswer(goodAnswer).body, 60000},
                              Answer{200, R"({"message":{"content":)"},
                              Answer{200, R"({"done":true})"}, Answer{500, goodAnswer}}) {
        server.on("POST", "/api/chat", bad);
        EXPECT_EQ(client->evaluate(), std::nullopt) << bad.status << ' ' << bad.delayMs;
    }
    // The first property that is missing or of the wrong type fails the whole answer.
    for (const char* content :
         {R"({"explanation":null,"safeToQuit":true,"risk":"SAFE","recommendation":"keep"})",
          R"({"explanation":"x","safeToQuit":"true","risk":"SAFE","recommendation":"keep"})",
          R"({"explanation":"x","safeToQuit":true,"recommendation":"keep"})",
          R"({"explanation":"x","safeToQuit":true,"risk":"SAFE","recommendation":1})",
          "Sure! It is an image viewer."}) {
        server.on("POST", "/api/chat", FakeOllamaServer::chatAnswer(content));
        EXPECT_EQ(client->evaluate(), std::nullopt) << content;
    }

    // Dropped while an answer is on its way: nothing is called back into the dead advisor.
    server.requests.clear();
    server.on("POST", "/api/chat", Answer{200, FakeOllamaServer::chatAnswer(goodAnswer).body, 100});
    client->advisor.evaluate(preview, Language::english,
                             [](auto) { ADD_FAILURE() << "called back"; });
    ASSERT_TRUE(waitUntil([&] { return server.requests.contains("POST /api/chat"); }));
    client.reset();
    waitUntil([] { return false; }, 300);
}

TEST(OllamaModel, AvailabilityFollowsTheRuntime) {
    // loaded, installed, whether /api/show tells capabilities, the model to chat with
    const std::tuple<QByteArray, QByteArray, bool, QString> runtimes[] = {
        {"[]", "[" + bge + "," + minilm + "]", true, ""},
        {"[]", "[" + llama + "," + bge + "," + qwen + "]", true, "qwen:0.5b"}, // the smallest
        {"[" + llama + "]", "[" + qwen + "," + llama + "]", true, "llama:3b"}, // loaded first
        {"[]", "[" + minilm + "," + bge + "," + qwen + "]", false, "qwen:0.5b"}};
    for (const auto& [loaded, installed, tells, chatModel] : runtimes) {
        SCOPED_TRACE(installed.toStdString());
        FakeOllamaServer server;
        server.serveModels(loaded, installed, tells ? capabilities : QHash<QString, QByteArray>{});
        Client client(server.url());
        EXPECT_EQ(client.advisor.status().reason,
                  chatModel.isEmpty() ? "Model is downloading" : "");
        EXPECT_EQ(client.model->chatModel(), chatModel);
    }

    // No runtime answering, or a foreign address refused before any request: no verdict.
    const QUrl closedPort = FakeOllamaServer().url();
    const std::tuple<QUrl, bool, const char*> absent[] = {
        {closedPort, false, "Apple Intelligence not supported on this Mac"},
        {closedPort, true, "Apple Intelligence is turned off"},
        {QUrl("http://192.0.2.1:11434"), true, "Unavailable"},
        {QUrl("http://example.com:11434"), true, "Unavailable"}};
    for (const auto& [endpoint, installed, reason] : absent) {
        Client client(endpoint, installed);
        EXPECT_EQ(client.advisor.status().reason, reason);
        EXPECT_EQ(client.evaluate(), std::nullopt);
    }
}

} // namespace

namespace {

// A second loopback port that any request leaving the runtime's own address would reach.
struct Bystander {
    FakeOllamaServer server;
    Bystander() { serveQwen(server); }
    QByteArray url() const { return server.url().toString().toUtf8(); }
};

TEST(OllamaModelPrivacy, RedirectsAreNeverFollowed) {
    Bystander elsewhere;
    const Answer redirect{307, "", 0, "Location: " + elsewhere.url() + "/api/chat\r\n"};
    FakeOllamaServer runtime;
    serveQwen(runtime, redirect);
    EXPECT_EQ(Client(runtime.url()).evaluate(), std::nullopt);

    // A runtime whose every answer points elsewhere is not one that can be used.
    FakeOllamaServer pointing;
    for (const char* path : {"/api/ps", "/api/tags"})
        pointing.on("GET", path, redirect);
    EXPECT_EQ(Client(pointing.url()).advisor.status().reason, "Unavailable");
    EXPECT_EQ(elsewhere.server.connections, 0);
}

// Qt's own proxy lookup skips loopback hosts as well; the client's refusal keeps the promise
// whatever that lookup does.
TEST(OllamaModelPrivacy, ProxiesFromTheEnvironmentAreBypassed) {
    Bystander proxy;
    const char* names[] = {"http_proxy", "HTTP_PROXY", "all_proxy", "ALL_PROXY"};
    for (const char* name : names)
        qputenv(name, proxy.url());
    FakeOllamaServer runtime;
    serveQwen(runtime);
    EXPECT_NE(Client(runtime.url()).evaluate(), std::nullopt);
    EXPECT_EQ(proxy.server.connections, 0);
    for (const char* name : names)
        qunsetenv(name);
}

TEST(OllamaModelPrivacy, AnAnswerOverTheSizeLimitYieldsNoVerdict) {
    // A well-formed answer, but its explanation alone is past the limit.
    QJsonObject verdict = QJsonDocument::fromJson(goodAnswer).object();
    verdict["explanation"] = QString(OllamaModel::maxAnswerBytes, 'x');
    FakeOllamaServer runtime;
    serveQwen(runtime,
              FakeOllamaServer::chatAnswer(QJsonDocument(verdict).toJson(QJsonDocument::Compact)));
    // Time enough for the whole answer to arrive, so that only the limit can refuse it.
    EXPECT_EQ(Client(runtime.url(), false, 30000).evaluate(), std::nullopt);
}

// The status the hub keeps for the cleanup card is the first real look, not the guess before it.
TEST(OllamaModel, TheHubKeepsTheFirstLookAtTheRuntime) {
    FakeOllamaServer running;
    serveQwen(running);
    const QUrl stopped = FakeOllamaServer().url();
    const std::tuple<QUrl, AIAdvisor::Status> runtimes[] = {
        {running.url(), {true, ""}}, {stopped, {false, "Apple Intelligence is turned off"}}};
    for (const auto& [endpoint, expected] : runtimes) {
        Platform platform;
        platform.model = std::make_unique<OllamaModel>(OllamaOptions{
            .endpoint = endpoint, .answerTimeoutMs = 600, .runtimeInstalled = [] { return true; }});
        SystemMetrics hub(std::move(platform));
        EXPECT_EQ(hub.aiStatus(), AIAdvisor::Status{}); // nothing to show yet
        bool looked = false;
        QObject::connect(hub.advisor(), &AIAdvisor::statusRefreshed, [&] { looked = true; });
        ASSERT_TRUE(waitUntil([&] { return looked; }));
        EXPECT_EQ(hub.aiStatus(), expected);
    }
}

} // namespace
