// SPDX-License-Identifier: MIT

// Outlines as runs of cubic curves, and the sides on which they pass each other where they meet.
// Not installed.

#ifndef TRAMMEL_OUTLINEMEETS_P_H
#define TRAMMEL_OUTLINEMEETS_P_H

#include "CBezier.h"
#include "Cubic_p.h"
#include "TLine.h"
#include "TPoint.h"

#include <array>
#include <cstddef>
#include <limits>
#include <vector>

namespace trammel_detail {

/// A segment of an outline, or a part of one.
struct OutlineSegment {
    static constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

    Cubic c;
    std::size_t element = 0; ///< the index of the path's element
    double from = 0.0;       ///< the parameters on the element
    double to = 1.0;
    std::size_t before = kNone; ///< the index of the segment before it, none at an open end
    std::size_t after = kNone;  ///< the index of the segment after it
    bool straight = false;      ///< true for a line of even speed

    double ParameterAt(double t) const { return t == 1.0 ? to : from + (to - from) * t; }
};

inline Cubic CubicOf(CBezier const& c) { return {c.P0, c.P1, c.P2, c.P3}; }
/// Returns the line as a cubic with even speed. The control points are off by rounding.
inline Cubic CubicOf(TLine<double> const& line) {
    // The terms are thirds, as the sum of coordinates might overflow.
    TPoint<double> const start = line.mStart / 3.0;
    TPoint<double> const end = line.mEnd / 3.0;
    return {line.mStart, start * 2.0 + end, start + end * 2.0, line.mEnd};
}

/// The parameters between 0 and 1 at which a curve turns back.
struct TurnsOfCubic {
    std::array<double, 2> t; ///< the first `count` of them, in rising order
    std::size_t count;
};

/// Returns where a curve turns back along its chord, or along an arm where it ends as it begins. A
/// part between two turns does not cross itself.
TurnsOfCubic TurnsOf(Cubic const& c);

/// True when a curve turns back and is straight within `accuracy`, or within rounding. It then
/// meets another one in more than one stretch at a place.
bool RunsBackAlongItself(Cubic const& c, double accuracy);

/// A stretch of an outline.
struct OutlineRun {
    OutlineSegment const* segments; ///< of the whole outline
    std::size_t first;              ///< the index of the segment where the stretch begins
    double firstT;                  ///< and its parameter there
    std::size_t last;               ///< the same for its end
    double lastT;
};

/// Whether two outlines pass from one side of each other to the other.
enum class Passing {
    kCross, ///< they do
    kTouch, ///< they keep their sides
    kEnd,   ///< an outline begins or ends in the place
};

/// Tells how two outlines pass each other at a place. Each run is the stretch in which they are
/// within `accuracy` of each other.
///
/// The four branches that leave the place are followed to a circle around it. There, branches of
/// different outlines are farther apart than the accuracy. The circle is at most some thousand
/// times as large as the place. The order of the branches on it decides.
Passing HowTheyPass(OutlineRun const& a, OutlineRun const& b, double accuracy);

/// A long place as one of two outlines sees it.
struct CommonRun {
    OutlineRun all;
    OutlineRun
        common; ///< from the beginning of the first stretch along which the outlines coincide
    bool firstAgainst; ///< whether the outlines run against each other at the beginning of that
    bool lastAgainst;  ///< and at its end
    bool whole;        ///< whether `all` goes around a closed outline

    /// True where the other outline leaves at the end where it has come, or this one does.
    bool TurnsBack() const { return firstAgainst != lastAgainst; }
};

/// The same for a place in which the outlines coincide along a stretch. The branches at either end
/// of it are compared with the way between.
Passing HowTheyPassAlong(CommonRun const& a, CommonRun const& b, double accuracy);

/// How two stretches of outlines cross each other, all their places taken together.
struct RunCrossings {
    Passing passing; ///< kCross for an odd number of crossings, kTouch for an even one
    OutlineRun a;    ///< the stretches that were compared: a little longer than the place
    OutlineRun b;
};

/// Tells how the outlines cross in a place, and in others that lie between its ends on both
/// outlines. It does not matter how the outlines run to and fro there. Returns false where there
/// are other places wherever the stretches might end. O(n) for n segments.
bool CrossingsOfRuns(CommonRun const& a, CommonRun const& b, double accuracy, RunCrossings& found);

} // namespace trammel_detail

namespace trammel {

struct Intersection;

/// Appends the places where two curves meet, each taken as an outline that is divided where it runs
/// back along itself.
double AppendIntersectionsAsOutlines(CBezier const& a, CBezier const& b, double accuracy,
                                     std::vector<Intersection>& out);

} // namespace trammel

#endif
