#pragma once

// Reading and writing the keys of the settings file (~/.config/quelmo/quelmo.conf). Every value
// read or written is remembered, so that if the file disappears while the program runs (its
// folder deleted by hand or by a clean-up tool), the next write puts every setting back, not
// only the one being written. Main thread only.

#include <QVariant>

namespace quelmo::SettingsFile {

// The value stored under `key`; invalid when there is none.
QVariant value(const char* key);

// Stores `value` under `key`. When the file has gone, first writes again every value this run
// has known.
void setValue(const char* key, const QVariant& value);

// Writes every value this run has known again if the file has gone. For the writers of files of
// their own beside it, so that any save brings the settings back.
void restoreIfLost();

} // namespace quelmo::SettingsFile
