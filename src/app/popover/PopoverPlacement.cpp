#include "app/popover/PopoverPlacement.h"

#include <algorithm>

namespace quelmo {

namespace {

// Clamps a span of `length` starting at `start` into [low, high]; when it cannot fit, the low
// edge wins so the popover's top-left (its header) stays visible.
int clampSpan(int start, int length, int low, int high) {
    return std::max(low, std::min(start, high - length + 1));
}

} // namespace

QRect popoverGeometry(QPoint anchor, QSize size, const QRect& available) {
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

} // namespace quelmo
