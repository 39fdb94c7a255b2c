// SPDX-License-Identifier: MIT

// The cubic as a chain of points: when it is flat, what its generator delivers, what flattening
// appends.

#include "CBezier.h"

#include "BezierSupport.h"
#include "Handles.h"
#include "PolygonSupport.h"
#include "ShortMemory.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"
#include "TestSupport.h"
#include "plain/Comparing.h"
#include "plain/PlainBezier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

namespace {

using plain::Random;
using plain::SameBits;
using plain::StepUlps;
using trammel_test::Bezier;
using trammel_test::Flattened;
using trammel_test::Generated;
using trammel_test::GeneratedGlobally;
using trammel_test::kArch;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::kStraight;
using trammel_test::Plain;
using trammel_test::PointsOf;
using trammel_test::SameCurve;
using trammel_test::SamePoints;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef std::vector<Pt> Points;
constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

// ---------------------------------------------------------------------------------------------
// Flatness

TEST_F(Bezier, DeviationEqualToTheToleranceIsFlat) {
    // The middle of the arch is 75 above its chord.
    EXPECT_TRUE(kArch.Flat(75.0));
    EXPECT_FALSE(kArch.Flat(StepUlps(75.0, -1)));
    EXPECT_TRUE(kArch.Flat(StepUlps(75.0, 1)));
    EXPECT_TRUE(kArch.Flat(kInf));
    EXPECT_FALSE(kArch.Flat(0.0));
    EXPECT_FALSE(kArch.Flat(-1.0));
    EXPECT_FALSE(kArch.Flat(kNaN));
}

TEST_F(Bezier, VerticalChordIsMeasuredByDistanceFromTheLine) {
    CBezier const c(Pt(0, 0), Pt(8, 10), Pt(8, 30), Pt(0, 40)); // the middle is at h = 6
    EXPECT_TRUE(c.Flat(6.0));
    EXPECT_FALSE(c.Flat(StepUlps(6.0, -1)));
}

TEST_F(Bezier, CoincidentEndsAreMeasuredToTheMiddleOfTheControlPoints) {
    CBezier const c(Pt(1, 1), Pt(4, 1), Pt(4, 9), Pt(1, 1)); // the middle is (4, 5), 5 away
    EXPECT_TRUE(c.Flat(5.0));
    EXPECT_FALSE(c.Flat(StepUlps(5.0, -1)));
    // Control points on opposite sides: their middle is the end point, however large the loop.
    EXPECT_TRUE(CBezier(Pt(0, 0), Pt(100, 0), Pt(-100, 0), Pt(0, 0)).Flat(0.0));
}

TEST_F(Bezier, OnlyTheMiddleIsMeasuredSoASymmetricSIsFlat) {
    CBezier const s(Pt(0, 0), Pt(100, 300), Pt(200, -300), Pt(300, 0));
    EXPECT_TRUE(s.Flat(0.0));
    EXPECT_TRUE(Generated(s, false, 15).empty());
    EXPECT_EQ(Flattened(s, 0.001).size() > 3,
              true); // the first level is forced, and its halves bend
}

TEST_F(Bezier, NaNDeviationIsNotFlat) {
    for (int i = 0; i < 6; ++i) {
        CBezier c(kArch);
        Pt& p = i / 2 == 0 ? c.P0 : i / 2 == 1 ? c.P1 : c.P2;
        (i % 2 == 0 ? p.h : p.v) = kNaN;
        EXPECT_FALSE(c.Flat(kMax)) << i;
    }
}

TEST_F(Bezier, ChordWithoutSlopeIsMeasuredLikeCoincidentEnds) {
    // NaN in the end point alone: the distance from P0 = (0, 0) to the middle (30, 40) counts.
    CBezier const nan(Pt(0, 0), Pt(0, 40), Pt(60, 40), Pt(kNaN, 0));
    EXPECT_TRUE(nan.Flat(50.0));
    EXPECT_FALSE(nan.Flat(StepUlps(50.0, -1)));
    // inf / inf
    CBezier const infinite(Pt(0, 0), Pt(0, 40), Pt(60, 40), Pt(kInf, -kInf));
    EXPECT_TRUE(infinite.Flat(50.0));
    EXPECT_FALSE(infinite.Flat(StepUlps(50.0, -1)));
}

// ---------------------------------------------------------------------------------------------
// Generation

TEST_F(Bezier, DepthOfOneOrLessDeliversNothingUnlessForced) {
    for (int depth : {1, 0, -1, -100, -32768}) {
        EXPECT_TRUE(Generated(kArch, false, static_cast<short>(depth)).empty()) << depth;
        EXPECT_EQ(Generated(kArch, true, static_cast<short>(depth)), Points{Pt(50, 75)}) << depth;
        EXPECT_TRUE(GeneratedGlobally(kArch, false, static_cast<short>(depth)).empty()) << depth;
        EXPECT_EQ(GeneratedGlobally(kArch, true, static_cast<short>(depth)), Points{Pt(50, 75)})
            << depth;
    }
}

TEST_F(Bezier, DepthNDeliversAtMostTwoToTheNMinusOneLessOne) {
    CBezier::mMaxError = -1.0; // never flat
    for (short depth = 2; depth <= 12; ++depth) {
        std::size_t const most = (std::size_t{1} << (depth - 1)) - 1;
        EXPECT_EQ(Generated(kArch, false, depth).size(), most);
        EXPECT_EQ(Generated(kArch, true, depth).size(), most);
    }
}

TEST_F(Bezier, DefaultLimitAllows16383Points) {
    CBezier const nan(Pt(0, 0), Pt(0, kNaN), Pt(100, 100), Pt(100, 0));
    CBezier::mCount = 0;
    EXPECT_EQ(Flattened(nan, 1.0).size(), 16383U + 2U);
    EXPECT_EQ(CBezier::mCount, 16383);
    EXPECT_EQ(gCount, 2 * 16383 + 1);
}

TEST_F(Bezier, ForceAppliesToTheFirstLevelOnly) {
    CBezier const flat(Pt(0, 0), Pt(1, 0), Pt(2, 0), Pt(3, 0));
    EXPECT_TRUE(Generated(flat, false, 15).empty());
    EXPECT_EQ(Generated(flat, true, 15), Points{Pt(1.5, 0)});
}

TEST_F(Bezier, PointsComeInOrderOfTheParameterAndLeaveTheEndsOut) {
    CBezier::mMaxError = -1.0;
    Points const points = Generated(kArch, false, 5);
    ASSERT_EQ(points.size(), 15U);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_SAME(points[i], kArch.TPt(static_cast<double>(i + 1) / 16.0)); // exact numbers
    }
}

