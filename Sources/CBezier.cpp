// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CMatrix3x3.h"
#include "CurveKernels_p.h"
#include "Flatness_p.h"
#include "Handles.h"
#include "Hypot_p.h"
#include "Integers.h"
#include "PointBuffer_p.h"
#include "PolygonAppend_p.h"
#include "Subdivision_p.h"
#include "TLine.h"
#include "TPoly.h"
#include "UGeometry.h"
#include "UScalar.h"

#include <algorithm>
#include <cmath>
#include <limits>

std::int32_t gCount = 0;
std::int32_t maxCount = 0;

double CBezier::mMaxError = 1.0;
std::int16_t CBezier::mRecursionLimit = 15;
std::int32_t CBezier::mCount = 0;

namespace {

using trammel_detail::FlatnessFilter;
using trammel_detail::kLengthError;
using trammel_detail::kPercentTolerance;
using trammel_detail::PointBuffer;

/// Points of a flattening that are appended or kept at a time: 16 KB of stack, where a thread may
/// have no more than 64 in all.
constexpr int kFlattenRun = 1024;
/// Points of a flattening that are measured at a time; few, so that they stay in the cache.
constexpr int kLengthRun = 256;
/// Points that are tested at a time.
constexpr int kTestRun = 64;

/// Two doubles worked on side by side, and the outcome of comparing two such.
typedef double TwoDoubles __attribute__((vector_size(16)));
typedef std::int64_t TwoWords __attribute__((vector_size(16)));

/// In each lane, `a` where the mask is set, else `b`.
inline TwoDoubles Choose(TwoWords mask, TwoDoubles a, TwoDoubles b) {
    return (TwoDoubles)(((TwoWords)a & mask) | ((TwoWords)b & ~mask));
}

/// One coordinate of two cubics, halved: the first half where the mask is set, else the second.
inline void HalveToward(TwoWords first, TwoDoubles& p0, TwoDoubles& p1, TwoDoubles& p2,
                        TwoDoubles& p3) {
    TwoDoubles const m01 = (p0 + p1) * 0.5;
    TwoDoubles const m12 = (p1 + p2) * 0.5;
    TwoDoubles const m23 = (p2 + p3) * 0.5;
    TwoDoubles const m012 = (m01 + m12) * 0.5;
    TwoDoubles const m123 = (m12 + m23) * 0.5;
    TwoDoubles const split = (m012 + m123) * 0.5;
    p0 = Choose(first, p0, split);
    p1 = Choose(first, m01, m123);
    p2 = Choose(first, m012, m23);
    p3 = Choose(first, split, p3);
}

/// The distance of two points.
inline double Distance(TPoint<double> const& a, TPoint<double> const& b) {
    return trammel_detail::Hypot(b.h - a.h, b.v - a.v);
}

/// Splits `c` at its middle. Inline, as all of the generator's time is spent here and in Flat.
inline TPoint<double> Halve(CBezier const& c, CBezier& left, CBezier& right) {
    TPoint<double> const m01 = (c.P0 + c.P1) / 2.0;
    TPoint<double> const m12 = (c.P1 + c.P2) / 2.0;
    TPoint<double> const m23 = (c.P2 + c.P3) / 2.0;
    TPoint<double> const m012 = (m01 + m12) / 2.0;
    TPoint<double> const m123 = (m12 + m23) / 2.0;
    TPoint<double> const split = (m012 + m123) / 2.0;
    TPoint<double> const end = c.P3;
    left = CBezier(c.P0, m01, m012, split);
    right = CBezier(split, m123, m23, end);
    return split;
}

/// The cubic's rules for the walk of its subdivision tree.
class BezierRules {
public:
    explicit BezierRules(CBezier const& whole)
        : mSize(FlatnessFilter::SizeOf(whole)), mFilter(mSize, CBezier::mMaxError) {}

