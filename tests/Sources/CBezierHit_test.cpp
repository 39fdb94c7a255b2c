// SPDX-License-Identifier: MIT

// Which points and rectangles a cubic meets.

#include "CBezier.h"

#include "BezierSupport.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"
#include "plain/Comparing.h"

#include <gtest/gtest.h>

namespace {

using plain::Random;
using plain::StepUlps;
using trammel_test::Bezier;
using trammel_test::kArch;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::kStraight;
using trammel_test::Plain;

typedef TPoint<double> Pt;
typedef TRect<double> Box;

TEST_F(Bezier, HitTestRejectsOutsideTheGrownBoxWithoutGenerating) {
    CBezier::mCount = 0;
    gCount = 0;
    EXPECT_FALSE(kArch.HitTest(Pt(50, StepUlps(102.0, 1)), 2.0));
    EXPECT_FALSE(kArch.HitTest(Pt(-3, 50), 2.0));
    EXPECT_FALSE(kArch.HitTest(Pt(kNaN, 50), 2.0));
    EXPECT_FALSE(kArch.HitTest(Pt(50, 75), kNaN));
    EXPECT_FALSE(kArch.HitTest(Pt(50, 75), -60.0));
    EXPECT_EQ(gCount, 0);
    EXPECT_EQ(CBezier::mCount, 0);
}

TEST_F(Bezier, HitTestFindsPointsWithinTheTolerance) {
    EXPECT_TRUE(kArch.HitTest(Pt(50, 75), 0.0));
    EXPECT_TRUE(kArch.HitTest(Pt(50, 77), 2.0));
    EXPECT_FALSE(kArch.HitTest(Pt(50, 60), 2.0));
    EXPECT_FALSE(kArch.HitTest(Pt(50, 90), 2.0)); // in the box, off the curve
    EXPECT_TRUE(kArch.HitTest(Pt(0, 0), 0.0));
    EXPECT_TRUE(kArch.HitTest(Pt(100, 0), 0.0));
    EXPECT_TRUE(kArch.HitTest(Pt(50, 50), kInf) == Plain(kArch).HitTest(Pt(50, 50), kInf));
}

TEST_F(Bezier, HitTestFlattensByTheClassWideTolerance) {
    CBezier::mMaxError = 1000.0; // the chain is (0, 0), (50, 75), (100, 0)
    CBezier::mCount = 0;
    EXPECT_TRUE(kArch.HitTest(Pt(20, 30), 0.0));
    EXPECT_FALSE(kArch.HitTest(kArch.TPt(0.25), 1.0));
    EXPECT_EQ(CBezier::mCount, 2);
    CBezier::mMaxError = 0.01;
    EXPECT_FALSE(kArch.HitTest(Pt(20, 30), 1.0));
    EXPECT_TRUE(kArch.HitTest(kArch.TPt(0.25), 1.0));
}

TEST_F(Bezier, HitTestGeneratesOnAfterAHit) {
    CBezier::mMaxError = 0.01;
    CBezier::mCount = 0;
    EXPECT_TRUE(kArch.HitTest(Pt(0, 0), 1.0));
    auto const early = CBezier::mCount;
    CBezier::mCount = 0;
    EXPECT_TRUE(kArch.HitTest(Pt(100, 0), 1.0));
    EXPECT_EQ(CBezier::mCount, early);
    EXPECT_GT(early, 10);
}

TEST_F(Bezier, HitTestOfAStraightCurveIsTheSegmentTest) {
    TLine<double> const segment(Pt(0, 0), Pt(30, 40));
    Random random(3);
    CBezier::mCount = 0;
    for (int i = 0; i < 1000; ++i) {
        Pt const p = random.Pt(-10, 50);
        EXPECT_EQ(kStraight.HitTest(p, 2.0), segment.HitTest(p, 2.0)) << p.h << ", " << p.v;
    }
    EXPECT_EQ(CBezier::mCount, 0);
}

TEST_F(Bezier, HitTestPtDoesNothingAfterAHit) {
    CBezier::HitInfoRec rec;
    rec.hit = false;
    rec.tolerance = 1.0;
    rec.testPt = Pt(5, 0);
    rec.lastPt = Pt(0, 10);
    CBezier::HitTestPt(Pt(0, 0), rec);
    EXPECT_FALSE(rec.hit);
    EXPECT_SAME(rec.lastPt, Pt(0, 0));
    CBezier::HitTestPt(Pt(10, 0), rec);
    EXPECT_TRUE(rec.hit);
    EXPECT_SAME(rec.lastPt, Pt(10, 0));
    CBezier::HitTestPt(Pt(10, 90), rec);
    EXPECT_TRUE(rec.hit);
    EXPECT_SAME(rec.lastPt, Pt(10, 0));
}

TEST_F(Bezier, AccumulatorsBeginWithNullPointsAndRectangle) {
    CBezier::HitInfoRec const hit;
    EXPECT_SAME(hit.testPt, Pt(0, 0));
    EXPECT_SAME(hit.lastPt, Pt(0, 0));
    CBezier::IntersectInfoRec const intersect;
    EXPECT_TRUE(intersect.rect.Null());
}

TEST_F(Bezier, ContainsPtDoesNothingAfterAHit) {
    CBezier::IntersectInfoRec rec;
    rec.hit = false;
    rec.rect = Box(0, 0, 10, 10);
    CBezier::ContainsPt(Pt(11, 0), rec);
    EXPECT_FALSE(rec.hit);
    CBezier::ContainsPt(Pt(10, 10), rec); // edges inclusive
    EXPECT_TRUE(rec.hit);
    CBezier::ContainsPt(Pt(11, 0), rec);
    EXPECT_TRUE(rec.hit);
}

TEST_F(Bezier, IntersectsWhenAGeneratedPointOrAnEndLiesInTheRectangle) {
    CBezier c(kArch);
    EXPECT_TRUE(c.Intersects(Box(45, 70, 55, 80)));
    EXPECT_TRUE(c.Intersects(Box(50, 75, 50, 75)));
    EXPECT_TRUE(c.Intersects(Box(-10, -10, 0, 0)));
    EXPECT_TRUE(c.Intersects(Box(100, -10, 110, 0)));
    EXPECT_FALSE(c.Intersects(Box(40, 10, 60, 30)));
}

TEST_F(Bezier, IntersectsRejectsByTheBoxWithoutGenerating) {
    CBezier c(kArch);
    CBezier::mCount = 0;
    gCount = 0;
    EXPECT_FALSE(c.Intersects(Box(101, 0, 110, 10)));
    EXPECT_EQ(gCount, 0);
    EXPECT_EQ(CBezier::mCount, 0);
}

TEST_F(Bezier, IntersectsOverlooksACrossingBetweenTwoPoints) {
    CBezier::mMaxError = 1000.0; // the points are (0, 0), (50, 75) and (100, 0)
    CBezier c(kArch);
    Pt const on = c.TPt(0.25);
    Box const thin(on.h - 0.5, on.v - 20, on.h + 0.5, on.v + 20);
    EXPECT_TRUE(thin.Contains(on));
    EXPECT_FALSE(c.Intersects(thin));
    CBezier::mMaxError = 0.001;
    EXPECT_TRUE(c.Intersects(thin));
}

TEST_F(Bezier, IntersectsOfAStraightCurveTestsItsEndsOnly) {
    CBezier c(kStraight);
    EXPECT_TRUE(c.Intersects(Box(-1, -1, 1, 1)));
    EXPECT_TRUE(c.Intersects(Box(29, 39, 31, 41)));
    EXPECT_FALSE(c.Intersects(Box(14, 19, 16, 21)));
}

} // namespace
