#pragma once

// A language model whose availability and answers the test decides, one request at a time.

#include "advisor/LanguageModel.h"

#include <QList>
#include <deque>

namespace quelmo::test {

struct ScriptedModel : LanguageModel {
    ModelAvailability availability = ModelAvailability::available;
    QList<ModelRequest> requests; // every request, in order
    std::deque<std::function<void(std::optional<QString>)>> waiting;

    ModelAvailability assumedAvailability() const override { return availability; }
    void probe(std::function<void(ModelAvailability)> done) override { done(availability); }
    void respond(const ModelRequest& request,
                 std::function<void(std::optional<QString>)> done) override {
        requests << request;
        waiting.push_back(std::move(done));
    }

    // Ends the oldest waiting request with `content` as the model's answer, or with a failure.
    void answer(const QByteArray& content) { finish(QString::fromUtf8(content)); }
    void fail() { finish(std::nullopt); }

private:
    void finish(std::optional<QString> content) {
        auto done = std::move(waiting.front());
        waiting.pop_front();
        done(std::move(content));
    }
};

} // namespace quelmo::test
