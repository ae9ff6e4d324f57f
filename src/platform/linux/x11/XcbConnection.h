#pragma once

// One connection of our own to the X server, with the atoms the desktop side reads. It is kept
// apart from the toolkit's connection so that our round trips and event selection never mix
// with the interface's.

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>
#include <xcb/xcb.h>
#include <xcb/xcb_ewmh.h>

namespace quelmo::linux_platform {

struct FreeWithStdFree {
    void operator()(void* p) const { std::free(p); }
};
template <typename T> using XcbReply = std::unique_ptr<T, FreeWithStdFree>;

class XcbConnection {
public:
    // Nothing when no X display can be reached (no DISPLAY, a Wayland session without
    // Xwayland, a refused connection).
    static std::unique_ptr<XcbConnection> open(const char* display = nullptr);
    ~XcbConnection();
    XcbConnection(const XcbConnection&) = delete;
    XcbConnection& operator=(const XcbConnection&) = delete;

    xcb_connection_t* raw() const { return connection_; }
    xcb_ewmh_connection_t& ewmh() { return ewmh_; }
    xcb_window_t root() const { return root_; }
    int screenNumber() const { return screenNumber_; }
    bool broken() const { return xcb_connection_has_error(connection_) != 0; }
    bool hasResourceExtension() const { return hasRes_; }
    // This machine's name, as clients write it into WM_CLIENT_MACHINE.
    const QByteArray& hostName() const { return hostName_; }

    xcb_atom_t gtkApplicationId = XCB_ATOM_NONE;
    xcb_atom_t kdeDesktopFile = XCB_ATOM_NONE;
    xcb_atom_t timestampProbe = XCB_ATOM_NONE;

    // GetProperty of any type; `words` is the most 32-bit units to fetch.
    xcb_get_property_cookie_t askProperty(xcb_window_t window, xcb_atom_t property,
                                          std::uint32_t words = 1024);
    XcbReply<xcb_get_property_reply_t> takeProperty(xcb_get_property_cookie_t cookie);

private:
    XcbConnection() = default;

    xcb_connection_t* connection_ = nullptr;
    xcb_ewmh_connection_t ewmh_{};
    bool ewmhReady_ = false;
    xcb_window_t root_ = XCB_WINDOW_NONE;
    int screenNumber_ = 0;
    bool hasRes_ = false;
    QByteArray hostName_;
};

// Property values. Each accepts a missing reply and gives the neutral value.
std::vector<std::uint32_t> cardinalsOf(const xcb_get_property_reply_t* reply);
std::optional<std::uint32_t> firstCardinalOf(const xcb_get_property_reply_t* reply);
// A text property (STRING or UTF8_STRING), up to its first NUL.
QString textOf(const xcb_get_property_reply_t* reply);
QByteArray bytesOf(const xcb_get_property_reply_t* reply);

} // namespace quelmo::linux_platform
