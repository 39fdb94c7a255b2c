// SPDX-License-Identifier: MIT

#include "Intersections_p.h"

#include "Predicates_p.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace trammel_detail {

namespace {

/// Returns the number of bits of v, where v > 0.
int BitsOf(UInt128 v) {
    auto const high = static_cast<std::uint64_t>(v >> 64);
    return high != 0 ? 128 - __builtin_clzll(high)
                     : 64 - __builtin_clzll(static_cast<std::uint64_t>(v));
}

/// Returns the point where two edges cross that have no end in common, to within a step of the
/// grid. The point lies in both edges' boxes. It does not depend on the order of the edges or on
/// their directions, so that lines that coincide are cut alike. `ea` is Cross(f.a, f.b, e.a), and
/// so on, twice the areas of triangles. `product` is the cross product of the directions.
GridPoint Crossing(GridEdge const& e, GridEdge const& f, Int128 ea, Int128 fa, Int128 product) {
    auto const distance = [](Int128 cross) {
        return static_cast<UInt128>(cross < 0 ? -cross : cross);
    };
    GridPoint const lowE = e.b < e.a ? e.b : e.a;
    GridPoint const lowF = f.b < f.a ? f.b : f.a;
    bool const exchange =
        lowF != lowE ? lowF < lowE : (f.b < f.a ? f.a : f.b) < (e.b < e.a ? e.a : e.b);
    GridEdge const& edge = exchange ? e : f;
    // The point is num / den of the way along that edge, from its nearer end, where the rounding is
    // least. The two triangles on either edge make up the same quadrangle.
    UInt128 den = distance(product);
    UInt128 num = distance(exchange ? ea : fa);
    UInt128 const other = den - num;
    bool const fromB = other < num || (other == num && edge.b < edge.a);
    GridPoint const from = fromB ? edge.b : edge.a;
    GridPoint const to = fromB ? edge.a : edge.b;
    num = fromB ? other : num;
    // 63 leading bits of the denominator leave room for a quotient of 63 bits.
    int const surplus = std::max(BitsOf(den) - 63, 0);
    den >>= surplus;
    num >>= surplus;
    auto const ratio = static_cast<std::int64_t>((num << 62) / den); // of 2^62
    auto const part = [ratio](std::int64_t d) {
        Int128 const scaled = static_cast<Int128>(ratio) * d;
        return static_cast<std::int64_t>((scaled + (static_cast<Int128>(1) << 61)) >> 62);
    };
    GridBox const box = BoxOf(exchange ? f : e);
    return {std::clamp(from.x + part(to.x - from.x), box.lowX, box.highX),
            std::clamp(from.y + part(to.y - from.y), box.lowY, box.highY)};
}

/// The work of FindCuts().
class CutFinder {
public:
    CutFinder(EdgeTree const& tree, ClipGrid const& grid, Test test, Clearances const* clearances,
              ScratchVector<Incidence>& incidences)
        : mTree(tree), mGrid(grid), mPixels(test == Test::kHotPixels), mClearances(clearances),
          mIncidences(incidences), mLargestSpacing(grid.LargestSpacing()),
          mCuts(incidences.get_allocator()), mSingles(incidences.get_allocator()) {}