TEST_F(Bezier, ToleranceIsTheClassWideOne) {
    CBezier::mMaxError = 75.0;
    EXPECT_TRUE(Generated(kArch, false, 15).empty());
    CBezier::mMaxError = StepUlps(75.0, -1);
    EXPECT_EQ(Generated(kArch, false, 15), Points{Pt(50, 75)});
    CBezier::mMaxError = kInf;
    EXPECT_TRUE(Generated(kArch, false, 15).empty());
}

TEST_F(Bezier, BothCallbacksReceiveTheSamePoints) {
    CBezier::mMaxError = 0.01;
    EXPECT_PRED_FORMAT2(SamePoints, GeneratedGlobally(kArch, false, 15),
                        Generated(kArch, false, 15));
}

void CollectAndRaiseTolerance(Pt const& p, void* data) {
    static_cast<Points*>(data)->push_back(p);
    CBezier::mMaxError = kInf;
}

TEST_F(Bezier, ToleranceThatACallbackChangesAppliesFromThereOn) {
    CBezier::mMaxError = -1.0;
    Points points;
    kArch.GenerateSegment(CollectAndRaiseTolerance, &points, false, 6);
    // The left edge of the tree was descended before the first point; nothing is divided after it.
    EXPECT_PRED_FORMAT2(SamePoints, points,
                        (Points{kArch.TPt(1.0 / 32), kArch.TPt(1.0 / 16), kArch.TPt(1.0 / 8),
                                kArch.TPt(1.0 / 4), kArch.TPt(1.0 / 2)}));
}

