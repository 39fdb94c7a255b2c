// SPDX-License-Identifier: MIT

// The order in which results list contours and their vertices. Not installed.
#ifndef TRAMMEL_CONTOURORDER_P_H
#define TRAMMEL_CONTOURORDER_P_H

#include "Contours_p.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// Brings contours into their order, and returns their numbers in it. Cost: O(n log n).
///
/// It is the order of a sweep upwards that links chains of edges at their local maxima (B. R.
/// Vatti, A Generic Solution to Polygon Clipping, 1992). Vertices between two horizontal edges are
/// left out. A hole starts at its highest vertex, another contour ends there; of several highest
/// vertices it is the rightmost.
ScratchVector<std::size_t> OrderContours(RegionContours& resolved);

} // namespace trammel_detail

#endif
