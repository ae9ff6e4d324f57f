#include "core/texts/Language.h"

#include "core/settings/AppLang.h"

namespace quelmo {

Language currentLanguage() {
    return AppLang::effective() == QLatin1String("ko") ? Language::korean : Language::english;
}

} // namespace quelmo
