#include "core/settings/SettingsFile.h"

#include "core/settings/SettingsKeys.h"

#include <QFileInfo>
#include <QHash>
#include <QSettings>

namespace quelmo::SettingsFile {

namespace {

constexpr const char* fileKeys[] = {SettingsKeys::lang, SettingsKeys::catStyle,
                                    SettingsKeys::sensitivity, SettingsKeys::focusLastActive};

// The last value this run has seen or written under each key, as it was stored.
QHash<QString, QVariant>& known() {
    static QHash<QString, QVariant> values;
    return values;
}

bool isLost(const QSettings& settings) {
    return !QFileInfo::exists(settings.fileName());
}

// Takes what the file holds now, which may include another instance's writes.
void learnFrom(const QSettings& settings) {
    for (const char* key : fileKeys) {
        const QString name = QLatin1String(key);
        const QVariant stored = settings.value(name);
        if (stored.isValid())
            known().insert(name, stored);
        else
            known().remove(name);
    }
}

void writeKnown(QSettings& settings) {
    for (auto it = known().constBegin(); it != known().constEnd(); ++it)
        settings.setValue(it.key(), *it);
}

} // namespace

QVariant value(const char* key) {
    const QString name = QLatin1String(key);
    const QVariant stored = QSettings().value(name);
    if (stored.isValid())
        known().insert(name, stored);
    return stored;
}

void setValue(const char* key, const QVariant& value) {
    QSettings settings;
    if (isLost(settings))
        writeKnown(settings);
    else
        learnFrom(settings);
    const QString name = QLatin1String(key);
    settings.setValue(name, value);
    known().insert(name, value);
}

void restoreIfLost() {
    QSettings settings;
    if (isLost(settings))
        writeKnown(settings);
}

} // namespace quelmo::SettingsFile
