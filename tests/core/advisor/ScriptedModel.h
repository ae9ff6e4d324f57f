#pragma once

// A language model whose availability and answers the test decides, one request at a time.

#include "core/advisor/LanguageModel.h"

#include <QList>

namespace quelmo::test {

struct ScriptedModel : LanguageModel {
    ModelAvailability availability = ModelAvailability::available;
    int probes = 0;               // looks at the availability
    QList<ModelRequest> requests; // every request, in order
    QList<std::function<void(std::optional<QString>)>> waiting;

    ModelAvailability assumedAvailability() const override { return availability; }
    void probe(std::function<void(ModelAvailability)> done) override {
        ++probes;
        done(availability);
    }
    void respond(const ModelRequest& request,
                 std::function<void(std::optional<QString>)> done) override {
        requests << request;
        waiting << std::move(done);
    }

    // Ends the oldest waiting request with `content` as the model's answer; nothing is a failure.
    void answer(std::optional<QString> content) { waiting.takeFirst()(std::move(content)); }
};

} // namespace quelmo::test
