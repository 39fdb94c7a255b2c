// SPDX-License-Identifier: MIT

// Linking the edges that bound a region to contours that do not cross. Not installed.

#ifndef TRAMMEL_LINKER_P_H
#define TRAMMEL_LINKER_P_H

#include "EdgeTree_p.h"
#include "Intersections_p.h"
#include "Lines_p.h"
#include "RingWalk_p.h"
#include "Scratch_p.h"
#include "WindingLabels_p.h"

#include <optional>

namespace trammel_detail {

/// Returns the contours of the region. The arguments come from CutAtCrossings(). Two edges of the
/// lines have to be equal or have nothing in common but ends. `tree` is a tree over the lines in
/// their order, or none. `incidences` has an element for each vertex. Throws std::length_error for
/// more than EdgeTree::kMostEdges edges.
///
/// Cost: O(n + s log s) for s shared vertices, and a ray for each connected part of the lines.
RegionContours LinkContours(GridLines const& lines, std::optional<EdgeTree> const& tree,
                            ScratchVector<Incidence> const& incidences, RegionOf const& region);
/// Returns the contours of a region by winding numbers in the same way.
RegionContours LinkContours(GridLines const& lines, std::optional<EdgeTree> const& tree,
                            ScratchVector<Incidence> const& incidences,
                            WindingRegion const& region);

} // namespace trammel_detail

#endif
