#pragma once

// Small readers for kernel-provided text files (procfs, sysfs) and the few /proc facts the
// desktop side needs. Everything returns nothing rather than failing loudly: a process can vanish
// between two reads, and a fixture tree may hold any bytes at all.

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>

namespace quelmo::linux_platform {

// The whole file, or nothing when it cannot be opened or is larger than `limit` bytes.
std::optional<QByteArray> readSmallFile(const QString& path, qint64 limit = 65536);

// The first whitespace-delimited integer of a file such as sysfs "temp" or "*_count".
std::optional<qint64> readIntegerFile(const QString& path);

// Field 22 of /proc/[pid]/stat: when the process started, in clock ticks since boot. The
// command name before it may contain spaces and parentheses, so fields are counted from the
// last ')'.
std::optional<std::uint64_t> parseStartTime(const QByteArray& stat);

struct ProcessUids {
    std::uint32_t real = 0;
    std::uint32_t effective = 0;
};

// The "Uid:" line of /proc/[pid]/status.
std::optional<ProcessUids> parseUids(const QByteArray& status);

// Paths under `root` ("/" on a live system).
QString procPath(const QString& root, qint64 pid, const char* file);
QString underRoot(const QString& root, const QString& absolutePath);

} // namespace quelmo::linux_platform