    void Enter() const {
        gCount = trammel_detail::WrappingAdd(gCount, 1);
        maxCount = std::max(maxCount, gCount);
    }
    bool Flat(CBezier const& c) {
        // Read anew each time, as the callback may change it (and the curve, which is not looked at
        // again).
        if (mFilter.Tolerance() != CBezier::mMaxError) {
            mFilter = FlatnessFilter(mSize, CBezier::mMaxError);
        }
        return mFilter.Flat(c);
    }
    void Divide(CBezier const& c, CBezier& left, CBezier& right) const { Halve(c, left, right); }
    void Delivered() const { CBezier::mCount = trammel_detail::WrappingAdd(CBezier::mCount, 1); }

private:
    double mSize;
    FlatnessFilter mFilter;
};

/// Delivers the split points of `curve`, see CBezier::GenerateSegment.
template <class Deliver>
void Generate(CBezier const& curve, Deliver& deliver, bool force, int depth) {
    BezierRules rules(curve);
    trammel_detail::WalkSubdivision(curve, rules, deliver, force, depth);
}

/// True when the control points coincide with their ends: a straight segment.
bool IsStraight(CBezier const& c) { return !(c.P0 != c.P1 || c.P2 != c.P3); }

/// Counts `points` deliveries and the invocations of the generator that made them: the first one,
/// and two for each division.
void CountGenerated(std::int32_t points) {
    constexpr std::int32_t kMost = std::numeric_limits<std::int32_t>::max();
    std::int32_t const invocations = 1 + 2 * points;
    maxCount = gCount > kMost - invocations ? kMost : std::max(maxCount, gCount + invocations);
    gCount = trammel_detail::WrappingAdd(gCount, invocations);
    CBezier::mCount = trammel_detail::WrappingAdd(CBezier::mCount, points);
}

/// Stores the split points of `curve` in `run`, in order: those that GenerateSegment delivers when
/// it is forced, with mMaxError and mRecursionLimit as they are, counters included. For callers
/// whose use of the points changes none of these.
template <class Run> void GenerateForced(CBezier const& curve, Run& run) {
    double const tolerance = CBezier::mMaxError;
    int const levels = std::max(CBezier::mRecursionLimit - 1, 1);
    if (levels <= trammel_detail::kMostBlockLevels) {
        FlatnessFilter const filter(FlatnessFilter::SizeOf(curve), tolerance);
        if (filter.Judges()) {
            CountGenerated(trammel_detail::DivideInBlocks(curve, filter, levels, run));
            return;
        }
    }
    auto deliver = [&run](TPoint<double> const& pt) { run.Add(pt); };
    Generate(curve, deliver, true, CBezier::mRecursionLimit);
}

/// Stores the points of the flattened curve in `run`, ends included, duplicates not left out.
template <class Run> void FlattenTo(CBezier const& curve, double error, Run& run) {
    gCount = 0;
    trammel_detail::CurveErrorScope<CBezier> const scope(error);
    run.Add(curve.P0);
    if (!IsStraight(curve)) {
        GenerateForced(curve, run);
    }
    run.Add(curve.P3);
}

/// Calls kTest(point, rec) for the split points of `curve`, in order, until `rec` knows of a hit;
/// all are made and counted.
template <auto kTest, class Rec> void TestSplitPoints(CBezier const& curve, Rec& rec) {
    if (IsStraight(curve)) {
        return;
    }
    auto test = [&rec](TPoint<double> const* points, int count) {
        for (int i = 0; i < count && !rec.hit; ++i) {
            kTest(points[i], rec);
        }
    };
    PointBuffer<kTestRun, decltype(test)> run(test);
    GenerateForced(curve, run);
    run.Pass();
}

/// Makes room in the polygon for all points of the flattened curve, of which there are many;
/// `error` is the tolerance. There is room for as many as there are when all pieces are halved
/// alike, which may be some times as many; what stays unused is but set apart. Where that would be
/// more than 1 MB, the polygon grows as it does otherwise.
void ReservePoints(CBezier const& curve, double error, TPolygon<double>& poly) {
    constexpr int kMostLevels = 16;
    FlatnessFilter const filter(FlatnessFilter::SizeOf(curve), error);
    int levels = std::max(CBezier::mRecursionLimit - 1, 1);
    if (filter.Judges()) {
        levels = std::min(filter.LevelsToFlat(curve), levels);
    }
    if (levels <= kMostLevels) {
        auto const points = (static_cast<Size>(1) << levels) + 1;
        trammel_detail::ReserveBytes(reinterpret_cast<Handle>(poly.mHandle),
                                     points * static_cast<Size>(sizeof(TPoint<double>)));
    }
}

/// The lengths of the edges from each point to the next, for `count` points.
void LengthsBetween(TPoint<double> const* points, int count, double* lengths) {
    trammel_detail::EdgeLengths(trammel_detail::Coordinates(points), count - 1, lengths);
}

/// Calls use(points, count, lengths) for the points, some at a time, with the lengths of the edges
/// between them. Not inlined, as the lengths would enlarge the frames of deep calls.
template <class Use>
[[gnu::noinline]] void WithLengths(TPoint<double> const* points, int count, Use const& use) {
    double lengths[kLengthRun];
    for (int from = 0; from < count; from += kLengthRun) {
        int const some = std::min(count - from, kLengthRun);
        LengthsBetween(points + from, some, lengths);
        use(points + from, some, lengths);
    }
}

/// The sum of the lengths of a flattening's edges, as its points come.
class LengthOfRun {
public:
    double Total() const { return mTotal; }

