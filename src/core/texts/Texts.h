#pragma once

#include "core/texts/Language.h"
#include "core/texts/TextKey.h"

#include <QString>
#include <span>

namespace quelmo {

// One text of the table in both languages, as UTF-8.
struct TextEntry {
    TextKey key;
    const char8_t* english;
    const char8_t* korean;
};

// The whole table, in the order of `TextKey`.
std::span<const TextEntry> textTable();

QString text(TextKey key, Language language);
// In the language in force now.
QString text(TextKey key);

// A template with its %1, %2, ... filled in one pass, so a value that itself holds "%1" stays
// as it is.
template <typename... Args> QString textWith(TextKey key, Language language, const Args&... args) {
    return text(key, language).arg(args...);
}

} // namespace quelmo
