// SPDX-License-Identifier: MIT

#include "CPath.h"

#include "CBezier.h"
#include "CMatrix3x3.h"
#include "Handles.h"
#include "ShortMemory.h"
#include "TLine.h"
#include "TPoly.h"
#include "UTrigonometry.h"
#include "plain/Comparing.h"
#include "plain/PlainPath.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using plain::Random;
using plain::RandomFraction;
using plain::SameBits;
using plain::StepUlps;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::ShortMemory;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef std::vector<Pt> Points;

constexpr double kMax = std::numeric_limits<double>::max();
constexpr char kM = 0;
constexpr char kL = 1;
constexpr char kC = 2;
constexpr char kZ = 3;

/// The path as text: codes with their points, the current point, whether open, the cached bounds.
std::string Text(CPath const& path) {
    std::string text;
    std::size_t at = 0;
    for (char const code : path.mCtls) {
        std::size_t const count = code == kM || code == kL ? 1 : code == kC ? 3 : 0;
        text += code == kM   ? "M"
                : code == kL ? "L"
                : code == kC ? "C"
                : code == kZ ? "Z"
                             : "<" + std::to_string(code) + ">";
        for (std::size_t i = 0; i < count && at < path.mPts.size(); ++i) {
            text += Text(path.mPts[at++]);
        }
        text += " ";
    }
    for (; at < path.mPts.size(); ++at) {
        text += "+" + Text(path.mPts[at]) + " ";
    }
    return text;
}

std::string State(CPath const& path) {
    return Text(path) + "at " + Text(path.mCurrentPt) + (path.mOpen ? " open " : " not open ") +
           Text(path.mBounds);
}

CPath LibraryPath(plain::Path const& path) {
    CPath out;
    out.mCtls = path.codes;
    out.mPts = path.pts;
    out.mCurrentPt = path.current;
    out.mOpen = path.open;
    out.mBounds = path.bounds;
    return out;
}

plain::Path PlainPath(CPath const& path) {
    plain::Path out;
    out.codes = path.mCtls;
    out.pts = path.mPts;
    out.current = path.mCurrentPt;
    out.open = path.mOpen;
    out.bounds = path.mBounds;
    return out;
}

std::string State(plain::Path const& path) { return State(LibraryPath(path)); }

/// Restores the curves' settings, which the plain forms model with their own.
class Path : public ::testing::Test {
protected:
    void SetUp() override {
        plain::state = plain::State();
        plain::state.recursionLimit = CBezier::mRecursionLimit;
        mLimit = CBezier::mRecursionLimit;
        mMaxError = CBezier::mMaxError;
    }
    void TearDown() override {
        EXPECT_EQ(CBezier::mMaxError, mMaxError); // measuring puts the tolerance back
        CBezier::mRecursionLimit = mLimit;
        plain::state = plain::State();
    }

private:
    std::int16_t mLimit = 0;
    double mMaxError = 0.0;
};

/// (0, 0), (10, 0), (10, 10), (0, 10), closed: 40 long.
CPath Square() {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.LineTo(Pt(10, 0));
    path.LineTo(Pt(10, 10));
    path.LineTo(Pt(0, 10));
    path.ClosePath();
    return path;
}

// ---------------------------------------------------------------------------------------------
// The model

TEST_F(Path, NewPathIsEmptyAndNotOpen) {
    CPath const path;
    EXPECT_TRUE(path.mCtls.empty());
    EXPECT_TRUE(path.mPts.empty());
    EXPECT_FALSE(path.mOpen);
    EXPECT_SAME(path.mCurrentPt, Pt(0, 0));
    EXPECT_SAME(path.CurrentPoint(), Pt(0, 0));
    EXPECT_TRUE(path.mBounds.Null());
    EXPECT_EQ(path.size(), 0U);
}

TEST_F(Path, CodesAndSelectorsHaveTheirNumbers) {
    EXPECT_EQ(static_cast<int>(kPathMove), 0);
    EXPECT_EQ(static_cast<int>(kPathLine), 1);
    EXPECT_EQ(static_cast<int>(kPathCurve), 2);
    EXPECT_EQ(static_cast<int>(kPathClose), 3);
    EXPECT_EQ(static_cast<int>(CPath::kContainsClose), 0);
    EXPECT_EQ(static_cast<int>(CPath::kContainsLines), 1);
    EXPECT_EQ(static_cast<int>(CPath::kContainsCurves), 2);
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<CPath::ContentAttributes>, std::int32_t>));
    EXPECT_FALSE(std::is_polymorphic_v<CPath>);
}

TEST_F(Path, SizeCountsBytes) {
    CPath path;
    path.MoveTo(Pt(1, 2));
    path.LineTo(Pt(3, 4));
    EXPECT_EQ(path.size(), 2U + 2U * 16U);
    path.CurveTo(Pt(1, 1), Pt(2, 2), Pt(5, 5));
    path.ClosePath();
    EXPECT_EQ(path.size(), 4U + 5U * 16U);
    EXPECT_TRUE((std::is_same_v<decltype(path.size()), unsigned long>));
}

TEST_F(Path, CopiesTakeAllFiveFields) {
    CPath path = Square();
    path.MoveTo(Pt(70, 80));
    path.MoveTo(Pt(1, 1)); // the bounds are larger than the points now
    CPath const copy(path);
    EXPECT_EQ(State(copy), State(path));
    CPath assigned;
    assigned.LineTo(Pt(5, 5));
    EXPECT_EQ(&(assigned = path), &assigned);
    EXPECT_EQ(State(assigned), State(path));
}

TEST_F(Path, SelfAssignmentDoesNothing) {
    CPath path = Square();
    std::string const before = State(path);
    Pt const* const points = path.mPts.data();
    CPath const& self = path;
    path = self;
    EXPECT_EQ(State(path), before);
    EXPECT_EQ(path.mPts.data(), points);
}

TEST_F(Path, MoveTakesTheElements) {
    CPath path = Square();
    std::string const before = State(path);
    CPath moved(std::move(path));
    EXPECT_EQ(State(moved), before);
    CPath assigned;
    assigned = std::move(moved);
    EXPECT_EQ(State(assigned), before);
}

TEST_F(Path, ClearForgetsEverything) {
    CPath path = Square();
    path.MoveTo(Pt(7, 7));
    path.clear();
    EXPECT_EQ(State(path), State(CPath()));
}

TEST_F(Path, AddCtlAppendsACodeAndNothingElse) {
    CPath path;
    path.AddCtl(kZ);
    path.AddCtl(77);
    EXPECT_EQ(State(path), "Z <77> at (0, 0) not open [0, 0, 0, 0]");
}

TEST_F(Path, AddPtAppendsAPointAndGrowsTheBounds) {
    CPath path;
    path.AddPt(Pt(3, 4));
    path.AddPt(Pt(1, 9));
    EXPECT_EQ(State(path), "+(3, 4) +(1, 9) at (1, 9) not open [1, 4, 3, 9]");
}

// ---------------------------------------------------------------------------------------------
// Moves, lines, curves and closes

TEST_F(Path, FirstLineIsAMoveAndARepeatedPointNothing) {
    CPath path;
    path.LineTo(Pt(3, 4));
    EXPECT_EQ(State(path), "M(3, 4) at (3, 4) open [3, 4, 3, 4]");
    path.LineTo(Pt(3, 4));
    EXPECT_EQ(State(path), "M(3, 4) at (3, 4) open [3, 4, 3, 4]");
    path.LineTo(Pt(5, 4));
    EXPECT_EQ(State(path), "M(3, 4) L(5, 4) at (5, 4) open [3, 4, 5, 4]");
}

TEST_F(Path, MoveReplacesAMoveAndTheBoundsKeepIt) {
    CPath path;
    path.MoveTo(Pt(1, 2));
    path.MoveTo(Pt(30, 40));
    EXPECT_EQ(State(path), "M(30, 40) at (30, 40) open [1, 2, 30, 40]");
    EXPECT_SAME(path.Bounds(), Box(1, 2, 30, 40));
}

