#include "core/settings/Preferences.h"

#include "core/settings/SettingsKeys.h"

#include <QSettings>

namespace quelmo::Preferences {

namespace {

QString storedText(const char* key, const char* fallback) {
    const QVariant value = QSettings().value(QLatin1String(key));
    if (value.metaType().id() != QMetaType::QString)
        return QString::fromLatin1(fallback);
    return value.toString();
}

} // namespace

QString langRaw() {
    return storedText(SettingsKeys::lang, SettingsDefaults::lang);
}

void setLangRaw(const QString& raw) {
    QSettings().setValue(QLatin1String(SettingsKeys::lang), raw);
}

QString catStyleRaw() {
    return storedText(SettingsKeys::catStyle, SettingsDefaults::catStyle);
}

void setCatStyleRaw(const QString& raw) {
    QSettings().setValue(QLatin1String(SettingsKeys::catStyle), raw);
}

QString advisorModel() {
    return storedText(SettingsKeys::advisorModel, "").trimmed();
}

} // namespace quelmo::Preferences
