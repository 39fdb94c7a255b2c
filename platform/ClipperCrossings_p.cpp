// SPDX-License-Identifier: MIT
#include "ClipperCrossings_p.h"

#include "ClipperPredicates_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace trammel_detail {

namespace {

struct Cut {
    std::size_t edge;
    GridPoint at;
};

/// The point where two edges cross that have no end in common, to within a step of the grid. The
/// same whatever the order of the edges and their directions, so that lines that coincide are cut
/// alike.
GridPoint Crossing(GridEdge e, GridEdge f) {
    auto const direct = [](GridEdge& edge) {
        if (edge.b < edge.a) {
            std::swap(edge.a, edge.b);
        }
    };
    direct(e);
    direct(f);
    if (f.a != e.a ? f.a < e.a : f.b < e.b) {
        std::swap(e, f);
    }
    // Measured from the nearer end of f, where the rounding is least: num / den of the way.
    auto const distance = [&e](GridPoint p) {
        Int128 const cross = Cross(e.a, e.b, p);
        return static_cast<UInt128>(cross < 0 ? -cross : cross);
    };
    UInt128 num = distance(f.a);
    UInt128 const other = distance(f.b);
    UInt128 den = num + other;
    if (other < num) {
        num = other;
        std::swap(f.a, f.b);
    }
    // 63 leading bits of the denominator leave room for a quotient of 63 bits.
    while (den >> 63 != 0) {
        den >>= 1;
        num >>= 1;
    }
    Int128 const ratio = static_cast<Int128>((num << 62) / den); // of 2^62
    auto const part = [ratio](std::int64_t d) {
        return static_cast<std::int64_t>((ratio * d + (static_cast<Int128>(1) << 61)) >> 62);
    };
    GridBox const box = BoxOf(e);
    return {std::clamp(f.a.x + part(f.b.x - f.a.x), box.x0, box.x1),
            std::clamp(f.a.y + part(f.b.y - f.a.y), box.y0, box.y1)};
}

/// Finds where edges meet, and puts down who is to be cut, and which vertices coincide.
class Meetings {
public:
    /// With `pixels` edges are also cut at the vertices near them: those that an edge passes at
    /// less than half of the doubles' spacing, in x and in y. (J. D. Hobby, Practical Segment
    /// Intersection with Finite Precision Output, 1999: edges that are bent at all such vertices
    /// meet at vertices only.)
    Meetings(EdgeTree const& tree, ClipGrid const& grid, bool pixels, std::vector<char>& shared)
        : mTree(tree), mGrid(grid), mPixels(pixels), mShared(shared) {}