struct Overwriter {
    Points points;
    CBezier* curve;
};

void CollectAndOverwrite(Pt const& p, void* data) {
    Overwriter& overwriter = *static_cast<Overwriter*>(data);
    overwriter.points.push_back(p);
    *overwriter.curve = CBezier();
    CBezier::mMaxError = 0.5;
}

TEST_F(Bezier, CallbackMayOverwriteTheCurveAndTheTolerance) {
    Random random(71);
    for (int i = 0; i < 500; ++i) {
        CBezier const original(random.Pt(0, 500), random.Pt(0, 500), random.Pt(0, 500),
                               random.Pt(0, 500));
        CBezier::mMaxError = plain::state.maxError = 4.0;
        CBezier changing = original;
        Overwriter overwriter = {Points(), &changing};
        changing.GenerateSegment(CollectAndOverwrite, &overwriter, true, 12);
        Points expected;
        Plain(original).GenerateSegment(
            [&expected](Pt const& p) {
                expected.push_back(p);
                plain::state.maxError = 0.5;
            },
            true, 12);
        ASSERT_PRED_FORMAT2(SamePoints, overwriter.points, expected);
    }
}

TEST_F(Bezier, QueriesAllocateNothing) {
    Random random(72);
    // Room for all of their points is found on the stack, also where there are thousands.
    for (double const size : {10.0, 500.0, 1e6}) {
        CBezier c(random.Pt(0, size), random.Pt(0, size), random.Pt(0, size), random.Pt(0, size));
        Pt const pt = random.Pt(0, size);
        trammel_detail::FailNextAllocations(1);
        trammel_test::ShortMemory const none(0);
        EXPECT_GT(c.Length(), 0.0);
        EXPECT_GE(c.PercentT(0.3), 0.0);
        EXPECT_GE(c.TPercent(0.3), 0.0);
        EXPECT_GE(c.FindTValue(pt, 0.001, 0.0, 1.0), 0.0);
        c.HitTest(c.TPt(0.25), 1.0);
        c.Intersects(TRect<double>(pt, pt + Pt(1, 1)));
        EXPECT_EQ(trammel_detail::gFailingRequests.load(), 1);
        trammel_detail::FailNextAllocations(0);
    }
}

TEST_F(Bezier, FlattenGrowsThePolygonOnce) {
    TPolygon<double> poly;
    long const before = trammel_detail::BlockReallocationCount();
    CBezier(Pt(0, 0), Pt(10, 80), Pt(70, 90), Pt(90, 10)).Flatten(poly, 0.001);
    EXPECT_EQ(trammel_detail::BlockReallocationCount() - before, 1);
    EXPECT_GT(poly.LastIndex(), 100);
}

TEST_F(Bezier, FlattenGrowsThePolygonOnceForThousandsOfPoints) {
    Random random(73);
    long most = 0;
    for (double const size : {5e3, 5e4, 3e5, 1e7}) {
        for (int i = 0; i < 20; ++i) {
            CBezier const c(random.Pt(0, size), random.Pt(0, size), random.Pt(0, size),
                            random.Pt(0, size));
            TPolygon<double> poly;
            long const before = trammel_detail::BlockReallocationCount();
            c.Flatten(poly, 0.001);
            ASSERT_EQ(trammel_detail::BlockReallocationCount() - before, 1)
                << poly.LastIndex() << " points";
            most = std::max(most, poly.LastIndex());
        }
    }
    EXPECT_EQ(most, 16384); // as many as the recursion limit allows
}

