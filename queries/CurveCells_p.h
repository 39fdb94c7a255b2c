// SPDX-License-Identifier: MIT

// The subdivision of two cubic curves into cells that hold at most one meeting each. Not installed.
//
// docs/intersections.md explains the tests of a cell, and why the subdivision ends.

#ifndef TRAMMEL_CURVECELLS_P_H
#define TRAMMEL_CURVECELLS_P_H

#include "Cubic_p.h"
#include "ShortList_p.h"
#include "TPoint.h"

namespace trammel_detail {

/// The least accuracy for which cells are found, beside the curves' extent. Rounding moves the
/// pieces of a curve by 2^-47 of the extent at most; accuracies leave room for this.
inline constexpr double kFinestCells = 0x1p-40;

/// What one cell has found: a stretch in which the curves A and B are near each other.
struct CurveEvent {
    double s0, s1; ///< on A; s0 <= s1
    double t0, t1; ///< on B, beside s0 and s1
    double s, t;   ///< the crossing, or any place of the stretch
    /// The side of B on which A lies before the stretch and after it, as of CurveMeet. Where
    /// several events begin or end at one place, the one with the greatest magnitude is right.
    double before;
    double after;
    bool crossing; ///< whether the curves cross at (s, t)
    bool nearest;  ///< whether (s, t) is the nearest place, or a crossing
};

/// The events of two curves, which are some tens where these touch.
typedef ShortList<CurveEvent, 8> CurveEvents;

/// Appends the events of two curves. Returns false where the work is more than is allowed; what was
/// appended is then of no use.
///
/// Requires finite points with coordinates between -2^101 and 2^101. `accuracy` is at least
/// kFinestCells times the greatest difference of two coordinates, and more than 2^-140.
bool FindCurveEvents(Cubic const& a, Cubic const& b, double accuracy, CurveEvents& events);

/// Returns the parameter near `t` at which a curve is the nearest to a point, by Newton's method
/// between `low` and `high`. The place there is not farther than the place at `t`.
double FootOn(Cubic const& c, TPoint<double> const& p, double t, double low, double high);

} // namespace trammel_detail

#endif
