// SPDX-License-Identifier: MIT

// The order in which the clipper lists contours and their vertices.
#ifndef TRAMMEL_CONTOURORDER_P_H
#define TRAMMEL_CONTOURORDER_P_H

#include "Contours_p.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// Brings contours into the order in which a sweep upwards that links chains of edges at their
/// local maxima (B. R. Vatti, A Generic Solution to Polygon Clipping, 1992) lists them: leaves out
/// vertices between two horizontal edges, turns each contour so that it starts (a hole) or ends
/// (any other) at its highest vertex, the rightmost of several, and returns the numbers of the
/// contours in the order of the list. Cost: O(n log n).
ScratchVector<std::size_t> OrderContours(RegionContours& resolved);

} // namespace trammel_detail

#endif