    FoundCuts Find() {
        std::size_t const kMostAtFirst = 1024;
        mCuts.resize(mClearances != nullptr ? std::min(2 * mTree.Count(), kMostAtFirst) : 0);
        mTree.ForMeetingPairs(mPixels, [this](std::size_t i, std::size_t j, bool follow) {
            if (follow) {
                Following(i, j);
            } else if (mPixels) {
                Share(i, j, mTree.At(i), mTree.At(j));
            } else {
                Exactly(i, j);
            }
            if (mPixels) {
                InPixels(i, j);
            }
        });
        return Found();
    }
    FoundCuts FindIn(ScratchVector<EdgePair> const& pairs) {
        for (auto const [i, j] : pairs) {
            if (mTree.Follow(i, j)) {
                Following(i, j);
            } else if (!SharesOneEnd(i, j)) {
                Exactly(i, j);
            }
        }
        return Found();
    }

private:
    FoundCuts Found() {
        if (mPaired == 0) {
            return {std::move(mSingles), 0};
        }
        mCuts.resize(mPaired);
        mCuts.insert(mCuts.end(), mSingles.begin(), mSingles.end());
        return {std::move(mCuts), mPaired};
    }
    static bool IsEnd(GridEdge const& e, GridPoint p) { return p == e.a || p == e.b; }
    void CutAt(std::size_t edge, GridEdge const& e, GridPoint p) {
        if (!IsEnd(e, p)) {
            AddSingle(edge, e, p);
        }
    }
    // Cuts are written in place: to copy what was just written in other pieces takes long.
    static void Write(Cut& cut, std::size_t edge, MajorAxis const& axis, GridPoint p,
                      Incidence incidence, std::int64_t clearance) {
        cut.along = axis.Along(p);
        cut.across = axis.Across(p);
        cut.clearance = clearance;
        cut.edge = static_cast<std::uint32_t>(edge);
        cut.incidence = incidence;
    }
    void AddSingle(std::size_t edge, GridEdge const& e, GridPoint p) {
        mSingles.emplace_back();
        Write(mSingles.back(), edge, MajorAxis(e), p, kShared, 0);
    }
    /// Returns two new cuts, which are to be written.
    Cut* AddPair() {
        if (mCuts.size() - mPaired < 2) {
            mCuts.resize(std::max<std::size_t>(2 * mCuts.size(), 64));
        }
        mPaired += 2;
        return mCuts.data() + mPaired - 2;
    }
    /// For the areas see Crossing().
    [[gnu::always_inline]] void CutBothWhereTheyCross(std::size_t i, std::size_t j,
                                                      GridEdge const& e, GridEdge const& f,
                                                      Int128 ea, Int128 fa, Int128 product) {
        GridPoint const p = mGrid.Snapped(Crossing(e, f, ea, fa, product));
        if (mClearances == nullptr) {
            CutAt(i, e, p);
            CutAt(j, f, p);
            return;
        }
        bool const noNumbersLeft = mNext < kFirstCrossing; // after an overflow
        if (IsEnd(e, p) || IsEnd(f, p) || noNumbersLeft) {
            CutAt(i, e, p);
            CutAt(j, f, p);
            AddNearMiss(i, j, e, f, p, product);
            return;
        }
        MajorAxis const axisE(e);
        MajorAxis const axisF(f);
        std::int64_t const clearance =
            mClearances->For(axisE.LengthBound(), axisF.LengthBound(), product);
        Incidence const incidence = mNext + (fa > product ? 1 : 0);
        Cut* const pair = AddPair();
        Write(pair[0], i, axisE, p, incidence, clearance);
        Write(pair[1], j, axisF, p, incidence, clearance);
        mNext += 2;
    }
    void AddNearMiss(std::size_t i, std::size_t j, GridEdge const& e, GridEdge const& f,
                     GridPoint p, Int128 product) {
        if (mClearances != nullptr) {
            MajorAxis const axisE(e);
            MajorAxis const axisF(f);
            std::int64_t const clearance =
                mClearances->For(axisE.LengthBound(), axisF.LengthBound(), product);
            Cut* const pair = AddPair();
            Write(pair[0], i, axisE, p, kSingle, mClearances->Within(clearance, p, axisE, f));
            Write(pair[1], j, axisF, p, kSingle, mClearances->Within(clearance, p, axisF, e));
        }
    }
    /// Notes the ends that two edges have in common, which do not follow each other.
    void Share(std::size_t i, std::size_t j, GridEdge const& e, GridEdge const& f) {
        if (e.a == f.a || e.a == f.b) {
            ShareVertex(i, e.a == f.a ? j : mTree.SecondOf(j));
        }
        if (e.b == f.a || e.b == f.b) {
            ShareVertex(mTree.SecondOf(i), e.b == f.a ? j : mTree.SecondOf(j));
        }
    }
    void ShareVertex(std::size_t v, std::size_t w) {
        // Parts of two edges that cross there tell nothing new. The edges keep their clearance
        // there, or one of these vertices would be shared.
        if (mIncidences[v] < kFirstCrossing || mIncidences[v] / 2 != mIncidences[w] / 2) {
            mIncidences[v] = kShared;
            mIncidences[w] = kShared;
        }
    }
    /// Does what Exactly() does, without clearances, where two edges of different directions have
    /// an end in common. Most parts of cut edges that are near each other have.
    bool SharesOneEnd(std::size_t i, std::size_t j) {
        GridEdge const e = mTree.At(i);
        GridEdge const f = mTree.At(j);
        GridPoint const parallel = {e.a.x + (f.b.x - f.a.x), e.a.y + (f.b.y - f.a.y)};
        if (!(IsEnd(f, e.a) || IsEnd(f, e.b)) || Cross(e.a, e.b, parallel) == 0) {
            return false;
        }
        Share(i, j, e, f);
        return true;
    }
    /// Cuts edges that follow each other. They overlap if the second runs back over the first.
    void Following(std::size_t i, std::size_t j) {
        GridEdge const e = mTree.At(i);
        GridEdge const f = mTree.At(j);
        bool const inOrder = j == i + 1;
        GridPoint const turn = inOrder ? e.b : e.a;
        GridPoint const p = inOrder ? e.a : e.b;
        GridPoint const q = inOrder ? f.b : f.a;
        if (Cross(turn, p, q) == 0 && SameDirection(turn, p, q)) {
            // Equal parts begin here, so that the vertex is the end of more than two edges.
            mIncidences[inOrder ? j : i] = kShared;
            if (Contains(BoxOf(e), q)) {
                CutAt(i, e, q);
            } else {
                CutAt(j, f, p);
            }
        }
    }
    /// True when two points are on the same side of an edge, given Cross() of that edge and each.
    static bool AreBeside(Int128 a, Int128 b) { return (a < 0) == (b < 0) && a != 0 && b != 0; }
    void Exactly(std::size_t i, std::size_t j) {
        GridEdge const e = mTree.At(i);
        GridEdge const f = mTree.At(j);
        Int128 const fa = Cross(e.a, e.b, f.a);
        Int128 const fb = Cross(e.a, e.b, f.b);
        if (AreBeside(fa, fb)) {
            if (mClearances != nullptr && !mClearances->Apart(e, fa, fb)) {
                Int128 const ea = Cross(f.a, f.b, e.a);
                if (!mClearances->Apart(f, ea, ea + fa - fb)) {
                    AddNearMiss(i, j, e, f, Nearer(f, fa, fb), fa - fb);
                }
            }
            return;
        }
        Int128 const ea = Cross(f.a, f.b, e.a);
        // The two triangles on e and the two on f make up the same quadrangle.
        Int128 const eb = ea + fa - fb;
        if (AreBeside(ea, eb)) {
            if (mClearances != nullptr && !mClearances->Apart(f, ea, eb)) {
                AddNearMiss(i, j, e, f, Nearer(e, ea, eb), fa - fb);
            }
            return;
        }
        if (fa != 0 && fb != 0 && ea != 0 && eb != 0) {
            CutBothWhereTheyCross(i, j, e, f, ea, fa, fa - fb);
            return;
        }
        // A cross product is zero, as it is where the edges share an end.
        Share(i, j, e, f);
        if (mClearances != nullptr) {
            AddNearMiss(i, j, e, f, fa == 0 || fb == 0 ? Nearer(f, fa, fb) : Nearer(e, ea, eb),
                        fa - fb);
        }
        // Edges of different directions that share an end have nothing else in common.
        if (fa - fb != 0 && ((fa == 0 && IsEnd(e, f.a)) || (fb == 0 && IsEnd(e, f.b)))) {
            return;
        }
        if (fa == 0 && Contains(BoxOf(e), f.a)) {
            CutAt(i, e, f.a);
        }
        if (fb == 0 && Contains(BoxOf(e), f.b)) {
            CutAt(i, e, f.b);
        }
        if (ea == 0 && Contains(BoxOf(f), e.a)) {
            CutAt(j, f, e.a);
        }
        if (eb == 0 && Contains(BoxOf(f), e.b)) {
            CutAt(j, f, e.b);
        }
    }
    /// Returns the end of edge f that is nearer to another edge, given Cross() of that edge and
    /// each end.
    static GridPoint Nearer(GridEdge const& f, Int128 fa, Int128 fb) {
        return (fa < 0 ? -fa : fa) <= (fb < 0 ? -fb : fb) ? f.a : f.b;
    }
    void InPixels(std::size_t i, std::size_t j) {
        GridEdge const e = mTree.At(i);
        GridEdge const f = mTree.At(j);
        Int128 const fa = Cross(e.a, e.b, f.a);
        Int128 const fb = Cross(e.a, e.b, f.b);
        Int128 const ea = Cross(f.a, f.b, e.a);
        Int128 const eb = ea + fa - fb;
        std::size_t const before = mSingles.size();
        CutWherePassed(i, e, f.a, fa);
        CutWherePassed(i, e, f.b, fb);
        CutWherePassed(j, f, e.a, ea);
        CutWherePassed(j, f, e.b, eb);
        if (mSingles.size() == before && Sign(ea) * Sign(eb) < 0 && Sign(fa) * Sign(fb) < 0) {
            CutBothWhereTheyCross(i, j, e, f, ea, fa, fa - fb);
        }
    }
    /// Cuts edge e at p, which is no end of it, if it passes through the hot pixel of p.
    void CutWherePassed(std::size_t edge, GridEdge const& e, GridPoint p, Int128 cross) {
        if (!IsEnd(e, p) && Passes(e, p, cross)) {
            AddSingle(edge, e, p);
        }
    }
    /// True when edge e passes through the hot pixel of p, where `cross` is Cross(e.a, e.b, p).
    bool Passes(GridEdge const& e, GridPoint p, Int128 cross) const {
        GridBox const box = BoxOf(e);
        auto const reach = [&](GridPoint size) {
            return static_cast<Int128>(box.highX - box.lowX) * size.y +
                   static_cast<Int128>(box.highY - box.lowY) * size.x;
        };
        Int128 const distance = 2 * (cross < 0 ? -cross : cross);
        if (distance >= reach(mLargestSpacing)) {
            return false;
        }
        // The two are apart if they are so in x, in y or along the edge's normal. All numbers are
        // doubled, to stay whole.
        GridPoint const size = mGrid.Spacing(p);
        return 2 * p.x + size.x > 2 * box.lowX && 2 * p.x - size.x < 2 * box.highX &&
               2 * p.y + size.y > 2 * box.lowY && 2 * p.y - size.y < 2 * box.highY &&
               distance < reach(size);
    }

    EdgeTree const& mTree;
    ClipGrid const& mGrid;
    bool mPixels;
    Clearances const* mClearances;
    ScratchVector<Incidence>& mIncidences;
    GridPoint mLargestSpacing;
    ScratchVector<Cut> mCuts;    // with partners, which only clearances need, and room for more
    std::size_t mPaired = 0;     // how many cuts have partners
    ScratchVector<Cut> mSingles; // all others
    Incidence mNext = kFirstCrossing;
};

} // namespace

FoundCuts FindCuts(EdgeTree const& tree, ClipGrid const& grid, Test test,
                   Clearances const* clearances, ScratchVector<Incidence>& incidences) {
    return CutFinder(tree, grid, test, clearances, incidences).Find();
}

FoundCuts FindCuts(EdgeTree const& tree, ScratchVector<EdgePair> const& pairs, ClipGrid const& grid,
                   ScratchVector<Incidence>& incidences) {
    return CutFinder(tree, grid, Test::kExact, nullptr, incidences).FindIn(pairs);
}

} // namespace trammel_detail
