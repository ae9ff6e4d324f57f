#pragma once

#include "advisor/AIVerdict.h"

#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace quelmo {

// The local model: its availability and one judgement per candidate.
class AIAdvisor : public QObject {
    Q_OBJECT

public:
    struct Status {
        bool available = false;
        QString reason; // in the user's language; empty when available
    };

    explicit AIAdvisor(QObject* parent = nullptr);
    Status status() const;

private:
};

} // namespace quelmo
