// SPDX-License-Identifier: MIT

// Tracer: follows one outline by arc length, for many positions on it. It measures the segments
// once; each position then costs a binary search and one curve.

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
    TPoint<double> direction; ///< the direction in which the outline goes on, of length 1
};

/// An outline with the lengths of its segments.
class Tracer {
public:
    explicit Tracer(CPath const& path);

    /// Returns the total length, the same as the path's.
    double Length() const { return mEnds.empty() ? 0.0 : mEnds.back(); }

    /// Returns the station at `distance` from the start, limited to the outline's length.
    /// Precondition: the length is above 0. The point is the same as CPath::TPt finds. On a line
    /// the direction is the line's. A curve is divided at the point, and the two control points
    /// next to the division give the direction. At a corner the segment that ends there decides.
    Station At(double distance) const;

private:
    std::vector<CBezier> mSegments; ///< those with length; a line as a curve with its ends doubled
    std::vector<bool> mIsCurve;
    std::vector<double> mEnds; ///< length from the start to the end of each segment
};

} // namespace tool

#endif
