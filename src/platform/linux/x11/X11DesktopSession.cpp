#include "platform/linux/x11/X11DesktopSession.h"

#include "core/settings/AppLang.h"
#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/ProcStat.h"
#include "platform/linux/common/RootPath.h"
#include "platform/linux/x11/WindowSurvey.h"

#include <QTimer>
#include <algorithm>
#include <poll.h>
#include <unistd.h>

namespace quelmo::linux_platform {
namespace {

constexpr int idCacheLimit = 1024;
constexpr std::chrono::seconds missRetry{5};

// Source indication 2: a pager or other tool acting on the user's direct request.
constexpr auto onUsersBehalf = XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER;

} // namespace

std::unique_ptr<X11DesktopSession> X11DesktopSession::connect(Options options) {
    auto x = XcbConnection::open(options.display);
    if (!x)
        return nullptr;
    if (!options.language)
        options.language = [] { return AppLang::effective(); };
    if (options.dataDirs.isEmpty())
        options.dataDirs = DesktopEntryIndex::sessionDataDirs(options.root);
    if (options.ownPid == 0)
        options.ownPid = ::getpid();
    return std::unique_ptr<X11DesktopSession>(
        new X11DesktopSession(std::move(x), std::move(options)));
}

X11DesktopSession::X11DesktopSession(std::unique_ptr<XcbConnection> x, Options options)
    : x_(std::move(x)), options_(std::move(options)), index_(options_.dataDirs) {
    watchRootWindow();
    lastActive_ = activeWindow(*x_);
    frontmostWindow(lastActive_);
    notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(x_->raw()),
                                                  QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { onSocketReadable(); });
    scheduleDrain(); // the replies above may have queued events already
}

X11DesktopSession::~X11DesktopSession() {
    notifier_.reset();
    if (probeWindow_ != XCB_WINDOW_NONE && !x_->broken()) {
        xcb_destroy_window(x_->raw(), probeWindow_);
        xcb_flush(x_->raw());
    }
}

void X11DesktopSession::watchRootWindow() {
    // Other clients' selections on the root window are their own: this only adds ours.
    const std::uint32_t rootMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(x_->raw(), x_->root(), XCB_CW_EVENT_MASK, &rootMask);

    // An unmapped window of our own whose property changes give us the server's clock.
    probeWindow_ = xcb_generate_id(x_->raw());
    const std::uint32_t probeMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(x_->raw(), 0, probeWindow_, x_->root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK,
                      &probeMask);
    xcb_flush(x_->raw());
}

DesktopSnapshot X11DesktopSession::snapshot() {
    if (x_->broken())
        return {};
    DesktopFacts facts = surveyDesktop(*x_);
    facts.activeWindow = frontmostWindow(facts.activeWindow, &facts);
    scheduleDrain();
    return summarize(facts);
}

std::optional<AppRecord> X11DesktopSession::application(qint64 pid) {
    if (pid <= 0)
        return std::nullopt;
    const auto id = appIdOfProcess(pid);
    scheduleDrain();
    if (!id)
        return std::nullopt;
    AppRecord record;
    record.appId = *id;
    record.displayName = displayNameOf(*id, index_, options_.language(), sessionMessageLocale());
    return record;
}

std::optional<QString> X11DesktopSession::appIdOfProcess(qint64 pid) {
    // The start time tells a remembered process from a later one with the same pid; 0 when it
    // cannot be read, and then nothing is remembered.
    const auto stat = readSmallFile(procPath(options_.root, pid, "stat"));
    const auto parsed = stat ? parseProcStat(*stat) : std::nullopt;
    const std::uint64_t startTime = parsed ? parsed->startTime : 0;
    const auto now = std::chrono::steady_clock::now();
    if (startTime != 0) {
        const auto cached = idCache_.constFind(pid);
        if (cached != idCache_.constEnd() && cached->startTime == startTime &&
            (cached->appId || now - cached->checkedAt < missRetry))
            return cached->appId;
    }

    const QByteArray cgroup = QByteArray::fromStdString(
        readSmallFile(procPath(options_.root, pid, "cgroup")).value_or(std::string()));
    const auto id = resolveAppId(
        cgroup, [&] { return x_->broken() ? std::vector<WindowHints>{} : hintsOfProcess(pid); },
        index_);
    if (startTime != 0) {
        if (idCache_.size() >= idCacheLimit)
            idCache_.clear();
        idCache_.insert(pid, CachedId{startTime, id, now});
    }
    return id;
}

