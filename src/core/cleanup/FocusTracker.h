#pragma once

#include <QHash>
#include <QString>
#include <QVariant>
#include <memory>
#include <optional>

namespace quelmo {

class DesktopSession;

// When each application was last brought to the front, by desktop-entry id, kept across runs
// under "quelmo.focus.lastActive.v1". Applications without an id are never recorded. The history
// keeps the `maxEntries` applications brought to the front most recently; older ones are dropped
// when it is loaded or saved. Each save merges what is stored by then (another instance of the
// same user may share the settings): the later time of each application wins. Without a desktop
// session there is no focus data beyond what was stored.
class FocusTracker {
public:
    static constexpr qsizetype maxEntries = 1000;

    // Loads the stored history, records the application in front now (without saving) and starts
    // listening for activations.
    explicit FocusTracker(DesktopSession* desktop);
    ~FocusTracker();
    FocusTracker(const FocusTracker&) = delete;
    FocusTracker& operator=(const FocusTracker&) = delete;

    // When `appId` was last brought to the front, as seconds since 1970-01-01 UTC (fraction
    // included); nothing when it never was since tracking began.
    std::optional<double> lastActiveSeconds(const QString& appId) const;

    // The history as stored: a map from desktop-entry id to seconds. Nothing when the value is of
    // another type or one of its entries is not a finite number.
    static std::optional<QHash<QString, double>> decodeHistory(const QVariant& stored);

    // The wall clock as seconds since 1970-01-01 UTC, fraction included.
    static double nowSeconds();

private:
    // Shared with the activation handler, which holds it weakly: an activation that arrives after
    // the tracker is gone finds nothing and does nothing.
    struct History {
        QHash<QString, double> lastActive; // seconds since 1970-01-01 UTC
        void trim();
        void merge(const QHash<QString, double>& other); // the later time of each id wins
        void load();
        void save();
    };
    std::shared_ptr<History> history_;
};

} // namespace quelmo
