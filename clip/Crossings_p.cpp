// SPDX-License-Identifier: MIT

#include "Crossings_p.h"

#include "Predicates_p.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <utility>

namespace trammel_detail {

namespace {

/// Where points are along an edge, in the direction in which it is longer.
class Along {
public:
    explicit Along(GridEdge const& e)
        : mX(e.b.x < e.a.x ? -1 : 1), mY(e.b.y < e.a.y ? -1 : 1),
          mWide((e.b.x - e.a.x) * mX >= (e.b.y - e.a.y) * mY) {}

    std::int64_t At(GridPoint p) const { return mWide ? p.x * mX : p.y * mY; }
    std::int64_t Beside(GridPoint p) const { return mWide ? p.y * mY : p.x * mX; }
    GridPoint Point(std::int64_t at, std::int64_t beside) const {
        return mWide ? GridPoint{at * mX, beside * mY} : GridPoint{beside * mX, at * mY};
    }

private:
    std::int64_t mX;
    std::int64_t mY;
    bool mWide;
};

/// A point of an edge where it is to be cut; or a spot (then `meeting` is kAlone) where it is not,
/// but where its parts may meet something if it is cut elsewhere.
struct Cut {
    std::int64_t at;        // Along the edge
    std::int64_t beside;    // the same
    std::int64_t clearance; // how far the next vertex on the edge has to be, see Clearances
    std::uint32_t edge;
    Meeting meeting;
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
/// 1. e and f more than 2 R apart do not meet.
///
/// 2. If e and f cross at P with an angle of t, points within R of both lie within 2 R / sin t of
/// P. If, on both, the next vertices are at least 9 R / sin t from P, then only the parts that end
/// at P can come there: other parts stay R less than that away. And those have only that end in
/// common, as each deviates from the direction of its edge by no more than asin(2 R / (9 R / sin t
/// - 2 R)) < t / 2.
///
/// 3. The same holds where P is the vertex between edges that follow each other; if they make an
/// obtuse angle, as if it were a right one.
///
/// 4. If they do not meet, but an end of one is within 2 R of the other's line, points within R of
/// both lie within 4 R / sin t of that end.
///
/// Distances between rounded vertices are up to 2 R less than those in the above, and sin t <= 1,
/// so 11 R / sin t is enough; 12 leaves room for the rounding of doubles. Parts of edges that lie
/// within that distance of such a point, where it is not kept by the next vertices, are looked at
/// again.
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

    /// 12 R / sin t, at least, for the angle between the edges, `product` being their cross
    /// product.
    std::int64_t For(GridEdge const& e, GridEdge const& f, Int128 product) const {
        // Rounded down: the upper half.
        auto const high = static_cast<std::int64_t>((product < 0 ? -product : product) >> 64);
        double const clearance =
            12.0 * static_cast<double>(mReach) * static_cast<double>(LengthBound(e)) *
            (static_cast<double>(LengthBound(f)) * 0x1p-64) / static_cast<double>(high);
        return clearance < 0x1p62 ? static_cast<std::int64_t>(clearance) + 1 : kTooMuch;
    }

    /// The same for edges that follow each other, e before f.
    std::int64_t ForCorner(GridEdge const& e, GridEdge const& f) const {
        return SameDirection(e.b, e.a, f.b) ? For(e, f, Cross(e.a, e.b, f.b)) : 12 * mReach;
    }

private:
    static constexpr std::int64_t kTooMuch = std::int64_t{1} << 62;

