#pragma once

// User names from the system's user database, decoded one way for every reader, so that the
// owner of a process and the session's user compare equal whatever the locale.

#include <QHash>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>

namespace quelmo::linux_platform {

// A user's name from the system's user database (getpwuid_r); nothing when the uid has none.
using UserLookup = std::function<std::optional<QString>(std::uint32_t uid)>;
std::optional<QString> systemUserName(std::uint32_t uid);

// Names looked up once per uid; a uid without a name reads as its number, as `ps` prints it.
class UserNames {
public:
    explicit UserNames(UserLookup lookup = systemUserName);
    const QString& nameOf(std::uint32_t uid);

private:
    UserLookup lookup_;
    QHash<std::uint32_t, QString> names_;
};

} // namespace quelmo::linux_platform
