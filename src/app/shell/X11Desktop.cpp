#include "app/shell/X11Desktop.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QWindow>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace quelmo::x11 {

namespace {

xcb_connection_t* connection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

template <typename T> using Reply = std::unique_ptr<T, decltype(&std::free)>;

xcb_atom_t atom(xcb_connection_t* c, const char* name) {
    const auto cookie = xcb_intern_atom(c, 0, static_cast<uint16_t>(qstrlen(name)), name);
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(c, cookie, nullptr),
                                               &std::free);
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

// True when an EWMH window manager runs: it keeps _NET_SUPPORTING_WM_CHECK on the root window.
bool hasWindowManager(xcb_connection_t* c, xcb_window_t root) {
    const auto cookie =
        xcb_get_property(c, 0, root, atom(c, "_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(c, cookie, nullptr),
                                                &std::free);
    return reply && reply->format == 32 && reply->value_len == 1;
}

const xcb_screen_t* defaultScreen(xcb_connection_t* c) {
    return xcb_setup_roots_iterator(xcb_get_setup(c)).data;
}

} // namespace

void skipTaskbarAndPager(QWindow& window) {
    xcb_connection_t* c = connection();
    if (!c)
        return;
    const auto id = static_cast<xcb_window_t>(window.winId());
    const xcb_atom_t state = atom(c, "_NET_WM_STATE");
    const auto cookie = xcb_get_property(c, 0, id, state, XCB_ATOM_ATOM, 0, 64);
    const Reply<xcb_get_property_reply_t> current(xcb_get_property_reply(c, cookie, nullptr),
                                                  &std::free);
    const auto* first =
        current ? static_cast<const xcb_atom_t*>(xcb_get_property_value(current.get())) : nullptr;
    const xcb_atom_t* last = first ? first + current->value_len : nullptr;

    std::array<xcb_atom_t, 2> missing{};
    uint32_t count = 0;
    for (const char* name : {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER"}) {
        const xcb_atom_t wanted = atom(c, name);
        if (std::find(first, last, wanted) == last)
            missing[count++] = wanted;
    }
    // Appending keeps whatever is there; Qt merges its own states with these when it maps.
    if (count > 0)
        xcb_change_property(c, XCB_PROP_MODE_APPEND, id, state, XCB_ATOM_ATOM, 32, count,
                            missing.data());
    xcb_flush(c);
}

bool activateAsPager(QWindow& window) {
    xcb_connection_t* c = connection();
    if (!c)
        return false;
    const xcb_screen_t* screen = defaultScreen(c);
    const xcb_atom_t active = atom(c, "_NET_ACTIVE_WINDOW");
    if (!screen || active == XCB_ATOM_NONE || !hasWindowManager(c, screen->root))
        return false;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window.winId());
    message.type = active;
    message.data.data32[0] = 2; // source indication: a pager, acting for the user
    message.data.data32[1] = XCB_CURRENT_TIME;
    xcb_send_event(c, 0, screen->root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(c);
    return true;
}

std::optional<QColor> systemTrayForeground() {
    xcb_connection_t* c = connection();
    if (!c)
        return std::nullopt;
    // The tray manager owns the selection _NET_SYSTEM_TRAY_S<screen>; Qt uses the default
    // screen of the connection, which is the one the tray lives on in practice.
    const QByteArray selection = QByteArrayLiteral("_NET_SYSTEM_TRAY_S0");
    const auto ownerCookie = xcb_get_selection_owner(c, atom(c, selection.constData()));
    const Reply<xcb_get_selection_owner_reply_t> owner(
        xcb_get_selection_owner_reply(c, ownerCookie, nullptr), &std::free);
    if (!owner || owner->owner == XCB_WINDOW_NONE)
        return std::nullopt;

    // Twelve CARD32: foreground, error, warning and success colours, 16 bits per channel.
    const auto cookie = xcb_get_property(c, 0, owner->owner, atom(c, "_NET_SYSTEM_TRAY_COLORS"),
                                         XCB_ATOM_CARDINAL, 0, 12);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(c, cookie, nullptr),
                                                &std::free);
    if (!reply || reply->format != 32 || reply->value_len < 12)
        return std::nullopt;
    const auto* rgb = static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
    return QColor::fromRgba64(static_cast<quint16>(rgb[0]), static_cast<quint16>(rgb[1]),
                              static_cast<quint16>(rgb[2]));
}

ActiveWindowWatch::ActiveWindowWatch(QObject* parent) : QObject(parent) {
    xcb_connection_t* c = connection();
    if (!c)
        return;
    const xcb_screen_t* screen = defaultScreen(c);
    const xcb_atom_t active = atom(c, "_NET_ACTIVE_WINDOW");
    if (!screen || active == XCB_ATOM_NONE || !hasWindowManager(c, screen->root))
        return;
    root_ = screen->root;
    atom_ = active;

    // Add property changes to whatever this connection already listens to on the root window.
    const Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(c, xcb_get_window_attributes(c, root_), nullptr),
        &std::free);
    const uint32_t mask =
        (attributes ? attributes->your_event_mask : 0) | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(c, root_, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(c);
    QCoreApplication::instance()->installNativeEventFilter(this);
}

ActiveWindowWatch::~ActiveWindowWatch() {
    if (root_ != 0 && QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool ActiveWindowWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto* notify = reinterpret_cast<const xcb_property_notify_event_t*>(event);
    if (notify->window == root_ && notify->atom == atom_)
        emit changed(activeWindow());
    return false;
}

quint32 ActiveWindowWatch::activeWindow() const {
    xcb_connection_t* c = connection();
    if (!c)
        return 0;
    const auto cookie = xcb_get_property(c, 0, root_, atom_, XCB_ATOM_WINDOW, 0, 1);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(c, cookie, nullptr),
                                                &std::free);
    if (!reply || reply->format != 32 || reply->value_len < 1)
        return 0;
    return *static_cast<const uint32_t*>(xcb_get_property_value(reply.get()));
}

} // namespace quelmo::x11
