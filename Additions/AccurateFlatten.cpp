// SPDX-License-Identifier: MIT
//
// Flattening in two steps: points are planned by the bend, then each chord is verified.
//
// The plan: a short piece of length s with curvature k leaves its chord by k·s²/8, so chords that
// use up the tolerance e follow each other at equal steps of the integral of
//
//     sqrt(k/(8e)) ds = sqrt(|B' x B''| / (8e |B'|)) dt
//
// [Levien]. It is taken by the trapezoidal rule over a few panels, and inverted panel by panel. For
// a cubic with B' = 3(a + 2bt + ct²), B' x B'' is 18 (a x b + (a x c) t + (b x c) t²).
//
// The verification: on a piece, the distance from the line through its ends is
// 3t(1 - t)((1 - t)e1 + t·e2), where e1 and e2 are those of the control points. Its maximum is a
// convex function of e2/e1 with the values 3/4, 4/9 and 1/sqrt(12) at 1, 0 and -1, so it is at most
// what interpolates between these. Along the chord the curve overshoots its ends by at most 3/4 of
// what the control points do. And as it runs from end to end, it is beside each point of the chord
// somewhere: one bound holds for both directions of the distance. A chord that fails is divided.

#include "AccurateCurve.h"
#include "AccurateCurve_p.h"

#include "TPoly.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace trammel {

