#include "FakeOllamaServer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
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
    // One request at a time: the client sends the next only after this one's answer.
    static const QRegularExpression lengthHeader("\r\ncontent-length: *(\\d+)",
                                                 QRegularExpression::CaseInsensitiveOption);
    buffer += socket->readAll();
    const qsizetype end = buffer.indexOf("\r\n\r\n");
    const qsizetype length =
        lengthHeader.match(QString::fromLatin1(buffer.left(end))).captured(1).toLongLong();
    if (end < 0 || buffer.size() < end + 4 + length)
        return; // more is on its way
    // The request line up to the path: "POST /api/chat".
    requests << buffer.left(buffer.indexOf(' ', buffer.indexOf(' ') + 1));
    lastBody = buffer.mid(end + 4, length);
    buffer.clear();
    Answer answer = answers_.value(requests.last(), Answer{404, "{}"});
    const QString model = QJsonDocument::fromJson(lastBody)["model"].toString();
    if (requests.last() == "POST /api/show" && capabilities_.contains(model))
        answer = Answer{200, "{\"capabilities\":" + capabilities_.value(model) + "}"};
    const QByteArray response =
        "HTTP/1.1 " + QByteArray::number(answer.status) +
        " Scripted\r\nContent-Length: " + QByteArray::number(answer.body.size()) + "\r\n" +
        answer.headers + "\r\n" + answer.body;
    // Timed on the socket, so that the write is dropped with a connection the client has closed.
    QTimer::singleShot(answer.delayMs, socket, [socket, response] { socket->write(response); });
}

void FakeOllamaServer::serveModels(const QByteArray& loaded, const QByteArray& installed,
                                   QHash<QString, QByteArray> capabilities) {
    on("GET", "/api/ps", Answer{200, "{\"models\":" + loaded + "}"});
    on("GET", "/api/tags", Answer{200, "{\"models\":" + installed + "}"});
    capabilities_ = std::move(capabilities);
}

FakeOllamaServer::Answer FakeOllamaServer::chatAnswer(const QByteArray& content) {
    const QJsonObject message{{"role", "assistant"}, {"content", QString::fromUtf8(content)}};
    return Answer{200, QJsonDocument(QJsonObject{{"message", message}}).toJson()};
}

bool waitUntil(const std::function<bool()>& done, int timeoutMs) {
    const QDeadlineTimer deadline(timeoutMs);
    while (!done() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    return done();
}

} // namespace quelmo::test