    /// Adds `count` points, with the lengths of the edges between them.
    void Add(TPoint<double> const* points, int count, double const* lengths) {
        // A point equal to the one before is none of the flattened curve's: its edge of length 0
        // leaves the sum as it is, so that it need not be looked for, but where both are infinite.
        double sum = mTotal;
        if (mStarted) {
            sum += Distance(mLast, points[0]);
        }
        for (int i = 0; i < count - 1; ++i) {
            sum += lengths[i];
        }
        if (std::isnan(sum)) {
            TPoint<double> last = mStarted ? mLast : points[0];
            for (int i = 0; i < count; ++i) {
                if (points[i] != last) {
                    mTotal += Distance(last, points[i]);
                    last = points[i];
                }
            }
        } else {
            mTotal = sum;
        }
        mLast = points[count - 1];
        mStarted = true;
    }
    void operator()(TPoint<double> const* points, int count) {
        WithLengths(points, count,
                    [this](TPoint<double> const* some, int n, double const* between) {
                        Add(some, n, between);
                    });
    }

private:
    double mTotal = 0.0;
    bool mStarted = false;
    TPoint<double> mLast;
};

/// Finds the point at a distance along a flattening, as its points and edges come.
class PointAtDistance {
public:
    explicit PointAtDistance(double target) : mTarget(target) {}

    /// The point reached, or the last one where the distance lies beyond it or is NaN.
    TPoint<double> Pt() const { return mFound ? mPt : mLast; }

    /// Takes `count` points, with the lengths of the edges between them.
    void Take(TPoint<double> const* points, int count, double const* lengths) {
        if (!mStarted) {
            mStarted = true;
            mLast = points[0];
        } else {
            TakeEdge(points[0], Distance(mLast, points[0]));
        }
        for (int i = 0; i < count - 1 && !mFound; ++i) {
            TakeEdge(points[i + 1], lengths[i]);
        }
    }
    void operator()(TPoint<double> const* points, int count) {
        WithLengths(points, count,
                    [this](TPoint<double> const* some, int n, double const* between) {
                        Take(some, n, between);
                    });
    }

private:
    // A point equal to the one before is none of the flattened curve's.
    void TakeEdge(TPoint<double> const& pt, double length) {
        if (mFound || !(pt != mLast)) {
            return;
        }
        double const before = mSum;
        mSum += length;
        if (mSum >= mTarget) {
            mFound = true;
            mPt = TLine<double>(mLast, pt).TPt((mTarget - before) / length);
        } else {
            mLast = pt;
        }
    }

