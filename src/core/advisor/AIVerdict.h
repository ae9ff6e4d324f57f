#pragma once

#include <QString>
#include <optional>

namespace quelmo {

// The model's judgement of one candidate, normalised so that the rest of the program can compare
// against fixed words.
struct AIVerdict {
    QString explanation; // the model's one line, exactly as returned, in the request's language
    bool safeToQuit = false;
    QString risk;           // "위험", "주의" or "안전"
    QString recommendation; // "cut" or "keep"

    bool operator==(const AIVerdict&) const = default;
};

// One evaluation waiting for its turn, taken from a candidate when it was queued.
struct AIQueueEntry {
    QString name;               // the candidate key: display name, else process name
    double cpu = 0;             // percent of one logical CPU
    double rssMB = 0;           // resident memory in mebibytes
    QString reason;             // reason label in the language of the moment it was queued
    std::optional<double> idle; // minutes since last in front; only for unused apps
    bool hasWindow = false;

    bool operator==(const AIQueueEntry&) const = default;
};

} // namespace quelmo
