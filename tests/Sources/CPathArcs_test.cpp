// SPDX-License-Identifier: MIT

// Arcs and rounded rectangles.

#include "CPath.h"

#include "CBezier.h"
#include "PathSupport.h"
#include "ShortMemory.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"
#include "UTrigonometry.h"
#include "plain/Comparing.h"
#include "plain/PlainPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace {

using plain::StepUlps;
using trammel_test::kC;
using trammel_test::kInf;
using trammel_test::kL;
using trammel_test::kM;
using trammel_test::kNaN;
using trammel_test::kZ;
using trammel_test::Path;
using trammel_test::ShortMemory;
using trammel_test::Square;
using trammel_test::State;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
constexpr double kMax = std::numeric_limits<double>::max();

// ---------------------------------------------------------------------------------------------
// Arcs

TEST_F(Path, FractionIsFourThirdsOverOnePlusTheSecant) {
    CPath const path;
    EXPECT_SAME(path.GetFraction(Pt(0, 0), Pt(0, 0)), 1.3333333333333333 / 2.0);
    EXPECT_SAME(path.GetFraction(Pt(1, 1), Pt(4, 5)), 1.3333333333333333 / (std::sqrt(26.0) + 1.0));
    // Half-angle pi/4: the fraction times the tangent is the control arm of a quarter circle.
    EXPECT_NEAR(path.GetFraction(Pt(1, 0), Pt(1, 1)), 0.5522847498307936, 1e-15);
    EXPECT_SAME(path.GetFraction(Pt(kNaN, 0), Pt(1, 1)), kNaN);
    EXPECT_SAME(path.GetFraction(Pt(-kMax, 0), Pt(kMax, 1)), 0.0);
}

TEST_F(Path, QuarterTurnIsTwoCurves) {
    CPath path;
    path.Arc(Pt(0, 0), 100.0, 0.0, pi / 2.0);
    EXPECT_EQ(path.mCtls, (std::vector<char>{kM, kC, kC}));
    ASSERT_EQ(path.mPts.size(), 7U);
    EXPECT_SAME(path.mPts[0], Pt(100, 0));
    EXPECT_NEAR(path.mPts[3].h, 100.0 * std::sqrt(0.5), 1e-12);
    EXPECT_NEAR(path.mPts[3].v, 100.0 * std::sqrt(0.5), 1e-12);
    EXPECT_SAME(path.mPts[6], Pt(0, 100)); // the angle is exactly a quadrant's
    // The first control point is above the start, 4/3 tan(pi/16) radii away.
    EXPECT_NEAR(path.mPts[1].h, 100.0, 1e-12);
    EXPECT_NEAR(path.mPts[1].v, 100.0 * 4.0 / 3.0 * std::tan(pi / 16.0), 1e-12);
}

TEST_F(Path, ThreeQuartersAreFourCurves) {
    CPath path;
    path.Arc(Pt(0, 0), 100.0, 0.0, 3.0 * pi / 2.0);
    EXPECT_EQ(path.mCtls, (std::vector<char>{kM, kC, kC, kC, kC}));
    EXPECT_NEAR(path.CurrentPoint().h, 0.0, 1e-12);
    EXPECT_NEAR(path.CurrentPoint().v, -100.0, 1e-12);
}

TEST_F(Path, NegativeSweepTurnsTheOtherWay) {
    CPath path;
    path.Arc(Pt(0, 0), 100.0, 0.0, -pi / 2.0);
    EXPECT_EQ(path.mCtls, (std::vector<char>{kM, kC, kC}));
    EXPECT_SAME(path.CurrentPoint(), Pt(0, -100));
    EXPECT_LT(path.mPts[3].v, 0.0);
}

TEST_F(Path, SweepOfALittleLessThanAQuarterIsOneCurve) {
    CPath path;
    path.Arc(Pt(0, 0), 100.0, 0.0, StepUlps(pi / 2.0, -1));
    EXPECT_EQ(path.mCtls, (std::vector<char>{kM, kC}));
}

