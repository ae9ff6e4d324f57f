#pragma once

// A reader for freedesktop desktop-entry files (*.desktop): only the [Desktop Entry] group is
// kept, values are unescaped, and localised keys are chosen the way desktop environments do.

#include <QByteArrayView>
#include <QMap>
#include <QString>
#include <optional>

namespace quelmo::linux_platform {

struct DesktopEntry {
    // Every key of the [Desktop Entry] group, localised ones with their "[locale]" suffix.
    QMap<QString, QString> values;

    QString value(const QString& key) const { return values.value(key); }
    bool isTrue(const QString& key) const { return values.value(key) == QLatin1String("true"); }
};

// Nothing when the text has no [Desktop Entry] group.
std::optional<DesktopEntry> parseDesktopEntry(QByteArrayView text);

// Undoes the value escapes \s \n \t \r and \\ (others are left as written).
QString unescapeDesktopValue(QStringView raw);

// The parts of a POSIX locale name lang_COUNTRY.ENCODING@MODIFIER that take part in matching.
struct LocaleName {
    QString lang;
    QString country;
    QString modifier;
    static LocaleName fromPosix(QStringView name);
};

// The value of `key` for the interface language `lang` ("ko", "en", ...):
// - when the user's message locale (`messages`, e.g. "ko_KR.UTF-8") is in that language, its
//   variants are tried in the usual order: lang_COUNTRY@MODIFIER, lang_COUNTRY, lang@MODIFIER;
// - then key[lang];
// - then any key[lang_COUNTRY] (a Korean name written for ko_KR is still Korean);
// - then the unlocalised key.
// Nothing when even the unlocalised key is absent.
std::optional<QString> localizedValue(const DesktopEntry& entry, const QString& key,
                                      const QString& lang, const LocaleName& messages);

} // namespace quelmo::linux_platform
