#pragma once

// Which processes a desktop entry stands for, for compositors that name a window's application
// but not its process (the wlroots foreign-toplevel protocol).

#include "platform/linux/apps/DesktopEntry.h"
#include "platform/linux/wayland/LaunchedProcesses.h"

#include <QSet>
#include <QString>
#include <vector>

namespace quelmo::linux_platform {

// The file name of the program an entry starts: TryExec, else the first word of Exec (after an
// "env VAR=value" prefix). Empty when the entry names none.
QString programOfEntry(const DesktopEntry& entry);

// The processes launched as `entryId` (its launch unit, outside terminals); where none was
// launched that way, the processes running the entry's `program`.
QSet<qint64> processesOfEntry(const QString& entryId, const QString& program,
                              const std::vector<LaunchedProcess>& processes);

// Whether `pids` are one running instance of an application: a single process, or processes of
// one launch unit. Closing the windows of one of several instances through a compositor that
// cannot tell them apart would close the others too.
bool isOneInstance(const QSet<qint64>& pids, const std::vector<LaunchedProcess>& processes);

} // namespace quelmo::linux_platform
