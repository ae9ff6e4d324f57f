#include "platform/linux/x11/XcbConnection.h"

#include <climits>
#include <cstring>
#include <unistd.h>
#include <xcb/res.h>

namespace quelmo::linux_platform {
namespace {

xcb_intern_atom_cookie_t askAtom(xcb_connection_t* c, const char* name) {
    return xcb_intern_atom(c, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
}

xcb_atom_t takeAtom(xcb_connection_t* c, xcb_intern_atom_cookie_t cookie) {
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(c, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace

std::unique_ptr<XcbConnection> XcbConnection::open(const char* display) {
    std::unique_ptr<XcbConnection> self(new XcbConnection);
    self->connection_ = xcb_connect(display, &self->screenNumber_);
    if (!self->connection_ || xcb_connection_has_error(self->connection_))
        return nullptr; // the destructor disconnects

    xcb_connection_t* c = self->connection_;
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(c));
    for (int i = 0; i < self->screenNumber_ && screens.rem > 0; ++i)
        xcb_screen_next(&screens);
    if (screens.rem <= 0)
        return nullptr;
    self->root_ = screens.data->root;

    // All atoms in one batch of requests.
    xcb_intern_atom_cookie_t* ewmhCookies = xcb_ewmh_init_atoms(c, &self->ewmh_);
    const auto gtk = askAtom(c, "_GTK_APPLICATION_ID");
    const auto kde = askAtom(c, "_KDE_NET_WM_DESKTOP_FILE");
    const auto probe = askAtom(c, "_QUELMO_TIMESTAMP_PROBE");
    xcb_prefetch_extension_data(c, &xcb_res_id);
    self->ewmhReady_ = xcb_ewmh_init_atoms_replies(&self->ewmh_, ewmhCookies, nullptr) != 0;
    self->gtkApplicationId = takeAtom(c, gtk);
    self->kdeDesktopFile = takeAtom(c, kde);
    self->timestampProbe = takeAtom(c, probe);
    if (!self->ewmhReady_ || xcb_connection_has_error(c))
        return nullptr;
    const xcb_query_extension_reply_t* res = xcb_get_extension_data(c, &xcb_res_id);
    self->hasRes_ = res && res->present;

    char host[HOST_NAME_MAX + 1] = {};
    if (::gethostname(host, sizeof host - 1) == 0)
        self->hostName_ = QByteArray(host);
    return self;
}

XcbConnection::~XcbConnection() {
    if (ewmhReady_)
        xcb_ewmh_connection_wipe(&ewmh_);
    if (connection_)
        xcb_disconnect(connection_);
}

xcb_get_property_cookie_t XcbConnection::askProperty(xcb_window_t window, xcb_atom_t property,
                                                     std::uint32_t words) {
    return xcb_get_property(connection_, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
}

XcbReply<xcb_get_property_reply_t> XcbConnection::takeProperty(xcb_get_property_cookie_t cookie) {
    return XcbReply<xcb_get_property_reply_t>(xcb_get_property_reply(connection_, cookie, nullptr));
}

std::vector<std::uint32_t> cardinalsOf(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 32)
        return {};
    const auto* values = static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
    const int bytes = xcb_get_property_value_length(reply);
    if (!values || bytes <= 0)
        return {};
    return std::vector<std::uint32_t>(values, values + bytes / 4);
}

std::optional<std::uint32_t> firstCardinalOf(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply) < 4)
        return std::nullopt;
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply));
}

QByteArray bytesOf(const xcb_get_property_reply_t* reply) {
    if (!reply || reply->format != 8)
        return {};
    const int length = xcb_get_property_value_length(reply);
    if (length <= 0)
        return {};
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply)), length);
}

namespace {

// STRING properties are Latin-1 by the X conventions; everything else we read is UTF-8.
QString decodeText(const xcb_get_property_reply_t* reply, QByteArrayView bytes) {
    if (reply->type == XCB_ATOM_STRING)
        return QString::fromLatin1(bytes);
    return QString::fromUtf8(bytes);
}

} // namespace

QString textOf(const xcb_get_property_reply_t* reply) {
    QByteArray bytes = bytesOf(reply);
    const qsizetype nul = bytes.indexOf('\0');
    if (nul >= 0)
        bytes.truncate(nul);
    return bytes.isEmpty() ? QString() : decodeText(reply, bytes);
}

} // namespace quelmo::linux_platform
