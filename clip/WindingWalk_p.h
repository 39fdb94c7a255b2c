// SPDX-License-Identifier: MIT

// A walk through the plane that crosses all chains of a graph and keeps winding numbers. Not
// installed.

#ifndef TRAMMEL_WINDINGWALK_P_H
#define TRAMMEL_WINDINGWALK_P_H

#include "ChainGraph_p.h"
#include "EdgeTree_p.h"
#include "Scratch_p.h"
#include "WestRays_p.h"
#include "WestSweep_p.h"

#include <cstddef>
#include <utility>

namespace trammel_detail {

/// Calls cross(line, step) for a chain and all that equal it, where `step` is what the winding
/// number of the line grows by, clockwise around the node that `half` leaves.
template <class Cross> void ForEqual(ChainGraph const& graph, HalfEdge half, Cross&& cross) {
    // Winding numbers are greater by one to the left of a chain than to the right.
    int const step = half % 2 == 0 ? -1 : 1;
    Number const chain = half / 2;
    cross(graph.chains[chain].line, step);
    for (HalfEdge equal = graph.equals[chain]; equal != kNone; equal = graph.equals[equal / 2]) {
        cross(graph.chains[equal / 2].line, equal % 2 == 0 ? step : -step);
    }
}

/// A walk that crosses all chains of a graph that lists equal chains, at each of their ends. It
/// moves a place through the plane, which keeps its winding numbers:
///
/// - place.Turn(line, step) adds `step` to the winding number of the line's operand.
/// - place.Cross(half) crosses a chain and all that equal it, clockwise around the node that `half`
///   leaves.
/// - place.CrossAndLabel(half, chain) does the same where the chain is met for the first time.
///
/// Afterwards Chain::labelled is true for all chains, of equal ones for the first.
///
/// Cost: O(n) calls for n chains, the equal ones included; and a ray for each connected part, or
/// O(n log n) for a sweep where lines lie in each other by the hundred.
template <class Place> class WindingWalk {
public:
    WindingWalk(ChainGraph& graph, Place& place)
        : mGraph(graph), mPlace(place), mDone(graph.nodeCount, 0, graph.chains.get_allocator()),
          mOpen(graph.chains.get_allocator()), mCrossings(graph.chains.get_allocator()),
          mBeside(graph.chains.get_allocator()), mStarts(graph.chains.get_allocator()) {}

    void VisitAll(WestRays& rays);

private:
    /// A node whose half-edges are being crossed, clockwise. The place is counterclockwise of
    /// `next`.
    struct Turning {
        HalfEdge first;
        HalfEdge next;
    };

    void CrossFirst(HalfEdge half) {
        Chain& chain = mGraph.chains[half / 2];
        mPlace.CrossAndLabel(half, chain);
        chain.labelled = true;
    }
    /// Where the walk along a connected part begins: counterclockwise of a half-edge.
    struct Start {
        HalfEdge half;
        Number next; ///< the next start at the same place, or kNone
    };

    /// Crosses all chains that are connected with a half-edge, and the parts beside them. The place
    /// is counterclockwise of it, and in the end it is there again.
    void VisitConnected(HalfEdge first);
    /// Visits all parts once more. A sweep tells beside which chain each of them lies.
    void VisitBySweep();
    /// Finds where each part begins. Returns the first start of the parts that lie beside nothing.
    Number FindStarts();
    /// Marks the chains that are connected with chain i in `met`, with mDone for the nodes.
    void MarkConnected(Number i, ScratchVector<char>& met);
    /// Crosses all chains that are connected with chain i, by a ray from its edge k.
    void VisitFrom(Number i, Number k, WestRays& rays);
    void Open(HalfEdge half) {
        if (!mGraph.chains[half / 2].closed) {
            mDone[mGraph.NodeOf(half)] = 1;
        }
        mOpen.push_back({half, half});
    }
    /// Opens the next part that lies counterclockwise of a half-edge. False if there is none.
    bool OpenBeside(HalfEdge half) {
        if (mBeside.empty() || mBeside[half] == kNone) {
            return false;
        }
        Start const start = mStarts[mBeside[half]];
        mBeside[half] = start.next;
        Open(start.half);
        return true;
    }
    /// Returns the next half-edge of a node. A closed chain counts as one around its two sides.
    HalfEdge Next(HalfEdge half) const {
        return mGraph.chains[half / 2].closed ? Twin(half) : mGraph.NextClockwise(half);
    }
    /// Returns the half-edge from whose lower end chain i's edge k leads up. West is
    /// counterclockwise of it.
    HalfEdge Upward(Number i, Number k) const {
        Chain const& chain = mGraph.chains[i];
        return 2 * i + (mGraph.PointOf(chain, k).y < mGraph.PointOf(chain, k + 1).y ? 0 : 1);
    }

    ChainGraph& mGraph;
    Place& mPlace;
    ScratchVector<char> mDone;    // by node: 1 once it was opened
    ScratchVector<Turning> mOpen; // nodes whose half-edges are not all crossed
    ScratchVector<RayCrossing> mCrossings;
    // After a sweep:
    ScratchVector<Number> mBeside; // by half-edge: a part that lies counterclockwise of it
    ScratchVector<Start> mStarts;
};

template <class Place> void WindingWalk<Place>::VisitConnected(HalfEdge first) {
    // The walk goes around each node once. At a chain that it meets for the first time it goes on
    // around the chain's other end. When it has come around there, the place is where it was.
    // So one place with one set of winding numbers serves for all chains.
    Open(first);
    while (!mOpen.empty()) {
        Turning& node = mOpen.back();
        HalfEdge const half = node.next;
        if (OpenBeside(half)) {
            continue;
        }
        node.next = Next(half);
        if (node.next == node.first) {
            mOpen.pop_back();
        }
        if (mGraph.chains[half / 2].labelled) {
            mPlace.Cross(half);
            continue;
        }
        CrossFirst(half);
        // The side clockwise of a half-edge is counterclockwise of its twin.
        if (!mGraph.chains[half / 2].closed && mDone[mGraph.NodeOf(Twin(half))] == 0) {
            Open(Twin(half));
        }
    }
}

template <class Place> void WindingWalk<Place>::VisitFrom(Number i, Number k, WestRays& rays) {
    Chain const& chain = mGraph.chains[i];
    mCrossings.clear();
    rays.CrossingsWestOf(mGraph.VertexOf(chain, k), mCrossings);
    for (RayCrossing const& crossing : mCrossings) {
        mPlace.Turn(crossing.line, crossing.step);
    }
    VisitConnected(Upward(i, k));
    for (RayCrossing const& crossing : mCrossings) {
        mPlace.Turn(crossing.line, -crossing.step);
    }
}

template <class Place> void WindingWalk<Place>::MarkConnected(Number i, ScratchVector<char>& met) {
    ScratchVector<HalfEdge> open({2 * i, 2 * i + 1}, met.get_allocator());
    met[i] = 1;
    while (!open.empty()) {
        HalfEdge const first = open.back();
        open.pop_back();
        if (mGraph.chains[first / 2].closed || mDone[mGraph.NodeOf(first)] != 0) {
            continue;
        }
        mDone[mGraph.NodeOf(first)] = 1;
        HalfEdge half = first;
        do {
            if (met[half / 2] == 0) {
                met[half / 2] = 1;
                open.push_back(Twin(half));
            }
            half = mGraph.NextClockwise(half);
        } while (half != first);
    }
}

template <class Place> Number WindingWalk<Place>::FindStarts() {
    // By edge: the half-edge that leads up along it.
    ScratchVector<HalfEdge> upward(mGraph.lines.points.size(), kNone, mOpen.get_allocator());
    ScratchVector<SweptEdge> edges(mOpen.get_allocator());
    for (Number i = 0; i < mGraph.chains.size(); ++i) {
        Chain const& chain = mGraph.chains[i];
        for (Number k = 0; k < chain.count && !chain.labelled; ++k) {
            GridPoint const a = mGraph.PointOf(chain, k);
            GridPoint const b = mGraph.PointOf(chain, k + 1);
            if (a.y != b.y) {
                Number const edge = mGraph.VertexOf(chain, k);
                upward[edge] = Upward(i, k);
                edges.emplace_back(a.y < b.y ? a : b, a.y < b.y ? b : a, edge);
            }
        }
    }
    mBeside.assign(2 * mGraph.chains.size(), kNone);
    Number top = kNone;
    ScratchVector<char> met(mGraph.chains.size(), 0, mOpen.get_allocator());
    SweepWest(std::move(edges), [&](SweptEdge const& edge, SweptEdge const* west) {
        HalfEdge const half = upward[edge.number];
        if (met[half / 2] != 0) {
            return;
        }
        MarkConnected(half / 2, met);
        // East of an edge is counterclockwise of the half-edge that leads down along it.
        Number& first = west != nullptr ? mBeside[Twin(upward[west->number])] : top;
        mStarts.push_back({half, first});
        first = static_cast<Number>(mStarts.size() - 1);
    });
    return top;
}

template <class Place> void WindingWalk<Place>::VisitBySweep() {
    for (Chain& chain : mGraph.chains) {
        chain.labelled = false;
    }
    for (HalfEdge const equal : mGraph.equals) {
        if (equal != kNone) {
            mGraph.chains[equal / 2].labelled = true; // with the first of its list
        }
    }
    mDone.assign(mGraph.nodeCount, 0);
    Number const top = FindStarts();
    mDone.assign(mGraph.nodeCount, 0);
    for (Number start = top; start != kNone; start = mStarts[start].next) {
        VisitConnected(mStarts[start].half);
    }
}

template <class Place> void WindingWalk<Place>::VisitAll(WestRays& rays) {
    bool flat = false;
    for (Number i = 0; i < mGraph.chains.size(); ++i) {
        Chain const& chain = mGraph.chains[i];
        if (!chain.labelled && chain.operands != 0) {
            Number const k = mGraph.FirstNotHorizontal(chain);
            if (k < chain.count) {
                if (rays.AreSlow()) {
                    VisitBySweep();
                    flat = true;
                    break;
                }
                VisitFrom(i, k, rays);
            } else {
                flat = true;
            }
        }
    }
    // What such chains are connected with is horizontal, too. Its lines run along each edge as
    // often in one direction as in the other. So the same winding numbers hold on all sides.
    for (Number i = 0; flat && i < mGraph.chains.size(); ++i) {
        if (!mGraph.chains[i].labelled && mGraph.chains[i].operands != 0) {
            VisitFrom(i, 0, rays);
        }
    }
}

} // namespace trammel_detail

#endif
