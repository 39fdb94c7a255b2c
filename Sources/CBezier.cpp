// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CMatrix3x3.h"
#include "Integers.h"
#include "TLine.h"
#include "TPoly.h"
#include "UGeometry.h"
#include "UScalar.h"
#include "USubdivision_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

std::int32_t gCount = 0;
std::int32_t maxCount = 0;

double CBezier::mMaxError = 1.0;
std::int16_t CBezier::mRecursionLimit = 15;
std::int32_t CBezier::mCount = 0;

namespace {

/// The tolerance at which lengths are measured, in coordinate units: fixed, so that a length does
/// not depend on how finely an application happens to draw.
constexpr double kLengthError = 0.001;

/// The step of the parameter to which a fraction of the length is resolved.
constexpr double kPercentTolerance = 0.001;

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

/// The distance by which Flat judges.
inline double Deviation(CBezier const& c) {
    TPoint<double> const chord = c.P3 - c.P0;
    if (std::isnan(chord.Slope())) {
        return LineLength(c.P0, (c.P1 + c.P2) / 2.0);
    }
    return TLine<double>(c.P0, c.P3).Distance(c.MidPt());
}

/// Decides `tolerance >= Deviation(c)` for the pieces of one curve, from a cheap estimate wherever
/// that leaves no doubt.
///
/// In exact arithmetic the middle of a cubic is (P0 + 3 P1 + 3 P2 + P3)/8, so its distance from the
/// chord is D = 3/8 |d x w| / |d| with d = P3 - P0 and w = P1 + P2 - P0 - P3. Comparing squares
/// needs neither division nor root. The estimate may replace the comparison with the deviation as
/// Flat computes it where the two cannot disagree, that is outside a band around the tolerance that
/// is wider than the rounding of both. By the standard model of rounding (Higham, "Accuracy and
/// Stability of Numerical Algorithms", section 2.2) with u = 2^-53, S a bound on all coordinates'
/// magnitudes, m = d.v/d.h and n = -1/m, and terms of order u² covered by the slack at the end:
///
///   estimate   each component of w is off by at most 8uS, d by u relative, the products by u each:
///              |d x w| is off by at most 34uS|d|, the estimate of D by at most 13uS.
///   deviation  MidPt is off by at most 6uS in each component, hence 8.5uS; m by 3u relative, which
///              turns the line about P0 by at most 1.5u and moves it by at most 4.3uS at MidPt. The
///              numerator of the foot's x is off by at most uS(4|n| + 4|m| + 3); divided by
///              |n - m| = |n| + |m| >= 2 that is 5.5uS, and 2u|x| <= 8uS come with the division:
///              14uS. The foot's y inherits |n| 14uS and adds uS(5|n| + 9). The final difference
///              and hypot add 4uD <= 16uS. Together at most uS(52 + 19|n|).
///
/// So the two are apart by at most 80uS(1 + |n|). Where S(1 + |n|) <= 2^34 tolerance this is less
/// than 2^-12 of the tolerance, which is the band (1.6 times what is needed). Outside of this
/// condition, inside the band, for chords horizontal, vertical or so short that products could
/// underflow, for coordinates or tolerances so large that they could overflow, and for everything
/// not finite, the deviation itself decides.
class FlatnessFilter {
public:
    /// For `whole` and all curves that halving makes of it: no midpoint exceeds the larger of its
    /// two points, so one bound on the coordinates serves them all.
    FlatnessFilter(CBezier const& whole, double tolerance) {
        double const size = std::abs(whole.P0.h) + std::abs(whole.P0.v) + std::abs(whole.P1.h) +
                            std::abs(whole.P1.v) + std::abs(whole.P2.h) + std::abs(whole.P2.v) +
                            std::abs(whole.P3.h) + std::abs(whole.P3.v);
        // Written so that NaN leaves the filter off: no slope passes.
        if (size <= kLargest && tolerance > 0.0 && tolerance <= kLargest) {
            mLargestInverseSlope = tolerance * 0x1p34 / size - 1.0;
            double const surelyFlat = tolerance * (1.0 - kBand) * (8.0 / 3.0);
            double const surelyNot = tolerance * (1.0 + kBand) * (8.0 / 3.0);
            mSurelyFlat = surelyFlat * surelyFlat;
            mSurelyNot = surelyNot * surelyNot;
        }
    }

    bool Flat(CBezier const& c, double tolerance) const {
        double const dh = c.P3.h - c.P0.h;
        double const dv = c.P3.v - c.P0.v;
        double const lengthH = std::abs(dh);
        double const lengthV = std::abs(dv);
        if (lengthH <= mLargestInverseSlope * lengthV && lengthV <= kLargestSlope * lengthH &&
            lengthV >= kShortest) {
            double const wh = (c.P1.h + c.P2.h) - (c.P0.h + c.P3.h);
            double const wv = (c.P1.v + c.P2.v) - (c.P0.v + c.P3.v);
            double const cross = dh * wv - dv * wh;
            double const crossSquared = cross * cross;
            double const chordSquared = dh * dh + dv * dv;
            if (crossSquared <= mSurelyFlat * chordSquared) {
                return true;
            }
            if (crossSquared >= mSurelyNot * chordSquared) {
                return false;
            }
        }
        return tolerance >= Deviation(c);
    }

private:
    static constexpr double kBand = 0x1p-12;
    static constexpr double kLargest = 0x1p200;
    static constexpr double kShortest = 0x1p-200;
    static constexpr double kLargestSlope = 0x1p40;