TEST_F(Bezier, FlattenLeavesThePolygonWhenThereIsNoMemoryForThousandsOfPoints) {
    // No request for memory succeeds: the polygon stays as it was.
    CBezier const c(Pt(0, 0), Pt(1e5, 8e5), Pt(7e5, 9e5), Pt(9e5, 1e5));
    TPolygon<double> whole;
    c.Flatten(whole, 0.001);
    TPolygon<double> poly;
    poly.Append(Pt(-1, -1), false);
    trammel_detail::FailNextAllocations(1000000);
    c.Flatten(poly, 0.001);
    trammel_detail::FailNextAllocations(0);
    EXPECT_GT(whole.LastIndex(), 4000);
    EXPECT_EQ(poly.LastIndex(), 0);
}

TEST_F(Bezier, FlattenAppendsWhatFitsWhenMemoryIsShort) {
    TPolygon<double> poly;
    trammel_detail::FailNextAllocations(1000000);
    kArch.Flatten(poly, 0.001);
    trammel_detail::FailNextAllocations(0);
    EXPECT_TRUE(poly.Empty());
}

struct Thrower {
    int left;
    int seen;
};

void CountdownToThrow(Pt const&, void* data) {
    Thrower& thrower = *static_cast<Thrower*>(data);
    ++thrower.seen;
    if (--thrower.left == 0) {
        throw std::string("enough");
    }
}

TEST_F(Bezier, ExceptionOfACallbackPassesThroughAndIsNotCounted) {
    CBezier::mMaxError = -1.0;
    CBezier::mCount = 0;
    Thrower thrower = {1000, 0};
    EXPECT_THROW(kArch.GenerateSegment(CountdownToThrow, &thrower, false, 40), std::string);
    EXPECT_EQ(thrower.seen, 1000);
    EXPECT_EQ(CBezier::mCount, 999);
    EXPECT_EQ(Generated(kArch, false, 4).size(), 7U); // nothing stays behind
}

TEST_F(Bezier, LargestDepthIsReachedAndCounted) {
    CBezier::mMaxError = -1.0; // never flat: the first point is 32,766 levels down
    for (int left : {1, 2, 40, 100000}) {
        gCount = 0;
        Thrower thrower = {left, 0};
        EXPECT_THROW(kArch.GenerateSegment(CountdownToThrow, &thrower, false, 32767), std::string);
        EXPECT_EQ(thrower.seen, left);
        // Before point k of the walk come the 32,767 invocations of the left edge; each further
        // point is preceded by at least one more.
        EXPECT_GE(gCount, 32767 + left - 1);
    }
}

/// Generates with a negative tolerance up to the first point and after the chosen ones, and with an
/// infinite one else.
struct SomeChains {
    Points points;
    std::vector<std::size_t> chosen; ///< numbers of points, from 1 on
    double* error;
    static void Deliver(Pt const& p, void* self) {
        SomeChains& chains = *static_cast<SomeChains*>(self);
        chains.points.push_back(p);
        bool const deep =
            std::count(chains.chosen.begin(), chains.chosen.end(), chains.points.size()) > 0;
        *chains.error = deep ? -1.0 : kInf;
    }
};

TEST_F(Bezier, WalkThatIsDeepAgainAndAgainComesBackInOrder) {
    Random random(31);
    for (int const depth : {32, 33, 34, 48, 49, 50, 80, 500, 5000}) {
        for (int round = 0; round < 20; ++round) {
            auto const far = [&] { return random.Uniform(-1e300, 1e300); };
            CBezier const c(Pt(far(), far()), Pt(far(), far()), Pt(far(), far()), Pt(0, 0));
            SomeChains ours = {{}, {}, &CBezier::mMaxError};
            for (int i = 0; i < round; ++i) {
                ours.chosen.push_back(static_cast<std::size_t>(random.Uniform(1.0, 3.0 * depth)));
            }
            CBezier::mMaxError = -1.0;
            c.GenerateSegment(SomeChains::Deliver, &ours, round % 2 == 0,
                              static_cast<short>(depth));
            plain::state.maxError = -1.0;
            SomeChains plainly = {{}, ours.chosen, &plain::state.maxError};
            Plain(c).GenerateSegment([&](Pt const& p) { SomeChains::Deliver(p, &plainly); },
                                     round % 2 == 0, depth);
            ASSERT_PRED_FORMAT2(SamePoints, ours.points, plainly.points) << depth << ' ' << round;
            ASSERT_GE(ours.points.size(), static_cast<std::size_t>(depth - 1));
        }
    }
    plain::state.maxError = 1.0;
}