    std::vector<Cut> Find() {
        mTree.ForMeetingPairs([this](std::size_t i, std::size_t j, bool follow) {
            if (follow) {
                Following(i, j);
            } else {
                Share(i, j);
            }
            if (mPixels) {
                InPixels(i, j);
            } else if (!follow) {
                Exactly(i, j);
            }
        });
        return std::move(mCuts);
    }

private:
    void CutAt(std::size_t edge, GridPoint p) {
        if (p != mTree.At(edge).a && p != mTree.At(edge).b) {
            mCuts.push_back({edge, p});
        }
    }
    void CutBothWhereTheyCross(std::size_t i, std::size_t j) {
        GridPoint const p = mGrid.Snapped(Crossing(mTree.At(i), mTree.At(j)));
        CutAt(i, p);
        CutAt(j, p);
    }
    void Share(std::size_t i, std::size_t j) {
        GridEdge const& e = mTree.At(i);
        GridEdge const& f = mTree.At(j);
        if (e.a == f.a || e.a == f.b) {
            mShared[i] = 1;
            mShared[e.a == f.a ? j : mTree.SecondOf(j)] = 1;
        }
        if (e.b == f.a || e.b == f.b) {
            mShared[mTree.SecondOf(i)] = 1;
            mShared[e.b == f.a ? j : mTree.SecondOf(j)] = 1;
        }
    }
    /// Edges that follow each other overlap if the second runs back over the first.
    void Following(std::size_t i, std::size_t j) {
        GridEdge const& e = mTree.At(i);
        GridEdge const& f = mTree.At(j);
        bool const inOrder = j == i + 1;
        GridPoint const turn = inOrder ? e.b : e.a;
        GridPoint const p = inOrder ? e.a : e.b;
        GridPoint const q = inOrder ? f.b : f.a;
        if (Cross(turn, p, q) == 0 && SameDirection(turn, p, q)) {
            // The parts that are equal have to be told apart.
            mShared[inOrder ? j : i] = 1;
            CutAt(BoxOf(e).Contains(q) ? i : j, BoxOf(e).Contains(q) ? q : p);
        }
    }
    void Exactly(std::size_t i, std::size_t j) {
        GridEdge const& e = mTree.At(i);
        GridEdge const& f = mTree.At(j);
        Int128 const fa = Cross(e.a, e.b, f.a);
        Int128 const fb = Cross(e.a, e.b, f.b);
        if ((fa > 0 && fb > 0) || (fa < 0 && fb < 0)) {
            return;
        }
        Int128 const ea = Cross(f.a, f.b, e.a);
        // The two triangles on e and those on f make up the same quadrangle.
        Int128 const eb = ea + fa - fb;
        if ((ea > 0 && eb > 0) || (ea < 0 && eb < 0)) {
            return;
        }
        if (fa != 0 && fb != 0 && ea != 0 && eb != 0) {
            CutBothWhereTheyCross(i, j);
            return;
        }
        if (fa == 0 && BoxOf(e).Contains(f.a)) {
            CutAt(i, f.a);
        }
        if (fb == 0 && BoxOf(e).Contains(f.b)) {
            CutAt(i, f.b);
        }
        if (ea == 0 && BoxOf(f).Contains(e.a)) {
            CutAt(j, e.a);
        }
        if (eb == 0 && BoxOf(f).Contains(e.b)) {
            CutAt(j, e.b);
        }
    }
    void InPixels(std::size_t i, std::size_t j) {
        GridEdge const& e = mTree.At(i);
        GridEdge const& f = mTree.At(j);
        Int128 const fa = Cross(e.a, e.b, f.a);
        Int128 const fb = Cross(e.a, e.b, f.b);
        Int128 const ea = Cross(f.a, f.b, e.a);
        Int128 const eb = Cross(f.a, f.b, e.b);
        std::size_t const before = mCuts.size();
        if (Passes(e, f.a, fa)) {
            CutAt(i, f.a);
        }
        if (Passes(e, f.b, fb)) {
            CutAt(i, f.b);
        }
        if (Passes(f, e.a, ea)) {
            CutAt(j, e.a);
        }
        if (Passes(f, e.b, eb)) {
            CutAt(j, e.b);
        }
        if (mCuts.size() == before && Sign(ea) * Sign(eb) < 0 && Sign(fa) * Sign(fb) < 0) {
            CutBothWhereTheyCross(i, j);
        }
    }
    /// Whether edge e passes through the pixel around p, given Cross(e.a, e.b, p).
    bool Passes(GridEdge const& e, GridPoint p, Int128 cross) const {
        GridPoint const largest = mGrid.LargestSpacing();
        GridBox const box = BoxOf(e);
        Int128 const width = box.x1 - box.x0;
        Int128 const height = box.y1 - box.y0;
        Int128 const distance = 2 * (cross < 0 ? -cross : cross);
        if (distance >= width * largest.y + height * largest.x) {
            return false;
        }
        // Are they separate along x, along y, or along the edge's normal? Everything is doubled, to
        // stay whole.
        GridPoint const size = mGrid.Spacing(p);
        return 2 * p.x + size.x > 2 * box.x0 && 2 * p.x - size.x < 2 * box.x1 &&
               2 * p.y + size.y > 2 * box.y0 && 2 * p.y - size.y < 2 * box.y1 &&
               distance < width * size.y + height * size.x;
    }