TEST_F(Path, MoveToTheCurrentPointIsAppended) {
    CPath path;
    path.MoveTo(Pt(1, 2));
    path.LineTo(Pt(3, 4));
    path.MoveTo(Pt(3, 4));
    EXPECT_EQ(Text(path), "M(1, 2) L(3, 4) M(3, 4) ");
}

TEST_F(Path, LineToTheOriginOnANewPathIsAMove) {
    CPath path;
    path.LineTo(Pt(0, 0)); // equal to the current point of an empty path
    EXPECT_EQ(Text(path), "M(0, 0) ");
}

TEST_F(Path, CurveNeedsNoMoveAndOpensNothing) {
    CPath path;
    path.CurveTo(Pt(1, 2), Pt(3, 4), Pt(5, 6));
    EXPECT_EQ(State(path), "C(1, 2)(3, 4)(5, 6) at (5, 6) not open [1, 2, 5, 6]");
    path.CurveTo(Pt(1, 2), Pt(3, 4), Pt(5, 6)); // ends at the current point, but nothing is open
    EXPECT_EQ(Text(path), "C(1, 2)(3, 4)(5, 6) C(1, 2)(3, 4)(5, 6) ");
    path.LineTo(Pt(7, 8));
    EXPECT_EQ(Text(path), "C(1, 2)(3, 4)(5, 6) C(1, 2)(3, 4)(5, 6) M(7, 8) ");

    CPath closed = Square();
    closed.CurveTo(Pt(1, 2), Pt(3, 4), Pt(5, 6));
    EXPECT_FALSE(closed.mOpen);
    EXPECT_EQ(closed.mCtls, (std::vector<char>{kM, kL, kL, kL, kZ, kC}));
}

TEST_F(Path, CurveThatReturnsToTheCurrentPointIsDropped) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.CurveTo(Pt(50, 0), Pt(0, 50), Pt(1, 1));
    EXPECT_EQ(State(path), "M(1, 1) at (1, 1) open [1, 1, 1, 1]");
    path.CurveTo(Pt(50, 0), Pt(0, 50), Pt(1, 2));
    EXPECT_EQ(State(path), "M(1, 1) C(50, 0)(0, 50)(1, 2) at (1, 2) open [0, 0, 50, 50]");
}

TEST_F(Path, CloseIsRecordedOnceAndOnlyWhenOpen) {
    CPath path;
    path.ClosePath();
    EXPECT_EQ(Text(path), "");
    path.MoveTo(Pt(1, 1));
    path.LineTo(Pt(2, 2));
    path.ClosePath();
    path.ClosePath();
    EXPECT_EQ(State(path), "M(1, 1) L(2, 2) Z at (2, 2) not open [1, 1, 2, 2]");
    path.LineTo(Pt(2, 2)); // the same point, but a new subpath
    EXPECT_EQ(Text(path), "M(1, 1) L(2, 2) Z M(2, 2) ");
}

TEST_F(Path, NaNDiffersFromEveryPoint) {
    CPath path;
    path.MoveTo(Pt(kNaN, 0));
    path.LineTo(Pt(kNaN, 0));
    path.CurveTo(Pt(), Pt(), Pt(kNaN, 0));
    EXPECT_EQ(path.mCtls, (std::vector<char>{kM, kL, kC}));
}

TEST_F(Path, BoundsForgetALeadingOrigin) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.LineTo(Pt(5, 6));
    path.LineTo(Pt(7, 8));
    EXPECT_SAME(path.mBounds, Box(5, 6, 7, 8));
    EXPECT_SAME(path.Bounds(), Box(5, 6, 7, 8));
}

TEST_F(Path, ElementsMayBeGivenByThePathsOwnPoints) {
    CPath path;
    path.MoveTo(Pt(1, 2));
    path.LineTo(Pt(3, 4));
    for (int i = 0; i < 100; ++i) { // across many reallocations
        path.LineTo(path.mPts.front());
        path.LineTo(path.mPts[1]);
        path.CurveTo(path.mPts[0], path.mPts[1], path.mPts[0]);
        path.AddCtl(kL);
        path.AddPt(path.mPts[1]);
        path.mPts.shrink_to_fit();
        path.mCtls.shrink_to_fit();
    }
    for (std::size_t i = 0; i < path.mPts.size(); ++i) {
        ASSERT_TRUE(SameBits(path.mPts[i], Pt(1, 2)) || SameBits(path.mPts[i], Pt(3, 4))) << i;
    }
    path.MoveTo(path.mPts[0]);
    path.MoveTo(path.mPts.back()); // the point that the second move removes
    EXPECT_SAME(path.mPts.back(), Pt(1, 2));
    path.LineTo(path.mCurrentPt);
    EXPECT_EQ(path.mCtls.back(), kM);
}

TEST_F(Path, AppendingManyElementsCostsTheirNumber) {
    // Doubling: the vectors move a number of times that grows like the logarithm.
    CPath path;
    int moves = 0;
    Pt const* data = nullptr;
    for (int i = 0; i < 100000; ++i) {
        path.LineTo(Pt(i, 1));
        moves += path.mPts.data() != data;
        data = path.mPts.data();
    }
    EXPECT_EQ(path.mPts.size(), 100000U);
    EXPECT_LE(moves, 40);
}

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
        EXPECT_LT(worst, path.mCtls.size() == 2 ? 2.8e-4 : 4.3e-6);
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

// ---------------------------------------------------------------------------------------------
// Bounds and transformation

TEST_F(Path, BoundsHoldControlPoints) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.CurveTo(Pt(50, -20), Pt(60, 90), Pt(2, 2));
    EXPECT_SAME(path.Bounds(), Box(1, -20, 60, 90));
}

TEST_F(Path, BoundsOfAnEmptyPathAreNull) { EXPECT_TRUE(CPath().Bounds().Null()); }

TEST_F(Path, NullBoundsAreRebuiltFromThePoints) {
    CPath path = Square();
    path.mBounds.SetNull();
    EXPECT_SAME(path.Bounds(), Box(0, 0, 10, 10));
    EXPECT_SAME(path.mBounds, Box(0, 0, 10, 10)); // kept
    path.mBounds = Box(1, 2, 3, 4);               // trusted when not null
    EXPECT_SAME(path.Bounds(), Box(1, 2, 3, 4));
    CPath origin;
    origin.MoveTo(Pt(0, 0));
    EXPECT_TRUE(origin.Bounds().Null());
    EXPECT_TRUE(origin.Bounds().Null());
}

TEST_F(Path, InvalBoundsBringsAMovedPointIntoTheBounds) {
    CPath path;
    path.MoveTo(Pt(1, 2));
    path.CurveTo(Pt(3, 4), Pt(5, 6), Pt(7, 8));
    path.mPts[1] = Pt(-30, 40);
    EXPECT_EQ(path.Bounds(), Box(1, 2, 7, 8));
    EXPECT_EQ(&path.InvalBounds(), &path);
    EXPECT_TRUE(path.mBounds.Null());
    EXPECT_EQ(path.Bounds(), Box(-30, 2, 7, 40));
    EXPECT_EQ(path.CurrentPoint(), Pt(7, 8));
}

TEST_F(Path, TransformMovesPointsAndBoundsButNotTheCurrentPoint) {
    CPath path;
    path.MoveTo(Pt(1, 1));
    path.LineTo(Pt(5, 2));
    path.CurveTo(Pt(1, 7), Pt(2, 8), Pt(3, 9));
    CMatrix3x3 move;
    move.Translate(100, 200);
    path.Transform(move);
    EXPECT_EQ(State(path), "M(101, 201) L(105, 202) C(101, 207)(102, 208)(103, 209) "
                           "at (3, 9) open [0, 0, 0, 0]");
    EXPECT_SAME(path.Bounds(), Box(101, 201, 105, 209));
    EXPECT_SAME(path.CurrentPoint(), Pt(3, 9));
    path.LineTo(Pt(3, 9)); // compared with the point before the transform: dropped
    EXPECT_EQ(path.mCtls.back(), kC);
}

