// SPDX-License-Identifier: MIT

// Flattening takes two steps: the bend of the curve plans the points, and then each chord is
// verified.
//
// The plan. A short piece of length s with curvature k leaves its chord by k·s²/8. So chords that
// all use up the tolerance e end at equal steps of the integral of
//
//     sqrt(k/(8e)) ds = sqrt(|B' x B''| / (8e |B'|)) dt
//
// [Levien]. This density is sampled in the middles of equal panels of the parameter: four for few
// chords, sixteen for up to 32, and at the ends of 64 panels for more. The points' parameters
// follow from the integral panel by panel. With four and sixteen panels the inverse of the density
// is linear in the integral on each, and the parameter a quadratic function. For a cubic with B' =
// 3(a + 2bt + ct²), B' x B'' is 18 (a x b + (a x c) t + (b x c) t²).
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
// Four points are computed and verified at a time. Up to 32 chords first get a shorter test
// (KeepChords). A chord that fails it gets the test above. Chords that still fail
// are divided in their middles, all in one vector, and so are halves that fail. Where many
// fail, or that would take too many chords, each that fails is tested and divided piece by piece. A
// rough plan only decides about the number of points.
//
// Quadratic curves, raised to cubic ones. Equal steps of the parameter keep the tolerance where the
// second differences of the control points are short enough, without a test of each chord. They
// are taken where a bound says that no plan has fewer chords.
//
// Paths. Of four curves that follow each other, a vector has one in each lane, and they are divided
// together where they take few chords. Each lane computes what the single curve does, so the points
// are the same.

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
#include "TLine.h"
#include "TPoint.h"
#include "TPoly.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::ChordDeviation;
using trammel_detail::Dot;
using trammel_detail::FlatChords;
using trammel_detail::FlatCubic;
using trammel_detail::FlatPack;
using trammel_detail::FlatPlan;
using trammel_detail::FlatRun;
using trammel_detail::kChordRoom;
using trammel_detail::kFinest;
using trammel_detail::kPack;
using trammel_detail::kPlanned;
using trammel_detail::Pt;
using trammel_detail::ScaledPoints;
using trammel_detail::Square;
using trammel_detail::Taxicab;

/// The most chords of a curve.
constexpr int kMostChords = static_cast<int>(kMostFlatPoints) - 1;
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

