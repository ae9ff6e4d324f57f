#include "platform/ollama/RuntimeEndpoint.h"

#include "AdvisorClient.h"
#include "core/settings/SettingsKeys.h"
#include "support/QtPrinting.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <gtest/gtest.h>

using namespace quelmo;
using namespace quelmo::ollama_platform;
using namespace quelmo::test;

namespace {

TEST(RuntimeEndpoint, OllamaHostIsFollowedOnlyToThisMachine) {
    const std::pair<const char*, const char*> followed[] = {
        {"127.0.0.1:11500", "http://127.0.0.1:11500"},
        {"http://127.0.0.1:11500/", "http://127.0.0.1:11500"},
        {"  localhost  ", "http://127.0.0.1:11434"},
        {"LOCALHOST:8080", "http://127.0.0.1:8080"},
        {"127.4.5.6", "http://127.4.5.6:11434"},
        {"[::1]:11500", "http://[::1]:11500"},
        {"::1", "http://[::1]:11434"},
        {":11500", "http://127.0.0.1:11500"},
        {"0.0.0.0", "http://127.0.0.1:11434"}, // a runtime listening everywhere listens here too
        {"http://[::]:9", "http://[::1]:9"},
        {"127.0.0.1:notaport", "http://127.0.0.1:11434"},
        {"", "http://127.0.0.1:11434"}};
    for (const auto& [value, endpoint] : followed) {
        const EndpointChoice choice = runtimeEndpoint(value);
        EXPECT_EQ(choice.endpoint, QUrl(endpoint)) << value;
        EXPECT_EQ(choice.refusal, "") << value;
    }
    for (const char* elsewhere :
         {"192.168.1.20:11434", "example.com", "http://ollama.lan:11434", "10.0.0.1",
          "https://127.0.0.1:11434", "127.0.0.1.nip.io", "[::1", "localhost.example:11434"}) {
        const EndpointChoice choice = runtimeEndpoint(elsewhere);
        EXPECT_EQ(choice.endpoint, QUrl("http://127.0.0.1:11434")) << elsewhere;
        EXPECT_TRUE(choice.refusal.contains(elsewhere)) << choice.refusal.toStdString();
    }
}

// What the program reads at start: the runtime on the port OLLAMA_HOST names, the model the
// settings name.
TEST(RuntimeEndpoint, TheProgramsSetupComesFromTheEnvironmentAndTheSettings) {
    FakeOllamaServer runtime;
    runtime.serveModels("[]", "[" + qwen + "," + llama + "]", capabilities);
    {
        // Written by hand, the way the README shows it.
        QFile file(QSettings().fileName());
        QDir().mkpath(QFileInfo(file).path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("[General]\nquelmo.advisor.model=llama:3b\n");
    }
    // The forms OLLAMA_HOST may take are read by the table above.
    qputenv("OLLAMA_HOST", "localhost:" + QByteArray::number(runtime.port()));
    OllamaOptions options = OllamaOptions::fromEnvironment();
    options.runtimeInstalled = [] { return false; };
    Client client(std::move(options));
    EXPECT_EQ(client.advisor.status().reason, "");
    EXPECT_EQ(client.model->chatModel(), "llama:3b");
    qputenv("OLLAMA_HOST", "203.0.113.9:" + QByteArray::number(runtime.port()));
    EXPECT_EQ(OllamaOptions::fromEnvironment().endpoint, QUrl("http://127.0.0.1:11434"));
    qunsetenv("OLLAMA_HOST");
    QSettings().remove(SettingsKeys::advisorModel);
}

} // namespace
