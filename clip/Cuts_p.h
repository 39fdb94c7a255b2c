// SPDX-License-Identifier: MIT

// Making cuts the vertices of closed lines. Not installed.

#ifndef TRAMMEL_CUTS_P_H
#define TRAMMEL_CUTS_P_H

#include "Clearances_p.h"
#include "EdgeTree_p.h"
#include "Intersections_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace trammel_detail {

/// The cuts and near misses of each edge, in their order along it.
class SortedCuts {
public:
    /// Stands for no edge.
    static constexpr std::uint32_t kNoOther = 0xFFFFFFFF;

    /// Sorts cuts of the edges of `tree`. In each one, Cut::edge becomes the other edge of its
    /// pair, which crosses it or nearly does so. It becomes kNoOther for cuts without a partner.
    /// Throws std::length_error for more than 32 bits can count.
    SortedCuts(FoundCuts const& found, EdgeTree const& tree);

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

/// Tells the parts of edges after they were cut. A part has the number of its first vertex.
class PartsOfEdges {
public:
    explicit PartsOfEdges(Scratch* scratch) : mBegins(scratch) {}

    /// For ApplyCuts(): the parts of the next edge begin here.
    void Push(std::size_t begin) { mBegins.push_back(static_cast<std::uint32_t>(begin)); }
    void Reserve(std::size_t edges) { mBegins.reserve(edges + 1); }

    /// The parts of an edge are those from Begin() to End().
    std::size_t Begin(std::size_t edge) const { return mBegins[edge]; }
    std::size_t End(std::size_t edge) const { return mBegins[edge + 1]; }
    /// Returns the edge of a part.
    std::size_t EdgeOf(std::size_t part) const {
        return static_cast<std::size_t>(std::upper_bound(mBegins.begin(), mBegins.end(), part) -
                                        mBegins.begin()) -
               1;
    }

private:
    ScratchVector<std::uint32_t> mBegins; // one an edge, and the end of the last
};

/// Makes the cuts new vertices of `lines`, over which `tree` was made. `incidences` gets an element
/// for each vertex of the new lines. `active` gets an element for each new edge: 1 for a part of a
/// cut edge that may meet other edges. Returns the number of ones. Cuts in `sorted` that lack their
/// clearance become kShared. The parts of an edge have its origin. Sets `parts`, which is empty.
std::size_t ApplyCuts(SortedCuts& sorted, EdgeTree const& tree, Clearances const& clearances,
                      GridLines& lines, ScratchVector<Incidence>& incidences,
                      ScratchVector<char>& active, PartsOfEdges& parts);

/// Which cuts become vertices.
enum class Keep {
    kAll,
    kMonotone, ///< not those at which an edge turns back in x or in y, but the first one of each
};

/// Does the same without clearances, so that all parts of cut edges may meet others. `cuts` has no
/// near misses, and is in no particular order. Where few edges are cut, others cost little.
std::size_t InsertCuts(ScratchVector<Cut> cuts, Keep keep, EdgeTree const& tree, GridLines& lines,
                       ScratchVector<Incidence>& incidences, ScratchVector<char>& active);

} // namespace trammel_detail

#endif
