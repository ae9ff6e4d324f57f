// What one evaluation costs the main thread: building the request, reading the answer, and a
// whole round trip to a stand-in runtime that runs on a thread of its own (so that its work is
// not counted as the client's). The thread-time variants count the main thread only; the
// process-time variant counts every thread, Qt's network thread and the stand-in included.

#include "core/advisor/AIAdvisor.h"
#include "core/advisor/AdvisorTexts.h"
#include "core/advisor/GenVerdict.h"
#include "platform/ollama/FakeOllamaServer.h"
#include "platform/ollama/OllamaModel.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>
#include <QThread>
#include <benchmark/benchmark.h>

using namespace quelmo;
using namespace quelmo::ollama_platform;
using namespace quelmo::test;

namespace {

const QByteArray answerContent =
    R"({"explanation":"Image viewer for PDFs and pictures","safeToQuit":true,"risk":"SAFE",)"
    R"("recommendation":"cut"})";

const AIQueueEntry entry{"Preview", 0.3, 180.6, "Unused app", 125.5, false};

void BM_BuildRequest(benchmark::State& state) {
    for (auto _ : state) {
        ModelRequest request;
        request.instructions = advisorInstructions(Language::english);
        request.prompt = GenVerdict::promptWithSchema(
            buildPrompt(entry.name, entry.cpu, entry.rssMB, entry.reason, entry.idle,
                        entry.hasWindow, Language::english));
        request.format = GenVerdict::schemaText();
        benchmark::DoNotOptimize(OllamaModel::chatRequestBody("qwen2.5:0.5b", request));
    }
}
BENCHMARK(BM_BuildRequest);

void BM_ParseAnswer(benchmark::State& state) {
    const QByteArray body = FakeOllamaServer::chatAnswer(answerContent).body;
    for (auto _ : state) {
        const auto content = OllamaModel::answerText(body);
        const auto verdict = GenVerdict::fromJson(content->toUtf8());
        benchmark::DoNotOptimize(AIVerdict{verdict->explanation, verdict->safeToQuit,
                                           AIAdvisor::normalizeRisk(verdict->risk),
                                           AIAdvisor::normalizeRec(verdict->recommendation)});
    }
}
BENCHMARK(BM_ParseAnswer);

// The stand-in runtime on its own thread, for the life of one benchmark.
class RuntimeThread {
public:
    RuntimeThread() {
        thread_.start();
        anchor_.moveToThread(&thread_);
        QMetaObject::invokeMethod(
            &anchor_,
            [this] {
                server_ = new FakeOllamaServer;
                server_->serveModels("[]", R"([{"name":"qwen2.5:0.5b","size":1}])",
                                     {{"qwen2.5:0.5b", R"(["completion"])"}});
                server_->on("POST", "/api/chat", FakeOllamaServer::chatAnswer(answerContent));
                url_ = server_->url();
            },
            Qt::BlockingQueuedConnection);
    }
    ~RuntimeThread() {
        QMetaObject::invokeMethod(
            &anchor_, [this] { delete server_; }, Qt::BlockingQueuedConnection);
        thread_.quit();
        thread_.wait();
    }
    QUrl url() const { return url_; }

private:
    QThread thread_;
    QObject anchor_;
    FakeOllamaServer* server_ = nullptr;
    QUrl url_;
};

void BM_EvaluateRoundTrip(benchmark::State& state) {
    RuntimeThread runtime;
    AIAdvisor advisor(std::make_unique<OllamaModel>(OllamaOptions{runtime.url()}));
    if (!waitUntil([&] { return advisor.status().available; })) {
        state.SkipWithError("the stand-in runtime did not become available");
        return;
    }
    std::int64_t verdicts = 0;
    for (auto _ : state) {
        bool done = false;
        advisor.evaluate(entry, Language::english, [&](std::optional<AIVerdict> verdict) {
            verdicts += verdict ? 1 : 0;
            done = true;
        });
        while (!done)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    if (verdicts != static_cast<std::int64_t>(state.iterations()))
        state.SkipWithError("an evaluation yielded no verdict");
}
BENCHMARK(BM_EvaluateRoundTrip)->Name("BM_EvaluateRoundTrip/mainThreadCPU")->UseRealTime();
BENCHMARK(BM_EvaluateRoundTrip)
    ->Name("BM_EvaluateRoundTrip/processCPU")
    ->MeasureProcessCPUTime()
    ->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTemporaryDir settings; // the language setting is read; keep away from the user's own
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
