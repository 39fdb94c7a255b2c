// SPDX-License-Identifier: MIT

// The order in which results list contours and their vertices. Not installed.
#ifndef TRAMMEL_CONTOURORDER_P_H
#define TRAMMEL_CONTOURORDER_P_H

#include "Linker_p.h"
#include "Scratch_p.h"

#include <cstddef>

namespace trammel_detail {

/// Returns the numbers of the contours in the order in which they are listed. Leaves the contours
/// in their places, and brings the vertices of each into their order. Cost: O(n log n).
///
/// It is the order of a sweep upwards that links chains of edges at their local maxima (B. R.
/// Vatti, A Generic Solution to Polygon Clipping, 1992). Each contour is listed by one of its local
/// minima, and the higher minimum comes first.
///
/// Vertices between two horizontal edges are left out. A contour without other vertices encloses
/// nothing and is not listed. A hole starts at its highest vertex, another contour ends there. Of
/// several highest vertices it is the rightmost.
ScratchVector<std::size_t> OrderContours(RegionContours& resolved);

} // namespace trammel_detail

#endif
