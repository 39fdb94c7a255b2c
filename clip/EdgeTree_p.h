// SPDX-License-Identifier: MIT

// A tree of boxes over the edges of closed lines. Not installed.

#ifndef TRAMMEL_EDGETREE_P_H
#define TRAMMEL_EDGETREE_P_H

#include "EdgeSplit_p.h"
#include "Lines_p.h"
#include "Scratch_p.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace trammel_detail {

/// A box in cells so coarse that four coordinates fit in one number, and one subtraction compares
/// all of them. Boxes that meet do so in cells, too. Boxes of drawings that do not meet are mostly
/// apart in cells.
class CoarseBox {
public:
    CoarseBox() = default;
    /// Takes any box. A margin can be the distance of two doubles, twice the width of a drawing.
    explicit CoarseBox(GridBox const& b)
        : mBits(Cell(b.lowX) | Cell(b.lowY) << 16 | (kMost - Cell(b.highX)) << 32 |
                (kMost - Cell(b.highY)) << 48) {}

    /// Returns what MayMeet() has to be given for another box.
    std::uint64_t Limits() const { return kGuards | (kAllMost - (mBits << 32 | mBits >> 32)); }
    /// False when the box is apart from the one that has these limits.
    bool MayMeet(std::uint64_t limits) const { return ((limits - mBits) & kGuards) == kGuards; }

private:
    static constexpr int kCellBits = 49; // the upper 15 bits number the cells
    static constexpr std::uint64_t kMost = 0x7FFF;
    static constexpr std::uint64_t kAllMost = 0x7FFF7FFF7FFF7FFF;
    static constexpr std::uint64_t kGuards = 0x8000800080008000; // stay where nothing is borrowed

    static std::uint64_t Cell(std::int64_t v) {
        return static_cast<std::uint64_t>((v >> kCellBits) + (1 << 14));
    }

    std::uint64_t mBits;
};

/// A crossing of a ray with a closed line.
struct RayCrossing {
    std::size_t line;
    int step; ///< what winding numbers of the line grow by there, toward the start of the ray
};

/// A tree of boxes over the edges of closed lines. Its leaves are chains of edges. Where many edges
/// are active, chains are monotone in x and in y, so their edges have nothing in common but ends.
///
/// Refers to the lines, which must stay as they are. Each edge has the number of its first point.
class EdgeTree {
public:
    /// 32 bits can number the two ends of that many edges.
    static constexpr std::size_t kMostEdges = std::size_t{1} << 31;

    /// The order of the leaves. Neighbours come together in a box.
    enum class Order {
        kLines,  ///< along the lines, where neighbours are near each other in most drawings
        kMorton, ///< along Morton's curve, which pays where long edges were cut to many short ones
    };

    /// The boxes reach `margin` further than the edges. `active` has a 1 for each edge that has to
    /// be held against all others; an empty one stands for all edges. Edges with kCopy are in no
    /// pair, and a tree with such edges casts no rays. Throws std::length_error for more than
    /// kMostEdges.
    EdgeTree(GridLines const& lines, ScratchVector<char> active, GridPoint margin, Order order);
    /// No tree, for somebody who finds pairs of edges without one.
    EdgeTree(GridLines const& lines, ScratchVector<char> active);

