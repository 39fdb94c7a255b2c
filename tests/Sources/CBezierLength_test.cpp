// SPDX-License-Identifier: MIT

// The length of a cubic, and parameters at fractions of it.

#include "CBezier.h"

#include "BezierSupport.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TestSupport.h"
#include "plain/Comparing.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using trammel_test::Bezier;
using trammel_test::Flattened;
using trammel_test::kArch;
using trammel_test::kNaN;
using trammel_test::kStraight;

typedef TPoint<double> Pt;

TEST_F(Bezier, LengthOfAStraightCurveIsTheDistanceOfItsEnds) {
    EXPECT_SAME(kStraight.Length(), 50.0);
    EXPECT_SAME(CBezier().Length(), 0.0);
}

TEST_F(Bezier, LengthIsThatOfAFlatteningAtAThousandthWhateverTheClassWideTolerance) {
    CBezier::mMaxError = 1000.0;
    double const length = kArch.Length();
    TPolygon<double> poly;
    kArch.Flatten(poly, 0.001);
    EXPECT_SAME(length, poly.Length());
    EXPECT_SAME(CBezier::mMaxError, 1000.0);
    EXPECT_NEAR(length, 200.0, 1e-2); // (|chord| 100 + |control polygon| 300) / 2, by symmetry
}

TEST_F(Bezier, LengthCountsAsFlattenDoes) {
    gCount = 77;
    CBezier::mCount = 0;
    kArch.Length();
    auto const invocations = gCount;
    auto const points = CBezier::mCount;
    Flattened(kArch, 0.001);
    EXPECT_EQ(gCount, invocations);
    EXPECT_EQ(CBezier::mCount, 2 * points);
    EXPECT_EQ(invocations, 2 * points + 1);
    // The fraction measures the left part first, the whole last.
    CBezier::mCount = 0;
    CBezier(kArch).TPercent(0.25);
    EXPECT_EQ(gCount, invocations);
    EXPECT_GT(CBezier::mCount, points);
}

TEST_F(Bezier, FractionsAtTheEndsAreExact) {
    CBezier c(kArch);
    EXPECT_SAME(c.PercentT(0.0), 0.0);
    EXPECT_SAME(c.PercentT(1.0), 1.0);
    EXPECT_SAME(c.TPercent(0.0), 0.0);
    EXPECT_SAME(c.TPercent(1.0), 1.0);
}

TEST_F(Bezier, HalfOfASymmetricCurveIsAHalf) {
    CBezier c(kArch);
    EXPECT_NEAR(c.TPercent(0.5), 0.5, 4 * 0x1p-53);
    EXPECT_NEAR(c.PercentT(0.5), 0.5, 0.001);
}

TEST_F(Bezier, FractionAndParameterAreInverseToTheTolerance) {
    CBezier c(Pt(0, 0), Pt(10, 300), Pt(100, 10), Pt(300, 100));
    for (int i = 1; i < 20; ++i) {
        EXPECT_NEAR(c.TPercent(c.PercentT(i / 20.0)), i / 20.0, 0.005);
    }
}

TEST_F(Bezier, FractionOfACurveWithoutLengthIsNaN) {
    CBezier point(Pt(3, 4), Pt(3, 4), Pt(3, 4), Pt(3, 4));
    EXPECT_TRUE(std::isnan(point.TPercent(0.5)));
    EXPECT_SAME(point.PercentT(0.5), 0.0); // every parameter ties
}

TEST_F(Bezier, ParameterIsNotLimitedToTheUnitInterval) {
    CBezier c(kArch);
    EXPECT_GT(c.TPercent(1.5), 1.0);
    EXPECT_GT(c.TPercent(-0.5), 0.0); // a length, backward or not
    EXPECT_SAME(c.PercentT(2.0), 1.0);
    EXPECT_SAME(c.PercentT(-3.0), 0.0);
    EXPECT_SAME(c.PercentT(kNaN), 1.0); // no edge reaches the target: the last point
}

} // namespace
