#pragma once

// Every process of the machine with the application launch unit it runs in (the systemd user
// scope or service that desktops start each application in, named after its desktop entry) and
// whether it has a controlling terminal, and the program it runs. A process whose unit never
// changes is read once: the unit is remembered for as long as the same process (same start time)
// holds the pid.

#include <QHash>
#include <QString>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace quelmo::linux_platform {

struct LaunchedProcess {
    qint64 pid = 0;
    std::optional<QString> appId; // the desktop-entry id of its launch unit
    bool hasTerminal = false;     // started from a terminal (it has a controlling tty)
    QString program;              // its executable's file name (the kernel's short name when
                                  // the executable cannot be read)
    QString unit;                 // the systemd unit it runs in, e.g. "app-foot-5.scope"
};

// Field 7 of /proc/[pid]/stat, the controlling terminal's device number (0: none).
std::optional<qint64> parseControllingTerminal(const QByteArray& stat);

// One of a process's small /proc files (stat, cgroup), read under `root`.
std::optional<QByteArray> readProcFile(const QString& root, qint64 pid, std::string_view file);

class LaunchedProcessReader {
public:
    explicit LaunchedProcessReader(QString root);

    // The processes under <root>/proc now; a process that vanishes meanwhile is left out.
    std::vector<LaunchedProcess> read();

private:
    struct Known {
        std::uint64_t startTime = 0;
        std::optional<QString> appId;
        QString program;
        QString unit;
    };

    QString root_;
    QHash<qint64, Known> known_;
};

} // namespace quelmo::linux_platform