    double mLargestInverseSlope = -1.0;
    double mSurelyFlat = 0.0;
    double mSurelyNot = 0.0;
};

/// The cubic's rules for the walk of its subdivision tree.
class BezierRules {
public:
    explicit BezierRules(CBezier const& whole)
        : mWhole(whole), mTolerance(CBezier::mMaxError), mFilter(whole, mTolerance) {}

    void Enter() const {
        gCount = trammel_detail::WrappingAdd(gCount, 1);
        maxCount = std::max(maxCount, gCount);
    }
    bool Flat(CBezier const& c) {
        // Read anew each time, as the callback may change it.
        if (mTolerance != CBezier::mMaxError) {
            mTolerance = CBezier::mMaxError;
            mFilter = FlatnessFilter(mWhole, mTolerance);
        }
        return mFilter.Flat(c, mTolerance);
    }
    void Divide(CBezier const& c, CBezier& left, CBezier& right) const { Halve(c, left, right); }
    void Delivered() const { CBezier::mCount = trammel_detail::WrappingAdd(CBezier::mCount, 1); }

private:
    CBezier const& mWhole;
    double mTolerance;
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

/// Delivers the points of the flattened curve, ends included, duplicates not yet left out.
template <class Deliver> void FlattenTo(CBezier const& curve, double error, Deliver deliver) {
    gCount = 0;
    trammel_detail::CurveErrorScope<CBezier> const scope(error);
    deliver(curve.P0);
    if (!IsStraight(curve)) {
        Generate(curve, deliver, true, CBezier::mRecursionLimit);
    }
    deliver(curve.P3);
}

} // namespace

double CBezier::SetCurveError(double e) {
    double const old = mMaxError;
    mMaxError = e;
    return old;
}

bool CBezier::Flat(double tolerance) const { return tolerance >= Deviation(*this); }

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
    FlattenTo(*this, error, [&poly](TPoint<double> const& pt) { AddPtToPoly(pt, poly); });
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
    double const distance0 = TLine<double>(TPt(t0), pt).Length();
    double const distance1 = TLine<double>(TPt(t1), pt).Length();
    CBezier left;
    CBezier right;
    Divide(left, right);
    if (0.5 > t0) {
        double const tLeft =
            left.FindDividedTValue(pt, tolerance, 2.0 * t0, std::min(1.0, 2.0 * t1));
        bestT = tLeft / 2.0;
        bestDistance = TLine<double>(TPt(bestT), pt).Length();
    }
    if (t1 > 0.5) {
        double const tRight =
            right.FindDividedTValue(pt, tolerance, std::max(0.0, 2.0 * t0 - 1.0), 2.0 * t1 - 1.0);
        double const distance = TLine<double>(right.TPt(tRight), pt).Length();
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
        CBezier left;
        CBezier right;
        current.Divide(left, right);
        TLine<double> const chord(current.TPt(0.5 - tolerance), current.TPt(0.5 + tolerance));
        middle = (lo + hi) / 2.0;
        // A middle that is one of the bounds halves nothing: all further middles would be the same.
        stuck = middle == lo || middle == hi;
        if (chord.Perpendicular().HalfSpace(pt) == 1) {
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
    if (!IsStraight(*this)) {
        auto deliver = [&rec](TPoint<double> const& point) { HitTestPt(point, rec); };
        Generate(*this, deliver, true, mRecursionLimit);
    }
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
    if (!IsStraight(*this)) {
        auto deliver = [&rec](TPoint<double> const& point) { ContainsPt(point, rec); };
        Generate(*this, deliver, true, mRecursionLimit);
    }
    ContainsPt(P3, rec);
    return rec.hit;
}

double CBezier::Length() const {
    // The edges of the flattening are summed as they come: the polygon itself is not needed.
    double length = 0.0;
    TPoint<double> last;
    bool first = true;
    FlattenTo(*this, kLengthError, [&](TPoint<double> const& pt) {
        if (first) {
            first = false;
            last = pt;
        } else if (pt != last) {
            length += TLine<double>(last, pt).Length();
            last = pt;
        }
    });
    return length;
}

double CBezier::PercentT(double fraction) const {
    TPolygon<double> poly;
    Flatten(poly, kLengthError);
    if (poly.Empty()) {
        return std::numeric_limits<double>::quiet_NaN(); // memory is short
    }
    return FindTValue(poly.TPt(fraction), kPercentTolerance, 0.0, 1.0);
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
