// SPDX-License-Identifier: MIT

#include "RingWalk_p.h"

#include "Predicates_p.h"

#include <algorithm>
#include <cstddef>
#include <utility>

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

/// The marks of a half-edge, a set of bits. One look at them tells all that a step needs.
char const kOpen = 1;
char const kBounds = 2;

/// The work of WalkRings().
class RingWalk {
public:
    /// `marks` has kOpen for each half-edge that is to be part of a ring.
    RingWalk(ChainGraph const& graph, ScratchVector<char> marks, ScratchVector<HalfEdge>* entries,
             RegionContours& result)
        : mGraph(graph), mMarks(std::move(marks)), mEntries(entries), mRings(result.contours),
          mHasOrigins(!graph.lines.origins.empty()), mWalk(graph.chains.get_allocator()),
          mPlace(graph.nodeCount, kNone, graph.chains.get_allocator()) {
        std::size_t const kUsual = 32;
        mWalk.reserve(kUsual);
        mRings.ends.reserve(kUsual);
        mRings.operands.reserve(kUsual);
        char* mark = mMarks.data();
        for (Chain const& chain : graph.chains) {
            char const bounds = chain.bounds ? kBounds : 0;
            mark[0] |= bounds;
            mark[1] |= bounds;
            mark += 2;
        }
    }

    /// Makes room for that many vertices.
    void Reserve(std::size_t most) {
        mRings.points.resize(most);
        mOut = mRings.points.data();
    }
    /// Makes the rings of all half-edges.
    void WalkAll() {
        auto const count = static_cast<HalfEdge>(mMarks.size());
        for (HalfEdge half = 0; half < count; ++half) {
            if (IsOpen(half)) {
                WalkFrom(half);
            }
        }
    }
    void Finish() { mRings.points.resize(static_cast<std::size_t>(mOut - mRings.points.data())); }

private:
    bool IsOpen(HalfEdge half) const { return (mMarks[half] & kOpen) != 0; }
    /// Makes the rings of which a half-edge is the first one met.
    void WalkFrom(HalfEdge first);
    /// Returns the next half-edge of the node, clockwise, that is on a boundary.
    HalfEdge NextOnBoundary(HalfEdge half) const {
        do {
            half = mGraph.NextClockwise(half);
        } while ((mMarks[half] & kBounds) == 0);
        return half;
    }
    /// Makes a ring of the last part of the walk, which has come back to the node where that part
    /// begins.
    void Close(std::size_t begin);
    /// Appends the vertices of a half-edge from its last one, which is left out, back to its first.
    GridPoint* AppendBackwards(HalfEdge entry, GridPoint* out) const;
    /// Appends the origins of the edges to these vertices.
    void AppendOrigins(HalfEdge entry, ScratchVector<Origin>& origins) const;
    /// Turns the last ring's values from those of the edges to its vertices to those of the edges
    /// that begin there.
    template <class Values> void MoveToFirstVertices(Values& values) const {
        std::size_t const begin = mRings.ends.empty() ? 0 : mRings.ends.back();
        auto const first = values.begin() + static_cast<std::ptrdiff_t>(begin);
        std::rotate(first, first + 1, values.end());
    }

    ChainGraph const& mGraph;
    ScratchVector<char> mMarks; // by half-edge
    ScratchVector<HalfEdge>* mEntries;
    GridLines& mRings;
    GridPoint* mOut = nullptr;
    bool mHasOrigins;
    ScratchVector<HalfEdge> mWalk; // the half-edges that the walk took
    ScratchVector<Number> mPlace;  // by node: where in the walk it is, or kNone
};

