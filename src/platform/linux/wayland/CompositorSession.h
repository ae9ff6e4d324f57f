#pragma once

// The desktop as a Wayland compositor reports it, through any CompositorLink: which processes
// own ordinary windows and visible ones, which is in front, the activations as they happen and
// a polite close of a process's windows. Applications are named by the desktop entry they were
// launched as (their launch unit), else by their windows' application ids.

#include "core/cleanup/DesktopSession.h"
#include "platform/linux/apps/DesktopEntryIndex.h"
#include "platform/linux/wayland/CompositorLink.h"

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
    bool requestClose(qint64 pid) override;

private:
    std::optional<QString> appIdOf(const CompositorWindow& window);
    const CompositorWindow* focusedForeignWindow() const;
    void onFocus(const CompositorWindow& window);

    std::unique_ptr<CompositorLink> link_;
    Options options_;
    DesktopEntryIndex index_;
    std::function<void(const QString&)> activationHandler_;
    std::optional<CompositorWindow> lastFront_; // the last window in front that was not ours
};

} // namespace quelmo::linux_platform