    double mTarget;
    double mSum = 0.0;
    bool mStarted = false;
    bool mFound = false;
    TPoint<double> mLast;
    TPoint<double> mPt;
};

/// Finds the point at `fraction` of the length of the curve's flattening, P0 and P3 for 0 and 1, if
/// the points can all be kept; if not, finds the length at which it is. Returns whether it has the
/// point. Not inlined, nor is its counterpart: their buffers never share the stack.
[[gnu::noinline]] bool FindFlattenedPt(CBezier const& curve, double fraction, TPoint<double>& pt,
                                       double& target) {
    LengthOfRun length;
    bool allAtOnce = true;
    auto measure = [&](TPoint<double> const* points, int count) {
        allAtOnce = false;
        length(points, count);
    };
    PointBuffer<kFlattenRun, decltype(measure)> run(measure);
    FlattenTo(curve, kLengthError, run);
    if (fraction == 0.0) {
        pt = curve.P0;
        return true;
    }
    if (fraction == 1.0) {
        pt = curve.P3;
        return true;
    }
    if (allAtOnce) {
        double lengths[kFlattenRun];
        LengthsBetween(run.Points(), run.Count(), lengths);
        length.Add(run.Points(), run.Count(), lengths);
        PointAtDistance find(fraction * length.Total());
        find.Take(run.Points(), run.Count(), lengths);
        pt = find.Pt();
        return true;
    }
    run.Pass();
    target = fraction * length.Total();
    return false;
}

/// The point at the length `target` of the curve's flattening, which is not counted again.
[[gnu::noinline]] TPoint<double> FlattenedPtAt(CBezier const& curve, double target) {
    PointAtDistance find(target);
    PointBuffer<kLengthRun, PointAtDistance> run(find);
    std::int32_t const counters[] = {CBezier::mCount, gCount, maxCount};
    FlattenTo(curve, kLengthError, run);
    run.Pass();
    CBezier::mCount = counters[0];
    gCount = counters[1];
    maxCount = counters[2];
    return find.Pt();
}

/// The point at `fraction` of the length of the curve's flattening: P0 and P3 for 0 and 1.
TPoint<double> FlattenedPt(CBezier const& curve, double fraction) {
    TPoint<double> pt;
    double target = 0.0;
    return FindFlattenedPt(curve, fraction, pt, target) ? pt : FlattenedPtAt(curve, target);
}

// -------------------------------------------------------------------------------------------------
// The bisection toward the nearest point

/// The literal decision of one step: true when the search goes on in the first half of `c`.
bool TowardStartExactly(CBezier const& c, TPoint<double> const& pt, double tolerance) {
    TLine<double> const chord(c.TPt(0.5 - tolerance), c.TPt(0.5 + tolerance));
    return chord.Perpendicular().HalfSpace(pt) == 1;
}

/// Decides the bisection's steps, from a cheap estimate wherever that leaves no doubt.
///
/// The literal decision takes the points A and B of the curve at 0.5 -+ t, t the tolerance, turns
/// the chord a quarter about its middle M, takes a second quarter turn for the perpendicular, and
/// asks for the sign of its product with the vector from the turned chord's start to the point p.
/// In exact arithmetic that is the sign of -d·r with d = B - A and r = p - M, as the turned chord's
/// start lies at a right angle to d from M; and by Taylor's formula
///
///     d = 3/2 t (P3 + P2 - P1 - P0) + 2 t³ (P3 - 3 P2 + 3 P1 - P0)
///     M = (P0 + 3 P1 + 3 P2 + P3)/8 + 3/2 t² (P0 - P1 - P2 + P3)
///
/// With u = 2^-53, S a bound on the coordinates of the curve, t <= 1/8 (so |d| <= 3S in the sum of
/// its components), and terms of order u² covered by the slack at the end:
///
///   literal    A and B are off by 14uS in each component (three steps P + (Q - P)·w with 3.5uS
///              each, and the rounding of 0.5 -+ t), M by 17uS. The quarter turn's sine is 1 and
///              its cosine, of the rounded angle, less than u, so turning adds 3u of the vector:
///              the turned ends are off by 56uS, the second perpendicular by 130uS, and the product
///              by uS(130 |r| + 196 |d|) + 4u |d| |r|, magnitudes being sums of components.
///   estimate   d is off by 4uS, M by 8uS, the product by uS(4 |r| + 8 |d|) + 4u |d| |r|.
///
/// Together at most uS(158 |r| + 204 |d|), less than half of the bound uS 2^9 (|r| + |d|) that is
/// used. Inside of it, and where products could overflow or underflow, the literal form decides. So
/// it does for curves so small that uS is not far above the smallest number there is: each of the
/// some dozen products on the way to A, B and d may lose that much, which the model leaves out.
class SideFilter {
public:
    SideFilter(CBezier const& whole, double tolerance)
        : mBound(FlatnessFilter::SizeOf(whole) * 0x1p-44), mFirst(1.5 * tolerance),
          mThird(2.0 * tolerance * tolerance * tolerance), mSecond(1.5 * tolerance * tolerance) {}

