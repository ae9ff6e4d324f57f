#include "app/popover/PopoverPlacement.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace quelmo {

namespace {

// Clamps a span of `length` starting at `start` into [low, high]; when it cannot fit, the low
// edge wins so the popover's top-left (its header) stays visible.
int clampSpan(int start, int length, int low, int high) {
    return std::max(low, std::min(start, high - length + 1));
}

} // namespace

QRect popoverGeometry(QPoint anchor, QSize size, const QRect& available) {
    // The point may come from another program: far enough out that no sum below overflows.
    constexpr int farthest = 1 << 24;
    anchor = {std::clamp(anchor.x(), -farthest, farthest),
              std::clamp(anchor.y(), -farthest, farthest)};
    const int width = size.width();
    const int height = size.height();

    int x = anchor.x() - width / 2;
    x = clampSpan(x, width, available.left(), available.right());

    int y = std::max(anchor.y() + popoverAnchorGap, available.top());
    if (y + height - 1 > available.bottom()) {
        const int above = std::min(anchor.y(), available.bottom() + 1) - popoverAnchorGap - height;
        y = above >= available.top() ? above : y;
    }
    y = clampSpan(y, height, available.top(), available.bottom());
    return {x, y, width, height};
}

QRect PopoverFrame::contentArea(int height) const {
    const int shown = std::min(height, window.height());
    return {0, contentAtBottom ? window.height() - shown : 0, window.width(), shown};
}

PopoverFrame popoverFrame(QPoint anchor, int width, int contentHeight, int maxHeight,
                          const QRect& available) {
    const QRect content = popoverGeometry(anchor, QSize(width, contentHeight), available);
    const int tallest = std::max(maxHeight, contentHeight);
    if (content.top() >= anchor.y() || content.top() == available.top()) {
        const int height =
            std::max(contentHeight, std::min(tallest, available.bottom() + 1 - content.top()));
        return {QRect(content.left(), content.top(), width, height), false};
    }
    const int top =
        std::min(content.top(), std::max(available.top(), content.bottom() + 1 - tallest));
    return {QRect(content.left(), top, width, content.bottom() + 1 - top), true};
}

namespace {

QRect deviceGeometry(const ScreenSpace& screen) {
    const double ratio = screen.devicePixelRatio > 0 ? screen.devicePixelRatio : 1.0;
    return {screen.geometry.topLeft(),
            QSize(static_cast<int>(std::lround(screen.geometry.width() * ratio)),
                  static_cast<int>(std::lround(screen.geometry.height() * ratio)))};
}

double ratioOf(const ScreenSpace& screen) {
    return screen.devicePixelRatio > 0 ? screen.devicePixelRatio : 1.0;
}

bool onAnyScreen(QPoint logical, const QList<ScreenSpace>& screens) {
    return std::any_of(screens.begin(), screens.end(),
                       [&](const ScreenSpace& s) { return s.geometry.contains(logical); });
}

} // namespace

std::optional<QPoint> logicalFromDevice(QPoint device, const QList<ScreenSpace>& screens) {
    for (const ScreenSpace& screen : screens) {
        if (!deviceGeometry(screen).contains(device))
            continue;
        const QPoint origin = screen.geometry.topLeft();
        const QPointF offset = QPointF(device - origin) / ratioOf(screen);
        return origin + QPoint(static_cast<int>(std::floor(offset.x())),
                               static_cast<int>(std::floor(offset.y())));
    }
    return std::nullopt;
}

QPoint deviceFromLogical(QPoint logical, const QList<ScreenSpace>& screens) {
    for (const ScreenSpace& screen : screens) {
        if (!screen.geometry.contains(logical))
            continue;
        const QPoint origin = screen.geometry.topLeft();
        const QPointF offset = QPointF(logical - origin) * ratioOf(screen);
        return origin + QPoint(static_cast<int>(std::lround(offset.x())),
                               static_cast<int>(std::lround(offset.y())));
    }
    return logical;
}

QPoint itemAnchor(const QRect& item, const QList<ScreenSpace>& screens) {
    const auto screen = std::find_if(screens.begin(), screens.end(), [&](const ScreenSpace& s) {
        return s.geometry.contains(item.center());
    });
    const bool lowerHalf =
        screen != screens.end() && item.center().y() > screen->geometry.center().y();
    return {item.center().x(), lowerHalf ? item.top() : item.bottom()};
}

QPoint clickAnchor(QPoint reported, std::optional<QPoint> pointer, std::optional<QRect> item,
                   const QList<ScreenSpace>& screens) {
    const std::optional<QPoint> point = logicalFromDevice(reported, screens);
    const bool pointerKnown = pointer && onAnyScreen(*pointer, screens);
    if (point && pointerKnown && std::abs(point->x() - pointer->x()) <= clickPointReach &&
        std::abs(point->y() - pointer->y()) <= clickPointReach)
        return *point;
    if (pointerKnown)
        return *pointer;
    if (item && item->isValid())
        return itemAnchor(*item, screens);
    return point.value_or(reported);
}

} // namespace quelmo