const X11DesktopSession::WindowOwners& X11DesktopSession::windowOwners() {
    if (!ownersThisPass_) {
        WindowOwners owners;
        owners.windows = clientWindows(*x_);
        owners.pids = processesOf(*x_, owners.windows);
        ownersThisPass_ = std::move(owners);
    }
    return *ownersThisPass_;
}

std::vector<xcb_window_t> X11DesktopSession::windowsOf(const WindowOwners& owners,
                                                       qint64 pid) const {
    std::vector<xcb_window_t> own;
    for (std::size_t i = 0; i < owners.windows.size(); ++i) {
        if (owners.pids[i] == pid)
            own.push_back(owners.windows[i]);
    }
    return own;
}

std::vector<WindowHints> X11DesktopSession::hintsOfProcess(qint64 pid) {
    const std::vector<xcb_window_t> own = windowsOf(windowOwners(), pid);
    if (own.empty())
        return {};
    return hintsOf(*x_, own);
}

std::optional<QString> X11DesktopSession::appIdOfWindow(xcb_window_t window) {
    const auto owner = processesOf(*x_, {window}).front();
    if (owner) {
        if (auto id = appIdOfProcess(*owner))
            return id;
    }
    // The window's own hints, for a process we cannot see (another pid namespace).
    return appIdFromWindows(hintsOf(*x_, {window}), index_);
}

std::optional<QString> X11DesktopSession::frontmostAppId() {
    if (x_->broken())
        return std::nullopt;
    const auto window = frontmostWindow(activeWindow(*x_));
    const auto id = window ? appIdOfWindow(*window) : std::nullopt;
    scheduleDrain();
    return id;
}

std::optional<xcb_window_t> X11DesktopSession::frontmostWindow(std::optional<xcb_window_t> active,
                                                               const DesktopFacts* facts) {
    if (!active) {
        lastOtherActive_.reset();
        return std::nullopt;
    }
    const WindowFacts* known = nullptr;
    if (facts) {
        const auto found = std::find_if(facts->windows.begin(), facts->windows.end(),
                                        [&](const WindowFacts& w) { return w.id == *active; });
        known = found == facts->windows.end() ? nullptr : &*found;
    }
    const std::optional<qint64> owner = known ? known->pid : processesOf(*x_, {*active}).front();
    if (owner == options_.ownPid)
        return lastOtherActive_;
    lastOtherActive_ = active;
    return active;
}

void X11DesktopSession::setActivationHandler(std::function<void(const QString&)> handler) {
    activationHandler_ = std::move(handler);
}

bool X11DesktopSession::requestClose(ProcessHandle& process) {
    const qint64 pid = process.pid();
    if (pid <= 0 || x_->broken())
        return false;
    // Always read afresh: a window opened a moment ago must be asked too.
    ownersThisPass_.reset();
    std::vector<xcb_window_t> own = windowsOf(windowOwners(), pid);
    if (!own.empty()) {
        const xcb_timestamp_t now = serverTime();
        // Windows are known by pid only: if the process ended meanwhile, they may be another's.
        if (!process.isRunning())
            own.clear();
        for (const xcb_window_t window : own)
            xcb_ewmh_request_close_window(&x_->ewmh(), x_->screenNumber(), window, now,
                                          onUsersBehalf);
        xcb_flush(x_->raw());
    }
    scheduleDrain();
    return !own.empty() && !x_->broken();
}

