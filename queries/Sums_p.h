// SPDX-License-Identifier: MIT

// The search in sums of lengths. Not installed.

#ifndef TRAMMEL_SUMS_P_H
#define TRAMMEL_SUMS_P_H

#include <algorithm>
#include <cstddef>

namespace trammel_detail {

/// Returns the index of the first of `count` numbers in order that is not less than `target`.
/// Returns `count` when there is none, and for a NaN.
inline std::size_t FirstNotLess(double const* sums, std::size_t count, double target) {
    std::size_t first = 0;
    while (count > 0) {
        std::size_t const half = count / 2;
        if (target <= sums[first + half]) {
            count = half;
        } else {
            first += half + 1;
            count -= half + 1;
        }
    }
    return first;
}

/// The same; the search begins at `hint`. It takes O(log d) where the number is d places behind it,
/// and the time of a search in all numbers where it is before it.
inline std::size_t FirstNotLess(double const* sums, std::size_t count, double target,
                                std::size_t hint) {
    if (hint == 0 || hint >= count || target <= sums[hint - 1]) {
        return FirstNotLess(sums, count, target);
    }
    // Ever longer steps lead on from there, until one is too long.
    std::size_t first = hint;
    std::size_t step = 1;
    while (step < count - first && !(target <= sums[first + step - 1])) {
        first += step;
        step *= 2;
    }
    return first + FirstNotLess(sums + first, std::min(step, count - first), target);
}

} // namespace trammel_detail

#endif
