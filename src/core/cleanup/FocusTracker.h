#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>

#include <optional>

namespace quelmo {

class DesktopSession;

// When each application was last brought to the front, kept across runs.
class FocusTracker {
public:
    explicit FocusTracker(DesktopSession* desktop);
    std::optional<QDateTime> lastActive(const QString& appId) const;

private:
    QHash<QString, QDateTime> lastActive_;
};

} // namespace quelmo
