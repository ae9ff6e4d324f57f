#pragma once

// How the client of the local runtime is set up: where the runtime listens, how long it may take,
// and which model the user asked for.

#include "platform/ollama/RuntimeDetection.h"
#include "platform/ollama/RuntimeEndpoint.h"

#include <QLoggingCategory>
#include <QString>
#include <QUrl>
#include <functional>

namespace quelmo::ollama_platform {

// The advisor's few log lines: why a setting the user made is not followed.
Q_DECLARE_LOGGING_CATEGORY(lcAdvisor)

struct OllamaOptions {
    // Must be a loopback address; any other is refused before a request is made.
    QUrl endpoint = QUrl(QString::fromLatin1(defaultRuntimeEndpoint));
    // After this long an evaluation is abandoned and yields nothing.
    int answerTimeoutMs = 60000;
    // Limit for each of the small requests that find out whether the runtime can be used.
    int probeTimeoutMs = 10000;
    // Whether a runtime that does not answer is at least installed.
    std::function<bool()> runtimeInstalled = localRuntimeInstalled;
    // The model the user named; used when it is stored on this machine and can chat, else the
    // client chooses. Empty: the client chooses.
    QString preferredModel = {};

    // The program's own setup, read once at start: the endpoint from OLLAMA_HOST when that names
    // a loopback address (otherwise the default, and one log line saying why), and the model
    // named in the settings.
    static OllamaOptions fromEnvironment();
};

} // namespace quelmo::ollama_platform
