// SPDX-License-Identifier: MIT

// How near to a point a segment can come, for searches that leave out what is too far. Not
// installed.

#ifndef TRAMMEL_REACH_P_H
#define TRAMMEL_REACH_P_H

#include "TPoint.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace trammel_detail {

/// A box that holds every point of a segment that a search for the nearest one may compute: the
/// points of a curve at parameters from 0 to 1, or TLine::TPt at TLine::FindTValue of any point.
///
/// It is the box of the segment's points and a little more, as rounding leads out of it. By the
/// standard model of rounding (Higham, "Accuracy and Stability of Numerical Algorithms", section
/// 2.2) with u = 2^-53, M a bound on the magnitudes of the coordinates, and terms of order u² and
/// of underflow (below 2^-1000 in all) covered by the slack at the end:
///
///   interpolation  a + (b - a)t with t in [0, 1]: the difference is off by at most 2uM, the
///   product
///                  by 2uM more, the sum by uM. 5uM beyond the box of a and b.
///   curve          three interpolations on top of each other, each within the box of the one
///                  before: 15uM.
///   line           the pinned foot lies in the box, so its differences from the start are no
///                  greater than the line's own, in each direction, rounded or not. The quotient of
///                  the two lengths, each with hypot's error of at most 4u, and the division's u
///                  is at most 1 + 9u. Where the lengths are so small that hypot's error is
///                  absolute, so is that of the point. The point is at most 9u 2M + 5uM = 23uM
///                  beyond the box.
///
/// The slack is 2^-45 S with S the sum of all the magnitudes, S >= M: eleven times that, which
/// leaves room for the rounding of the edges. A segment with a NaN, an infinite or an absurdly
/// large coordinate (2^500) has the whole plane for its box.
struct Reach {
    double left;
    double top;
    double right;
    double bottom;

    /// The whole plane.
    Reach()
        : left(-std::numeric_limits<double>::infinity()), top(left), right(-left), bottom(right) {}

    /// Of the segment with the given points; `count` is 1 or more.
    Reach(TPoint<double> const* points, std::size_t count) : Reach() {
        double size = 0.0;
        TPoint<double> low = points[0];
        TPoint<double> high = points[0];
        for (std::size_t i = 0; i < count; ++i) {
            TPoint<double> const& p = points[i];
            size += std::abs(p.h) + std::abs(p.v);
            low.h = std::min(low.h, p.h);
            low.v = std::min(low.v, p.v);
            high.h = std::max(high.h, p.h);
            high.v = std::max(high.v, p.v);
        }
        if (size <= 0x1p500) { // false with a NaN
            double const slack = 0x1p-45 * size;
            left = low.h - slack;
            top = low.v - slack;
            right = high.h + slack;
            bottom = high.v + slack;
        }
    }

    /// Grows to hold `other`.
    void Add(Reach const& other) {
        left = std::min(left, other.left);
        top = std::min(top, other.top);
        right = std::max(right, other.right);
        bottom = std::max(bottom, other.bottom);
    }

    /// The square of the distance from `p` to the box, about; to be compared with a NearestLimit.
    double SquaredDistance(TPoint<double> const& p) const {
        double const h = std::max(0.0, std::max(left - p.h, p.h - right));
        double const v = std::max(0.0, std::max(top - p.v, p.v - bottom));
        return h * h + v * v;
    }
};

/// The squared distance beyond which a box holds nothing that is as near as `best`.
///
/// Rounding is monotone, so that of a point of the box the differences from p, as computed, are no
/// smaller than the box's, and its hypot is at least the box's distance but for 4u relative. The
/// squares and their sum take 3u, twice, the square of `best` u: less than 2^-40 in all, unless
/// they underflow. So nothing is left out at distances below 2^-450, nor for bests so large that
/// their square could overflow.
inline double NearestLimit(double best) {
    if (best <= 0x1p500) {
        return std::max(best * best * (1.0 + 0x1p-40), 0x1p-900);
    }
    return std::numeric_limits<double>::infinity();
}

} // namespace trammel_detail

#endif
