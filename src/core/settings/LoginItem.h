#pragma once

// Launch at login through the freedesktop autostart folder: the entry
// $XDG_CONFIG_HOME/autostart/quelmo.desktop (~/.config when XDG_CONFIG_HOME is unset or relative).
// The entry itself is the only record of the choice; nothing is kept in the settings file.

#include <QByteArray>
#include <QString>

namespace quelmo::LoginItem {

// Writes (enabled) or removes (disabled) the autostart entry, then reads the state back. True when
// the entry now says what was asked; otherwise logs "LoginItem error: " and the reason, and
// returns false.
bool set(bool enabled);

// True when the entry exists and does not say Hidden=true.
bool isEnabled();

// Where the entry lives.
QString entryPath();

// The program the entry starts. The installed program (`installed`, where the package puts it)
// when that is the one running, or when the running one's path is unknown (`running` empty: its
// file was replaced by an upgrade while it ran); otherwise `running`, a build in a source tree.
// Empty when neither is known.
QString autostartProgram(const QString& running, const QString& installed);

// The entry that starts `program`, with the Exec line quoted as desktop entries require.
QByteArray entryText(const QString& program);

} // namespace quelmo::LoginItem
