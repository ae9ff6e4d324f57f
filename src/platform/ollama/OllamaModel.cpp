#include "platform/ollama/OllamaModel.h"

#include "core/advisor/JsonText.h"

#include <QJsonArray>
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

std::optional<QJsonObject> jsonObject(const QByteArray& body) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    return document.object();
}

} // namespace

OllamaModel::OllamaModel(OllamaOptions options)
    : endpoint_(loopbackEndpoint(options.endpoint)), answerTimeoutMs_(options.answerTimeoutMs),
      probeTimeoutMs_(options.probeTimeoutMs),
      runtimeInstalled_(std::move(options.runtimeInstalled)),
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

void OllamaModel::probe(std::function<void(ModelAvailability)> done) {
    if (!endpoint_) {
        QTimer::singleShot(0, this, [done] { done(ModelAvailability::otherReason); });
        return;
    }
    send(QStringLiteral("/api/ps"), std::nullopt, probeTimeoutMs_, [this, done](const Reply& ps) {
        if (ps.outcome == Reply::refused) {
            const bool installed = runtimeInstalled_ && runtimeInstalled_();
            conclude(installed ? ModelAvailability::appleIntelligenceNotEnabled
                               : ModelAvailability::deviceNotEligible,
                     {}, done);
            return;
        }
        if (ps.outcome == Reply::failed) {
            conclude(ModelAvailability::otherReason, {}, done);
            return;
        }
        // A runtime that cannot list its loaded models still runs; it just has none to offer.
        const QList<RuntimeModel> loaded = ps.outcome == Reply::ok
                                               ? modelList(ps.body).value_or(QList<RuntimeModel>{})
                                               : QList<RuntimeModel>{};
        send(QStringLiteral("/api/tags"), std::nullopt, probeTimeoutMs_,
             [this, done, loaded](const Reply& tags) {
                 const auto installed =
                     tags.outcome == Reply::ok ? modelList(tags.body) : std::nullopt;
                 if (!installed) {
                     conclude(ModelAvailability::otherReason, {}, done);
                     return;
                 }
                 QList<RuntimeModel> bySize = *installed;
                 std::stable_sort(
                     bySize.begin(), bySize.end(),
                     [](const RuntimeModel& a, const RuntimeModel& b) { return a.size < b.size; });
                 // Loaded models first: answering with one of them costs no loading time.
                 QList<RuntimeModel> candidates = loaded;
                 for (const RuntimeModel& model : bySize)
                     if (std::none_of(candidates.begin(), candidates.end(),
                                      [&](const RuntimeModel& c) { return c.name == model.name; }))
                         candidates.append(model);
                 pickChatModel(std::move(candidates), done);
             });
    });
}

void OllamaModel::pickChatModel(QList<RuntimeModel> candidates,
                                std::function<void(ModelAvailability)> done) {
    if (candidates.isEmpty()) {
        conclude(ModelAvailability::modelNotReady, {}, done);
        return;
    }
    const RuntimeModel first = candidates.takeFirst();
    const QByteArray body = "{\"model\":" + jsonStringLiteral(first.name) + "}";
    send(QStringLiteral("/api/show"), body, probeTimeoutMs_,
         [this, first, rest = std::move(candidates), done](const Reply& show) {
             // The runtime's own word on what a model can do wins; runtimes too old to say
             // are judged by the model's name and family.
             const std::optional<bool> said =
                 show.outcome == Reply::ok ? canChat(show.body) : std::nullopt;
             if (said.value_or(!looksLikeEmbedding(first)))
                 conclude(ModelAvailability::available, first.name, done);
             else
                 pickChatModel(rest, done);
         });
}

void OllamaModel::conclude(ModelAvailability availability, const QString& model,
                           const std::function<void(ModelAvailability)>& done) {
    chatModel_ = model;
    done(availability);
}

void OllamaModel::respond(const ModelRequest& request,
                          std::function<void(std::optional<QString>)> done) {
    if (!endpoint_ || chatModel_.isEmpty()) {
        QTimer::singleShot(0, this, [done] { done(std::nullopt); });
        return;
    }
    send(QStringLiteral("/api/chat"), chatRequestBody(chatModel_, request), answerTimeoutMs_,
         [done](const Reply& reply) {
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
        if (error == QNetworkReply::NoError && status.toInt() == 200)
            result = {Reply::ok, reply->readAll()};
        else if (error == QNetworkReply::ConnectionRefusedError ||
                 error == QNetworkReply::HostNotFoundError)
            result.outcome = Reply::refused;
        else if (status.isValid())
            result.outcome = Reply::httpError; // it answered, just not with what was asked
        handler(result);
    });
}

QByteArray OllamaModel::chatRequestBody(const QString& model, const ModelRequest& request) {
    QByteArray body = "{\"model\":" + jsonStringLiteral(model) +
                      ",\"messages\":[{\"role\":\"system\",\"content\":" +
                      jsonStringLiteral(request.instructions) +
                      "},{\"role\":\"user\",\"content\":" + jsonStringLiteral(request.prompt) +
                      "}],\"stream\":false";
    if (!request.format.isEmpty())
        body += ",\"format\":" + request.format;
    return body + "}";
}

std::optional<QString> OllamaModel::answerText(const QByteArray& body) {
    const auto object = jsonObject(body);
    if (!object)
        return std::nullopt;
    const QJsonValue content =
        object->value(QLatin1String("message")).toObject().value(QLatin1String("content"));
    if (!content.isString())
        return std::nullopt;
    return content.toString();
}

std::optional<QList<OllamaModel::RuntimeModel>> OllamaModel::modelList(const QByteArray& body) {
    const auto object = jsonObject(body);
    if (!object || !object->value(QLatin1String("models")).isArray())
        return std::nullopt;
    QList<RuntimeModel> models;
    for (const QJsonValue& entry : object->value(QLatin1String("models")).toArray()) {
        const QJsonObject item = entry.toObject();
        RuntimeModel model;
        model.name = item.value(QLatin1String("name")).toString();
        if (model.name.isEmpty())
            model.name = item.value(QLatin1String("model")).toString();
        if (model.name.isEmpty())
            continue;
        model.size = item.value(QLatin1String("size")).toDouble();
        const QJsonObject details = item.value(QLatin1String("details")).toObject();
        model.families << details.value(QLatin1String("family")).toString();
        for (const QJsonValue& family : details.value(QLatin1String("families")).toArray())
            model.families << family.toString();
        models.append(model);
    }
    return models;
}

bool OllamaModel::looksLikeEmbedding(const RuntimeModel& model) {
    // The families of the common embedding-only models; their names nearly always say "embed"
    // or "minilm" as well.
    static const QStringList embeddingFamilies = {
        QStringLiteral("bert"), QStringLiteral("nomic-bert"), QStringLiteral("xlm-roberta"),
        QStringLiteral("roberta"), QStringLiteral("jina-bert-v2")};
    const QString name = model.name.toLower();
    if (name.contains(QLatin1String("embed")) || name.contains(QLatin1String("minilm")))
        return true;
    return std::any_of(model.families.begin(), model.families.end(), [](const QString& family) {
        return embeddingFamilies.contains(family.toLower());
    });
}

std::optional<bool> OllamaModel::canChat(const QByteArray& showBody) {
    const auto object = jsonObject(showBody);
    if (!object || !object->value(QLatin1String("capabilities")).isArray())
        return std::nullopt;
    return object->value(QLatin1String("capabilities"))
        .toArray()
        .contains(QJsonValue(QStringLiteral("completion")));
}

} // namespace quelmo::ollama_platform
