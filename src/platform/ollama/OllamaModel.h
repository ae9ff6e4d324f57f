#pragma once

// The language model of a local runtime speaking the Ollama HTTP API on this machine's loopback
// interface. Every request is a fresh, non-streaming chat; nothing is sent anywhere else.

#include "core/advisor/LanguageModel.h"
#include "core/advisor/LoopbackEndpoint.h"
#include "platform/ollama/ModelChoice.h"
#include "platform/ollama/OllamaOptions.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QUrl>
#include <functional>
#include <optional>

class QNetworkAccessManager;

namespace quelmo::ollama_platform {

class OllamaModel final : public QObject, public LanguageModel {
public:
    explicit OllamaModel(OllamaOptions options = OllamaOptions::fromEnvironment());
    ~OllamaModel() override;

    // Refused address: another reason. Otherwise not installed, or not known yet.
    ModelAvailability assumedAvailability() const override;

    // Not answering: not running (or not installed). Answering, but older than structured
    // answers: the model is not ready. Otherwise the model to chat with is, among the models
    // stored on this machine that can chat and have not refused a request, the one the user
    // named; else the first in this order: loaded before not loaded, then the smallest, with
    // models that cannot stop thinking after all others. With none, the model is not ready.
    void probe(std::function<void(ModelAvailability)> done) override;

    // POST /api/chat with the instructions as system message, the prompt as user message, the
    // schema as structured-output format, thinking turned off or down, no sampling options and
    // no streaming. A model that answers with a client error is not asked again.
    void respond(const ModelRequest& request,
                 std::function<void(std::optional<QString>)> done) override;

    // The model chosen by the last probe, and how it is kept from thinking; empty when there is
    // none.
    QString chatModel() const { return chatModel_; }
    ThinkMode chatThinkMode() const { return chatThink_; }

    // The body of one chat request, keys in a fixed order and the schema kept as given.
    static QByteArray chatRequestBody(const QString& model, const ModelRequest& request,
                                      ThinkMode think = ThinkMode::none);
    // The assistant's message text from a chat answer; nothing when it has none. What the model
    // thought on the way is no part of it.
    static std::optional<QString> answerText(const QByteArray& body);

    // Answers larger than this are abandoned; no honest answer comes close.
    static constexpr qint64 maxAnswerBytes = 8 * 1024 * 1024;

private:
    struct Reply {
        enum Outcome { ok, httpError, refused, failed } outcome = failed;
        int status = 0;  // the HTTP status, when there was an answer
        QByteArray body; // only for ok
    };
    using ReplyHandler = std::function<void(const Reply&)>;
    using Done = std::function<void(ModelAvailability)>;

    // One model still to be looked at, and how to ask it once chosen.
    struct Pick {
        QString name;
        ThinkMode think = ThinkMode::none;
    };

    void send(const QString& path, const std::optional<QByteArray>& body, int timeoutMs,
              ReplyHandler handler);
    void listModels(const QList<RuntimeModel>& loaded, Done done);
    // The installed model the user named, matched with or without its ":latest" tag.
    std::optional<RuntimeModel> preferredAmong(const QList<RuntimeModel>& installed) const;
    void pickChatModel(QList<RuntimeModel> candidates, const QString& preferred,
                       std::optional<Pick> fallback, Done done);
    void conclude(ModelAvailability availability, const std::optional<Pick>& pick,
                  const Done& done);
    void notePreferredUnusable(const QString& why);

    std::optional<QUrl> endpoint_;
    int answerTimeoutMs_;
    int probeTimeoutMs_;
    std::function<bool()> runtimeInstalled_;
    QString preferredModel_;
    QNetworkAccessManager* network_;
    QString chatModel_;
    ThinkMode chatThink_ = ThinkMode::none;
    // Models that answered a chat with a client error: asking them again would fail the same way.
    QSet<QString> refusedModels_;
    bool preferredNoted_ = false;
};

} // namespace quelmo::ollama_platform