double ReachOf(Place const& p0, Place const& p1, double square) {
    return trammel_detail::ReachOf(p1.t - p0.t, square, std::max(Square(p0.v), Square(p1.v)));
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

/// Delivers runs, and divides the chords that fail.
template <class To> class Pieces {
public:
    Pieces(Cubic const& curve, double tolerance, To& deliver)
        : mCurve(curve), mTolerance(tolerance), mKept(tolerance), mDeliver(deliver) {}
    /// Sets how many points may be added.
    void SetSpare(int spare) { mSpare = spare; }
    /// Returns the distance that is kept by all that was delivered.
    double Kept() const { return mKept; }

    void Deliver(FlatRun const& run) {
        for (int i = 1; i <= run.count; ++i) {
            std::uint64_t const failing = run.failing >> static_cast<unsigned>(i - 1);
            int const first = failing != 0 ? i + __builtin_ctzll(failing) : run.count + 1;
            int const last = first - 1;
            if (last >= i) {
                mDeliver.Run(run.h + i, run.v + i, last - i + (run.t[last] < 1.0 ? 1 : 0));
                i = last;
            } else {
                Divide(Get(run, i - 1), run.t[i]);
            }
        }
    }
    /// Delivers all chords but the last point. `points` has v and h of their ends, which are not
    /// relative to P0.
    void Deliver(FlatChords const& chords, int count, double const* points) {
        for (int i = 0; i < count; ++i) {
            if ((chords.failing >> static_cast<unsigned>(i) & 1U) != 0) {
                Divide(mCurve.At(i == 0 ? 0.0 : chords.t[i]), chords.t[i + 1]);
            } else if (i + 1 < count) {
                std::ptrdiff_t const at = std::ptrdiff_t{2} * i;
                mDeliver.Place(Pt(points[at + 1], points[at]));
            }
        }
    }

private:
    void Divide(Place from, double t) {
        std::array<double, kMostPending> pending;
        std::size_t waiting = 0;
        while (t > from.t) {
            Place const to = mCurve.At(t);
            if (!Keeps(from, to, mTolerance)) {
                double const split = mCurve.Split(from, to, mTolerance);
                if (mSpare > 0 && waiting < kMostPending && split > from.t && split < t) {
                    --mSpare;
                    pending[waiting++] = t;
                    t = split;
                    continue;
                }
                mKept = std::max(mKept, DistanceOf(from, to));
            }
            from = to;
            if (t < 1.0) {
                mDeliver.Point(to.at);
            }
            t = waiting > 0 ? pending[--waiting] : 0.0;
        }
    }

    Cubic const& mCurve;
    double mTolerance;
    double mKept;
    int mSpare = 0;
    To& mDeliver;
};

/// Delivers the points between P0 and P3 in order, relative to P0. It calls deliver.Point(point)
/// for one point and deliver.Run(h, v, count) for several. Returns the distance that is kept:
/// `asked`, or more where rounding or kMostFlatPoints does not allow it.
template <class Deliver> double Flatten(Cubic const& curve, double asked, Deliver& deliver) {
    double const finest = kFinest * curve.Size();
    double const tolerance = asked > finest ? asked : finest;
    if (curve.Size() == 0.0 || Keeps(curve.Start(), curve.At(1.0), tolerance)) {
        return tolerance;
    }
    FlatCubic const flat = curve.Flat();
    FlatRun run;
    Pieces<Deliver> pieces(curve, tolerance, deliver);
    Plan plan(flat, tolerance);
    pieces.SetSpare(kMostChords - plan.Divide(kMostChords));
    Set(run, 0, curve.Start());
    while (plan.Next(run)) {
        pieces.Deliver(run);
        Set(run, 0, Get(run, run.count));
    }
    return pieces.Kept();
}

/// Moves points back to where the curve is, in the input's unit, and hands each to `to`.
template <class To> class EachPoint {
public:
    /// `dropped` is the result of DropCommon() for the points.
    EachPoint(ScaledPoints<4> const& points, Pt const& start, Pt const& dropped, To& to)
        : mPoints(points), mStart(start), mDropped(dropped), mTo(to) {}
    void Point(Pt const& relative) { Place(mPoints[0] + relative); }
    void Place(Pt const& point) {
        Pt const p = mPoints.Up(point);
        mTo.Place(Pt(mDropped.h != 0.0 ? mStart.h : p.h, mDropped.v != 0.0 ? mStart.v : p.v));
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
    To& mTo;
};

static_assert(sizeof(CBezier) == 8 * sizeof(double) && offsetof(CBezier, P0) == 0 &&
                  offsetof(CBezier, P3) == 6 * sizeof(double),
              "the kernels read the four points, v and h in turn");

/// Delivers the points between the ends of a curve that takes no short way. `divided` is the result
/// of DivideIntoChords, which is no success for all chords, and `ends` has the chords' ends.
template <class To>
[[gnu::noinline]] double FlattenLong(CBezier const& curve, double tolerance, int divided,
                                     FlatChords& chords, double const* ends, To& to) {
    std::array<Pt, 4> points = {curve.P0, curve.P1, curve.P2, curve.P3};
    Pt const dropped = trammel_detail::DropCommon(points);
    ScaledPoints<4> const p(points);
    if (!p.Finite()) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    EachPoint<To> deliver(p, curve.P0, dropped, to);
    double scaledEnds[2 * kChordRoom];
    double const scaled = p.Down(tolerance);
    int count = divided;
    if (count < 0) {
        count = DivideIntoChords(&p[0].v, scaled, scaledEnds, chords);
        ends = scaledEnds;
    }
    Cubic const cubic(p);
    if (count > 0 && (divided < 0 || !p.Scaled())) {
        // The points are the caller's, or those of its scaled copy.
        auto const pass = [&](auto& deliverer) {
            Pieces<std::remove_reference_t<decltype(deliverer)>> pieces(cubic, scaled, deliverer);
            pieces.SetSpare(kMostChords - count);
            pieces.Deliver(chords, count, ends);
            return p.Up(pieces.Kept());
        };
        if (divided < 0) {
            return pass(deliver);
        }
        to.SetOrigin(curve.P0);
        return pass(to);
    }
    if (p.Scaled()) {
        return p.Up(Flatten(cubic, scaled, deliver));
    }
    to.SetOrigin(curve.P0);
    return Flatten(cubic, tolerance, to);
}

/// Hands on the ends of all chords but the last. `ends` has them, v and h in turn.
template <class To> void PlaceEnds(double const* ends, int count, To& to) {
    for (std::ptrdiff_t i = 0; i < count - 1; ++i) {
        to.Place(Pt(ends[2 * i + 1], ends[2 * i]));
    }
}

/// Flattens, and delivers the points between the ends. `to` takes points by Place, and points
/// relative to the origin that SetOrigin tells it by Point and Run. Where it has room for
/// kChordRoom points, v and h in turn, Room() is that place, and Added(count) takes them. Returns
/// the distance.
template <class To> double FlattenBetween(CBezier const& curve, double tolerance, To& to) {
    double own[2 * kChordRoom];
    double* const room = to.Room();
    double* const ends = room != nullptr ? room : own;
    FlatChords chords;
    int const count = DivideIntoChords(&curve.P0.v, tolerance, ends, chords);
    if (count > 0 && chords.failing == 0) {
        if (room != nullptr) {
            to.Added(count - 1);
        } else {
            PlaceEnds(own, count, to);
        }
        return tolerance;
    }
    if (count > 0 && room != nullptr) {
        // Points that are put in between would overwrite the ones to come.
        std::copy(room, room + std::ptrdiff_t{2} * count, own);
    }
    return FlattenLong(curve, tolerance, count, chords, own, to);
}

/// Flattens, and delivers all points.
template <class To> double FlattenAll(CBezier const& curve, double tolerance, To& to) {
    to.Place(curve.P0);
    double const kept = FlattenBetween(curve, tolerance, to);
    to.Place(curve.P3);
    return kept;
}

/// Stores points, v and h in turn, each as the sum of the origin and the point.
void StoreRun(Pt const& origin, double const* h, double const* v, long count, double* to) {
    for (long i = 0; i < count; ++i) {
        to[2 * i] = origin.v + v[i];
        to[2 * i + 1] = origin.h + h[i];
    }
}

/// Collects points, and calls use(points, count) for many at a time.
template <class Use> class Collecting {
public:
    explicit Collecting(Use const& use) : mUse(use) {}
    double* Room(int = kChordRoom) { return mBuffer.RoomForBlock(); }
    void Added(int count) { mBuffer.AddStored(count); }
    void SetOrigin(Pt const& origin) { mOrigin = origin; }
    void Place(Pt const& p) { mBuffer.Add(p); }
    void Point(Pt const& relative) { mBuffer.Add(mOrigin + relative); }
    void Run(double const* h, double const* v, int count) {
        static_assert(FlatRun::kRoom <= trammel_detail::kBlockPoints);
        StoreRun(mOrigin, h, v, count, mBuffer.RoomForBlock());
        mBuffer.AddStored(count);
    }
    void Finish() { mBuffer.Pass(); }

private:
    Pt mOrigin;
    Use mUse;
    trammel_detail::PointBuffer<256, Use> mBuffer{mUse};
};

/// Hands each point to a function.
template <class Use> class Handing {
public:
    explicit Handing(Use const& use) : mUse(use) {}
    double* Room() { return nullptr; }
    void Added(int) {}
    void SetOrigin(Pt const& origin) { mOrigin = origin; }
    void Place(Pt const& p) { mUse(p); }
    void Point(Pt const& relative) { mUse(mOrigin + relative); }
    void Run(double const* h, double const* v, int count) {
        for (int i = 0; i < count; ++i) {
            mUse(mOrigin + Pt(h[i], v[i]));
        }
    }

private:
    Pt mOrigin;
    Use mUse;
};

/// Stores points in a buffer as far as there is room, and counts all of them.
class Storing {
public:
    Storing(Pt* points, std::size_t capacity) : mPoints(points), mCapacity(capacity) {}
    std::size_t Count() const { return mCount; }
    void SetOrigin(Pt const& origin) { mOrigin = origin; }
    void Place(Pt const& p) {
        if (mCount < mCapacity) {
            mPoints[mCount] = p;
        }
        ++mCount;
    }
    void Point(Pt const& relative) { Place(mOrigin + relative); }
    void Run(double const* h, double const* v, int count) {
        std::size_t const room = mCapacity - std::min(mCount, mCapacity);
        auto const all = static_cast<std::size_t>(count);
        auto const stored = static_cast<long>(std::min(all, room));
        if (stored > 0) {
            StoreRun(mOrigin, h, v, stored, &mPoints[mCount].v);
        }
        mCount += all;
    }

private:
    Pt* mPoints;
    std::size_t mCapacity;
    std::size_t mCount = 0;
    Pt mOrigin;
};

/// Stores a path's points in FlatContours. Until this is destroyed, more points may lie there than
/// it has stored. They are points of the path before, and origins.
class StoringContours {
public:
    explicit StoringContours(FlatContours& out)
        : mOut(out), mPoints(out.points.data()), mRoom(out.points.size()) {}
    StoringContours(StoringContours const&) = delete;
    StoringContours& operator=(StoringContours const&) = delete;
    ~StoringContours() { mOut.points.resize(mCount); }

    double* Room(int count = kChordRoom) {
        Reserve(static_cast<std::size_t>(count));
        return &mPoints[mCount].v;
    }
    void Added(int count) { mCount += static_cast<std::size_t>(count); }
    void SetOrigin(Pt const& origin) { mOrigin = origin; }
    void Place(Pt const& p) {
        Reserve(1);
        mOut.points[mCount++] = p;
    }
    void Point(Pt const& relative) { Place(mOrigin + relative); }
    void Run(double const* h, double const* v, int count) {
        Reserve(static_cast<std::size_t>(count));
        StoreRun(mOrigin, h, v, count, &mPoints[mCount].v);
        Added(count);
    }
    void Begin(Pt const& p) { Place(p); }
    void End(bool closed) {
        mOut.contours.push_back({mBegin, mCount, closed});
        mBegin = mCount;
    }

private:
    void Reserve(std::size_t count) {
        if (mRoom - mCount < count) {
            Grow();
        }
    }
    /// Makes room for FlatRun::kRoom points more.
    [[gnu::noinline]] void Grow() {
        mRoom += FlatRun::kRoom;
        mOut.points.resize(mRoom);
        mPoints = mOut.points.data();
    }

    FlatContours& mOut;
    Pt* mPoints;
    std::size_t mRoom;      ///< the number of points in `mOut`
    std::size_t mCount = 0; ///< the number of points that are stored
    std::size_t mBegin = 0; ///< the contour's first point
    Pt mOrigin;
};

/// The numbers of points that the codes of a path take.
struct PointsTaken {
    std::uint8_t points[256];
};
constexpr PointsTaken PointsTakenByCodes() {
    PointsTaken taken{};
    taken.points[kPathMove] = 1;
    taken.points[kPathLine] = 1;
    taken.points[kPathCurve] = 3;
    return taken;
}
constexpr PointsTaken kTaken = PointsTakenByCodes();

/// Some elements of a path, whose curves are divided together.
class PathBlock {
    static constexpr int kCodes = 64; ///< the most elements

public:
    PathBlock(CPath const& path, double tolerance)
        : mTolerance(tolerance), mCode(path.mCtls.data()), mCodes(mCode + path.mCtls.size()),
          mPoint(path.mPts.data()), mPoints(mPoint + path.mPts.size()) {}

    /// Steps over the next elements, and divides their curves. Returns false when there are none,
    /// or where the points do not suffice.
    bool Next() {
        mBegin = mCode;
        mAt = mPoint;
        char const* code = mCode;
        char const* const end = code + std::min(mCodes - code, std::ptrdiff_t{kCodes});
        std::size_t left = static_cast<std::size_t>(mPoints - mPoint);
        std::size_t at[kCodes + 1]; // the points that are left where the curves begin
        int count = 0;
        for (; code != end; ++code) {
            std::size_t const taken = kTaken.points[static_cast<unsigned char>(*code)];
            if (left < taken) {
                mCodes = code;
                break;
            }
            at[count] = left; // no branch: the next one may overwrite it
            count += *code == kPathCurve ? 1 : 0;
            left -= taken;
        }
        mCode = code;
        mPoint = mPoints - left;
        for (int i = 0; i < count; i += kPack) {
            double const* curves[kPack];
            for (int k = 0; k < kPack; ++k) { // the last one again where there are fewer
                curves[k] = StartOf(mPoints - at[std::min(i + k, count - 1)]);
            }
            DividePack(curves, mTolerance, mPacks[i / kPack]);
        }
        return mCode != mBegin;
    }
    /// Hands the elements to `sink`, as FlattenPath says. `open` tells whether a contour is begun.
    /// Returns the greater one of `kept` and the curves' distances.
    template <class Sink> double Deliver(Sink& sink, double kept, bool& open) const {
        Pt const* at = mAt;
        int curve = 0;
        bool begun = open;
        bool divided = false;
        for (char const* code = mBegin; code != mCode; ++code) {
            switch (*code) {
            case kPathLine:
                Begin(sink, begun, at);
                sink.Place(at[0]);
                at += 1;
                break;
            case kPathCurve: {
                Begin(sink, begun, at);
                if (Divided(sink, curve++)) {
                    divided = true;
                } else {
                    CBezier const whole(Start(at), at[0], at[1], at[2]);
                    kept = Greater(kept, FlattenBetween(whole, mTolerance, sink));
                }
                sink.Place(at[2]);
                at += 3;
                break;
            }
            case kPathMove:
            case kPathClose:
                if (begun) {
                    sink.End(*code == kPathClose);
                }
                begun = false;
                at += *code == kPathMove ? 1 : 0;
                break;
            default:
                break;
            }
        }
        open = begun;
        return divided ? Greater(kept, mTolerance) : kept;
    }

private:
    /// Returns where an element starts whose own points begin at `points`: at the last point of the
    /// elements before, which lies before them.
    Pt Start(Pt const* points) const { return points != mFirstPoint ? points[-1] : Pt(); }
    /// Returns v and h of the points of the curve whose own points begin at `points`.
    double const* StartOf(Pt const* points) {
        if (points != mFirstPoint) {
            return &points[-1].v;
        }
        std::copy(points, points + 3, mFirst.begin() + 1);
        return &mFirst[0].v;
    }
    template <class Sink> void Begin(Sink& sink, bool& open, Pt const* points) const {
        if (!open) {
            sink.Begin(Start(points));
            open = true;
        }
    }
    /// Returns the greater distance. A NaN stays in `kept`: it says that the path has a curve that
    /// no lines are near.
    static double Greater(double kept, double distance) {
        return kept != kept || distance <= kept ? kept : distance;
    }
    /// Hands on the points between the ends of a curve, by its number. False where it has none.
    template <class Sink> bool Divided(Sink& sink, int curve) const {
        FlatPack const& pack = mPacks[curve / kPack];
        int const lane = curve % kPack;
        auto const chords = static_cast<int>(pack.chords[lane]);
        if (chords == 0) {
            return false;
        }
        double* const room = sink.Room(trammel_detail::kFewChords);
        double const* const ends = pack.points[lane];
        constexpr int half = trammel_detail::kFewChords / 2;
        constexpr std::size_t size = half * sizeof(Pt);
        std::memcpy(room, ends, size); // no branch for fewer points
        if (chords > half + 1) {
            std::memcpy(room + std::ptrdiff_t{2} * half, ends + std::ptrdiff_t{2} * half, size);
        }
        sink.Added(chords - 1);
        return true;
    }

    double mTolerance;
    char const* mCode;          ///< the element behind the block
    char const* mCodes;         ///< the end of all elements
    Pt const* mPoint;           ///< the point behind the block
    Pt const* mPoints;          ///< the end of all points
    char const* mBegin = mCode; ///< the first element of the block
    Pt const* mAt = mPoint;     ///< its first point
    Pt const* mFirstPoint = mPoint;
    std::array<Pt, 4> mFirst; ///< a curve at the path's beginning, which starts at the origin
    FlatPack mPacks[kCodes / kPack];
};

/// Flattens a path. `sink` takes points as FlattenBetween hands them on, and always has room. It
/// also takes Begin(point) and End(closed) around the points of a contour. Returns the greatest
/// distance.
template <class Sink> double FlattenPath(CPath const& path, double tolerance, Sink& sink) {
    double kept = 0.0;
    bool open = false;
    for (PathBlock block(path, tolerance); block.Next();) {
        kept = block.Deliver(sink, kept, open);
    }
    if (open) {
        sink.End(false);
    }
    return kept;
}

} // namespace

double FlattenWithin(CBezier const& curve, double tolerance, TPolygon<double>& poly) {
    auto const append = [&poly](Pt const* points, int count) {
        trammel_detail::AppendUniquePoints(points, count, poly);
    };
    Collecting points(append);
    double const kept = FlattenAll(curve, tolerance, points);
    points.Finish();
    return kept;
}

double FlattenWithin(CBSpline const& curve, double tolerance, TPolygon<double>& poly) {
    return FlattenWithin(trammel_detail::Raised(curve), tolerance, poly);
}

double FlattenWithin(CBezier const& curve, double tolerance, CBezier::PointDataProc proc,
                     void* data) {
    auto const call = [proc, data](Pt const& p) { proc(p, data); };
    Handing each(call);
    return FlattenAll(curve, tolerance, each);
}

double FlattenWithin(CPath const& path, double tolerance, CPath& out) {
    CPath result;
    auto const lineTo = [&result](Pt const& p) { result.LineTo(p); };
    Handing lines(lineTo);
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
            double const distance = FlattenAll(segment.Curve(), tolerance, lines);
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

Flattened FlattenInto(CBezier const& curve, double tolerance, TPoint<double>* points,
                      std::size_t capacity) {
    FlatChords chords;
    double own[2 * kChordRoom];
    // The last chord's end lies in the caller's room, too, and P3 takes its place.
    bool const roomy = capacity > std::size_t{kChordRoom};
    double* const ends = roomy ? &points[1].v : own;
    int const count = DivideIntoChords(&curve.P0.v, tolerance, ends, chords);
    bool const divided = count > 0 && chords.failing == 0;
    if (divided && roomy) {
        points[0] = curve.P0;
        points[count] = curve.P3;
        return {static_cast<std::size_t>(count) + 1, tolerance};
    }
    Storing stored(points, capacity);
    stored.Place(curve.P0);
    double kept = tolerance;
    if (divided) {
        PlaceEnds(own, count, stored);
    } else {
        if (count > 0 && roomy) {
            // Points that are put in between would overwrite the ones to come.
            std::copy(ends, ends + std::ptrdiff_t{2} * count, own);
        }
        kept = FlattenLong(curve, tolerance, count, chords, own, stored);
    }
    stored.Place(curve.P3);
    return {stored.Count(), kept};
}

double FlattenInto(CPath const& path, double tolerance, FlatContours& out) {
    out.contours.clear();
    StoringContours contours(out);
    return FlattenPath(path, tolerance, contours);
}

} // namespace trammel

namespace trammel_detail {

double FlattenByRuns(CBezier const& curve, double tolerance, FlatPointsProc proc, void* data) {
    auto const pass = [proc, data](Pt const* points, int count) {
        proc(points, static_cast<std::size_t>(count), data);
    };
    trammel::Collecting points(pass);
    double const kept = trammel::FlattenAll(curve, tolerance, points);
    points.Finish();
    return kept;
}

double FlattenByRuns(CPath const& path, double tolerance, FlatStepProc proc, void* data) {
    auto const pass = [proc, data](Pt const* points, int count) {
        proc(FlatStep::kPoints, points, static_cast<std::size_t>(count), data);
    };
    class Steps : public trammel::Collecting<decltype(pass)> {
    public:
        Steps(decltype(pass) const& use, FlatStepProc proc, void* data)
            : Collecting(use), mProc(proc), mData(data) {}
        void Begin(Pt const& p) { mProc(FlatStep::kBegin, &p, 1, mData); }
        void End(bool closed) {
            Finish();
            mProc(closed ? FlatStep::kClosedEnd : FlatStep::kOpenEnd, nullptr, 0, mData);
        }

    private:
        FlatStepProc mProc;
        void* mData;
    };
    Steps steps(pass, proc, data);
    return trammel::FlattenPath(path, tolerance, steps);
}

} // namespace trammel_detail
