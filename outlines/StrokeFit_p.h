// SPDX-License-Identifier: MIT

// Strokes as few lines and cubics within a distance. Not installed.

#ifndef TRAMMEL_STROKEFIT_P_H
#define TRAMMEL_STROKEFIT_P_H

#include "Cubic_p.h"
#include "StrokeMatch_p.h"
#include "TPoint.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// A line or a cubic in place of a run of points.
struct FittedPiece {
    Cubic points; ///< of a line only the first and the last one count
    bool isLine;
    std::size_t to;           ///< the run's last point
    double distance;          ///< that is kept
    TPoint<double> direction; ///< in which the stroke goes on; (0, 0) where it may turn
};

/// How a stroke begins that goes on from pieces that are finished.
struct StrokeStart {
    bool goesOn = false;
    TPoint<double> point;     ///< where it goes on
    TPoint<double> direction; ///< (0, 0) where it may turn
};

/// What a fit is to keep.
struct FitLimits {
    double tolerance; ///< 0 or more
    double cosine;    ///< of the angle of corners
    double greatest;  ///< no coordinate of a curve is greater
};

/// Appends the pieces of a stroke to `out`, from its first point to its last one. Points that
/// follow each other are distinct and finite, and so are squares of squares of their differences.
/// Of a closed stroke the last point is the first one. O(n).
void FitStroke(StrokePoints const& stroke, FitLimits const& limits, bool closed,
               StrokeStart const& start, std::vector<FittedPiece>& out);

} // namespace trammel_detail

#endif
