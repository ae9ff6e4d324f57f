#include "app/tray/XEmbedTrayBackground.h"

#include <QGuiApplication>
#include <QHash>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <xcb/xcb.h>

namespace quelmo {

namespace {

// Pixels sampled on each side of the icon.
constexpr int ringWidth = 3;
// Fewer pixels than this around the icon say nothing about the panel.
constexpr int fewestPixels = 8;
// Windows followed up from the icon before giving up.
constexpr int deepestNesting = 8;

template <typename T> using Reply = std::unique_ptr<T, decltype(&std::free)>;

xcb_connection_t* connection() {
    auto* x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    return x11 ? x11->connection() : nullptr;
}

// The pixels of `area` of `window`, as the server shows them; a null image when the window
// cannot be read (unmapped, off screen, an unusual pixel format).
QImage readPixels(xcb_connection_t* c, xcb_window_t window, const QRect& area) {
    const auto cookie =
        xcb_get_image(c, XCB_IMAGE_FORMAT_Z_PIXMAP, window, static_cast<int16_t>(area.x()),
                      static_cast<int16_t>(area.y()), static_cast<uint16_t>(area.width()),
                      static_cast<uint16_t>(area.height()), ~0u);
    const Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(c, cookie, nullptr), &std::free);
    if (!reply || (reply->depth != 24 && reply->depth != 32))
        return {};
    const int length = xcb_get_image_data_length(reply.get());
    if (length != area.width() * area.height() * 4)
        return {};
    QImage image(area.size(),
                 reply->depth == 32 ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    std::memcpy(image.bits(), xcb_get_image_data(reply.get()), static_cast<size_t>(length));
    return image;
}

} // namespace

std::optional<QColor> dominantColourAround(const QImage& pixels, const QRect& hole) {
    QHash<QRgb, int> counts;
    int opaque = 0;
    const QImage argb = pixels.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < argb.height(); ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(argb.constScanLine(y));
        for (int x = 0; x < argb.width(); ++x) {
            if (hole.contains(x, y) || qAlpha(row[x]) < 0xc0)
                continue;
            ++counts[row[x] | 0xff000000u];
            ++opaque;
        }
    }
    if (opaque < fewestPixels)
        return std::nullopt;
    QRgb best = 0;
    int bestCount = 0;
    for (auto it = counts.cbegin(); it != counts.cend(); ++it) {
        if (it.value() > bestCount || (it.value() == bestCount && it.key() < best)) {
            best = it.key();
            bestCount = it.value();
        }
    }
    return QColor::fromRgb(best);
}

std::optional<QColor> trayBackgroundBehind(quint32 icon) {
    xcb_connection_t* c = connection();
    if (!c || icon == 0)
        return std::nullopt;
    xcb_window_t window = icon;
    const Reply<xcb_get_geometry_reply_t> own(
        xcb_get_geometry_reply(c, xcb_get_geometry(c, window), nullptr), &std::free);
    if (!own)
        return std::nullopt;
    // The icon's place in the window being looked at, followed up the tree.
    QRect iconArea(0, 0, own->width, own->height);
    for (int level = 0; level < deepestNesting; ++level) {
        const Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(c, xcb_query_tree(c, window), nullptr), &std::free);
        if (!tree || tree->parent == XCB_WINDOW_NONE)
            return std::nullopt;
        const xcb_window_t parent = tree->parent;
        const Reply<xcb_translate_coordinates_reply_t> moved(
            xcb_translate_coordinates_reply(c, xcb_translate_coordinates(c, window, parent, 0, 0),
                                            nullptr),
            &std::free);
        const Reply<xcb_get_geometry_reply_t> bounds(
            xcb_get_geometry_reply(c, xcb_get_geometry(c, parent), nullptr), &std::free);
        if (!moved || !bounds)
            return std::nullopt;
        iconArea.translate(moved->dst_x, moved->dst_y);
        const QRect ring = iconArea.adjusted(-ringWidth, -ringWidth, ringWidth, ringWidth)
                               .intersected(QRect(0, 0, bounds->width, bounds->height));
        const QRect covered = iconArea.intersected(ring);
        if (ring.width() * ring.height() - covered.width() * covered.height() >= fewestPixels) {
            const QImage pixels = readPixels(c, parent, ring);
            if (!pixels.isNull()) {
                if (auto colour =
                        dominantColourAround(pixels, iconArea.translated(-ring.topLeft())))
                    return colour;
            }
        }
        if (parent == tree->root)
            return std::nullopt;
        window = parent;
    }
    return std::nullopt;
}

} // namespace quelmo
