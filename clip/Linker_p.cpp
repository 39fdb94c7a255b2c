// SPDX-License-Identifier: MIT

#include "Linker_p.h"

#include "ChainGraph_p.h"
#include "WestRays_p.h"
#include "WestSweep_p.h"

#include <utility>

namespace trammel_detail {

namespace {

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
    }
    /// Labels them with 1 where the points to their left belong to the region, else with 0.
    Linker(GridLines const& lines, std::optional<EdgeTree> const& tree,
           ScratchVector<Incidence> const& incidences, WindingRegion const& region)
        : mRays(lines, tree), mLines(lines), mRegion{{false, true, false, true}},
          mScratch(incidences.get_allocator().GetScratch()),
          mGraph(lines, incidences, EqualChains::kList), mChains(mGraph.chains), mDone(mScratch),
          mOpen(mScratch) {
        LabelByWinding(mGraph, mRays, region);
    }

    RegionContours Contours() {
        ScratchVector<char> open(2 * mChains.size(), 0, mScratch);
        for (std::size_t i = 0; i < mChains.size(); ++i) {
            Chain& chain = mChains[i];
            bool const left = mRegion[chain.left];
            bool const right = mRegion[chain.left ^ chain.operands];
            chain.bounds = chain.labelled && left != right;
            // The half-edge that has the region to the left.
            open[2 * i + (left ? 0 : 1)] = chain.bounds ? 1 : 0;
        }
        return WalkRings(mGraph, std::move(open), nullptr);
    }

private:
    void LabelByParity();
    /// Labels the chains that have no label yet, by a sweep instead of rays.
    void LabelBySweep();
    /// Labels all chains that are connected with a labelled one.
    void LabelConnected(Number first);
    void LabelAlong(Number chain);
    void LabelAround(HalfEdge from);

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
                                      : mDone[mGraph.NodeOf(begin)] == 0) {
            LabelAround(begin);
        }
        if (i == last) {
            break;
        }
    }
    HalfEdge const end = 2 * last + 1;
    if (mChains[mChains[last].next].other == kNone && mDone[mGraph.NodeOf(end)] == 0) {
        LabelAround(end);
    }
}

/// Labels the chains around a node. The operands of the points beside one half-edge tell those of
/// the points beside all others.
void Linker::LabelAround(HalfEdge from) {
    mDone[mGraph.NodeOf(from)] = 1;
    // The operands that hold the points counterclockwise of the half-edge.
    Operands here = mChains[from / 2].left ^ (from % 2 == 0 ? 0 : mChains[from / 2].operands);
    Operands last = mChains[from / 2].operands;
    for (HalfEdge at = mGraph.NextClockwise(from); at != from; at = mGraph.NextClockwise(at)) {
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
    std::size_t const kUsual = 32;
    mOpen.reserve(kUsual);
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
        if (mRays.AreSlow()) {
            LabelBySweep();
            return;
        }
        bool const up = mGraph.PointOf(chain, k).y < mGraph.PointOf(chain, k + 1).y;
        chain.left = mRays.InsideWestOf(mGraph.VertexOf(chain, k)) ^ (up ? 0 : chain.operands);
        chain.labelled = true;
        if (!chain.closed) {
            LabelConnected(i);
        }
    }
}

void Linker::LabelBySweep() {
    // The sweep takes the edges of all chains that get labels. It meets each connected part at its
    // lowest edge first. The edge west of that is of a part that it met before, which has labels.
    ScratchVector<Number> chainOf(mLines.points.size(), kNone, mScratch);
    ScratchVector<SweptEdge> edges(mScratch);
    for (Number i = 0; i < mChains.size(); ++i) {
        for (Number k = 0; k < mChains[i].count && mChains[i].operands != 0; ++k) {
            GridPoint const a = mGraph.PointOf(mChains[i], k);
            GridPoint const b = mGraph.PointOf(mChains[i], k + 1);
            Number const edge = mGraph.VertexOf(mChains[i], k);
            chainOf[edge] = i;
            if (a.y != b.y) {
                edges.emplace_back(a.y < b.y ? a : b, a.y < b.y ? b : a, edge);
            }
        }
    }
    // West is to the left of an edge that runs upwards.
    auto const right = [&](SweptEdge const& e) {
        return mLines.points[e.number] == e.low ? mChains[chainOf[e.number]].operands : Operands{0};
    };
    SweepWest(std::move(edges), [&](SweptEdge const& edge, SweptEdge const* west) {
        Number const number = chainOf[edge.number];
        Chain& chain = mChains[number];
        if (chain.labelled) {
            return;
        }
        Operands const inside =
            west == nullptr
                ? Operands{0}
                : static_cast<Operands>(mChains[chainOf[west->number]].left ^ right(*west));
        bool const up = mLines.points[edge.number] == edge.low;
        chain.left = inside ^ (up ? Operands{0} : chain.operands);
        chain.labelled = true;
        if (!chain.closed) {
            LabelConnected(number);
        }
    });
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
