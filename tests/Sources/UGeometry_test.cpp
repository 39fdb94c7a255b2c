// SPDX-License-Identifier: MIT

#include "UGeometry.h"

#include "TestSupport.h"
#include "UTrigonometry.h"
#include "plain/PlainLine.h"

#include <gtest/gtest.h>

#include <cmath>

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;

namespace {

using DPoint = TPoint<double>;
using DRect = TRect<double>;

DRect Radius(DPoint const& centre, DPoint const& onCircle) {
    DRect out(7.0, 7.0, 9.0, 9.0); // discarded
    RadiusCircle(centre, onCircle, out);
    return out;
}

DRect Diameter(DPoint const& a, DPoint const& b) {
    DRect out(7.0, 7.0, 9.0, 9.0);
    DiameterCircle(a, b, out);
    return out;
}

DRect ThreePoints(DPoint const& a, DPoint const& b, DPoint const& c) {
    DRect out(7.0, 7.0, 9.0, 9.0);
    Pt3Circle(a, b, c, out);
    return out;
}

void ExpectNear(DRect const& got, DRect const& want, double tolerance) {
    EXPECT_NEAR(got.left, want.left, tolerance);
    EXPECT_NEAR(got.top, want.top, tolerance);
    EXPECT_NEAR(got.right, want.right, tolerance);
    EXPECT_NEAR(got.bottom, want.bottom, tolerance);
}

TEST(RadiusCircle, IsTheSquareAroundTheCentre) {
    EXPECT_EQ(Radius(DPoint(0.0, 0.0), DPoint(3.0, 4.0)), DRect(-5.0, -5.0, 5.0, 5.0));
    EXPECT_EQ(Radius(DPoint(10.0, 20.0), DPoint(10.0, 18.0)), DRect(8.0, 18.0, 12.0, 22.0));
    EXPECT_EQ(Radius(DPoint(1.0, 2.0), DPoint(1.0, 2.0)), DRect(1.0, 2.0, 1.0, 2.0));
}

TEST(RadiusCircle, MeasuresWithoutOverflow) {
    DRect const r = Radius(DPoint(0.0, 0.0), DPoint(3e200, 4e200));
    EXPECT_DOUBLE_EQ(r.right, 5e200);
    EXPECT_DOUBLE_EQ(r.top, -5e200);
}

TEST(RadiusCircle, IsThePlainFormula) {
    Random random(601);
    for (int i = 0; i < 1000; ++i) {
        DPoint const c = random.Point(100.0);
        DPoint const p = random.Point(100.0);
        double const r = plain::Hypot(p.h - c.h, p.v - c.v);
        ASSERT_EQ(Radius(c, p), DRect(c.h - r, c.v - r, c.h + r, c.v + r));
    }
}

TEST(DiameterCircle, IsTheSquareAroundTheMiddle) {
    EXPECT_EQ(Diameter(DPoint(0.0, 0.0), DPoint(10.0, 0.0)), DRect(0.0, -5.0, 10.0, 5.0));
    EXPECT_EQ(Diameter(DPoint(0.0, 10.0), DPoint(0.0, 0.0)), DRect(-5.0, 0.0, 5.0, 10.0));
    EXPECT_EQ(Diameter(DPoint(1.0, 2.0), DPoint(1.0, 2.0)), DRect(1.0, 2.0, 1.0, 2.0));
}

TEST(DiameterCircle, IsThePlainFormula) {
    Random random(602);
    for (int i = 0; i < 1000; ++i) {
        DPoint const a = random.Point(100.0);
        DPoint const b = random.Point(100.0);
        DPoint const c(a.h + (b.h - a.h) * 0.5, a.v + (b.v - a.v) * 0.5);
        double const r = plain::Hypot(b.h - a.h, b.v - a.v) / 2.0;
        ASSERT_EQ(Diameter(a, b), DRect(c.h - r, c.v - r, c.h + r, c.v + r));
    }
}

TEST(Pt3Circle, GoesThroughThreePoints) {
    ExpectNear(ThreePoints(DPoint(0.0, 0.0), DPoint(5.0, 5.0), DPoint(10.0, 0.0)),
               DRect(0.0, -5.0, 10.0, 5.0), 1e-14);
    ExpectNear(ThreePoints(DPoint(3.0, 4.0), DPoint(-4.0, 3.0), DPoint(0.0, -5.0)),
               DRect(-5.0, -5.0, 5.0, 5.0), 1e-14);
}

TEST(Pt3Circle, FindsRandomCircles) {
    Random random(603);
    for (int i = 0; i < 1000; ++i) {
        DPoint const centre = random.Point(100.0);
        double const r = random.Uniform(1.0, 50.0);
        double const first = random.Uniform(-pi, pi);
        DPoint p[3];
        for (int k = 0; k < 3; ++k) {
            double const angle = first + 2.0 * k + random.Uniform(-0.5, 0.5);
            p[k] = centre + DPoint(r * std::cos(angle), r * std::sin(angle));
        }
        DRect const want(centre.h - r, centre.v - r, centre.h + r, centre.v + r);
        ExpectNear(ThreePoints(p[0], p[1], p[2]), want, 1e-8);
        ExpectNear(ThreePoints(p[2], p[0], p[1]), want, 1e-8);
        if (HasFailure()) {
            break;
        }
    }
}

TEST(Pt3Circle, IsComposedOfBisectorsAndTheDistanceToTheThirdPoint) {
    Random random(604);
    for (int i = 0; i < 1000; ++i) {
        DPoint const a = random.Point(100.0);
        DPoint const b = random.Point(100.0);
        DPoint const c = random.Point(100.0);
        DPoint centre;
        ASSERT_TRUE(TLine<double>(a, b).PerpendicularBisector().Intersects(
            TLine<double>(b, c).PerpendicularBisector(), centre));
        DPoint const arm = centre - c;
        double const r = std::sqrt(arm.h * arm.h + arm.v * arm.v);
        ASSERT_EQ(ThreePoints(a, b, c),
                  DRect(centre.h - r, centre.v - r, centre.h + r, centre.v + r));
    }
}

TEST(Pt3Circle, FallsBackToTheDiameterForCollinearPoints) {
    EXPECT_EQ(ThreePoints(DPoint(0.0, 0.0), DPoint(5.0, 0.0), DPoint(10.0, 0.0)),
              DRect(0.0, -5.0, 10.0, 5.0));
    EXPECT_EQ(ThreePoints(DPoint(0.0, 0.0), DPoint(10.0, 0.0), DPoint(4.0, 0.0)),
              DRect(0.0, -2.0, 4.0, 2.0));
    EXPECT_EQ(ThreePoints(DPoint(0.0, 0.0), DPoint(3.0, 3.0), DPoint(6.0, 6.0)),
              Diameter(DPoint(0.0, 0.0), DPoint(6.0, 6.0)));
}

TEST(Pt3Circle, FallsBackToTheDiameterForCoincidentNeighbours) {
    DPoint const p(1.0, 2.0);
    DPoint const q(7.0, 10.0);
    EXPECT_EQ(ThreePoints(p, p, q), DRect(-1.0, 1.0, 9.0, 11.0));
    EXPECT_EQ(ThreePoints(p, p, q), Diameter(p, q));
    EXPECT_EQ(ThreePoints(q, p, p), Diameter(q, p));
    EXPECT_EQ(ThreePoints(p, p, p), DRect(1.0, 2.0, 1.0, 2.0));
}

TEST(Pt3Circle, WithCoincidentEndsRunsTheConstructionOnOneSegmentReversed) {
    // The bisectors are the same line, hence parallel, hence the circle on the ends: of size 0.
    EXPECT_EQ(ThreePoints(DPoint(1.0, 2.0), DPoint(7.0, 2.0), DPoint(1.0, 2.0)),
              DRect(1.0, 2.0, 1.0, 2.0));
}

TEST(Circles, MayWriteOverTheirPoints) {
    DRect r(0.0, 0.0, 3.0, 4.0);
    RadiusCircle(r[kTopLeft], r[kBottomRight], r);
    EXPECT_EQ(r, DRect(-5.0, -5.0, 5.0, 5.0));
    r.Set(0.0, 0.0, 6.0, 8.0);
    DiameterCircle(r[kTopLeft], r[kBottomRight], r);
    EXPECT_EQ(r, DRect(-2.0, -1.0, 8.0, 9.0));
    r.Set(3.0, 4.0, 0.0, -5.0);
    DRect const want = ThreePoints(DPoint(3.0, 4.0), DPoint(-4.0, 3.0), DPoint(0.0, -5.0));
    Pt3Circle(r[kTopLeft], DPoint(-4.0, 3.0), r[kBottomRight], r);
    EXPECT_EQ(r, want);
    r.Set(1.0, 2.0, 7.0, 10.0);
    Pt3Circle(r[kTopLeft], r[kTopLeft], r[kBottomRight], r);
    EXPECT_EQ(r, DRect(-1.0, 1.0, 9.0, 11.0));
}

TEST(Circles, PassNaNAndInfinityOn) {
    DRect const r = Radius(DPoint(1.0, 2.0), DPoint(kNaN, 3.0));
    EXPECT_TRUE(std::isnan(r.left) && std::isnan(r.bottom));
    EXPECT_EQ(Radius(DPoint(0.0, 0.0), DPoint(kInf, 0.0)), DRect(-kInf, -kInf, kInf, kInf));
    EXPECT_TRUE(std::isnan(Diameter(DPoint(0.0, kNaN), DPoint(1.0, 1.0)).top));
    EXPECT_TRUE(
        std::isnan(ThreePoints(DPoint(kNaN, 0.0), DPoint(1.0, 1.0), DPoint(2.0, 0.0)).left));
}

TEST(GeometryHitTest, IsThatOfTheSegment) {
    EXPECT_TRUE(HitTest(DPoint(0.0, 0.0), DPoint(10.0, 0.0), DPoint(5.0, 1.0), 1.0));
    EXPECT_FALSE(HitTest(DPoint(0.0, 0.0), DPoint(10.0, 0.0), DPoint(5.0, 1.5), 1.0));
    EXPECT_FALSE(HitTest(DPoint(0.0, 0.0), DPoint(10.0, 0.0), DPoint(12.0, 0.0), 1.0));
    int hits = 0;
    Random random(605);
    for (int i = 0; i < 2000; ++i) {
        DPoint const a = random.Point(10.0);
        DPoint const b = random.Point(10.0);
        DPoint const p = random.Point(10.0);
        double const tolerance = random.Uniform(-1.0, 5.0);
        bool const hit = HitTest(a, b, p, tolerance);
        ASSERT_EQ(hit, TLine<double>(a, b).HitTest(p, tolerance));
        hits += hit;
    }
    EXPECT_GT(hits, 100);
    EXPECT_LT(hits, 1900);
}

} // namespace