TEST_F(Path, TransformShrinksBoundsThatAReplacedMoveLeft) {
    CPath path;
    path.MoveTo(Pt(100, 100));
    path.MoveTo(Pt(1, 1));
    path.Transform(CMatrix3x3());
    EXPECT_SAME(path.Bounds(), Box(1, 1, 1, 1));
}

TEST_F(Path, TransformAppliesThePointOperation) {
    CMatrix3x3 const m(1.5, 0.25, -2.0, 3.0, 10.0, -20.0, 0);
    CPath path = Square();
    Points expected = path.mPts;
    for (Pt& p : expected) {
        p.Transform(m);
    }
    path.Transform(m);
    EXPECT_EQ(path.mPts, expected);
}

// ---------------------------------------------------------------------------------------------
// Length and points along the path

TEST_F(Path, LengthCountsTheClosingSegment) {
    EXPECT_SAME(Square().Length(), 40.0);
    CPath open = Square();
    open.mCtls.pop_back();
    EXPECT_SAME(open.Length(), 30.0);
    EXPECT_SAME(CPath().Length(), 0.0);
    CPath moves;
    moves.MoveTo(Pt(5, 5));
    EXPECT_SAME(moves.Length(), 0.0);
}

TEST_F(Path, LengthOfACurveIsTheCurves) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.CurveTo(Pt(0, 100), Pt(100, 100), Pt(100, 0));
    EXPECT_SAME(path.Length(), CBezier(Pt(0, 0), Pt(0, 100), Pt(100, 100), Pt(100, 0)).Length());
    path.LineTo(Pt(100, -50));
    path.ClosePath();
    EXPECT_SAME(path.Length(), CBezier(Pt(0, 0), Pt(0, 100), Pt(100, 100), Pt(100, 0)).Length() +
                                   50.0 + std::hypot(-100.0, 50.0));
}

TEST_F(Path, ElementsBeforeAnyMoveAreMeasuredFromTheOrigin) {
    CPath path;
    path.CurveTo(Pt(0, 0), Pt(30, 40), Pt(30, 40));
    EXPECT_SAME(path.Length(), 50.0);
    CPath line;
    line.AddCtl(kL);
    line.AddPt(Pt(3, 4));
    line.AddCtl(kZ);
    EXPECT_SAME(line.Length(), 10.0);
}

TEST_F(Path, ElementAfterACloseIsMeasuredFromTheLastPointDrawn) {
    CPath path = Square();
    path.CurveTo(Pt(0, 10), Pt(3, 14), Pt(3, 14)); // no move: from (0, 10), not from (0, 0)
    EXPECT_SAME(path.Length(), 45.0);
    CPath moved = Square();
    moved.MoveTo(Pt(100, 100)); // the gap has no length
    moved.LineTo(Pt(100, 107));
    EXPECT_SAME(moved.Length(), 47.0);
}

TEST_F(Path, PointsAlongTheSquare) {
    CPath const square = Square();
    EXPECT_SAME(square.TPt(0.0), Pt(0, 0));
    EXPECT_SAME(square.TPt(0.125), Pt(5, 0));
    EXPECT_SAME(square.TPt(0.25), Pt(10, 0));
    EXPECT_SAME(square.TPt(0.5), Pt(10, 10));
    EXPECT_SAME(square.TPt(0.875), Pt(0, 5));
    EXPECT_SAME(square.TPt(1.0), Pt(0, 0));
}

TEST_F(Path, PointBeyondTheEndIsTheStartOfTheLastSubpath) {
    CPath square = Square();
    EXPECT_SAME(square.TPt(1.5), Pt(0, 0));
    square.MoveTo(Pt(100, 100));
    square.LineTo(Pt(100, 110));
    EXPECT_SAME(square.TPt(1.0), Pt(100, 110));
    EXPECT_SAME(square.TPt(1.5), Pt(100, 100));
    EXPECT_SAME(square.TPt(kInf), Pt(100, 100));
    EXPECT_SAME(square.TPt(kNaN), Pt(100, 100));
    EXPECT_SAME(CPath().TPt(0.5), Pt(0, 0));
    CPath moves;
    moves.MoveTo(Pt(5, 6));
    EXPECT_SAME(moves.TPt(0.0), Pt(5, 6));
}

TEST_F(Path, PointBeforeTheStartLiesOnTheFirstSegmentExtended) {
    EXPECT_SAME(Square().TPt(-0.125), Pt(-5, 0));
    CPath curve;
    curve.MoveTo(Pt(1, 2));
    curve.CurveTo(Pt(5, 9), Pt(8, 1), Pt(30, 40));
    EXPECT_SAME(curve.TPt(-0.5), Pt(1, 2)); // nearest on the curve
    EXPECT_SAME(curve.TPt(0.0), Pt(1, 2));
    EXPECT_SAME(curve.TPt(1.0), Pt(30, 40));
}

TEST_F(Path, PointOnASegmentWithoutLengthIsNaN) {
    CPath path;
    path.AddCtl(kM);
    path.AddPt(Pt(5, 5));
    path.AddCtl(kL);
    path.AddPt(Pt(5, 5));
    path.AddCtl(kL);
    path.AddPt(Pt(8, 9));
    EXPECT_SAME(path.TPt(0.0), Pt(kNaN, kNaN));
    EXPECT_SAME(path.TPt(1.0), Pt(8, 9));
}

TEST_F(Path, EqualStepsAreEqualLengths) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.LineTo(Pt(50, 0));
    path.CurveTo(Pt(60, 80), Pt(150, 70), Pt(100, 0));
    path.LineTo(Pt(100, -60));
    double const length = path.Length();
    for (int i = 0; i < 20; ++i) {
        CPath piece;
        path.GetTRange(i / 20.0, (i + 1) / 20.0, piece);
        EXPECT_NEAR(piece.Length(), length / 20.0, 0.01 * length);
    }
}

// ---------------------------------------------------------------------------------------------
// Nearest fraction

TEST_F(Path, NearestFractionBesideTheSecondSide) {
    EXPECT_SAME(Square().FindTValue(Pt(12, 5)), 0.375);
    EXPECT_SAME(Square().FindTValue(Pt(-3, 5)), 0.875);
}

TEST_F(Path, LaterLineDoesNotWinATie) {
    EXPECT_SAME(Square().FindTValue(Pt(5, 5)), 0.125);
    EXPECT_SAME(Square().FindTValue(Pt(10, 10)), 0.5); // the end of the second side
}

TEST_F(Path, LaterCurveWinsATie) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.LineTo(Pt(30, 40));
    path.AddCtl(kC); // back the same way, as a straight curve
    path.AddPt(Pt(30, 40));
    path.AddPt(Pt(0, 0));
    path.AddPt(Pt(0, 0));
    EXPECT_SAME(path.Length(), 100.0);
    EXPECT_SAME(path.FindTValue(Pt(30, 40)), 0.5);
    EXPECT_SAME(path.FindTValue(Pt(0, 0)), 1.0); // both ends of the path: the curve's is later
}

TEST_F(Path, NearestFractionWithoutSegmentsIsZero) {
    EXPECT_SAME(CPath().FindTValue(Pt(1, 1)), 0.0);
    CPath moves;
    moves.MoveTo(Pt(5, 5));
    EXPECT_SAME(moves.FindTValue(Pt(1, 1)), 0.0);
}

