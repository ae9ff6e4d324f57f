#include "platform/linux/common/UserNames.h"

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

namespace quelmo::linux_platform {

std::optional<QString> systemUserName(std::uint32_t uid) {
    const long suggested = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(suggested > 0 ? static_cast<std::size_t>(suggested) : 16384);
    passwd entry{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = ::getpwuid_r(uid, &entry, buffer.data(), buffer.size(), &found)) == ERANGE &&
           buffer.size() < (1u << 20))
        buffer.resize(buffer.size() * 2);
    if (error != 0 || !found || !found->pw_name)
        return std::nullopt;
    // The user database holds bytes in the system's encoding.
    return QString::fromLocal8Bit(found->pw_name);
}

UserNames::UserNames(UserLookup lookup) : lookup_(std::move(lookup)) {}

const QString& UserNames::nameOf(std::uint32_t uid) {
    auto found = names_.find(uid);
    if (found == names_.end()) {
        std::optional<QString> name = lookup_ ? lookup_(uid) : std::nullopt;
        found = names_.insert(uid, name.value_or(QString::number(uid)));
    }
    return *found;
}

} // namespace quelmo::linux_platform