namespace {

using trammel_detail::Cross;
using trammel_detail::Dot;
using trammel_detail::Pt;
using trammel_detail::ScaledPoints;
using trammel_detail::Square;
using trammel_detail::Taxicab;

/// The finest tolerance, as a part of the control vectors' magnitudes. Rounding moves computed
/// distances from chords by 2^-49 of these.
constexpr double kFinest = 0x1p-40;
/// The part of the tolerance for which points are planned, so that few chords have to be divided.
constexpr double kPlanned = 0.97;
/// Panels in which the bend is looked at: few for few points.
constexpr std::size_t kFewPanels = 16;
constexpr std::size_t kManyPanels = 64;
/// With more points than this there are many panels.
constexpr double kFewPoints = 80.0;
/// The part of a piece that a division at a turn leaves at least on either side.
constexpr double kLeastPart = 0.05;
/// Divisions of a chord at most: its parameters are neighbours then.
constexpr std::size_t kMostPending = 56;

/// A point of the curve relative to P0, with a third of the derivative.
struct Place {
    double t;
    Pt at;
    Pt v;
};

/// A cubic as a polynomial relative to P0.
class Cubic {
public:
    explicit Cubic(ScaledPoints<4> const& p)
        : mA(p[1] - p[0]), mB((p[2] - p[1]) - mA), mEnd(p[3] - p[0]), mEndV(p[3] - p[2]),
          mSize(Taxicab(mA) + Taxicab(p[2] - p[1]) + Taxicab(mEndV)) {
        mC = (mEndV - (p[2] - p[1])) - mB;
    }
    double Size() const { return mSize; }
    Place Start() const { return {0.0, Pt(), mA}; }
    /// The coordinates of the point and of a third of the derivative.
    void Coordinates(double t, double& h, double& v, double& dh, double& dv) const {
        h = (3.0 * mA.h + (3.0 * mB.h + mC.h * t) * t) * t;
        v = (3.0 * mA.v + (3.0 * mB.v + mC.v * t) * t) * t;
        dh = mA.h + (2.0 * mB.h + mC.h * t) * t;
        dv = mA.v + (2.0 * mB.v + mC.v * t) * t;
    }
    /// At 1, the end exactly.
    Place At(double t) const {
        Place place = {t, mEnd, mEndV};
        if (t != 1.0) {
            Coordinates(t, place.at.h, place.at.v, place.v.h, place.v.v);
        }
        return place;
    }
    /// A third of the speed at `t`.
    double Speed(double t) const { return std::sqrt(Square(mA + (mB * 2.0 + mC * t) * t)); }
    /// |B' x B''|/18 at `t`.
    double Bend(double t) const {
        return std::abs(Cross(mA, mB) + (Cross(mA, mC) + Cross(mB, mC) * t) * t);
    }
    /// Where to divide the piece between two places: where it turns back along its chord, so that
    /// straight curves need no more points than turns; in the middle if it does not, or only near
    /// an end, where a point would gain little.
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

/// Upper bounds on how far a piece and its chord are apart, times the chord's length.
struct Deviation {
    double across; ///< from the line through the ends
    double along;  ///< beyond the ends
};

/// Of a piece over a parameter range `h`, with the chord (dh, dv) of squared length `square`, and
/// thirds of the derivatives at its ends. In plain numbers, so that compilers see a loop over
/// arrays.
Deviation DeviationOf(double h, double dh, double dv, double square, double v0h, double v0v,
                      double v1h, double v1v) {
    double const e1 = h * (dh * v0v - dv * v0h);
    double const e2 = -h * (dh * v1v - dv * v1h);
    // By magnitudes instead of comparisons, which keeps the loop over many chords free of branches:
    // the greater of |e1| and |e2|, and the lesser one, negative when on the other side of the
    // chord, which counts 11/36 when positive, and 4/9 - 1/sqrt(12), rounded down, when negative.
    double const sum = std::abs(e1 + e2);
    double const difference = std::abs(e1 - e2);
    double const greater = 0.5 * (sum + difference);
    double const lesser = 0.5 * (sum - difference);
    constexpr double kSame = 11.0 / 36.0;
    constexpr double kOpposite = 0.1557;
    double const across = 4.0 / 9.0 * greater + 0.5 * (kSame + kOpposite) * lesser +
                          0.5 * (kSame - kOpposite) * std::abs(lesser);
    // Control points at a1 and square - a2, the ends at 0 and square; distances from the middle.
    double const middle = 0.5 * square;
    double const a1 = std::abs(h * (dh * v0h + dv * v0v) - middle);
    double const a2 = std::abs(h * (dh * v1h + dv * v1v) - middle);
    double const beyond = 0.5 * (a1 + a2 + std::abs(a1 - a2)) - middle;
    return {across, 0.375 * (beyond + std::abs(beyond))};
}

Deviation DeviationOf(Place const& p0, Place const& p1, Pt const& d, double square) {
    return DeviationOf(p1.t - p0.t, d.h, d.v, square, p0.v.h, p0.v.v, p1.v.h, p1.v.v);
}

/// True when the piece keeps the distance from its chord.
bool Keeps(Place const& p0, Place const& p1, double tolerance) {
    Pt const d = p1.at - p0.at;
    double const square = Square(d);
    double const limit = tolerance * tolerance;
    if (square <= limit) {
        // Hardly a chord: the whole hull is within the tolerance of the piece's start.
        double const h = p1.t - p0.t;
        double const reach = std::sqrt(std::max(Square(p0.v), Square(p1.v))) * h;
        return std::sqrt(square) + reach <= tolerance;
    }
    Deviation const off = DeviationOf(p0, p1, d, square);
    return off.across * off.across + off.along * off.along <= limit * square;
}

/// A bound on the piece's distance from its chord.
double DistanceOf(Place const& p0, Place const& p1) {
    Pt const d = p1.at - p0.at;
    double const square = Square(d);
    double const h = p1.t - p0.t;
    double const reach = std::sqrt(square) + h * std::sqrt(std::max(Square(p0.v), Square(p1.v)));
    if (square == 0.0) {
        return reach;
    }
    Deviation const off = DeviationOf(p0, p1, d, square);
    return std::min(reach, std::sqrt((off.across * off.across + off.along * off.along) / square));
}

/// Where on the curve the points are to lie.
class Plan {
public:
    Plan(Cubic const& curve, double tolerance) {
        // A power of two in the input cancels in front of the root, so that it changes nothing.
        double const scale = 0.75 / (kPlanned * tolerance);
        Integrate(curve, scale, kFewPanels);
        if (mSums[mPanels] > kFewPoints) {
            Integrate(curve, scale, kManyPanels);
        }
    }
    /// The number of chords, as a double since it may be beyond any integer.
    double Chords() const { return std::max(1.0, std::ceil(mSums[mPanels])); }
    /// Divides the curve into `chords`.
    void Divide(std::size_t chords) {
        mChords = chords;
        mStep = mSums[mPanels] / static_cast<double>(chords);
    }
    /// Stores the parameters at the ends of the next chords, up to `room`; returns how many.
    std::size_t Next(double* t, std::size_t room) {
        std::size_t filled = 0;
        double const panels = static_cast<double>(mPanels);
        while (filled < room && mDone < mChords) {
            double const sum = mSums[mPanel];
            double const next = mSums[mPanel + 1];
            // Chords that end in this panel; in the last one, all that remain.
            std::size_t here = mChords - mDone;
            if (mPanel + 1 < mPanels) {
                double const ends = std::floor(next / mStep);
                here = ends > static_cast<double>(mDone)
                           ? std::min(here,
                                      static_cast<std::size_t>(ends - static_cast<double>(mDone)))
                           : 0;
            }
            if (here == 0) {
                ++mPanel;
                continue;
            }
            here = std::min(here, room - filled);
            // The density is linear: with its values r0 and r1, the integral up to x is
            // r0·x + (r1 - r0)·x²/2 panels, solved for x in the form that does not cancel.
            double const r0 = mDensity[mPanel];
            double const rise = 2.0 * (mDensity[mPanel + 1] - r0);
            double const left = static_cast<double>(mPanel);
            double const first = static_cast<double>(mDone + 1);
            for (std::size_t k = 0; k < here; ++k) {
                double const target = (first + static_cast<double>(static_cast<int>(k))) * mStep;
                double const y = std::max((target - sum) * panels, 0.0);
                double const x = 2.0 * y / (r0 + std::sqrt(std::max(r0 * r0 + rise * y, 0.0)));
                t[filled + k] = (left + (x < 1.0 ? x : 1.0)) / panels; // 1 for a NaN
            }
            filled += here;
            mDone += here;
        }
        if (mDone == mChords && filled > 0) {
            t[filled - 1] = 1.0;
        }
        return filled;
    }

private:
    void Integrate(Cubic const& curve, double scale, std::size_t panels) {
        mPanels = panels;
        double const width = 1.0 / static_cast<double>(panels);
        std::array<double, kManyPanels + 3> speed; // with one more on either side
        for (std::size_t i = 0; i <= panels; ++i) {
            double const t = static_cast<double>(static_cast<int>(i)) * width;
            speed[i + 1] = curve.Speed(t);
            mDensity[i] = curve.Bend(t) * scale;
        }
        speed[0] = 0.0;
        speed[panels + 2] = 0.0;
        double const still = std::numeric_limits<double>::min();
        for (std::size_t i = 0; i <= panels; ++i) {
            // Where the curve stands still the bend is infinite, for a moment; what is near counts.
            double const near = 0.25 * (speed[i] + speed[i + 2]);
            mDensity[i] = std::sqrt(mDensity[i] / std::max(std::max(speed[i + 1], near), still));
        }
        mSums[0] = 0.0;
        for (std::size_t i = 0; i < panels; ++i) {
            mSums[i + 1] = mSums[i] + 0.5 * width * (mDensity[i] + mDensity[i + 1]);
        }
    }

