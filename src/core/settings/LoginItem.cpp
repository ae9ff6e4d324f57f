#include "core/settings/LoginItem.h"

#include <QtGlobal>

namespace quelmo::LoginItem {

bool set(LoginItemService& service, bool enabled) {
    std::optional<QString> error = service.apply(enabled);
    if (!error && service.isEnabled() != enabled)
        error = enabled ? QStringLiteral("the login item does not read back as enabled")
                        : QStringLiteral("the login item does not read back as disabled");
    if (!error)
        return true;
    qWarning("LoginItem error: %s", qUtf8Printable(*error));
    return false;
}

} // namespace quelmo::LoginItem