    bool IsInOrderOfLines() const { return mOrder == Order::kLines; }
    /// False where the tree has no boxes, because it costs less to hold edges against all others.
    bool HasBoxes() const { return !mNodes.empty(); }
    /// False where the tree leaves edges out that are far from all active ones. Such a tree casts
    /// no rays, nor does one with copies.
    bool IsWhole() const { return !mIsSparse; }
    std::size_t Count() const { return mLines.points.size(); }
    GridEdge At(std::size_t i) const {
        return mEdges.empty() ? GridEdge{mLines.points[i], mLines.points[SecondOf(i)]} : mEdges[i];
    }
    /// Returns the number of the edge's second vertex.
    std::size_t SecondOf(std::size_t edge) const {
        return edge + 1 < Count() && mFirst[edge + 1] == 0 ? edge + 1 : StartOfLine(edge);
    }
    /// Returns the number of the edge that the edge follows.
    std::size_t BeforeOf(std::size_t edge) const {
        return mFirst[edge] == 0 ? edge - 1 : mLines.End(LineOf(edge)) - 1;
    }
    /// True when edges i < j follow each other.
    bool Follow(std::size_t i, std::size_t j) const {
        if (j == i + 1) {
            return mFirst[j] == 0;
        }
        // They do so, too, as the first edge of a line and its last.
        return mFirst[i] != 0 && (j + 1 == Count() || mFirst[j + 1] != 0) &&
               mLines.End(LineOf(i)) == j + 1;
    }
    /// Returns the first active edge from `edge` on, or Count() for none. Not for trees in which
    /// all edges are active.
    std::size_t NextActive(std::size_t edge) const {
        if (edge == Count()) {
            return edge;
        }
        char const* const begin = mActiveEdges.data();
        void const* const found = std::memchr(begin + edge, 1, Count() - edge);
        return found != nullptr ? static_cast<std::size_t>(static_cast<char const*>(found) - begin)
                                : Count();
    }

    /// Returns the marks of active edges, which are lost.
    ScratchVector<char> TakeActive() { return std::move(mActiveEdges); }

    /// Calls visit(i, j, follow) with i < j for pairs of edges, where `follow` tells whether they
    /// follow each other on a line. All pairs are visited, once each, that fulfil these conditions:
    ///
    /// - At least one of the two is active.
    /// - Their boxes with the margins have a point in common.
    /// - They do not belong to one chain, unless `withinChains` is true.
    ///
    /// Pairs whose edges are further apart than twice the margin may be left out, and pairs of one
    /// chain may come nevertheless.
    template <class Visit> void ForMeetingPairs(bool withinChains, Visit&& visit) const;

    /// Returns the operands that hold the points directly west of the edge, just above its lower
    /// end, by the even-odd rule. Exact, also where edges share that end. Adds the number of boxes
    /// that the ray looks at to `steps`. Requires that:
    ///
    /// - the edge is not horizontal, and
    /// - the tree is whole, in the order of the lines, without copies, and has boxes.
    Operands InsideWestOf(std::size_t edge, std::size_t& steps) const;
    /// Appends the crossings of the lines with a ray from there to the west. Those of one line may
    /// be left out where they cancel. Returns the number of boxes that the ray looks at.
    std::size_t CrossingsWestOf(std::size_t edge, ScratchVector<RayCrossing>& crossings) const;

private:
    static constexpr std::size_t kFan = 4;                // children of a node
    static constexpr std::size_t kMostAtTop = 12;         // nodes of the last level
    static constexpr std::size_t kMostLevels = 17;        // enough for kMostEdges
    static constexpr std::size_t kLongestChain = 8;       // edges of a leaf
    static constexpr std::size_t kLongestSortedChain = 2; // the same along Morton's curve
    static constexpr std::size_t kFewActive = 16;         // so few active edges need no boxes
    static constexpr std::size_t kFewEdges = 48;          // nor do so few edges
    static constexpr std::size_t kFewToSplit = 256;       // so few edges are not worth splits
    // Where many chains meet, a tree keeps little apart. Up to so many edges do without then.
    static constexpr std::size_t kMostEntangled = 2048;

    /// The edges of a leaf. Where few edges are active, they need not be monotone.
    struct Chain {
        std::uint32_t begin;
        std::uint32_t end;
    };

    /// A node's box, and whether it holds an active edge.
    struct Node {
        GridBox box;
        bool active = false;

        void Include(Node const& n) {
            box.Include(n.box);
            active = active || n.active;
        }
        bool Concerns(Node const& n) const {
            return (static_cast<int>(active) | static_cast<int>(n.active)) != 0 && box.Meets(n.box);
        }
    };

