#include "FakeOllamaServer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTcpSocket>
#include <QTimer>

namespace quelmo::test {

FakeOllamaServer::FakeOllamaServer() {
    server_.listen(QHostAddress::LocalHost, 0);
    QObject::connect(&server_, &QTcpServer::newConnection, &server_, [this] {
        QTcpSocket* socket = server_.nextPendingConnection();
        ++connections;
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        QObject::connect(
            socket, &QTcpSocket::readyRead, socket,
            [this, socket, buffer = QByteArray()]() mutable { serve(socket, buffer); });
    });
}

void FakeOllamaServer::serve(QTcpSocket* socket, QByteArray& buffer) {
    // The connection stays open for further requests, each answered in turn.
    static const QRegularExpression lengthHeader("\r\ncontent-length: *(\\d+)",
                                                 QRegularExpression::CaseInsensitiveOption);
    buffer += socket->readAll();
    for (;;) {
        const qsizetype end = buffer.indexOf("\r\n\r\n");
        if (end < 0)
            return; // more is on its way
        const qsizetype length =
            lengthHeader.match(QString::fromLatin1(buffer.left(end))).captured(1).toLongLong();
        if (buffer.size() < end + 4 + length)
            return;
        // The request line up to the path: "POST /api/chat".
        requests << buffer.left(buffer.indexOf(' ', buffer.indexOf(' ') + 1));
        lastBody = buffer.mid(end + 4, length);
        buffer.remove(0, end + 4 + length);
        const Answer answer = answerTo(requests.last(), QJsonDocument::fromJson(lastBody).object());
        // Timed on the socket, so that the write is dropped with a connection the client has
        // closed.
        QTimer::singleShot(answer.delayMs, socket,
                           [socket, bytes = response(answer)] { socket->write(bytes); });
    }
}

FakeOllamaServer::Answer FakeOllamaServer::answerTo(const QByteArray& request,
                                                    const QJsonObject& body) {
    if (answers_.contains(request) && request != "POST /api/chat")
        return answers_.value(request);
    if (request == "GET /api/version")
        return Answer{200, "{\"version\":\"" + version + "\"}"};
    if (request == "POST /api/show") {
        const QString model = body["model"].toString();
        if (!capabilities_.contains(model))
            return Answer{404, R"({"error":"model not found"})"};
        QJsonObject show = installed_.value(model);
        show.remove("name");
        show.remove("size");
        show["capabilities"] = QJsonDocument::fromJson(capabilities_.value(model)).array();
        return Answer{200, QJsonDocument(show).toJson(QJsonDocument::Compact)};
    }
    if (request == "POST /api/chat")
        return chat(body);
    return Answer{404, "{}"};
}

FakeOllamaServer::Answer FakeOllamaServer::chat(const QJsonObject& body) {
    const QString model = body["model"].toString();
    chatModels << model;
    if (body["format"].isObject() && older(0, 5))
        return Answer{400, R"({"error":"invalid format: expected \"json\""})"};
    const QJsonArray capabilities =
        QJsonDocument::fromJson(capabilities_.value(model, "[]")).array();
    const QJsonValue think = body["think"];
    const bool canThink = capabilities.contains(QJsonValue("thinking"));
    if (!canThink && (think == QJsonValue(true) || think.isString()))
        return Answer{400,
                      "{\"error\":\"\\\"" + model.toUtf8() + "\\\" does not support thinking\"}"};
    // gpt-oss takes only levels; a plain false is ignored and it thinks at its default.
    const bool levelsOnly =
        installed_.value(model).value("details").toObject().value("family") == QJsonValue("gptoss");
    Answer answer = answers_.value("POST /api/chat", Answer{404, "{}"});
    if (!canThink || (think == QJsonValue(false) && !levelsOnly) || answer.status != 200)
        return answer;
    ++thoughts;
    answer.delayMs += thinkingDelayMs;
    QJsonObject reply = QJsonDocument::fromJson(answer.body).object();
    QJsonObject message = reply["message"].toObject();
    // What a model thinks on the way may look like an answer; it is not one.
    message["thinking"] = R"({"explanation":"Thought","safeToQuit":false,"risk":"DANGER",)"
                          R"("recommendation":"keep"})";
    reply["message"] = message;
    answer.body = QJsonDocument(reply).toJson(QJsonDocument::Compact);
    return answer;
}

bool FakeOllamaServer::older(int major, int minor) const {
    const QList<QByteArray> parts = version.split('.');
    const int have[2] = {parts.value(0).toInt(), parts.value(1).toInt()};
    return have[0] < major || (have[0] == major && have[1] < minor);
}

QByteArray FakeOllamaServer::response(const Answer& answer) const {
    QByteArray head = "HTTP/1.1 " + QByteArray::number(answer.status) + " Scripted\r\n" +
                      "Content-Type: application/json; charset=utf-8\r\n" + answer.headers;
    QByteArray out = head + "Transfer-Encoding: chunked\r\n\r\n";
    constexpr qsizetype piece = 64 * 1024;
    for (qsizetype at = 0; at < answer.body.size(); at += piece) {
        const QByteArray part = answer.body.mid(at, piece);
        out += QByteArray::number(part.size(), 16) + "\r\n" + part + "\r\n";
    }
    return out + "0\r\n\r\n";
}

void FakeOllamaServer::serveModels(const QByteArray& loaded, const QByteArray& installed,
                                   QHash<QString, QByteArray> capabilities) {
    on("GET", "/api/ps", Answer{200, "{\"models\":" + loaded + "}"});
    on("GET", "/api/tags", Answer{200, "{\"models\":" + installed + "}"});
    capabilities_ = std::move(capabilities);
    installed_.clear();
    for (const QJsonValue& entry : QJsonDocument::fromJson(installed).array())
        installed_.insert(entry["name"].toString(), entry.toObject());
}

FakeOllamaServer::Answer FakeOllamaServer::chatAnswer(const QByteArray& content) {
    const QJsonObject message{{"role", "assistant"}, {"content", QString::fromUtf8(content)}};
    return Answer{200, QJsonDocument(QJsonObject{{"message", message}, {"done", true}})
                           .toJson(QJsonDocument::Compact)};
}

bool waitUntil(const std::function<bool()>& done, int timeoutMs) {
    const QDeadlineTimer deadline(timeoutMs);
    while (!done() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    return done();
}

} // namespace quelmo::test
