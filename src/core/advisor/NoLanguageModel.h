#pragma once

#include "core/advisor/LanguageModel.h"

namespace quelmo {

// The model of a machine that has none: never available, so the advisor never asks it.
class NoLanguageModel final : public LanguageModel {
public:
    ModelAvailability assumedAvailability() const override {
        return ModelAvailability::deviceNotEligible;
    }
    void probe(std::function<void(ModelAvailability)> done) override {
        done(ModelAvailability::deviceNotEligible);
    }
    void respond(const ModelRequest&, std::function<void(std::optional<QString>)>) override {}
};

} // namespace quelmo
