// A small X client for the desktop tests: opens top-level windows as asked on the command line,
// prints "ready" once the window manager has taken them in, and then waits. Each close request
// from the window manager (WM_DELETE_WINDOW) makes it print "closing"; it ends once every window
// was asked. It is stopped by its parent dying too: the test harness starts it with a
// parent-death signal.
//
//   --windows N          opens N windows alike (default 1)
//   --class I,C          WM_CLASS instance and class (default: none)
//   --gtk-app-id ID      _GTK_APPLICATION_ID
//   --size WxH           window size (default 300x200)
//   --desktop N          starts on desktop N
//   --state minimized    starts minimised
//   --type dock          a dock window (otherwise the window names no type: a normal one)
//
// States are asked for before mapping: a window manager that ignored them would leave the window
// plainly on screen, failing the test rather than letting it pass unseen.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>
#include <xcb/xcb_icccm.h>

namespace {

xcb_atom_t intern(xcb_connection_t* c, const char* name) {
    auto* reply = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return atom;
}

bool managed(xcb_ewmh_connection_t& e, xcb_window_t w) {
    xcb_ewmh_get_windows_reply_t list{};
    if (!xcb_ewmh_get_client_list_reply(&e, xcb_ewmh_get_client_list(&e, 0), &list, nullptr))
        return false;
    const auto end = list.windows + list.windows_len;
    const bool found = std::find(list.windows, end, w) != end;
    xcb_ewmh_get_windows_reply_wipe(&list);
    return found;
}

} // namespace

int main(int argc, char** argv) {
    xcb_connection_t* c = xcb_connect(nullptr, nullptr);
    xcb_ewmh_connection_t e{};
    if (xcb_connection_has_error(c) ||
        !xcb_ewmh_init_atoms_replies(&e, xcb_ewmh_init_atoms(c, &e), nullptr))
        return 2;
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    xcb_atom_t deleteWindow = intern(c, "WM_DELETE_WINDOW");
    unsigned long count = 1;
    for (int i = 1; i + 1 < argc; i += 2) {
        if (std::string(argv[i]) == "--windows")
            count = std::stoul(argv[i + 1]);
    }

    std::vector<xcb_window_t> open;
    for (unsigned long n = 0; n < count; ++n) {
        const xcb_window_t w = xcb_generate_id(c);
        xcb_create_window(c, XCB_COPY_FROM_PARENT, w, screen->root, 40, 40, 300, 200, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
        xcb_icccm_set_wm_protocols(c, w, e.WM_PROTOCOLS, 1, &deleteWindow);
        xcb_ewmh_set_wm_pid(&e, w, static_cast<std::uint32_t>(getpid()));
        for (int i = 1; i + 1 < argc; i += 2) {
            const std::string option = argv[i];
            const std::string value = argv[i + 1];
            xcb_icccm_wm_hints_t hints{};
            std::uint32_t size[2] = {};
            if (option == "--class") {
                std::string parts = value + ','; // "instance,class," to "instance\0class\0"
                std::replace(parts.begin(), parts.end(), ',', '\0');
                xcb_icccm_set_wm_class(c, w, static_cast<std::uint32_t>(parts.size()),
                                       parts.data());
            } else if (option == "--type" && value == "dock") {
                xcb_ewmh_set_wm_window_type(&e, w, 1, &e._NET_WM_WINDOW_TYPE_DOCK);
            } else if (option == "--state" && value == "minimized") {
                xcb_icccm_wm_hints_set_iconic(&hints);
                xcb_icccm_set_wm_hints(c, w, &hints);
            } else if (option == "--desktop") {
                xcb_ewmh_set_wm_desktop(&e, w, static_cast<std::uint32_t>(std::stoul(value)));
            } else if (option == "--size" &&
                       std::sscanf(value.c_str(), "%ux%u", size, size + 1) == 2) {
                xcb_configure_window(c, w, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                                     size);
            } else if (option == "--gtk-app-id") {
                xcb_change_property(c, XCB_PROP_MODE_REPLACE, w, intern(c, "_GTK_APPLICATION_ID"),
                                    e.UTF8_STRING, 8, static_cast<std::uint32_t>(value.size()),
                                    value.data());
            } else if (option != "--windows") {
                return 2;
            }
        }
        xcb_map_window(c, w);
        open.push_back(w);
    }
    xcb_flush(c);
    const auto allManaged = [&] {
        return std::all_of(open.begin(), open.end(), [&](xcb_window_t w) { return managed(e, w); });
    };
    for (int tries = 0; tries < 200 && !allManaged(); ++tries) // ten seconds at most
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::printf(allManaged() ? "ready\n" : "not taken in by the window manager\n");
    std::fflush(stdout);

    // The window manager's close requests arrive without any event selection of ours.
    while (!open.empty()) {
        xcb_generic_event_t* event = xcb_wait_for_event(c);
        if (!event) // the window manager or the server cut the connection
            break;
        const auto* message = reinterpret_cast<xcb_client_message_event_t*>(event);
        if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
            message->data.data32[0] == deleteWindow) {
            const auto asked = std::remove(open.begin(), open.end(), message->window);
            if (asked != open.end()) { // once per window, however often it is asked
                open.erase(asked, open.end());
                std::printf("closing\n");
                std::fflush(stdout);
            }
        }
        std::free(event);
    }
    xcb_ewmh_connection_wipe(&e);
    xcb_disconnect(c);
    return 0;
}
