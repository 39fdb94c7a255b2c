// SPDX-License-Identifier: MIT

// The corners and straight runs of a stroke, and its course at a point. Not installed.

#ifndef TRAMMEL_STROKESHAPE_P_H
#define TRAMMEL_STROKESHAPE_P_H

#include "StrokeMatch_p.h"
#include "TPoint.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// A stroke turns at a scale of so many tolerances.
constexpr double kCornerReach = 6.0;

/// Returns the points at which the stroke turns by an angle whose cosine is `cosine` or less, in
/// order. Neither end is among them.
///
/// The turn at a point is that between the directions to the points before and behind it at which
/// the stroke has gone away by kCornerReach tolerances. Of corners closer together than that, the
/// sharpest one counts. Of points as close as half a tolerance, the outermost one is it. With
/// `closed`, the last point is the first one, and its turn is told by `turnsAtStart`. O(n).
std::vector<std::size_t> FindCorners(StrokePoints const& stroke, double tolerance, double cosine,
                                     bool closed, bool& turnsAtStart);

/// A run of points along a line.
struct StraightRun {
    std::size_t from;
    std::size_t to;
};

/// Appends the runs between two points of the stroke that are straight where their neighbours are
/// bent. They lie within a quarter of the tolerance of their chord, are longer than 16 tolerances,
/// and four times as long as the runs of that straightness before and behind them. O(n).
void FindStraightRuns(StrokePoints const& stroke, std::size_t from, std::size_t to,
                      double tolerance, std::vector<StraightRun>& out);

/// Where a stroke is at a point, and its direction there.
struct Course {
    TPoint<double> point;
    TPoint<double> direction; ///< of length 1; (0, 0) where there is none
};

/// Returns the course at point `i` of a stroke, smoothed over the points from `low` to `high`.
///
/// The smoothed course is the polynomial of degree 3 in the length that is nearest to 17 of the
/// points by least squares, of lesser degree for fewer points. With `through` it passes through
/// point `i`. In a closed stroke, numbers beyond an end go on at the other one. O(1).
Course CourseAt(StrokePoints const& stroke, std::size_t i, std::ptrdiff_t low, std::ptrdiff_t high,
                bool through);

} // namespace trammel_detail

#endif
