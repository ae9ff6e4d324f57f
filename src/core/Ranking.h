#pragma once

#include <QList>
#include <algorithm>
#include <limits>

namespace quelmo {

// Sorts `items` by `key`, highest first, keeping equal keys in their order (an item goes before
// another only when its key is strictly greater), then keeps at most `limit` of them.
template <typename T, typename Key>
void rankHighestFirst(QList<T>& items, Key key,
                      qsizetype limit = std::numeric_limits<qsizetype>::max()) {
    std::stable_sort(items.begin(), items.end(),
                     [&](const T& a, const T& b) { return key(a) > key(b); });
    if (items.size() > limit)
        items.resize(limit);
}

} // namespace quelmo
