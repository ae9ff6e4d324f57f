#pragma once

// A stand-in for a local model runtime: an HTTP/1.1 server on 127.0.0.1 at a random port that
// answers the few Ollama API calls the advisor makes, as scripted by the test, and behaves as
// current runtime releases do: it keeps connections open, sends its answers in chunks, lists
// cloud models beside local ones, lets models with the "thinking" capability think unless told
// not to, reports its version, and below 0.5.0 refuses a JSON schema as format.

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
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
    quint16 port() const { return server_.serverPort(); }
    // Answers requests for `method path`; anything unscripted gets a 404.
    void on(const QByteArray& method, const QByteArray& path, Answer answer) {
        answers_.insert(method + ' ' + path, answer);
    }
    // A runtime with these models: `loaded` for /api/ps, `installed` for /api/tags (each a JSON
    // array text), and /api/show reporting `capabilities` by model name, with the details and
    // remote fields of the model's /api/tags entry (models not in the map get a 404, as a
    // runtime too old to know capabilities would).
    void serveModels(const QByteArray& loaded, const QByteArray& installed,
                     QHash<QString, QByteArray> capabilities);
    // /api/chat answering with `content` as the assistant's message.
    static Answer chatAnswer(const QByteArray& content);

    QByteArray version = "0.13.0"; // what /api/version says, unless scripted otherwise
    int thinkingDelayMs = 0;       // how long a model thinks before it answers

    int connections = 0;        // every connection accepted, whatever it then sends
    QList<QByteArray> requests; // "METHOD /path" of every request received, in order
    QList<QString> chatModels;  // the model of every chat request, in order
    int thoughts = 0;           // chat answers the model thought about first
    QByteArray lastBody;        // the body of the last request

private:
    void serve(QTcpSocket* socket, QByteArray& buffer);
    Answer answerTo(const QByteArray& request, const QJsonObject& body);
    Answer chat(const QJsonObject& body);
    QByteArray response(const Answer& answer) const;
    bool older(int major, int minor) const;

    QHash<QByteArray, Answer> answers_;
    QHash<QString, QByteArray> capabilities_;
    QHash<QString, QJsonObject> installed_; // /api/tags entries by name
    // Declared last so that its connections close while the answers still exist.
    QTcpServer server_;
};

// Runs the event loop until `done` holds or `timeoutMs` has passed; returns whether it holds.
bool waitUntil(const std::function<bool()>& done, int timeoutMs = 10000);

} // namespace quelmo::test