/// A curve whose left half is the curve itself, bit for bit, and whose right half is a point. Its
/// three last points are the neighbour of its first, so that halving rounds to where it was. It is
/// not flat at tolerance 0, because the foot on such a chord is rounded.
CBezier SelfSimilar() {
    Random random(7);
    for (int i = 0; i < 100000; ++i) {
        Pt const a(random.Uniform(1.0, 8.0), random.Uniform(1.0, 8.0));
        Pt const b(StepUlps(a.h, 1), StepUlps(a.v, 1));
        CBezier const c(a, b, b, b);
        CBezier left;
        CBezier right;
        c.Divide(left, right);
        if (SameCurve(left, c) && !c.Flat(0.0)) {
            return c;
        }
    }
    return CBezier();
}

TEST_F(Bezier, LargestDepthIsReachedWithoutEnd) {
    CBezier const c = SelfSimilar();
    ASSERT_NE(c.P0, c.P3) << "no such curve found";
    CBezier::mMaxError = 0.0;
    CBezier::mCount = 0;
    gCount = 0;
    Points const points = Generated(c, false, 32767);
    EXPECT_EQ(points.size(), 32766U);
    EXPECT_EQ(CBezier::mCount, 32766);
    EXPECT_EQ(gCount, 2 * 32766 + 1);
    CBezier::mRecursionLimit = 32767;
    EXPECT_EQ(Flattened(c, 0.0), (Points{c.P0, c.P1})); // all equal but the first
    EXPECT_EQ(gCount, 2 * 32766 + 1);
}

TEST_F(Bezier, CurveThatBecomesFlatByUnderflowEndsAtTheLargestDepth) {
    CBezier::mRecursionLimit = 32767;
    CBezier const tiny(Pt(0, 0), Pt(3 * kTiny, 90 * kTiny), Pt(70 * kTiny, -41 * kTiny),
                       Pt(100 * kTiny, 7 * kTiny));
    Points const points = Flattened(tiny, 0.0);
    EXPECT_GE(points.size(), 3U);
    EXPECT_LE(points.size(), 400U); // there are no more places between the ends
    EXPECT_SAME(points.front(), tiny.P0);
    EXPECT_SAME(points.back(), tiny.P3);
    // Coincident ends: squares of 1e-170 underflow, so the loop is flat at once.
    EXPECT_TRUE(CBezier(Pt(0, 0), Pt(1e-170, 0), Pt(0, 1e-170), Pt(0, 0)).Flat(0.0));
}

// ---------------------------------------------------------------------------------------------
// Flattening

TEST_F(Bezier, StraightCurveFlattensToItsEnds) {
    EXPECT_EQ(Flattened(kStraight, 0.001), (Points{Pt(0, 0), Pt(30, 40)}));
    CBezier const point(Pt(3, 4), Pt(3, 4), Pt(3, 4), Pt(3, 4));
    EXPECT_EQ(Flattened(point, 0.001), Points{Pt(3, 4)});
}

TEST_F(Bezier, FlatCurveStillYieldsItsMiddle) {
    CBezier const flat(Pt(0, 0), Pt(1, 2), Pt(2, 4), Pt(3, 6));
    EXPECT_EQ(Flattened(flat, 1.0), (Points{Pt(0, 0), Pt(1.5, 3), Pt(3, 6)}));
}

TEST_F(Bezier, ArchFlattensToDyadicParametersInOrder) {
    Points const points = Flattened(kArch, 1.0);
    ASSERT_GE(points.size(), 3U);
    EXPECT_SAME(points.front(), Pt(0, 0));
    EXPECT_SAME(points.back(), Pt(100, 0));
    // All points of this curve at multiples of 2^-14 are exact numbers, so that they can be found.
    int next = 0;
    for (Pt const& p : points) {
        while (next <= 16384 && !SameBits(kArch.TPt(next / 16384.0), p)) {
            ++next;
        }
        ASSERT_LE(next, 16384) << p.h << ", " << p.v;
        ++next;
    }
}