TEST_F(Path, NearestFractionWithoutLengthIsNaN) {
    CPath path;
    path.MoveTo(Pt(5, 5));
    path.AddCtl(kC);
    path.AddPt(Pt(5, 5));
    path.AddPt(Pt(5, 5));
    path.AddPt(Pt(5, 5));
    EXPECT_SAME(path.FindTValue(Pt(1, 1)), kNaN);
}

TEST_F(Path, NearestFractionOfNaNIsZero) {
    EXPECT_SAME(Square().FindTValue(Pt(kNaN, kNaN)), 0.0); // no distance is smaller
}

TEST_F(Path, NearestFractionTakesThePathsOwnPoint) {
    CPath const square = Square();
    EXPECT_SAME(square.FindTValue(square.mPts[2]), 0.5);
}

TEST_F(Path, PointAndNearestFractionAreInverse) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.LineTo(Pt(50, 0));
    path.CurveTo(Pt(60, 80), Pt(150, 70), Pt(200, 0));
    for (int i = 1; i < 40; ++i) {
        EXPECT_NEAR(path.FindTValue(path.TPt(i / 40.0)), i / 40.0, 0.005);
    }
}

// ---------------------------------------------------------------------------------------------
// Pieces

TEST_F(Path, PieceOfTheSquareIsAMoveAndALine) {
    CPath out;
    Square().GetTRange(0.25, 0.5, out);
    EXPECT_EQ(State(out), "M(10, 0) L(10, 10) at (10, 10) open [10, 0, 10, 10]");
}

TEST_F(Path, PieceFollowsWhatTheOutputHolds) {
    CPath out;
    out.MoveTo(Pt(-5, -5));
    out.LineTo(Pt(-6, -5));
    out.MoveTo(Pt(77, 77)); // replaced by the piece's move
    Square().GetTRange(0.25, 0.5, out);
    EXPECT_EQ(Text(out), "M(-5, -5) L(-6, -5) M(10, 0) L(10, 10) ");
}

TEST_F(Path, WholeRangeOpensTheSquare) {
    CPath out;
    Square().GetTRange(0.0, 1.0, out);
    EXPECT_EQ(Text(out), "M(0, 0) L(10, 0) L(10, 10) L(0, 10) L(0, 0) ");
    EXPECT_TRUE(out.mOpen);
}

TEST_F(Path, PieceStartsAndEndsInsideSegments) {
    CPath out;
    Square().GetTRange(0.125, 0.375, out);
    EXPECT_EQ(Text(out), "M(5, 0) L(10, 0) L(10, 5) ");
}

TEST_F(Path, PieceAcrossAGapIsJoined) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.LineTo(Pt(10, 0));
    path.MoveTo(Pt(100, 0));
    path.LineTo(Pt(110, 0));
    CPath out;
    path.GetTRange(0.25, 0.75, out);
    EXPECT_EQ(Text(out), "M(5, 0) L(10, 0) L(105, 0) ");
}

TEST_F(Path, EmptyRangeIsAMove) {
    CPath out;
    Square().GetTRange(0.125, 0.125, out);
    EXPECT_EQ(Text(out), "M(5, 0) ");
    CPath none;
    CPath().GetTRange(0.0, 1.0, none);
    EXPECT_EQ(Text(none), "M(0, 0) ");
}

TEST_F(Path, PieceOfACurveIsTheSubCurve) {
    CBezier const curve(Pt(0, 0), Pt(0, 100), Pt(100, 100), Pt(100, 0));
    CPath path;
    path.MoveTo(curve.P0);
    path.CurveTo(curve.P1, curve.P2, curve.P3);
    CPath out;
    path.GetTRange(0.25, 0.75, out);
    CBezier mutableCurve(curve);
    double const length = curve.Length();
    CBezier piece;
    curve.GetTRange(mutableCurve.PercentT(0.25 * length / length),
                    mutableCurve.PercentT(0.75 * length / length), piece);
    ASSERT_EQ(out.mCtls, (std::vector<char>{kM, kC}));
    EXPECT_SAME(out.mPts[0], path.TPt(0.25));
    EXPECT_SAME(out.mPts[1], piece.P1);
    EXPECT_SAME(out.mPts[2], piece.P2);
    EXPECT_SAME(out.mPts[3], piece.P3);
    CPath whole;
    path.GetTRange(0.0, 1.0, whole);
    EXPECT_EQ(Text(whole), Text(path));
}

TEST_F(Path, LineAfterACurveThatEndsThePieceRunsToItsEnd) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.CurveTo(Pt(0, 100), Pt(100, 100), Pt(100, 0));
    path.LineTo(Pt(100, -200));
    CPath out;
    path.GetTRange(0.0, 0.25, out);
    // The end of the sub-curve and the point at 0.25 are the same up to the bisection's rounding;
    // where they differ in bits a short line is added, and the walk stops in any case.
    ASSERT_GE(out.mCtls.size(), 2U);
    ASSERT_LE(out.mCtls.size(), 3U);
    EXPECT_EQ(out.mCtls[1], kC);
    EXPECT_SAME(out.CurrentPoint(), path.TPt(0.25));
    plain::Path expected;
    PlainPath(path).GetTRange(0.0, 0.25, expected);
    EXPECT_EQ(State(out), State(expected));
}

TEST_F(Path, CurveAfterACurveThatEndsThePieceStopsIt) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.CurveTo(Pt(0, 100), Pt(100, 100), Pt(100, 0));
    path.CurveTo(Pt(100, -100), Pt(200, -100), Pt(200, 0));
    path.LineTo(Pt(300, 0));
    CPath out;
    path.GetTRange(0.0, 0.1, out);
    EXPECT_EQ(out.mCtls, (std::vector<char>{kM, kC}));
}

TEST_F(Path, PieceIsNeverClosed) {
    CPath out;
    Square().GetTRange(0.0, 2.0, out);
    EXPECT_FALSE(out.Closed());
}

TEST_F(Path, OutputMayBeThePathItself) {
    CPath path = Square();
    CPath expected = Square();
    Square().GetTRange(0.125, 0.375, expected);
    path.GetTRange(0.125, 0.375, path);
    EXPECT_EQ(State(path), State(expected));
}

TEST_F(Path, RemovingFromAClosedPathLeavesOneOpenPiece) {
    CPath a;
    CPath b;
    Square().RemoveTRange(0.25, 0.5, a, b);
    EXPECT_EQ(State(a), "M(10, 10) L(0, 10) L(0, 0) L(10, 0) at (10, 0) open [0, 0, 10, 10]");
    EXPECT_EQ(State(b), State(CPath()));
}

TEST_F(Path, RemovingFromAClosedPathAppendsToTheFirstAndEmptiesTheSecond) {
    CPath a;
    a.MoveTo(Pt(-1, -1));
    a.LineTo(Pt(-2, -1));
    CPath b;
    b.MoveTo(Pt(-7, -7));
    b.LineTo(Pt(-8, -7));
    Square().RemoveTRange(0.25, 0.5, a, b);
    // What the second held goes to the first with its piece.
    EXPECT_EQ(Text(a), "M(-1, -1) L(-2, -1) M(10, 10) L(0, 10) L(0, 0) L(-7, -7) L(-8, -7) "
                       "L(0, 0) L(10, 0) ");
    EXPECT_EQ(State(b), State(CPath()));
}

TEST_F(Path, RemovingFromAnOpenPathLeavesTwoPieces) {
    CPath path = Square();
    path.mCtls.pop_back(); // 30 long now
    CPath a;
    CPath b;
    path.RemoveTRange(0.5, 2.0 / 3.0, a, b);
    EXPECT_EQ(Text(a), "M(0, 0) L(10, 0) L(10, 5) ");
    EXPECT_EQ(b.mCtls.front(), kM);
    EXPECT_SAME(b.CurrentPoint(), Pt(0, 10));
}

