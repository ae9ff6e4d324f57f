#pragma once

namespace quelmo {

// The two languages the program speaks. Every text is picked in one of them when it is made.
enum class Language { english, korean };

// The interface language in force now, decided afresh from the stored choice and the user's
// preferred languages on every call.
Language currentLanguage();

} // namespace quelmo