TEST_F(Bezier, FlattenAppendsWithoutRepeatingTheLastPoint) {
    TPolygon<double> poly;
    poly.Append(Pt(-1, -1), true);
    poly.Append(Pt(0, 0), true);
    kStraight.Flatten(poly, 1.0);
    EXPECT_EQ(PointsOf(poly), (Points{Pt(-1, -1), Pt(0, 0), Pt(30, 40)}));
    kStraight.Flatten(poly, 1.0);
    EXPECT_EQ(PointsOf(poly), (Points{Pt(-1, -1), Pt(0, 0), Pt(30, 40), Pt(0, 0), Pt(30, 40)}));
}

TEST_F(Bezier, AddSegmentToPolyIsFlatten) {
    TPolygon<double> poly;
    kArch.AddSegmentToPoly(poly, 0.5);
    EXPECT_PRED_FORMAT2(SamePoints, PointsOf(poly), Flattened(kArch, 0.5));
}

TEST_F(Bezier, FlattenUsesItsOwnToleranceAndPutsTheClassWideOneBack) {
    CBezier::mMaxError = 1000.0;
    Points const points = Flattened(kArch, 0.01);
    EXPECT_GT(points.size(), 10U);
    EXPECT_SAME(CBezier::mMaxError, 1000.0);
    CBezier::mMaxError = 0.0;
    EXPECT_PRED_FORMAT2(SamePoints, Flattened(kArch, 0.01), points);
    EXPECT_SAME(CBezier::mMaxError, 0.0);
    Flattened(kStraight, 0.01);
    EXPECT_SAME(CBezier::mMaxError, 0.0);
}

TEST_F(Bezier, FlattenIsLimitedByTheClassWideDepth) {
    CBezier::mRecursionLimit = 3;
    EXPECT_EQ(Flattened(kArch, 0.0).size(), 3U + 2U);
    CBezier::mRecursionLimit = 1;
    EXPECT_EQ(Flattened(kArch, 0.0), (Points{Pt(0, 0), Pt(50, 75), Pt(100, 0)}));
    CBezier::mRecursionLimit = -5;
    EXPECT_EQ(Flattened(kArch, 0.0), (Points{Pt(0, 0), Pt(50, 75), Pt(100, 0)}));
}

TEST_F(Bezier, AnyToleranceEnds) {
    for (double error : {0.0, -0.0, -1.0, -kInf, kInf, kNaN, kTiny, kMax}) {
        Points const points = Flattened(kArch, error);
        EXPECT_GE(points.size(), 3U) << error;
        EXPECT_LE(points.size(), 16385U) << error;
    }
    EXPECT_EQ(Flattened(kArch, kInf).size(), 3U);
    EXPECT_EQ(Flattened(kArch, kNaN).size(), 16385U);
}

TEST_F(Bezier, AddPtToPolyLeavesOutARepeatedPoint) {
    TPolygon<double> poly;
    CBezier::AddPtToPoly(Pt(1, 2), poly);
    CBezier::AddPtToPoly(Pt(1, 2), poly);
    CBezier::AddPtToPoly(Pt(3, 2), poly);
    EXPECT_EQ(PointsOf(poly), (Points{Pt(1, 2), Pt(3, 2)}));
}

TEST_F(Bezier, AddPtToBoundsRectGrowsTheRectangle) {
    Box r;
    CBezier::AddPtToBoundsRect(Pt(0, 0), r);
    EXPECT_TRUE(r.Null());
    CBezier::AddPtToBoundsRect(Pt(3, 4), r);
    EXPECT_SAME(r, Box(3, 4, 3, 4));
    CBezier::AddPtToBoundsRect(Pt(-1, 9), r);
    EXPECT_SAME(r, Box(-1, 4, 3, 9));
}

} // namespace
