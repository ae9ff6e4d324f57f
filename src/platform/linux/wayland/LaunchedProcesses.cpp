#include "platform/linux/wayland/LaunchedProcesses.h"

#include "platform/linux/apps/CgroupAppId.h"
#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/ProcStat.h"
#include "platform/linux/common/RootPath.h"

#include <QDir>
#include <QFileInfo>
#include <QList>

namespace quelmo::linux_platform {

std::optional<QByteArray> readProcFile(const QString& root, qint64 pid, std::string_view file) {
    const auto text = readSmallFile(procPath(root, pid, file));
    if (!text)
        return std::nullopt;
    return QByteArray::fromStdString(*text);
}

namespace {

QString programOf(const QString& root, qint64 pid, const QByteArray& stat) {
    const QString exe =
        QFileInfo(QString::fromStdString(procPath(root, pid, "exe"))).symLinkTarget();
    if (!exe.isEmpty())
        return QFileInfo(exe).fileName();
    const qsizetype open = stat.indexOf('(');
    const qsizetype close = stat.lastIndexOf(')');
    return open >= 0 && close > open ? QString::fromUtf8(stat.mid(open + 1, close - open - 1))
                                     : QString();
}

// The last component of the unified hierarchy's path (the unit the process itself is in).
QString unitOf(const QByteArray& cgroup) {
    for (const QByteArray& line : cgroup.split('\n')) {
        if (line.startsWith("0::"))
            return QString::fromUtf8(line.sliced(line.lastIndexOf('/') + 1).trimmed());
    }
    return {};
}

} // namespace

std::optional<qint64> parseControllingTerminal(const QByteArray& stat) {
    const qsizetype close = stat.lastIndexOf(')');
    if (close < 0)
        return std::nullopt;
    // After ')' come field 3 (state) onwards.
    const QList<QByteArray> fields = stat.mid(close + 1).simplified().split(' ');
    constexpr qsizetype terminalIndex = 7 - 3;
    if (fields.size() <= terminalIndex)
        return std::nullopt;
    bool ok = false;
    const qint64 value = fields[terminalIndex].toLongLong(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

LaunchedProcessReader::LaunchedProcessReader(QString root) : root_(std::move(root)) {}

std::vector<LaunchedProcess> LaunchedProcessReader::read() {
    const QStringList names = QDir(QString::fromStdString(rootedPath(root_, "/proc")))
                                  .entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    std::vector<LaunchedProcess> processes;
    processes.reserve(names.size());
    QHash<qint64, Known> stillThere;
    for (const QString& name : names) {
        bool numeric = false;
        const qint64 pid = name.toLongLong(&numeric);
        if (!numeric || pid <= 0)
            continue;
        const auto stat = readProcFile(root_, pid, "stat");
        if (!stat)
            continue;
        const std::uint64_t startTime = [&] {
            const auto parsed = parseProcStat(stat->toStdString());
            return parsed ? parsed->startTime : std::uint64_t{0};
        }();
        Known known;
        const auto remembered = known_.constFind(pid);
        if (startTime != 0 && remembered != known_.constEnd() &&
            remembered->startTime == startTime) {
            known = *remembered;
        } else {
            const auto cgroup = readProcFile(root_, pid, "cgroup");
            known = Known{startTime, cgroup ? appIdFromCgroup(*cgroup) : std::nullopt,
                          programOf(root_, pid, *stat), cgroup ? unitOf(*cgroup) : QString()};
        }
        if (startTime != 0)
            stillThere.insert(pid, known);
        processes.push_back({pid, known.appId, parseControllingTerminal(*stat).value_or(0) != 0,
                             known.program, known.unit});
    }
    known_ = std::move(stillThere);
    return processes;
}

} // namespace quelmo::linux_platform