    EdgeTree const& mTree;
    ClipGrid const& mGrid;
    bool mPixels;
    std::vector<char>& mShared;
    std::vector<Cut> mCuts;
};

/// Puts the cuts of one edge into their order along it: in the direction in which it is longer.
/// Rounding can have moved points off the edge, but not past each other by more than a step or two.
void SortAlong(GridEdge const& e, GridPoint* begin, GridPoint* end) {
    std::int64_t const dx = e.b.x - e.a.x;
    std::int64_t const dy = e.b.y - e.a.y;
    bool const wide = (dx < 0 ? -dx : dx) >= (dy < 0 ? -dy : dy);
    std::sort(begin, end, [=](GridPoint p, GridPoint q) {
        std::int64_t const x = dx < 0 ? q.x - p.x : p.x - q.x;
        std::int64_t const y = dy < 0 ? q.y - p.y : p.y - q.y;
        return wide ? (x != 0 ? x < 0 : y < 0) : (y != 0 ? y < 0 : x < 0);
    });
}

/// The points of the cuts, edge by edge, in the order along the edge. `ends` gets for each edge
/// where its points end.
std::vector<GridPoint> SortedCuts(std::vector<Cut> const& cuts, EdgeTree const& tree,
                                  std::vector<std::size_t>& ends) {
    ends.assign(tree.Count(), 0);
    for (Cut const& cut : cuts) {
        ++ends[cut.edge];
    }
    std::size_t sum = 0;
    for (std::size_t& end : ends) {
        sum += std::exchange(end, sum);
    }
    std::vector<GridPoint> points(cuts.size());
    for (Cut const& cut : cuts) {
        points[ends[cut.edge]++] = cut.at;
    }
    std::size_t begin = 0;
    for (std::size_t edge = 0; edge < ends.size(); ++edge) {
        if (ends[edge] - begin > 1) {
            SortAlong(tree.At(edge), points.data() + begin, points.data() + ends[edge]);
        }
        begin = ends[edge];
    }
    return points;
}

/// Makes the cuts new vertices. They are shared. Returns which edges are fresh: parts of those that
/// were cut.
std::vector<char> Apply(std::vector<Cut> const& cuts, EdgeTree const& tree, GridLines& lines,
                        std::vector<char>& shared) {
    std::vector<std::size_t> ends;
    std::vector<GridPoint> const points = SortedCuts(cuts, tree, ends);
    std::size_t const size = lines.points.size() + points.size();
    std::vector<GridPoint> allPoints;
    std::vector<char> allShared;
    std::vector<char> fresh;
    allPoints.reserve(size);
    allShared.reserve(size);
    fresh.reserve(size);
    std::size_t cut = 0;
    std::size_t i = 0;
    for (std::size_t& lineEnd : lines.ends) {
        for (; i < lineEnd; ++i) {
            char const isFresh = cut < ends[i] ? 1 : 0;
            allPoints.push_back(lines.points[i]);
            allShared.push_back(shared[i]);
            fresh.push_back(isFresh);
            for (; cut < ends[i]; ++cut) {
                if (points[cut] != allPoints.back()) {
                    allPoints.push_back(points[cut]);
                    allShared.push_back(1);
                    fresh.push_back(isFresh);
                }
            }
        }
        lineEnd = allPoints.size();
    }
    lines.points = std::move(allPoints);
    shared = std::move(allShared);
    return fresh;
}

} // namespace

bool CutAtCrossings(GridLines& lines, ClipGrid const& grid, std::vector<char>& shared,
                    std::optional<EdgeTree>& tree) {
    // A cut moves edges by the rounding of the new vertex, which can make them meet others, so it
    // is looked again until nothing is left to cut: two rounds are usual. If the second has found
    // something, edges are bent at all vertices that they pass too closely; else two that run
    // nearly side by side could go on crossing, each time one double further along.
    int const kExactRounds = 2;
    int const kMaxRounds = 50;
    shared.assign(lines.points.size(), 0);
    tree.emplace(lines, std::vector<char>(), GridPoint{0, 0});
    for (int round = 0; round < kMaxRounds; ++round) {
        bool const pixels = round >= kExactRounds;
        std::vector<Cut> const cuts = Meetings(*tree, grid, pixels, shared).Find();
        if (cuts.empty()) {
            return true;
        }
        std::vector<char> fresh = Apply(cuts, *tree, lines, shared);
        bool const nextPixels = round + 1 >= kExactRounds;
        tree.emplace(lines, std::move(fresh),
                     nextPixels ? grid.LargestSpacing() : GridPoint{0, 0});
    }
    return false;
}

} // namespace trammel_detail
