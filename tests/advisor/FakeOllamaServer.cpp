#include "FakeOllamaServer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

namespace quelmo::test {

FakeOllamaServer::FakeOllamaServer() {
    server_.listen(QHostAddress::LocalHost, 0);
    connect(&server_, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = server_.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { serve(socket); });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                buffers_.remove(socket);
                socket->deleteLater();
            });
        }
    });
}

FakeOllamaServer::~FakeOllamaServer() {
    // The connections go first, while the bookkeeping their handlers touch still exists.
    server_.close();
    for (QTcpSocket* socket : server_.findChildren<QTcpSocket*>()) {
        socket->disconnect(this);
        delete socket;
    }
}

QUrl FakeOllamaServer::url() const {
    return QUrl(QStringLiteral("http://127.0.0.1:%1").arg(server_.serverPort()));
}

void FakeOllamaServer::on(const QByteArray& method, const QByteArray& path, Handler handler) {
    handlers_.insert(method + ' ' + path, std::move(handler));
}

void FakeOllamaServer::on(const QByteArray& method, const QByteArray& path, Answer answer) {
    on(method, path, [answer](const Request&) { return answer; });
}

void FakeOllamaServer::serveModels(const QByteArray& loaded, const QByteArray& installed,
                                   QHash<QString, QByteArray> capabilities) {
    on("GET", "/api/ps", reply(200, "{\"models\":" + loaded + "}"));
    on("GET", "/api/tags", reply(200, "{\"models\":" + installed + "}"));
    on("POST", "/api/show", [capabilities](const Request& request) {
        const QString model =
            QJsonDocument::fromJson(request.body).object().value("model").toString();
        if (!capabilities.contains(model))
            return reply(404, "{\"error\":\"not found\"}");
        return reply(200, "{\"capabilities\":" + capabilities.value(model) + "}");
    });
}

FakeOllamaServer::Answer FakeOllamaServer::reply(int status, const QByteArray& body) {
    Answer answer;
    answer.status = status;
    answer.body = body;
    return answer;
}

FakeOllamaServer::Answer FakeOllamaServer::chatAnswer(const QByteArray& content) {
    QJsonObject message{{"role", "assistant"}, {"content", QString::fromUtf8(content)}};
    QJsonObject body{{"model", "m"}, {"message", message}, {"done", true}};
    return reply(200, QJsonDocument(body).toJson(QJsonDocument::Compact));
}

QList<FakeOllamaServer::Request> FakeOllamaServer::requestsTo(const QByteArray& path) const {
    QList<Request> found;
    for (const Request& r : requests)
        if (r.path == path)
            found << r;
    return found;
}

void FakeOllamaServer::serve(QTcpSocket* socket) {
    QByteArray& buffer = buffers_[socket];
    buffer += socket->readAll();
    for (;;) {
        const qsizetype headerEnd = buffer.indexOf("\r\n\r\n");
        if (headerEnd < 0)
            return;
        const QList<QByteArray> lines = buffer.left(headerEnd).split('\n');
        const QList<QByteArray> requestLine = lines.value(0).trimmed().split(' ');
        qsizetype length = 0;
        for (const QByteArray& line : lines)
            if (line.toLower().startsWith("content-length:"))
                length = line.mid(15).trimmed().toLongLong();
        if (buffer.size() < headerEnd + 4 + length)
            return;
        Request request{requestLine.value(0), requestLine.value(1),
                        buffer.mid(headerEnd + 4, length)};
        buffer.remove(0, headerEnd + 4 + length);
        requests << request;

        const auto handler = handlers_.constFind(request.method + ' ' + request.path);
        const Answer answer = handler != handlers_.constEnd()
                                  ? (*handler)(request)
                                  : reply(404, "{\"error\":\"not found\"}");
        if (answer.never)
            continue;
        const QByteArray response =
            "HTTP/1.1 " + QByteArray::number(answer.status) +
            " Scripted\r\nContent-Type: application/json\r\n" + answer.extraHeaders +
            "Content-Length: " + QByteArray::number(answer.body.size()) + "\r\n\r\n" + answer.body;
        QPointer<QTcpSocket> target(socket);
        QTimer::singleShot(answer.delayMs, this, [target, response] {
            if (target && target->state() == QAbstractSocket::ConnectedState)
                target->write(response);
        });
    }
}

bool waitUntil(const std::function<bool()>& done, int timeoutMs) {
    const QDeadlineTimer deadline(timeoutMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    }
    return true;
}

void settle(int ms) {
    const QDeadlineTimer deadline(ms);
    do
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 10);
    while (!deadline.hasExpired());
}

} // namespace quelmo::test
