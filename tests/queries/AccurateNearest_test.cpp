// SPDX-License-Identifier: MIT

// NearestPoint finds a point within the accuracy of the nearest one.

#include "AccurateCurve.h"

#include "CBSpline.h"
#include "CBezier.h"
#include "CurveTruth.h"
#include "Finite.h"
#include "TPoint.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using trammel::CurvePoint;
using trammel::NearestPoint;
using trammel_test::AnyCurve;
using trammel_test::Cusp;
using trammel_test::DistanceAt;
using trammel_test::IsFinite;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Length;
using trammel_test::Off;
using trammel_test::Parabola;
using trammel_test::Random;
using trammel_test::Rounds;
using trammel_test::SameBits;
using trammel_test::SpecialCurves;
using trammel_test::Text;
using trammel_test::TrueDistance;
using trammel_test::Wide;
using trammel_test::Widened;

typedef TPoint<double> Pt;

/// The bound stated for NearestPoint, beside the accuracy.
Wide NearestRounding(CBezier const& c, Pt const& p) {
    Wide greatest = 0;
    for (Pt const& q : {c.P0, c.P1, c.P2, c.P3}) {
        greatest = std::max(greatest, Length(Widened(q) - Widened(p)));
    }
    return std::ldexp(greatest, -44);
}

void ExpectNearest(CBezier const& curve, Pt const& p, double accuracy) {
    CurvePoint const found = NearestPoint(curve, p, accuracy);
    Wide const rounding = NearestRounding(curve, p);
    ASSERT_TRUE(found.t >= 0.0 && found.t <= 1.0);
    ASSERT_TRUE(SameBits(found.point, curve.TPt(found.t)));
    ASSERT_LE(Off(found.distance, DistanceAt(curve, Widened(found.t), p)), rounding);
    ASSERT_LE(Widened(found.distance) - TrueDistance(curve, p), Widened(accuracy) + rounding)
        << Text(curve) << " to " << Text(p) << " within " << accuracy;
}

TEST(NearestPoint, OfALineIsTheFootOfThePerpendicular) {
    CBezier const line({0, 0}, {10, 0}, {20, 0}, {30, 0});
    CurvePoint const found = NearestPoint(line, {7.5, 4}, 1e-12);
    EXPECT_NEAR(found.t, 0.25, 1e-13);
    EXPECT_NEAR(found.point.h, 7.5, 1e-12);
    EXPECT_EQ(found.point.v, 0.0);
    EXPECT_NEAR(found.distance, 4.0, 1e-12);
    EXPECT_EQ(NearestPoint(line, {-3, 4}, 1e-12).t, 0.0);
    EXPECT_NEAR(NearestPoint(line, {-3, 4}, 1e-12).distance, 5.0, 1e-15);
    EXPECT_EQ(NearestPoint(line, {33, -4}, 1e-12).t, 1.0);
    CBSpline const quadratic({0, 0}, {15, 0}, {30, 0});
    EXPECT_NEAR(NearestPoint(quadratic, {7.5, 4}, 1e-12).t, 0.25, 1e-13);
}

TEST(NearestPoint, OfAParabolaSolvesItsCubic) {
    // To (0, c) from (t, t²), c > 1/2: t² = c - 1/2, distance sqrt(c - 1/4).
    for (double const c : {0.6, 0.75, 1.0, 1.25}) {
        CurvePoint const found = NearestPoint(Parabola(1), {0, c}, 1e-13);
        EXPECT_NEAR(found.t, std::sqrt(c - 0.5), 1e-12);
        EXPECT_NEAR(found.distance, std::sqrt(c - 0.25), 1e-13);
    }
    EXPECT_EQ(NearestPoint(Parabola(1), {0, 0.5}, 1e-13).t, 0.0); // the centre of the bend
}

TEST(NearestPoint, IsTheNearestOfTheWholeCurve) {
    Random random(11);
    for (int i = 0; i < Rounds(3000); ++i) {
        CBezier const curve = AnyCurve(random);
        Pt p = random.Point(random.Integer(0, 1) == 0 ? 150 : 20);
        switch (random.Integer(0, 5)) {
        case 0: // on the curve, or beside it
            p = curve.TPt(random.Uniform(0, 1)) +
                random.Point(1) * std::ldexp(1.0, -random.Integer(0, 60));
            break;
        case 1: // at an end or a control point
            p = random.Integer(0, 1) == 0 ? curve.P0 : curve.P2;
            break;
        default:
            break;
        }
        for (double const accuracy : {1.0, 1e-3, 1e-6, 1e-9, 0.0}) {
            ExpectNearest(curve, p, accuracy);
        }
    }
}