    /// True where estimates may be made for the pieces of `whole`.
    static bool Serves(CBezier const& whole, TPoint<double> const& pt, double tolerance) {
        double const size = FlatnessFilter::SizeOf(whole);
        return tolerance >= 0x1p-40 && tolerance <= 0.125 && size >= 0x1p-960 && size <= 0x1p400 &&
               std::abs(pt.h) <= 0x1p400 && std::abs(pt.v) <= 0x1p400;
    }

    /// Estimates the literal product's negative and its error's bound. `Number` is double, or a
    /// vector of doubles that are computed side by side.
    template <class Number> struct Estimate {
        Number product;
        Number magnitude; ///< |r| + |d|
    };
    template <class Number>
    Estimate<Number> Of(Number const& h0, Number const& v0, Number const& h1, Number const& v1,
                        Number const& h2, Number const& v2, Number const& h3, Number const& v3,
                        TPoint<double> const& pt) const {
        Number const dh = mFirst * ((h3 - h0) + (h2 - h1)) + mThird * ((h3 - h0) - 3.0 * (h2 - h1));
        Number const dv = mFirst * ((v3 - v0) + (v2 - v1)) + mThird * ((v3 - v0) - 3.0 * (v2 - v1));
        Number const rh =
            pt.h - (((h0 + h3) + 3.0 * (h1 + h2)) * 0.125 + mSecond * ((h0 + h3) - (h1 + h2)));
        Number const rv =
            pt.v - (((v0 + v3) + 3.0 * (v1 + v2)) * 0.125 + mSecond * ((v0 + v3) - (v1 + v2)));
        return Estimate<Number>{dh * rh + dv * rv,
                                Magnitude(rh) + Magnitude(rv) + (Magnitude(dh) + Magnitude(dv))};
    }
    double Bound() const { return mBound; }

    /// Below this the estimate's products may have lost bits.
    static constexpr double kSmallestBound = 0x1p-1000;

private:
    static double Magnitude(double x) { return std::abs(x); }
    static TwoDoubles Magnitude(TwoDoubles const& x) {
        TwoWords const magnitude = {INT64_MAX, INT64_MAX};
        return (TwoDoubles)((TwoWords)x & magnitude);
    }