    std::size_t mPanels = 0;
    std::size_t mPanel = 0;
    std::size_t mChords = 0;
    std::size_t mDone = 0;
    double mStep = 0.0;
    std::array<double, kManyPanels + 1> mDensity;
    std::array<double, kManyPanels + 1> mSums;
};

/// A run of planned points, computed together.
struct Run {
    static constexpr std::size_t kRoom = 32;

    // At index 0 the point before the run.
    std::array<double, kRoom + 1> t;
    std::array<double, kRoom + 1> h;
    std::array<double, kRoom + 1> v;
    std::array<double, kRoom + 1> dh;
    std::array<double, kRoom + 1> dv;
    std::array<double, kRoom + 1> spare; ///< at least 0: the chord before keeps the tolerance,
    std::array<double, kRoom + 1> chord; ///< if this is above 0: it is longer than the tolerance

    bool Keeps(std::size_t i) const { return spare[i] >= 0.0 && chord[i] > 0.0; }

    void Set(std::size_t i, Place const& p) {
        t[i] = p.t;
        h[i] = p.at.h;
        v[i] = p.at.v;
        dh[i] = p.v.h;
        dv[i] = p.v.v;
    }
    Place Get(std::size_t i) const { return {t[i], Pt(h[i], v[i]), Pt(dh[i], dv[i])}; }

