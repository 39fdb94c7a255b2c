// SPDX-License-Identifier: MIT

// How far vertices have to be apart so that cutting edges cannot make them meet anew. Not
// installed.

#ifndef TRAMMEL_CLEARANCES_P_H
#define TRAMMEL_CLEARANCES_P_H

#include "Grid_p.h"
#include "Lines_p.h"
#include "Predicates_p.h"

#include <algorithm>
#include <cstdint>

namespace trammel_detail {

/// Returns |dx| + |dy| of an edge, which is at least its length.
inline std::int64_t LengthBound(GridEdge const& e) {
    return (e.b.x > e.a.x ? e.b.x - e.a.x : e.a.x - e.b.x) +
           (e.b.y > e.a.y ? e.b.y - e.a.y : e.a.y - e.b.y);
}

/// Tells which parts of cut edges need no second look. All lengths are in steps of the grid.
///
/// A cut's rounding moves it by half of the doubles' spacing and a step of the grid, in x and in y.
/// So all parts of an edge stay within R of it, where R is 5 times the largest spacing. Where parts
/// of two edges e and f have a point in common, both edges pass that point within R. Hence:
///
/// 1. Edges that are more than 2 R apart do not meet.
///
/// 2. Let e and f cross at P with an angle of t. Points within R of both lie within 2 R / sin t of
/// P. Suppose that the next vertices on both are at least 9 R / sin t from P. Then only the parts
/// that end at P come so near, because the others stay R less than that away. A part deviates from
/// the direction of its edge by at most asin(2 R / (9 R / sin t - 2 R)) < t / 2. Therefore the
/// parts have only their end at P in common.
///
/// 3. The same holds where P is the vertex between edges that follow each other. If these make an
/// obtuse angle, it holds as for a right one.
///
/// 4. Let e and f not meet, and an end of one lie within 2 R of the other's line. Points within R
/// of both lie within 4 R / sin t of that end.
///
/// 5. All points within R of f lie in f's box, widened by R. So those of e lie no farther along e
/// than that box, whatever the angle is.
///
/// Distances between rounded vertices are up to 2 R less than those above, and sin t <= 1. So
/// 11 R / sin t is enough, and 12 leaves room for the rounding of doubles. A part is checked again
/// if it lies within that distance of such a point and the next vertices do not keep it.
class Clearances {
public:
    explicit Clearances(ClipGrid const& grid) {
        GridPoint const spacing = grid.LargestSpacing();
        std::int64_t const largest = std::max(spacing.x, spacing.y);
        // Products of greater ones might not fit.
        mUsable = largest < std::int64_t{1} << 37;
        mReach = mUsable ? 5 * largest : 0;
    }

    /// False on grids with so few doubles that all parts need a second look.
    bool Usable() const { return mUsable; }
    /// Returns R.
    std::int64_t Reach() const { return mReach; }

    /// True when an edge is more than 2 R from two points on the same side of it, where `a` and `b`
    /// are Cross() of the edge and each point.
    bool Apart(GridEdge const& e, Int128 a, Int128 b) const {
        Int128 const limit = static_cast<Int128>(2 * mReach) * LengthBound(e);
        return (a > limit && b > limit) || (a < -limit && b < -limit);
    }

    /// Returns at least 12 R / sin t for the angle t between two edges of these LengthBound().
    /// `product` is the cross product of their directions; its sign does not matter.
    std::int64_t For(std::int64_t lengthE, std::int64_t lengthF, Int128 product) const {
        // The upper half of the product, so the quotient errs upward.
        auto const high = static_cast<std::int64_t>((product < 0 ? -product : product) >> 64);
        double const clearance = 12.0 * static_cast<double>(mReach) * static_cast<double>(lengthE) *
                                 (static_cast<double>(lengthF) * 0x1p-64) /
                                 static_cast<double>(high);
        return clearance < 0x1p62 ? static_cast<std::int64_t>(clearance) + 1 : kUnreachable;
    }

    /// Returns the distance from p along edge e, whose axis is given, within which parts of e can
    /// meet parts of edge f. It is `clearance` or less.
    std::int64_t Within(std::int64_t clearance, GridPoint p, MajorAxis const& axis,
                        GridEdge const& f) const {
        std::int64_t const a = axis.Along(f.a) - axis.Along(p);
        std::int64_t const b = axis.Along(f.b) - axis.Along(p);
        return std::min(clearance, std::max({a, -a, b, -b}) + 2 * mReach);
    }

    /// Returns the same for edges that follow each other, e before f.
    std::int64_t ForCorner(GridEdge const& e, GridEdge const& f) const {
        return SameDirection(e.b, e.a, f.b)
                   ? For(LengthBound(e), LengthBound(f), Cross(e.a, e.b, f.b))
                   : 12 * mReach;
    }

private:
    static constexpr std::int64_t kUnreachable = std::int64_t{1} << 62;

    std::int64_t mReach;
    bool mUsable;
};

} // namespace trammel_detail

#endif
