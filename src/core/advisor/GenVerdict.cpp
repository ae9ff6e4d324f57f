#include "core/advisor/GenVerdict.h"

#include "core/advisor/JsonText.h"

#include <QJsonDocument>
#include <QJsonValue>

namespace quelmo {

namespace {

QByteArray renderSchema() {
    QByteArray text = "{\n  \"type\": \"object\",\n  \"properties\": {\n";
    QByteArray required;
    for (const GenVerdict::Property& p : GenVerdict::properties) {
        const QByteArray name = jsonStringLiteral(QString::fromLatin1(p.name));
        text +=
            "    " + name + ": {\n      \"type\": \"" + p.jsonType +
            "\",\n      \"description\": " + jsonStringLiteral(QString::fromUtf8(p.description)) +
            "\n    }";
        text += &p == &GenVerdict::properties[3] ? "\n" : ",\n";
        required += (required.isEmpty() ? "" : ", ") + name;
    }
    text += "  },\n  \"required\": [" + required + "]\n}";
    return text;
}

} // namespace

// clang-format off
const GenVerdict::Property GenVerdict::properties[4] = {
    {"explanation", "string",
     u8"A one-line description (max 40 chars) of what this app/process is, written in the SAME language as the instructions. If unknown, say so."},
    {"safeToQuit", "boolean",
     u8"true if it is safe to quit now; false if important to work/system."},
    {"risk", "string",
     u8"Risk if quit now — exactly one word: SAFE, CAUTION, or DANGER"},
    {"recommendation", "string",
     u8"'cut' if better to close, 'keep' if it should stay running (always-on / in use / used often)"},
};
// clang-format on

const QByteArray& GenVerdict::schemaText() {
    static const QByteArray text = renderSchema();
    return text;
}

QJsonObject GenVerdict::schema() {
    return QJsonDocument::fromJson(schemaText()).object();
}

QString GenVerdict::promptWithSchema(const QString& prompt) {
    return prompt +
           QStringLiteral("\n\nRespond with one JSON object that follows this JSON schema, giving "
                          "its properties in the order listed:\n") +
           QString::fromUtf8(schemaText());
}

std::optional<GenVerdict> GenVerdict::fromJson(const QByteArray& json) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();

    GenVerdict verdict;
    const QJsonValue explanation = object.value(QLatin1String("explanation"));
    if (!explanation.isString())
        return std::nullopt;
    verdict.explanation = explanation.toString();
    const QJsonValue safeToQuit = object.value(QLatin1String("safeToQuit"));
    if (!safeToQuit.isBool())
        return std::nullopt;
    verdict.safeToQuit = safeToQuit.toBool();
    const QJsonValue risk = object.value(QLatin1String("risk"));
    if (!risk.isString())
        return std::nullopt;
    verdict.risk = risk.toString();
    const QJsonValue recommendation = object.value(QLatin1String("recommendation"));
    if (!recommendation.isString())
        return std::nullopt;
    verdict.recommendation = recommendation.toString();
    return verdict;
}

} // namespace quelmo
