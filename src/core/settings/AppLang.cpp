#include "core/settings/AppLang.h"

#include "core/settings/Preferences.h"
#include "core/texts/Texts.h"

#include <QLocale>

namespace quelmo {

namespace {

AppLang::PreferredLanguagesSource& preferredLanguagesSource() {
    static AppLang::PreferredLanguagesSource source;
    return source;
}

} // namespace

std::optional<AppLang> AppLang::fromRaw(const QString& raw) {
    for (const AppLang lang : allCases())
        if (lang.rawValue() == raw)
            return lang;
    return std::nullopt;
}

QList<AppLang> AppLang::allCases() {
    return {automatic, ko, en};
}

QString AppLang::rawValue() const {
    switch (value_) {
    case automatic:
        return QStringLiteral("auto");
    case ko:
        return QStringLiteral("ko");
    case en:
        return QStringLiteral("en");
    }
    return {};
}

QString AppLang::pickerLabel(Language language) const {
    switch (value_) {
    case automatic:
        return text(TextKey::languageSystem, language);
    case ko:
        return text(TextKey::languageKorean, language);
    case en:
        return text(TextKey::languageEnglish, language);
    }
    return {};
}

AppLang AppLang::stored() {
    return fromRaw(Preferences::langRaw()).value_or(automatic);
}

void AppLang::store(AppLang lang) {
    Preferences::setLangRaw(lang.rawValue());
}

QString AppLang::effective() {
    return resolve(Preferences::langRaw(), preferredLanguages());
}

QString AppLang::resolve(const QString& storedRaw, const QStringList& preferredLanguages) {
    if (storedRaw == QLatin1String("ko"))
        return QStringLiteral("ko");
    if (storedRaw == QLatin1String("en"))
        return QStringLiteral("en");
    const QString first =
        preferredLanguages.isEmpty() ? QStringLiteral("en") : preferredLanguages.first();
    return first.toLower().startsWith(QLatin1String("ko")) ? QStringLiteral("ko")
                                                           : QStringLiteral("en");
}

QStringList AppLang::preferredLanguages() {
    if (const auto& source = preferredLanguagesSource())
        return source();
    return QLocale::system().uiLanguages();
}

void AppLang::setPreferredLanguagesSource(PreferredLanguagesSource source) {
    preferredLanguagesSource() = std::move(source);
}

} // namespace quelmo
