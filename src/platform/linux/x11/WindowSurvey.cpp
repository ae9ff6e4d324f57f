#include "platform/linux/x11/WindowSurvey.h"

#include <algorithm>
#include <xcb/res.h>
#include <xcb/xcb_icccm.h>

namespace quelmo::linux_platform {
namespace {

constexpr std::uint32_t listWords = 1u << 16; // up to 65536 windows or atoms
constexpr std::uint32_t textWords = 256;      // 1 KiB of text

struct WindowCookies {
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_get_property_cookie_t type;
    xcb_get_property_cookie_t state;
    xcb_get_property_cookie_t desktop;
    xcb_get_property_cookie_t transientFor;
    xcb_get_property_cookie_t pid;
    xcb_get_property_cookie_t machine;
};

WindowKind kindOf(xcb_ewmh_connection_t& e, const std::vector<std::uint32_t>& types,
                  bool transient) {
    for (const xcb_atom_t type : types) {
        if (type == e._NET_WM_WINDOW_TYPE_NORMAL)
            return WindowKind::Normal;
        if (type == e._NET_WM_WINDOW_TYPE_DIALOG)
            return WindowKind::Dialog;
        if (type == e._NET_WM_WINDOW_TYPE_UTILITY)
            return WindowKind::Utility;
        if (type == e._NET_WM_WINDOW_TYPE_DOCK)
            return WindowKind::Dock;
        if (type == e._NET_WM_WINDOW_TYPE_DESKTOP)
            return WindowKind::Desktop;
        if (type == e._NET_WM_WINDOW_TYPE_TOOLBAR)
            return WindowKind::Toolbar;
        if (type == e._NET_WM_WINDOW_TYPE_MENU)
            return WindowKind::Menu;
        if (type == e._NET_WM_WINDOW_TYPE_SPLASH)
            return WindowKind::Splash;
        if (type == e._NET_WM_WINDOW_TYPE_NOTIFICATION)
            return WindowKind::Notification;
        if (type == e._NET_WM_WINDOW_TYPE_DROPDOWN_MENU ||
            type == e._NET_WM_WINDOW_TYPE_POPUP_MENU || type == e._NET_WM_WINDOW_TYPE_TOOLTIP ||
            type == e._NET_WM_WINDOW_TYPE_COMBO || type == e._NET_WM_WINDOW_TYPE_DND)
            return WindowKind::Other;
        // A type this list does not know (e.g. a desktop's private one): try the next.
    }
    // A managed window that names no type is a normal window, or a dialog when it is transient
    // for another window.
    return transient ? WindowKind::Dialog : WindowKind::Normal;
}

QByteArray shortHost(const QByteArray& name) {
    const qsizetype dot = name.indexOf('.');
    return (dot < 0 ? name : name.first(dot)).toLower();
}

std::optional<qint64> pidFromResourceReply(const xcb_res_query_client_ids_reply_t* reply) {
    if (!reply)
        return std::nullopt;
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply); it.rem > 0;
         xcb_res_client_id_value_next(&it)) {
        if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) &&
            xcb_res_client_id_value_value_length(it.data) >= 1) {
            const std::uint32_t pid = *xcb_res_client_id_value_value(it.data);
            if (pid > 0)
                return static_cast<qint64>(pid);
        }
    }
    return std::nullopt;
}

// Fills the pids still missing from the X server's own record of each client.
void fillFromResourceExtension(XcbConnection& x, const std::vector<xcb_window_t>& windows,
                               std::vector<std::optional<qint64>>& pids) {
    if (!x.hasResourceExtension())
        return;
    std::vector<std::pair<std::size_t, xcb_res_query_client_ids_cookie_t>> asked;
    for (std::size_t i = 0; i < windows.size(); ++i) {
        if (pids[i])
            continue;
        xcb_res_client_id_spec_t pidQuery{windows[i], XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
        asked.emplace_back(i, xcb_res_query_client_ids(x.raw(), 1, &pidQuery));
    }
    for (const auto& [index, cookie] : asked) {
        const XcbReply<xcb_res_query_client_ids_reply_t> reply(
            xcb_res_query_client_ids_reply(x.raw(), cookie, nullptr));
        pids[index] = pidFromResourceReply(reply.get());
    }
}

std::vector<xcb_window_t> windowList(const xcb_get_property_reply_t* reply) {
    const std::vector<std::uint32_t> ids = cardinalsOf(reply);
    std::vector<xcb_window_t> windows;
    windows.reserve(ids.size());
    for (const std::uint32_t id : ids) {
        if (id != XCB_WINDOW_NONE)
            windows.push_back(id);
    }
    return windows;
}

} // namespace

