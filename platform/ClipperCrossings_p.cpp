// SPDX-License-Identifier: MIT
#include "ClipperCrossings_p.h"

#include "ClipperPredicates_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace trammel_detail {

namespace {

struct Cut {
    std::size_t edge;
    GridPoint at;
    Meeting meeting;
    std::int64_t clearance; // how far the next vertex on the edge has to be, see Clearances
};

std::int64_t LengthBound(GridEdge const& e) {
    return (e.b.x > e.a.x ? e.b.x - e.a.x : e.a.x - e.b.x) +
           (e.b.y > e.a.y ? e.b.y - e.a.y : e.a.y - e.b.y);
}

/// When cutting edges cannot make them meet anew.
///
/// A cut's rounding moves it by half of the doubles' spacing and a step of the grid, in x and in y.
/// So all parts of an edge stay within R of it, with R = 5 times the largest spacing. If parts of
/// two edges e and f have a point in common then, both edges pass it within R. Hence:
///
/// - e and f more than 2 R apart do not meet.
/// - If e and f cross at P with an angle of t, points within R of both lie within 2 R / sin t of P.
///   If, on both, the next vertices are at least 9 R / sin t from P, then only the parts that end at
///   P can come there: other parts stay R less than that away. And those have only that end in
///   common, as each deviates from the direction of its edge by no more than asin(2 R / (9 R / sin t
///   - 2 R)) < t / 2.
/// - The same holds where P is the vertex between edges that follow each other; if they make an
///   obtuse angle, as if it were a right one.
///
/// Distances between rounded vertices are up to 2 R less than those in the above, and sin t <= 1,
/// so 11 R / sin t is enough; 12 leaves room for the rounding of doubles. Edges for which nothing of
/// this can be shown are looked at again.
class Clearances {
public:
    explicit Clearances(ClipGrid const& grid) {
        GridPoint const spacing = grid.LargestSpacing();
        std::int64_t const largest = std::max(spacing.x, spacing.y);
        // Else products of it might not fit.
        mUsable = largest < std::int64_t{1} << 37;
        mReach = mUsable ? 5 * largest : 0;
    }

    /// Whether this works for the grid.
    bool Usable() const { return mUsable; }
    /// R.
    std::int64_t Reach() const { return mReach; }

    /// Whether an edge is more than 2 R from two points on the same side of it, given Cross() of
    /// the edge and each.
    bool Apart(GridEdge const& e, Int128 a, Int128 b) const {
        Int128 const limit = static_cast<Int128>(2 * mReach) * LengthBound(e);
        return (a > limit && b > limit) || (a < -limit && b < -limit);
    }

    /// 12 R / sin t, at least, for the angle between the edges, `product` being their cross product.
    std::int64_t For(GridEdge const& e, GridEdge const& f, Int128 product) const {
        // Rounded down: the upper half.
        auto const high = static_cast<std::int64_t>((product < 0 ? -product : product) >> 64);
        double const clearance = 12.0 * static_cast<double>(mReach) *
                                 static_cast<double>(LengthBound(e)) *
                                 (static_cast<double>(LengthBound(f)) * 0x1p-64) /
                                 static_cast<double>(high);
        return clearance < 0x1p62 ? static_cast<std::int64_t>(clearance) + 1 : kTooMuch;
    }

    /// The same for edges that follow each other, e before f.
    std::int64_t ForCorner(GridEdge const& e, GridEdge const& f) const {
        return SameDirection(e.b, e.a, f.b) ? For(e, f, Cross(e.a, e.b, f.b)) : 12 * mReach;
    }

private:
    static constexpr std::int64_t kTooMuch = std::numeric_limits<std::int64_t>::max();

    std::int64_t mReach;
    bool mUsable;
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
    ///
    /// With `clearances` instead `doubtful` gets a 1 for each edge that, if it is cut, may meet
    /// another anew. The tree has a margin of their reach then.
    Meetings(EdgeTree const& tree, ClipGrid const& grid, bool pixels, Clearances const* clearances,
             std::vector<char>& doubtful, std::vector<Meeting>& meetings)
        : mTree(tree), mGrid(grid), mPixels(pixels), mClearances(clearances), mDoubtful(doubtful),
          mMeetings(meetings) {}

