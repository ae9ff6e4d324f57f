#include "platform/ollama/ModelChoice.h"

#include "AdvisorClient.h"
#include "support/QtPrinting.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::ollama_platform;
using namespace quelmo::test;
using Answer = FakeOllamaServer::Answer;

namespace {

// Listed by current runtimes beside local models: relayed to a server elsewhere, a few hundred
// bytes on disk. The second says so only by its name.
const QByteArray gptOssCloud =
    R"({"name":"gpt-oss:20b-cloud","size":384,)"
    R"("remote_model":"gpt-oss:20b","remote_host":"https://ollama.com:443",)"
    R"("details":{"family":"gptoss"}})";
const QByteArray glmCloud = R"({"name":"glm-4.6:cloud","size":340,"details":{"family":"glm4"}})";
// A model that thinks unless told not to, and one that only takes a level of thinking.
const QByteArray qwen3 = R"({"name":"qwen3:0.6b","size":522653767,"details":{"family":"qwen3"}})";
const QByteArray gptOss =
    R"({"name":"gpt-oss:20b","size":13780173734,"details":{"family":"gptoss"}})";
const QByteArray thinking = R"(["completion","tools","thinking"])";

QHash<QString, QByteArray> withThinkers() {
    QHash<QString, QByteArray> all = capabilities;
    for (const char* name : {"qwen3:0.6b", "gpt-oss:20b", "gpt-oss:20b-cloud", "glm-4.6:cloud"})
        all.insert(name, thinking);
    return all;
}

QJsonValue thinkSent(const FakeOllamaServer& runtime) {
    return QJsonDocument::fromJson(runtime.lastBody).object().value("think");
}

TEST(ModelChoice, OnlyModelsStoredOnThisMachineAreChosen) {
    FakeOllamaServer runtime;
    runtime.serveModels("[" + gptOssCloud + "]",
                        "[" + gptOssCloud + "," + glmCloud + "," + qwen3 + "]", withThinkers());
    runtime.on("POST", "/api/chat", FakeOllamaServer::chatAnswer(goodAnswer));
    Client client(runtime.url());
    EXPECT_EQ(client.model->chatModel(), "qwen3:0.6b");
    for (int i = 0; i < 3; ++i)
        EXPECT_NE(client.evaluate(), std::nullopt);
    EXPECT_EQ(runtime.chatModels, QList<QString>(3, "qwen3:0.6b"));

    // With nothing but models served elsewhere, there is no model to use here.
    FakeOllamaServer cloudOnly;
    cloudOnly.serveModels("[]", "[" + gptOssCloud + "," + glmCloud + "]", withThinkers());
    cloudOnly.on("POST", "/api/chat", FakeOllamaServer::chatAnswer(goodAnswer));
    Client cloudClient(cloudOnly.url());
    EXPECT_EQ(cloudClient.advisor.status().reason, "Model is downloading");
    EXPECT_EQ(cloudClient.evaluate(), std::nullopt);
    EXPECT_TRUE(cloudOnly.chatModels.isEmpty());

    // A runtime may name the server only when asked about the model itself.
    const RuntimeModel relayed{"mirror:7b", 100, {"llama"}, false};
    EXPECT_TRUE(
        modelAbilities(relayed, R"({"capabilities":["completion"],"remote_host":"h"})").remote);
    EXPECT_TRUE(
        modelAbilities(relayed, R"({"capabilities":["completion"],"remote_model":"m"})").remote);
    EXPECT_FALSE(
        modelAbilities(relayed, R"({"capabilities":["completion"],"remote_host":""})").remote);
}

TEST(ModelChoice, ThinkingIsTurnedOffOrDownAndWhatTheModelThoughtIsIgnored) {
    FakeOllamaServer runtime;
    // Left to think, a model misses the time limit; the answer's thoughts hold a different verdict.
    runtime.thinkingDelayMs = 5000;
    runtime.serveModels("[" + gptOss + "]", "[" + gptOss + "," + qwen3 + "]", withThinkers());
    runtime.on("POST", "/api/chat", FakeOllamaServer::chatAnswer(goodAnswer));
    Client client(runtime.url());
    // One that can stop thinking is chosen over one that is loaded but cannot.
    EXPECT_EQ(client.model->chatModel(), "qwen3:0.6b");
    EXPECT_EQ(client.evaluate(), (AIVerdict{" Image viewer", true, "안전", "cut"}));
    EXPECT_EQ(thinkSent(runtime), QJsonValue(false));
    EXPECT_EQ(runtime.thoughts, 0);

    // With no other, a model that always thinks is used at its lowest level; its thoughts never
    // become the verdict.
    FakeOllamaServer levelsOnly;
    levelsOnly.serveModels("[]", "[" + gptOss + "," + bge + "]", withThinkers());
    levelsOnly.on("POST", "/api/chat", FakeOllamaServer::chatAnswer(goodAnswer));
    Client levelsClient(levelsOnly.url());
    EXPECT_EQ(levelsClient.model->chatModel(), "gpt-oss:20b");
    EXPECT_EQ(levelsClient.evaluate(), (AIVerdict{" Image viewer", true, "안전", "cut"}));
    EXPECT_EQ(thinkSent(levelsOnly), QJsonValue("low"));
    EXPECT_EQ(levelsOnly.thoughts, 1);
}

TEST(ModelChoice, RuntimesTooOldForSchemasAreNotAsked) {
    FakeOllamaServer old;
    old.version = "0.4.7";
    serveQwen(old);
    Client client(old.url());
    EXPECT_EQ(client.advisor.status().reason, "Model is downloading");
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client.evaluate(), std::nullopt);
    EXPECT_TRUE(old.chatModels.isEmpty());

