// SPDX-License-Identifier: MIT

// Winding: how often an outline runs around a point, and whether it contains the point.
//
// The polygons' own Contains counts by the even-odd rule, puts points on left edges outside, and
// treats vertices at the origin in its own way. Choose these functions for outlines with curves,
// for the nonzero rule, and where no point may be an exception.
//
// An outline bounds a region by its contours. A contour begins with a move, or where drawing goes
// on after a close, and ends before the next move, or with a close. A straight line from its end to
// its beginning closes it, drawn or not. Before any move, drawing begins at (0, 0).
//
// Winding numbers are positive where the contour runs from the +h direction toward +v, which is
// clockwise where v points down.
//
// They are exact for an outline whose segments are moved a little. Let D be the greatest difference
// in h or in v of a segment's control points from the point asked about. The segment is moved by at
// most 2^-47 D. So a point that is nearer to the outline gets the winding number of one of the
// sides. The bound does not grow with the distance of the drawing from the origin, which is a point
// like any other.
//
// A contour with a NaN or infinite coordinate is absent. The winding number around a point with
// such a coordinate is 0. No call allocates, throws, or uses shared state: all are safe from any
// thread.
//
// For many points and one outline, choose PreparedOutline.
//
// Source: the crossings of the outline with a ray are counted. The convex hull property tells the
// crossings of most curves; the others are halved [Farin, Curves and Surfaces for CAGD].

#ifndef TRAMMEL_WINDING_H
#define TRAMMEL_WINDING_H

#include "CFPolygonRef.h"
#include "CPath.h"
#include "FillRule.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TrammelExport.h"

#include <vector>

namespace trammel {

/// Returns how often the path's contours run around `p` in all.
///
/// O(n): two comparisons for most segments, and a few products for most whose control points
/// surround `p`. A curve is halved where `p` lies between its control points along the chord. It
/// takes some 50 halvings for each time that it passes through `p`, which is three times at most.
TRAMMEL_API int WindingNumber(CPath const& path, TPoint<double> const& p) noexcept;
/// Returns the winding number of the closed polygon, whether it is marked as closed or not. O(n).
TRAMMEL_API int WindingNumber(TPolygon<double> const& polygon, TPoint<double> const& p) noexcept;
/// Returns the winding number of the closed handle polygon, whether it is marked as closed or not;
/// 0 for a null reference. O(n).
TRAMMEL_API int WindingNumber(CFPolygonRef const& polygon, TPoint<double> const& p) noexcept;
/// Returns the winding number of the closed ring of these vertices. O(n).
TRAMMEL_API int WindingNumber(std::vector<TPoint<double>> const& ring,
                              TPoint<double> const& p) noexcept;

/// True when `p` lies in the region that the outline (a path, either kind of polygon or a ring)
/// bounds by `rule`. A point on the outline is on either side.
template <class Outline>
bool Contains(Outline const& outline, TPoint<double> const& p, FillRule rule) noexcept {
    return IsInside(WindingNumber(outline, p), rule);
}

} // namespace trammel

#endif
