#pragma once

#include <QString>
#include <optional>

namespace quelmo {

// Checks, before Qt is started, that the program can reach an X11 display (a plain X11 session
// or XWayland): its popover is placed under the tray item, which Wayland clients cannot do.
// Returns the one line to tell the user when there is none. When there is one, Qt is told to
// use it even inside a Wayland session.
std::optional<QString> graphicalSessionProblem();

} // namespace quelmo
