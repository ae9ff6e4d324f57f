#include "platform/linux/common/ProcFiles.h"

#include <QFile>
#include <QList>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace quelmo::linux_platform {

std::optional<QByteArray> readSmallFile(const QString& path, qint64 limit) {
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    QByteArray data;
    char buffer[4096];
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            ::close(fd);
            if (n < 0)
                return std::nullopt;
            return data;
        }
        data.append(buffer, n);
        if (data.size() > limit) {
            ::close(fd);
            return std::nullopt;
        }
    }
}

std::optional<qint64> readIntegerFile(const QString& path) {
    const auto text = readSmallFile(path, 4096);
    if (!text)
        return std::nullopt;
    const QByteArray first = text->trimmed().split('\n').value(0).trimmed();
    bool ok = false;
    const qint64 value = first.toLongLong(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

std::optional<std::uint64_t> parseStartTime(const QByteArray& stat) {
    const qsizetype close = stat.lastIndexOf(')');
    if (close < 0)
        return std::nullopt;
    // After ')' come field 3 (state) onwards; the start time is field 22.
    const QList<QByteArray> fields = stat.mid(close + 1).simplified().split(' ');
    constexpr qsizetype startTimeIndex = 22 - 3;
    if (fields.size() <= startTimeIndex)
        return std::nullopt;
    bool ok = false;
    const qulonglong value = fields[startTimeIndex].toULongLong(&ok);
    if (!ok)
        return std::nullopt;
    return value;
}

std::optional<ProcessUids> parseUids(const QByteArray& status) {
    for (const QByteArray& line : status.split('\n')) {
        if (!line.startsWith("Uid:"))
            continue;
        const QList<QByteArray> ids = line.mid(4).simplified().split(' ');
        if (ids.size() < 2)
            return std::nullopt;
        bool realOk = false;
        bool effectiveOk = false;
        const uint real = ids[0].toUInt(&realOk);
        const uint effective = ids[1].toUInt(&effectiveOk);
        if (!realOk || !effectiveOk)
            return std::nullopt;
        return ProcessUids{real, effective};
    }
    return std::nullopt;
}

QString underRoot(const QString& root, const QString& absolutePath) {
    if (root.isEmpty() || root == QLatin1String("/"))
        return absolutePath;
    QString base = root;
    while (base.endsWith(QLatin1Char('/')))
        base.chop(1);
    return base + absolutePath;
}

QString procPath(const QString& root, qint64 pid, const char* file) {
    return underRoot(root, QStringLiteral("/proc/%1/%2").arg(pid).arg(QLatin1String(file)));
}

} // namespace quelmo::linux_platform
