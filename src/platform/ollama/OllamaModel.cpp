#include "platform/ollama/OllamaModel.h"

#include "core/advisor/JsonText.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>
#include <algorithm>

namespace quelmo::ollama_platform {

namespace {

// Client errors that say the request itself was wrong for this model, so that sending it again
// would fail again. A timeout or a "too many requests" says nothing about the request.
bool refusesTheRequest(int status) {
    return status >= 400 && status < 500 && status != 408 && status != 429;
}

} // namespace

OllamaModel::OllamaModel(OllamaOptions options)
    : endpoint_(loopbackEndpoint(options.endpoint)), answerTimeoutMs_(options.answerTimeoutMs),
      probeTimeoutMs_(options.probeTimeoutMs),
      runtimeInstalled_(std::move(options.runtimeInstalled)),
      preferredModel_(std::move(options.preferredModel)),
      network_(new QNetworkAccessManager(this)) {
    // Straight to the loopback socket: no system or environment proxy gets to see a request.
    network_->setProxy(QNetworkProxy::NoProxy);
}

OllamaModel::~OllamaModel() {
    // Requests still in flight are dropped here; none of them may call back into whoever is
    // tearing this model down.
    for (QNetworkReply* reply : network_->findChildren<QNetworkReply*>())
        QObject::disconnect(reply, nullptr, this, nullptr);
}

ModelAvailability OllamaModel::assumedAvailability() const {
    if (!endpoint_)
        return ModelAvailability::otherReason;
    if (runtimeInstalled_ && runtimeInstalled_())
        return ModelAvailability::otherReason;
    return ModelAvailability::deviceNotEligible;
}

void OllamaModel::probe(Done done) {
    if (!endpoint_) {
        QTimer::singleShot(0, this, [done] { done(ModelAvailability::otherReason); });
        return;
    }
    send(QStringLiteral("/api/ps"), std::nullopt, probeTimeoutMs_, [this, done](const Reply& ps) {
        if (ps.outcome == Reply::refused) {
            const bool installed = runtimeInstalled_ && runtimeInstalled_();
            conclude(installed ? ModelAvailability::appleIntelligenceNotEnabled
                               : ModelAvailability::deviceNotEligible,
                     std::nullopt, done);
            return;
        }
        if (ps.outcome == Reply::failed) {
            conclude(ModelAvailability::otherReason, std::nullopt, done);
            return;
        }
        // A runtime that cannot list its loaded models still runs; it just has none to offer.
        const QList<RuntimeModel> loaded = ps.outcome == Reply::ok
                                               ? modelList(ps.body).value_or(QList<RuntimeModel>{})
                                               : QList<RuntimeModel>{};
        send(QStringLiteral("/api/version"), std::nullopt, probeTimeoutMs_,
             [this, done, loaded](const Reply& version) {
                 // Such a runtime answers every request for a structured answer with an error.
                 if (version.outcome == Reply::ok && tooOldForSchemas(version.body))
                     conclude(ModelAvailability::modelNotReady, std::nullopt, done);
                 else
                     listModels(loaded, done);
             });
    });
}

void OllamaModel::listModels(const QList<RuntimeModel>& loaded, Done done) {
    send(QStringLiteral("/api/tags"), std::nullopt, probeTimeoutMs_,
         [this, done, loaded](const Reply& tags) {
             const auto installed = tags.outcome == Reply::ok ? modelList(tags.body) : std::nullopt;
             if (!installed) {
                 conclude(ModelAvailability::otherReason, std::nullopt, done);
                 return;
             }
             QList<RuntimeModel> candidates = candidateOrder(loaded, *installed);
             QString preferred;
             if (!preferredModel_.isEmpty()) {
                 const std::optional<RuntimeModel> named = preferredAmong(*installed);
                 if (!named)
                     notePreferredUnusable(QStringLiteral("the runtime has no such model"));
                 else if (named->remote)
                     notePreferredUnusable(QStringLiteral("it is not stored on this machine"));
                 else
                     preferred = named->name;
             }
             // The named model is looked at first and taken whenever it can chat at all.
             const auto at =
                 std::find_if(candidates.begin(), candidates.end(),
                              [&](const RuntimeModel& m) { return m.name == preferred; });
             if (!preferred.isEmpty() && at != candidates.end())
                 std::rotate(candidates.begin(), at, at + 1);
             pickChatModel(std::move(candidates), preferred, std::nullopt, done);
         });
}

std::optional<RuntimeModel>
OllamaModel::preferredAmong(const QList<RuntimeModel>& installed) const {
    for (const QString& name : {preferredModel_, preferredModel_ + QLatin1String(":latest")})
        for (const RuntimeModel& model : installed)
            if (model.name == name)
                return model;
    return std::nullopt;
}

void OllamaModel::pickChatModel(QList<RuntimeModel> candidates, const QString& preferred,
                                std::optional<Pick> fallback, Done done) {
    while (!candidates.isEmpty() && refusedModels_.contains(candidates.first().name)) {
        if (candidates.first().name == preferred)
            notePreferredUnusable(QStringLiteral("it refused a request"));
        candidates.removeFirst();
    }
    if (candidates.isEmpty()) {
        // A model that cannot stop thinking is still better than none; at its lowest level it
        // answers within the time limit on most machines.
        conclude(fallback ? ModelAvailability::available : ModelAvailability::modelNotReady,
                 fallback, done);
        return;
    }
    const RuntimeModel first = candidates.takeFirst();
    const QByteArray body = "{\"model\":" + jsonStringLiteral(first.name) + "}";
    send(
        QStringLiteral("/api/show"), body, probeTimeoutMs_,
        [this, first, rest = std::move(candidates), preferred, fallback,
         done](const Reply& show) mutable {
            const ModelAbilities abilities = modelAbilities(
                first, show.outcome == Reply::ok ? std::optional(show.body) : std::nullopt);
            const bool usable =
                abilities.canChat && !abilities.remote && !refusedModels_.contains(first.name);
            if (first.name == preferred) {
                if (usable) {
                    conclude(ModelAvailability::available, Pick{first.name, abilities.think}, done);
                    return;
                }
                notePreferredUnusable(abilities.remote
                                          ? QStringLiteral("it is not stored on this machine")
                                          : QStringLiteral("it cannot chat"));
            } else if (usable && abilities.think != ThinkMode::lowest) {
                conclude(ModelAvailability::available, Pick{first.name, abilities.think}, done);
                return;
            } else if (usable && !fallback) {
                fallback = Pick{first.name, abilities.think};
            }
            pickChatModel(std::move(rest), preferred, std::move(fallback), done);
        });
}

void OllamaModel::conclude(ModelAvailability availability, const std::optional<Pick>& pick,
                           const Done& done) {
    chatModel_ = pick ? pick->name : QString();
    chatThink_ = pick ? pick->think : ThinkMode::none;
    done(availability);
}

void OllamaModel::notePreferredUnusable(const QString& why) {
    if (preferredNoted_)
        return;
    preferredNoted_ = true;
    qCWarning(lcAdvisor,
              "The settings name the model \"%s\", which is not used: %s; the advisor "
              "chooses a model itself",
              qUtf8Printable(preferredModel_), qUtf8Printable(why));
}

void OllamaModel::respond(const ModelRequest& request,
                          std::function<void(std::optional<QString>)> done) {
    if (!endpoint_ || chatModel_.isEmpty()) {
        QTimer::singleShot(0, this, [done] { done(std::nullopt); });
        return;
    }
    send(QStringLiteral("/api/chat"), chatRequestBody(chatModel_, request, chatThink_),
         answerTimeoutMs_, [this, done, model = chatModel_](const Reply& reply) {
             if (reply.outcome == Reply::httpError && refusesTheRequest(reply.status)) {
                 // Not asked again in this run; the next look chooses among the others.
                 refusedModels_.insert(model);
                 if (chatModel_ == model) {
                     chatModel_.clear();
                     chatThink_ = ThinkMode::none;
                 }
             }
             done(reply.outcome == Reply::ok ? answerText(reply.body) : std::nullopt);
         });
}

void OllamaModel::send(const QString& path, const std::optional<QByteArray>& body, int timeoutMs,
                       ReplyHandler handler) {
    QUrl url = *endpoint_;
    url.setPath(path);
    QNetworkRequest request(url);
    // A redirect could point anywhere; it is treated as a failed answer instead of followed.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false); // plain HTTP/1.1
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QNetworkReply* reply = body ? network_->post(request, *body) : network_->get(request);

    QTimer::singleShot(timeoutMs, reply, &QNetworkReply::abort);
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > maxAnswerBytes)
            reply->abort();
    });
    connect(reply, &QNetworkReply::finished, this, [reply, handler = std::move(handler)] {
        reply->deleteLater();
        Reply result;
        const QNetworkReply::NetworkError error = reply->error();
        const QVariant status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
        result.status = status.toInt();
        if (error == QNetworkReply::NoError && result.status == 200) {
            result.outcome = Reply::ok;
            result.body = reply->readAll();
        } else if (error == QNetworkReply::ConnectionRefusedError ||
                   error == QNetworkReply::HostNotFoundError) {
            result.outcome = Reply::refused;
        } else if (status.isValid()) {
            result.outcome = Reply::httpError; // it answered, just not with what was asked
        }
        handler(result);
    });
}

QByteArray OllamaModel::chatRequestBody(const QString& model, const ModelRequest& request,
                                        ThinkMode think) {
    QByteArray body = "{\"model\":" + jsonStringLiteral(model) +
                      ",\"messages\":[{\"role\":\"system\",\"content\":" +
                      jsonStringLiteral(request.instructions) +
                      "},{\"role\":\"user\",\"content\":" + jsonStringLiteral(request.prompt) +
                      "}],\"stream\":false";
    // Hidden reasoning before the answer costs a small model tens of seconds of CPU per
    // candidate, and the answer is no better for a one-line verdict.
    if (think == ThinkMode::off)
        body += ",\"think\":false";
    else if (think == ThinkMode::lowest)
        body += ",\"think\":\"low\"";
    if (!request.format.isEmpty())
        body += ",\"format\":" + request.format;
    return body + "}";
}

std::optional<QString> OllamaModel::answerText(const QByteArray& body) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    const QJsonValue content = document.object()
                                   .value(QLatin1String("message"))
                                   .toObject()
                                   .value(QLatin1String("content"));
    if (!content.isString())
        return std::nullopt;
    return content.toString();
}

} // namespace quelmo::ollama_platform