    /// A direction that tells slanted, nearly parallel edges apart although their boxes all meet.
    /// Hatching has such edges. The position of a point is h x + v y, with x and y in units of
    /// 2^kUnitBits steps. `reach` bounds the rounding of that and the margins. It is 0 where there
    /// is no such direction.
    struct Slant {
        std::int64_t h = 0;
        std::int64_t v = 0;
        std::int64_t reach = 0;

        std::int64_t Of(GridPoint p) const {
            return h * (p.x >> kUnitBits) + v * (p.y >> kUnitBits);
        }
    };
    /// Coordinates are at most 2^60, so at most 2^44 in these units. The direction's h and v are
    /// less than 2^15. So a position is less than 2^60.
    static constexpr int kUnitBits = 16;
    static constexpr double kSlantUnits = 32767.0;

    /// The positions that a node covers in the direction of the slant.
    struct Span {
        std::int64_t low;
        std::int64_t high;

        void Include(Span const& s) {
            low = std::min(low, s.low);
            high = std::max(high, s.high);
        }
        bool Meets(Span const& s) const { return low <= s.high && s.low <= high; }
    };

    /// Two nodes of a level, or one node twice, that may have edges that meet.
    struct Pair {
        std::uint32_t level;
        std::uint32_t i;
        std::uint32_t j;
    };
    /// The pairs still to be visited in a walk through the tree. On each level they come from one
    /// pair of the level above, so there are at most kFan * kFan.
    class Stack {
    public:
        void Push(std::size_t level, std::size_t i, std::size_t j) {
            mPairs[mSize++] = {static_cast<std::uint32_t>(level), static_cast<std::uint32_t>(i),
                               static_cast<std::uint32_t>(j)};
        }
        bool Empty() const { return mSize == 0; }
        Pair Pop() { return mPairs[--mSize]; }

    private:
        std::array<Pair, kMostLevels * kFan * kFan> mPairs;
        std::size_t mSize = 0;
    };

    /// The children of a node, from FirstOf() to EndOf(): nodes of the level below, or edges.
    std::size_t FirstOf(std::size_t level, std::size_t node) const {
        return level == 0 ? mChains[node].begin : node * kFan;
    }
    std::size_t EndOf(std::size_t level, std::size_t node) const {
        return level == 0 ? mChains[node].end : std::min(node * kFan + kFan, SizeOf(level - 1));
    }
    std::size_t SizeOf(std::size_t level) const { return mLevels[level + 1] - mLevels[level]; }
    Node const* NodesOf(std::size_t level) const { return mNodes.data() + mLevels[level]; }
    void FillEdges();
    void AddChains(Order order, bool withBoxes);
    void AddSparseChains();
    void AddLevels();
    void SortChains();
    class ActiveCells;
    /// What random pairs of chains tell.
    struct Sample {
        std::size_t drawn = 0;
        std::size_t meeting = 0; ///< pairs whose boxes meet, and that the slant does not tell apart
        std::size_t apart = 0;   ///< of these, pairs without edges that come near each other
    };
    bool AreFewEntangled() const;
    bool AreEntangled(Sample const& sample) const;
    double OthersAbove() const;
    Sample ChooseSlant(Slant& slant) const;
    bool AreNear(std::size_t k, std::size_t l) const;
    void SplitWhereWorthwhile(Sample const& sample, std::size_t activeCount);
    Slant SlantAcross(GridEdge const& e) const;
    Span SpanOf(std::size_t chain, Slant const& slant) const;
    /// True when two nodes of a level may have edges that meet, one of them active.
    bool Concern(std::size_t level, std::size_t k, std::size_t l) const {
        Node const* const nodes = NodesOf(level);
        return nodes[k].Concerns(nodes[l]) &&
               (mSpans.empty() || mSpans[mLevels[level] + k].Meets(mSpans[mLevels[level] + l]));
    }
    template <class Visit> void ForMeetingActive(Visit&& visit) const;
    template <class Visit> void ForRuns(Visit&& visit) const;
    template <class Visit> void ForMeetingSparseActive(Visit&& visit) const;
    template <class Visit> void ForMeetingAllPairs(bool withinChains, Visit&& visit) const;
    template <class Visit> void ForMeetingEdges(std::size_t i, std::size_t j, Visit&& visit) const;
    template <class Cross> std::size_t CastWest(std::size_t edge, Cross&& cross) const;
    GridBox Widened(GridBox const& b) const { return b.Widened(mMargin.x, mMargin.y); }
    std::size_t LineOf(std::size_t edge) const {
        auto const line = std::upper_bound(mLines.ends.begin(), mLines.ends.end(), edge);
        return static_cast<std::size_t>(line - mLines.ends.begin());
    }
    std::size_t StartOfLine(std::size_t edge) const { return mLines.Begin(LineOf(edge)); }
    bool IsActive(std::size_t edge) const {
        return mActiveEdges.empty() || mActiveEdges[edge] == 1;
    }
    bool IsCopy(std::size_t edge) const {
        return !mActiveEdges.empty() && mActiveEdges[edge] == kCopy;
    }

