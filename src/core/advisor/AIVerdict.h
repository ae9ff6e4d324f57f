#pragma once

#include <QString>

#include <optional>

namespace quelmo {

struct AIVerdict {
    QString explanation;
    bool safeToQuit = false;
    QString risk;           // "위험", "주의" or "안전"
    QString recommendation; // "cut" or "keep"

    bool operator==(const AIVerdict&) const = default;
};

struct AIQueueEntry {
    QString name;
    double cpu = 0;
    double rssMB = 0;
    QString reason;
    std::optional<double> idle;
    bool hasWindow = false;
};

} // namespace quelmo
