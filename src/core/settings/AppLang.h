#pragma once

#include <QString>

namespace quelmo::AppLang {

// "ko" or "en": the language every text is produced in, decided afresh on every call.
QString effective();

} // namespace quelmo::AppLang