    double mBound;
    double mFirst;
    double mThird;
    double mSecond;
};

/// One step's decision: true when the search goes on in the first half of `c`.
bool TowardStart(CBezier const& c, TPoint<double> const& pt, double tolerance) {
    if (SideFilter::Serves(c, pt, tolerance)) {
        SideFilter const filter(c, tolerance);
        auto const estimate =
            filter.Of(c.P0.h, c.P0.v, c.P1.h, c.P1.v, c.P2.h, c.P2.v, c.P3.h, c.P3.v, pt);
        double const bound = filter.Bound() * estimate.magnitude;
        if (std::abs(estimate.product) > bound && bound >= SideFilter::kSmallestBound) {
            return estimate.product < 0.0;
        }
    }
    return TowardStartExactly(c, pt, tolerance);
}

/// The bisection of FindDividedTValue on both halves of a curve, from 0 to 1, side by side: lane 0
/// holds the piece of the left half, lane 1 that of the right one. Requires SideFilter::Serves, by
/// which no middle is ever one of its bounds.
void BisectHalves(CBezier const& whole, CBezier const& left, CBezier const& right,
                  TPoint<double> const& pt, double tolerance, double& tLeft, double& tRight) {
    SideFilter const filter(whole, tolerance);
    TwoDoubles h0 = {left.P0.h, right.P0.h};
    TwoDoubles v0 = {left.P0.v, right.P0.v};
    TwoDoubles h1 = {left.P1.h, right.P1.h};
    TwoDoubles v1 = {left.P1.v, right.P1.v};
    TwoDoubles h2 = {left.P2.h, right.P2.h};
    TwoDoubles v2 = {left.P2.v, right.P2.v};
    TwoDoubles h3 = {left.P3.h, right.P3.h};
    TwoDoubles v3 = {left.P3.v, right.P3.v};
    TwoDoubles lo = {0.0, 0.0};
    double width = 1.0; // hi - lo, the same power of two in both lanes: exact
    TwoDoubles middle;
    do {
        auto const estimate = filter.Of(h0, v0, h1, v1, h2, v2, h3, v3, pt);
        TwoDoubles const bound = filter.Bound() * estimate.magnitude;
        TwoWords toStart = estimate.product < -bound;
        TwoWords const decided =
            (toStart | (estimate.product > bound)) & (bound >= SideFilter::kSmallestBound);
        for (int lane = 0; lane < 2; ++lane) {
            if (__builtin_expect(decided[lane] == 0, 0)) {
                CBezier const piece(
                    TPoint<double>(h0[lane], v0[lane]), TPoint<double>(h1[lane], v1[lane]),
                    TPoint<double>(h2[lane], v2[lane]), TPoint<double>(h3[lane], v3[lane]));
                toStart[lane] = TowardStartExactly(piece, pt, tolerance) ? -1 : 0;
            }
        }
        HalveToward(toStart, h0, h1, h2, h3);
        HalveToward(toStart, v0, v1, v2, v3);
        width *= 0.5;
        middle = lo + width;
        lo = Choose(toStart, lo, middle);
    } while (width > tolerance);
    tLeft = middle[0];
    tRight = middle[1];
}

} // namespace

double CBezier::SetCurveError(double e) {
    double const old = mMaxError;
    mMaxError = e;
    return old;
}

bool CBezier::Flat(double tolerance) const { return tolerance >= trammel_detail::Deviation(*this); }

TPoint<double> CBezier::Divide(CBezier& left, CBezier& right) const {
    return Halve(*this, left, right);
}

TPoint<double> CBezier::Divide(CBezier& left, CBezier& right, double t) const {
    TPoint<double> const a = P0 + (P1 - P0) * t;
    TPoint<double> const b = P1 + (P2 - P1) * t;
    TPoint<double> const c = P2 + (P3 - P2) * t;
    TPoint<double> const d = a + (b - a) * t;
    TPoint<double> const e = b + (c - b) * t;
    TPoint<double> const split = d + (e - d) * t;
    CBezier const rightHalf(split, e, c, P3);
    left.Set(P0, a, d, split);
    right = rightHalf;
    return split;
}

