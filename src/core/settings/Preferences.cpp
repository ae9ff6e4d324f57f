#include "core/settings/Preferences.h"

#include "core/settings/SettingsFile.h"
#include "core/settings/SettingsKeys.h"

namespace quelmo::Preferences {

namespace {

QString storedText(const char* key, const char* fallback) {
    const QVariant value = SettingsFile::value(key);
    if (value.metaType().id() != QMetaType::QString)
        return QString::fromLatin1(fallback);
    return value.toString();
}

} // namespace

QString langRaw() {
    return storedText(SettingsKeys::lang, SettingsDefaults::lang);
}

void setLangRaw(const QString& raw) {
    SettingsFile::setValue(SettingsKeys::lang, raw);
}

QString catStyleRaw() {
    return storedText(SettingsKeys::catStyle, SettingsDefaults::catStyle);
}

void setCatStyleRaw(const QString& raw) {
    SettingsFile::setValue(SettingsKeys::catStyle, raw);
}

QString advisorModel() {
    return storedText(SettingsKeys::advisorModel, "").trimmed();
}

} // namespace quelmo::Preferences
