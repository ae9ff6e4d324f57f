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

} // namespace quelmo
