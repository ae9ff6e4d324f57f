#pragma once

#include <QMetaType>
#include <QString>
#include <cstdint>
#include <optional>

namespace quelmo {

// One row of the process table. Plain value, copied freely.
struct ProcInfo {
    Q_GADGET
    Q_PROPERTY(qint64 id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(double cpu MEMBER cpu)
    Q_PROPERTY(double rss MEMBER rss)
    Q_PROPERTY(QString user MEMBER user)

public:
    qint64 id = 0;  // process id, also the row's identity
    QString name;   // executable name only; may contain spaces
    double cpu = 0; // percent of one logical CPU; may exceed 100
    double rss = 0; // resident memory in bytes
    QString user;   // owner's user name
    // The user of the process's real uid; a cut needs it to be the user's as well as `user`.
    // Empty where the process table does not tell (the process-listing tool). Initialised so
    // that rows written field by field may leave it out.
    QString realUser = {};
    // When the process started, in kernel clock ticks after boot; with `id`, what tells this
    // process from a later one given the same pid. Nothing when the table does not tell it.
    std::optional<std::uint64_t> startTime{};

    double rssMB() const { return rss * (1.0 / 1048576.0); }
};

} // namespace quelmo

Q_DECLARE_METATYPE(quelmo::ProcInfo)
