#include "XTestServer.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <thread>
#include <unistd.h>
#include <xcb/xcb.h>

namespace quelmo::test {
namespace {

bool onPath(const char* program) {
    const char* path = std::getenv("PATH");
    std::string dirs = path ? path : "/usr/bin:/bin";
    std::size_t start = 0;
    while (start <= dirs.size()) {
        const std::size_t colon = std::min(dirs.find(':', start), dirs.size());
        const std::string candidate = dirs.substr(start, colon - start) + "/" + program;
        if (access(candidate.c_str(), X_OK) == 0)
            return true;
        start = colon + 1;
    }
    return false;
}

xcb_atom_t atomNamed(xcb_connection_t* c, const char* name) {
    auto* reply = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    std::free(reply);
    return atom;
}

bool listsWindow(xcb_connection_t* c, xcb_window_t root, xcb_atom_t clientList, xcb_window_t w) {
    auto* reply = xcb_get_property_reply(
        c, xcb_get_property(c, 0, root, clientList, XCB_ATOM_WINDOW, 0, 4096), nullptr);
    bool found = false;
    if (reply) {
        const auto* ids = static_cast<const xcb_window_t*>(xcb_get_property_value(reply));
        for (int i = 0; i < xcb_get_property_value_length(reply) / 4; ++i)
            found = found || ids[i] == w;
    }
    std::free(reply);
    return found;
}

// The window manager is ready once it actually manages a window mapped now. Its advertisement
// on the root window comes earlier: a window mapped while it is still starting up can be missed,
// so a probe that is not taken within two seconds is replaced by a new one.
bool windowManagerManages(const std::string& display) {
    xcb_connection_t* c = xcb_connect(display.c_str(), nullptr);
    bool managed = false;
    if (!xcb_connection_has_error(c)) {
        xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
        const xcb_atom_t clientList = atomNamed(c, "_NET_CLIENT_LIST");
        const xcb_window_t probe = xcb_generate_id(c);
        xcb_create_window(c, XCB_COPY_FROM_PARENT, probe, screen->root, 0, 0, 50, 50, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, 0, nullptr);
        xcb_map_window(c, probe);
        xcb_flush(c);
        for (int i = 0; i < 40 && !managed; ++i) {
            managed = listsWindow(c, screen->root, clientList, probe);
            if (!managed)
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        xcb_destroy_window(c, probe);
        xcb_flush(c);
    }
    xcb_disconnect(c);
    return managed;
}

} // namespace

bool XTestServer::toolsInstalled() {
    return onPath("Xvfb") && onPath("openbox");
}

XTestServer::XTestServer() {
    char pattern[] = "/tmp/quelmo-xtest-XXXXXX";
    if (!mkdtemp(pattern)) {
        error_ = "cannot make a home folder";
        return;
    }
    home_ = pattern;

    int displayPipe[2];
    if (pipe2(displayPipe, O_CLOEXEC) != 0) {
        error_ = "pipe failed";
        return;
    }
    ChildProcess::Options serverOptions;
    serverOptions.fdAsThree = displayPipe[1];
    xvfb_ = std::make_unique<ChildProcess>(std::vector<std::string>{"Xvfb", "-displayfd", "3",
                                                                    "-screen", "0", "1280x800x24",
                                                                    "-nolisten", "tcp", "-noreset"},
                                           serverOptions);
    close(displayPipe[1]);

    // Xvfb writes the display number it chose once it accepts connections.
    std::string number;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    fcntl(displayPipe[0], F_SETFL, O_NONBLOCK);
    while (number.find('\n') == std::string::npos && std::chrono::steady_clock::now() < deadline &&
           xvfb_->running()) {
        char chunk[16];
        const ssize_t n = read(displayPipe[0], chunk, sizeof chunk);
        if (n > 0)
            number.append(chunk, static_cast<std::size_t>(n));
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    close(displayPipe[0]);
    if (number.find('\n') == std::string::npos) {
        error_ = "Xvfb did not start";
        return;
    }
    display_ = std::string(1, ':');
    display_.append(number, 0, number.find('\n'));

    windowManager_ =
        std::make_unique<ChildProcess>(std::vector<std::string>{"openbox", "--sm-disable"},
                                       ChildProcess::Options{environment(), -1});
    const auto wmDeadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!windowManagerManages(display_)) {
        if (std::chrono::steady_clock::now() > wmDeadline || !windowManager_->running()) {
            error_ = "openbox did not start";
            return;
        }
    }
}

XTestServer::~XTestServer() {
    windowManager_.reset();
    xvfb_.reset();
    if (!home_.empty()) {
        std::error_code ignored;
        std::filesystem::remove_all(home_, ignored);
    }
}

std::vector<std::string> XTestServer::environment() const {
    return {"DISPLAY=" + display_,
            "HOME=" + home_,
            "XDG_CONFIG_HOME=" + home_ + "/config",
            "XDG_CACHE_HOME=" + home_ + "/cache",
            "XDG_DATA_HOME=" + home_ + "/data",
            "XDG_RUNTIME_DIR=" + home_,
            "NO_AT_BRIDGE=1",
            "GSETTINGS_BACKEND=memory"};
}

} // namespace quelmo::test
