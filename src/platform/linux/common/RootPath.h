#pragma once

// Where a reader finds the machine's files: under a root directory that is "/" on the live system
// and a fixture tree in tests.

#include <QString>
#include <QtGlobal>
#include <string>
#include <string_view>

namespace quelmo::linux_platform {

// Whether `root` is the live system's root: empty, or nothing but slashes ("/", "//").
bool isLiveRoot(const QString& root);

// `path` (with or without its leading '/') under `root`: ("/", "proc/stat") and
// ("/tmp/tree/", "/proc/stat") give "/proc/stat" and "/tmp/tree/proc/stat".
std::string rootedPath(const QString& root, std::string_view path);

// The file `file` of /proc/[pid] under `root`.
std::string procPath(const QString& root, qint64 pid, std::string_view file);

} // namespace quelmo::linux_platform
