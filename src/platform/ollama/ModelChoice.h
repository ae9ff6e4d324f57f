#pragma once

// What the runtime says about its models, read into the few facts that decide which one the
// advisor may chat with. Pure: no request is made here.

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace quelmo::ollama_platform {

// How a chat request keeps a model from reasoning at length before it answers.
enum class ThinkMode {
    none,   // the model does not think: the request says nothing about it
    off,    // the model thinks unless asked not to: "think": false
    lowest, // the model always thinks and only takes a level: "think": "low"
};

// One model as /api/tags or /api/ps lists it.
struct RuntimeModel {
    QString name;
    double size = 0; // bytes on disk
    QStringList families;
    bool remote = false; // served from elsewhere: never a candidate
};

// What /api/show says a model can do.
struct ModelAbilities {
    bool canChat = false;
    bool remote = false;
    ThinkMode think = ThinkMode::none;
};

// The models of a /api/tags or /api/ps answer; nothing when it is not such a list.
std::optional<QList<RuntimeModel>> modelList(const QByteArray& body);

// The order in which models are looked at: only models stored on this machine, those already
// loaded first (answering with them costs no loading time), then the others from the smallest.
QList<RuntimeModel> candidateOrder(const QList<RuntimeModel>& loaded,
                                   const QList<RuntimeModel>& installed);

// What `listed` can do, from the runtime's /api/show answer; `showBody` is nothing when the
// runtime did not answer it (a runtime too old to know capabilities), and the model is then
// judged by its name and families.
ModelAbilities modelAbilities(const RuntimeModel& listed,
                              const std::optional<QByteArray>& showBody);

// Whether a /api/version answer names a runtime too old to follow a JSON schema format. A version
// that cannot be read, or the 0.0.0 of a build from source, is not held against the runtime.
bool tooOldForSchemas(const QByteArray& versionBody);

// The first runtime version that takes a JSON schema as structured-output format.
inline constexpr int schemaFormatVersion[3] = {0, 5, 0};

} // namespace quelmo::ollama_platform
