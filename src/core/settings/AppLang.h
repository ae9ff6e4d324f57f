#pragma once

#include "core/texts/Language.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace quelmo {

// The interface-language setting: follow the system, or always Korean, or always English. The
// program speaks no third language. `effective()` is the one source of the current language and
// is decided afresh on every call; nothing caches it.
class AppLang {
public:
    // `auto` is reserved in C++, so that case is spelled `automatic`; its raw value is "auto".
    // The order is the order of the language picker.
    enum Value { automatic, ko, en };

    constexpr AppLang(Value value = automatic) : value_(value) {}

    // Exactly "auto", "ko" or "en" (case-sensitive); nothing for any other text.
    static std::optional<AppLang> fromRaw(const QString& raw);
    static QList<AppLang> allCases();

    constexpr Value value() const { return value_; }
    QString rawValue() const;
    // "System"/"시스템", "한국어", "English".
    QString pickerLabel(Language language) const;

    // The choice stored under "quelmo.lang"; `automatic` when absent or unknown.
    static AppLang stored();
    // Stores the choice under "quelmo.lang".
    static void store(AppLang lang);

    // "ko" or "en", from the stored choice and the user's preferred languages.
    static QString effective();
    // The rule behind `effective()`: a stored "ko" or "en" wins; anything else follows the first
    // preferred language ("en" when there is none): Korean when it begins with "ko".
    static QString resolve(const QString& storedRaw, const QStringList& preferredLanguages);

    // The user's ordered preferred languages, e.g. ["ko-KR", "en-US"]. From the system locale
    // unless a source was installed (tests install one; an empty function restores the system).
    using PreferredLanguagesSource = std::function<QStringList()>;
    static QStringList preferredLanguages();
    static void setPreferredLanguagesSource(PreferredLanguagesSource source);

    friend constexpr bool operator==(AppLang, AppLang) = default;

private:
    Value value_;
};

inline size_t qHash(AppLang lang, size_t seed = 0) {
    return ::qHash(static_cast<int>(lang.value()), seed);
}

} // namespace quelmo
