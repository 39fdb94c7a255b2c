// SPDX-License-Identifier: MIT

// Walks along the chains of a graph that gather them to simple rings. Not installed.

#ifndef TRAMMEL_RINGWALK_P_H
#define TRAMMEL_RINGWALK_P_H

#include "ChainGraph_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

namespace trammel_detail {

/// The contours of a region. None visits a vertex twice. Two of them may share single vertices,
/// where they meet but do not cross. Contours of holes run counterclockwise, the others clockwise
/// (y up). Edges have origins where regions are told by winding numbers and the lines' edges have
/// them.
struct RegionContours {
    explicit RegionContours(Scratch* scratch = nullptr) : contours(scratch), holes(scratch) {}

    GridLines contours;
    ScratchVector<char> holes; ///< one a contour: 1 if the region lies outside of it
};

/// Returns the rings that half-edges are part of. A ring is walked with the half-edges' left sides
/// to the left, and listed in the opposite direction. At a node it goes on along the next chain
/// clockwise that has Chain::bounds. Where it comes back to a node, a ring ends.
///
/// `open` has a 1 for each half-edge that is to be part of a ring:
///
/// - Its chain has Chain::bounds.
/// - Each walk along such half-edges comes back.
/// - Without `entries`, at most one half-edge of a chain is open.
///
/// If `entries` is not null, it gets for each edge of the rings the half-edge on which it lies.
/// Edges have origins if those of the graph have them and equal chains are listed.
///
/// Cost: O(n).
RegionContours WalkRings(ChainGraph const& graph, ScratchVector<char> open,
                         ScratchVector<HalfEdge>* entries);

} // namespace trammel_detail

#endif