    std::int64_t mReach;
    bool mUsable;
};

/// The number of bits of v, v > 0.
int BitsOf(UInt128 v) {
    auto const high = static_cast<std::uint64_t>(v >> 64);
    return high != 0 ? 128 - __builtin_clzll(high)
                     : 64 - __builtin_clzll(static_cast<std::uint64_t>(v));
}

/// Twice the areas of the triangles that two edges e and f make with each other's ends, and that of
/// the quadrangle of all four ends: fa is Cross(e.a, e.b, f.a), and so on.
struct Crosses {
    Int128 ea;
    Int128 eb;
    Int128 fa;
    Int128 fb;
};

/// The point where two edges cross that have no end in common, to within a step of the grid. The
/// same whatever the order of the edges and their directions, so that lines that coincide are cut
/// alike.
GridPoint Crossing(GridEdge e, GridEdge f, Crosses const& crosses) {
    auto const distance = [](Int128 cross) {
        return static_cast<UInt128>(cross < 0 ? -cross : cross);
    };
    GridPoint const lowE = e.b < e.a ? e.b : e.a;
    GridPoint const lowF = f.b < f.a ? f.b : f.a;
    bool const exchange =
        lowF != lowE ? lowF < lowE : (f.b < f.a ? f.a : f.b) < (e.b < e.a ? e.a : e.b);
    // Measured from the nearer end of f, where the rounding is least: num / den of the way.
    UInt128 num = distance(exchange ? crosses.ea : crosses.fa);
    UInt128 other = distance(exchange ? crosses.eb : crosses.fb);
    if (exchange) {
        std::swap(e, f);
    }
    if (f.b < f.a) {
        std::swap(f.a, f.b);
        std::swap(num, other);
    }
    UInt128 den = num + other;
    if (other < num) {
        num = other;
        std::swap(f.a, f.b);
    }
    // 63 leading bits of the denominator leave room for a quotient of 63 bits.
    int const surplus = std::max(BitsOf(den) - 63, 0);
    den >>= surplus;
    num >>= surplus;
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
    /// With `clearances` instead, cuts have their clearance, and there are spots. The tree has a
    /// margin of their reach then.
    Meetings(EdgeTree const& tree, ClipGrid const& grid, bool pixels, Clearances const* clearances,
             ScratchVector<Meeting>& meetings)
        : mTree(tree), mGrid(grid), mPixels(pixels), mClearances(clearances), mMeetings(meetings),
          mLargestSpacing(grid.LargestSpacing()), mCuts(meetings.get_allocator()) {}

    ScratchVector<Cut> Find() {
        mTree.ForMeetingPairs(mPixels, [this](std::size_t i, std::size_t j, bool follow) {
            if (follow) {
                Following(i, j);
            } else if (mPixels) {
                Share(i, j);
            } else {
                Exactly(i, j);
            }
            if (mPixels) {
                InPixels(i, j);
            }
        });
        return std::move(mCuts);
    }

private:
    void CutAt(std::size_t edge, GridPoint p) {
        if (p != mTree.At(edge).a && p != mTree.At(edge).b) {
            Push(edge, p, kMany, 0);
        }
    }
    void Push(std::size_t edge, GridPoint p, Meeting meeting, std::int64_t clearance) {
        Along const along(mTree.At(edge));
        mCuts.push_back(
            {along.At(p), along.Beside(p), clearance, static_cast<std::uint32_t>(edge), meeting});
    }
    void CutBothWhereTheyCross(std::size_t i, std::size_t j, Crosses const& crosses) {
        Int128 const product = crosses.fa - crosses.fb;
        GridPoint const p = mGrid.Snapped(Crossing(mTree.At(i), mTree.At(j), crosses));
        std::size_t const before = mCuts.size();
        CutAt(i, p);
        CutAt(j, p);
        if (mClearances == nullptr) {
            return;
        }
        if (mCuts.size() < before + 2 || mNext < kFirstCrossing) {
            AddSpots(i, j, p, product);
            return;
        }
        std::int64_t const clearance = mClearances->For(mTree.At(i), mTree.At(j), product);
        for (std::size_t k = before; k < mCuts.size(); ++k) {
            mCuts[k].clearance = clearance;
            mCuts[k].meeting = mNext + (crosses.fb > 0 ? 1 : 0);
        }
        mNext += 2;
    }
    void AddSpots(std::size_t i, std::size_t j, GridPoint p, Int128 product) {
        if (mClearances != nullptr) {
            std::int64_t const clearance = mClearances->For(mTree.At(i), mTree.At(j), product);
            Push(i, p, kAlone, clearance);
            Push(j, p, kAlone, clearance);
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
                Int128 const ea = Cross(f.a, f.b, e.a);
                if (!mClearances->Apart(f, ea, ea + fa - fb)) {
                    AddSpots(i, j, Nearer(f, fa, fb), fa - fb);
                }
            }
            return;
        }
        Int128 const ea = Cross(f.a, f.b, e.a);
        // The two triangles on e and those on f make up the same quadrangle.
        Int128 const eb = ea + fa - fb;
        if ((ea > 0 && eb > 0) || (ea < 0 && eb < 0)) {
            if (mClearances != nullptr && !mClearances->Apart(f, ea, eb)) {
                AddSpots(i, j, Nearer(e, ea, eb), fa - fb);
            }
            return;
        }
        if (fa != 0 && fb != 0 && ea != 0 && eb != 0) {
            CutBothWhereTheyCross(i, j, {ea, eb, fa, fb});
            return;
        }
        // Where they share an end, one cross product for each is zero.
        Share(i, j);
        AddSpots(i, j, fa == 0 || fb == 0 ? Nearer(f, fa, fb) : Nearer(e, ea, eb), fa - fb);
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
    /// The end of an edge that is nearer to another, given Cross() of the other and each.
    static GridPoint Nearer(GridEdge const& f, Int128 fa, Int128 fb) {
        return (fa < 0 ? -fa : fa) <= (fb < 0 ? -fb : fb) ? f.a : f.b;
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
            CutBothWhereTheyCross(i, j, {ea, eb, fa, fb});
        }
    }
    /// Whether edge e passes through the pixel around p, given Cross(e.a, e.b, p).
    bool Passes(GridEdge const& e, GridPoint p, Int128 cross) const {
        GridBox const box = BoxOf(e);
        Int128 const width = box.x1 - box.x0;
        Int128 const height = box.y1 - box.y0;
        Int128 const distance = 2 * (cross < 0 ? -cross : cross);
        if (distance >= width * mLargestSpacing.y + height * mLargestSpacing.x) {
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
    ScratchVector<Meeting>& mMeetings;
    GridPoint mLargestSpacing;
    ScratchVector<Cut> mCuts;
    Meeting mNext = kFirstCrossing;
};

/// Puts the cuts of one edge into their order along it. Rounding can have moved points off the
/// edge, but not past each other by more than a step or two.
void SortAlong(Cut* begin, Cut* end) {
    auto const before = [](Cut const& c, Cut const& d) {
        return c.at != d.at ? c.at < d.at : c.beside < d.beside;
    };
    // Where edges lie side by side, they are met in the order along those that they cross, or in
    // the opposite one.
    if (before(end[-1], *begin)) {
        std::reverse(begin, end);
    }
    if (!std::is_sorted(begin, end, before)) {
        std::sort(begin, end, before);
    }
}

/// Cuts, edge by edge.
struct SortedCuts {
    ScratchVector<Cut> cuts;           // in the order along the edge
    ScratchVector<std::uint32_t> ends; // one an edge: of its part of the cuts
    ScratchVector<char> has;           // one an edge: kCut, kSpot

    static constexpr char kCut = 1;
    static constexpr char kSpot = 2;

    SortedCuts(ScratchVector<Cut> const& unsorted, EdgeTree const& tree)
        : cuts(unsorted.size(), unsorted.get_allocator()),
          ends(tree.Count(), 0, unsorted.get_allocator()),
          has(tree.Count(), 0, unsorted.get_allocator()) {
        // More than can be counted: as if there were no memory for them.
        if (unsorted.size() > std::numeric_limits<std::uint32_t>::max()) {
            throw std::length_error("SortedCuts");
        }
        for (Cut const& cut : unsorted) {
            ++ends[cut.edge];
            has[cut.edge] =
                static_cast<char>(has[cut.edge] | (cut.meeting == kAlone ? kSpot : kCut));
        }
        std::uint32_t sum = 0;
        for (std::uint32_t& end : ends) {
            sum += std::exchange(end, sum);
        }
        for (Cut const& cut : unsorted) {
            cuts[ends[cut.edge]++] = cut;
        }
        for (std::size_t edge = 0; edge < ends.size(); ++edge) {
            if (ends[edge] - Begin(edge) > 1) {
                SortAlong(cuts.data() + Begin(edge), cuts.data() + ends[edge]);
            }
        }
    }
    /// Keeps of each edge's cuts only those at which the edge goes on in both coordinates.
    void KeepMonotone() {
        std::size_t begin = 0;
        std::size_t size = 0;
        for (std::uint32_t& end : ends) {
            std::size_t const first = size;
            for (std::size_t k = begin; k < end; ++k) {
                if (size == first || cuts[k].beside >= cuts[size - 1].beside) {
                    cuts[size++] = cuts[k];
                }
            }
            begin = std::exchange(end, static_cast<std::uint32_t>(size));
        }
        cuts.resize(size);
    }
    std::size_t Begin(std::size_t edge) const { return edge == 0 ? 0 : ends[edge - 1]; }
    /// Whether the edge is cut.
    bool Has(std::size_t edge) const { return (has[edge] & kCut) != 0; }
    bool HasSpots(std::size_t edge) const { return (has[edge] & kSpot) != 0; }
};

/// Finds the parts of edges that may meet others, see Clearances.
class Doubts {
public:
    /// Without clearances, all parts may.
    Doubts(EdgeTree const& tree, SortedCuts& sorted, Clearances const* clearances)
        : mTree(tree), mSorted(sorted), mClearances(clearances),
          mPoints(sorted.cuts.get_allocator()), mParts(sorted.cuts.get_allocator()) {}

    /// Whether no part of an edge that is cut is in doubt.
    bool IsClear(std::size_t edge, std::size_t before, std::size_t after) const {
        if (mClearances == nullptr || mSorted.HasSpots(edge)) {
            return false;
        }
        GridEdge const& e = mTree.At(edge);
        Along const along(e);
        std::int64_t clearance = mClearances->ForCorner(mTree.At(before), e);
        std::int64_t const endClearance = mClearances->ForCorner(e, mTree.At(after));
        bool clear = !IsShort(before, clearance) && !IsShort(after, endClearance);
        std::int64_t at = along.At(e.a);
        for (std::size_t i = mSorted.Begin(edge); i < mSorted.ends[edge]; ++i) {
            Cut const& cut = mSorted.cuts[i];
            clear &= cut.at - at >= std::max(clearance, cut.clearance);
            at = cut.at;
            clearance = cut.clearance;
        }
        return clear && along.At(e.b) - at >= std::max(clearance, endClearance);
    }

    /// The parts of an edge that is cut, from vertex to vertex: 1 for those in doubt. Cuts that
    /// lack their clearance get kMany.
    ScratchVector<char> const& Of(std::size_t edge, std::size_t before, std::size_t after) {
        Collect(edge, before, after);
        mParts.assign(1, 1);
        if (mClearances == nullptr) {
            mParts.resize(mPoints.size() - 1, 1);
            return mParts;
        }
        FindLacks(edge);
        // How far doubts reach, forwards and then backwards.
        mParts.clear();
        std::int64_t reach = std::numeric_limits<std::int64_t>::min();
        std::int64_t last = 0;
        for (Point const& p : mPoints) {
            if (p.isVertex && &p != &mPoints.front()) {
                mParts.push_back(reach > last ? 1 : 0);
            }
            last = p.isVertex ? p.at : last;
            reach = p.lacks ? std::max(reach, p.at + p.clearance) : reach;
        }
        reach = std::numeric_limits<std::int64_t>::max();
        std::size_t part = mParts.size();
        for (std::size_t i = mPoints.size(); i-- > 0;) {
            Point const& p = mPoints[i];
            if (p.isVertex && i + 1 < mPoints.size() && reach < last) {
                mParts[part - 1] = 1;
            }
            if (p.isVertex) {
                part -= i + 1 < mPoints.size() ? 1 : 0;
                last = p.at;
            }
            reach = p.lacks ? std::min(reach, p.at - p.clearance) : reach;
        }
        return mParts;
    }

private:
    struct Point {
        std::int64_t at;
        std::int64_t clearance;
        bool isVertex;
        bool lacks;
    };

    /// The edge's ends, and between them its cuts and spots.
    void Collect(std::size_t edge, std::size_t before, std::size_t after) {
        GridEdge const& e = mTree.At(edge);
        Along const along(e);
        bool const known = mClearances != nullptr;
        mPoints.clear();
        mPoints.push_back(
            {along.At(e.a), known ? mClearances->ForCorner(mTree.At(before), e) : 0, true, false});
        for (std::size_t i = mSorted.Begin(edge); i < mSorted.ends[edge]; ++i) {
            Cut const& cut = mSorted.cuts[i];
            bool const isVertex = cut.meeting != kAlone;
            mPoints.push_back({cut.at, cut.clearance, isVertex, !isVertex});
        }
        mPoints.push_back(
            {along.At(e.b), known ? mClearances->ForCorner(e, mTree.At(after)) : 0, true, false});
        // The clearance at corners is also that of the neighbour; if it is cut itself, it looks to
        // that in its turn.
        mPoints.front().lacks = known && IsShort(before, mPoints.front().clearance);
        mPoints.back().lacks = known && IsShort(after, mPoints.back().clearance);
    }
    bool IsShort(std::size_t edge, std::int64_t clearance) const {
        GridEdge const& e = mTree.At(edge);
        Along const along(e);
        return along.At(e.b) - along.At(e.a) < clearance && !mSorted.Has(edge);
    }
    void FindLacks(std::size_t edge) {
        std::size_t last = 0;
        for (std::size_t i = 1; i < mPoints.size(); ++i) {
            if (mPoints[i].isVertex) {
                std::int64_t const gap = mPoints[i].at - mPoints[last].at;
                mPoints[last].lacks |= gap < mPoints[last].clearance;
                mPoints[i].lacks |= gap < mPoints[i].clearance;
                last = i;
            }
        }
        for (std::size_t i = 1; i + 1 < mPoints.size(); ++i) {
            Cut& cut = mSorted.cuts[mSorted.Begin(edge) + i - 1];
            if (mPoints[i].isVertex && mPoints[i].lacks) {
                cut.meeting = kMany;
            }
        }
    }

    EdgeTree const& mTree;
    SortedCuts& mSorted;
    Clearances const* mClearances;
    ScratchVector<Point> mPoints;
    ScratchVector<char> mParts;
};

/// Makes the cuts new vertices. `fresh` gets an element for each edge: 1 for parts that are in
/// doubt. Returns how many there are.
std::size_t Apply(SortedCuts& sorted, EdgeTree const& tree, Clearances const* clearances,
                  GridLines& lines, ScratchVector<Meeting>& meetings, ScratchVector<char>& fresh) {
    // Where an edge is cut later, its direction at its ends is not what it was.
    auto const forget = [&](std::size_t vertex) {
        meetings[vertex] = std::min(meetings[vertex], kMany);
    };
    for (std::size_t i = 0; i < tree.Count(); ++i) {
        if (sorted.Has(i)) {
            forget(i);
            forget(tree.SecondOf(i));
        }
    }
    std::size_t const most = lines.points.size() + sorted.cuts.size();
    ScratchVector<GridPoint> allPoints(most, meetings.get_allocator());
    ScratchVector<Meeting> allMeetings(most, meetings.get_allocator());
    fresh.assign(most, 0);
    Doubts doubts(tree, sorted, clearances);
    std::size_t size = 0;
    std::size_t doubtful = 0;
    std::size_t begin = 0;
    for (std::size_t& lineEnd : lines.ends) {
        std::size_t const end = lineEnd;
        for (std::size_t i = begin; i < end; ++i) {
            allPoints[size] = lines.points[i];
            allMeetings[size] = meetings[i];
            ++size;
            if (!sorted.Has(i)) {
                continue;
            }
            Along const along(tree.At(i));
            std::size_t const before = i == begin ? end - 1 : i - 1;
            std::size_t const after = i + 1 == end ? begin : i + 1;
            if (doubts.IsClear(i, before, after)) {
                for (std::size_t k = sorted.Begin(i); k < sorted.ends[i]; ++k) {
                    Cut const& cut = sorted.cuts[k];
                    allPoints[size] = along.Point(cut.at, cut.beside);
                    allMeetings[size] = cut.meeting;
                    ++size;
                }
                continue;
            }
            std::size_t const first = size - 1;
            char const* part = doubts.Of(i, before, after).data();
            fresh[first] = *part++;
            for (std::size_t k = sorted.Begin(i); k < sorted.ends[i]; ++k) {
                Cut const& cut = sorted.cuts[k];
                if (cut.meeting == kAlone) {
                    continue;
                }
                GridPoint const p = along.Point(cut.at, cut.beside);
                if (p != allPoints[size - 1]) {
                    allPoints[size] = p;
                    allMeetings[size] = cut.meeting;
                    ++size;
                }
                fresh[size - 1] |= *part++;
            }
            doubtful += static_cast<std::size_t>(
                std::count(fresh.begin() + static_cast<std::ptrdiff_t>(first),
                           fresh.begin() + static_cast<std::ptrdiff_t>(size), 1));
        }
        lineEnd = size;
        begin = end;
    }
    allPoints.resize(size);
    allMeetings.resize(size);
    fresh.resize(size);
    lines.points = std::move(allPoints);
    meetings = std::move(allMeetings);
    return doubtful;
}

} // namespace

void CutAtCrossings(GridLines& lines, ClipGrid const& grid, Caution caution,
                    ScratchVector<Meeting>& meetings, std::optional<EdgeTree>& tree) {
    // A cut moves an edge by the rounding of the new vertex, and the moved edge can meet others
    // anew. Therefore every round looks again at the parts of edges that may do so, until it finds
    // nothing to cut.
    //
    // The first two rounds cut edges where they have a point in common. Two edges that run nearly
    // side by side could go on crossing, each time one double further along. Therefore later rounds
    // also bend edges at vertices that they pass closely. This is iterated snap rounding:
    // D. Halperin, E. Packer, Iterated Snap Rounding, Computational Geometry 23(2), 2002. A drawing
    // takes 2 rounds as a rule, and some 20 where all details are a few doubles large.
    //
    // An edge can pass two vertices closely that are opposite corners of its box. It is cut at
    // both, and a part leads from one of the corners to the other. That part can pass the first
    // edge's ends closely, and so its parts contain the first edge again. In boxes one double wide
    // this goes on for ever where the doubles below a power of two count as far apart as those
    // above it, see GridAxis::Spacing(). Therefore rounds from kMonotoneFrom on leave out cuts at
    // which an edge would turn back in x or in y.
    //
    // Those rounds end, for these reasons:
    //
    // 1. A cut lies in its edge's box. A touching point and a vertex of an edge that overlaps do by
    // choice. Crossing() returns a point of both edges' boxes. Snapping keeps it there, because it
    // is monotone and leaves the boxes' corners in place. No edge passes closely a vertex outside
    // of its box: half of the vertex' Spacing() is at most the distance to the next double.
    //
    // 2. A cut is not at an end of its edge. At least one cut of each edge is kept.
    //
    // 3. Hence an edge's parts run in the same quadrant as the edge. The sum of |dx| + |dy| over
    // all edges stays the same, and each edge has at least 1 of it. Every round but the last makes
    // at least one edge more. So there are at most as many rounds as that sum has steps.
    //
    // 4. No crossing is left then. Each pair of edges is looked at once the later of them is made.
    // Two edges that cross have no end in common, so the point is no end of one of them, and that
    // one is cut.
    std::size_t const kExactRounds = 2;
    std::size_t const kMonotoneFrom = 50;
    Clearances const clearances(grid);
    meetings.assign(lines.points.size(), kAlone);
    tree.emplace(lines, ScratchVector<char>(meetings.get_allocator()),
                 GridPoint{clearances.Reach(), clearances.Reach()}, EdgeTree::Order::kLines);
    for (std::size_t round = 0;; ++round) {
        bool const known = round == 0 && clearances.Usable() && caution == Caution::kWhereNeeded;
        ScratchVector<Cut> const cuts =
            Meetings(*tree, grid, round >= kExactRounds, known ? &clearances : nullptr, meetings)
                .Find();
        bool const any = std::any_of(cuts.begin(), cuts.end(),
                                     [](Cut const& cut) { return cut.meeting != kAlone; });
        if (!any) {
            if (!tree->IsInOrderOfLines() || !tree->HasBoxes()) {
                tree.reset();
            }
            return;
        }
        SortedCuts sorted(cuts, *tree);
        if (round >= kMonotoneFrom) {
            sorted.KeepMonotone();
        }
        ScratchVector<char> fresh(meetings.get_allocator());
        std::size_t const count = tree->Count();
        std::size_t const doubtful =
            Apply(sorted, *tree, known ? &clearances : nullptr, lines, meetings, fresh);
        if (doubtful == 0) {
            tree.reset();
            return;
        }
        bool const pixels = round + 1 >= kExactRounds;
        bool const many = fresh.size() > 2 * count && doubtful > fresh.size() / 4;
        tree.emplace(lines, std::move(fresh), pixels ? grid.LargestSpacing() : GridPoint{0, 0},
                     many ? EdgeTree::Order::kPlaces : EdgeTree::Order::kLines);
    }
}

} // namespace trammel_detail
