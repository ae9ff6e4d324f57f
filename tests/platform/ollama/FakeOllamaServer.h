#pragma once

// A stand-in for a local model runtime: an HTTP/1.1 server on 127.0.0.1 at a random port that
// answers the few Ollama API calls the advisor makes, as scripted by the test.

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QTcpServer>
#include <QUrl>
#include <functional>

class QTcpSocket;

namespace quelmo::test {

class FakeOllamaServer {
public:
    struct Answer {
        int status = 200;
        QByteArray body;
        int delayMs = 0;         // answer only after this long
        QByteArray headers = {}; // further header lines, each ending in CRLF
    };
    FakeOllamaServer();

    QUrl url() const { return QUrl("http://127.0.0.1:" + QString::number(server_.serverPort())); }
    // Answers requests for `method path`; anything unscripted gets a 404.
    void on(const QByteArray& method, const QByteArray& path, Answer answer) {
        answers_.insert(method + ' ' + path, answer);
    }
    // A runtime with these models: `loaded` for /api/ps, `installed` for /api/tags (each a JSON
    // array text), and /api/show reporting `capabilities` by model name (models not in the map
    // get a 404, as a runtime too old to know capabilities would).
    void serveModels(const QByteArray& loaded, const QByteArray& installed,
                     QHash<QString, QByteArray> capabilities);
    // /api/chat answering with `content` as the assistant's message.
    static Answer chatAnswer(const QByteArray& content);

    int connections = 0;        // every connection accepted, whatever it then sends
    QList<QByteArray> requests; // "METHOD /path" of every request received, in order
    QByteArray lastBody;        // the body of the last one

private:
    void serve(QTcpSocket* socket, QByteArray& buffer);

    QHash<QByteArray, Answer> answers_;
    QHash<QString, QByteArray> capabilities_;
    // Declared last so that its connections close while the answers still exist.
    QTcpServer server_;
};

// Runs the event loop until `done` holds or `timeoutMs` has passed; returns whether it holds.
bool waitUntil(const std::function<bool()>& done, int timeoutMs = 10000);

} // namespace quelmo::test
