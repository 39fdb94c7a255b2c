// SPDX-License-Identifier: MIT

// Making cuts the vertices of closed lines. Not installed.

#ifndef TRAMMEL_CUTS_P_H
#define TRAMMEL_CUTS_P_H

#include "Clearances_p.h"
#include "EdgeTree_p.h"
#include "Intersections_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// The cuts and near misses of each edge, in their order along it.
class SortedCuts {
public:
    /// Sorts cuts of the edges of `tree`. Throws std::length_error for more than 32 bits can count.
    SortedCuts(ScratchVector<Cut> const& unsorted, EdgeTree const& tree);

    /// Removes cuts at which an edge turns back in either coordinate. The first cut of each edge
    /// stays.
    void KeepMonotone();

    /// The cuts of an edge are those from Begin() to End().
    std::size_t Begin(std::size_t edge) const { return edge == 0 ? 0 : mEnds[edge - 1]; }
    std::size_t End(std::size_t edge) const { return mEnds[edge]; }
    Cut& At(std::size_t i) { return mCuts[i]; }
    Cut const& At(std::size_t i) const { return mCuts[i]; }
    std::size_t Count() const { return mCuts.size(); }

    /// True when the edge is cut. A near miss alone is no cut.
    bool Has(std::size_t edge) const { return (mHas[edge] & kCut) != 0; }
    bool HasNearMiss(std::size_t edge) const { return (mHas[edge] & kNearMiss) != 0; }

private:
    static constexpr char kCut = 1;
    static constexpr char kNearMiss = 2;

    ScratchVector<Cut> mCuts;
    ScratchVector<std::uint32_t> mEnds; // one an edge
    ScratchVector<char> mHas;           // one an edge: a set of kCut, kNearMiss
};

/// Makes the cuts new vertices of `lines`, over which `tree` was made. `incidences` gets an element
/// for each vertex of the new lines. `active` gets an element for each new edge: 1 for a part of a
/// cut edge that may meet other edges. If `clearances` is null, any part may do so. Returns the
/// number of ones. Cuts in `sorted` that lack their clearance become kShared. The parts of an
/// edge have its origin.
std::size_t ApplyCuts(SortedCuts& sorted, EdgeTree const& tree, Clearances const* clearances,
                      GridLines& lines, ScratchVector<Incidence>& incidences,
                      ScratchVector<char>& active);

} // namespace trammel_detail

#endif