TEST_F(Path, ReversedRangeKeepsThePieceBetween) {
    CPath a;
    CPath b;
    b.LineTo(Pt(4, 4));
    std::string const before = State(b);
    Square().RemoveTRange(0.5, 0.25, a, b);
    EXPECT_EQ(Text(a), "M(10, 0) L(10, 10) ");
    EXPECT_EQ(State(b), before);
}

TEST_F(Path, RemainderMayGoToThePathItselfOrTwiceToOnePath) {
    for (double t0 : {0.25, 0.5}) {
        for (bool closed : {true, false}) {
            CPath source = Square();
            if (!closed) {
                source.mCtls.pop_back();
            }
            double const t1 = t0 == 0.25 ? 0.5 : 0.25;
            CPath a(source);
            CPath b;
            source.RemoveTRange(t0, t1, a, b);
            CPath self(source);
            CPath selfB;
            self.RemoveTRange(t0, t1, self, selfB);
            EXPECT_EQ(State(self), State(a));
            EXPECT_EQ(State(selfB), State(b));

            CPath a2;
            CPath b2(source);
            source.RemoveTRange(t0, t1, a2, b2);
            CPath self2A;
            CPath self2(source);
            self2.RemoveTRange(t0, t1, self2A, self2);
            EXPECT_EQ(State(self2A), State(a2));
            EXPECT_EQ(State(self2), State(b2));

            plain::Path both;
            PlainPath(source).RemoveTRange(t0, t1, both, both);
            CPath bothOut;
            source.RemoveTRange(t0, t1, bothOut, bothOut);
            EXPECT_EQ(State(bothOut), State(both));
            EXPECT_TRUE(t1 < t0 || !closed || both.codes.empty()); // emptied as the second output
            CPath all(source);
            all.RemoveTRange(t0, t1, all, all);
            CPath twice(source);
            source.RemoveTRange(t0, t1, twice, twice);
            EXPECT_EQ(State(all), State(twice));
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Contents and joining

TEST_F(Path, ContentsTellClosesLinesAndCurves) {
    CPath path;
    auto const contents = [&path] {
        return std::array<bool, 4>{path.TestContents(CPath::kContainsClose),
                                   path.TestContents(CPath::kContainsLines),
                                   path.TestContents(CPath::kContainsCurves), path.Closed()};
    };
    EXPECT_EQ(contents(), (std::array<bool, 4>{false, false, false, false}));
    path.MoveTo(Pt(1, 1));
    EXPECT_EQ(contents(), (std::array<bool, 4>{false, false, false, false}));
    path.LineTo(Pt(2, 2));
    EXPECT_EQ(contents(), (std::array<bool, 4>{false, true, false, false}));
    path.CurveTo(Pt(2, 2), Pt(3, 3), Pt(4, 4));
    EXPECT_EQ(contents(), (std::array<bool, 4>{false, true, true, false}));
    path.ClosePath();
    path.MoveTo(Pt(9, 9)); // any subpath counts
    EXPECT_EQ(contents(), (std::array<bool, 4>{true, true, true, true}));
}

TEST_F(Path, OtherSelectorsGiveFalse) {
    CPath path = Square();
    path.CurveTo(Pt(2, 2), Pt(3, 3), Pt(4, 4));
    for (int selector : {3, 4, 100, -1, std::numeric_limits<int>::max()}) {
        EXPECT_FALSE(path.TestContents(static_cast<CPath::ContentAttributes>(selector)));
    }
}

TEST_F(Path, AppendOfAClosedTriangleToAnOpenLineIsOneOpenPath) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.LineTo(Pt(5, 0));
    CPath triangle;
    triangle.MoveTo(Pt(10, 0));
    triangle.LineTo(Pt(20, 0));
    triangle.LineTo(Pt(15, 9));
    triangle.ClosePath();
    path.Append(triangle);
    EXPECT_EQ(State(path), "M(0, 0) L(5, 0) L(10, 0) L(20, 0) L(15, 9) at (15, 9) open "
                           "[5, 0, 20, 9]");
}

TEST_F(Path, AppendRemovesClosesButDoesNotReopen) {
    CPath path = Square();
    CPath line;
    line.MoveTo(Pt(0, 10)); // the square's current point
    line.LineTo(Pt(-5, 10));
    path.Append(line);
    // The square had been closed, so the line starts a subpath, at the current point all the same.
    EXPECT_EQ(Text(path), "M(0, 0) L(10, 0) L(10, 10) L(0, 10) M(0, 10) L(-5, 10) ");
}

TEST_F(Path, AppendDropsRepeatedPointsAndChainsSubpaths) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.LineTo(Pt(5, 0));
    CPath other;
    other.MoveTo(Pt(5, 0));
    other.CurveTo(Pt(6, 1), Pt(7, 1), Pt(8, 0));
    other.MoveTo(Pt(20, 0));
    other.CurveTo(Pt(6, 1), Pt(7, 1), Pt(21, 0));
    path.Append(other);
    EXPECT_EQ(Text(path), "M(0, 0) L(5, 0) C(6, 1)(7, 1)(8, 0) L(20, 0) C(6, 1)(7, 1)(21, 0) ");
}

TEST_F(Path, AppendToAnEmptyPathStartsWithAMove) {
    CPath path;
    path.Append(Square());
    EXPECT_EQ(Text(path), "M(0, 0) L(10, 0) L(10, 10) L(0, 10) ");
    EXPECT_TRUE(path.mOpen);
    CPath lone;
    CPath curve;
    curve.CurveTo(Pt(1, 1), Pt(2, 2), Pt(3, 3));
    lone.Append(curve);
    EXPECT_EQ(State(lone), "C(1, 1)(2, 2)(3, 3) at (3, 3) not open [1, 1, 3, 3]");
    CPath closed = Square();
    closed.Append(CPath());
    EXPECT_FALSE(closed.Closed());
    EXPECT_FALSE(closed.mOpen);
}

TEST_F(Path, AppendToItselfAppendsACopy) {
    for (bool closed : {true, false}) {
        CPath path = Square();
        if (!closed) {
            path.mCtls.pop_back();
            path.mOpen = true;
        }
        CPath expected(path);
        expected.Append(CPath(path));
        path.Append(path);
        EXPECT_EQ(State(path), State(expected));
        EXPECT_EQ(path.mPts.size(), 8U);
    }
}

// ---------------------------------------------------------------------------------------------
// Memory

TEST_F(Path, BuildingLeavesThePathAsItWasWhenMemoryIsShort) {
    CPath other = Square();
    other.CurveTo(Pt(1, 1), Pt(2, 2), Pt(3, 3));
    std::vector<std::function<void(CPath&)>> const builders = {
        [](CPath& p) { p.MoveTo(Pt(50, 60)); },
        [](CPath& p) { p.LineTo(Pt(50, 60)); },
        [](CPath& p) { p.CurveTo(Pt(50, 60), Pt(70, 80), Pt(90, 99)); },
        [](CPath& p) { p.ClosePath(); },
        [](CPath& p) { p.AddCtl(9); },
        [](CPath& p) { p.AddPt(Pt(50, 60)); },
        [](CPath& p) { p.Arc(Pt(50, 60), 10.0, 20.0, 0.0, 10.0); },
        [](CPath& p) { p.Arc(Pt(50, 60), 10.0, 0.0, 10.0); },
        [](CPath& p) { p.RRect(Box(50, 60, 80, 90), 5.0); },
        [&other](CPath& p) { p.Append(other); },
        [](CPath& p) { p.Append(p); },
        [&other](CPath& p) { p = other; },
    };
    for (std::size_t i = 0; i < builders.size(); ++i) {
        for (int start = 0; start < 4; ++start) {
            bool done = false;
            int failures = 0;
            for (long allocations = 0; !done; ++allocations) {
                ASSERT_LT(allocations, 100);
                CPath path;
                if (start >= 1) {
                    path = Square();
                }
                if (start == 2) {
                    path.MoveTo(Pt(3, 3));
                } else if (start == 3) {
                    path.MoveTo(Pt(3, 3));
                    path.LineTo(Pt(4, 4));
                }
                path.mCtls.shrink_to_fit();
                path.mPts.shrink_to_fit();
                std::string const before = State(path);
                try {
                    ShortMemory const memory(allocations);
                    builders[i](path);
                    done = true;
                } catch (std::bad_alloc const&) {
                    ++failures;
                }
                if (!done) {
                    ASSERT_EQ(State(path), before) << "operation " << i << " from " << start;
                }
            }
            EXPECT_TRUE(failures > 0 || i == 0 || i == 3 || start == 0 || i == 1)
                << "operation " << i << " from " << start;
        }
    }
}

TEST_F(Path, CuttingKeepsThePathsConsistentWhenMemoryIsShort) {
    CPath source = Square();
    source.CurveTo(Pt(10, 40), Pt(30, 10), Pt(60, 60));
    std::string const before = State(source);
    for (int operation = 0; operation < 4; ++operation) {
        bool done = false;
        for (long allocations = 0; !done; ++allocations) {
            ASSERT_LT(allocations, 1000);
            CPath a;
            CPath b;
            try {
                ShortMemory const memory(allocations);
                if (operation == 0) {
                    source.GetTRange(0.1, 0.9, a);
                } else if (operation == 1) {
                    source.RemoveTRange(0.4, 0.6, a, b);
                } else if (operation == 2) {
                    static_cast<void>(source.TPt(0.5));
                } else {
                    static_cast<void>(source.FindTValue(Pt(5, 5)));
                }
                done = true;
            } catch (std::bad_alloc const&) {
            }
            ASSERT_EQ(State(source), before);
            for (CPath const* path : {&a, &b}) {
                std::size_t points = 0;
                for (char const code : path->mCtls) {
                    points += code == kC ? 3 : code == kZ ? 0 : 1;
                }
                ASSERT_EQ(path->mPts.size(), points);
            }
            ASSERT_SAME(CBezier::mMaxError, 1.0);
        }
    }
}

TEST_F(Path, MeasuringAndSearchingNeverThrowAndAnswerTheSameWithoutMemory) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    for (int i = 1; i <= 100; ++i) {
        path.LineTo(Pt(10 * i, i % 7));
        path.LineTo(Pt(10 * i, 50 + i % 3));
        path.CurveTo(Pt(10 * i + 3, 90), Pt(10 * i + 7, -30), Pt(10 * i + 8, i % 5));
    }
    auto const ask = [&path] {
        return std::array<double, 17>{path.Length(),
                                      path.TPt(-0.5).h,
                                      path.TPt(0.0).v,
                                      path.TPt(0.1).h,
                                      path.TPt(0.1).v,
                                      path.TPt(0.45).h,
                                      path.TPt(0.45).v,
                                      path.TPt(0.77).h,
                                      path.TPt(0.77).v,
                                      path.TPt(1.0).h,
                                      path.TPt(1.0).v,
                                      path.TPt(1.5).h,
                                      path.TPt(1.5).v,
                                      path.FindTValue(Pt(0, 0)),
                                      path.FindTValue(Pt(500, 30)),
                                      path.FindTValue(Pt(1009, -40)),
                                      path.FindTValue(Pt(300.5, 51))};
    };
    std::array<double, 17> const expected = ask();
    for (long const allocations : {0L, 1L, 2L, 3L}) {
        std::array<double, 17> answers = {};
        {
            ShortMemory const memory(allocations);
            answers = ask();
        }
        for (std::size_t i = 0; i < answers.size(); ++i) {
            EXPECT_SAME(answers[i], expected[i]) << allocations << " allocations, answer " << i;
        }
    }
}