TEST_F(Path, NoSweepAddsTheStartOnly) {
    CPath path;
    path.Arc(Pt(10, 20), 5.0, 0.0, 0.0);
    EXPECT_EQ(Text(path), "M(15, 20) ");
    path.Arc(Pt(10, 20), 5.0, 0.0, 0.0); // the path ends there already
    EXPECT_EQ(Text(path), "M(15, 20) ");
    path.Arc(Pt(10, 20), 5.0, pi, -0.0);
    EXPECT_EQ(Text(path), "M(15, 20) L(5, 20) ");
}

TEST_F(Path, ArcOnAnOpenPathStartsWithALine) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.Arc(Pt(0, 0), 10.0, 0.0, 0.5);
    EXPECT_EQ(path.mCtls, (std::vector<char>{kM, kL, kC}));
    EXPECT_SAME(path.mPts[1], Pt(10, 0));
    path.Arc(Pt(0, 0), 10.0, 0.5, 0.5); // goes on where the first one ended
    EXPECT_EQ(path.mCtls, (std::vector<char>{kM, kL, kC, kC}));
}

TEST_F(Path, EllipseScalesBothDirectionsBeforeMoving) {
    CPath path;
    path.Arc(Pt(7, 9), 30.0, 20.0, 0.0, pi / 2.0);
    EXPECT_SAME(path.mPts[0], Pt(37, 9));
    EXPECT_SAME(path.CurrentPoint(), Pt(7, 29));
    CPath mirrored;
    mirrored.Arc(Pt(7, 9), -30.0, 20.0, 0.0, pi / 2.0);
    EXPECT_SAME(mirrored.mPts[0], Pt(-23, 9));
    EXPECT_SAME(mirrored.CurrentPoint(), Pt(7, 29));
}

TEST_F(Path, EqualRadiiGiveTheCircle) {
    CPath circle;
    circle.Arc(Pt(7, 9), 30.0, 0.3, 4.0);
    CPath ellipse;
    ellipse.Arc(Pt(7, 9), 30.0, 30.0, 0.3, 4.0);
    EXPECT_EQ(State(circle), State(ellipse));
}

TEST_F(Path, CurvesStayNearTheCircle) {
    for (double sweep : {StepUlps(pi / 2.0, -1), pi / 2.0}) {
        CPath path;
        path.Arc(Pt(0, 0), 1.0, 0.0, sweep);
        double worst = 0.0;
        for (std::size_t i = 1; i < path.mPts.size(); i += 3) {
            CBezier const curve(path.mPts[i - 1], path.mPts[i], path.mPts[i + 1], path.mPts[i + 2]);
            for (int k = 0; k <= 1000; ++k) {
                worst = std::max(worst, std::abs(curve.TPt(k / 1000.0).Length() - 1.0));
            }
        }
        EXPECT_LT(worst, path.mCtls.size() == 2 ? 2.73e-4 : 4.3e-6);
    }
}

TEST_F(Path, ArcOfAnUncountableSweepIsItsStart) {
    double const quarter = pi / 2.0;
    for (double sweep : {kNaN, kInf, -kInf, 1e308, -1e308, kMax, 2147483648.0 * quarter,
                         -2147483649.0 * quarter}) {
        CPath path;
        path.Arc(Pt(10, 20), 5.0, 7.0, 0.0, sweep);
        EXPECT_EQ(Text(path), "M(15, 20) ") << sweep;
        CPath open;
        open.MoveTo(Pt(0, 0));
        open.Arc(Pt(10, 20), 5.0, 0.0, sweep);
        EXPECT_EQ(Text(open), "M(0, 0) L(15, 20) ") << sweep;
    }
}

TEST_F(Path, ArcBeyondMemoryLeavesThePathAsItWas) {
    double const quarter = pi / 2.0;
    for (double sweep :
         {2147483647.0 * quarter, -2147483648.0 * quarter, 1e9 * quarter, -1e8 * quarter}) {
        CPath path = Square();
        path.MoveTo(Pt(3, 3));
        std::string const before = State(path);
        {
            ShortMemory const memory(100);
            EXPECT_THROW(path.Arc(Pt(10, 20), 5.0, 7.0, 0.0, sweep), std::bad_alloc);
            EXPECT_THROW(path.Arc(Pt(10, 20), 5.0, 0.0, sweep), std::bad_alloc);
        }
        EXPECT_EQ(State(path), before) << sweep;
    }
}