    std::vector<Cut> Find() {
        mTree.ForMeetingPairs(mPixels, [this](std::size_t i, std::size_t j, bool follow) {
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
            mCuts.push_back({edge, p, kMany, 0});
        }
    }
    void CutBothWhereTheyCross(std::size_t i, std::size_t j) {
        GridPoint const p = mGrid.Snapped(Crossing(mTree.At(i), mTree.At(j)));
        CutAt(i, p);
        CutAt(j, p);
    }
    /// The same, with what is needed to show that nothing else meets there.
    void CutBothWithClearance(std::size_t i, std::size_t j, std::int64_t clearance) {
        std::size_t const before = mCuts.size();
        CutBothWhereTheyCross(i, j);
        if (mCuts.size() < before + 2 || mNext < kFirstCrossing) {
            Doubt(i, j);
            return;
        }
        for (std::size_t k = before; k < mCuts.size(); ++k) {
            mCuts[k].clearance = clearance;
            mCuts[k].meeting = mNext;
        }
        ++mNext;
    }
    void Doubt(std::size_t i, std::size_t j) {
        if (mClearances != nullptr) {
            mDoubtful[i] = 1;
            mDoubtful[j] = 1;
        }
    }
    void Share(std::size_t i, std::size_t j) {
        GridEdge const& e = mTree.At(i);
        GridEdge const& f = mTree.At(j);
        if (e.a == f.a || e.a == f.b) {
            mMeetings[i] = kMany;
            mMeetings[e.a == f.a ? j : mTree.SecondOf(j)] = kMany;
        }
        if (e.b == f.a || e.b == f.b) {
            mMeetings[mTree.SecondOf(i)] = kMany;
            mMeetings[e.b == f.a ? j : mTree.SecondOf(j)] = kMany;
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
            mMeetings[inOrder ? j : i] = kMany;
            CutAt(BoxOf(e).Contains(q) ? i : j, BoxOf(e).Contains(q) ? q : p);
        }
    }
    void Exactly(std::size_t i, std::size_t j) {
        GridEdge const& e = mTree.At(i);
        GridEdge const& f = mTree.At(j);
        Int128 const fa = Cross(e.a, e.b, f.a);
        Int128 const fb = Cross(e.a, e.b, f.b);
        if ((fa > 0 && fb > 0) || (fa < 0 && fb < 0)) {
            if (mClearances != nullptr && !mClearances->Apart(e, fa, fb)) {
                NearMiss(i, j, fa, fb);
            }
            return;
        }
        Int128 const ea = Cross(f.a, f.b, e.a);
        // The two triangles on e and those on f make up the same quadrangle.
        Int128 const eb = ea + fa - fb;
        if ((ea > 0 && eb > 0) || (ea < 0 && eb < 0)) {
            if (mClearances != nullptr && !mClearances->Apart(f, ea, eb)) {
                Doubt(i, j);
            }
            return;
        }
        if (fa != 0 && fb != 0 && ea != 0 && eb != 0) {
            if (mClearances != nullptr) {
                CutBothWithClearance(i, j, mClearances->For(e, f, fa - fb));
            } else {
                CutBothWhereTheyCross(i, j);
            }
            return;
        }
        Doubt(i, j);
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
    /// For edges that do not meet, f's ends lying on one side of e, but one of them near its line.
    void NearMiss(std::size_t i, std::size_t j, Int128 fa, Int128 fb) {
        GridEdge const& f = mTree.At(j);
        Int128 const ea = Cross(f.a, f.b, mTree.At(i).a);
        if (!mClearances->Apart(f, ea, ea + fa - fb)) {
            Doubt(i, j);
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
    Clearances const* mClearances;
    std::vector<char>& mDoubtful;
    std::vector<Meeting>& mMeetings;
    std::vector<Cut> mCuts;
    Meeting mNext = kFirstCrossing;
};

/// Puts the cuts of one edge into their order along it: in the direction in which it is longer.
/// Rounding can have moved points off the edge, but not past each other by more than a step or two.
void SortAlong(GridEdge const& e, Cut* begin, Cut* end) {
    std::int64_t const dx = e.b.x - e.a.x;
    std::int64_t const dy = e.b.y - e.a.y;
    bool const wide = (dx < 0 ? -dx : dx) >= (dy < 0 ? -dy : dy);
    std::sort(begin, end, [=](Cut const& c, Cut const& d) {
        std::int64_t const x = dx < 0 ? d.at.x - c.at.x : c.at.x - d.at.x;
        std::int64_t const y = dy < 0 ? d.at.y - c.at.y : c.at.y - d.at.y;
        return wide ? (x != 0 ? x < 0 : y < 0) : (y != 0 ? y < 0 : x < 0);
    });
}

/// Cuts, edge by edge.
struct SortedCuts {
    std::vector<Cut> cuts;         // in the order along the edge
    std::vector<std::size_t> ends; // one an edge: of its part of the cuts

    SortedCuts(std::vector<Cut> const& unsorted, EdgeTree const& tree)
        : cuts(unsorted.size()), ends(tree.Count(), 0) {
        for (Cut const& cut : unsorted) {
            ++ends[cut.edge];
        }
        std::size_t sum = 0;
        for (std::size_t& end : ends) {
            sum += std::exchange(end, sum);
        }
        for (Cut const& cut : unsorted) {
            cuts[ends[cut.edge]++] = cut;
        }
        for (std::size_t edge = 0; edge < ends.size(); ++edge) {
            if (ends[edge] - Begin(edge) > 1) {
                SortAlong(tree.At(edge), cuts.data() + Begin(edge), cuts.data() + ends[edge]);
            }
        }
    }
    std::size_t Begin(std::size_t edge) const { return edge == 0 ? 0 : ends[edge - 1]; }
    bool Has(std::size_t edge) const { return Begin(edge) < ends[edge]; }
};

/// Whether the vertices on an edge that is cut are so far from each other that the edge meets no
/// other anew.
bool IsClear(std::size_t edge, std::size_t before, std::size_t after, EdgeTree const& tree,
             SortedCuts const& sorted, Clearances const& clearances) {
    auto const distance = [](GridPoint p, GridPoint q) {
        return std::max(p.x < q.x ? q.x - p.x : p.x - q.x, p.y < q.y ? q.y - p.y : p.y - q.y);
    };
    auto const clearOfCorner = [&](std::size_t other, std::int64_t clearance) {
        // If it is cut itself, its own vertices are looked at in its turn.
        return sorted.Has(other) || distance(tree.At(other).a, tree.At(other).b) >= clearance;
    };
    GridEdge const& e = tree.At(edge);
    std::int64_t const first = clearances.ForCorner(tree.At(before), e);
    std::int64_t const last = clearances.ForCorner(e, tree.At(after));
    if (!clearOfCorner(before, first) || !clearOfCorner(after, last)) {
        return false;
    }
    GridPoint at = e.a;
    std::int64_t clearance = first;
    for (std::size_t i = sorted.Begin(edge); i < sorted.ends[edge]; ++i) {
        Cut const& cut = sorted.cuts[i];
        if (distance(at, cut.at) < std::max(clearance, cut.clearance)) {
            return false;
        }
        at = cut.at;
        clearance = cut.clearance;
    }
    return distance(at, e.b) >= std::max(clearance, last);
}

/// The edges that may meet others once they are cut: with `clearances` those for which the opposite
/// cannot be shown, else all that are cut.
std::vector<char> Unclear(SortedCuts const& sorted, EdgeTree const& tree,
                          std::vector<char> const& doubtful, Clearances const* clearances) {
    std::vector<char> unclear(tree.Count(), 0);
    GridLines const& lines = tree.Lines();
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        std::size_t const begin = lines.Begin(line);
        std::size_t const end = lines.End(line);
        for (std::size_t i = begin; i < end; ++i) {
            if (sorted.Has(i)) {
                unclear[i] = clearances == nullptr || doubtful[i] != 0 ||
                             !IsClear(i, i == begin ? end - 1 : i - 1, i + 1 == end ? begin : i + 1,
                                      tree, sorted, *clearances);
            }
        }
    }
    return unclear;
}

/// Of crossings where not both edges are clear, takes back that there are just two edges.
void ForgetUnclear(std::vector<Cut>& cuts, std::vector<char> const& unclear) {
    std::vector<char> isUnclear(cuts.size() / 2 + kFirstCrossing + 1, 0);
    for (Cut const& cut : cuts) {
        if (unclear[cut.edge] != 0) {
            isUnclear[cut.meeting] = 1;
        }
    }
    for (Cut& cut : cuts) {
        if (isUnclear[cut.meeting] != 0) {
            cut.meeting = kMany;
        }
    }
}

/// Makes the cuts new vertices. Returns which edges are fresh: parts of those that are unclear.
std::vector<char> Apply(SortedCuts const& sorted, std::vector<char> const& unclear,
                        GridLines& lines, std::vector<Meeting>& meetings) {
    std::size_t const size = lines.points.size() + sorted.cuts.size();
    std::vector<GridPoint> allPoints;
    std::vector<Meeting> allMeetings;
    std::vector<char> fresh;
    allPoints.reserve(size);
    allMeetings.reserve(size);
    fresh.reserve(size);
    std::size_t cut = 0;
    std::size_t i = 0;
    for (std::size_t& lineEnd : lines.ends) {
        for (; i < lineEnd; ++i) {
            allPoints.push_back(lines.points[i]);
            allMeetings.push_back(meetings[i]);
            fresh.push_back(unclear[i]);
            for (; cut < sorted.ends[i]; ++cut) {
                if (sorted.cuts[cut].at != allPoints.back()) {
                    allPoints.push_back(sorted.cuts[cut].at);
                    allMeetings.push_back(sorted.cuts[cut].meeting);
                    fresh.push_back(unclear[i]);
                }
            }
        }
        lineEnd = allPoints.size();
    }
    lines.points = std::move(allPoints);
    meetings = std::move(allMeetings);
    return fresh;
}

} // namespace

bool CutAtCrossings(GridLines& lines, ClipGrid const& grid, std::vector<Meeting>& meetings,
                    std::optional<EdgeTree>& tree) {
    // A cut moves edges by the rounding of the new vertex, which can make them meet others, so
    // edges for which that is not out of the question are looked at again until nothing is left to
    // cut. If the second round has found something, edges are bent at all vertices that they pass
    // too closely; else two that run nearly side by side could go on crossing, each time one double
    // further along.
    int const kExactRounds = 2;
    int const kMaxRounds = 50;
    Clearances const clearances(grid);
    meetings.assign(lines.points.size(), kAlone);
    std::vector<char> doubtful(lines.points.size(), 0);
    EdgeTree::Order order = EdgeTree::Order::kLines;
    tree.emplace(lines, std::vector<char>(), GridPoint{clearances.Reach(), clearances.Reach()},
                 order);
    for (int round = 0; round < kMaxRounds; ++round) {
        Clearances const* const proving =
            round == 0 && clearances.Usable() ? &clearances : nullptr;
        std::vector<Cut> const cuts =
            Meetings(*tree, grid, round >= kExactRounds, proving, doubtful, meetings).Find();
        auto unclearCount = std::ptrdiff_t{0};
        if (!cuts.empty()) {
            SortedCuts sorted(cuts, *tree);
            std::vector<char> const unclear = Unclear(sorted, *tree, doubtful, proving);
            if (std::find(unclear.begin(), unclear.end(), 1) != unclear.end()) {
                ForgetUnclear(sorted.cuts, unclear);
            }
            std::vector<char> fresh = Apply(sorted, unclear, lines, meetings);
            unclearCount = std::count(fresh.begin(), fresh.end(), 1);
            if (unclearCount > 0) {
                bool const pixels = round + 1 >= kExactRounds;
                bool const many = fresh.size() > 2 * unclear.size() &&
                                  static_cast<std::size_t>(unclearCount) > fresh.size() / 4;
                order = many ? EdgeTree::Order::kPlaces : EdgeTree::Order::kLines;
                tree.emplace(lines, std::move(fresh),
                             pixels ? grid.LargestSpacing() : GridPoint{0, 0}, order);
            }
        }
        if (unclearCount == 0) {
            if (!cuts.empty() || order != EdgeTree::Order::kLines) {
                tree.emplace(lines, std::vector<char>(), GridPoint{0, 0}, EdgeTree::Order::kLines);
            }
            return true;
        }
    }
    return false;
}

} // namespace trammel_detail