GridPoint* RingWalk::AppendBackwards(HalfEdge entry, GridPoint* out) const {
    Chain const& chain = mGraph.chains[entry / 2];
    if (chain.count == 1) {
        *out++ = mGraph.PointOf(chain, entry % 2);
        return out;
    }
    std::size_t const begin = mGraph.lines.Begin(chain.line);
    std::size_t const end = mGraph.lines.End(chain.line);
    if (entry % 2 == 0) {
        std::size_t i = mGraph.VertexOf(chain, chain.count);
        for (Number k = 0; k < chain.count; ++k) {
            i = (i == begin ? end : i) - 1;
            *out++ = mGraph.lines.points[i];
        }
    } else {
        std::size_t i = chain.first;
        for (Number k = 0; k < chain.count; ++k) {
            i = i + 1 == end ? begin : i + 1;
            *out++ = mGraph.lines.points[i];
        }
    }
    return out;
}

void RingWalk::AppendOrigins(HalfEdge entry, ScratchVector<Origin>& origins) const {
    Chain const& chain = mGraph.chains[entry / 2];
    // A half-edge is followed against its direction, so an even one against its line.
    Origin const turn = entry % 2 == 0 ? 1 : 0;
    for (Number k = 0; k < chain.count; ++k) {
        Number const edge = mGraph.VertexOf(chain, turn != 0 ? chain.count - 1 - k : k);
        origins.push_back(mGraph.lines.origins[edge] ^ turn);
    }
    // Equal chains have one edge each.
    for (HalfEdge equal = mGraph.equals[entry / 2]; equal != kNone;
         equal = mGraph.equals[equal / 2]) {
        Number const edge = mGraph.chains[equal / 2].first;
        origins.back() = std::min(origins.back(), mGraph.lines.origins[edge] ^ turn ^ (equal % 2));
    }
}

void RingWalk::Close(std::size_t begin) {
    for (std::size_t i = mWalk.size(); i-- > begin;) {
        mOut = AppendBackwards(mWalk[i], mOut);
        if (mHasOrigins) {
            AppendOrigins(mWalk[i], mRings.origins);
        }
        Chain const& chain = mGraph.chains[mWalk[i] / 2];
        if (mEntries != nullptr) {
            mEntries->insert(mEntries->end(), chain.count, mWalk[i]);
        }
        if (!chain.closed) {
            mPlace[mGraph.NodeOf(mWalk[i])] = kNone;
        }
    }
    mWalk.resize(begin);
    if (mHasOrigins) {
        MoveToFirstVertices(mRings.origins);
    }
    if (mEntries != nullptr) {
        MoveToFirstVertices(*mEntries);
    }
    mRings.ends.push_back(static_cast<std::size_t>(mOut - mRings.points.data()));
    mRings.operands.push_back(0);
}

void RingWalk::WalkFrom(HalfEdge first) {
    if (mGraph.chains[first / 2].closed) {
        mWalk.push_back(first);
        Close(0);
        return;
    }
    HalfEdge end = first;
    do {
        Number const node = mGraph.NodeOf(end);
        if (mPlace[node] != kNone) {
            Close(mPlace[node]);
        }
        mPlace[node] = static_cast<Number>(mWalk.size());
        mWalk.push_back(end);
        mMarks[end] = kBounds;
        end = NextOnBoundary(Twin(end));
    } while (IsOpen(end));
    Close(0);
}

} // namespace

RegionContours WalkRings(ChainGraph const& graph, ScratchVector<char> open,
                         ScratchVector<HalfEdge>* entries) {
    RegionContours result(graph.chains.get_allocator().GetScratch());
    GridLines& rings = result.contours;
    RingWalk walk(graph, std::move(open), entries, result);
    // Each edge is part of at most one ring on each side, and on one side only without entries.
    walk.Reserve((entries != nullptr ? 2 : 1) * graph.lines.points.size());
    walk.WalkAll();
    walk.Finish();
    result.holes.reserve(rings.Count());
    for (std::size_t i = 0; i < rings.Count(); ++i) {
        result.holes.push_back(IsCounterclockwise(rings, i) ? 1 : 0);
    }
    return result;
}

} // namespace trammel_detail