    GridLines const& mLines;
    ScratchVector<char> mActiveEdges;
    GridPoint mMargin;
    NearTest mNearTest;
    Order mOrder;
    ScratchVector<GridEdge> mEdges; // empty where few edges are active, so that few are looked at
    ScratchVector<char> mFirst;     // one an edge: 1 for the first of its line
    ScratchVector<Chain> mChains;
    ScratchVector<Node> mNodes;                         // level by level: chains first
    ScratchVector<Span> mSpans;                         // the same, or empty without a slant
    std::array<std::size_t, kMostLevels + 1> mLevels{}; // where each begins, and the last ends
    std::size_t mTop = 0;                               // the last level
    bool mIsSparse = false; // whether few edges are active, so that only those near them have boxes
    // Where boxes do not tell edges apart, all pairs that are near, and each edge's chain.
    ScratchVector<EdgePair> mPairs;
    ScratchVector<std::uint32_t> mChainOf;
};

template <class Visit> void EdgeTree::ForMeetingPairs(bool withinChains, Visit&& visit) const {
    if (!mChainOf.empty()) {
        for (auto const [i, j] : mPairs) {
            if (withinChains || mIsSparse || mChainOf[i] != mChainOf[j]) {
                visit(i, j, Follow(i, j));
            }
        }
        return;
    }
    if (!HasBoxes()) {
        if (mChains.empty()) {
            ForMeetingActive(visit);
        } else {
            ForMeetingAllPairs(withinChains, visit);
        }
        return;
    }
    if (mIsSparse) {
        ForMeetingSparseActive(visit);
        return;
    }
    Stack open;
    auto const walk = [&] {
        while (!open.Empty()) {
            auto const [level, i, j] = open.Pop();
            if (level == 0) {
                ForMeetingEdges(i, j, visit);
                continue;
            }
            std::size_t const endI = EndOf(level, i);
            std::size_t const endJ = EndOf(level, j);
            Node const* const nodes = NodesOf(level - 1);
            for (std::size_t k = FirstOf(level, i); k < endI; ++k) {
                std::size_t l = FirstOf(level, j);
                if (i == j) {
                    l = k + 1;
                    if ((level > 1 || withinChains) && nodes[k].active) {
                        open.Push(level - 1, k, k);
                    }
                }
                for (; l < endJ; ++l) {
                    if (Concern(level - 1, k, l)) {
                        open.Push(level - 1, k, l);
                    }
                }
            }
        }
    };
    Node const* const nodes = NodesOf(mTop);
    for (std::size_t k = 0; k < SizeOf(mTop); ++k) {
        if ((mTop > 0 || withinChains) && nodes[k].active) {
            open.Push(mTop, k, k);
            walk();
        }
        for (std::size_t l = k + 1; l < SizeOf(mTop); ++l) {
            if (Concern(mTop, k, l)) {
                open.Push(mTop, k, l);
                walk();
            }
        }
    }
}

