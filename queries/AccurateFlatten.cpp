// SPDX-License-Identifier: MIT

// Flattening takes two steps: the bend of the curve plans the points, and then each chord is
// verified.
//
// The plan. A short piece of length s with curvature k leaves its chord by k·s²/8. So chords that
// all use up the tolerance e end at equal steps of the integral of
//
//     sqrt(k/(8e)) ds = sqrt(|B' x B''| / (8e |B'|)) dt
//
// [Levien]. The trapezoidal rule gives the integral over a few panels of the parameter. The points'
// parameters follow from it panel by panel. For a cubic with B' = 3(a + 2bt + ct²), B' x B'' is
// 18 (a x b + (a x c) t + (b x c) t²).
//
// The verification. Let e1 and e2 be the distances of a piece's control points from the line
// through its ends, with a sign for the side and |e1| >= |e2|. The curve's distance from the line
// is 3t(1 - t)((1 - t)e1 + t·e2). Its maximum, divided by |e1|, is a convex function of e2/e1. It
// has the values 3/4, 4/9 and 1/sqrt(12) at 1, 0 and -1, so linear interpolation between these
// bounds it.
//
// Along the chord the curve overshoots the ends by at most 3/4 of the control points' overshoot.
// The curve runs from end to end, so it is beside each point of the chord somewhere. Therefore one
// bound holds for the distance of the curve from the chord and for the distance of the chord from
// the curve. A chord that fails the test is divided.
//
// Four planned points are computed and verified at a time. Only the pieces of a chord that fails
// are verified one by one.
//
// Most curves of a glyph or an icon are mildly bent and take few chords. A rough plan suffices for
// them: it takes the bend in the middle of each of four panels as constant on the panel. One vector
// holds the four bends. These chords are verified as all others are, so the rough plan only decides
// about the number of points. Where a chord fails, the code tries one chord more, and then the plan
// above.

#include "AccurateCurve.h"
#include "AccurateCurve_p.h"

#include "CBSpline.h"
#include "CBezier.h"
#include "CPath.h"
#include "FlattenKernels_p.h"
#include "PathWalk_p.h"
#include "PointBuffer_p.h"
#include "PointMath_p.h"
#include "PolygonAppend_p.h"
#include "TPoint.h"
#include "TPoly.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::ChordDeviation;
using trammel_detail::Dot;
using trammel_detail::FlatCubic;
using trammel_detail::FlatPlan;
using trammel_detail::FlatRun;
using trammel_detail::Pt;
using trammel_detail::ScaledPoints;
using trammel_detail::Square;
using trammel_detail::Taxicab;

/// The finest tolerance, as a part of the control vectors' magnitudes. Rounding moves the computed
/// distances from chords by 2^-49 of the same magnitudes.
constexpr double kFinest = 0x1p-40;
/// The part of the tolerance for which points are planned, so that few chords have to be divided.
constexpr double kPlanned = 0.97;
/// A curve is too bent for few chords where a second difference of its control points is longer
/// than this many tolerances. A curve keeps the tolerance by n equal steps of the parameter where
/// none is longer than 4n²/3 tolerances. Ten such steps are some eight steps of equal bend.
constexpr double kMostFewBend = 400.0 / 3.0;
/// The part of a piece that a division at a turn leaves at least on either side.
constexpr double kLeastPart = 0.05;
/// The most divisions of a chord: its parameters are neighbours then.
constexpr std::size_t kMostPending = 56;

/// A point of the curve relative to P0, with a third of the derivative.
struct Place {
    double t;
    Pt at;
    Pt v;
};

