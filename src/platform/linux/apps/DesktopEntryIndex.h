#pragma once

// The installed applications, by desktop-entry id, from the applications/ folders of the XDG
// data directories. Built on first use and rebuilt when one of the scanned folders changes
// (a package install or removal changes the folder's modification time).

#include "platform/linux/apps/DesktopEntry.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace quelmo::linux_platform {

struct InstalledApp {
    QString id;         // desktop-entry id: path below applications/ with '/' as '-', no suffix
    DesktopEntry entry; // only the keys the lookups need
};

class DesktopEntryIndex {
public:
    // `dataDirs` in precedence order (the user's own data folder first); each may hold an
    // applications/ folder.
    explicit DesktopEntryIndex(QStringList dataDirs);

    // The data folders of this session: $XDG_DATA_HOME (default ~/.local/share), then
    // $XDG_DATA_DIRS (default /usr/local/share:/usr/share), each placed under `root`.
    static QStringList sessionDataDirs(const QString& root);

    const InstalledApp* find(const QString& id);

    // The application whose StartupWMClass equals the window's class (or instance), else whose
    // id equals it, ignoring case, else whose id's last dotted part does (org.xfce.mousepad for
    // "Mousepad") when only one does.
    const InstalledApp* findByWindowClass(const QString& instance, const QString& windowClass);

private:
    struct FolderStamp {
        QString path;
        bool exists = false;
        qint64 seconds = 0;
        qint64 nanoseconds = 0;
    };

    void refreshIfChanged();
    void rebuild();
    void scanFolder(const QString& applicationsDir, const QString& folder, int depth,
                    QHash<QString, bool>& seenIds);
    static FolderStamp stampOf(const QString& path);
    const InstalledApp* matchClass(const QString& name);

    QStringList dataDirs_;
    bool built_ = false;
    std::vector<FolderStamp> stamps_;
    std::vector<InstalledApp> apps_;
    QHash<QString, qsizetype> byId_;
    QHash<QString, qsizetype> byWindowClass_; // StartupWMClass, as written
    QHash<QString, qsizetype> byLowerId_;
    QHash<QString, QList<qsizetype>> byLowerLastPart_;
};

} // namespace quelmo::linux_platform
