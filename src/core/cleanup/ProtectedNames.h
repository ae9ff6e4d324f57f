#pragma once

#include <QString>

namespace quelmo {

// Whether a process with this name is part of the system or the desktop session and so must never
// be offered for cutting, whatever it uses. The match is on the whole name, ignoring case.
bool isProtectedProcessName(const QString& name);

} // namespace quelmo
