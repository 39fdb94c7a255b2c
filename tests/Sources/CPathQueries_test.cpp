// SPDX-License-Identifier: MIT

// Lengths, points at fractions of the length, the nearest fraction, and pieces between two
// fractions.

#include "CPath.h"

#include "CBezier.h"
#include "PathSupport.h"
#include "TPoint.h"
#include "TestSupport.h"
#include "plain/Comparing.h"
#include "plain/PlainPath.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace {

using trammel_test::kC;
using trammel_test::kInf;
using trammel_test::kL;
using trammel_test::kM;
using trammel_test::kNaN;
using trammel_test::kZ;
using trammel_test::Path;
using trammel_test::PlainPath;
using trammel_test::Square;
using trammel_test::State;
using trammel_test::Text;

typedef TPoint<double> Pt;

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

TEST_F(Path, PointsAlongTheSquareLieOnItsSides) {
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

TEST_F(Path, NearestFractionBesideTheSecondSideLiesOnIt) {
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
    // The end of the sub-curve and the point at 0.25 are the same up to the bisection's rounding.
    // Where they differ, a short line follows; the walk stops in either case.
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
    // The second output held elements; they go to the first with its piece.
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

} // namespace