TEST_F(Path, ArcMayBeCentredOnThePathsOwnPoint) {
    CPath path = Square();
    CPath expected = Square();
    expected.Arc(Pt(10, 10), 5.0, 0.0, 20.0);
    path.Arc(path.mPts[2], 5.0, 0.0, 20.0);
    EXPECT_EQ(State(path), State(expected));
    path.Arc(path.mCurrentPt, 5.0, 2.0, 0.0, 20.0);
    expected.Arc(Pt(expected.mCurrentPt), 5.0, 2.0, 0.0, 20.0);
    EXPECT_EQ(State(path), State(expected));
}

TEST_F(Path, ArcOfSpecialValuesEnds) {
    for (double x : {kNaN, kInf, -kInf, kMax, -kMax, 0.0, -0.0, 1e-320}) {
        CPath path;
        path.Arc(Pt(x, 0), 5.0, 0.0, 3.0);
        path.Arc(Pt(0, 0), x, 0.0, 3.0);
        path.Arc(Pt(0, 0), 5.0, x, 0.0, 3.0);
        path.Arc(Pt(0, 0), 5.0, x, 3.0);
        plain::Path same;
        same.Arc(Pt(x, 0), 5.0, 5.0, 0.0, 3.0);
        same.Arc(Pt(0, 0), x, x, 0.0, 3.0);
        same.Arc(Pt(0, 0), 5.0, x, 0.0, 3.0);
        same.Arc(Pt(0, 0), 5.0, 5.0, x, 3.0);
        EXPECT_EQ(State(path), State(same)) << x;
    }
}

// ---------------------------------------------------------------------------------------------
// Rounded rectangles

TEST_F(Path, RoundedRectangleRunsFromTheTopEdgeToTheRight) {
    CPath path;
    path.RRect(Box(10, 20, 110, 70), 20.0);
    EXPECT_EQ(State(path), "M(20, 20) L(100, 20) C(100, 20)(110, 20)(110, 30) "
                           "L(110, 60) C(110, 60)(110, 70)(100, 70) "
                           "L(20, 70) C(20, 70)(10, 70)(10, 60) "
                           "L(10, 30) C(10, 30)(10, 20)(20, 20) "
                           "Z at (20, 20) not open [10, 20, 110, 70]");
}

TEST_F(Path, CornersAreLimitedToTheShorterSide) {
    CPath path;
    path.RRect(Box(0, 0, 100, 50), 1000.0);
    CPath half;
    half.RRect(Box(0, 0, 100, 50), 50.0);
    EXPECT_EQ(State(path), State(half));
    // Half-side corners: the vertical lines have no length.
    EXPECT_EQ(path.mCtls, (std::vector<char>{kM, kL, kC, kC, kL, kC, kC, kZ}));
}

TEST_F(Path, CornersOfSizeZeroLeaveAPlainRectangle) {
    CPath path;
    path.RRect(Box(1, 2, 11, 12), 0.0);
    EXPECT_EQ(Text(path), "M(1, 2) L(11, 2) L(11, 12) L(1, 12) L(1, 2) Z ");
}

TEST_F(Path, RoundedRectangleIsAppended) {
    CPath path;
    path.MoveTo(Pt(500, 500));
    path.LineTo(Pt(600, 500));
    path.RRect(Box(1, 2, 11, 12), 0.0);
    EXPECT_EQ(Text(path), "M(500, 500) L(600, 500) M(1, 2) L(11, 2) L(11, 12) L(1, 12) L(1, 2) Z ");
    CPath self;
    self.RRect(Box(1, 2, 11, 12), 4.0);
    CPath expected(self);
    expected.RRect(Box(self.mBounds), 4.0);
    self.RRect(self.mBounds, 4.0);
    EXPECT_EQ(State(self), State(expected));
}

} // namespace
