#pragma once

#include <QQuickPaintedItem>

namespace quelmo {

// For the setters of painted items: sets `field` and, when the value is new, repaints `item` and
// calls `changed` (which emits the property's signal).
template <typename T, typename Changed>
void setAndRepaint(QQuickPaintedItem& item, T& field, const T& value, Changed changed) {
    if (field == value)
        return;
    field = value;
    item.update();
    changed();
}

} // namespace quelmo
