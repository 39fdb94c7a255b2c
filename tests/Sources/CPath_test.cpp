// SPDX-License-Identifier: MIT

#include "CPath.h"

#include "CBezier.h"
#include "CMatrix3x3.h"
#include "Handles.h"
#include "PathSupport.h"
#include "ShortMemory.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"
#include "plain/Comparing.h"
#include "plain/PlainBezier.h"
#include "plain/PlainPath.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <new>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using plain::SameBits;
using trammel_test::kC;
using trammel_test::kInf;
using trammel_test::kL;
using trammel_test::kM;
using trammel_test::kNaN;
using trammel_test::kZ;
using trammel_test::Path;
using trammel_test::PlainPath;
using trammel_test::ShortMemory;
using trammel_test::Square;
using trammel_test::State;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef std::vector<Pt> Points;
constexpr double kMax = std::numeric_limits<double>::max();

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
    // The square had been closed, so the line starts a subpath although it begins at the current
    // point.
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

} // namespace
