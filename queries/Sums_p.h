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
    if (count == 0 || !(target <= sums[count - 1])) {
        return count;
    }
    // Without a branch that depends on the numbers: such branches would mostly be mispredicted.
    std::size_t first = 0;
    while (count > 1) {
        std::size_t const half = count / 2;
        first += sums[first + half - 1] < target ? half : 0;
        count -= half;
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
