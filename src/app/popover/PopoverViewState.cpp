#include "app/popover/PopoverViewState.h"

#include <utility>

namespace quelmo {

void PopoverViewState::setExpanded(const QStringList& sections) {
    if (std::exchange(expanded_, sections) != sections)
        emit expandedChanged();
}

void PopoverViewState::setShowCriteria(bool shown) {
    if (std::exchange(showCriteria_, shown) != shown)
        emit showCriteriaChanged();
}

} // namespace quelmo
