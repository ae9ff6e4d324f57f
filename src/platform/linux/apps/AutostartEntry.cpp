#include "platform/linux/apps/AutostartEntry.h"

#include "platform/linux/apps/DesktopEntry.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace quelmo::linux_platform {

namespace {

QString configHome() {
    // The base-directory rules ignore a relative XDG_CONFIG_HOME.
    const QString fromEnvironment = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (!fromEnvironment.isEmpty() && QDir::isAbsolutePath(fromEnvironment))
        return fromEnvironment;
    return QDir::homePath() + QStringLiteral("/.config");
}

// One Exec argument: quoted when it holds a reserved character, with `"`, `` ` ``, `$` and `\`
// escaped inside the quotes; `%` doubled so it is not taken for a field code.
QString execArgument(const QString& argument) {
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    bool needsQuotes = argument.isEmpty();
    for (const QChar c : argument)
        needsQuotes = needsQuotes || reserved.contains(c);
    QString out;
    if (needsQuotes) {
        out += QLatin1Char('"');
        for (const QChar c : argument) {
            if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') ||
                c == QLatin1Char('\\'))
                out += QLatin1Char('\\');
            out += c;
        }
        out += QLatin1Char('"');
    } else {
        out = argument;
    }
    return out.replace(QLatin1Char('%'), QStringLiteral("%%"));
}

// The escapes every string value of a desktop entry goes through, applied after the quoting.
QString escapeValue(const QString& value) {
    QString out;
    for (const QChar c : value) {
        if (c == QLatin1Char('\\'))
            out += QStringLiteral("\\\\");
        else if (c == QLatin1Char('\n'))
            out += QStringLiteral("\\n");
        else if (c == QLatin1Char('\t'))
            out += QStringLiteral("\\t");
        else if (c == QLatin1Char('\r'))
            out += QStringLiteral("\\r");
        else
            out += c;
    }
    return out;
}

} // namespace

AutostartEntry::AutostartEntry(QString program, QString path)
    : program_(program.isEmpty() ? autostartProgram(QCoreApplication::applicationFilePath(),
                                                    QStringLiteral(QUELMO_INSTALLED_PROGRAM))
                                 : std::move(program)),
      path_(std::move(path)) {}

QString AutostartEntry::autostartProgram(const QString& running, const QString& installed) {
    if (running.isEmpty())
        return QFileInfo(installed).isExecutable() ? installed : QString();
    // The same file under another name (/bin is a link to /usr/bin) is still the installed one.
    const QString runningFile = QFileInfo(running).canonicalFilePath();
    if (!runningFile.isEmpty() && runningFile == QFileInfo(installed).canonicalFilePath())
        return installed;
    return running;
}

QString AutostartEntry::defaultPath() {
    return configHome() + QStringLiteral("/autostart/quelmo.desktop");
}

QByteArray AutostartEntry::entryText(const QString& program) {
    QString text =
        QStringLiteral("[Desktop Entry]\n"
                       "Type=Application\n"
                       "Version=1.0\n"
                       "Name=Quelmo\n"
                       "Comment=Shows how busy the computer is and tidies up unused apps\n"
                       "Comment[ko]=컴퓨터가 얼마나 바쁜지 보여 주고 안 쓰는 앱을 정리합니다\n"
                       "Exec=");
    text += escapeValue(execArgument(program));
    text += QStringLiteral("\n"
                           "Terminal=false\n"
                           "X-GNOME-Autostart-enabled=true\n");
    return text.toUtf8();
}

std::optional<QString> AutostartEntry::apply(bool enabled) {
    return enabled ? write() : remove();
}

bool AutostartEntry::isEnabled() {
    QFile file(path_);
    if (!QFileInfo(path_).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    const std::optional<DesktopEntry> entry = parseDesktopEntry(file.readAll());
    return entry && !entry->isTrue(QStringLiteral("Hidden"));
}

std::optional<QString> AutostartEntry::write() {
    if (program_.isEmpty())
        return QStringLiteral("the program's own path is unknown");
    const QString folder = QFileInfo(path_).absolutePath();
    if (!QDir().mkpath(folder))
        return QStringLiteral("cannot create the folder %1").arg(folder);
    QSaveFile file(path_);
    if (!file.open(QIODevice::WriteOnly))
        return QStringLiteral("cannot write %1: %2").arg(path_, file.errorString());
    file.write(entryText(program_));
    if (!file.commit())
        return QStringLiteral("cannot write %1: %2").arg(path_, file.errorString());
    return std::nullopt;
}

std::optional<QString> AutostartEntry::remove() {
    QFile file(path_);
    if (file.exists() && !file.remove())
        return QStringLiteral("cannot remove %1: %2").arg(path_, file.errorString());
    return std::nullopt;
}

} // namespace quelmo::linux_platform
