// SPDX-License-Identifier: MIT
//
// Closed lines on the clipper's grid, and a tree of boxes over their edges.
#ifndef TRAMMEL_CLIPPERLINES_P_H
#define TRAMMEL_CLIPPERLINES_P_H

#include "ClipperGrid_p.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace trammel_detail {

/// A set of operands, one bit each.
typedef unsigned char Operands;

/// Closed lines: the vertices of all of them one after the other, where each ends, and the operand
/// that it bounds.
struct GridLines {
    std::vector<GridPoint> points;
    std::vector<std::size_t> ends;
    std::vector<Operands> operands;

    std::size_t Count() const { return ends.size(); }
    std::size_t Begin(std::size_t i) const { return i == 0 ? 0 : ends[i - 1]; }
    std::size_t End(std::size_t i) const { return ends[i]; }

    /// Ends the line that was begun with points.push_back(): takes out what encloses nothing
    /// (repeated vertices, edges that run back over the one before), and the whole line if fewer
    /// than three vertices are left. The parity of no point changes.
    void Close(Operands operand);
};

/// An edge, in the direction of its line.
struct GridEdge {
    GridPoint a;
    GridPoint b;
};

/// A rectangle with its edges; none as long as x0 > x1.
struct GridBox {
    std::int64_t x0 = std::numeric_limits<std::int64_t>::max();
    std::int64_t y0 = std::numeric_limits<std::int64_t>::max();
    std::int64_t x1 = std::numeric_limits<std::int64_t>::min();
    std::int64_t y1 = std::numeric_limits<std::int64_t>::min();

    void Include(GridBox const& b) {
        x0 = std::min(x0, b.x0);
        y0 = std::min(y0, b.y0);
        x1 = std::max(x1, b.x1);
        y1 = std::max(y1, b.y1);
    }
    bool Contains(GridPoint p) const { return x0 <= p.x && p.x <= x1 && y0 <= p.y && p.y <= y1; }
    /// Whether the two have a point in common. Without branches: which of the four comparisons
    /// fails is as good as random.
    bool Meets(GridBox const& b) const {
        return (static_cast<int>(x0 <= b.x1) & static_cast<int>(b.x0 <= x1) &
                static_cast<int>(y0 <= b.y1) & static_cast<int>(b.y0 <= y1)) != 0;
    }
};

inline GridBox BoxOf(GridPoint a, GridPoint b) {
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}
inline GridBox BoxOf(GridEdge const& e) { return BoxOf(e.a, e.b); }

/// A tree of boxes over the edges of closed lines. Its leaves are chains of edges that rise or
/// fall, and go east or west, all the way: the edges of a chain have nothing in common but their
/// ends.
///
/// Refers to the lines, which must stay as they are. Edges are numbered as their first points are.
class EdgeTree {
public:
    /// What comes together in a box: what follows each other on a line, which is near each other in
    /// the plane in most drawings; or, at the cost of sorting, what is near each other. The latter
    /// pays where long edges have been cut to many short ones.
    enum class Order { kLines, kPlaces };

    /// The boxes reach `margin` further than the edges. `fresh` has a 1 for each edge that is to be
    /// looked at, or is empty if all are.
    EdgeTree(GridLines const& lines, std::vector<char> fresh, GridPoint margin, Order order);

    GridLines const& Lines() const { return mLines; }
    bool IsInOrderOfLines() const { return mOrder == Order::kLines; }
    std::size_t Count() const { return mEdges.size(); }
    GridEdge const& At(std::size_t i) const { return mEdges[i]; }
    /// The number of the edge's second vertex.
    std::size_t SecondOf(std::size_t edge) const {
        return edge + 1 < Count() && mFirst[edge + 1] == 0 ? edge + 1 : StartOfLine(edge);
    }

    /// Calls visit(i, j, follow), i < j, for all pairs of edges, at least one of them fresh, whose
    /// boxes have a point in common; those of one chain only if asked for. `follow` is true for
    /// those that follow each other on a line.
    template <class Visit> void ForMeetingPairs(bool withinChains, Visit&& visit) const;

    /// The operands that points directly west of an edge that is not horizontal, near its lower
    /// end, lie in by the even-odd rule. Exact, also where edges share that end. The tree is in the
    /// order of the lines.
    Operands InsideWestOf(std::size_t edge) const;

private:
    static constexpr std::size_t kFan = 4;
    static constexpr std::size_t kLongestChain = 8;
    static constexpr std::size_t kLongestSortedChain = 2;