std::optional<qint64> trustedWmPid(std::optional<std::uint32_t> wmPid,
                                   const QByteArray& clientMachine, const QByteArray& hostName) {
    if (!wmPid || *wmPid == 0 || *wmPid > 0x7FFFFFFFu)
        return std::nullopt;
    if (!clientMachine.isEmpty() && !hostName.isEmpty() &&
        shortHost(clientMachine) != shortHost(hostName))
        return std::nullopt;
    return static_cast<qint64>(*wmPid);
}

std::vector<xcb_window_t> clientWindows(XcbConnection& x) {
    // Window managers update the two lists one after the other: a window just managed may be
    // in one and not yet in the other.
    const auto listCookie = x.askProperty(x.root(), x.ewmh()._NET_CLIENT_LIST, listWords);
    const auto stackingCookie =
        x.askProperty(x.root(), x.ewmh()._NET_CLIENT_LIST_STACKING, listWords);
    std::vector<xcb_window_t> windows = windowList(x.takeProperty(listCookie).get());
    for (const xcb_window_t w : windowList(x.takeProperty(stackingCookie).get())) {
        if (std::find(windows.begin(), windows.end(), w) == windows.end())
            windows.push_back(w);
    }
    return windows;
}

std::optional<xcb_window_t> activeWindow(XcbConnection& x) {
    const auto reply = x.takeProperty(x.askProperty(x.root(), x.ewmh()._NET_ACTIVE_WINDOW, 1));
    const auto window = firstCardinalOf(reply.get());
    if (!window || *window == XCB_WINDOW_NONE)
        return std::nullopt;
    return *window;
}

std::vector<std::optional<qint64>> processesOf(XcbConnection& x,
                                               const std::vector<xcb_window_t>& windows) {
    std::vector<std::pair<xcb_get_property_cookie_t, xcb_get_property_cookie_t>> cookies;
    cookies.reserve(windows.size());
    for (const xcb_window_t window : windows)
        cookies.emplace_back(x.askProperty(window, x.ewmh()._NET_WM_PID, 1),
                             x.askProperty(window, XCB_ATOM_WM_CLIENT_MACHINE, textWords));
    std::vector<std::optional<qint64>> pids;
    pids.reserve(windows.size());
    for (const auto& [pidCookie, machineCookie] : cookies) {
        const auto pid = x.takeProperty(pidCookie);
        const auto machine = x.takeProperty(machineCookie);
        pids.push_back(
            trustedWmPid(firstCardinalOf(pid.get()), textOf(machine.get()).toUtf8(), x.hostName()));
    }
    fillFromResourceExtension(x, windows, pids);
    return pids;
}

std::vector<WindowHints> hintsOf(XcbConnection& x, const std::vector<xcb_window_t>& windows) {
    struct Cookies {
        xcb_get_property_cookie_t gtk, kde, wmClass;
    };
    std::vector<Cookies> cookies;
    cookies.reserve(windows.size());
    for (const xcb_window_t window : windows)
        cookies.push_back({x.askProperty(window, x.gtkApplicationId, textWords),
                           x.askProperty(window, x.kdeDesktopFile, textWords),
                           xcb_icccm_get_wm_class(x.raw(), window)});
    std::vector<WindowHints> hints;
    hints.reserve(windows.size());
    for (const Cookies& c : cookies) {
        WindowHints h;
        h.gtkApplicationId = textOf(x.takeProperty(c.gtk).get());
        h.kdeDesktopFile = textOf(x.takeProperty(c.kde).get());
        // WM_CLASS is two Latin-1 strings: the instance name and the class name.
        xcb_icccm_get_wm_class_reply_t wmClass{};
        if (xcb_icccm_get_wm_class_reply(x.raw(), c.wmClass, &wmClass, nullptr)) {
            h.wmInstance = QString::fromLatin1(wmClass.instance_name);
            h.wmClass = QString::fromLatin1(wmClass.class_name);
            xcb_icccm_get_wm_class_reply_wipe(&wmClass);
        }
        hints.push_back(std::move(h));
    }
    return hints;
}

