#include "platform/ollama/ModelChoice.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
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

QStringList families(const QJsonObject& details) {
    QStringList found;
    const QString family = details.value(QLatin1String("family")).toString();
    if (!family.isEmpty())
        found << family;
    for (const QJsonValue& each : details.value(QLatin1String("families")).toArray())
        if (!each.toString().isEmpty())
            found << each.toString();
    return found;
}

// A model the runtime only relays to a server elsewhere says where, in either field; its name
// ends in "-cloud" or its tag is "cloud" even where a runtime leaves the fields out.
bool servedElsewhere(const QJsonObject& entry, const QString& name) {
    for (const char* field : {"remote_host", "remote_model"}) {
        const QJsonValue value = entry.value(QLatin1String(field));
        if (!value.isUndefined() && !value.isNull() && value != QJsonValue(QString()))
            return true;
    }
    const QString lower = name.toLower();
    return lower.endsWith(QLatin1String("-cloud")) || lower.endsWith(QLatin1String(":cloud"));
}

bool looksLikeEmbedding(const RuntimeModel& model) {
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

// gpt-oss reasons at a level from low to high and ignores a plain "think": false.
bool thinksOnlyAtLevels(const QString& name, const QStringList& families) {
    const QString base = name.section(QLatin1Char('/'), -1).toLower();
    if (base.startsWith(QLatin1String("gpt-oss")))
        return true;
    return std::any_of(families.begin(), families.end(), [](const QString& family) {
        return family.compare(QLatin1String("gptoss"), Qt::CaseInsensitive) == 0 ||
               family.compare(QLatin1String("gpt-oss"), Qt::CaseInsensitive) == 0;
    });
}

} // namespace

std::optional<QList<RuntimeModel>> modelList(const QByteArray& body) {
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
        model.families = families(item.value(QLatin1String("details")).toObject());
        model.remote = servedElsewhere(item, model.name);
        models.append(model);
    }
    return models;
}

QList<RuntimeModel> candidateOrder(const QList<RuntimeModel>& loaded,
                                   const QList<RuntimeModel>& installed) {
    QList<RuntimeModel> local;
    std::copy_if(installed.begin(), installed.end(), std::back_inserter(local),
                 [](const RuntimeModel& model) { return !model.remote; });
    std::stable_sort(local.begin(), local.end(),
                     [](const RuntimeModel& a, const RuntimeModel& b) { return a.size < b.size; });
    // A loaded model counts only as the installed entry of the same name, so that what the
    // loaded list says can never make a model served elsewhere look local.
    std::stable_partition(local.begin(), local.end(), [&](const RuntimeModel& model) {
        return std::any_of(loaded.begin(), loaded.end(),
                           [&](const RuntimeModel& l) { return l.name == model.name; });
    });
    return local;
}

ModelAbilities modelAbilities(const RuntimeModel& listed,
                              const std::optional<QByteArray>& showBody) {
    ModelAbilities abilities;
    abilities.remote = listed.remote;
    abilities.canChat = !looksLikeEmbedding(listed);
    const auto show = showBody ? jsonObject(*showBody) : std::nullopt;
    if (!show)
        return abilities;
    abilities.remote = abilities.remote || servedElsewhere(*show, listed.name);
    // The runtime's own word on what a model can do wins; runtimes too old to say are judged by
    // the model's name and family.
    const QJsonValue capabilities = show->value(QLatin1String("capabilities"));
    if (!capabilities.isArray())
        return abilities;
    const QJsonArray list = capabilities.toArray();
    abilities.canChat = list.contains(QJsonValue(QStringLiteral("completion")));
    if (list.contains(QJsonValue(QStringLiteral("thinking")))) {
        const QStringList all =
            listed.families + families(show->value(QLatin1String("details")).toObject());
        abilities.think = thinksOnlyAtLevels(listed.name, all) ? ThinkMode::lowest : ThinkMode::off;
    }
    return abilities;
}

bool tooOldForSchemas(const QByteArray& versionBody) {
    const auto object = jsonObject(versionBody);
    if (!object)
        return false;
    static const QRegularExpression numbered(QStringLiteral("^v?(\\d+)\\.(\\d+)\\.(\\d+)"));
    const QRegularExpressionMatch match =
        numbered.match(object->value(QLatin1String("version")).toString());
    if (!match.hasMatch())
        return false;
    const int version[3] = {match.captured(1).toInt(), match.captured(2).toInt(),
                            match.captured(3).toInt()};
    if (version[0] == 0 && version[1] == 0 && version[2] == 0)
        return false;
    return std::lexicographical_compare(std::begin(version), std::end(version),
                                        std::begin(schemaFormatVersion),
                                        std::end(schemaFormatVersion));
}

} // namespace quelmo::ollama_platform
