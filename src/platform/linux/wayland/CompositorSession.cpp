#include "platform/linux/wayland/CompositorSession.h"

#include "core/settings/AppLang.h"
#include "platform/linux/apps/AppIdentity.h"
#include "platform/linux/apps/CgroupAppId.h"
#include "platform/linux/wayland/CompositorRules.h"
#include "platform/linux/wayland/EntryProcesses.h"
#include "platform/linux/wayland/LaunchedProcesses.h"

#include <QTimer>
#include <unistd.h>

namespace quelmo::linux_platform {

CompositorSession::CompositorSession(std::unique_ptr<CompositorLink> link, Options options)
    : link_(std::move(link)), options_(std::move(options)),
      index_(options_.dataDirs.isEmpty() ? DesktopEntryIndex::sessionDataDirs(options_.root)
                                         : options_.dataDirs) {
    if (options_.ownPid == 0)
        options_.ownPid = ::getpid();
    if (!options_.language)
        options_.language = [] { return AppLang::effective(); };
    if (const CompositorWindow* front = focusedForeignWindow())
        lastFront_ = *front;
    link_->setFocusHandler([this](const CompositorWindow& window) { onFocus(window); });
}

const std::vector<CompositorWindow>& CompositorSession::resolvedWindows() {
    if (resolved_)
        return *resolved_;
    std::vector<CompositorWindow> resolved;
    sharedWindows_.clear();
    std::optional<std::vector<LaunchedProcess>> running;
    for (const CompositorWindow& window : link_->windows()) {
        const auto entryId = window.pid ? std::nullopt : desktopEntryIdOf(window, index_);
        if (!entryId) {
            resolved.push_back(window);
            continue;
        }
        if (!processes_)
            processes_ = std::make_unique<LaunchedProcessReader>(options_.root);
        if (!running)
            running = processes_->read();
        const InstalledApp* app = index_.find(*entryId);
        const QString program = app ? programOfEntry(app->entry) : window.appId;
        const QSet<qint64> pids = processesOfEntry(*entryId, program, *running);
        if (!isOneInstance(pids, *running))
            sharedWindows_.insert(window.handle);
        for (const qint64 pid : pids) {
            resolved.push_back(window);
            resolved.back().pid = pid;
        }
        if (pids.isEmpty())
            resolved.push_back(window);
    }
    resolved_ = std::move(resolved);
    QTimer::singleShot(0, &passGuard_, [this] { resolved_.reset(); });
    return *resolved_;
}

DesktopSnapshot CompositorSession::snapshot() {
    return summarizeWindows(resolvedWindows(), options_.ownPid,
                            lastFront_ ? lastFront_->pid : std::nullopt);
}

std::optional<QString> CompositorSession::appIdOf(const CompositorWindow& window) {
    // The launch unit names the application for sure; the window's own id is a claim.
    if (window.pid) {
        const auto cgroup = readProcFile(options_.root, *window.pid, "cgroup");
        if (auto id = cgroup ? appIdFromCgroup(*cgroup) : std::nullopt)
            return id;
    }
    return desktopEntryIdOf(window, index_);
}

std::optional<AppRecord> CompositorSession::application(qint64 pid) {
    if (pid <= 0)
        return std::nullopt;
    for (const CompositorWindow& window : resolvedWindows()) {
        if (window.pid != pid)
            continue;
        if (const auto id = appIdOf(window)) {
            return AppRecord{
                *id, displayNameOf(*id, index_, options_.language(), sessionMessageLocale())};
        }
    }
    return std::nullopt;
}

const CompositorWindow* CompositorSession::focusedForeignWindow() const {
    for (const CompositorWindow& window : link_->windows()) {
        if (window.focused && window.pid != options_.ownPid)
            return &window;
    }
    return nullptr;
}

std::optional<QString> CompositorSession::frontmostAppId() {
    for (const CompositorWindow& window : link_->windows()) {
        if (!window.focused)
            continue;
        if (window.pid == options_.ownPid)
            return lastFront_ ? appIdOf(*lastFront_) : std::nullopt;
        return appIdOf(window);
    }
    return std::nullopt;
}

void CompositorSession::setActivationHandler(std::function<void(const QString&)> handler) {
    activationHandler_ = std::move(handler);
}

void CompositorSession::onFocus(const CompositorWindow& window) {
    // Our own popover taking the focus is not the user turning to another application.
    if (window.pid && *window.pid == options_.ownPid)
        return;
    lastFront_ = window;
    if (!activationHandler_)
        return;
    if (const auto id = appIdOf(window)) {
        const auto handler = activationHandler_; // it may replace itself while running
        handler(*id);
    }
}

bool CompositorSession::requestClose(ProcessHandle& process) {
    const qint64 pid = process.pid();
    if (pid <= 0)
        return false;
    bool asked = false;
    resolved_.reset(); // a window opened a moment ago must be asked too
    const std::vector<CompositorWindow> windows = resolvedWindows(); // closing may change them
    // Windows are known by pid only: if the process ended meanwhile, they may be another's.
    if (!process.isRunning())
        return false;
    for (const CompositorWindow& window : windows) {
        // A window that may be another instance's is left open: the process gets SIGTERM.
        if (window.pid == pid && !sharedWindows_.contains(window.handle))
            asked = link_->close(window) || asked;
    }
    return asked;
}

} // namespace quelmo::linux_platform
