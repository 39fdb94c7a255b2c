// SPDX-License-Identifier: MIT

// PolygonWithHoles: the region of one ring without the regions of others, its holes.
//
// A ring is a list of vertices. A straight line leads from the last one to the first, which may be
// repeated at the end. A ring of fewer than three vertices bounds no region.
//
// Rings may run either way round: no function here depends on it but the one that turns them.
// Centroid, area and second moments count every hole once with its whole area. So they are those of
// the region where the holes lie in the outer ring and do not overlap each other. They count a part
// of a ring as often as the ring winds around it.
//
// No call uses shared state: all are safe from any thread.

#ifndef TRAMMEL_POLYGONWITHHOLES_H
#define TRAMMEL_POLYGONWITHHOLES_H

#include "CPath.h"
#include "FillRule.h"
#include "Moments.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <vector>

namespace trammel {

/// The vertices of a closed ring, in order.
typedef std::vector<TPoint<double>> Ring;

/// One outer ring, and any number of holes.
struct TRAMMEL_API PolygonWithHoles {
    Ring outer;
    std::vector<Ring> holes;
};

/// Returns the area of the outer ring less the areas of the holes; never negative when the holes
/// lie within. 0 without vertices.
///
/// With L as the length of all rings, and D as the extent of their bounds, it is off by at most
/// 2^-46 L D. A NaN or infinite coordinate makes it NaN or infinite. O(n). Source: SignedArea.
TRAMMEL_API double Area(PolygonWithHoles const& polygon) noexcept;

/// Returns the area as above, the centroid and the second moments, with the bounds of Moments.h for
/// an outline of all the rings. The centroid and the moments are NaN when the area is 0. O(n).
TRAMMEL_API AreaMoments MomentsOf(PolygonWithHoles const& polygon) noexcept;

/// Returns the bounds of the outer ring, exact. The null rectangle without vertices. A NaN or
/// infinite coordinate makes all four NaN, as in TightBounds. O(n).
TRAMMEL_API TRect<double> Bounds(PolygonWithHoles const& polygon) noexcept;

/// True when `p` lies in the region that the outer ring bounds by `rule`, and in no region that a
/// hole bounds by `rule`.
///
/// A point nearer to a ring than WindingNumber's bound is on either side of that ring. A ring with
/// a NaN or infinite coordinate bounds nothing, and no region contains a point with one. O(n).
TRAMMEL_API bool Contains(PolygonWithHoles const& polygon, TPoint<double> const& p,
                          FillRule rule) noexcept;

/// Turns rings so that the outer ring's SignedArea is positive and that of each hole negative. It
/// reverses the order of a ring's vertices behind the first. Rings of area 0 or NaN stay as they
/// are.
///
/// So turned, the rings are contours of an outline that the nonzero and the even-odd rule fill
/// alike, where no ring crosses itself or another. Most file formats ask for it. O(n).
TRAMMEL_API void OrientRings(PolygonWithHoles& polygon) noexcept;

/// Returns the rings as closed subpaths of a path, the outer ring first. Rings without vertices
/// give none. CPath's joining rules leave out a vertex that equals the one before. O(n). Throws
/// std::bad_alloc.
TRAMMEL_API CPath PathOf(PolygonWithHoles const& polygon);

} // namespace trammel

#endif