    /// The edges of a leaf.
    struct Chain {
        std::size_t begin;
        std::size_t end;
    };

    /// A node's box, and whether there is a fresh edge in it.
    struct Node {
        GridBox box;
        bool fresh = false;

        void Include(Node const& n) {
            box.Include(n.box);
            fresh = fresh || n.fresh;
        }
        bool Concerns(Node const& n) const {
            return (static_cast<int>(fresh) | static_cast<int>(n.fresh)) != 0 && box.Meets(n.box);
        }
    };
    typedef std::vector<Node> Level;

    struct Pair {
        std::size_t level;
        std::size_t i;
        std::size_t j;
    };

    /// The children of a node: nodes of the level below, or edges.
    std::size_t FirstOf(std::size_t level, std::size_t node) const {
        return level == 0 ? mChains[node].begin : node * kFan;
    }
    std::size_t EndOf(std::size_t level, std::size_t node) const {
        return level == 0 ? mChains[node].end
                          : std::min(node * kFan + kFan, mLevels[level - 1].size());
    }
    void SortChains(Level& level);
    /// Whether edges i < j follow each other.
    bool Follow(std::size_t i, std::size_t j) const;
    GridBox Widened(GridBox const& b) const {
        return {b.x0 - mMargin.x, b.y0 - mMargin.y, b.x1 + mMargin.x, b.y1 + mMargin.y};
    }
    std::size_t LineOf(std::size_t edge) const {
        auto const line = std::upper_bound(mLines.ends.begin(), mLines.ends.end(), edge);
        return static_cast<std::size_t>(line - mLines.ends.begin());
    }
    std::size_t StartOfLine(std::size_t edge) const { return mLines.Begin(LineOf(edge)); }
    bool IsFresh(std::size_t edge) const { return mFreshEdges.empty() || mFreshEdges[edge] != 0; }

    GridLines const& mLines;
    std::vector<char> mFreshEdges;
    GridPoint mMargin;
    Order mOrder;
    std::vector<GridEdge> mEdges;
    std::vector<char> mFirst; // one an edge: 1 for the first of its line
    std::vector<Chain> mChains;
    std::vector<Level> mLevels; // [0] chains, [i] over [i - 1], the last has one
};

template <class Visit> void EdgeTree::ForMeetingPairs(bool withinChains, Visit&& visit) const {
    std::vector<Pair> open;
    if (!mEdges.empty() && mLevels.back()[0].fresh) {
        open.push_back({mLevels.size() - 1, 0, 0});
    }
    while (!open.empty()) {
        auto const [level, i, j] = open.back();
        open.pop_back();
        std::size_t const firstJ = FirstOf(level, j);
        std::size_t const endI = EndOf(level, i);
        std::size_t const endJ = EndOf(level, j);
        if (level > 0) {
            Level const& nodes = mLevels[level - 1];
            for (std::size_t k = FirstOf(level, i); k < endI; ++k) {
                std::size_t l = firstJ;
                if (i == j) {
                    l = k + 1;
                    if ((level > 1 || withinChains) && nodes[k].fresh) {
                        open.push_back({level - 1, k, k});
                    }
                }
                for (; l < endJ; ++l) {
                    if (nodes[k].Concerns(nodes[l])) {
                        open.push_back({level - 1, k, l});
                    }
                }
            }
            continue;
        }
        if (i == j && !withinChains) {
            continue;
        }
        std::array<GridBox, kLongestChain> boxes;
        for (std::size_t l = firstJ; l < endJ; ++l) {
            boxes[l - firstJ] = Widened(BoxOf(mEdges[l]));
        }
        for (std::size_t k = FirstOf(level, i); k < endI; ++k) {
            GridBox const box = Widened(BoxOf(mEdges[k]));
            bool const fresh = IsFresh(k);
            if (!box.Meets(mLevels[0][j].box) || !(fresh || mLevels[0][j].fresh)) {
                continue;
            }
            for (std::size_t l = i == j ? k + 1 : firstJ; l < endJ; ++l) {
                if (box.Meets(boxes[l - firstJ]) && (fresh || IsFresh(l))) {
                    visit(std::min(k, l), std::max(k, l), Follow(std::min(k, l), std::max(k, l)));
                }
            }
        }
    }
}

} // namespace trammel_detail

#endif
