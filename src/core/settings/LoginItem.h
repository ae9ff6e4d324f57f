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

// The entry that starts `program`, with the Exec line quoted as desktop entries require.
QByteArray entryText(const QString& program);

} // namespace quelmo::LoginItem
