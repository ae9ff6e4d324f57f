#include "platform/ollama/OllamaOptions.h"

#include "core/settings/Preferences.h"

namespace quelmo::ollama_platform {

Q_LOGGING_CATEGORY(lcAdvisor, "quelmo.advisor", QtInfoMsg)

OllamaOptions OllamaOptions::fromEnvironment() {
    OllamaOptions options;
    const EndpointChoice choice = runtimeEndpoint(qEnvironmentVariable("OLLAMA_HOST"));
    options.endpoint = choice.endpoint;
    static bool told = false;
    if (!choice.refusal.isEmpty() && !told) {
        told = true;
        qCWarning(lcAdvisor, "%s", qUtf8Printable(choice.refusal));
    }
    options.preferredModel = Preferences::advisorModel();
    return options;
}

} // namespace quelmo::ollama_platform
