#pragma once

// The text printed by "/bin/ps -axco pid=,%cpu=,rss=,user=,comm=": one process per line, five
// columns separated by spaces, the last of which (the executable name) may itself hold spaces.

#include "core/metrics/ProcInfo.h"

#include <QByteArray>
#include <QString>
#include <QStringView>
#include <optional>
#include <vector>

namespace quelmo {

// The tool's output as text; nothing when it is not valid UTF-8.
std::optional<QString> decodeProcessListText(const QByteArray& bytes);

// One row per line that holds an integer id, a CPU figure and a resident size in kilobytes,
// a user and a name, in the order the lines appear. Every other line is skipped.
std::vector<ProcInfo> parseProcessListText(QStringView text);

} // namespace quelmo
