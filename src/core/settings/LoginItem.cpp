#include "core/settings/LoginItem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace quelmo::LoginItem {

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

// Whether the "Desktop Entry" group of the entry at `path` says Hidden=true.
bool isHidden(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    bool inMainGroup = false;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine().trimmed();
        if (line.startsWith('[')) {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        const qsizetype equals = line.indexOf('=');
        if (!inMainGroup || equals < 0)
            continue;
        if (line.left(equals).trimmed() == "Hidden")
            return line.mid(equals + 1).trimmed() == "true";
    }
    return false;
}

bool fail(const QString& reason) {
    qWarning("LoginItem error: %s", qUtf8Printable(reason));
    return false;
}

bool writeEntry(const QString& path) {
    const QString program = QCoreApplication::applicationFilePath();
    if (program.isEmpty())
        return fail(QStringLiteral("the program's own path is unknown"));
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        return fail(QStringLiteral("cannot create the folder %1").arg(folder));
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    file.write(entryText(program));
    if (!file.commit())
        return fail(QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return true;
}

bool removeEntry(const QString& path) {
    QFile file(path);
    if (file.exists() && !file.remove())
        return fail(QStringLiteral("cannot remove %1: %2").arg(path, file.errorString()));
    return true;
}

} // namespace

QString entryPath() {
    return configHome() + QStringLiteral("/autostart/quelmo.desktop");
}

QByteArray entryText(const QString& program) {
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

bool set(bool enabled) {
    const QString path = entryPath();
    if (!(enabled ? writeEntry(path) : removeEntry(path)))
        return false;
    if (isEnabled() != enabled)
        return fail(
            QStringLiteral("%1 does not read back as %2")
                .arg(path, enabled ? QStringLiteral("enabled") : QStringLiteral("disabled")));
    return true;
}

bool isEnabled() {
    const QString path = entryPath();
    return QFileInfo(path).isFile() && !isHidden(path);
}

} // namespace quelmo::LoginItem
