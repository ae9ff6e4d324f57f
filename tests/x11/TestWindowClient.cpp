// A small X client for the desktop tests: opens top-level windows with the type, class, owner
// pid, size and state asked for on the command line, prints "ready <window ids>" once the window
// manager shows them that way, and then waits. A close request from the window manager
// (WM_DELETE_WINDOW) ends it, unless --ignore-close is given.
//
//   --windows N          how many windows (default 1)
//   --type T             normal|dialog|utility|dock|desktop|splash|untyped (default normal)
//   --class I,C          WM_CLASS instance and class (default quelmo-test,QuelmoTest)
//   --pid N              _NET_WM_PID to advertise (default: our own); --no-pid for none
//   --machine NAME       WM_CLIENT_MACHINE (default: this host)
//   --gtk-app-id ID      _GTK_APPLICATION_ID
//   --size WxH           window size (default 300x200)
//   --minimized          minimise after mapping
//   --skip-taskbar       set _NET_WM_STATE_SKIP_TASKBAR
//   --desktop N          move to desktop N (0xFFFFFFFF: all desktops)
//   --ignore-close       stay open when asked to close

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <signal.h>
#include <string>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>
#include <xcb/xcb_icccm.h>

namespace {

struct Options {
    int windows = 1;
    std::string type = "normal";
    std::string instance = "quelmo-test";
    std::string windowClass = "QuelmoTest";
    std::optional<std::uint32_t> pid = static_cast<std::uint32_t>(getpid());
    std::string machine;
    std::string gtkAppId;
    std::uint16_t width = 300;
    std::uint16_t height = 200;
    bool minimized = false;
    bool skipTaskbar = false;
    std::optional<std::uint32_t> desktop;
    bool ignoreClose = false;
};

[[noreturn]] void fail(const char* what) {
    std::fprintf(stderr, "test client: %s\n", what);
    std::exit(2);
}

Options parse(int argc, char** argv) {
    Options o;
    char host[256] = {};
    gethostname(host, sizeof host - 1);
    o.machine = host;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const auto value = [&]() -> std::string {
            if (i + 1 >= argc)
                fail("missing value");
            return argv[++i];
        };
        if (arg == "--windows")
            o.windows = std::stoi(value());
        else if (arg == "--type")
            o.type = value();
        else if (arg == "--class") {
            const std::string v = value();
            const auto comma = v.find(',');
            o.instance = v.substr(0, comma);
            o.windowClass = comma == std::string::npos ? v : v.substr(comma + 1);
        } else if (arg == "--pid")
            o.pid = static_cast<std::uint32_t>(std::stoul(value()));
        else if (arg == "--no-pid")
            o.pid.reset();
        else if (arg == "--machine")
            o.machine = value();
        else if (arg == "--gtk-app-id")
            o.gtkAppId = value();
        else if (arg == "--size") {
            const std::string v = value();
            const auto x = v.find('x');
            o.width = static_cast<std::uint16_t>(std::stoi(v.substr(0, x)));
            o.height = static_cast<std::uint16_t>(std::stoi(v.substr(x + 1)));
        } else if (arg == "--minimized")
            o.minimized = true;
        else if (arg == "--skip-taskbar")
            o.skipTaskbar = true;
        else if (arg == "--desktop")
            o.desktop = static_cast<std::uint32_t>(std::stoul(value(), nullptr, 0));
        else if (arg == "--ignore-close")
            o.ignoreClose = true;
        else
            fail("unknown option");
    }
    return o;
}

xcb_atom_t typeAtom(xcb_ewmh_connection_t& e, const std::string& type) {
    if (type == "dialog")
        return e._NET_WM_WINDOW_TYPE_DIALOG;
    if (type == "utility")
        return e._NET_WM_WINDOW_TYPE_UTILITY;
    if (type == "dock")
        return e._NET_WM_WINDOW_TYPE_DOCK;
    if (type == "desktop")
        return e._NET_WM_WINDOW_TYPE_DESKTOP;
    if (type == "splash")
        return e._NET_WM_WINDOW_TYPE_SPLASH;
    return e._NET_WM_WINDOW_TYPE_NORMAL;
}

xcb_atom_t intern(xcb_connection_t* c, const char* name) {
    auto* reply = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return atom;
}

bool listed(xcb_ewmh_connection_t& e, xcb_window_t window) {
    xcb_ewmh_get_windows_reply_t list{};
    if (!xcb_ewmh_get_client_list_reply(&e, xcb_ewmh_get_client_list(&e, 0), &list, nullptr))
        return false;
    bool found = false;
    for (std::uint32_t i = 0; i < list.windows_len; ++i)
        found = found || list.windows[i] == window;
    xcb_ewmh_get_windows_reply_wipe(&list);
    return found;
}

bool hasState(xcb_ewmh_connection_t& e, xcb_window_t window, xcb_atom_t state) {
    xcb_ewmh_get_atoms_reply_t states{};
    if (!xcb_ewmh_get_wm_state_reply(&e, xcb_ewmh_get_wm_state(&e, window), &states, nullptr))
        return false;
    bool found = false;
    for (std::uint32_t i = 0; i < states.atoms_len; ++i)
        found = found || states.atoms[i] == state;
    xcb_ewmh_get_atoms_reply_wipe(&states);
    return found;
}

