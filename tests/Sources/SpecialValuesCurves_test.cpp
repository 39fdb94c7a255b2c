// SPDX-License-Identifier: MIT

// Special values in curves and paths.

#include "SpecialValues.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <vector>

using trammel_test::special::Case;
using trammel_test::special::Draw;
using trammel_test::special::Pt;
using trammel_test::special::Use;

namespace {

class CountingActions : public CPathActions {
public:
    int count = 0;
    void MoveTo(Pt const&) override { ++count; }
    void LineTo(Pt const&) override { ++count; }
    void CurveTo(Pt const&, Pt const&, Pt const&) override { ++count; }
    void ClosePath() override { ++count; }
};

int gDelivered = 0; // NOLINT: the callback without data has no other place to count

void TryCBezierValues(Draw& d) {
    CBezier const curve = d.Curve();
    Pt const p = d.Point();
    double const t = d.Value();
    Use(curve.TPt(t));
    Use(curve.MidPt());
    Use(curve.Extents().TopLeft());
    EXPECT_FALSE(curve.Flat(std::nan("")));
    Use(curve.Flat(t) ? 1.0 : 0.0);
    CBezier left;
    CBezier right;
    Use(curve.Divide(left, right));
    Use(curve.Divide(left, right, t));
    Use(curve.Divide(left, right, p));
    curve.GetTRange(t, d.Value(), left);
    EXPECT_NE(curve == left, curve != left);
    CBezier changed = curve + p;
    changed -= p;
    changed *= p;
    changed /= p;
    changed *= t;
    changed /= t;
    changed.Rotate(t).Rotate(t, p).Scale(t).Transform(d.Matrix());
    Use(changed.P3);
}

void TryCBezierPoints(Draw& d) {
    CBezier const curve = d.Curve();
    double const error = d.Value();
    TPolygon<double> polygon;
    curve.Flatten(polygon, error);
    long const limit = (1L << (CBezier::mRecursionLimit - 1)) - 1;
    EXPECT_LE(polygon.LastIndex(), limit + 1);
    EXPECT_EQ(CBezier::CurveError(), 1.0);
    gDelivered = 0;
    curve.GenerateSegment([](Pt const&) { ++gDelivered; }, d.Flag(), 6);
    EXPECT_LE(gDelivered, 31);
    curve.GenerateSegment([](Pt const&, void*) { ++gDelivered; }, nullptr, d.Flag(), -32768);
}

void TryCBezierQueries(Draw& d) {
    CBezier curve = d.Curve();
    Pt const p = d.Point();
    double const tolerance = d.Value();
    double const t0 = d.Value();
    double const t1 = d.Value();
    Use(curve.FindTValue(p, tolerance, t0, t1));
    Use(curve.FindTValue(p, 0.001, 0.0, 1.0));
    Use(curve.FindDividedTValue(p, tolerance, t0, t1));
    EXPECT_FALSE(curve.HitTest(Pt(std::nan(""), 0.0), tolerance));
    Use(curve.HitTest(p, tolerance) ? 1.0 : 0.0);
    Use(curve.Intersects(d.Rect()) ? 1.0 : 0.0);
    EXPECT_FALSE(curve.Length() < 0.0);
    Use(curve.PercentT(t0));
    Use(curve.TPercent(t1));
}

void TryCBSplineValues(Draw& d) {
    CBSpline const curve = d.Quadratic();
    double const tolerance = d.Value();
    EXPECT_EQ(curve.Flat(std::nan("")), curve.P0 == curve.P2);
    Use(curve.Flat(tolerance) ? 1.0 : 0.0);
    CBSpline left;
    CBSpline right;
    Use(curve.Divide(left, right));
    Use(curve.Extents().TopLeft());
}

void TryCBSplinePoints(Draw& d) {
    CBSpline const curve = d.Quadratic();
    TPolygon<double> polygon;
    curve.AddSegmentToPoly(polygon, d.Value());
    long const limit = (1L << (CBSpline::mRecursionLimit - 1)) - 1;
    EXPECT_LE(polygon.LastIndex(), limit + 1);
    EXPECT_EQ(CBSpline::CurveError(), 2.0);
    gDelivered = 0;
    CBSpline::PointDataProc const count = [](Pt const&, void*) { ++gDelivered; };
    curve.GenerateSegment(count, nullptr, 6);
    EXPECT_LE(gDelivered, 31);
    gDelivered = 0;
    curve.GenerateSegment(count, nullptr, -32768);
    EXPECT_EQ(gDelivered, 0);
}

void TryCPathBuild(Draw& d) {
    CPath path = d.Path();
    EXPECT_EQ(path.size(), path.mCtls.size() + 16 * path.mPts.size());
    path.RRect(d.Rect(), d.Value());
    EXPECT_FALSE(path.mOpen);
    Pt const centre = d.Point();
    double const hRadius = d.Value();
    double const vRadius = d.Value();
    double const start = d.Value();
    double sweep = d.Value();
    // Between these a sweep is honoured with millions of curves; memory decides.
    if (std::abs(sweep) > 1e5 && std::abs(sweep) < 3.4e9) {
        sweep = 1e5;
    }
    path.Arc(centre, hRadius, vRadius, start, sweep);
    path.Arc(centre, hRadius, start, std::fmod(sweep, 7.0));
    CPath other = d.Path();
    other.Append(path);
    EXPECT_FALSE(other.Closed());
    path.Transform(d.Matrix());
    Use(path.Bounds().TopLeft());
    Use(path.GetFraction(centre, d.Point()));
    CountingActions actions;
    path.ForAll(actions);
    EXPECT_EQ(static_cast<std::size_t>(actions.count), path.mCtls.size());
    path.AddCtl(kPathCurve); // without its points: the walk ends before it
    actions.count = 0;
    path.ForAll(actions);
    EXPECT_EQ(static_cast<std::size_t>(actions.count) + 1, path.mCtls.size());
    Use(path.Bounds().TopLeft());
}

void TryCPathMeasure(Draw& d) {
    CPath const path = d.Path();
    double const t0 = d.Value();
    double const t1 = d.Value();
    EXPECT_FALSE(path.Length() < 0.0);
    Use(path.TPt(t0));
    Use(path.FindTValue(d.Point()));
    CPath a;
    CPath b;
    path.GetTRange(t0, t1, a);
    EXPECT_FALSE(a.mCtls.empty());
    path.RemoveTRange(t0, t1, a, b);
    EXPECT_TRUE(path.Closed());
}

void TryCPathEmpty(Draw& d) {
    CPath const path;
    EXPECT_EQ(path.Length(), 0.0);
    EXPECT_EQ(path.TPt(d.Value()), Pt());
    EXPECT_EQ(path.FindTValue(d.Point()), 0.0);
    CPath out;
    path.GetTRange(d.Value(), d.Value(), out);
    EXPECT_EQ(out.mCtls.size(), 1u);
    EXPECT_TRUE(path.Bounds().Null());
}

} // namespace

std::vector<Case> trammel_test::special::CurveCases() {
    return {
        {"CBezier_values", TryCBezierValues},   {"CBezier_points", TryCBezierPoints},
        {"CBezier_queries", TryCBezierQueries}, {"CBSpline_values", TryCBSplineValues},
        {"CBSpline_points", TryCBSplinePoints}, {"CPath_build", TryCPathBuild},
        {"CPath_measure", TryCPathMeasure},     {"CPath_empty", TryCPathEmpty},
    };
}