/// A cubic as the polynomial 3at + 3bt² + ct³ relative to P0.
class Cubic {
public:
    explicit Cubic(ScaledPoints<4> const& p)
        : mA(p[1] - p[0]), mB((p[2] - p[1]) - mA), mEnd(p[3] - p[0]), mEndV(p[3] - p[2]),
          mSize(Taxicab(mA) + Taxicab(p[2] - p[1]) + Taxicab(mEndV)) {
        mC = (mEndV - (p[2] - p[1])) - mB;
    }
    FlatCubic Flat() const {
        return {mA.h, mA.v, mB.h, mB.v, mC.h, mC.v, mEnd.h, mEnd.v, mEndV.h, mEndV.v};
    }
    double Size() const { return mSize; }
    Place Start() const { return {0.0, Pt(), mA}; }
    /// Returns the place at `t`; the end exactly at 1.
    Place At(double t) const {
        if (t == 1.0) {
            return {t, mEnd, mEndV};
        }
        Pt const rise = mC * t;
        return {t, (mA * 3.0 + (mB * 3.0 + rise) * t) * t, mA + (mB * 2.0 + rise) * t};
    }
    /// Returns the parameter at which to divide the piece between two places.
    ///
    /// A piece that turns back along its chord is divided at the turn, so that straight curves need
    /// no more points than turns. Any other piece is divided at its middle. So is a piece that only
    /// turns near an end, where a point would gain little.
    double Split(Place const& p0, Place const& p1, double tolerance) const {
        Pt d = p1.at - p0.at;
        if (Square(d) <= tolerance * tolerance) {
            d = Square(p0.v) > Square(p1.v) ? p0.v : p1.v;
        }
        double const a = Dot(mA, d);
        double const b = Dot(mB, d);
        double const c = Dot(mC, d);
        double const width = p1.t - p0.t;
        double const middle = p0.t + 0.5 * width;
        double const root = std::sqrt(std::max(b * b - a * c, 0.0));
        double const s = b >= 0.0 ? -(b + root) : root - b;
        double best = middle;
        double nearest = (0.5 - kLeastPart) * width;
        for (double const t : {s / c, a / s}) {
            if (std::abs(t - middle) < nearest) {
                best = t;
                nearest = std::abs(t - middle);
            }
        }
        return best;
    }

private:
    Pt mA;
    Pt mB;
    Pt mC;
    Pt mEnd;
    Pt mEndV;
    double mSize;
};

ChordDeviation<double> DeviationOf(Place const& p0, Place const& p1, Pt const& d, double square) {
    return trammel_detail::DeviationOf(p1.t - p0.t, d.h, d.v, square, p0.v.h, p0.v.v, p1.v.h,
                                       p1.v.v);
}

/// Returns a bound on how far from its start a piece of the curve gets. The chord has the given
/// squared length.
///
/// Relative to the start, the control points are 0, v0, d - v1 and d, and the two in the middle
/// have 3/4 of the weight at most.
double ReachOf(Place const& p0, Place const& p1, double square) {
    double const v = std::sqrt(std::max(Square(p0.v), Square(p1.v)));
    return std::sqrt(square) + 0.75 * (p1.t - p0.t) * v;
}

/// True when the piece keeps the distance from its chord.
bool Keeps(Place const& p0, Place const& p1, double tolerance) {
    Pt const d = p1.at - p0.at;
    double const square = Square(d);
    double const limit = tolerance * tolerance;
    if (!trammel_detail::IsChord(square, limit)) {
        return ReachOf(p0, p1, square) <= tolerance;
    }
    ChordDeviation<double> const off = DeviationOf(p0, p1, d, square);
    return off.Square() <= limit * square;
}

/// True when a few chords may suffice.
bool HardlyBent(FlatCubic const& c, double tolerance) {
    double const most = kMostFewBend * tolerance;
    return trammel_detail::SquaredBend(c) <= most * most;
}

/// Returns a bound on the piece's distance from its chord.
double DistanceOf(Place const& p0, Place const& p1) {
    Pt const d = p1.at - p0.at;
    double const square = Square(d);
    double const reach = ReachOf(p0, p1, square);
    if (square == 0.0) {
        return reach;
    }
    ChordDeviation<double> const off = DeviationOf(p0, p1, d, square);
    return std::min(reach, std::sqrt(off.Square() / square));
}

/// Returns the factor by which the plan multiplies the bend divided by the speed. A power of two in
/// the input cancels in this product, before the root is taken, so it changes nothing.
double ScaleFor(double tolerance) { return 0.75 / (kPlanned * tolerance); }

/// Plans where on the curve the points lie, and computes them.
class Plan {
public:
    Plan(FlatCubic const& curve, double tolerance) : mCurve(curve), mTolerance(tolerance) {
        mTotal = trammel_detail::PlanFlattening(mCurve, ScaleFor(tolerance), mPlan);
    }
    /// Divides the curve into as many chords as it takes, but no more than `most`. Returns their
    /// number.
    int Divide(int most) {
        double const chords = std::max(1.0, std::ceil(mTotal)); // may be beyond any integer
        mPlan.chords = chords < most ? static_cast<int>(chords) : most;
        mPlan.step = mTotal / mPlan.chords;
        mPlan.perChord = mPlan.chords / mTotal;
        mPlan.panel = 0;
        mPlan.done = 0;
        return mPlan.chords;
    }
    /// Computes the next points; false when there are none.
    bool Next(FlatRun& run) {
        trammel_detail::NextFlatRun(mCurve, mTolerance, mPlan, run);
        return run.count > 0;
    }

private:
    FlatCubic const& mCurve;
    double mTolerance;
    double mTotal; ///< chords, not yet rounded
    FlatPlan mPlan;
};

