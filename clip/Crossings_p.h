// SPDX-License-Identifier: MIT

// Cutting closed lines where they cross. Not installed.

#ifndef TRAMMEL_CROSSINGS_P_H
#define TRAMMEL_CROSSINGS_P_H

#include "EdgeTree_p.h"
#include "Grid_p.h"
#include "Intersections_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <optional>

namespace trammel_detail {

/// The parts of cut edges that are checked again: the parts that may meet other edges, or all
/// parts. The result is the same; the tests compare the two.
enum class Recheck { kWhereNeeded, kEverywhere };

/// Cuts lines where their edges cross, touch or overlap, themselves and each other. Afterwards two
/// edges are equal or have nothing in common but ends.
///
/// The new vertices are points of `grid` that are doubles, and edges move by that rounding only.
/// `incidences` gets an element for each vertex of the cut lines. `tree` gets a tree of the cut
/// lines in their order if one is at hand, or none. It refers to `lines`. Throws std::length_error
/// for more edges than EdgeTree takes, or more cuts in a round than 32 bits count.
///
/// Cost: in practice O(n log n + k) for k new vertices. At worst each round takes as many steps as
/// there are pairs of edges whose boxes meet.
void CutAtCrossings(GridLines& lines, ClipGrid const& grid, Recheck recheck,
                    ScratchVector<Incidence>& incidences, std::optional<EdgeTree>& tree);

} // namespace trammel_detail

#endif
