// SPDX-License-Identifier: MIT

// Which contour each hole of a region belongs to. Not installed.

#ifndef TRAMMEL_NESTING_P_H
#define TRAMMEL_NESTING_P_H

#include "Linker_p.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// Returns for each contour of a region the one that it is listed with: for a hole the innermost
/// other contour around it that is none, and else itself. Exact.
///
/// Contours may also have edges in common where the region, or that of a face, lies on either side.
///
/// Cost: O(n), and a ray for each hole, or O(n log n) where contours lie in each other by the
/// hundred.
std::vector<std::size_t> OutersOf(RegionContours const& region);

} // namespace trammel_detail

#endif
