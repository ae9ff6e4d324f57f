#pragma once

// Which installed application a process is, as a desktop-entry id, and its name in the
// interface language. The id comes from, in order: the systemd unit the process was launched
// in; the id its windows declare (_GTK_APPLICATION_ID, _KDE_NET_WM_DESKTOP_FILE); its windows'
// WM_CLASS matched against the installed entries.

#include "platform/linux/apps/DesktopEntryIndex.h"

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>
#include <vector>

namespace quelmo::linux_platform {

// What one top-level window says about the application behind it.
struct WindowHints {
    QString gtkApplicationId;
    QString kdeDesktopFile;
    QString wmInstance; // first part of WM_CLASS
    QString wmClass;    // second part of WM_CLASS
};

// The id the windows name, explicitly or through their class. Windows are taken in order; an
// explicit id on any window wins over a class match.
std::optional<QString> appIdFromWindows(const std::vector<WindowHints>& windows,
                                        DesktopEntryIndex& index);

// The id from the unit in `cgroupFile`, else from the windows, which are only asked for when
// the unit does not tell (reading them costs round trips to the X server).
std::optional<QString> resolveAppId(const QByteArray& cgroupFile,
                                    const std::function<std::vector<WindowHints>()>& windows,
                                    DesktopEntryIndex& index);

// The installed entry's Name in `lang` (see localizedValue), or nothing when the application has
// no installed entry. `messages` is the user's message locale.
std::optional<QString> displayNameOf(const QString& appId, DesktopEntryIndex& index,
                                     const QString& lang, const LocaleName& messages);

// The message locale of this session: LC_ALL, else LC_MESSAGES, else LANG.
LocaleName sessionMessageLocale();

} // namespace quelmo::linux_platform