TPoint<double> CBezier::Divide(CBezier& left, CBezier& right, TPoint<double> const& pt) const {
    return Divide(left, right, FindTValue(pt, 0.0, 0.0, 1.0));
}

void CBezier::GetTRange(double t0, double t1, CBezier& out) const {
    CBezier scrap;
    CBezier rest(*this);
    if (t0 > 0.0) {
        Divide(scrap, rest, std::min(1.0, t0));
    }
    if (1.0 > t1) {
        rest.Divide(out, scrap, std::max(0.0, (t1 - t0) / (1.0 - t0)));
    } else {
        out = rest;
    }
}

void CBezier::GenerateSegment(PointDataProc proc, void* data, bool force, short depth) const {
    auto deliver = [proc, data](TPoint<double> const& pt) { proc(pt, data); };
    Generate(*this, deliver, force, depth);
}

void CBezier::GenerateSegment(PointProc proc, bool force, short depth) const {
    Generate(*this, proc, force, depth);
}

void CBezier::Flatten(TPolygon<double>& poly, double error) const {
    bool first = true;
    auto append = [&](TPoint<double> const* points, int count) {
        if (first && count > kFlattenRun - trammel_detail::kBlockPoints) {
            ReservePoints(*this, error, poly); // more are to come
        }
        first = false;
        trammel_detail::AppendUniquePoints(points, count, poly);
    };
    PointBuffer<kFlattenRun, decltype(append)> run(append);
    FlattenTo(*this, error, run);
    run.Pass();
}

void CBezier::AddSegmentToPoly(TPolygon<double>& poly, double error) const { Flatten(poly, error); }

void CBezier::AddPtToPoly(TPoint<double> const& pt, TPolygon<double>& poly) {
    poly.AppendUnique(pt);
}

void CBezier::AddPtToBoundsRect(TPoint<double> const& pt, TRect<double>& rect) { rect |= pt; }

void CBezier::HitTestPt(TPoint<double> const& pt, HitInfoRec& rec) {
    if (!rec.hit) {
        rec.hit = ::HitTest(rec.lastPt, pt, rec.testPt, rec.tolerance);
        rec.lastPt = pt;
    }
}

void CBezier::ContainsPt(TPoint<double> const& pt, IntersectInfoRec& rec) {
    if (!rec.hit) {
        rec.hit = rec.rect.Contains(pt);
    }
}

double CBezier::FindTValue(TPoint<double> const& pt, double tolerance, double t0, double t1) const {
    double bestT = 0.5;
    double bestDistance = std::numeric_limits<double>::max();
    double const distance0 = Distance(TPt(t0), pt);
    double const distance1 = Distance(TPt(t1), pt);
    CBezier left;
    CBezier right;
    Halve(*this, left, right);
    double tLeft = 0.0;
    double tRight = 0.0;
    if (t0 == 0.0 && t1 == 1.0 && SideFilter::Serves(*this, pt, tolerance)) {
        BisectHalves(*this, left, right, pt, tolerance, tLeft, tRight);
    } else {
        if (0.5 > t0) {
            tLeft = left.FindDividedTValue(pt, tolerance, 2.0 * t0, std::min(1.0, 2.0 * t1));
        }
        if (t1 > 0.5) {
            tRight = right.FindDividedTValue(pt, tolerance, std::max(0.0, 2.0 * t0 - 1.0),
                                             2.0 * t1 - 1.0);
        }
    }
    if (0.5 > t0) {
        bestT = tLeft / 2.0;
        bestDistance = Distance(TPt(bestT), pt);
    }
    if (t1 > 0.5) {
        double const distance = Distance(right.TPt(tRight), pt);
        if (bestDistance > distance) {
            bestDistance = distance;
            bestT = tRight / 2.0 + 0.5;
        }
    }
    if (bestDistance >= distance0) {
        return t0;
    }
    if (bestDistance >= distance1) {
        return t1;
    }
    return bestT;
}

