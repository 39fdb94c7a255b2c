// SPDX-License-Identifier: MIT

// A walk through the plane that crosses all chains of a graph and keeps winding numbers. Not
// installed.

#ifndef TRAMMEL_WINDINGWALK_P_H
#define TRAMMEL_WINDINGWALK_P_H

#include "ChainGraph_p.h"
#include "EdgeTree_p.h"
#include "Scratch_p.h"
#include "WestRays_p.h"

#include <cstddef>

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
/// Cost: O(n) calls for n chains, the equal ones included; and a ray for each connected part.
template <class Place> class WindingWalk {
public:
    WindingWalk(ChainGraph& graph, Place& place)
        : mGraph(graph), mPlace(place), mDone(graph.nodeCount, 0, graph.chains.get_allocator()),
          mOpen(graph.chains.get_allocator()), mCrossings(graph.chains.get_allocator()) {}

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
    /// Crosses all chains that are connected with a half-edge. The place is counterclockwise of it,
    /// and in the end it is there again.
    void VisitConnected(HalfEdge first);
    /// Crosses all chains that are connected with chain i, by a ray from its edge k.
    void VisitFrom(Number i, Number k, WestRays& rays);
    void Open(HalfEdge half) {
        mDone[mGraph.NodeOf(half)] = 1;
        mOpen.push_back({half, half});
    }

    ChainGraph& mGraph;
    Place& mPlace;
    ScratchVector<char> mDone;    // by node: 1 once it was opened
    ScratchVector<Turning> mOpen; // nodes whose half-edges are not all crossed
    ScratchVector<RayCrossing> mCrossings;
};

template <class Place> void WindingWalk<Place>::VisitConnected(HalfEdge first) {
    // The walk goes around each node once. At a chain that it meets for the first time it goes on
    // around the chain's other end. When it has come around there, the place is where it was.
    // So one place with one set of winding numbers serves for all chains.
    Open(first);
    while (!mOpen.empty()) {
        Turning& node = mOpen.back();
        HalfEdge const half = node.next;
        node.next = mGraph.NextClockwise(half);
        if (node.next == node.first) {
            mOpen.pop_back();
        }
        if (mGraph.chains[half / 2].labelled) {
            mPlace.Cross(half);
            continue;
        }
        CrossFirst(half);
        // The side clockwise of a half-edge is counterclockwise of its twin.
        if (mDone[mGraph.NodeOf(Twin(half))] == 0) {
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
    // West is to the left of an edge that runs upwards.
    bool const up = mGraph.PointOf(chain, k).y < mGraph.PointOf(chain, k + 1).y;
    HalfEdge const half = 2 * i + (up ? 0 : 1);
    if (chain.closed) {
        CrossFirst(half);
        mPlace.Cross(Twin(half));
    } else {
        VisitConnected(half);
    }
    for (RayCrossing const& crossing : mCrossings) {
        mPlace.Turn(crossing.line, -crossing.step);
    }
}

template <class Place> void WindingWalk<Place>::VisitAll(WestRays& rays) {
    bool flat = false;
    for (Number i = 0; i < mGraph.chains.size(); ++i) {
        Chain const& chain = mGraph.chains[i];
        if (!chain.labelled && chain.operands != 0) {
            Number const k = mGraph.FirstNotHorizontal(chain);
            if (k < chain.count) {
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
