#pragma once

// Launch at login: the switch the popover shows, over whatever record the platform keeps of it.
// That record is the only one; nothing is kept in the settings file.

#include <QString>
#include <optional>

namespace quelmo {

// The platform's record of whether the program starts at login.
class LoginItemService {
public:
    virtual ~LoginItemService() = default;
    // Registers (enabled) or unregisters the program; the reason when that failed.
    virtual std::optional<QString> apply(bool enabled) = 0;
    // Whether the program is registered now, as the record says.
    virtual bool isEnabled() = 0;
};

namespace LoginItem {

// Registers or unregisters the program through `service`, then reads the state back. True when
// it now says what was asked; otherwise logs "LoginItem error: " and the reason, and returns
// false.
bool set(LoginItemService& service, bool enabled);

} // namespace LoginItem

} // namespace quelmo
