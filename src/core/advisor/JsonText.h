#pragma once

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QString>

namespace quelmo {

// `text` as a JSON string literal, quotes included, for JSON that is assembled by hand to keep
// its keys in a chosen order.
inline QByteArray jsonStringLiteral(const QString& text) {
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2); // strip the surrounding [ ]
}

} // namespace quelmo
