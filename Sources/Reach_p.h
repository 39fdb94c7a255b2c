// SPDX-License-Identifier: MIT

// How near to a point a segment can come, for searches that leave out distant segments. Not
// installed.

#ifndef TRAMMEL_REACH_P_H
#define TRAMMEL_REACH_P_H

#include "Box_p.h"
#include "PointMath_p.h"
#include "TPoint.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace trammel_detail {

/// The step of the parameter to which the nearest point on a curve of a path is searched.
inline constexpr double kNearestTolerance = 0.001;

/// Returns a box that holds every point of a segment that a search for the nearest one may compute.
///
/// `points` are the segment's control points and `count` is 1 or more. On a curve the search
/// computes the points at parameters from 0 to 1, on a line TLine::TPt at TLine::FindTValue of any
/// point.
///
/// Rounding may lead such a point out of the box of the control points, so the box is a little
/// wider. By the standard model of rounding (Higham, "Accuracy and Stability of Numerical
/// Algorithms", section 2.2), let u = 2^-53 and M a bound on the magnitudes of the coordinates.
/// Terms of order u² and of underflow (below 2^-1000 in all) are covered by the slack at the end.
///
///   interpolation  a + (b - a)t with t in [0, 1]: the difference is off by at most 2uM, the
///                  product by 2uM more, the sum by uM. The point is at most 5uM beyond the box of
///                  a and b.
///   curve          Three interpolations follow on each other, each within the box of the one
///                  before: 15uM.
///   line           The pinned foot lies in the box. So its differences from the start are no
///                  greater than the line's, in each direction, rounded or not. The quotient of the
///                  lengths is at most 1 + 9u, as each hypot is off by at most 4u and the division
///                  by u. Where the lengths are so small that hypot's error is absolute, so is the
///                  point's error. The point is at most 9u 2M + 5uM = 23uM beyond the box.
///
/// The slack is 2^-45 S with S the sum of all the magnitudes, S >= M. That is eleven times as much,
/// which leaves room for the rounding of the edges. A segment with a NaN, an infinite or an
/// absurdly large coordinate (2^500) has the whole plane for its box.
inline Box<double> ReachOf(TPoint<double> const* points, std::size_t count) {
    double size = 0.0;
    Box<double> box = {points[0].h, points[0].v, points[0].h, points[0].v};
    for (std::size_t i = 0; i < count; ++i) {
        size += Taxicab(points[i]);
        box.Include(points[i].h, points[i].v);
    }
    if (!(size <= 0x1p500)) { // also for a NaN
        return Box<double>::Everything();
    }
    double const slack = 0x1p-45 * size;
    return box.Widened(slack, slack);
}

/// Returns the square of the distance from `p` to the box, in plain double arithmetic; 0 inside.
/// NearestLimit leaves room for its rounding: compare with that.
inline double SquaredDistance(Box<double> const& box, TPoint<double> const& p) {
    double const h = std::max(0.0, std::max(box.lowX - p.h, p.h - box.highX));
    double const v = std::max(0.0, std::max(box.lowY - p.v, p.v - box.highY));
    return h * h + v * v;
}

/// Returns the limit for SquaredDistance that belongs to the distance `best`: a box beyond it holds
/// nothing that is as near as `best`.
///
/// Rounding is monotone. So the computed differences of p from a point in the box are no smaller
/// than those from the box. Their hypot is at least the box's distance less 4u of it. The
/// squares and their sum take 3u, twice, and the square of `best` u. That is less than 2^-40 in
/// all, unless they underflow. So nothing is left out at distances below 2^-450, nor for bests so
/// large that their square could overflow.
inline double NearestLimit(double best) {
    if (best <= 0x1p500) {
        return std::max(best * best * (1.0 + 0x1p-40), 0x1p-900);
    }
    return std::numeric_limits<double>::infinity();
}

} // namespace trammel_detail

#endif
