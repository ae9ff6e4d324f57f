#pragma once

#include "core/settings/SettingsKeys.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

namespace quelmo::test {

// Points the user-scope settings at a fresh temporary folder for as long as it lives.
class TempSettings {
public:
    TempSettings() {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, dir_.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, dir_.path());
        qputenv("XDG_CONFIG_HOME", dir_.path().toUtf8());
    }
    QString path() const { return dir_.path(); }
    // Forgets every stored key, the baselines' file included.
    static void clear() {
        QSettings().clear();
        QSettings(QSettings::NativeFormat, QSettings::UserScope,
                  QCoreApplication::organizationName(), QLatin1String(SettingsKeys::baselinesFile))
            .clear();
    }

private:
    QTemporaryDir dir_;
};

} // namespace quelmo::test