TEST_F(Path, MeasuringCurvesSurvivesMissingHandles) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.CurveTo(Pt(0, 100), Pt(100, 100), Pt(100, 0));
    for (long failures : {1L, 2L, 1000000L}) {
        trammel_detail::FailNextAllocations(failures);
        static_cast<void>(path.Length());
        static_cast<void>(path.TPt(0.5));
        static_cast<void>(path.FindTValue(Pt(50, 50)));
        CPath out;
        path.GetTRange(0.25, 0.75, out);
        trammel_detail::FailNextAllocations(0);
        EXPECT_SAME(CBezier::mMaxError, 1.0);
    }
}

// ---------------------------------------------------------------------------------------------
// Inconsistent paths

TEST_F(Path, InconsistentPathsAreNotReadBeyondTheirPoints) {
    std::vector<std::vector<char>> const codes = {
        {kM},
        {kM, kM},
        {kL},
        {kC},
        {kM, kC, kL, kZ},
        {kZ},
        {kZ, kZ, kZ},
        {4, 5, 127},
        {static_cast<char>(-1), static_cast<char>(-128)},
        {kM, static_cast<char>(-1), kL, 77, kC, kZ, kL, kL},
        {kM, kL, kL, kL, kL, kL, kC, kC},
    };
    Points const all = {Pt(1, 1), Pt(5, 1), Pt(5, 6), Pt(2, 9), Pt(3, 3), Pt(8, 8)};
    for (std::vector<char> const& c : codes) {
        for (std::size_t count = 0; count <= all.size(); ++count) {
            CPath path;
            path.mCtls = c;
            path.mPts.assign(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(count));
            path.mCtls.shrink_to_fit();
            path.mPts.shrink_to_fit();
            EXPECT_GE(path.Length(), 0.0);
            for (double t : {-0.5, 0.0, 0.3, 1.0, 1.5, kNaN}) {
                static_cast<void>(path.TPt(t));
            }
            static_cast<void>(path.FindTValue(Pt(4, 4)));
            static_cast<void>(path.Bounds());
            static_cast<void>(path.Closed());
            CPath a;
            CPath b;
            path.GetTRange(0.2, 0.7, a);
            path.RemoveTRange(0.2, 0.7, a, b);
            path.RemoveTRange(0.7, 0.2, a, b);
            b.Append(path);
            CPathActions actions;
            path.ForAll(actions);
            CPath moved(path);
            moved.MoveTo(Pt(7, 7)); // a move without point is not replaced
            EXPECT_SAME(moved.mPts.back(), Pt(7, 7));
            moved.LineTo(Pt(8, 7));
            moved.ClosePath();
            moved.Append(moved);
            path.Append(path);
            EXPECT_FALSE(path.Closed());
        }
    }
}

TEST_F(Path, UnknownCodesAreSkippedAndTakeNoPoint) {
    CPath path = Square();
    std::vector<char> codes;
    for (char const code : path.mCtls) {
        codes.insert(codes.end(), {4, code, static_cast<char>(-3), 100});
    }
    path.mCtls = codes;
    EXPECT_SAME(path.Length(), 40.0);
    EXPECT_SAME(path.TPt(0.5), Pt(10, 10));
    EXPECT_SAME(path.FindTValue(Pt(12, 5)), 0.375);
    CPath out;
    path.GetTRange(0.25, 0.5, out);
    EXPECT_EQ(Text(out), "M(10, 0) L(10, 10) ");
    EXPECT_TRUE(path.Closed());
    path.Append(CPath()); // removes closes only
    EXPECT_EQ(path.mCtls.size(), codes.size() - 1);
}

