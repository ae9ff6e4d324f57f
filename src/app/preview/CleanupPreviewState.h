#pragma once

#include "app/popover/CleanupRules.h"

#include <QJsonObject>
#include <optional>

namespace quelmo {

// The cleanup card's part of a preview state file:
//
//     "candidates": [{"pid": 4121, "name": "firefox-esr", "displayName": "Firefox", "rss": 9e8,
//                     "cpu": 0.2, "reason": "idleApp", "idleMinutes": 95, "hasWindow": false}],
//     "verdicts": {"Firefox": {"explanation": "…", "risk": "안전", "recommendation": "cut"}},
//     "advisor": {"available": true, "capturedReason": "…"},
//     "sensitivity": 0.5, "hovered": 4121, "showCriteria": true
//
// Verdicts are keyed like the hub's: display name, else process name. Without "advisor" the
// advisor is unavailable with no captured reason.
struct CleanupPreviewState {
    QList<CleanupCandidate> candidates;
    cleanup_rules::Verdicts verdicts;
    AIAdvisor::Status live;
    AIAdvisor::Status captured;
    std::optional<double> sensitivity;
    qint64 hovered = -1;
    bool showCriteria = false;

    static CleanupPreviewState fromJson(const QJsonObject& state);
};

} // namespace quelmo
