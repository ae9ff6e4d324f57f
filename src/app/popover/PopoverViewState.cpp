#include "app/popover/PopoverViewState.h"

namespace quelmo {

void PopoverViewState::setExpanded(const QStringList& sections) {
    if (sections == expanded_)
        return;
    expanded_ = sections;
    emit expandedChanged();
}

void PopoverViewState::setShowCriteria(bool shown) {
    if (shown == showCriteria_)
        return;
    showCriteria_ = shown;
    emit showCriteriaChanged();
}

} // namespace quelmo
