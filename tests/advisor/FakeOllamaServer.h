#pragma once

// A stand-in for a local model runtime: an HTTP/1.1 server on 127.0.0.1 at a random port that
// answers the few Ollama API calls the advisor makes, as scripted by the test.

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QTcpServer>
#include <QUrl>
#include <functional>

class QTcpSocket;

namespace quelmo::test {

class FakeOllamaServer : public QObject {
public:
    struct Request {
        QByteArray method;
        QByteArray path;
        QByteArray body;
    };
    struct Answer {
        int status = 200;
        QByteArray body;
        QByteArray extraHeaders; // each line ending in \r\n
        int delayMs = 0;         // answer only after this long
        bool never = false;      // keep the connection open and never answer
    };
    using Handler = std::function<Answer(const Request&)>;

    FakeOllamaServer();
    ~FakeOllamaServer() override;

    QUrl url() const;
    // Answers requests for `method path`; anything unscripted gets a 404.
    void on(const QByteArray& method, const QByteArray& path, Handler handler);
    void on(const QByteArray& method, const QByteArray& path, Answer answer);

    // A runtime with these models: `loaded` for /api/ps, `installed` for /api/tags (each a JSON
    // array text), and /api/show reporting `capabilities` by model name (models not in the map
    // get a 404, as a runtime too old to know capabilities would).
    void serveModels(const QByteArray& loaded, const QByteArray& installed,
                     QHash<QString, QByteArray> capabilities);
    // A plain answer with this status and JSON body.
    static Answer reply(int status, const QByteArray& body);
    // /api/chat answering with `content` as the assistant's message.
    static Answer chatAnswer(const QByteArray& content);

    QList<Request> requests; // every request received, in order
    QList<Request> requestsTo(const QByteArray& path) const;

private:
    void serve(QTcpSocket* socket);
    QTcpServer server_;
    QHash<QByteArray, Handler> handlers_;
    QHash<QTcpSocket*, QByteArray> buffers_;
};

// Runs the event loop until `done` holds or `timeoutMs` has passed; returns whether it holds.
bool waitUntil(const std::function<bool()>& done, int timeoutMs = 10000);
// Runs the event loop for `ms` milliseconds.
void settle(int ms = 0);

} // namespace quelmo::test
