#pragma once

// The advisor's view of a language model: whether it can be used, and one answer to one request.
// The program talks to a local runtime (OllamaModel); tests script their own.

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

namespace quelmo {

// Why the model can or cannot be used. The reasons keep the names the status texts are known by;
// on Linux they mean what the comments say.
enum class ModelAvailability {
    available,
    deviceNotEligible,           // no local model runtime is installed
    appleIntelligenceNotEnabled, // a runtime is installed but not running
    modelNotReady,               // the runtime runs but has no model that can chat yet
    otherReason,                 // anything else, including "not looked at yet"
};

// One request: a fresh conversation of one system message and one user message.
struct ModelRequest {
    QString instructions; // the system message
    QString prompt;       // the user message, the schema included
    QByteArray format;    // the JSON schema the answer must follow
};

class LanguageModel {
public:
    virtual ~LanguageModel() = default;

    // A guess that needs no request, used until the first probe has answered.
    virtual ModelAvailability assumedAvailability() const = 0;

    // Finds out whether the model can be used now. Calls `done` exactly once, unless the model
    // is destroyed first.
    virtual void probe(std::function<void(ModelAvailability)> done) = 0;

    // Asks the model one request. `done` receives the model's answer text, or nothing when
    // anything failed. It is called exactly once, never before `respond` has returned, and not
    // at all once the model is destroyed.
    virtual void respond(const ModelRequest& request,
                         std::function<void(std::optional<QString>)> done) = 0;
};

} // namespace quelmo