Place Get(FlatRun const& run, int i) {
    return {run.t[i], Pt(run.h[i], run.v[i]), Pt(run.dh[i], run.dv[i])};
}

void Set(FlatRun& run, int i, Place const& p) {
    run.t[i] = p.t;
    run.h[i] = p.at.h;
    run.v[i] = p.at.v;
    run.dh[i] = p.v.h;
    run.dv[i] = p.v.v;
}

/// Delivers the points between P0 and P3 in order, relative to P0. It calls deliver.Point(point)
/// for one point and deliver.Run(h, v, count) for several. Returns the distance that is kept:
/// `asked`, or more where rounding or kMostFlatPoints does not allow it.
template <class Deliver> double Flatten(Cubic const& curve, double asked, Deliver& deliver) {
    double const finest = kFinest * curve.Size();
    double const tolerance = asked > finest ? asked : finest;
    if (curve.Size() == 0.0) {
        return tolerance;
    }
    FlatCubic const flat = curve.Flat();
    FlatRun run;
    if (HardlyBent(flat, tolerance)) {
        if (Keeps(curve.Start(), curve.At(1.0), tolerance)) {
            return tolerance;
        }
        int const chords = trammel_detail::FewChords(flat, ScaleFor(tolerance), tolerance, run);
        if (chords > 0) {
            deliver.Run(run.h + 1, run.v + 1, chords - 1);
            return tolerance;
        }
    }
    Plan plan(flat, tolerance);
    constexpr int kMost = static_cast<int>(kMostFlatPoints) - 1;
    int spare = kMost - plan.Divide(kMost); // points that may be added
    double kept = tolerance;
    std::array<double, kMostPending> pending;
    Set(run, 0, curve.Start());
    while (plan.Next(run)) {
        for (int i = 1; i <= run.count; ++i) {
            std::uint64_t const failing = run.failing >> static_cast<unsigned>(i - 1);
            int const first = failing != 0 ? i + __builtin_ctzll(failing) : run.count + 1;
            int const last = first - 1;
            if (last >= i) {
                deliver.Run(run.h + i, run.v + i, last - i + (run.t[last] < 1.0 ? 1 : 0));
                i = last;
                continue;
            }
            Place from = Get(run, i - 1);
            std::size_t waiting = 0;
            for (double t = run.t[i]; t > from.t;) {
                Place const to = curve.At(t);
                if (!Keeps(from, to, tolerance)) {
                    double const split = curve.Split(from, to, tolerance);
                    if (spare > 0 && waiting < kMostPending && split > from.t && split < t) {
                        --spare;
                        pending[waiting++] = t;
                        t = split;
                        continue;
                    }
                    kept = std::max(kept, DistanceOf(from, to));
                }
                from = to;
                if (t < 1.0) {
                    deliver.Point(to.at);
                }
                t = waiting > 0 ? pending[--waiting] : 0.0;
            }
        }
        Set(run, 0, Get(run, run.count));
    }
    return kept;
}

/// Moves points back to where the curve is, in the input's unit, and hands each to `use`.
template <class Use> class EachPoint {
public:
    /// `dropped` is the result of DropCommon() for the points.
    EachPoint(ScaledPoints<4> const& points, Pt const& start, Pt const& dropped, Use& use)
        : mPoints(points), mStart(start), mDropped(dropped), mUse(use) {}
    void Point(Pt const& relative) {
        Pt const p = mPoints.Up(mPoints[0] + relative);
        mUse(Pt(mDropped.h != 0.0 ? mStart.h : p.h, mDropped.v != 0.0 ? mStart.v : p.v));
    }
    void Run(double const* h, double const* v, int count) {
        for (int i = 0; i < count; ++i) {
            Point(Pt(h[i], v[i]));
        }
    }

private:
    ScaledPoints<4> const& mPoints;
    Pt mStart;
    Pt mDropped;
    Use& mUse;
};

