// SPDX-License-Identifier: MIT

// Sorting of few values, which takes less than the library's sort does. Not installed.

#ifndef TRAMMEL_SORTFEW_P_H
#define TRAMMEL_SORTFEW_P_H

#include <algorithm>
#include <cstddef>

namespace trammel_detail {

/// Sorts values by inserting one after the other. Takes few steps where few are out of place, and
/// the square of their number at worst. Equal ones keep their order.
template <class Value, class Before> void SortByInsertion(Value* begin, Value* end, Before before) {
    if (end - begin < 2) {
        return;
    }
    for (Value* i = begin + 1; i < end; ++i) {
        if (before(*i, i[-1])) {
            Value const value = *i;
            Value* to = i;
            do {
                *to = to[-1];
                --to;
            } while (to > begin && before(value, to[-1]));
            *to = value;
        }
    }
}

/// Sorts any number of values, which are mostly few. Equal ones may come in any order.
template <class Value, class Before> void SortFew(Value* begin, Value* end, Before before) {
    constexpr std::ptrdiff_t kFew = 16;
    if (end - begin <= kFew) {
        SortByInsertion(begin, end, before);
    } else {
        std::sort(begin, end, before);
    }
}

} // namespace trammel_detail

#endif