    const std::pair<const char*, bool> versions[] = {
        {"0.4.7", true},   {"0.5.0", false},  {"0.5.0-rc1", false},
        {"0.12.6", false}, {"v1.0.0", false}, {"0.0.0", false}, // a build from source
        {"unknown", false}};
    for (const auto& [version, tooOld] : versions)
        EXPECT_EQ(tooOldForSchemas(QByteArray("{\"version\":\"") + version + "\"}"), tooOld)
            << version;
    EXPECT_FALSE(tooOldForSchemas("not json"));
}

TEST(ModelChoice, AModelThatRefusesARequestIsNotAskedAgain) {
    // A runtime too old for schemas that does not tell its version: each model refuses once.
    FakeOllamaServer runtime;
    runtime.version = "0.4.7";
    runtime.on("GET", "/api/version", Answer{404, "404 page not found"});
    runtime.serveModels("[]", "[" + llama + "," + qwen + "]", capabilities);
    runtime.on("POST", "/api/chat", FakeOllamaServer::chatAnswer(goodAnswer));
    Client client(runtime.url());
    const auto probe = [&] {
        std::optional<ModelAvailability> found;
        client.model->probe([&](ModelAvailability a) { found = a; });
        EXPECT_TRUE(waitUntil([&] { return found.has_value(); }));
        return found.value_or(ModelAvailability::otherReason);
    };
    EXPECT_EQ(client.evaluate(), std::nullopt);
    EXPECT_EQ(probe(), ModelAvailability::available);
    EXPECT_EQ(client.model->chatModel(), "llama:3b");
    EXPECT_EQ(client.evaluate(), std::nullopt);
    EXPECT_EQ(probe(), ModelAvailability::modelNotReady);
    EXPECT_EQ(client.evaluate(), std::nullopt);
    EXPECT_EQ(runtime.chatModels, (QList<QString>{"qwen:0.5b", "llama:3b"}));

    // A server error says nothing about the request: the model is asked again.
    FakeOllamaServer failing;
    serveQwen(failing, Answer{500, R"({"error":"out of memory"})"});
    Client failingClient(failing.url());
    EXPECT_EQ(failingClient.evaluate(), std::nullopt);
    failingClient.model->probe([](ModelAvailability) {});
    ASSERT_TRUE(waitUntil([&] { return failing.requests.count("POST /api/show") == 2; }));
    failing.on("POST", "/api/chat", FakeOllamaServer::chatAnswer(goodAnswer));
    EXPECT_NE(failingClient.evaluate(), std::nullopt);
    EXPECT_EQ(failing.chatModels, QList<QString>(2, "qwen:0.5b"));
}

TEST(ModelChoice, TheNamedModelIsUsedOnlyWhenLocalAndAbleToChat) {
    FakeOllamaServer runtime;
    runtime.serveModels(
        "[]", "[" + qwen + "," + llama + "," + bge + "," + gptOss + "," + gptOssCloud + "]",
        withThinkers());
    const std::tuple<QString, QString, ThinkMode> choices[] = {
        {"llama:3b", "llama:3b", ThinkMode::none},
        {"gpt-oss:20b", "gpt-oss:20b", ThinkMode::lowest},   // what the user asked for, held down
        {"bge-m3", "qwen:0.5b", ThinkMode::none},            // cannot chat
        {"gpt-oss:20b-cloud", "qwen:0.5b", ThinkMode::none}, // served elsewhere
        {"mistral:7b", "qwen:0.5b", ThinkMode::none},        // not installed
        {"", "qwen:0.5b", ThinkMode::none}};
    for (const auto& [named, chosen, think] : choices) {
        Client client({.endpoint = runtime.url(), .preferredModel = named});
        EXPECT_EQ(client.model->chatModel(), chosen) << named.toStdString();
        EXPECT_EQ(client.model->chatThinkMode(), think) << named.toStdString();
    }
}

} // namespace
