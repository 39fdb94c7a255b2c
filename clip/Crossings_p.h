// SPDX-License-Identifier: MIT

// Cutting closed lines on the clipper's grid where they meet.
#ifndef TRAMMEL_CROSSINGS_P_H
#define TRAMMEL_CROSSINGS_P_H

#include "Grid_p.h"
#include "Lines_p.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace trammel_detail {

/// What happens at a vertex: kAlone, it occurs once; kMany, anything may come together there; any
/// other, just two edges cross there, which have been cut at vertices that have this number: twice
/// that of the crossing, + 1 if the edge that comes later crosses the other to its left.
typedef std::uint32_t Meeting;
inline constexpr Meeting kAlone = 0;
inline constexpr Meeting kMany = 1;
inline constexpr Meeting kFirstCrossing = 2;

/// Which parts of edges are looked at again once they are cut: those that may meet others then, or
/// all. The result is the same.
enum class Caution { kWhereNeeded, kEverywhere };

/// Cuts lines where their edges cross, touch or overlap, themselves and each other: afterwards
/// edges have nothing in common but their ends, or are equal.
///
/// `meetings` gets an element for each vertex, `tree` a tree of the cut lines in their order if one
/// is at hand, or none. The new vertices are points of `grid` that are doubles; edges move by no
/// more than that rounding. Throws std::length_error for more edges than EdgeTree takes, or more
/// cuts in a round than 32 bits count.
///
/// Cost: in practice O(n log n + k) for k new vertices; at worst the number of pairs of edges whose
/// boxes meet.
void CutAtCrossings(GridLines& lines, ClipGrid const& grid, Caution caution,
                    ScratchVector<Meeting>& meetings, std::optional<EdgeTree>& tree);

} // namespace trammel_detail

#endif