/// Flattens, and delivers all points in the input's unit.
template <class Use> double FlattenAll(CBezier const& curve, double tolerance, Use use) {
    std::array<Pt, 4> points = {curve.P0, curve.P1, curve.P2, curve.P3};
    Pt const dropped = trammel_detail::DropCommon(points);
    ScaledPoints<4> const p(points);
    use(curve.P0);
    double kept = std::numeric_limits<double>::quiet_NaN();
    if (p.Finite()) {
        EachPoint<Use> deliver(p, curve.P0, dropped, use);
        kept = p.Up(Flatten(Cubic(p), p.Down(tolerance), deliver));
    }
    use(curve.P3);
    return kept;
}

/// Appends points to a polygon, many at a time. Adds P0 to points that are relative to it.
class Appending {
public:
    Appending(Pt const& origin, TPolygon<double>& poly) : mOrigin(origin), mAppend{poly} {}
    void Place(Pt const& p) { mBuffer.Add(p); }
    void Point(Pt const& relative) { mBuffer.Add(mOrigin + relative); }
    void Run(double const* h, double const* v, int count) {
        static_assert(FlatRun::kRoom <= trammel_detail::kBlockPoints);
        double* const room = mBuffer.RoomForBlock();
        for (long i = 0; i < count; ++i) {
            room[2 * i] = mOrigin.v + v[i];
            room[2 * i + 1] = mOrigin.h + h[i];
        }
        mBuffer.AddStored(count);
    }
    void Finish() { mBuffer.Pass(); }

private:
    struct Append {
        TPolygon<double>& poly;
        void operator()(Pt const* points, int count) const {
            trammel_detail::AppendUniquePoints(points, count, poly);
        }
    };
    Pt mOrigin;
    Append mAppend;
    trammel_detail::PointBuffer<256, Append> mBuffer{mAppend};
};

} // namespace

double FlattenWithin(CBezier const& curve, double tolerance, TPolygon<double>& poly) {
    std::array<Pt, 4> flattened = {curve.P0, curve.P1, curve.P2, curve.P3};
    trammel_detail::DropCommon(flattened);
    ScaledPoints<4> const p(flattened);
    if (!p.Finite() || p.Scaled()) {
        return FlattenAll(curve, tolerance,
                          [&poly](Pt const& point) { poly.Append(point, false); });
    }
    Appending points(curve.P0, poly);
    points.Place(curve.P0);
    double const kept = Flatten(Cubic(p), tolerance, points);
    points.Place(curve.P3);
    points.Finish();
    return kept;
}

double FlattenWithin(CBSpline const& curve, double tolerance, TPolygon<double>& poly) {
    return FlattenWithin(trammel_detail::Raised(curve), tolerance, poly);
}

double FlattenWithin(CBezier const& curve, double tolerance, CBezier::PointDataProc proc,
                     void* data) {
    return FlattenAll(curve, tolerance, [proc, data](Pt const& p) { proc(p, data); });
}

double FlattenWithin(CPath const& path, double tolerance, CPath& out) {
    CPath result;
    double kept = 0.0;
    bool open = false;
    for (trammel_detail::SegmentCursor segment(path); segment.NextOrMove();) {
        if (segment.Code() == kPathClose) {
            result.ClosePath();
            open = false;
            continue;
        }
        if (segment.Code() == kPathMove) {
            result.MoveTo(segment.Start());
        } else if (!open) {
            result.MoveTo(segment.IsCurve() ? segment.Curve().P0 : segment.Line().mStart);
        }
        open = true;
        if (segment.Code() == kPathLine) {
            result.LineTo(segment.Line().mEnd);
        } else if (segment.IsCurve()) {
            double const distance = FlattenAll(segment.Curve(), tolerance,
                                               [&result](Pt const& p) { result.LineTo(p); });
            // A NaN stays: it says that the path has a curve that no lines are near.
            kept = std::isnan(kept) || distance <= kept ? kept : distance;
        }
    }
    if (out.mCtls.empty() && out.mPts.empty()) {
        out = std::move(result);
        return kept;
    }
    CPath joined(out);
    joined.mCtls.insert(joined.mCtls.end(), result.mCtls.begin(), result.mCtls.end());
    joined.mPts.insert(joined.mPts.end(), result.mPts.begin(), result.mPts.end());
    joined.mCurrentPt = result.mCurrentPt;
    joined.mOpen = result.mOpen;
    joined.InvalBounds();
    out = std::move(joined);
    return kept;
}

} // namespace trammel
