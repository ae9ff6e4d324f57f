#pragma once

// The language model of a local runtime speaking the Ollama HTTP API on this machine's loopback
// interface. Every request is a fresh, non-streaming chat; nothing is sent anywhere else.

#include "core/advisor/LanguageModel.h"
#include "core/advisor/LoopbackEndpoint.h"
#include "platform/ollama/RuntimeDetection.h"

#include <QList>
#include <QObject>
#include <QStringList>
#include <QUrl>
#include <functional>
#include <optional>

class QNetworkAccessManager;

namespace quelmo::ollama_platform {

struct OllamaOptions {
    // Must be a loopback address; any other is refused before a request is made.
    QUrl endpoint = QUrl(QString::fromLatin1(defaultRuntimeEndpoint));
    // After this long an evaluation is abandoned and yields nothing.
    int answerTimeoutMs = 60000;
    // Limit for each of the small requests that find out whether the runtime can be used.
    int probeTimeoutMs = 10000;
    // Whether a runtime that does not answer is at least installed.
    std::function<bool()> runtimeInstalled = localRuntimeInstalled;
};

class OllamaModel final : public QObject, public LanguageModel {
public:
    explicit OllamaModel(OllamaOptions options = OllamaOptions());
    ~OllamaModel() override;

    // Refused address: another reason. Otherwise not installed, or not known yet.
    ModelAvailability assumedAvailability() const override;

    // Not answering: not running (or not installed). Answering: the model to chat with is one
    // the runtime has loaded already, else the smallest installed one that can chat; with none,
    // the model is not ready.
    void probe(std::function<void(ModelAvailability)> done) override;

    // POST /api/chat with the instructions as system message, the prompt as user message, the
    // schema as structured-output format, no sampling options and no streaming.
    void respond(const ModelRequest& request,
                 std::function<void(std::optional<QString>)> done) override;

    // The model chosen by the last probe; empty when there is none.
    QString chatModel() const { return chatModel_; }

    // The body of one chat request, keys in a fixed order and the schema kept as given.
    static QByteArray chatRequestBody(const QString& model, const ModelRequest& request);
    // The assistant's message text from a chat answer; nothing when it has none.
    static std::optional<QString> answerText(const QByteArray& body);

    // Answers larger than this are abandoned; no honest answer comes close.
    static constexpr qint64 maxAnswerBytes = 8 * 1024 * 1024;

private:
    // One model the runtime lists: its name, its size on disk and its model families.
    struct RuntimeModel {
        QString name;
        double size = 0;
        QStringList families;
    };
    static std::optional<QList<RuntimeModel>> modelList(const QByteArray& body);
    static bool looksLikeEmbedding(const RuntimeModel& model);
    static std::optional<bool> canChat(const QByteArray& showBody);

    struct Reply {
        enum Outcome { ok, httpError, refused, failed } outcome = failed;
        QByteArray body; // only for ok
    };
    using ReplyHandler = std::function<void(const Reply&)>;

    void send(const QString& path, const std::optional<QByteArray>& body, int timeoutMs,
              ReplyHandler handler);
    void pickChatModel(QList<RuntimeModel> candidates, std::function<void(ModelAvailability)> done);
    void conclude(ModelAvailability availability, const QString& model,
                  const std::function<void(ModelAvailability)>& done);

    std::optional<QUrl> endpoint_;
    int answerTimeoutMs_;
    int probeTimeoutMs_;
    std::function<bool()> runtimeInstalled_;
    QNetworkAccessManager* network_;
    QString chatModel_;
};

} // namespace quelmo::ollama_platform
