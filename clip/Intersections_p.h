// SPDX-License-Identifier: MIT

// The points at which edges have to be cut. Not installed.

#ifndef TRAMMEL_INTERSECTIONS_P_H
#define TRAMMEL_INTERSECTIONS_P_H

#include "Clearances_p.h"
#include "EdgeTree_p.h"
#include "Grid_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <cstdint>

namespace trammel_detail {

/// The edges that come together at a vertex.
///
/// | value                | meaning                                                             |
/// |----------------------|---------------------------------------------------------------------|
/// | kSingle              | the vertex occurs once                                              |
/// | kShared              | anything may come together                                          |
/// | kFirstCrossing + 2 i | crossing i of two edges only, both of which are cut there           |
/// | the same + 1         | as before, and the edge that comes later crosses the other leftward |
typedef std::uint32_t Incidence;
inline constexpr Incidence kSingle = 0;
inline constexpr Incidence kShared = 1;
inline constexpr Incidence kFirstCrossing = 2;

/// A point at which an edge is to be cut. Where `incidence` is kSingle, it is a near miss instead:
/// the edge is not cut there, but its parts may meet something if it is cut elsewhere.
struct Cut {
    std::int64_t along;     ///< MajorAxis::Along() of the edge
    std::int64_t across;    ///< MajorAxis::Across() of the edge
    std::int64_t clearance; ///< the distance that the next vertex needs, see Clearances
    std::uint32_t edge;
    Incidence incidence;
};

/// How edges are held against each other.
enum class Test {
    kExact,     ///< cut where edges have a point in common
    kHotPixels, ///< cut also at vertices whose hot pixels an edge passes through
};

/// Cuts. The first ones come in pairs of partners: cuts 2 i and 2 i + 1 are where two edges cross
/// or nearly do so. Otherwise they are in no particular order.
struct FoundCuts {
    ScratchVector<Cut> cuts;
    std::size_t paired; ///< how many have a partner, which come first
};

/// Returns the cuts of all pairs of edges that the tree finds. Without clearances they have no
/// partners.
///
/// The hot pixel of a vertex reaches half of the doubles' spacing to each side. Edges that are bent
/// at all vertices whose hot pixels they pass through meet at vertices only. (J. D. Hobby,
/// Practical Segment Intersection with Finite Precision Output, 1999.)
///
/// With `clearances`, which goes with exact tests only, cuts get their clearance, and near misses
/// are found as well. The tree's margin is their reach then. Without clearances there are no near
/// misses, and all cuts have clearance 0 and incidence kShared. For hot pixels the tree's margin is
/// the largest spacing. Sets kShared in `incidences` for vertices that edges share, except edges
/// that only follow each other.
FoundCuts FindCuts(EdgeTree const& tree, ClipGrid const& grid, Test test,
                   Clearances const* clearances, ScratchVector<Incidence>& incidences);
/// Returns the cuts of some pairs of edges of the tree, by exact tests without clearances.
FoundCuts FindCuts(EdgeTree const& tree, ScratchVector<EdgePair> const& pairs, ClipGrid const& grid,
                   ScratchVector<Incidence>& incidences);

} // namespace trammel_detail

#endif