    /// Computes the points 1 to `count`.
    void Evaluate(Cubic const& curve, std::size_t count) {
        for (std::size_t i = 1; i <= count; ++i) {
            curve.Coordinates(t[i], h[i], v[i], dh[i], dv[i]);
        }
        if (t[count] == 1.0) {
            Set(count, curve.At(1.0));
        }
    }
    /// As Keeps does, for all chords.
    void Verify(std::size_t count, double tolerance) {
        double const limit = tolerance * tolerance;
        for (std::size_t i = 0; i < count; ++i) {
            double const chordH = h[i + 1] - h[i];
            double const chordV = v[i + 1] - v[i];
            double const square = chordH * chordH + chordV * chordV;
            Deviation const off = DeviationOf(t[i + 1] - t[i], chordH, chordV, square, dh[i], dv[i],
                                              dh[i + 1], dv[i + 1]);
            spare[i + 1] = limit * square - (off.across * off.across + off.along * off.along);
            chord[i + 1] = square - limit;
        }
    }
};

/// Delivers the points after P0 relative to P0, the last one excepted; returns the distance kept.
template <class Deliver> double Flatten(Cubic const& curve, double asked, Deliver const& deliver) {
    double const finest = kFinest * curve.Size();
    double const tolerance = asked > finest ? asked : finest;
    if (curve.Size() == 0.0) {
        return tolerance;
    }
    Plan plan(curve, tolerance);
    double const most = static_cast<double>(kMostFlatPoints - 1);
    auto const chords = static_cast<std::size_t>(std::min(plan.Chords(), most));
    plan.Divide(chords);
    std::size_t spare = static_cast<std::size_t>(kMostFlatPoints - 1) - chords; // may be added
    double kept = tolerance;
    std::array<double, kMostPending> pending;
    Run run;
    run.Set(0, curve.Start());
    while (std::size_t const count = plan.Next(&run.t[1], Run::kRoom)) {
        run.Evaluate(curve, count);
        run.Verify(count, tolerance);
        for (std::size_t i = 1; i <= count; ++i) {
            if (run.Keeps(i)) {
                if (run.t[i] < 1.0) {
                    deliver(Pt(run.h[i], run.v[i]));
                }
                continue;
            }
            Place from = run.Get(i - 1);
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
                    deliver(to.at);
                }
                t = waiting > 0 ? pending[--waiting] : 0.0;
            }
        }
        run.Set(0, run.Get(count));
    }
    return kept;
}

/// Flattens, and delivers all points in the input's unit.
template <class Deliver>
double FlattenAll(CBezier const& curve, double tolerance, Deliver const& deliver) {
    ScaledPoints<4> const p({curve.P0, curve.P1, curve.P2, curve.P3});
    deliver(curve.P0);
    double kept = std::numeric_limits<double>::quiet_NaN();
    if (p.Finite()) {
        kept = p.Up(Flatten(Cubic(p), p.Down(tolerance),
                            [&](Pt const& relative) { deliver(p.Up(p[0] + relative)); }));
    }
    deliver(curve.P3);
    return kept;
}

/// Makes the lines of a path.
struct LineMaker {
    CPath& out;
    double tolerance;
    double kept = 0.0;
    bool open = false;

    void Start(Pt const& from) {
        if (!open) {
            Move(from);
        }
    }
    void Move(Pt const& p) {
        out.MoveTo(p);
        open = true;
    }
    void Line(Pt const& from, Pt const& to) {
        Start(from);
        out.LineTo(to);
    }
    void Curve(CBezier const& curve) {
        Start(curve.P0);
        double const distance =
            FlattenAll(curve, tolerance, [this](Pt const& p) { out.LineTo(p); });
        kept = std::isnan(distance) ? distance : std::max(distance, kept);
    }
    void Close(Pt const& /*from*/, Pt const& /*start*/) {
        out.ClosePath();
        open = false;
    }
};

} // namespace

double FlattenWithin(CBezier const& curve, double tolerance, TPolygon<double>& poly) {
    return FlattenAll(curve, tolerance, [&poly](Pt const& p) { poly.Append(p, false); });
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
    LineMaker lines = {result, tolerance};
    trammel_detail::ForEachSegment(path, lines);
    if (out.mCtls.empty() && out.mPts.empty()) {
        out = std::move(result);
        return lines.kept;
    }
    CPath joined(out);
    joined.mCtls.insert(joined.mCtls.end(), result.mCtls.begin(), result.mCtls.end());
    joined.mPts.insert(joined.mPts.end(), result.mPts.begin(), result.mPts.end());
    joined.mCurrentPt = result.mCurrentPt;
    joined.mOpen = result.mOpen;
    joined.mBounds.SetNull(); // rebuilt when asked for
    out = std::move(joined);
    return lines.kept;
}

} // namespace trammel
