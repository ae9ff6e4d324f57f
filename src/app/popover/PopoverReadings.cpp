#include "app/popover/PopoverReadings.h"

namespace quelmo {

void PopoverReadings::setValues(const Readings& values) {
    if (values == values_)
        return;
    values_ = values;
    emit changed();
}

} // namespace quelmo
