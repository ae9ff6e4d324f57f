#pragma once

#include <QJsonObject>

namespace quelmo {

class CleanupFeed;

// The cleanup card's part of a preview state file:
//
//     "candidates": [{"pid": 4121, "name": "firefox-esr", "displayName": "Firefox", "rss": 9e8,
//                     "cpu": 0.2, "reason": "idleApp", "idleMinutes": 95, "hasWindow": false}],
//     "verdicts": {"Firefox": {"explanation": "…", "risk": "안전", "recommendation": "cut"}},
//     "advisor": {"available": true, "capturedReason": "…"},
//     "sensitivity": 0.5
//
// Verdicts are keyed like the hub's: display name, else process name. Without "advisor" the
// advisor is unavailable with no captured reason.
void loadCleanupState(const QJsonObject& state, CleanupFeed& feed);

} // namespace quelmo
