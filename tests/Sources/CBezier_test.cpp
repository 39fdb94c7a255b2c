// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "BezierSupport.h"
#include "CMatrix3x3.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"
#include "TestSupport.h"
#include "plain/Comparing.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <thread>
#include <type_traits>

namespace {

using plain::Random;
using trammel_test::Bezier;
using trammel_test::Describe;
using trammel_test::Generated;
using trammel_test::GeneratedGlobally;
using trammel_test::kArch;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::kStraight;
using trammel_test::SameCurve;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
constexpr double kMax = std::numeric_limits<double>::max();

// ---------------------------------------------------------------------------------------------
// The value

TEST_F(Bezier, IsFourPointsAndNothingElse) {
    EXPECT_EQ(sizeof(CBezier), 4 * sizeof(Pt));
    EXPECT_TRUE(std::is_trivially_copyable_v<CBezier>);
    EXPECT_TRUE(std::is_standard_layout_v<CBezier>);
    EXPECT_FALSE(std::is_polymorphic_v<CBezier>);
}

TEST_F(Bezier, DefaultHasFourNullPoints) {
    CBezier const c;
    for (Pt const& p : {c.P0, c.P1, c.P2, c.P3}) {
        EXPECT_SAME(p, Pt(0.0, 0.0));
    }
}

TEST_F(Bezier, ConstructorSetAndISetStoreTheFourPointsInOrder) {
    CBezier const c(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(kNaN, -0.0));
    EXPECT_SAME(c.P0, Pt(1, 2));
    EXPECT_SAME(c.P1, Pt(3, 4));
    EXPECT_SAME(c.P2, Pt(5, 6));
    EXPECT_SAME(c.P3, Pt(kNaN, -0.0));
    CBezier set;
    set.Set(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(kNaN, -0.0));
    EXPECT_TRUE(SameCurve(set, c));
    CBezier iset;
    iset.ISet(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(kNaN, -0.0));
    EXPECT_TRUE(SameCurve(iset, c));
    EXPECT_TRUE((std::is_void_v<decltype(set.Set(Pt(), Pt(), Pt(), Pt()))>));
    EXPECT_TRUE((std::is_void_v<decltype(set.ISet(Pt(), Pt(), Pt(), Pt()))>));
}

TEST_F(Bezier, SetReadsItsOwnPointsBeforeWriting) {
    CBezier c(Pt(1, 1), Pt(2, 2), Pt(3, 3), Pt(4, 4));
    c.Set(c.P3, c.P2, c.P1, c.P0);
    EXPECT_TRUE(SameCurve(c, CBezier(Pt(4, 4), Pt(3, 3), Pt(2, 2), Pt(1, 1))));
}

TEST_F(Bezier, CopyAndAssignmentCopyTheFourPoints) {
    CBezier const copy(kArch);
    EXPECT_TRUE(SameCurve(copy, kArch));
    CBezier assigned;
    assigned = kArch;
    EXPECT_TRUE(SameCurve(assigned, kArch));
}

TEST_F(Bezier, GetCopiesThePointsOutInOrder) {
    Pt a;
    Pt b;
    Pt c;
    Pt d;
    CBezier(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(7, 8)).Get(a, b, c, d);
    EXPECT_SAME(a, Pt(1, 2));
    EXPECT_SAME(b, Pt(3, 4));
    EXPECT_SAME(c, Pt(5, 6));
    EXPECT_SAME(d, Pt(7, 8));
    CBezier self(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(7, 8));
    self.Get(self.P3, self.P2, self.P1, self.P0); // reverses
    EXPECT_TRUE(SameCurve(self, CBezier(Pt(7, 8), Pt(5, 6), Pt(3, 4), Pt(1, 2))));
}

TEST_F(Bezier, EqualityComparesAllFourPoints) {
    CBezier const c(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(7, 8));
    EXPECT_TRUE(c == CBezier(c));
    EXPECT_FALSE(c != CBezier(c));
    for (int i = 0; i < 4; ++i) {
        CBezier other(c);
        (i == 0 ? other.P0 : i == 1 ? other.P1 : i == 2 ? other.P2 : other.P3).v += 1.0;
        EXPECT_FALSE(c == other) << i;
        EXPECT_TRUE(c != other) << i;
    }
    EXPECT_TRUE(CBezier() == CBezier(Pt(-0.0, 0), Pt(), Pt(), Pt()));
    CBezier const nan(Pt(), Pt(), Pt(), Pt(kNaN, 0));
    EXPECT_FALSE(nan == nan);
    EXPECT_TRUE(nan != nan);
}

TEST_F(Bezier, ArithmeticAppliesToEachPoint) {
    CBezier const c(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(7, 8));
    EXPECT_TRUE(SameCurve(c + Pt(10, 20), CBezier(Pt(11, 22), Pt(13, 24), Pt(15, 26), Pt(17, 28))));
    EXPECT_TRUE(SameCurve(c - Pt(1, 2), CBezier(Pt(0, 0), Pt(2, 2), Pt(4, 4), Pt(6, 6))));
    EXPECT_TRUE(SameCurve(c * Pt(2, 3), CBezier(Pt(2, 6), Pt(6, 12), Pt(10, 18), Pt(14, 24))));
    EXPECT_TRUE(SameCurve(c / Pt(2, 4), CBezier(Pt(.5, .5), Pt(1.5, 1), Pt(2.5, 1.5), Pt(3.5, 2))));
    EXPECT_TRUE(SameCurve(c * 2.0, CBezier(Pt(2, 4), Pt(6, 8), Pt(10, 12), Pt(14, 16))));
    EXPECT_TRUE(SameCurve(c / 2.0, CBezier(Pt(.5, 1), Pt(1.5, 2), Pt(2.5, 3), Pt(3.5, 4))));
}

TEST_F(Bezier, CompoundOperatorsChangeAndReturnTheCurve) {
    CBezier const c(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(7, 8));
    CBezier d(c);
    EXPECT_EQ(&(d += Pt(10, 20)), &d);
    EXPECT_TRUE(SameCurve(d, c + Pt(10, 20)));
    EXPECT_EQ(&(d -= Pt(10, 20)), &d);
    EXPECT_TRUE(SameCurve(d, c));
    EXPECT_EQ(&(d *= Pt(2, 4)), &d);
    EXPECT_TRUE(SameCurve(d, c * Pt(2, 4)));
    EXPECT_EQ(&(d /= Pt(2, 4)), &d);
    EXPECT_TRUE(SameCurve(d, c));
    EXPECT_EQ(&(d *= 8.0), &d);
    EXPECT_TRUE(SameCurve(d, c * 8.0));
    EXPECT_EQ(&(d /= 8.0), &d);
    EXPECT_TRUE(SameCurve(d, c));
}

TEST_F(Bezier, OperatorsAcceptTheCurvesOwnPoints) {
    CBezier const c(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(7, 8));
    CBezier d(c);
    d += d.P0;
    EXPECT_TRUE(SameCurve(d, c + Pt(1, 2)));
    d = c;
    d -= d.P0;
    EXPECT_TRUE(SameCurve(d, c - Pt(1, 2)));
    d = c;
    d *= d.P0;
    EXPECT_TRUE(SameCurve(d, c * Pt(1, 2)));
    d = c;
    d /= d.P0;
    EXPECT_TRUE(SameCurve(d, c / Pt(1, 2)));
    d = c;
    d.Scale(d.P1);
    EXPECT_TRUE(SameCurve(d, c * Pt(3, 4)));
    d = c;
    d.Rotate(1.0, d.P0);
    CBezier expected(c);
    expected.Rotate(1.0, Pt(1, 2));
    EXPECT_TRUE(SameCurve(d, expected));
}

TEST_F(Bezier, DivisionByZeroGivesInfinitiesAndNaN) {
    CBezier const c(Pt(0, 2), Pt(-3, 4), Pt(5, 6), Pt(7, 8));
    CBezier const byScalar = c / 0.0;
    EXPECT_SAME(byScalar.P0, Pt(kNaN, kInf));
    EXPECT_SAME(byScalar.P1, Pt(-kInf, kInf));
    CBezier const byPoint = c / Pt(0, 2);
    EXPECT_SAME(byPoint.P0, Pt(kNaN, 1));
    EXPECT_SAME(byPoint.P3, Pt(kInf, 4));
}

TEST_F(Bezier, ScaleIsMultiplication) {
    CBezier const c(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(7, 8));
    CBezier d(c);
    EXPECT_EQ(&d.Scale(3.0), &d);
    EXPECT_TRUE(SameCurve(d, c * 3.0));
    d = c;
    EXPECT_EQ(&d.Scale(3.0, 5.0), &d);
    EXPECT_TRUE(SameCurve(d, c * Pt(3, 5)));
    d = c;
    EXPECT_EQ(&d.Scale(Pt(3, 5)), &d);
    EXPECT_TRUE(SameCurve(d, c * Pt(3, 5)));
}

TEST_F(Bezier, RotateAndTransformApplyThePointOperationToEachPoint) {
    CBezier const c(Pt(1, 2), Pt(3, 4), Pt(5, 6), Pt(7, 8));
    auto const mapped = [&c](auto&& map) {
        CBezier out(c);
        map(out.P0);
        map(out.P1);
        map(out.P2);
        map(out.P3);
        return out;
    };
    CBezier d(c);
    EXPECT_EQ(&d.Rotate(0.7), &d);
    EXPECT_TRUE(SameCurve(d, mapped([](Pt& p) { p.Rotate(0.7); })));
    d = c;
    EXPECT_EQ(&d.Rotate(0.7, Pt(-1, 3)), &d);
    EXPECT_TRUE(SameCurve(d, mapped([](Pt& p) { p.Rotate(0.7, Pt(-1, 3)); })));
    d = c;
    CMatrix3x3 const m(1.5, 0.25, -2.0, 3.0, 10.0, -20.0, 0);
    EXPECT_EQ(&d.Transform(m), &d);
    EXPECT_TRUE(SameCurve(d, mapped([&m](Pt& p) { p.Transform(m); })));
    EXPECT_SAME(d.P0, Pt(1.0 * 1.5 + 2.0 * -2.0 + 10.0, 1.0 * 0.25 + 2.0 * 3.0 - 20.0));
}

// ---------------------------------------------------------------------------------------------
// Class-wide settings

TEST_F(Bezier, SettingsStartWithToleranceOneAndDepthFifteen) {
    EXPECT_SAME(CBezier::mMaxError, 1.0);
    EXPECT_EQ(CBezier::mRecursionLimit, 15);
    EXPECT_TRUE((std::is_same_v<decltype(CBezier::mRecursionLimit), std::int16_t>));
    EXPECT_TRUE((std::is_same_v<decltype(CBezier::mCount), std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(gCount), std::int32_t>));
    EXPECT_TRUE((std::is_same_v<decltype(maxCount), std::int32_t>));
}

TEST_F(Bezier, SetCurveErrorReturnsThePreviousTolerance) {
    EXPECT_SAME(CBezier::SetCurveError(0.25), 1.0);
    EXPECT_SAME(CBezier::CurveError(), 0.25);
    EXPECT_SAME(CBezier::mMaxError, 0.25);
    EXPECT_SAME(CBezier::SetCurveError(kNaN), 0.25);
    EXPECT_SAME(CBezier::SetCurveError(1.0), kNaN);
}

TEST_F(Bezier, CountersCountInvocationsAndDeliveredPoints) {
    CBezier::mCount = 100;
    gCount = 7;
    maxCount = 8;
    // Depth 3 of a curve that is not flat: 3 points; 7 invocations, of which 4 are leaves.
    CBezier::mMaxError = -1.0;
    EXPECT_EQ(Generated(kArch, false, 3).size(), 3U);
    EXPECT_EQ(CBezier::mCount, 103);
    EXPECT_EQ(gCount, 14);
    EXPECT_EQ(maxCount, 14);
    EXPECT_EQ(GeneratedGlobally(kArch, false, 3).size(), 3U);
    EXPECT_EQ(CBezier::mCount, 106);
    EXPECT_EQ(gCount, 21);
    EXPECT_EQ(maxCount, 21);
}

TEST_F(Bezier, FlattenResetsTheInvocationCountAndKeepsTheHighestOne) {
    gCount = 1000;
    maxCount = 1000;
    CBezier::mCount = 0;
    TPolygon<double> poly;
    kStraight.Flatten(poly, 1.0);
    EXPECT_EQ(gCount, 0); // a straight curve is not generated
    EXPECT_EQ(maxCount, 1000);
    CBezier(Pt(0, 0), Pt(1, 0), Pt(2, 0), Pt(3, 0)).Flatten(poly, 1.0);
    EXPECT_EQ(gCount, 3); // the forced level and its two flat halves
    EXPECT_EQ(maxCount, 1000);
    EXPECT_EQ(CBezier::mCount, 1);
}

TEST_F(Bezier, CountersWrap) {
    gCount = std::numeric_limits<std::int32_t>::max();
    CBezier::mCount = std::numeric_limits<std::int32_t>::max();
    maxCount = 5;
    EXPECT_EQ(Generated(kArch, true, 1).size(), 1U);
    EXPECT_EQ(CBezier::mCount, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(gCount, std::numeric_limits<std::int32_t>::min() + 2);
    EXPECT_EQ(maxCount, 5);
    // The same where nobody looks at the points.
    gCount = std::numeric_limits<std::int32_t>::max();
    EXPECT_TRUE(kArch.HitTest(kArch.P0, 1.0));
    EXPECT_LT(gCount, 0);
    EXPECT_EQ(maxCount, 5);
}

TEST_F(Bezier, CountersCountEveryCallOfThreadsThatChangeTurnsAFewTimes) {
    gCount = 0;
    maxCount = 0;
    CBezier::mCount = 0;
    CBezier::mMaxError = -1.0;
    for (int i = 1; i <= 12; ++i) {
        std::thread([] { EXPECT_EQ(Generated(kArch, false, 3).size(), 3U); }).join();
        EXPECT_EQ(Generated(kArch, false, 3).size(), 3U);
        EXPECT_EQ(CBezier::mCount, 6 * i);
        EXPECT_EQ(gCount, 14 * i);
        EXPECT_EQ(maxCount, 14 * i);
    }
}

// ---------------------------------------------------------------------------------------------
// Evaluation and division

TEST_F(Bezier, TPtAtTheEndsIsTheEndPointWithoutArithmetic) {
    CBezier const c(Pt(0.1, kMax), Pt(kNaN, kInf), Pt(-kInf, 0), Pt(-0.3, 1e-300));
    EXPECT_SAME(c.TPt(0.0), Pt(0.1, kMax));
    EXPECT_SAME(c.TPt(-0.0), Pt(0.1, kMax));
    EXPECT_SAME(c.TPt(1.0), Pt(-0.3, 1e-300));
}

TEST_F(Bezier, TPtEvaluatesThePolynomial) {
    EXPECT_SAME(kArch.TPt(0.5), Pt(50, 75));
    EXPECT_SAME(kArch.TPt(0.25), Pt(15.625, 56.25));
    EXPECT_SAME(kArch.MidPt(), Pt(50, 75));
}

TEST_F(Bezier, TPtExtrapolatesOutsideTheUnitInterval) {
    EXPECT_SAME(kArch.TPt(2.0), Pt(-400, -600));
    EXPECT_SAME(kArch.TPt(-1.0), Pt(500, -600));
}

TEST_F(Bezier, TPtOfNaNIsNaN) { EXPECT_SAME(kArch.TPt(kNaN), Pt(kNaN, kNaN)); }

TEST_F(Bezier, DivideAtTheMiddleGivesTheTwoHalves) {
    CBezier left;
    CBezier right;
    EXPECT_SAME(kArch.Divide(left, right), Pt(50, 75));
    EXPECT_TRUE(SameCurve(left, CBezier(Pt(0, 0), Pt(0, 50), Pt(25, 75), Pt(50, 75))));
    EXPECT_TRUE(SameCurve(right, CBezier(Pt(50, 75), Pt(75, 75), Pt(100, 50), Pt(100, 0))));
}

TEST_F(Bezier, MiddleOfDivisionAgreesWithTPtUpToRounding) {
    EXPECT_SAME(kArch.MidPt(), [] {
        CBezier left;
        CBezier right;
        return kArch.Divide(left, right);
    }());
    Random random(1);
    for (int i = 0; i < 1000; ++i) {
        CBezier const c(random.Pt(-1, 1), random.Pt(-1, 1), random.Pt(-1, 1), random.Pt(-1, 1));
        CBezier left;
        CBezier right;
        Pt const split = c.Divide(left, right);
        // Coordinates below 1 in magnitude, so an absolute bound of a few of their last places.
        EXPECT_NEAR(split.h, c.TPt(0.5).h, 8 * 0x1p-53) << Describe(c);
        EXPECT_NEAR(split.v, c.TPt(0.5).v, 8 * 0x1p-53) << Describe(c);
    }
}

TEST_F(Bezier, DivideAtTGivesThePiecesBeforeAndAfter) {
    CBezier left;
    CBezier right;
    EXPECT_SAME(kArch.Divide(left, right, 0.25), Pt(15.625, 56.25));
    EXPECT_TRUE(SameCurve(left, CBezier(Pt(0, 0), Pt(0, 25), Pt(6.25, 43.75), Pt(15.625, 56.25))));
    EXPECT_TRUE(
        SameCurve(right, CBezier(Pt(15.625, 56.25), Pt(43.75, 93.75), Pt(100, 75), Pt(100, 0))));
}

TEST_F(Bezier, DivideAtTheEndsDegeneratesOneHalf) {
    CBezier left;
    CBezier right;
    EXPECT_SAME(kArch.Divide(left, right, 0.0), Pt(0, 0));
    EXPECT_TRUE(SameCurve(left, CBezier(Pt(0, 0), Pt(0, 0), Pt(0, 0), Pt(0, 0))));
    EXPECT_TRUE(left == CBezier(kArch.P0, kArch.P0, kArch.P0, kArch.P0));
    EXPECT_TRUE(right == kArch);
    EXPECT_SAME(kArch.Divide(left, right, 1.0), Pt(100, 0));
    EXPECT_TRUE(left == kArch);
    EXPECT_TRUE(right == CBezier(kArch.P3, kArch.P3, kArch.P3, kArch.P3));
}

TEST_F(Bezier, DivideBeyondTheEndsExtrapolates) {
    CBezier left;
    CBezier right;
    EXPECT_SAME(kArch.Divide(left, right, 2.0), Pt(-400, -600));
    EXPECT_SAME(left.P3, Pt(-400, -600));
    EXPECT_SAME(right.P3, Pt(100, 0));
}

TEST_F(Bezier, DivideMayWriteIntoTheCurveItself) {
    CBezier left;
    CBezier right;
    kArch.Divide(left, right);
    CBezier leftT;
    CBezier rightT;
    kArch.Divide(leftT, rightT, 0.25);

    CBezier c(kArch);
    CBezier other;
    c.Divide(c, other);
    EXPECT_TRUE(SameCurve(c, left));
    EXPECT_TRUE(SameCurve(other, right));
    c = kArch;
    c.Divide(other, c);
    EXPECT_TRUE(SameCurve(other, left));
    EXPECT_TRUE(SameCurve(c, right));
    c = kArch;
    c.Divide(c, other, 0.25);
    EXPECT_TRUE(SameCurve(c, leftT));
    EXPECT_TRUE(SameCurve(other, rightT));
    c = kArch;
    c.Divide(other, c, 0.25);
    EXPECT_TRUE(SameCurve(other, leftT));
    EXPECT_TRUE(SameCurve(c, rightT));
}

TEST_F(Bezier, OneCurveForBothHalvesHoldsTheRightOne) {
    CBezier left;
    CBezier right;
    kArch.Divide(left, right);
    CBezier both;
    kArch.Divide(both, both);
    EXPECT_TRUE(SameCurve(both, right));
    kArch.Divide(left, right, 0.25);
    kArch.Divide(both, both, 0.25);
    EXPECT_TRUE(SameCurve(both, right));
}

TEST_F(Bezier, DivideAtAPointSplitsAtTheStartTheMiddleOrTheEnd) {
    CBezier left;
    CBezier right;
    EXPECT_SAME(kArch.Divide(left, right, Pt(-5, -5)), Pt(0, 0));
    EXPECT_TRUE(left == CBezier(kArch.P0, kArch.P0, kArch.P0, kArch.P0));
    EXPECT_SAME(kArch.Divide(left, right, Pt(105, -5)), Pt(100, 0));
    EXPECT_TRUE(right == CBezier(kArch.P3, kArch.P3, kArch.P3, kArch.P3));
    EXPECT_SAME(kArch.Divide(left, right, Pt(50, 200)), Pt(50, 75));
    CBezier leftT;
    CBezier rightT;
    kArch.Divide(leftT, rightT, 0.5);
    EXPECT_TRUE(SameCurve(left, leftT));
    EXPECT_TRUE(SameCurve(right, rightT));
    // The point may be one that the division writes.
    CBezier c(kArch);
    c.Divide(c, right, c.P3);
    EXPECT_TRUE(c == kArch);
}

TEST_F(Bezier, ExtentsBoundTheControlPolygon) {
    EXPECT_SAME(CBezier(Pt(10, 20), Pt(-5, 30), Pt(7, 90), Pt(3, 4)).Extents(), Box(-5, 4, 10, 90));
    EXPECT_SAME(CBezier(Pt(1, 1), Pt(1, 1), Pt(1, 1), Pt(1, 1)).Extents(), Box(1, 1, 1, 1));
}

TEST_F(Bezier, ExtentsForgetEndsThatBothLieAtTheOrigin) {
    EXPECT_SAME(CBezier(Pt(0, 0), Pt(10, 20), Pt(30, 15), Pt(0, 0)).Extents(), Box(10, 15, 30, 20));
    EXPECT_SAME(CBezier(Pt(0, 0), Pt(0, 0), Pt(30, 15), Pt(0, 0)).Extents(), Box(30, 15, 30, 15));
    EXPECT_TRUE(CBezier().Extents().Null());
}

// ---------------------------------------------------------------------------------------------
// Sub-curves

TEST_F(Bezier, WholeRangeIsACopy) {
    CBezier out;
    kArch.GetTRange(0.0, 1.0, out);
    EXPECT_TRUE(SameCurve(out, kArch));
    kArch.GetTRange(-1.0, 2.0, out);
    EXPECT_TRUE(SameCurve(out, kArch));
    kArch.GetTRange(kNaN, kNaN, out);
    EXPECT_TRUE(SameCurve(out, kArch));
}

TEST_F(Bezier, MiddleHalfRunsBetweenItsTwoPoints) {
    CBezier out;
    kArch.GetTRange(0.25, 0.75, out);
    EXPECT_SAME(out.P0, kArch.TPt(0.25));
    EXPECT_DOUBLE_EQ(out.P3.h, kArch.TPt(0.75).h);
    EXPECT_DOUBLE_EQ(out.P3.v, kArch.TPt(0.75).v);
    EXPECT_DOUBLE_EQ(out.MidPt().h, 50.0);
    EXPECT_DOUBLE_EQ(out.MidPt().v, 75.0);
}

TEST_F(Bezier, RangeFromTheStartAndToTheEndAreTheDividedParts) {
    CBezier left;
    CBezier right;
    kArch.Divide(left, right, 0.25);
    CBezier out;
    kArch.GetTRange(0.0, 0.25, out);
    EXPECT_TRUE(SameCurve(out, left));
    kArch.GetTRange(0.25, 1.0, out);
    EXPECT_TRUE(SameCurve(out, right));
}

TEST_F(Bezier, NegativeStartShiftsTheEnd) {
    CBezier left;
    CBezier right;
    kArch.Divide(left, right, (0.5 - -1.0) / (1.0 - -1.0));
    CBezier out;
    kArch.GetTRange(-1.0, 0.5, out);
    EXPECT_TRUE(SameCurve(out, left)); // to 0.75, not to 0.5
}

TEST_F(Bezier, ReversedRangeIsTheStartOfTheRest) {
    CBezier out;
    kArch.GetTRange(0.5, 0.25, out); // the rescaled end is limited to 0
    Pt const middle(50, 75);
    EXPECT_TRUE(out == CBezier(middle, middle, middle, middle));
}

TEST_F(Bezier, RangeFromTheVeryEndDividesByZero) {
    CBezier out;
    kArch.GetTRange(1.0, 0.5, out); // (0.5 - 1) / 0 is -infinity, limited to 0
    EXPECT_TRUE(out == CBezier(kArch.P3, kArch.P3, kArch.P3, kArch.P3));
    kArch.GetTRange(2.0, 0.5, out); // (0.5 - 2) / -1 is 1.5, of a piece that is one point
    EXPECT_TRUE(out == CBezier(kArch.P3, kArch.P3, kArch.P3, kArch.P3));
    kArch.GetTRange(1.0, kNaN, out); // NaN is not below 1: no end to cut
    EXPECT_TRUE(out == CBezier(kArch.P3, kArch.P3, kArch.P3, kArch.P3));
}

TEST_F(Bezier, RangeMayBeStoredInTheCurveItself) {
    CBezier expected;
    kArch.GetTRange(0.25, 0.75, expected);
    CBezier c(kArch);
    c.GetTRange(0.25, 0.75, c);
    EXPECT_TRUE(SameCurve(c, expected));
    c = kArch;
    c.GetTRange(0.25, 1.0, c);
    kArch.GetTRange(0.25, 1.0, expected);
    EXPECT_TRUE(SameCurve(c, expected));
}

} // namespace
