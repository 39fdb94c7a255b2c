// SPDX-License-Identifier: MIT

#include "Faces_p.h"

#include "Contours_p.h"
#include "RingWalk_p.h"
#include "WestRays_p.h"
#include "WindingWalk_p.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

namespace trammel_detail {

namespace {

/// Sets Chain::bounds for chains on whose two sides winding numbers differ.
void FindBoundaries(ChainGraph& graph, std::uint32_t owners) {
    ScratchVector<std::int32_t> sums(owners, 0, graph.chains.get_allocator());
    for (Number i = 0; i < graph.chains.size(); ++i) {
        if (graph.chains[i].operands == 0) {
            continue; // listed with another
        }
        bool differ = false;
        ForEqual(graph, 2 * i,
                 [&](std::size_t line, int step) { sums[graph.lines.owners[line]] += step; });
        ForEqual(graph, 2 * i, [&](std::size_t line, int) {
            differ |= std::exchange(sums[graph.lines.owners[line]], 0) != 0;
        });
        graph.chains[i].bounds = differ;
    }
}

/// A place that lists the winding numbers of each ring that it comes to.
class ListingPlace {
public:
    ListingPlace(ChainGraph const& graph, ScratchVector<Number> const& ringOf,
                 std::size_t ringCount, std::uint32_t owners, Scratch* scratch)
        : mGraph(graph), mRingOf(ringOf), mWinding(owners, 0, scratch), mAt(owners, 0, scratch),
          mOwners(scratch), mBegins(ringCount, kNowhere, scratch), mCounts(ringCount, 0, scratch),
          mFound(scratch) {}

    void Turn(std::size_t line, int step) {
        std::uint32_t const owner = mGraph.lines.owners[line];
        bool const was = mWinding[owner] != 0;
        mWinding[owner] += step;
        if (was && mWinding[owner] == 0) {
            mAt[mOwners.back()] = mAt[owner];
            mOwners[mAt[owner]] = mOwners.back();
            mOwners.pop_back();
        } else if (!was && mWinding[owner] != 0) {
            mAt[owner] = mOwners.size();
            mOwners.push_back(owner);
        }
    }
    void Cross(HalfEdge half) {
        ForEqual(mGraph, half, [this](std::size_t line, int step) { Turn(line, step); });
    }
    void CrossAndLabel(HalfEdge half, Chain const& chain) {
        if (chain.bounds) {
            List(mRingOf[half]);
        }
        Cross(half);
        if (chain.bounds) {
            List(mRingOf[Twin(half)]);
        }
    }
    /// Moves what was found to the faces, ring by ring.
    void ListInOrder(Faces& faces) const {
        for (std::size_t ring = 0; ring < mBegins.size(); ++ring) {
            auto const begin = mFound.begin() + static_cast<std::ptrdiff_t>(mBegins[ring]);
            auto const end = begin + static_cast<std::ptrdiff_t>(mCounts[ring]);
            faces.windings.insert(faces.windings.end(), begin, end);
            faces.ends.push_back(faces.windings.size());
        }
    }

private:
    static constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();

    /// Lists the winding numbers to the left of a half-edge of the ring.
    void List(Number ring) {
        if (mBegins[ring] != kNowhere) {
            return;
        }
        mBegins[ring] = mFound.size();
        mCounts[ring] = mOwners.size();
        for (std::uint32_t const owner : mOwners) {
            mFound.push_back({owner, mWinding[owner]});
        }
        std::sort(mFound.end() - static_cast<std::ptrdiff_t>(mOwners.size()), mFound.end(),
                  [](OwnerWinding a, OwnerWinding b) { return a.owner < b.owner; });
    }

    ChainGraph const& mGraph;
    ScratchVector<Number> const& mRingOf;
    ScratchVector<std::int32_t> mWinding; // by operand
    ScratchVector<std::size_t> mAt;       // by operand: where in mOwners it is
    ScratchVector<std::uint32_t> mOwners; // those whose winding number is not 0
    ScratchVector<std::size_t> mBegins;   // by ring: the first of its winding numbers
    ScratchVector<std::size_t> mCounts;
    ScratchVector<OwnerWinding> mFound;
};

} // namespace

Faces FacesOf(BooleanOperand const& operands, std::uint32_t owners, Scratch* scratch,
              Origins origins) {
    Faces faces(scratch);
    Box<double> const all = operands.Bounds();
    if (!all.HasArea()) {
        return faces;
    }
    ClipGrid& grid = faces.rings.grid;
    grid = ClipGrid(all.lowX, all.lowY, all.highX, all.highY);
    GridLines lines(scratch);
    if (origins == Origins::kKept) {
        operands.AppendLinesWithOrigins(all, 0, grid, lines);
    } else {
        operands.AppendOwnedLines(all, grid, lines);
    }
    grid.FinishAdding();

    CutLines const cut(std::move(lines), grid, Recheck::kWhereNeeded);
    ChainGraph graph(cut.lines, cut.incidences, EqualChains::kList);
    FindBoundaries(graph, owners);
    ScratchVector<char> open(scratch);
    for (Chain const& chain : graph.chains) {
        open.insert(open.end(), 2, chain.bounds ? 1 : 0);
    }
    ScratchVector<HalfEdge> entries(scratch);
    RegionContours& rings = faces.rings.resolved;
    rings = WalkRings(graph, std::move(open), &entries);
    ScratchVector<Number> ringOf(2 * graph.chains.size(), kNone, scratch);
    for (std::size_t ring = 0; ring < rings.contours.Count(); ++ring) {
        for (std::size_t i = rings.contours.Begin(ring); i < rings.contours.End(ring); ++i) {
            ringOf[entries[i]] = static_cast<Number>(ring);
        }
    }
    for (HalfEdge const entry : entries) {
        faces.across.push_back(ringOf[Twin(entry)]);
    }
    ListingPlace place(graph, ringOf, rings.contours.Count(), owners, scratch);
    WestRays rays(cut.lines, cut.tree);
    WindingWalk<ListingPlace>(graph, place).VisitAll(rays);
    place.ListInOrder(faces);
    return faces;
}

} // namespace trammel_detail
