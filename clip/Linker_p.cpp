// SPDX-License-Identifier: MIT

#include "Linker_p.h"

#include "ChainGraph_p.h"
#include "Predicates_p.h"
#include "WestRays_p.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace trammel_detail {

namespace {

/// True when a line that does not cross itself runs counterclockwise, which the turn at its lowest
/// vertex tells.
bool IsCounterclockwise(GridLines const& lines, std::size_t line) {
    std::size_t const begin = lines.Begin(line);
    std::size_t const end = lines.End(line);
    std::size_t i = begin;
    for (std::size_t k = begin + 1; k < end; ++k) {
        i = lines.points[k] < lines.points[i] ? k : i;
    }
    std::size_t const before = i == begin ? end - 1 : i - 1;
    std::size_t const after = i + 1 == end ? begin : i + 1;
    return SideOf(lines.points[before], lines.points[i], lines.points[after]) > 0;
}

/// The work of LinkContours().
class Linker {
public:
    /// Labels the chains with the operands that hold the points to their left, of which `region`
    /// holds some sets.
    Linker(GridLines const& lines, std::optional<EdgeTree> const& tree,
           ScratchVector<Incidence> const& incidences, RegionOf const& region)
        : mRays(lines, tree), mLines(lines), mRegion(region),
          mScratch(incidences.get_allocator().GetScratch()),
          mGraph(lines, incidences, EqualChains::kCancel), mChains(mGraph.chains), mDone(mScratch),
          mOpen(mScratch) {
        LabelByParity();
        FindBoundary();
    }
    /// Labels them with 1 where the points to their left belong to the region, else with 0.
    Linker(GridLines const& lines, std::optional<EdgeTree> const& tree,
           ScratchVector<Incidence> const& incidences, WindingRegion const& region)
        : mRays(lines, tree), mLines(lines), mRegion{{false, true, false, true}},
          mScratch(incidences.get_allocator().GetScratch()),
          mGraph(lines, incidences, EqualChains::kList), mChains(mGraph.chains), mDone(mScratch),
          mOpen(mScratch) {
        LabelByWinding(mGraph, mRays, region);
        FindBoundary();
    }

    RegionContours Contours();

private:
    void LabelByParity();
    /// Finds the chains on the boundary.
    void FindBoundary();
    /// Labels all chains that are connected with a labelled one.
    void LabelConnected(Number first);
    void LabelAlong(Number chain);
    void LabelAround(HalfEdge from);
    /// Returns the half-edge of a chain that has the region to the left.
    HalfEdge Entry(Number chain) const {
        return 2 * chain + (mRegion[mChains[chain].left] ? 0 : 1);
    }
    /// Returns the next half-edge of the node, clockwise, that is on the boundary.
    HalfEdge NextOnBoundary(HalfEdge half) const {
        do {
            half = mGraph.nextClockwise[half];
        } while (!mChains[half / 2].bounds);
        return half;
    }
    /// Appends the vertices of a half-edge from its last one, which is left out, back to its first.
    GridPoint* AppendBackwards(HalfEdge entry, GridPoint* out) const;
    /// Appends the origins of the edges to these vertices.
    void AppendOrigins(HalfEdge entry, ScratchVector<Origin>& origins) const;