TEST_F(Path, NotFiniteCoordinatesPropagate) {
    CBezier::mRecursionLimit = plain::state.recursionLimit = 5;
    for (double x : {kNaN, kInf, -kInf, kMax, -kMax, 1e-320}) {
        CPath path;
        path.MoveTo(Pt(1, 2));
        path.LineTo(Pt(x, 4));
        path.CurveTo(Pt(5, 6), Pt(7, x), Pt(8, 9));
        path.ClosePath();
        plain::Path const same = PlainPath(path);
        EXPECT_SAME(path.Length(), same.Length());
        for (double t : {0.0, 0.25, 0.5, 1.0, x}) {
            EXPECT_SAME(path.TPt(t), same.TPt(t)) << x << " " << t;
        }
        EXPECT_SAME(path.FindTValue(Pt(3, 3)), same.FindTValue(Pt(3, 3)));
        EXPECT_SAME(path.FindTValue(Pt(x, 3)), same.FindTValue(Pt(x, 3)));
        CPath out;
        plain::Path plainOut;
        path.GetTRange(0.2, 0.8, out);
        same.GetTRange(0.2, 0.8, plainOut);
        EXPECT_EQ(State(out), State(plainOut));
    }
}

// ---------------------------------------------------------------------------------------------
// Comparison with the step-by-step form, to the last bit, and laws

Pt RandomPt(Random& random, bool grid) {
    if (grid) {
        double const h = random.Int(-3, 3);
        return Pt(h, random.Int(-3, 3));
    }
    return random.Pt(-200, 200);
}

/// Builds both paths alike by `count` random operations.
void BuildAlike(Random& random, int count, bool grid, CPath& path, plain::Path& same) {
    for (; count > 0; --count) {
        Pt const a = RandomPt(random, grid);
        Pt const b = RandomPt(random, grid);
        Pt const c = RandomPt(random, grid);
        switch (random.Int(0, 9)) {
        case 0:
            path.MoveTo(a);
            same.MoveTo(a);
            break;
        case 1:
        case 2:
        case 3:
            path.LineTo(a);
            same.LineTo(a);
            break;
        case 4:
        case 5:
        case 6:
            path.CurveTo(a, b, c);
            same.CurveTo(a, b, c);
            break;
        case 7:
            path.ClosePath();
            same.ClosePath();
            break;
        case 8:
            if (random.OneIn(3)) {
                double const start = random.Uniform(-7, 7);
                double const sweep =
                    random.OneIn(2) ? random.Uniform(-7, 7) : random.Int(-5, 5) * pi / 2.0;
                path.Arc(a, b.h, b.v, start, sweep);
                same.Arc(a, b.h, b.v, start, sweep);
            }
            break;
        default:
            if (random.OneIn(4)) { // a code that nobody knows
                char const code = static_cast<char>(random.Int(4, 255));
                path.mCtls.push_back(code);
                same.codes.push_back(code);
            }
            break;
        }
    }
}

TEST_F(Path, AgreesWithThePlainForm) {
    Random random(21);
    for (int i = 0; i < 1500; ++i) {
        bool const grid = random.OneIn(3);
        CPath path;
        plain::Path same;
        BuildAlike(random, random.Int(0, 10), grid, path, same);
        SCOPED_TRACE(State(same));
        ASSERT_EQ(State(path), State(same));
        ASSERT_EQ(path.Closed(), same.Closed());
        ASSERT_SAME(path.Length(), same.Length());
        for (int k = 0; k < 2; ++k) {
            double const t = RandomFraction(random);
            ASSERT_SAME(path.TPt(t), same.TPt(t)) << t;
            Pt const p = RandomPt(random, grid);
            ASSERT_SAME(path.FindTValue(p), same.FindTValue(p)) << Text(p);
        }
        double const t0 = RandomFraction(random);
        double const t1 = RandomFraction(random);
        SCOPED_TRACE(testing::Message() << t0 << " to " << t1);
        CPath a;
        CPath b;
        plain::Path plainA;
        plain::Path plainB;
        BuildAlike(random, random.Int(0, 2), grid, a, plainA);
        BuildAlike(random, random.Int(0, 2), grid, b, plainB);
        CPath out(a);
        plain::Path plainOut = plainA;
        path.GetTRange(t0, t1, out);
        same.GetTRange(t0, t1, plainOut);
        ASSERT_EQ(State(out), State(plainOut));
        path.RemoveTRange(t0, t1, a, b);
        same.RemoveTRange(t0, t1, plainA, plainB);
        ASSERT_EQ(State(a), State(plainA));
        ASSERT_EQ(State(b), State(plainB));
        path.Append(a);
        same.Append(plainA);
        ASSERT_EQ(State(path), State(same));
    }
}

/// Appends a segment whose nearest point to `p` is about `distance` away, in one of the shapes for
/// which its box is as near as that, or nearly so.
void AddSegmentAtDistance(Random& random, Pt const& p, double distance, plain::Path& path) {
    double const reach = distance * random.Uniform(0.0, 3.0);
    double const side = random.OneIn(2) ? distance : -distance;
    bool const upright = random.OneIn(2);
    auto const at = [&](double along, double across) {
        return upright ? Pt(p.h + across, p.v + along) : Pt(p.h + along, p.v + across);
    };
    path.MoveTo(at(-reach, side));
    switch (random.Int(0, 3)) {
    case 0: // passes p at the distance, along the box's edge
        path.LineTo(at(random.Uniform(0.0, 1.0) * reach, side));
        break;
    case 1: // begins or ends there
        path.LineTo(at(0.0, side));
        path.LineTo(at(random.Uniform(-1.0, 1.0) * reach, 2.0 * side));
        break;
    case 2: // a straight curve along the box's edge
        path.CurveTo(at(-reach / 3.0, side), at(reach / 3.0, side), at(reach, side));
        break;
    default: // ends there, coming from farther away
        path.CurveTo(at(-reach, 2.0 * side), at(0.0, 2.0 * side), at(0.0, side));
        break;
    }
    if (random.OneIn(4)) {
        path.ClosePath();
    }
}

TEST_F(Path, NearestOfSegmentsAtAlmostTheSameDistanceAgreesWithThePlainForm) {
    // Segments whose boxes decide by the last bits: nothing may be left out that wins or ties.
    CBezier::mRecursionLimit = plain::state.recursionLimit = 5;
    Random random(25);
    for (int i = 0; i < 6000; ++i) {
        // The distance against the place: as large, or down to where only few of its bits count.
        double const size = random.OneIn(8) ? random.Decade(-320, 307) : random.Decade(-3, 9);
        Pt const p = random.Pt(-size, size);
        double const distance = size * random.Decade(-14, 1);
        plain::Path same;
        for (int k = random.Int(2, 6); k > 0; --k) {
            double const d = random.OneIn(2) ? distance : StepUlps(distance, random.Int(-6, 6));
            AddSegmentAtDistance(random, p, d, same);
        }
        CPath const path = LibraryPath(same);
        ASSERT_SAME(path.FindTValue(p), same.FindTValue(p)) << i << " " << State(same);
        Pt const beside(StepUlps(p.h, random.Int(-3, 3)), StepUlps(p.v, random.Int(-3, 3)));
        ASSERT_SAME(path.FindTValue(beside), same.FindTValue(beside)) << i << " " << State(same);
    }
}

TEST_F(Path, NearestWithCoordinatesThatOverflowAgreesWithThePlainForm) {
    CBezier::mRecursionLimit = plain::state.recursionLimit = 4;
    Random random(26);
    auto const point = [&] { return plain::WildPoint(random); };
    for (int i = 0; i < 20000; ++i) {
        plain::Path same;
        for (int k = random.Int(1, 5); k > 0; --k) {
            Pt const a = point();
            Pt const b = point();
            if (random.OneIn(2)) {
                same.LineTo(a);
            } else {
                same.CurveTo(a, b, point());
            }
        }
        CPath const path = LibraryPath(same);
        Pt const p = point();
        ASSERT_SAME(path.FindTValue(p), same.FindTValue(p)) << i << " " << State(same) << Text(p);
    }
}

