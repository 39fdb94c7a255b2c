// SPDX-License-Identifier: MIT

// A rectangle as its least and its greatest coordinates, for every kind of number. Not installed.
//
// Two differences from TRect: a new box is empty instead of being the point (0, 0), and the edges
// always belong to it. Everything is inline and holds no more than four numbers.

#ifndef TRAMMEL_BOX_P_H
#define TRAMMEL_BOX_P_H

#include <algorithm>
#include <limits>

namespace trammel_detail {

/// A box with its edges; x stands for the first coordinate (h) and y for the second one (v).
///
/// A new box is empty: its low numbers are the greatest that there are, its high ones the least.
/// A NaN that is included changes nothing, and a NaN is in no box.
template <class Number> struct Box {
    typedef std::numeric_limits<Number> Limits;
    static constexpr Number kLeast =
        Limits::has_infinity ? static_cast<Number>(-Limits::infinity()) : Limits::lowest();
    static constexpr Number kGreatest = Limits::has_infinity ? Limits::infinity() : Limits::max();

    Number lowX = kGreatest;
    Number lowY = kGreatest;
    Number highX = kLeast;
    Number highY = kLeast;

    /// The box of everything there is.
    static constexpr Box Everything() { return {kLeast, kLeast, kGreatest, kGreatest}; }
    /// The box of two points.
    static constexpr Box Of(Number x0, Number y0, Number x1, Number y1) {
        return {std::min(x0, x1), std::min(y0, y1), std::max(x0, x1), std::max(y0, y1)};
    }

    /// Grows to hold the point.
    constexpr void Include(Number x, Number y) {
        lowX = std::min(lowX, x);
        lowY = std::min(lowY, y);
        highX = std::max(highX, x);
        highY = std::max(highY, y);
    }
    /// Grows to hold the other box.
    constexpr void Include(Box const& b) {
        lowX = std::min(lowX, b.lowX);
        lowY = std::min(lowY, b.lowY);
        highX = std::max(highX, b.highX);
        highY = std::max(highY, b.highY);
    }
    /// The box with its sides moved outward by `x` and `y`.
    constexpr Box Widened(Number x, Number y) const {
        return {lowX - x, lowY - y, highX + x, highY + y};
    }

    /// True when the box has width and height.
    constexpr bool HasArea() const { return lowX < highX && lowY < highY; }
    constexpr bool Contains(Number x, Number y) const {
        return lowX <= x && x <= highX && lowY <= y && y <= highY;
    }
    /// True when the two have a point in common. Without branches, as a processor cannot foresee
    /// which of the four comparisons fails.
    constexpr bool Meets(Box const& b) const {
        return (static_cast<int>(lowX <= b.highX) & static_cast<int>(b.lowX <= highX) &
                static_cast<int>(lowY <= b.highY) & static_cast<int>(b.lowY <= highY)) != 0;
    }
};

} // namespace trammel_detail

#endif