double CBezier::FindDividedTValue(TPoint<double> const& pt, double tolerance, double lo,
                                  double hi) {
    CBezier current(*this);
    double middle;
    bool stuck;
    do {
        middle = (lo + hi) / 2.0;
        // A middle that is one of the bounds halves nothing: all further middles would be the same.
        stuck = middle == lo || middle == hi;
        CBezier left;
        CBezier right;
        Halve(current, left, right);
        if (TowardStart(current, pt, tolerance)) {
            current = left;
            hi = middle;
        } else {
            current = right;
            lo = middle;
        }
    } while (hi - lo > tolerance && !stuck);
    return middle;
}

bool CBezier::HitTest(TPoint<double> const& pt, double tolerance) const {
    TRect<double> reach = Extents();
    reach.Inset(-tolerance, -tolerance);
    if (!reach.Contains(pt)) {
        return false;
    }
    HitInfoRec rec;
    rec.tolerance = tolerance;
    rec.testPt = pt;
    rec.hit = false;
    rec.lastPt = P0;
    TestSplitPoints<HitTestPt>(*this, rec);
    HitTestPt(P3, rec);
    return rec.hit;
}

bool CBezier::Intersects(TRect<double> r) const {
    if (!NaiveSectTRect(Extents(), r)) {
        return false;
    }
    IntersectInfoRec rec;
    rec.hit = false;
    rec.rect = r;
    ContainsPt(P0, rec);
    TestSplitPoints<ContainsPt>(*this, rec);
    ContainsPt(P3, rec);
    return rec.hit;
}

double CBezier::Length() const {
    LengthOfRun length;
    PointBuffer<kLengthRun, LengthOfRun> run(length);
    FlattenTo(*this, kLengthError, run);
    run.Pass();
    return length.Total();
}

double CBezier::PercentT(double fraction) const {
    return FindTValue(FlattenedPt(*this, fraction), kPercentTolerance, 0.0, 1.0);
}

double CBezier::TPercent(double t) const {
    CBezier left;
    CBezier right;
    Divide(left, right, t);
    double const part = left.Length();
    return part / Length();
}

CBezier& CBezier::operator+=(TPoint<double> const& p) {
    TPoint<double> const by = p;
    P0 += by;
    P1 += by;
    P2 += by;
    P3 += by;
    return *this;
}

CBezier& CBezier::operator-=(TPoint<double> const& p) {
    TPoint<double> const by = p;
    P0 -= by;
    P1 -= by;
    P2 -= by;
    P3 -= by;
    return *this;
}

CBezier& CBezier::operator*=(TPoint<double> const& p) {
    TPoint<double> const by = p;
    P0 *= by;
    P1 *= by;
    P2 *= by;
    P3 *= by;
    return *this;
}

CBezier& CBezier::operator/=(TPoint<double> const& p) {
    TPoint<double> const by = p;
    P0 /= by;
    P1 /= by;
    P2 /= by;
    P3 /= by;
    return *this;
}

CBezier& CBezier::operator*=(double s) {
    P0 *= s;
    P1 *= s;
    P2 *= s;
    P3 *= s;
    return *this;
}

CBezier& CBezier::operator/=(double s) {
    P0 /= s;
    P1 /= s;
    P2 /= s;
    P3 /= s;
    return *this;
}

CBezier& CBezier::Rotate(double angle) {
    P0.Rotate(angle);
    P1.Rotate(angle);
    P2.Rotate(angle);
    P3.Rotate(angle);
    return *this;
}

CBezier& CBezier::Rotate(double angle, TPoint<double> const& center) {
    TPoint<double> const about = center;
    P0.Rotate(angle, about);
    P1.Rotate(angle, about);
    P2.Rotate(angle, about);
    P3.Rotate(angle, about);
    return *this;
}

CBezier& CBezier::Transform(CMatrix3x3 const& m) {
    P0.Transform(m);
    P1.Transform(m);
    P2.Transform(m);
    P3.Transform(m);
    return *this;
}