TEST_F(Path, ManySegmentsAreMeasuredLikeFew) {
    // Beyond the number whose lengths are kept without a block.
    Random random(27);
    plain::Path same;
    for (int i = 0; i < 300; ++i) {
        same.LineTo(random.Pt(0, 100));
        if (random.OneIn(7)) {
            Pt const a = random.Pt(0, 100);
            Pt const b = random.Pt(0, 100);
            same.CurveTo(a, b, random.Pt(0, 100));
        }
    }
    CPath const path = LibraryPath(same);
    for (double t : {0.0, 0.01, 0.3, 0.45, 0.7, 0.999, 1.0, 1.5}) {
        EXPECT_SAME(path.TPt(t), same.TPt(t)) << t;
        CPath out;
        plain::Path plainOut;
        path.GetTRange(0.8 * t, t, out);
        same.GetTRange(0.8 * t, t, plainOut);
        EXPECT_EQ(State(out), State(plainOut)) << t;
    }
    for (int i = 0; i < 20; ++i) {
        Pt const p = random.Pt(-50, 150);
        EXPECT_SAME(path.FindTValue(p), same.FindTValue(p)) << Text(p);
    }
}

TEST_F(Path, CircularArcsAgreeWithThePlainForm) {
    Random random(22);
    for (int i = 0; i < 2000; ++i) {
        Pt const centre = random.Pt(-100, 100);
        double const radius = random.Uniform(-50, 50);
        double const start = random.OneIn(3) ? random.Int(-4, 4) * pi / 2.0 : random.Uniform(-9, 9);
        double const sweep =
            random.OneIn(3) ? random.Int(-9, 9) * pi / 2.0 : random.Uniform(-20, 20);
        CPath path;
        path.Arc(centre, radius, start, sweep);
        plain::Path same;
        same.Arc(centre, radius, radius, start, sweep);
        ASSERT_EQ(State(path), State(same)) << radius << " " << start << " " << sweep;
    }
}

TEST_F(Path, PointsAtCumulatedFractionsAreTheVertices) {
    Random random(23);
    for (int i = 0; i < 200; ++i) {
        CPath path;
        path.MoveTo(random.Pt(-100, 100));
        std::vector<double> lengths;
        int const count = random.Int(1, 8);
        for (int k = 0; k < count; ++k) {
            Pt const from = path.CurrentPoint();
            Pt const to = random.Pt(-100, 100);
            if (random.OneIn(2)) {
                path.LineTo(to);
                lengths.push_back(TLine<double>(from, to).Length());
            } else {
                Pt const c1 = random.Pt(-100, 100);
                Pt const c2 = random.Pt(-100, 100);
                path.CurveTo(c1, c2, to);
                lengths.push_back(CBezier(from, c1, c2, to).Length());
            }
        }
        double const total = path.Length();
        double sum = 0.0;
        std::size_t at = 0;
        for (int k = 0; k < count; ++k) {
            sum += lengths[static_cast<std::size_t>(k)];
            at += path.mCtls[static_cast<std::size_t>(k) + 1] == kC ? 3 : 1;
            Pt const expected = path.mPts[at];
            Pt const found = path.TPt(sum / total);
            EXPECT_NEAR(found.h, expected.h, 1e-9) << i << " " << k;
            EXPECT_NEAR(found.v, expected.v, 1e-9) << i << " " << k;
        }
        EXPECT_SAME(total, sum);
    }
}

TEST_F(Path, LengthsOfPiecesOfALinePathAddUp) {
    Random random(24);
    for (int i = 0; i < 200; ++i) {
        CPath path;
        for (int k = random.Int(2, 9); k > 0; --k) {
            path.LineTo(random.Pt(-100, 100));
        }
        if (random.OneIn(2)) {
            path.ClosePath();
        }
        double const t0 = random.Unit();
        double const t1 = random.Uniform(t0, 1.0);
        CPath before;
        CPath between;
        CPath after;
        path.GetTRange(0.0, t0, before);
        path.GetTRange(t0, t1, between);
        path.GetTRange(t1, 1.0, after);
        double const total = path.Length();
        EXPECT_NEAR(before.Length(), t0 * total, 1e-9 * total);
        EXPECT_NEAR(between.Length(), (t1 - t0) * total, 1e-9 * total);
        EXPECT_NEAR(before.Length() + between.Length() + after.Length(), total, 1e-9 * total);
    }
}

TEST_F(Path, LengthsOfPiecesOfACurvedPathAddUpApproximately) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    path.CurveTo(Pt(30, 60), Pt(90, 80), Pt(120, 0));
    path.LineTo(Pt(180, 10));
    path.Arc(Pt(180, 60), 50.0, -pi / 2.0, pi);
    double const total = path.Length();
    for (int i = 1; i < 20; ++i) {
        double const t = i / 20.0;
        CPath before;
        CPath after;
        path.GetTRange(0.0, t, before);
        path.GetTRange(t, 1.0, after);
        // Fractions of a curve are resolved to 0.001 of its parameter at either side.
        EXPECT_NEAR(before.Length() + after.Length(), total, 0.005 * total) << t;
        EXPECT_NEAR(before.Length(), t * total, 0.005 * total) << t;
    }
}

// Threads of embedded and of some script engines have no more stack than this. Sanitizers enlarge
// the frames, and without optimisation each inlined operation of the kernels has a place of its
// own.
#if defined(__SANITIZE_ADDRESS__) || !defined(__OPTIMIZE__)
constexpr std::size_t kSmallStack = std::size_t{512} << 10;
#else
constexpr std::size_t kSmallStack = std::size_t{64} << 10;
#endif

void AskEverythingOnce(CPath const& path, CBezier const& curve, double& sum) {
    TPolygon<double> polygon;
    curve.Flatten(polygon, 0.001);
    CPath piece;
    CPath rest;
    path.GetTRange(0.2, 0.7, piece);
    path.RemoveTRange(0.2, 0.7, piece, rest);
    sum = curve.Length() + curve.PercentT(0.3) + curve.TPercent(0.3) + path.Length() +
          path.TPt(0.6).h + path.FindTValue(Pt(1, 2)) + polygon.Length() + polygon.TPt(0.6).h +
          polygon.TPt(1e-5).h + (curve.HitTest(Pt(1, 2), 1.0) ? 1.0 : 0.0) +
          (curve.Intersects(TRect<double>(1, 2, 3, 4)) ? 1.0 : 0.0) +
          (polygon.Contains(Pt(1, 2)) ? 1.0 : 0.0);
}

TEST_F(Path, QueriesOfCurvesPathsAndPolygonsFitIntoASmallStack) {
    struct Question {
        CPath path;
        CBezier curve;
        double sum = 0.0;
    };
    // A flattening of few points, one of many, and one that is walked as deep as it may be.
    double const nan = std::numeric_limits<double>::quiet_NaN();
    for (double const size : {100.0, 1e7, nan}) {
        Question question;
        question.curve = CBezier({0, 0}, {size, 0}, {50, size}, {100, 100});
        question.path.MoveTo(question.curve.P0);
        question.path.CurveTo(question.curve.P1, question.curve.P2, question.curve.P3);
        question.path.LineTo(Pt(300, 100));
        question.path.ClosePath();
        double sum = 0.0;
        AskEverythingOnce(question.path, question.curve, sum); // also binds the library's functions
        pthread_attr_t attributes;
        ASSERT_EQ(pthread_attr_init(&attributes), 0);
        ASSERT_EQ(pthread_attr_setstacksize(&attributes, kSmallStack), 0);
        auto const ask = [](void* data) -> void* {
            Question& q = *static_cast<Question*>(data);
            AskEverythingOnce(q.path, q.curve, q.sum);
            return nullptr;
        };
        pthread_t thread;
        ASSERT_EQ(pthread_create(&thread, &attributes, ask, &question), 0);
        ASSERT_EQ(pthread_join(thread, nullptr), 0);
        ASSERT_EQ(pthread_attr_destroy(&attributes), 0);
        EXPECT_TRUE(question.sum == sum || std::isnan(sum));
    }
}

} // namespace
