// SPDX-License-Identifier: MIT

// Linking the edges that bound a region to contours that do not cross.
#ifndef TRAMMEL_LINKER_P_H
#define TRAMMEL_LINKER_P_H

#include "Crossings_p.h"
#include "Lines_p.h"

#include <array>
#include <optional>
#include <vector>

namespace trammel_detail {

/// The contours of a region. Each has neither vertex nor edge in common with itself; two may share
/// single vertices, where they meet but do not cross. Those of holes run counterclockwise, the
/// others clockwise (y up).
struct RegionContours {
    explicit RegionContours(Scratch* scratch = nullptr) : contours(scratch), holes(scratch) {}

    GridLines contours;
    ScratchVector<char> holes; ///< one a contour: 1 if the region lies outside of it
};

/// Whether points that lie in just these operands belong to the region, by Operands from 0 to 3.
/// Those that lie in none do not.
typedef std::array<bool, 4> RegionOf;

/// The contours of the region. The edges of the lines have nothing in common but their ends, or are
/// equal; `tree` is a tree over them in their order, or none; `incidences` has an element for each
/// vertex. Throws std::length_error for more than EdgeTree::kMostEdges edges.
///
/// Cost: O(n + s log s) for s vertices at which anything may come together, and a ray for each part
/// of the lines that hangs together.
RegionContours LinkContours(GridLines const& lines, std::optional<EdgeTree> const& tree,
                            ScratchVector<Incidence> const& incidences, RegionOf const& region);

} // namespace trammel_detail

#endif
