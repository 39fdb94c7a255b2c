// SPDX-License-Identifier: MIT

// Tracer: follows one outline by arc length, for many positions on the same outline. The segments
// are measured once; each position then costs a binary search and one curve.

#ifndef TRAMMEL_APP_TRACER_H
#define TRAMMEL_APP_TRACER_H

#include <trammel/CBezier.h>
#include <trammel/CPath.h>
#include <trammel/TPoint.h>

#include <vector>

namespace tool {

/// A position on an outline.
struct Station {
    TPoint<double> point;
    TPoint<double> direction; ///< in which the outline goes on from there; of length 1
};

/// An outline with the lengths of its segments.
class Tracer {
public:
    explicit Tracer(CPath const& path);

    /// The total length, the same as the path's.
    double Length() const { return mEnds.empty() ? 0.0 : mEnds.back(); }

    /// The station at `distance` from the start, limited to the outline's length; precondition: the
    /// length is above 0. The point is the one that CPath::TPt finds. The direction is that of the
    /// two control points next to it when the curve is divided there, of a line its own; at a
    /// corner it is that of the segment which ends there.
    Station At(double distance) const;

private:
    std::vector<CBezier> mSegments; ///< those with length; a line as a curve with its ends doubled
    std::vector<bool> mIsCurve;
    std::vector<double> mEnds; ///< length from the start to the end of each segment
};

} // namespace tool

#endif
