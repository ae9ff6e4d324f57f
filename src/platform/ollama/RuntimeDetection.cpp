#include "platform/ollama/RuntimeDetection.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace quelmo::ollama_platform {

bool localRuntimeInstalled() {
    if (!QStandardPaths::findExecutable(QStringLiteral("ollama")).isEmpty())
        return true;
    // The PATH of a desktop session often lacks the folders a manual or user install uses, and a
    // system service may run the runtime from a place no user PATH names.
    const QString home = QDir::homePath();
    const QStringList places = {
        QStringLiteral("/usr/local/bin/ollama"),
        QStringLiteral("/usr/bin/ollama"),
        QStringLiteral("/snap/bin/ollama"),
        home + QStringLiteral("/.local/bin/ollama"),
        QStringLiteral("/etc/systemd/system/ollama.service"),
        QStringLiteral("/usr/lib/systemd/system/ollama.service"),
        QStringLiteral("/lib/systemd/system/ollama.service"),
        home + QStringLiteral("/.config/systemd/user/ollama.service"),
    };
    for (const QString& place : places)
        if (QFileInfo::exists(place))
            return true;
    return false;
}

} // namespace quelmo::ollama_platform