    WestRays mRays;
    GridLines const& mLines;
    RegionOf mRegion;
    Scratch* mScratch;
    ChainGraph mGraph;
    ScratchVector<Chain>& mChains;
    // While chains are labelled:
    ScratchVector<char> mDone;   // by node: 1 once its chains are
    ScratchVector<Number> mOpen; // labelled chains that are still to be followed
};

void Linker::LabelConnected(Number first) {
    mOpen.push_back(first);
    while (!mOpen.empty()) {
        Number const chain = mOpen.back();
        mOpen.pop_back();
        if (!mChains[chain].followed) {
            LabelAlong(chain);
        }
    }
}

/// Labels the chains that go on from a labelled one in both directions through crossings of two
/// edges, and the chains that meet these.
void Linker::LabelAlong(Number chain) {
    // Behind a crossing the other edge's other side begins.
    mChains[chain].followed = true;
    Number last = chain;
    for (Number i = mChains[chain].next; i != chain && mChains[i].other != kNone;
         i = mChains[i].next) {
        mChains[i].left = mChains[last].left ^ mChains[mChains[i].other].operands;
        mChains[i].labelled = true;
        mChains[i].followed = true;
        last = i;
    }
    Number first = chain;
    while (mChains[first].other != kNone && !mChains[mChains[first].previous].followed) {
        Number const i = mChains[first].previous;
        mChains[i].left = mChains[first].left ^ mChains[mChains[first].other].operands;
        mChains[i].labelled = true;
        mChains[i].followed = true;
        first = i;
    }
    for (Number i = first;; i = mChains[i].next) {
        HalfEdge const begin = 2 * i;
        if (mChains[i].other != kNone ? !mChains[mChains[i].other].labelled
                                      : mDone[mGraph.nodeOf[begin]] == 0) {
            LabelAround(begin);
        }
        if (i == last) {
            break;
        }
    }
    HalfEdge const end = 2 * last + 1;
    if (mChains[mChains[last].next].other == kNone && mDone[mGraph.nodeOf[end]] == 0) {
        LabelAround(end);
    }
}

/// Labels the chains around a node. The operands of the points beside one half-edge tell those of
/// the points beside all others.
void Linker::LabelAround(HalfEdge from) {
    mDone[mGraph.nodeOf[from]] = 1;
    // The operands that hold the points counterclockwise of the half-edge.
    Operands here = mChains[from / 2].left ^ (from % 2 == 0 ? 0 : mChains[from / 2].operands);
    Operands last = mChains[from / 2].operands;
    for (HalfEdge at = mGraph.nextClockwise[from]; at != from; at = mGraph.nextClockwise[at]) {
        Chain& chain = mChains[at / 2];
        here ^= last;
        last = chain.operands;
        if (!chain.labelled) {
            chain.labelled = true;
            chain.left = here ^ (at % 2 == 0 ? 0 : chain.operands);
            mOpen.push_back(at / 2);
        }
    }
}

void Linker::LabelByParity() {
    mDone.assign(mGraph.nodeCount, 0);
    for (Number i = 0; i < mChains.size(); ++i) {
        Chain& chain = mChains[i];
        if (chain.labelled || chain.operands == 0) {
            continue;
        }
        // One ray labels all chains that are connected. It starts at an edge that is not
        // horizontal, and every closed line that encloses something has one.
        Number const k = mGraph.FirstNotHorizontal(chain);
        if (k == chain.count) {
            continue;
        }
        bool const up = mGraph.PointOf(chain, k).y < mGraph.PointOf(chain, k + 1).y;
        chain.left = mRays.InsideWestOf(mGraph.VertexOf(chain, k)) ^ (up ? 0 : chain.operands);
        chain.labelled = true;
        if (!chain.closed) {
            LabelConnected(i);
        }
    }
}

void Linker::FindBoundary() {
    for (Chain& chain : mChains) {
        chain.bounds =
            chain.labelled && mRegion[chain.left] != mRegion[chain.left ^ chain.operands];
    }
}

GridPoint* Linker::AppendBackwards(HalfEdge entry, GridPoint* out) const {
    Chain const& chain = mChains[entry / 2];
    std::size_t const begin = mLines.Begin(chain.line);
    std::size_t const end = mLines.End(chain.line);
    if (entry % 2 == 0) {
        std::size_t i = mGraph.VertexOf(chain, chain.count);
        for (Number k = 0; k < chain.count; ++k) {
            i = (i == begin ? end : i) - 1;
            *out++ = mLines.points[i];
        }
    } else {
        std::size_t i = chain.first;
        for (Number k = 0; k < chain.count; ++k) {
            i = i + 1 == end ? begin : i + 1;
            *out++ = mLines.points[i];
        }
    }
    return out;
}

void Linker::AppendOrigins(HalfEdge entry, ScratchVector<Origin>& origins) const {
    Chain const& chain = mChains[entry / 2];
    // A half-edge is followed against its direction, so an even one against its line.
    Origin const turn = entry % 2 == 0 ? 1 : 0;
    for (Number k = 0; k < chain.count; ++k) {
        Number const edge = mGraph.VertexOf(chain, turn != 0 ? chain.count - 1 - k : k);
        origins.push_back(mLines.origins[edge] ^ turn);
    }
    // Equal chains have one edge each.
    for (HalfEdge equal = mGraph.equals[entry / 2]; equal != kNone;
         equal = mGraph.equals[equal / 2]) {
        Number const edge = mChains[equal / 2].first;
        origins.back() = std::min(origins.back(), mLines.origins[edge] ^ turn ^ (equal % 2));
    }
}

RegionContours Linker::Contours() {
    RegionContours result(mScratch);
    GridLines& contours = result.contours;
    // Each edge is part of at most one contour.
    contours.points.resize(mLines.points.size());
    GridPoint* out = contours.points.data();
    bool const hasOrigins = !mLines.origins.empty();
    ScratchVector<char> done(mChains.size(), 0, mScratch);
    std::size_t const kNowhere = std::numeric_limits<std::size_t>::max();
    // The half-edges that the walk took, and where in it each node is.
    ScratchVector<HalfEdge> walk(mScratch);
    ScratchVector<std::size_t> place(mGraph.nodeCount, kNowhere, mScratch);
    // Makes a contour of the last part of the walk, which has come back to the node where that part
    // begins. The walk has the region to the left, contours have it to the right.
    auto const finish = [&](std::size_t begin) {
        for (std::size_t i = walk.size(); i-- > begin;) {
            out = AppendBackwards(walk[i], out);
            if (hasOrigins) {
                AppendOrigins(walk[i], contours.origins);
            }
            if (!mChains[walk[i] / 2].closed) {
                place[mGraph.nodeOf[walk[i]]] = kNowhere;
            }
        }
        walk.resize(begin);
        if (hasOrigins) {
            // From the edges to the vertices to the edges that begin there.
            auto const first = contours.origins.begin() +
                               static_cast<std::ptrdiff_t>(
                                   contours.ends.empty() ? std::size_t{0} : contours.ends.back());
            std::rotate(first, first + 1, contours.origins.end());
        }
        contours.ends.push_back(static_cast<std::size_t>(out - contours.points.data()));
        contours.operands.push_back(0);
    };
    for (Number i = 0; i < mChains.size(); ++i) {
        if (!mChains[i].bounds || done[i] != 0) {
            continue;
        }
        HalfEdge end = Entry(i);
        if (mChains[i].closed) {
            walk.push_back(end);
            finish(0);
            continue;
        }
        // The walk enters a node and leaves it along the next boundary chain clockwise. The region
        // lies between the two. Chains that enter and chains that leave alternate around a node.
        do {
            Number const node = mGraph.nodeOf[end];
            if (place[node] != kNowhere) {
                finish(place[node]);
            }
            place[node] = walk.size();
            walk.push_back(end);
            done[end / 2] = 1;
            end = NextOnBoundary(Twin(end));
        } while (done[end / 2] == 0);
        finish(0);
    }
    contours.points.resize(static_cast<std::size_t>(out - contours.points.data()));
    result.holes.reserve(contours.Count());
    for (std::size_t i = 0; i < contours.Count(); ++i) {
        result.holes.push_back(IsCounterclockwise(contours, i) ? 1 : 0);
    }
    return result;
}

} // namespace

RegionContours LinkContours(GridLines const& lines, std::optional<EdgeTree> const& tree,
                            ScratchVector<Incidence> const& incidences, RegionOf const& region) {
    return Linker(lines, tree, incidences, region).Contours();
}

RegionContours LinkContours(GridLines const& lines, std::optional<EdgeTree> const& tree,
                            ScratchVector<Incidence> const& incidences,
                            WindingRegion const& region) {
    return Linker(lines, tree, incidences, region).Contours();
}

} // namespace trammel_detail