/// Visits the pairs of edges of two chains, or within one.
template <class Visit>
void EdgeTree::ForMeetingEdges(std::size_t i, std::size_t j, Visit&& visit) const {
    Node const& nodeI = mNodes[i];
    Node const& nodeJ = mNodes[j];
    struct {
        GridBox box;
        std::size_t edge;
    } near[kLongestChain];
    std::size_t count = 0;
    for (std::size_t l = mChains[j].begin; l < mChains[j].end; ++l) {
        near[count] = {Widened(BoxOf(mEdges[l])), l};
        count += nodeI.box.Meets(near[count].box) && (nodeI.active || IsActive(l)) ? 1 : 0;
    }
    for (std::size_t k = mChains[i].begin; k < mChains[i].end && count > 0; ++k) {
        GridBox const box = Widened(BoxOf(mEdges[k]));
        bool const active = IsActive(k);
        if (!box.Meets(nodeJ.box) || !(active || nodeJ.active)) {
            continue;
        }
        for (std::size_t n = 0; n < count; ++n) {
            std::size_t const l = near[n].edge;
            if (box.Meets(near[n].box) && (i != j || k < l) && (active || IsActive(l)) &&
                mNearTest.MayBeNear(mEdges[k], mEdges[l])) {
                visit(std::min(k, l), std::max(k, l), Follow(std::min(k, l), std::max(k, l)));
            }
        }
    }
}

/// Visits all pairs with an active edge where there are few of these. There are no chains then.
template <class Visit> void EdgeTree::ForMeetingActive(Visit&& visit) const {
    struct Active {
        std::uint64_t limits;
        std::size_t edge;
        GridBox box;
    };
    std::array<Active, kFewEdges> actives;
    std::size_t count = 0;
    GridBox all;
    for (std::size_t i = NextActive(0); i < Count(); i = NextActive(i + 1)) {
        GridBox const box = Widened(Widened(BoxOf(At(i))));
        all.Include(box);
        actives[count++] = {CoarseBox(box).Limits(), i, box};
    }
    ForRuns([&](std::size_t begin, std::size_t end, GridPoint after, GridBox const& run) {
        if (!run.Meets(all)) {
            return;
        }
        CoarseBox const coarseRun(run);
        std::array<CoarseBox, kLongestChain> coarse;
        bool ready = false;
        for (std::size_t k = 0; k < count; ++k) {
            Active const& active = actives[k];
            if (!coarseRun.MayMeet(active.limits)) {
                continue;
            }
            auto const boxOf = [&](std::size_t j) {
                return BoxOf(mLines.points[j], j + 1 < end ? mLines.points[j + 1] : after);
            };
            for (std::size_t j = begin; j < end && !ready; ++j) {
                coarse[j - begin] = CoarseBox(boxOf(j));
            }
            ready = true;
            std::size_t const i = active.edge;
            for (std::size_t j = begin; j < end; ++j) {
                if (coarse[j - begin].MayMeet(active.limits) && active.box.Meets(boxOf(j)) &&
                    !IsCopy(j) && (j > i || (j < i && !IsActive(j)))) {
                    visit(std::min(i, j), std::max(i, j), Follow(std::min(i, j), std::max(i, j)));
                }
            }
        }
    });
}

/// Calls visit(begin, end, after, box) for runs of edges of one line, which make up all edges.
/// `after` is the last end of a run.
template <class Visit> void EdgeTree::ForRuns(Visit&& visit) const {
    for (std::size_t line = 0; line < mLines.Count(); ++line) {
        std::size_t const first = mLines.Begin(line);
        std::size_t const last = mLines.End(line);
        for (std::size_t begin = first; begin < last; begin += kLongestChain) {
            std::size_t const end = std::min(begin + kLongestChain, last);
            GridPoint const after = mLines.points[end < last ? end : first];
            GridBox box = BoxOf(mLines.points[begin], after);
            for (std::size_t i = begin + 1; i < end; ++i) {
                box.Include(mLines.points[i].x, mLines.points[i].y);
            }
            visit(begin, end, after, box);
        }
    }
}