xcb_timestamp_t X11DesktopSession::serverTime() {
    // Appending nothing to a property still makes the server report a PropertyNotify, stamped
    // with its current time.
    xcb_change_property(x_->raw(), XCB_PROP_MODE_APPEND, probeWindow_, x_->timestampProbe,
                        XCB_ATOM_INTEGER, 32, 0, nullptr);
    xcb_flush(x_->raw());
    constexpr int waitStepMs = 100;
    constexpr int attempts = 20; // two seconds at most, then the current-time placeholder
    for (int attempt = 0; attempt < attempts && !x_->broken();) {
        XcbReply<xcb_generic_event_t> event(xcb_poll_for_event(x_->raw()));
        if (!event) {
            pollfd fd{xcb_get_file_descriptor(x_->raw()), POLLIN, 0};
            ::poll(&fd, 1, waitStepMs);
            ++attempt;
            continue;
        }
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
            const auto* notify = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
            if (notify->window == probeWindow_ && notify->atom == x_->timestampProbe)
                return notify->time;
        }
        setAside_.push_back(std::move(event));
    }
    return XCB_CURRENT_TIME;
}

void X11DesktopSession::onSocketReadable() {
    drainEvents();
}

void X11DesktopSession::scheduleDrain() {
    // Replies collected outside the event loop may have pulled events into xcb's queue, where
    // the socket notifier cannot see them: look at the queue once control is back in the loop.
    if (drainScheduled_ || !notifier_)
        return;
    drainScheduled_ = true;
    QTimer::singleShot(0, notifier_.get(), [this] {
        drainScheduled_ = false;
        ownersThisPass_.reset();
        drainEvents();
    });
}

void X11DesktopSession::drainEvents() {
    if (draining_)
        return;
    draining_ = true;
    // The changes of the active window are counted over everything queued and looked at once:
    // reading the property tells only its value now, so a switch away and back that happened
    // while the loop was busy shows up as several notifications ending on the same window.
    int activeChanges = 0;
    for (;;) {
        XcbReply<xcb_generic_event_t> event;
        if (!setAside_.empty()) {
            event = std::move(setAside_.front());
            setAside_.pop_front();
        } else {
            event.reset(xcb_poll_for_event(x_->raw()));
        }
        if (!event) {
            if (activeChanges == 0)
                break;
            noticeActiveWindow(activeChanges); // may queue more events: look again after it
            activeChanges = 0;
            continue;
        }
        if (isActiveWindowChange(*event))
            ++activeChanges;
    }
    draining_ = false;
    ownersThisPass_.reset(); // back to the event loop next: the pass is over
    if (x_->broken() && notifier_)
        notifier_->setEnabled(false); // the server went away; nothing more will arrive
}

bool X11DesktopSession::isActiveWindowChange(const xcb_generic_event_t& event) const {
    // Errors (response type 0) belong to requests for windows that vanished meanwhile.
    if ((event.response_type & 0x7F) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto& notify = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    return notify.window == x_->root() && notify.atom == x_->ewmh()._NET_ACTIVE_WINDOW;
}

void X11DesktopSession::noticeActiveWindow(int changes) {
    const auto window = activeWindow(*x_);
    // One notification with the value we already know: the window manager rewrote it. Several
    // ending on it: the focus went elsewhere and came back.
    const bool changed = window != lastActive_ || changes > 1;
    lastActive_ = window;
    // Our own popover taking the focus activates nothing: the application before it stays.
    if (frontmostWindow(window) != window)
        return;
    if (!changed || !window || !activationHandler_)
        return;
    if (const auto id = appIdOfWindow(*window)) {
        const auto handler = activationHandler_; // it may replace itself while running
        handler(*id);
    }
}

} // namespace quelmo::linux_platform
