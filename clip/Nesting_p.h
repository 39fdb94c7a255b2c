// SPDX-License-Identifier: MIT

// Which contour each hole of a region belongs to. Not installed.

#ifndef TRAMMEL_NESTING_P_H
#define TRAMMEL_NESTING_P_H

#include "Linker_p.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// Returns for each contour of a region the one that it is listed with. A hole is listed with the
/// innermost contour around it that is no hole, if there is one. All others are listed with
/// themselves. Exact.
///
/// Contours of faces may have edges in common, with a face on either side.
///
/// Cost: O(n), and a ray for each hole, or O(n log n) where contours lie in each other by the
/// hundred.
std::vector<std::size_t> OutersOf(RegionContours const& region);

} // namespace trammel_detail

#endif
