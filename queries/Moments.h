// SPDX-License-Identifier: MIT

// Moments: area, centroid and second moments of the region that an outline bounds.
//
// The integrals are over the region with each point counted as often as the outline winds around it
// (see Winding.h, which also says what the contours of a path are). For outlines that don't overlap
// themselves, all contours running the same way and holes the other way, that is the region itself.
// Areas are positive where a contour runs from the +h direction toward +v, which is clockwise where
// v points down: the sign is the contour's orientation.
//
// The functions integrate the polynomials of the curves exactly, so that only rounding is left. L
// is the length of the closed control polygons, and D the greatest extent of their bounds in h or
// v. An area is off by at most 2^-46 L D. Where no winding number is of the other sign, the true
// centroid lies within the bounds. Suppose also that the area is at least 2^-44 L D. Then the
// centroid times the area is off by at most 2^-45 L D², and the second moments are off by at most
// 2^-43 L D³. Thinner regions have no such bound, because the area divides the centroid. The bounds
// do not grow with the distance from the origin. Far from there, the centroid is also rounded like
// any coordinate. Results below the least normal double lose digits, down to 0. All others keep the
// bounds, however large or small the outline is.
//
// A NaN or infinite coordinate makes the results NaN or infinite, as do results beyond the range of
// double. No call uses shared state: all are safe from any thread. Source: Green's theorem.

#ifndef TRAMMEL_MOMENTS_H
#define TRAMMEL_MOMENTS_H

#include "CFPolygonRef.h"
#include "CPath.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TrammelExport.h"

#include <vector>

namespace trammel {

/// The integrals over a region of even density 1, in powers of the coordinate unit.
struct TRAMMEL_API AreaMoments {
    double area = 0.0;       ///< signed, of degree 2
    TPoint<double> centroid; ///< NaN when the area is 0
    /// The second moments of area about the centroid, of degree 4: the integrals of h², h v and v²,
    /// h and v counted from the centroid. NaN when the area is 0.
    double hh = 0.0;
    double hv = 0.0;
    double vv = 0.0;
};

/// Returns the signed area that the path's contours bound. 0 for an empty path. O(n).
TRAMMEL_API double SignedArea(CPath const& path) noexcept;
/// Returns the signed area of the closed polygon, whether it is marked as closed or not. O(n).
TRAMMEL_API double SignedArea(TPolygon<double> const& polygon) noexcept;
/// Returns the signed area of the closed handle polygon, whether it is marked as closed or not; 0
/// for a null reference. O(n).
TRAMMEL_API double SignedArea(CFPolygonRef const& polygon) noexcept;
/// Returns the signed area of the closed ring of these vertices. O(n).
TRAMMEL_API double SignedArea(std::vector<TPoint<double>> const& ring) noexcept;

/// Returns the signed area of each contour of the path, in order. A contour without segments has
/// area 0. O(n). Throws std::bad_alloc.
TRAMMEL_API std::vector<double> ContourAreas(CPath const& path);

/// Returns area, centroid and second moments of the region that the path's contours bound. The area
/// of an empty path is 0, so the others are NaN. O(n): six points of each curve.
TRAMMEL_API AreaMoments MomentsOf(CPath const& path) noexcept;
/// Returns those of the closed polygon, whether it is marked as closed or not. O(n).
TRAMMEL_API AreaMoments MomentsOf(TPolygon<double> const& polygon) noexcept;
/// Returns those of the closed handle polygon, whether it is marked as closed or not; those of no
/// vertices for a null reference. O(n).
TRAMMEL_API AreaMoments MomentsOf(CFPolygonRef const& polygon) noexcept;
/// Returns those of the closed ring of these vertices. O(n).
TRAMMEL_API AreaMoments MomentsOf(std::vector<TPoint<double>> const& ring) noexcept;

} // namespace trammel

#endif
