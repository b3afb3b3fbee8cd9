#pragma once
#include <cstddef>

namespace qirn {

/// Whether each row of a table stands at the place that its key, an enumerator, has in the enumeration, so that the
/// table is read by `rows[key]`. For a static_assert beside the table.
template <class Rows, class Row, class Key> constexpr bool isInOrder(const Rows& rows, Key Row::*key) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].*key != static_cast<Key>(i)) return false;
    }
    return true;
}

} // namespace qirn
