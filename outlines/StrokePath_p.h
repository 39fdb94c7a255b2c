// SPDX-License-Identifier: MIT

// The contours of strokes and of grown regions, before overlapping parts are united. Not installed.

#ifndef TRAMMEL_STROKEPATH_P_H
#define TRAMMEL_STROKEPATH_P_H

#include "CPath.h"
#include "StrokeStyle.h"

#include <vector>

namespace trammel_detail {

/// Looks for segments that follow each other around which a pen covers places many times on
/// average. Returns their greatest extent in h or v, or 0 where there are none. O(n).
double CrowdedExtent(CPath const& path, trammel::StrokeStyle const& style);

/// Appends the parts of a stroke, and returns the distance that they keep: the tolerance, or the
/// least that there is.
///
/// A part has the contours of a few segments or dashes, or else one part has all. The winding
/// number of a part's contours around each point is the number of times that the pen covers it
/// there. Parts that follow each other overlap.
double StrokeParts(CPath const& path, trammel::StrokeStyle const& style, double tolerance,
                   bool inParts, std::vector<CPath>& parts);

/// Appends contours with winding numbers above 0 where a region grown by a distance is, and 0
/// elsewhere, and returns the distance that they keep.
///
/// With a negative distance the outside of the region grows. The caller has to add a frame around
/// it, which makes the outside a region.
/// \param region contours without overlaps, which run in any direction.
/// \param blur how far these may cross each other where they run beside each other
/// \param border the pen, whose joins shape the corners. Its width is not read.
double AppendGrown(CPath const& region, double blur, double distance,
                   trammel::StrokeStyle const& border, double tolerance, CPath& out);

/// Appends the parts of what a region gains when it grows by a distance, or of what it loses when
/// it shrinks by a negative one. Returns the distance that they keep.
///
/// A part lies between a few segments of the border and their side at the distance. Otherwise the
/// function does what StrokeParts() does. The parameters are those of AppendGrown().
double BorderParts(CPath const& region, double blur, double distance,
                   trammel::StrokeStyle const& border, double tolerance, std::vector<CPath>& parts);

} // namespace trammel_detail

#endif
