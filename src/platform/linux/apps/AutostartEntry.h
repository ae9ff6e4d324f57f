#pragma once

#include "core/settings/LoginItem.h"

#include <QByteArray>
#include <QString>

namespace quelmo::linux_platform {

// Launch at login through the freedesktop autostart folder: the entry
// $XDG_CONFIG_HOME/autostart/quelmo.desktop (~/.config when XDG_CONFIG_HOME is unset or
// relative), written to start the program, removed to stop it. An entry that says Hidden=true
// does not start anything, so it reads as disabled.
class AutostartEntry final : public LoginItemService {
public:
    // The entry starting `program` (by default this program, see autostartProgram) at `path`
    // (the user's by default).
    explicit AutostartEntry(QString program = {}, QString path = defaultPath());

    std::optional<QString> apply(bool enabled) override;
    bool isEnabled() override;

    // Where the user's entry lives.
    static QString defaultPath();
    // The program the entry starts. The installed program (`installed`, where the package puts
    // it) when that is the one running, or when the running one's path is unknown (`running`
    // empty: its file was replaced by an upgrade while it ran); otherwise `running`, a build in a
    // source tree. Empty when neither is known.
    static QString autostartProgram(const QString& running, const QString& installed);
    // The entry that starts `program`, with the Exec line quoted as desktop entries require.
    static QByteArray entryText(const QString& program);

private:
    std::optional<QString> write();
    std::optional<QString> remove();

    QString program_;
    QString path_;
};

} // namespace quelmo::linux_platform
