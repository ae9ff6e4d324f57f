#pragma once

// What the local model is asked to fill in for one candidate, and the strict reading of its answer.

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <optional>

namespace quelmo {

struct GenVerdict {
    QString explanation;
    bool safeToQuit = false;
    QString risk;
    QString recommendation;

    // The four properties in their fixed order, with the guide the model gets for each. No
    // property carries any further constraint (no allowed values, no length, no pattern).
    struct Property {
        const char* name;
        const char* jsonType; // "string" or "boolean"
        const char8_t* description;
    };
    static const Property properties[4];

    // The JSON schema of the type as text, properties in the order above. Rendered by hand
    // because QJsonObject sorts its keys, and the model follows the order it is shown.
    static const QByteArray& schemaText();
    // The same schema as an object (for readers that do not care about key order).
    static QJsonObject schema();

    // The user message: the candidate prompt, one blank line, a fixed line saying what to answer
    // with, then the schema text. That is how the schema is shown to the model; the same text
    // also goes into the request's structured-output format, which constrains the answer.
    static QString promptWithSchema(const QString& prompt);

    // Strict reading of the model's answer: a JSON object whose `explanation`, `safeToQuit`,
    // `risk` and `recommendation` are read in that order. The first one that is missing or of
    // the wrong type fails the whole answer; there is never a partial value. Other keys are
    // ignored.
    static std::optional<GenVerdict> fromJson(const QByteArray& json);

    bool operator==(const GenVerdict&) const = default;
};

} // namespace quelmo