std::optional<std::uint32_t> desktopOf(xcb_ewmh_connection_t& e, xcb_window_t window) {
    std::uint32_t desktop = 0;
    if (!xcb_ewmh_get_wm_desktop_reply(&e, xcb_ewmh_get_wm_desktop(&e, window), &desktop, nullptr))
        return std::nullopt;
    return desktop;
}

// Waits (up to ten seconds) until `done` holds, letting the window manager work.
template <typename Done> bool waitFor(Done done) {
    for (int i = 0; i < 200; ++i) {
        if (done())
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    prctl(PR_SET_PDEATHSIG, SIGTERM); // never outlive the test that started us
    const Options o = parse(argc, argv);

    int screenNumber = 0;
    xcb_connection_t* c = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(c))
        fail("cannot connect to the X server");
    xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    xcb_ewmh_connection_t e{};
    if (!xcb_ewmh_init_atoms_replies(&e, xcb_ewmh_init_atoms(c, &e), nullptr))
        fail("cannot intern the EWMH atoms");
    xcb_atom_t deleteWindow = intern(c, "WM_DELETE_WINDOW");
    const xcb_atom_t gtkAppId = intern(c, "_GTK_APPLICATION_ID");

    std::vector<xcb_window_t> windows;
    for (int n = 0; n < o.windows; ++n) {
        const xcb_window_t w = xcb_generate_id(c);
        const std::uint32_t values[] = {screen->white_pixel, XCB_EVENT_MASK_STRUCTURE_NOTIFY};
        const auto offset = static_cast<std::int16_t>(40 + 10 * (n % 50));
        xcb_create_window(c, XCB_COPY_FROM_PARENT, w, screen->root, offset, offset, o.width,
                          o.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                          XCB_CW_BACK_PIXEL | XCB_CW_EVENT_MASK, values);
        std::string wmClass = o.instance;
        wmClass.push_back('\0');
        wmClass += o.windowClass;
        wmClass.push_back('\0');
        xcb_icccm_set_wm_class(c, w, static_cast<std::uint32_t>(wmClass.size()), wmClass.data());
        const std::string title = "quelmo test " + std::to_string(n);
        xcb_icccm_set_wm_name(c, w, XCB_ATOM_STRING, 8, static_cast<std::uint32_t>(title.size()),
                              title.data());
        xcb_icccm_set_wm_client_machine(c, w, XCB_ATOM_STRING, 8,
                                        static_cast<std::uint32_t>(o.machine.size()),
                                        o.machine.data());
        xcb_icccm_set_wm_protocols(c, w, e.WM_PROTOCOLS, 1, &deleteWindow);
        if (o.pid)
            xcb_ewmh_set_wm_pid(&e, w, *o.pid);
        if (o.type != "untyped") {
            xcb_atom_t type = typeAtom(e, o.type);
            xcb_ewmh_set_wm_window_type(&e, w, 1, &type);
        }
        if (o.skipTaskbar) {
            xcb_atom_t state = e._NET_WM_STATE_SKIP_TASKBAR;
            xcb_ewmh_set_wm_state(&e, w, 1, &state);
        }
        if (!o.gtkAppId.empty())
            xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, gtkAppId, e.UTF8_STRING, 8,
                                static_cast<std::uint32_t>(o.gtkAppId.size()), o.gtkAppId.data());
        xcb_map_window(c, w);
        windows.push_back(w);
    }
    xcb_flush(c);

    for (const xcb_window_t w : windows) {
        if (!waitFor([&] { return listed(e, w); }))
            fail("the window manager did not take the window");
        if (o.desktop) {
            xcb_ewmh_request_change_wm_desktop(&e, screenNumber, w, *o.desktop,
                                               XCB_EWMH_CLIENT_SOURCE_TYPE_OTHER);
            xcb_flush(c);
            if (!waitFor([&] { return desktopOf(e, w) == o.desktop; }))
                fail("the window did not move to its desktop");
        }
        if (o.minimized) {
            xcb_client_message_event_t message{};
            message.response_type = XCB_CLIENT_MESSAGE;
            message.format = 32;
            message.window = w;
            message.type = intern(c, "WM_CHANGE_STATE");
            message.data.data32[0] = XCB_ICCCM_WM_STATE_ICONIC;
            xcb_send_event(c, 0, screen->root,
                           XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT |
                               XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                           reinterpret_cast<const char*>(&message));
            xcb_flush(c);
            if (!waitFor([&] { return hasState(e, w, e._NET_WM_STATE_HIDDEN); }))
                fail("the window was not minimised");
        }
    }

    std::printf("ready");
    for (const xcb_window_t w : windows)
        std::printf(" 0x%x", w);
    std::printf("\n");
    std::fflush(stdout);

    while (xcb_generic_event_t* event = xcb_wait_for_event(c)) {
        const bool closeRequest =
            (event->response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
            reinterpret_cast<xcb_client_message_event_t*>(event)->data.data32[0] == deleteWindow;
        std::free(event);
        if (closeRequest && !o.ignoreClose) {
            std::printf("closing\n");
            std::fflush(stdout);
            break;
        }
    }
    xcb_ewmh_connection_wipe(&e);
    xcb_disconnect(c);
    return 0;
}
