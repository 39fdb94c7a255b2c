// SPDX-License-Identifier: MIT

#include "WindingLabels_p.h"

#include <cstddef>

namespace trammel_detail {

namespace {

/// The winding numbers of one point at a time, which is moved across chains.
class Place {
public:
    Place(ChainGraph const& graph, WindingRegion const& region, Scratch* scratch)
        : mGraph(graph), mRegion(region), mWinding(region.rules.size(), 0, scratch) {}

    /// True when the place is in the region.
    bool InRegion() const {
        return mRegion.region[(mInside[0] != 0 ? 1U : 0U) | (mInside[1] != 0 ? 2U : 0U)];
    }
    /// Crosses a chain and all that equal it, clockwise around the node that `half` leaves.
    void Cross(HalfEdge half) {
        // Winding numbers are greater by one to the left of a chain than to the right.
        int const step = half % 2 == 0 ? -1 : 1;
        Number const chain = half / 2;
        Turn(mGraph.chains[chain].line, step);
        for (HalfEdge equal = mGraph.equals[chain]; equal != kNone;
             equal = mGraph.equals[equal / 2]) {
            Turn(mGraph.chains[equal / 2].line, equal % 2 == 0 ? step : -step);
        }
    }
    /// Adds `step` to the winding number of a line's operand.
    void Turn(std::size_t line, int step) {
        std::uint32_t const owner = mGraph.lines.owners[line];
        WindingRule const rule = mRegion.rules[owner];
        std::int32_t& winding = mWinding[owner];
        mInside[rule.group] -= IsInside(winding, rule) ? 1U : 0U;
        winding += step;
        mInside[rule.group] += IsInside(winding, rule) ? 1U : 0U;
    }

private:
    static bool IsInside(std::int32_t winding, WindingRule rule) {
        return rule.evenOdd ? winding % 2 != 0 : winding != 0;
    }

    ChainGraph const& mGraph;
    WindingRegion const& mRegion;
    ScratchVector<std::int32_t> mWinding;          // by operand
    std::array<std::size_t, 2> mInside = {{0, 0}}; // by group: the operands that hold the place
};

/// The work of LabelByWinding().
class Labels {
public:
    Labels(ChainGraph& graph, WindingRegion const& region)
        : mGraph(graph), mPlace(graph, region, graph.chains.get_allocator().GetScratch()),
          mDone(graph.nodeCount, 0, graph.chains.get_allocator()),
          mOpen(graph.chains.get_allocator()), mCrossings(graph.chains.get_allocator()) {}

    void LabelAll(WestRays& rays);

private:
    /// A node whose half-edges are being crossed, clockwise. The place is counterclockwise of
    /// `next`.
    struct Turning {
        HalfEdge first;
        HalfEdge next;
    };

    /// Crosses a half-edge clockwise, and labels its chain.
    void CrossAndLabel(HalfEdge half) {
        bool const before = mPlace.InRegion();
        mPlace.Cross(half);
        bool const after = mPlace.InRegion();
        Chain& chain = mGraph.chains[half / 2];
        chain.left = (half % 2 == 0 ? before : after) ? 1 : 0;
        chain.operands = before != after ? 1 : 0;
        chain.labelled = true;
    }
    /// Labels all chains that are connected with a half-edge. The place is counterclockwise of it,
    /// and in the end it is there again.
    void LabelConnected(HalfEdge first);
    /// Labels all chains that are connected with chain i, by a ray from its edge k.
    void LabelFrom(Number i, Number k, WestRays& rays);
    void Open(HalfEdge half) {
        mDone[mGraph.nodeOf[half]] = 1;
        mOpen.push_back({half, half});
    }

    ChainGraph& mGraph;
    Place mPlace;
    ScratchVector<char> mDone;    // by node: 1 once it was opened
    ScratchVector<Turning> mOpen; // nodes whose half-edges are not all crossed
    ScratchVector<RayCrossing> mCrossings;
};

void Labels::LabelConnected(HalfEdge first) {
    // The walk goes around each node once. At a chain that it meets for the first time it goes on
    // around the chain's other end. When it has come around there, the place is where it was.
    // So one place with one set of winding numbers serves for all chains.
    Open(first);
    while (!mOpen.empty()) {
        Turning& node = mOpen.back();
        HalfEdge const half = node.next;
        node.next = mGraph.nextClockwise[half];
        if (node.next == node.first) {
            mOpen.pop_back();
        }
        if (mGraph.chains[half / 2].labelled) {
            mPlace.Cross(half);
            continue;
        }
        CrossAndLabel(half);
        // The side clockwise of a half-edge is counterclockwise of its twin.
        if (mDone[mGraph.nodeOf[Twin(half)]] == 0) {
            Open(Twin(half));
        }
    }
}

void Labels::LabelFrom(Number i, Number k, WestRays& rays) {
    Chain const& chain = mGraph.chains[i];
    mCrossings.clear();
    rays.CrossingsWestOf(mGraph.VertexOf(chain, k), mCrossings);
    for (RayCrossing const& crossing : mCrossings) {
        mPlace.Turn(crossing.line, crossing.step);
    }
    // West is to the left of an edge that runs upwards.
    bool const up = mGraph.PointOf(chain, k).y < mGraph.PointOf(chain, k + 1).y;
    HalfEdge const half = 2 * i + (up ? 0 : 1);
    if (chain.closed) {
        CrossAndLabel(half);
        mPlace.Cross(Twin(half));
    } else {
        LabelConnected(half);
    }
    for (RayCrossing const& crossing : mCrossings) {
        mPlace.Turn(crossing.line, -crossing.step);
    }
}

void Labels::LabelAll(WestRays& rays) {
    bool flat = false;
    for (Number i = 0; i < mGraph.chains.size(); ++i) {
        Chain const& chain = mGraph.chains[i];
        if (!chain.labelled && chain.operands != 0) {
            Number const k = mGraph.FirstNotHorizontal(chain);
            if (k < chain.count) {
                LabelFrom(i, k, rays);
            } else {
                flat = true;
            }
        }
    }
    // What such chains are connected with is horizontal, too. Its lines run along each edge as
    // often in one direction as in the other. So the same winding numbers hold on all sides.
    for (Number i = 0; flat && i < mGraph.chains.size(); ++i) {
        if (!mGraph.chains[i].labelled && mGraph.chains[i].operands != 0) {
            LabelFrom(i, 0, rays);
        }
    }
}

} // namespace

void LabelByWinding(ChainGraph& graph, WestRays& rays, WindingRegion const& region) {
    Labels(graph, region).LabelAll(rays);
}

} // namespace trammel_detail
