// SPDX-License-Identifier: MIT

#include "Targets.h"

#include "AccurateCurve.h"
#include "CBSpline.h"
#include "CBezier.h"
#include "identity/Identity.h"
#include "plain/PlainBezier.h"
#include "plain/PlainSpline.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace fuzz {

namespace {

using identity::Digest;

/// Sets both forms' settings and counters alike.
void SetUp(Input& in) {
    CBezier::mMaxError = plain::state.maxError = in.Number();
    CBezier::mRecursionLimit = plain::state.recursionLimit =
        static_cast<std::int16_t>(in.Int(-1, 10));
    CBezier::mCount = plain::state.mCount = 0;
    gCount = plain::state.gCount = 0;
    maxCount = plain::state.maxCount = 0;
}

void RequireSameState() {
    Digest ours;
    Digest plainly;
    identity::AddState(ours);
    identity::AddPlainState(plainly);
    Require(ours == plainly, "settings and counters are the plain form's");
}

void Flattened(CBezier const& curve, plain::Bezier const& same, double error) {
    TPolygon<double> polygon;
    curve.Flatten(polygon, error);
    plain::Points chain;
    same.Flatten(chain, error);
    Digest ours;
    Digest plainly;
    ours.Add(polygon);
    plainly.Add(chain);
    Require(ours == plainly, "a flattening is the plain form's");
    RequireSameState();
}

/// The questions that both forms answer by the same names.
template <class Curve, class Rect>
Digest Answers(Curve const& curve, Pt const& pt, double t0, double t1, double step,
               Rect const& rect) {
    Digest digest;
    digest.Add(curve.Length());
    digest.Add(curve.PercentT(t0));
    digest.Add(curve.TPercent(t1));
    digest.Add(curve.FindTValue(pt, step, 0.0, 1.0));
    digest.Add(curve.FindTValue(pt, step, t0, t1));
    digest.Add(curve.HitTest(pt, t1));
    digest.Add(curve.Intersects(rect));
    digest.Add(curve.Extents());
    digest.Add(curve.Flat(t1));
    digest.Add(curve.TPt(t0));
    return digest;
}

/// The distance of a point from a segment. Ends of a segment may be equal.
double Apart(Pt const& p, Pt const& a, Pt const& b) {
    Pt const d = b - a;
    Pt const to = p - a;
    double const square = d.h * d.h + d.v * d.v;
    double const t = square > 0.0 ? (to.h * d.h + to.v * d.v) / square : 0.0;
    Pt const off = to - d * std::clamp(t, 0.0, 1.0);
    return std::hypot(off.h, off.v);
}

/// Samples the curve densely; each sample must be as near to the points' polyline as is promised.
void FlattenedWithin(CBezier const& curve, double tolerance) {
    std::array<Pt, 200> points;
    trammel::Flattened const flat =
        trammel::FlattenInto(curve, tolerance, points.data(), points.size());
    double greatest = 0.0;
    for (Pt const& p : {curve.P0, curve.P1, curve.P2, curve.P3}) {
        greatest = std::max({greatest, std::abs(p.h), std::abs(p.v)});
    }
    // Only where squares neither overflow nor underflow.
    if (flat.count > points.size() || !(greatest > 1e-60 && greatest < 1e60)) {
        return;
    }
    Require(flat.count >= 2 && points[0] == curve.P0 && points[flat.count - 1] == curve.P3,
            "the points run from end to end");
    constexpr int kSamples = 200;
    for (int i = 0; i <= kSamples; ++i) {
        Pt const p = curve.TPt(static_cast<double>(i) / kSamples);
        double least = Apart(p, points[0], points[0]);
        for (std::size_t k = 1; k < flat.count; ++k) {
            least = std::min(least, Apart(p, points[k - 1], points[k]));
        }
        Require(least <= flat.distance * (1.0 + 0x1p-40) + 0x1p-44 * greatest,
                "a flattening is as near as it says");
    }
}

void Accurate(CBezier const& curve, Pt const& pt, double fraction, double accuracy) {
    double const length = trammel::ArcLength(curve, accuracy);
    double const t = trammel::ParameterAtFraction(curve, fraction, accuracy);
    trammel::CurvePoint const nearest = trammel::NearestPoint(curve, pt, accuracy);
    TPolygon<double> polygon;
    // The finer, the more points, up to 65,536.
    double const kept = trammel::FlattenWithin(curve, accuracy, polygon);
    TRect<double> const tight = trammel::TightBounds(curve);
    bool finite = std::isfinite(pt.h) && std::isfinite(pt.v);
    for (Pt const& p : {curve.P0, curve.P1, curve.P2, curve.P3}) {
        finite = finite && std::abs(p.h) < 1e150 && std::abs(p.v) < 1e150;
    }
    if (!finite) {
        return;
    }
    FlattenedWithin(curve, accuracy);
    Require(length >= 0.0, "a length is not negative");
    Require(std::isnan(fraction) || (t >= 0.0 && t <= 1.0), "a parameter is from 0 to 1");
    Require(nearest.t >= 0.0 && nearest.t <= 1.0, "a nearest parameter is from 0 to 1");
    Require(kept >= 0.0, "the distance kept is not negative");
    Require(!polygon.Empty() && polygon.GetPt(0) == curve.P0 &&
                polygon.GetPt(polygon.LastIndex()) == curve.P3,
            "a polyline runs from end to end");
    auto const [left, right] = std::minmax({curve.P0.h, curve.P1.h, curve.P2.h, curve.P3.h});
    auto const [top, bottom] = std::minmax({curve.P0.v, curve.P1.v, curve.P2.v, curve.P3.v});
    Require(tight.left >= left && tight.right <= right && tight.top >= top &&
                tight.bottom <= bottom,
            "tight bounds are within the control points'");
}

void Quadratic(CBSpline const& curve, double error, int depth) {
    CBSpline::mMaxError = plain::splineState.maxError = 2.0;
    CBSpline::mRecursionLimit = plain::splineState.recursionLimit =
        static_cast<std::int16_t>(depth);
    CBSpline::mCount = plain::splineState.mCount = 0;
    TPolygon<double> polygon;
    curve.AddSegmentToPoly(polygon, error);
    plain::Spline::Points chain;
    plain::Spline{curve.P0, curve.P1, curve.P2}.AddSegment(chain, error);
    Digest ours;
    Digest plainly;
    ours.Add(polygon);
    ours.Add(CBSpline::mCount);
    plainly.Add(chain);
    plainly.Add(plain::splineState.mCount);
    Require(ours == plainly, "a quadratic's flattening is the plain form's");
}

void AccurateQuadratic(CBSpline const& curve, Pt const& pt, double accuracy) {
    double const length = trammel::ArcLength(curve, accuracy);
    trammel::CurvePoint const nearest = trammel::NearestPoint(curve, pt, accuracy);
    Box const tight = trammel::TightBounds(curve);
    TPolygon<double> polygon;
    trammel::FlattenWithin(curve, accuracy, polygon);
    double greatest = 0.0;
    for (Pt const& p : {curve.P0, curve.P1, curve.P2, pt}) {
        for (double const x : {p.h, p.v}) {
            greatest = std::abs(x) < 1e150 ? std::max(greatest, std::abs(x)) : HUGE_VAL;
        }
    }
    if (!std::isfinite(greatest)) {
        return;
    }
    Require(length >= 0.0, "a quadratic's length is not negative");
    Require(nearest.t >= 0.0 && nearest.t <= 1.0, "a place on a quadratic is from 0 to 1");
    auto const [left, right] = std::minmax({curve.P0.h, curve.P1.h, curve.P2.h});
    auto const [top, bottom] = std::minmax({curve.P0.v, curve.P1.v, curve.P2.v});
    Require(tight.left >= left && tight.right <= right && tight.top >= top &&
                tight.bottom <= bottom,
            "a quadratic's bounds are within its control points'");
    Require(!polygon.Empty() && polygon.GetPt(0) == curve.P0 &&
                polygon.GetPt(polygon.LastIndex()) == curve.P2,
            "a quadratic's polyline runs from end to end");
}

/// Parts of a curve begin and end where they should.
void Divided(CBezier const& curve, double t0, double t1, double accuracy) {
    CBezier left;
    CBezier right;
    Pt const p = curve.Divide(left, right, t0);
    Digest ours;
    Digest expected;
    for (Pt const& end : {left.P0, left.P3, right.P0, right.P3}) {
        ours.Add(end);
    }
    for (Pt const& end : {curve.P0, p, p, curve.P3}) {
        expected.Add(end);
    }
    Require(ours == expected, "a curve is divided at a point");
    CBezier part;
    curve.GetTRange(t0, t1, part);
    double const length = trammel::ArcLength(curve, t0, t1, accuracy);
    double const at = trammel::ParameterAtLength(curve, length, accuracy);
    Require(std::isnan(at) || (at >= 0.0 && at <= 1.0), "a parameter at a length is from 0 to 1");
}

} // namespace

void Curves(Input& in) {
    SetUp(in);
    Pt const p0 = in.Point();
    Pt const p1 = in.Point();
    Pt const p2 = in.Point();
    Pt const p3 = in.Point();
    CBezier const curve(p0, p1, p2, p3);
    plain::Bezier const same = {p0, p1, p2, p3};
    double const error = in.Number();
    Flattened(curve, same, error);
    Pt const pt = in.Point();
    double const t0 = in.Number();
    double const t1 = in.Number();
    double const step = in.Number();
    Box const rect = in.Rect();
    Require(Answers(curve, pt, t0, t1, step, rect) == Answers(same, pt, t0, t1, step, rect),
            "answers are the plain form's");
    RequireSameState();
    Box const hull = curve.Extents();
    Accurate(curve, pt, t0, in.Tolerance(hull.Width() + hull.Height()));
    Quadratic(CBSpline(p0, p1, p2), error, in.Int(-1, 9));
    double const accuracy = in.Tolerance(hull.Width() + hull.Height());
    AccurateQuadratic(CBSpline(p0, p1, p2), pt, accuracy);
    Divided(curve, t0, t1, accuracy);
}

} // namespace fuzz