/// Visits all pairs where few edges are active, by looking up each of these in the tree. Includes
/// pairs of one chain.
template <class Visit> void EdgeTree::ForMeetingSparseActive(Visit&& visit) const {
    Stack open;
    for (std::size_t chain = 0; chain < mChains.size(); ++chain) {
        for (std::size_t i = mChains[chain].begin; i < mChains[chain].end && mNodes[chain].active;
             ++i) {
            if (!IsActive(i)) {
                continue;
            }
            GridBox const box = Widened(BoxOf(At(i)));
            for (std::size_t top = 0; top < SizeOf(mTop); ++top) {
                open.Push(mTop, top, 0);
                while (!open.Empty()) {
                    auto const [level, node, unused] = open.Pop();
                    static_cast<void>(unused);
                    if (!box.Meets(NodesOf(level)[node].box) ||
                        !(mSpans.empty() || mSpans[mLevels[level] + node].Meets(mSpans[chain]))) {
                        continue;
                    }
                    if (level > 0) {
                        for (std::size_t k = FirstOf(level, node); k < EndOf(level, node); ++k) {
                            open.Push(level - 1, k, 0);
                        }
                        continue;
                    }
                    std::size_t const end = mChains[node].end;
                    GridPoint const after = At(end - 1).b;
                    for (std::size_t j = mChains[node].begin; j < end; ++j) {
                        GridPoint const next = j + 1 < end ? mLines.points[j + 1] : after;
                        if (box.Meets(Widened(BoxOf(mLines.points[j], next))) && !IsCopy(j) &&
                            (j > i || (j < i && !IsActive(j)))) {
                            visit(std::min(i, j), std::max(i, j),
                                  Follow(std::min(i, j), std::max(i, j)));
                        }
                    }
                }
            }
        }
    }
}

/// Visits all pairs where all edges are active.
template <class Visit> void EdgeTree::ForMeetingAllPairs(bool withinChains, Visit&& visit) const {
    std::size_t const edges = Count();
    ScratchVector<GridBox> boxes(edges, mEdges.get_allocator());
    ScratchVector<CoarseBox> coarse(edges, mEdges.get_allocator());
    ScratchVector<std::uint32_t> numbers(edges, mEdges.get_allocator());
    ScratchVector<NearTest::Direction> directions(edges, mEdges.get_allocator());
    for (std::size_t i = 0; i < edges; ++i) {
        boxes[i] = Widened(BoxOf(mEdges[i]));
        coarse[i] = CoarseBox(boxes[i]);
        directions[i] = mNearTest.DirectionOf(mEdges[i]);
    }
    std::uint32_t* const meeting = numbers.data();
    CoarseBox const* const all = coarse.data();
    NearTest::Direction const* const along = directions.data();
    GridEdge const* const edge = mEdges.data();
    for (Chain const& chain : mChains) {
        for (std::size_t i = chain.begin; i < chain.end; ++i) {
            std::uint64_t const limits = all[i].Limits();
            std::size_t count = 0;
            for (std::size_t j = withinChains ? i + 1 : chain.end; j < edges; ++j) {
                // No branches: whether boxes meet is mostly as good as random.
                meeting[count] = static_cast<std::uint32_t>(j);
                count += all[j].MayMeet(limits) ? 1 : 0;
            }
            GridBox const box = boxes[i];
            GridBox const* const others = boxes.data();
            for (std::size_t k = 0; k < count; ++k) {
                std::size_t const j = meeting[k];
                if (box.Meets(others[j]) &&
                    NearTest::MayBeNear(edge[i].a, along[i], edge[j].a, along[j])) {
                    visit(i, j, Follow(i, j));
                }
            }
        }
    }
}

/// Returns what EdgeTree::InsideWestOf() does, by a pass over all edges of `lines`.
Operands InsideWestOf(GridLines const& lines, std::size_t edge);
/// Appends what EdgeTree::CrossingsWestOf() does in the same way.
void CrossingsWestOf(GridLines const& lines, std::size_t edge,
                     ScratchVector<RayCrossing>& crossings);

} // namespace trammel_detail

#endif
