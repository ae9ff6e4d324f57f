#include "platform/linux/wayland/EntryProcesses.h"

#include <QFileInfo>
#include <QProcess>

namespace quelmo::linux_platform {

QString programOfEntry(const DesktopEntry& entry) {
    const QString tryExec = entry.value(QStringLiteral("TryExec")).trimmed();
    if (!tryExec.isEmpty())
        return QFileInfo(tryExec).fileName();
    QStringList words = QProcess::splitCommand(entry.value(QStringLiteral("Exec")));
    if (!words.isEmpty() && QFileInfo(words.first()).fileName() == QLatin1String("env")) {
        words.removeFirst();
        while (!words.isEmpty() && words.first().contains(QLatin1Char('=')))
            words.removeFirst();
    }
    return words.isEmpty() ? QString() : QFileInfo(words.first()).fileName();
}

QSet<qint64> processesOfEntry(const QString& entryId, const QString& program,
                              const std::vector<LaunchedProcess>& processes) {
    QSet<qint64> launched;
    QSet<qint64> running;
    for (const LaunchedProcess& process : processes) {
        if (process.appId == entryId && !process.hasTerminal)
            launched.insert(process.pid);
        else if (!program.isEmpty() && process.program == program)
            running.insert(process.pid);
    }
    return launched.isEmpty() ? running : launched;
}

bool isOneInstance(const QSet<qint64>& pids, const std::vector<LaunchedProcess>& processes) {
    if (pids.size() <= 1)
        return true;
    // Only an application's launch unit holds one instance; a login session's scope holds all
    // the programs started outside one.
    QSet<QString> units;
    for (const LaunchedProcess& process : processes) {
        if (!pids.contains(process.pid))
            continue;
        if (!process.appId)
            return false;
        units.insert(process.unit);
    }
    return units.size() == 1;
}

} // namespace quelmo::linux_platform
