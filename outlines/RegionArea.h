// SPDX-License-Identifier: MIT

// RegionArea: the area of the region that an outline with curves bounds by either fill rule.
//
// SignedArea() (Moments.h) counts each point as often as the outline winds around it, and is off
// by rounding only. It is the area of the region for outlines that don't overlap themselves, all
// contours running the same way and holes the other way. Choose RegionArea() for all others, or
// where that isn't known.

#ifndef TRAMMEL_REGIONAREA_H
#define TRAMMEL_REGIONAREA_H

#include "CPath.h"
#include "FillRule.h"
#include "TrammelExport.h"

namespace trammel {

/// An area, and how far from the truth it is at most.
struct TRAMMEL_API AreaWithin {
    double area = 0.0;  ///< of degree 2 in the coordinate unit, never negative
    double error = 0.0; ///< the same unit
};

/// Returns the area of the points that the path's contours contain by `rule`. Winding.h says what
/// the contours of a path are. 0 for an empty path.
///
/// Let L be the length of the closed control polygons, and D the greatest extent of their bounds in
/// h or v. The area is off by no more than `error`, which contains a bound of 2^-42 L D for the
/// rounding. Beyond that, `error` is at most `accuracy`, or 2^-44 L D if that is more, except where
/// outlines run so close beside each other that the work would exceed the cost below. There, too,
/// `error` is the bound that is kept. Where contours do not come near each other or themselves,
/// only the rounding is left, whatever the accuracy.
///
/// A contour with a NaN or infinite coordinate is absent. An accuracy of 0, below, or NaN asks for
/// the finest. Results beyond the range of double are infinite or lose digits.
///
/// Cost: O(m log m) for m pieces of curves, plus RemoveOverlap() of 3 m edges. Curves that are
/// apart from all others take two pieces or so. A crossing takes some more for each digit asked
/// for. There are at most 2^17 pieces, or 8 for each curve if that is more. Throws std::bad_alloc.
/// Safe from any thread.
///
/// Source: each convex piece becomes three chords that bound the same area and stay within the hull
/// of its control points. Where no other part of the outline reaches into the hull, the area of the
/// region stays the same. Other hulls are halved, and the sum of their areas bounds the error.
TRAMMEL_API AreaWithin RegionArea(CPath const& path, FillRule rule, double accuracy);

} // namespace trammel

#endif
