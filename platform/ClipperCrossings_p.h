// SPDX-License-Identifier: MIT
//
// Cutting closed lines on the clipper's grid where they meet.
#ifndef TRAMMEL_CLIPPERCROSSINGS_P_H
#define TRAMMEL_CLIPPERCROSSINGS_P_H

#include "ClipperGrid_p.h"
#include "ClipperLines_p.h"

#include <optional>
#include <vector>

namespace trammel_detail {

/// Cuts lines where their edges cross, touch or overlap, themselves and each other: afterwards edges
/// have nothing in common but their ends, or are equal. Returns false if there are crossings left.
///
/// `shared` gets an element for each vertex: 1 at vertices that occur more than once (if two lines
/// pass through it, at both), `tree` a tree of the cut lines. The new vertices are points of `grid`
/// that are doubles; edges move by no more than that rounding.
///
/// Cost: in practice O(n log n + k) for k new vertices; at worst the number of pairs of edges whose
/// boxes meet.
bool CutAtCrossings(GridLines& lines, ClipGrid const& grid, std::vector<char>& shared,
                    std::optional<EdgeTree>& tree);

} // namespace trammel_detail

#endif
