#pragma once

// An advisor on the real runtime client, and the models the tests' runtimes list.

#include "FakeOllamaServer.h"
#include "core/advisor/AIAdvisor.h"
#include "platform/ollama/OllamaModel.h"

#include <gtest/gtest.h>

namespace quelmo::test {

// Models as the runtime lists them (sizes in bytes on disk), and what /api/show says each can do.
// The two embedding models are told apart from chat models by name and by family respectively.
inline const QByteArray qwen = R"({"name":"qwen:0.5b","size":300,"details":{"family":"qwen2"}})";
inline const QByteArray llama = R"({"name":"llama:3b","size":2000,"details":{"family":"llama"}})";
inline const QByteArray minilm = R"({"name":"all-minilm","size":40})";
inline const QByteArray bge = R"({"name":"bge-m3","size":200,"details":{"family":"bert"}})";
inline const QByteArray chat = R"(["completion"])", embedding = R"(["embedding"])";
inline const QHash<QString, QByteArray> capabilities = {
    {"qwen:0.5b", chat}, {"llama:3b", chat}, {"all-minilm", embedding}, {"bge-m3", embedding}};
// The explanation is kept exactly, other keys are ignored, and the other words are normalised.
inline const QByteArray goodAnswer = R"({"explanation":" Image viewer","extra":1,)"
                                     R"("safeToQuit":true,"risk":"SAFE","recommendation":"cut"})";
inline const AIQueueEntry preview{"Preview", 0.3, 180.6, "Unused app", 125.5, false};

// A runtime with qwen alone, answering every chat with `answer`.
inline void serveQwen(FakeOllamaServer& runtime,
                      FakeOllamaServer::Answer answer = FakeOllamaServer::chatAnswer(goodAnswer)) {
    runtime.serveModels("[]", "[" + qwen + "]", capabilities);
    runtime.on("POST", "/api/chat", std::move(answer));
}

// An advisor on the real client, set up by `options`, once its first look has answered.
struct Client {
    ollama_platform::OllamaModel* model;
    AIAdvisor advisor;
    bool looked = false;

    explicit Client(ollama_platform::OllamaOptions options)
        : model(new ollama_platform::OllamaModel(std::move(options))),
          advisor(std::unique_ptr<LanguageModel>(model)) {
        QObject::connect(&advisor, &AIAdvisor::statusRefreshed, [this] { looked = true; });
        EXPECT_TRUE(waitUntil([&] { return looked; }));
    }
    explicit Client(const QUrl& endpoint, bool installed = false, int answerTimeoutMs = 1000)
        : Client({.endpoint = endpoint,
                  .answerTimeoutMs = answerTimeoutMs,
                  .runtimeInstalled = [=] { return installed; }}) {}

    std::optional<AIVerdict> evaluate() {
        std::optional<std::optional<AIVerdict>> result;
        advisor.evaluate(preview, Language::english,
                         [&](std::optional<AIVerdict> v) { result = v; });
        EXPECT_FALSE(result) << "answered from inside evaluate";
        EXPECT_TRUE(waitUntil([&] { return result.has_value(); }));
        return result.value_or(std::nullopt);
    }
};

} // namespace quelmo::test
