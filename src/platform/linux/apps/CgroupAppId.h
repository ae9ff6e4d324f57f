#pragma once

// The desktop-entry id a process was launched as, read from the systemd user unit it runs in.
// Desktops that launch applications through systemd put each one in a unit named after its
// desktop entry:
//   app[-<launcher>]-<id>-<random>.scope     (launched by the shell or a launcher)
//   app[-<launcher>]-<id>[@<random>].service (launched as a service)
// with '-' inside the id written as "\x2d" (systemd's unit-name escaping).

#include <QByteArray>
#include <QString>
#include <optional>

namespace quelmo::linux_platform {

// Undoes systemd's unit-name escaping ("\xNN" for a byte).
QString unescapeUnitName(QByteArrayView name);

// The id in one unit name such as "app-gnome-org.gnome.Terminal-4242.scope".
std::optional<QString> appIdFromUnitName(QByteArrayView unit);

// The id from the contents of /proc/[pid]/cgroup: the unit the process itself is in (the
// last component of its unified-hierarchy path, else of the name=systemd one). Slices are not
// looked at: a process started from a terminal sits in the terminal's slice without being the
// terminal.
std::optional<QString> appIdFromCgroup(const QByteArray& cgroupFile);

} // namespace quelmo::linux_platform
