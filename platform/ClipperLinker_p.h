// SPDX-License-Identifier: MIT
//
// Linking the edges that bound a region to contours that do not cross.
#ifndef TRAMMEL_CLIPPERLINKER_P_H
#define TRAMMEL_CLIPPERLINKER_P_H

#include "ClipperContours_p.h"
#include "ClipperCrossings_p.h"
#include "ClipperLines_p.h"

#include <vector>

namespace trammel_detail {

/// The contours of the region. The edges of `tree` have nothing in common but their ends, or are
/// equal; `meetings` has an element for each vertex.
///
/// Cost: O(n + s log s) for s vertices at which anything may come together, and a ray for each part
/// of the lines that hangs together.
ResolvedContours LinkContours(EdgeTree const& tree, std::vector<Meeting> const& meetings,
                              RegionOf const& region);

} // namespace trammel_detail

#endif
