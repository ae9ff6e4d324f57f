#pragma once

// The desktop as a Wayland compositor reports it, through any CompositorLink: which processes
// own ordinary windows and visible ones, which is in front, the activations as they happen and
// a polite close of a process's windows. Applications are named by the desktop entry they were
// launched as (their launch unit), else by their windows' application ids. A window whose
// compositor does not tell its process belongs to the processes of its desktop entry.

#include "core/cleanup/DesktopSession.h"
#include "platform/linux/apps/DesktopEntryIndex.h"
#include "platform/linux/wayland/CompositorLink.h"
#include "platform/linux/wayland/LaunchedProcesses.h"

#include <QObject>
#include <QStringList>
#include <functional>
#include <memory>

namespace quelmo::linux_platform {

class CompositorSession final : public DesktopSession {
public:
    struct Options {
        QString root = QStringLiteral("/"); // where /proc is read from
        QStringList dataDirs;               // XDG data folders; the session's by default
        qint64 ownPid = 0;                  // this program: its popover is never "in front"
        std::function<QString()> language;  // the interface language; AppLang by default
    };

    CompositorSession(std::unique_ptr<CompositorLink> link, Options options);

    DesktopSnapshot snapshot() override;
    std::optional<AppRecord> application(qint64 pid) override;
    std::optional<QString> frontmostAppId() override;
    void setActivationHandler(std::function<void(const QString& appId)> handler) override;
    bool requestClose(ProcessHandle& process) override;

private:
    // The compositor's windows, each with its process: a window the compositor names no process
    // for appears once for every process of its desktop entry. Kept for one pass of the rules.
    const std::vector<CompositorWindow>& resolvedWindows();
    std::optional<QString> appIdOf(const CompositorWindow& window);
    const CompositorWindow* focusedForeignWindow() const;
    void onFocus(const CompositorWindow& window);

    std::unique_ptr<CompositorLink> link_;
    Options options_;
    DesktopEntryIndex index_;
    std::function<void(const QString&)> activationHandler_;
    std::optional<CompositorWindow> lastFront_; // the last window in front that was not ours
    std::unique_ptr<LaunchedProcessReader> processes_;
    std::optional<std::vector<CompositorWindow>> resolved_;
    QSet<QString> sharedWindows_; // windows that several instances of an application may own
    QObject passGuard_;           // ends the pass when control is back in the event loop
};

} // namespace quelmo::linux_platform