DesktopFacts surveyDesktop(XcbConnection& x) {
    xcb_ewmh_connection_t& e = x.ewmh();
    DesktopFacts facts;

    // Round 1: the lists and the root's state.
    const auto stackingCookie = x.askProperty(x.root(), e._NET_CLIENT_LIST_STACKING, listWords);
    const auto clientCookie = x.askProperty(x.root(), e._NET_CLIENT_LIST, listWords);
    const auto activeCookie = x.askProperty(x.root(), e._NET_ACTIVE_WINDOW, 1);
    const auto desktopCookie = x.askProperty(x.root(), e._NET_CURRENT_DESKTOP, 1);
    const auto stacking = x.takeProperty(stackingCookie);
    const auto clients = x.takeProperty(clientCookie);
    const auto active = x.takeProperty(activeCookie);
    const auto current = x.takeProperty(desktopCookie);
    // Stacking order first; anything only the plain list has yet (or a window manager without
    // the stacking list) after it.
    std::vector<xcb_window_t> windows = windowList(stacking.get());
    for (const xcb_window_t w : windowList(clients.get())) {
        if (std::find(windows.begin(), windows.end(), w) == windows.end())
            windows.push_back(w);
    }
    if (const auto id = firstCardinalOf(active.get()); id && *id != XCB_WINDOW_NONE)
        facts.activeWindow = *id;
    facts.currentDesktop = firstCardinalOf(current.get());

    // Round 2: every property of every window.
    std::vector<WindowCookies> cookies;
    cookies.reserve(windows.size());
    for (const xcb_window_t w : windows) {
        cookies.push_back(
            {xcb_get_window_attributes(x.raw(), w), xcb_get_geometry(x.raw(), w),
             x.askProperty(w, e._NET_WM_WINDOW_TYPE, 64), x.askProperty(w, e._NET_WM_STATE, 64),
             x.askProperty(w, e._NET_WM_DESKTOP, 1), x.askProperty(w, XCB_ATOM_WM_TRANSIENT_FOR, 1),
             x.askProperty(w, e._NET_WM_PID, 1),
             x.askProperty(w, XCB_ATOM_WM_CLIENT_MACHINE, textWords)});
    }
    std::vector<std::optional<qint64>> pids;
    pids.reserve(windows.size());
    for (std::size_t i = 0; i < windows.size(); ++i) {
        const WindowCookies& c = cookies[i];
        const XcbReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(x.raw(), c.attributes, nullptr));
        const XcbReply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(x.raw(), c.geometry, nullptr));
        const auto type = x.takeProperty(c.type);
        const auto state = x.takeProperty(c.state);
        const auto desktop = x.takeProperty(c.desktop);
        const auto transient = x.takeProperty(c.transientFor);
        const auto pid = x.takeProperty(c.pid);
        const auto machine = x.takeProperty(c.machine);

        WindowFacts window;
        window.id = windows[i];
        const auto transientFor = firstCardinalOf(transient.get());
        window.kind =
            kindOf(e, cardinalsOf(type.get()), transientFor && *transientFor != XCB_WINDOW_NONE);
        for (const xcb_atom_t s : cardinalsOf(state.get())) {
            window.skipTaskbar = window.skipTaskbar || s == e._NET_WM_STATE_SKIP_TASKBAR;
            window.hidden = window.hidden || s == e._NET_WM_STATE_HIDDEN;
        }
        window.viewable = attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
        window.desktop = firstCardinalOf(desktop.get());
        if (geometry)
            window.height = static_cast<double>(geometry->height);
        pids.push_back(
            trustedWmPid(firstCardinalOf(pid.get()), textOf(machine.get()).toUtf8(), x.hostName()));
        facts.windows.push_back(window);
    }

    // Round 3, only for windows that did not name their process.
    fillFromResourceExtension(x, windows, pids);
    for (std::size_t i = 0; i < windows.size(); ++i)
        facts.windows[i].pid = pids[i];
    return facts;
}

} // namespace quelmo::linux_platform
