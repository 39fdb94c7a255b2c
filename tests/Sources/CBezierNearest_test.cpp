// SPDX-License-Identifier: MIT

// The parameter of the point of a cubic that is nearest to a given one.

#include "CBezier.h"

#include "BezierSupport.h"
#include "TPoint.h"
#include "TestSupport.h"
#include "plain/Comparing.h"
#include "plain/PlainBezier.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace {

using plain::StepUlps;
using trammel_test::Bezier;
using trammel_test::kArch;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Plain;
using trammel_test::SameCurve;

typedef TPoint<double> Pt;
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

TEST_F(Bezier, NearestParameterOfTheEndsIsExact) {
    EXPECT_SAME(kArch.FindTValue(kArch.P0, 0.001, 0.0, 1.0), 0.0);
    EXPECT_SAME(kArch.FindTValue(kArch.P3, 0.001, 0.0, 1.0), 1.0);
    CBezier const point(Pt(5, 5), Pt(5, 5), Pt(5, 5), Pt(5, 5));
    EXPECT_SAME(point.FindTValue(Pt(9, 9), 0.001, 0.0, 1.0), 0.0); // all tie: the first end
    EXPECT_SAME(point.FindTValue(Pt(9, 9), 0.001, 0.25, 0.75), 0.25);
    CBezier const loop(Pt(0, 0), Pt(50, 100), Pt(-50, 100), Pt(0, 0));
    EXPECT_SAME(loop.FindTValue(Pt(0, 0), 0.001, 0.0, 1.0), 0.0);
}

TEST_F(Bezier, NearestParameterFarOffTheMiddleIsNearTheMiddle) {
    for (double tolerance : {0.1, 0.01, 0.001, 1e-6}) {
        EXPECT_NEAR(kArch.FindTValue(Pt(50, 1e6), tolerance, 0.0, 1.0), 0.5, tolerance);
    }
}

TEST_F(Bezier, NearestParameterOfAPointOnTheCurveIsFoundToTheTolerance) {
    for (int i = 1; i < 100; ++i) {
        double const t = i / 100.0;
        EXPECT_NEAR(kArch.FindTValue(kArch.TPt(t), 1e-5, 0.0, 1.0), t, 1e-4);
    }
}

TEST_F(Bezier, RangeOnOneSideOfTheMiddleSearchesThatHalf) {
    EXPECT_SAME(kArch.FindTValue(Pt(110, 80), 0.001, 0.0, 0.25), 0.25);
    EXPECT_SAME(kArch.FindTValue(Pt(-10, 80), 0.001, 0.75, 1.0), 0.75);
    EXPECT_SAME(kArch.FindTValue(Pt(100, 0), 0.001, 0.5, 1.0), 1.0);
}

TEST_F(Bezier, NearestParameterWithNaNFollowsTheSteps) {
    // No distance compares: the start value for the best of a NaN point is the left half's answer.
    double const t = kArch.FindTValue(Pt(kNaN, 0), 0.001, 0.0, 1.0);
    EXPECT_SAME(t, Plain(kArch).FindTValue(Pt(kNaN, 0), 0.001, 0.0, 1.0));
    EXPECT_GT(t, 0.49); // NaN sides continue to the right
    EXPECT_LE(t, 0.5);
    EXPECT_SAME(kArch.FindTValue(Pt(0, 0), kNaN, 0.0, 1.0),
                Plain(kArch).FindTValue(Pt(0, 0), kNaN, 0.0, 1.0));
    EXPECT_SAME(kArch.FindTValue(Pt(0, 0), 0.001, kNaN, kNaN), 0.5); // no half overlaps the range
}

TEST_F(Bezier, BisectionDoesNotChangeTheCurve) {
    CBezier c(kArch);
    c.FindDividedTValue(Pt(10, 10), 0.001, 0.0, 1.0);
    EXPECT_TRUE(SameCurve(c, kArch));
}

TEST_F(Bezier, BisectionTakesAtLeastOneStep) {
    CBezier c(kArch);
    EXPECT_SAME(c.FindDividedTValue(Pt(10, 10), 5.0, 0.0, 1.0), 0.5);
    EXPECT_SAME(c.FindDividedTValue(Pt(10, 10), kInf, 0.0, 1.0), 0.5);
    EXPECT_SAME(c.FindDividedTValue(Pt(10, 10), kNaN, 0.0, 1.0), 0.5);
    EXPECT_SAME(c.FindDividedTValue(Pt(10, 10), 0.001, 1.0, 0.0), 0.5);
    EXPECT_SAME(c.FindDividedTValue(Pt(10, 10), 0.001, 0.25, 0.25), 0.25);
}

TEST_F(Bezier, BisectionStopsStrictlyAtTheTolerance) {
    // After the first step hi - lo is 0.5: with that tolerance there is no second.
    CBezier c(kArch);
    EXPECT_SAME(c.FindDividedTValue(Pt(0, 0), 0.5, 0.0, 1.0), 0.5);
    EXPECT_SAME(c.FindDividedTValue(Pt(-10, 0), StepUlps(0.5, -1), 0.0, 1.0), 0.25);
    EXPECT_SAME(c.FindDividedTValue(Pt(110, 0), StepUlps(0.5, -1), 0.0, 1.0), 0.75);
}

TEST_F(Bezier, BisectionOfAPartialRangeStillHalvesTheWholeCurve) {
    CBezier c(kArch);
    // The point is near the end of the curve, so the answer goes to the upper end of any range.
    double const t = c.FindDividedTValue(Pt(200, -100), 0.001, 0.0, 0.5);
    EXPECT_GT(t, 0.499);
    EXPECT_LE(t, 0.5);
}

TEST_F(Bezier, BisectionEndsOnEveryRangeAndTolerance) {
    std::array<double, 12> const values = {0.0,  0.3,   1.0,  -1.0,  kInf,  -kInf,
                                           kNaN, kTiny, kMax, -kMax, 1e-17, -1e-17};
    CBezier c(kArch);
    plain::Bezier const same = Plain(kArch);
    for (Pt const& pt : {Pt(10, 10), Pt(50, 75), Pt(-1e300, 3), Pt(kNaN, 0)}) {
        for (double tolerance : values) {
            for (double lo : values) {
                for (double hi : values) {
                    double const t = c.FindDividedTValue(pt, tolerance, lo, hi);
                    bool ended = false;
                    double const unsettled =
                        same.FindDividedTValueUnsettled(pt, tolerance, lo, hi, 2500, ended);
                    if (ended) {
                        EXPECT_SAME(t, unsettled) << tolerance << " " << lo << " " << hi;
                    }
                    EXPECT_SAME(t, same.FindDividedTValue(pt, tolerance, lo, hi))
                        << tolerance << " " << lo << " " << hi;
                }
            }
        }
    }
}

} // namespace
