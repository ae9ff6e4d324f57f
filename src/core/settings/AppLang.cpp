#include "settings/AppLang.h"

namespace quelmo::AppLang {

QString effective() { return QStringLiteral("en"); }

} // namespace quelmo::AppLang