TEST(NearestPoint, FindsCuspsEndsAndCrossings) {
    Random random(12);
    for (int i = 0; i < 300; ++i) {
        double const off = std::ldexp(random.Uniform(-1, 1), -random.Integer(0, 55));
        ExpectNearest(Cusp(), {off, 0}, 0.0); // the cusp is at (0, 0)
        ExpectNearest(Cusp(), {0, off}, 0.0);
        ExpectNearest(CBezier({0, 0}, {0, 0}, {0, 0}, {5, 7}), {off, 0}, 0.0);
        ExpectNearest(CBezier({0, 0}, {100, 100}, {-100, 100}, {0, off}), {0, off}, 0.0);
        CBezier const loop({0, 0}, {100, 90}, {-60, 90}, {40, 0}); // crosses itself on h = 20
        ExpectNearest(loop, {20, 30 + 30 * off}, 0.0);
        ExpectNearest(loop, {20, 60 * random.Uniform(0, 1)}, 0.0);
    }
}

TEST(NearestPoint, OfTheCentreOfAnArcIsAnyOfItsPoints) {
    Random random(13);
    CBezier const quarter({0, 100}, {55.228474983079, 100}, {100, 55.228474983079}, {100, 0});
    for (int i = 0; i < 200; ++i) {
        Pt const p = random.Point(1) * std::ldexp(1.0, -random.Integer(0, 60));
        for (double const accuracy : {1.0, 1e-3, 1e-6, 1e-9, 0.0}) {
            ExpectNearest(quarter, p, accuracy);
        }
    }
}

TEST(NearestPoint, OfAPointFarAwayIsRightToRounding) {
    Random random(14);
    for (int i = 0; i < 300; ++i) {
        CBezier const curve = AnyCurve(random);
        ExpectNearest(curve, random.Point(1) * std::ldexp(1.0, random.Integer(10, 60)), 1e-9);
        // Far from the origin both.
        Pt const origin = random.Point(1e9);
        CBezier const moved = curve + origin;
        ExpectNearest(moved, origin + random.Point(100), 1e-6);
    }
}

TEST(NearestPoint, IsFoundHoweverSmallTheCurveIsBesideItsDistanceFromTheOrigin) {
    for (double const at : {0.0, 1.0, -0x1p300, kHuge}) {
        for (int const power : {-150, -500, -530, -700, -1000}) {
            double const unit = std::ldexp(1.0, power);
            CBezier const curve(Pt(at, 0), Pt(at, unit), Pt(at, 2 * unit), Pt(at, 3 * unit));
            CurvePoint const found = NearestPoint(curve, Pt(at, 4 * unit), 0.0);
            EXPECT_EQ(found.t, 1.0) << at << ' ' << power;
            EXPECT_EQ(found.distance, unit) << at << ' ' << power;
        }
    }
}

TEST(NearestPoint, OfACurveWithoutExtentIsItsStart) {
    CBezier const point({3, 4}, {3, 4}, {3, 4}, {3, 4});
    CurvePoint const found = NearestPoint(point, {0, 0}, 0.0);
    EXPECT_EQ(found.t, 0.0);
    EXPECT_EQ(found.point, Pt(3, 4));
    EXPECT_EQ(found.distance, 5.0);
    EXPECT_EQ(NearestPoint(point, {3, 4}, 0.0).distance, 0.0);
    EXPECT_EQ(NearestPoint(CBezier(), {0, 0}, 0.0).distance, 0.0);
}

TEST(NearestPoint, ScalesExactlyByPowersOfTwo) {
    Random random(15);
    for (int i = 0; i < 300; ++i) {
        CBezier const curve = AnyCurve(random);
        Pt const p = random.Point(100);
        CurvePoint const found = NearestPoint(curve, p, 1e-6);
        for (int const power : {-900, -101, 7, 99, 900}) {
            double const scale = std::ldexp(1.0, power);
            CurvePoint const scaled = NearestPoint(curve * scale, p * scale, 1e-6 * scale);
            ASSERT_EQ(scaled.t, found.t) << Text(curve) << Text(p) << power;
            ASSERT_EQ(scaled.distance, found.distance * scale);
        }
    }
}

TEST(NearestPoint, OfSpecialCurvesEndsAndIsNaNWithoutNumbers) {
    for (CBezier const& curve : SpecialCurves()) {
        for (Pt const& p : {Pt(0, 0), Pt(1e300, -kHuge), Pt(5e-324, 1), Pt(kNaN, 0), Pt(0, kInf)}) {
            for (double const accuracy : {0.0, 1.0, kInf, kNaN}) {
                CurvePoint const found = NearestPoint(curve, p, accuracy);
                bool const finite = IsFinite(curve) && IsFinite(p);
                ASSERT_EQ(std::isnan(found.t), !finite) << Text(curve) << Text(p);
                ASSERT_EQ(std::isnan(found.distance), !finite);
                ASSERT_TRUE(!finite || (found.t >= 0.0 && found.t <= 1.0));
            }
        }
    }
}

} // namespace
