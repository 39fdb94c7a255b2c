// SPDX-License-Identifier: MIT

#include "CBezier.h"

#include "CMatrix3x3.h"
#include "Dispatch_p.h"
#include "Handles.h"
#include "ShortMemory.h"
#include "TLine.h"
#include "TPoly.h"
#include "UGeometry.h"
#include "UScalar.h"
#include "plain/Comparing.h"
#include "plain/PlainBezier.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using plain::Random;
using plain::SameBits;
using plain::StepUlps;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef std::vector<Pt> Points;

constexpr double kMax = std::numeric_limits<double>::max();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();

/// Every test begins and ends with the settings that the library starts with.
class Bezier : public ::testing::Test {
protected:
    void SetUp() override {
        mMaxErrorBefore = CBezier::mMaxError;
        mRecursionLimitBefore = CBezier::mRecursionLimit;
        mCountBefore = CBezier::mCount;
        gCountBefore = gCount;
        maxCountBefore = maxCount;
    }
    void TearDown() override {
        CBezier::mMaxError = mMaxErrorBefore;
        CBezier::mRecursionLimit = mRecursionLimitBefore;
        CBezier::mCount = mCountBefore;
        gCount = gCountBefore;
        maxCount = maxCountBefore;
        trammel_detail::UsePortableForms(false);
    }

private:
    double mMaxErrorBefore = 0.0;
    std::int16_t mRecursionLimitBefore = 0;
    std::int32_t mCountBefore = 0;
    std::int32_t gCountBefore = 0;
    std::int32_t maxCountBefore = 0;
};

CBezier const kArch(Pt(0, 0), Pt(0, 100), Pt(100, 100), Pt(100, 0));
CBezier const kStraight(Pt(0, 0), Pt(0, 0), Pt(30, 40), Pt(30, 40));

plain::Bezier Plain(CBezier const& c) { return plain::Bezier{c.P0, c.P1, c.P2, c.P3}; }
CBezier Library(plain::Bezier const& c) { return CBezier(c.p0, c.p1, c.p2, c.p3); }

std::string Describe(CBezier const& c) { return Text(Points{c.P0, c.P1, c.P2, c.P3}); }

bool SameCurve(CBezier const& a, CBezier const& b) {
    return SameBits(a.P0, b.P0) && SameBits(a.P1, b.P1) && SameBits(a.P2, b.P2) &&
           SameBits(a.P3, b.P3);
}
bool SameCurve(CBezier const& a, plain::Bezier const& b) { return SameCurve(a, Library(b)); }

testing::AssertionResult SamePoints(char const*, char const*, Points const& a, Points const& b) {
    if (a.size() != b.size()) {
        return testing::AssertionFailure() << a.size() << " points, " << b.size() << " expected";
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!SameBits(a[i], b[i])) {
            return testing::AssertionFailure()
                   << "point " << i << " is " << Text(a[i]) << ", expected " << Text(b[i]);
        }
    }
    return testing::AssertionSuccess();
}

Points PointsOf(TPolygon<double> const& poly) {
    Points points;
    for (long i = 0; i <= poly.LastIndex(); ++i) {
        points.push_back(poly.GetPt(i));
    }
    return points;
}

Points Flattened(CBezier const& c, double error) {
    TPolygon<double> poly;
    c.Flatten(poly, error);
    return PointsOf(poly);
}

void Collect(Pt const& p, void* data) { static_cast<Points*>(data)->push_back(p); }

Points gCollected; // NOLINT: the callback without data has nowhere else to put its points

void CollectGlobally(Pt const& p) { gCollected.push_back(p); }

/// The delivered points through the callback with data.
Points Generated(CBezier const& c, bool force, short depth) {
    Points points;
    c.GenerateSegment(Collect, &points, force, depth);
    return points;
}

/// The delivered points through the callback without data.
Points GeneratedGlobally(CBezier const& c, bool force, short depth) {
    gCollected.clear();
    c.GenerateSegment(CollectGlobally, force, depth);
    return gCollected;
}

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

TEST_F(Bezier, LargestDepthDoesNotExhaustTheStack) {
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

/// A curve whose left half is the curve itself, bit for bit, and whose right half is a point: its
/// three last points are the neighbour of its first, so that halving rounds to where it was. Not
/// flat at tolerance 0, as the rounding of the foot on such a chord exceeds it.
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

// ---------------------------------------------------------------------------------------------
// Nearest parameter

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

// ---------------------------------------------------------------------------------------------
// Hit test and rectangle test

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

// ---------------------------------------------------------------------------------------------
// Length and fractions

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

// ---------------------------------------------------------------------------------------------
// Comparison with the step-by-step form, to the last bit

enum class Kind {
    Drawing,    ///< as drawn: coordinates of hundreds
    Grid,       ///< small whole numbers: coincident points, vertical and horizontal chords, cusps
    NearlyFlat, ///< control points within a few tolerances of the chord
    SShape,     ///< middle on the chord
    Loop,       ///< coincident ends
    Degenerate, ///< control points on the ends
    Scaled,     ///< any size from 1e-300 to 1e300
    Mixed,      ///< each coordinate of another size
    Denormal,   ///< a few of the smallest steps
    Steep,      ///< chord nearly vertical or nearly horizontal
    Offset,     ///< small and far from the origin: cancellation
    Special,    ///< NaN, infinities, largest numbers
};

CBezier MakeCurve(Random& random, Kind kind) {
    CBezier c(random.Pt(0, 500), random.Pt(0, 500), random.Pt(0, 500), random.Pt(0, 500));
    Pt* const points[] = {&c.P0, &c.P1, &c.P2, &c.P3};
    switch (kind) {
    case Kind::Drawing:
        break;
    case Kind::Grid:
        for (Pt* p : points) {
            *p = Pt(random.Int(-4, 4), random.Int(-4, 4));
        }
        c *= random.OneIn(2) ? 1.0 : 16.0;
        break;
    case Kind::NearlyFlat: {
        Pt const d = c.P3 - c.P0;
        Pt const normal = Pt(-d.v, d.h) / (d.Length() + 1e-9);
        double const reach = random.Decade(-6, 0.5);
        c.P1 = c.P0 + d * random.Unit() + normal * random.Uniform(-reach, reach);
        c.P2 = c.P0 + d * random.Unit() + normal * random.Uniform(-reach, reach);
        break;
    }
    case Kind::SShape:
        c.P3 = c.P1 + c.P2 - c.P0;
        break;
    case Kind::Loop:
        c.P3 = c.P0;
        if (random.OneIn(4)) {
            c.P2 = c.P1;
        }
        break;
    case Kind::Degenerate:
        if (random.OneIn(2)) {
            c.P1 = c.P0;
        }
        if (random.OneIn(2)) {
            c.P2 = c.P3;
        }
        if (random.OneIn(3)) {
            c.P2 = c.P1;
        }
        if (random.OneIn(5)) {
            c.P3 = c.P0;
        }
        break;
    case Kind::Scaled:
        c *= random.Decade(-300, 297);
        break;
    case Kind::Mixed:
        for (Pt* p : points) {
            *p = Pt(random.Uniform(-1, 1) * random.Decade(-12, 12),
                    random.Uniform(-1, 1) * random.Decade(-12, 12));
        }
        break;
    case Kind::Denormal:
        for (Pt* p : points) {
            *p = Pt(random.Int(-40, 40) * kTiny, random.Int(-40, 40) * kTiny);
        }
        break;
    case Kind::Steep: {
        double const slant = random.Decade(-20, -1);
        c.P3 = c.P0 + Pt(random.Uniform(-1, 1) * slant, random.Uniform(-400, 400));
        if (random.OneIn(2)) {
            for (Pt* p : points) {
                std::swap(p->h, p->v);
            }
        }
        break;
    }
    case Kind::Offset:
        c += Pt(random.Uniform(-1, 1), random.Uniform(-1, 1)) * random.Decade(4, 14);
        break;
    case Kind::Special: {
        double const specials[] = {kNaN, kInf, -kInf, kMax, -kMax, -0.0, kTiny, 1e154, 1e-162};
        Pt& p = *points[random.Int(0, 3)];
        (random.OneIn(2) ? p.h : p.v) = specials[random.Int(0, 8)];
        if (random.OneIn(2)) {
            (random.OneIn(2) ? c.P0.h : c.P3.v) = specials[random.Int(0, 8)];
        }
        break;
    }
    }
    return c;
}

/// The deviation of a random piece of the curve, a few steps off: the tolerance at which that
/// piece is just flat, or just not.
double CriticalTolerance(Random& random, CBezier const& c) {
    plain::Bezier piece = Plain(c);
    for (int depth = random.Int(0, 6); depth > 0; --depth) {
        plain::Bezier left;
        plain::Bezier right;
        piece.Divide(left, right);
        piece = random.OneIn(2) ? left : right;
    }
    return StepUlps(piece.Deviation(), random.Int(-3, 3));
}

double MakeTolerance(Random& random, CBezier const& c) {
    switch (random.Int(0, 9)) {
    case 0:
        return 0.001;
    case 1:
        return 1.0;
    case 2:
        return random.Decade(-4, 2);
    case 3:
        return random.OneIn(20) ? -random.Decade(-4, 2) : 0.1;
    case 4:
        return random.OneIn(4) ? 0.0 : 0.25;
    default:
        return CriticalTolerance(random, c);
    }
}

/// Runs the same on the library and on the plain form, from the same settings and counters, and
/// expects the counters to agree afterwards.
class Comparison {
public:
    Comparison(double maxError, std::int16_t limit) {
        CBezier::mMaxError = plain::state.maxError = maxError;
        CBezier::mRecursionLimit = plain::state.recursionLimit = limit;
        CBezier::mCount = plain::state.mCount = 1000;
        gCount = plain::state.gCount = 10;
        maxCount = plain::state.maxCount = 50;
    }
    bool Agrees() const {
        return CBezier::mCount == plain::state.mCount && gCount == plain::state.gCount &&
               maxCount == plain::state.maxCount &&
               SameBits(CBezier::mMaxError, plain::state.maxError);
    }
};

/// Makes the kernels take one of their forms for as long as it lives.
class KernelForm {
public:
    explicit KernelForm(bool portable) { trammel_detail::UsePortableForms(portable); }
    ~KernelForm() { trammel_detail::UsePortableForms(false); }
    KernelForm(KernelForm const&) = delete;
    KernelForm& operator=(KernelForm const&) = delete;
};

void CompareGeneration(CBezier const& c, double tolerance, std::int16_t limit) {
    plain::Bezier const same = Plain(c);
    ASSERT_EQ(c.Flat(tolerance), same.Flat(tolerance));
    {
        Comparison const comparison(0.5, limit);
        TPolygon<double> poly;
        c.Flatten(poly, tolerance);
        Points expected;
        same.Flatten(expected, tolerance);
        ASSERT_PRED_FORMAT2(SamePoints, PointsOf(poly), expected);
        ASSERT_TRUE(comparison.Agrees()) << gCount << " " << plain::state.gCount;
    }
    for (bool const force : {false, true}) {
        Comparison const comparison(tolerance, limit);
        Points const points =
            force ? Generated(c, force, limit) : GeneratedGlobally(c, force, limit);
        Points expected;
        same.GenerateSegment([&](Pt const& p) { expected.push_back(p); }, force, limit);
        ASSERT_PRED_FORMAT2(SamePoints, points, expected);
        ASSERT_TRUE(comparison.Agrees());
    }
}

void CompareQueries(Random& random, CBezier c, double tolerance, std::int16_t limit) {
    plain::Bezier const same = Plain(c);
    double const t = random.OneIn(8) ? random.Int(0, 4) / 4.0 : random.Uniform(-0.2, 1.2);
    double const u = random.OneIn(8) ? random.Int(0, 4) / 4.0 : random.Uniform(-0.2, 1.2);
    // A point on or beside the curve.
    Pt const on = c.TPt(random.Unit());
    double const beside = random.OneIn(2) ? 1.0 : tolerance;
    Pt const pt = on + random.Pt(-1, 1) * beside;
    Comparison const comparison(tolerance, limit);

    ASSERT_SAME(c.TPt(t), same.TPt(t));
    ASSERT_SAME(c.Extents(), same.Extents());
    CBezier left;
    CBezier right;
    plain::Bezier plainLeft;
    plain::Bezier plainRight;
    ASSERT_SAME(c.Divide(left, right), same.Divide(plainLeft, plainRight));
    ASSERT_TRUE(SameCurve(left, plainLeft) && SameCurve(right, plainRight));
    ASSERT_SAME(c.Divide(left, right, t), same.Divide(plainLeft, plainRight, t));
    ASSERT_TRUE(SameCurve(left, plainLeft) && SameCurve(right, plainRight));
    ASSERT_SAME(c.Divide(left, right, pt), same.Divide(plainLeft, plainRight, pt));
    ASSERT_TRUE(SameCurve(left, plainLeft) && SameCurve(right, plainRight));
    c.GetTRange(t, u, left);
    ASSERT_TRUE(SameCurve(left, same.GetTRange(t, u)));

    ASSERT_SAME(c.FindTValue(pt, 0.001, 0.0, 1.0), same.FindTValue(pt, 0.001, 0.0, 1.0));
    double const step = random.Decade(-17, 0);
    ASSERT_SAME(c.FindTValue(pt, step, t, u), same.FindTValue(pt, step, t, u));
    ASSERT_SAME(c.FindDividedTValue(pt, step, t, u), same.FindDividedTValue(pt, step, t, u));
    ASSERT_TRUE(comparison.Agrees());

    ASSERT_EQ(c.HitTest(pt, beside), same.HitTest(pt, beside));
    ASSERT_TRUE(comparison.Agrees());
    Box const r(pt.h, pt.v, pt.h + random.Uniform(-1, 1) * beside * 8,
                pt.v + random.Uniform(-1, 1) * beside * 8);
    ASSERT_EQ(c.Intersects(r), same.Intersects(r));
    ASSERT_TRUE(comparison.Agrees());
    ASSERT_SAME(c.Length(), same.Length());
    ASSERT_TRUE(comparison.Agrees());
    ASSERT_SAME(c.PercentT(t), same.PercentT(t));
    ASSERT_TRUE(comparison.Agrees());
    ASSERT_SAME(c.TPercent(t), same.TPercent(t));
    ASSERT_TRUE(comparison.Agrees());
}

class BezierComparison : public Bezier, public ::testing::WithParamInterface<Kind> {
protected:
    std::int16_t Limit(Random& random) const {
        // Curves that do not become flat use all of the depth.
        switch (GetParam()) {
        case Kind::Drawing:
        case Kind::NearlyFlat:
        case Kind::SShape:
        case Kind::Loop:
        case Kind::Degenerate:
            return static_cast<std::int16_t>(random.OneIn(4) ? random.Int(-1, 9) : 15);
        case Kind::Special:
            return static_cast<std::int16_t>(random.Int(-1, 5));
        default:
            return static_cast<std::int16_t>(random.Int(-1, 8));
        }
    }
    std::uint64_t Seed() const { return 100 + static_cast<std::uint64_t>(GetParam()); }
};

TEST_P(BezierComparison, GenerationAgreesAtAndAroundCriticalTolerances) {
    Random random(Seed());
    for (int i = 0; i < 2000; ++i) {
        CBezier const c = MakeCurve(random, GetParam());
        double const tolerance = MakeTolerance(random, c);
        std::int16_t const full = Limit(random);
        // Tolerance that nothing meets: as many points as the depth allows.
        std::int16_t const limit =
            tolerance > 1e-5 ? full : std::min<std::int16_t>(full, std::int16_t{8});
        SCOPED_TRACE(testing::Message() << "curve " << i << ": " << Describe(c) << ", tolerance "
                                        << Text(tolerance) << ", depth " << limit);
        KernelForm const form(i % 2 == 0);
        CompareGeneration(c, tolerance, limit);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_P(BezierComparison, FlatnessAgreesWithinAFewUlpsOfTheDeviation) {
    Random random(Seed() + 1000);
    for (int i = 0; i < 3000; ++i) {
        CBezier const c = MakeCurve(random, GetParam());
        plain::Bezier const same = Plain(c);
        double const deviation = same.Deviation();
        for (int ulps : {-1000000, -100, -3, -2, -1, 0, 1, 2, 3, 100, 1000000}) {
            double tolerance = deviation;
            if (std::abs(ulps) < 1000) {
                tolerance = StepUlps(deviation, ulps);
            } else {
                tolerance *= 1.0 + ulps * 0x1p-52;
            }
            // Depth 2 divides once, and only if the curve itself is not flat.
            CBezier::mMaxError = tolerance;
            bool const flat = same.Flat(tolerance);
            ASSERT_EQ(c.Flat(tolerance), flat) << Describe(c) << " " << ulps;
            ASSERT_EQ(Generated(c, false, 2).empty(), flat) << Describe(c) << " " << ulps;
        }
    }
}

TEST_P(BezierComparison, QueriesAgree) {
    Random random(Seed() + 2000);
    for (int i = 0; i < 1000; ++i) {
        CBezier const c = MakeCurve(random, GetParam());
        double const tolerance = std::max(0.01, MakeTolerance(random, c));
        std::int16_t const limit = Limit(random);
        SCOPED_TRACE(testing::Message() << "curve " << i << ": " << Describe(c) << ", tolerance "
                                        << Text(tolerance) << ", depth " << limit);
        KernelForm const form(i % 2 == 0);
        CompareQueries(random, c, tolerance, limit);
        if (HasFatalFailure()) {
            return;
        }
    }
}

TEST_F(Bezier, LongCurvesAgreeWithThePlainForm) {
    Random random(73);
    for (int i = 0; i < 60; ++i) {
        double const size = random.Decade(3, 7); // up to the 16,383 points that the depth allows
        CBezier const c(random.Pt(0, size), random.Pt(0, size), random.Pt(0, size),
                        random.Pt(0, size));
        plain::Bezier const same = Plain(c);
        SCOPED_TRACE(Describe(c));
        KernelForm const form(i % 2 == 0);
        CompareGeneration(c, 0.001, 15);
        ASSERT_FALSE(HasFatalFailure());
        double const t = random.Uniform(-0.1, 1.1);
        Comparison const comparison(0.001, 15);
        ASSERT_SAME(c.Length(), same.Length());
        ASSERT_SAME(c.PercentT(t), same.PercentT(t));
        ASSERT_TRUE(comparison.Agrees());
    }
}

// At these points the bisection's product nearly vanishes: on the line through the middle of a
// piece at a right angle to its chord, and as near to it as the rounding of the two forms.
TEST_F(Bezier, NearestParameterAgreesWhereTheSideIsInDoubt) {
    Random random(74);
    for (int i = 0; i < 20000; ++i) {
        CBezier c = MakeCurve(random, static_cast<Kind>(random.Int(0, 5)));
        plain::Bezier const same = Plain(c);
        double const step = random.OneIn(2) ? 0.001 : random.Decade(-6, -1);
        plain::Bezier piece = same;
        for (int depth = random.Int(0, 8); depth > 0; --depth) {
            plain::Bezier left;
            plain::Bezier right;
            piece.Divide(left, right);
            piece = random.OneIn(2) ? left : right;
        }
        Pt const a = piece.TPt(0.5 - step);
        Pt const b = piece.TPt(0.5 + step);
        Pt const normal(a.v - b.v, b.h - a.h);
        Pt pt = (a + b) / 2.0 + normal * (random.Uniform(-1, 1) * random.Decade(0, 6));
        pt.h = StepUlps(pt.h, random.Int(-4, 4));
        ASSERT_SAME(c.FindTValue(pt, step, 0.0, 1.0), same.FindTValue(pt, step, 0.0, 1.0))
            << Describe(c) << " " << Text(pt.h) << " " << Text(pt.v) << " " << Text(step);
        ASSERT_SAME(c.FindDividedTValue(pt, step, 0.0, 1.0),
                    same.FindDividedTValue(pt, step, 0.0, 1.0))
            << Describe(c);
    }
}

// A curve of some denormal units, whose products are off by one each, and a point so far away that
// the estimate's terms are ordinary numbers.
TEST_F(Bezier, NearestParameterOfTinyCurvesToFarPointsAgrees) {
    Random random(75);
    for (int i = 0; i < 100000; ++i) {
        double const size = std::ldexp(1.0, -random.Int(950, 1070));
        auto const small = [&] { return Pt(random.Uniform(-1, 1), random.Uniform(-1, 1)) * size; };
        CBezier c(small(), small(), small(), small());
        plain::Bezier const same = Plain(c);
        Pt const pt(std::ldexp(random.Uniform(-1, 1), random.Int(0, 400)),
                    std::ldexp(random.Uniform(-1, 1), random.Int(0, 400)));
        double const step = std::ldexp(1.0, -random.Int(3, 40));
        ASSERT_SAME(c.FindTValue(pt, step, 0.0, 1.0), same.FindTValue(pt, step, 0.0, 1.0))
            << Describe(c) << " " << Text(pt.h) << " " << Text(pt.v) << " " << Text(step);
        ASSERT_SAME(c.FindDividedTValue(pt, step, 0.1, 0.9),
                    same.FindDividedTValue(pt, step, 0.1, 0.9))
            << Describe(c) << " " << Text(pt.h) << " " << Text(pt.v) << " " << Text(step);
    }
}

std::string KindName(testing::TestParamInfo<Kind> const& info) {
    char const* const names[] = {"Drawing", "Grid",  "NearlyFlat", "SShape", "Loop",   "Degenerate",
                                 "Scaled",  "Mixed", "Denormal",   "Steep",  "Offset", "Special"};
    return names[static_cast<int>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(AllKinds, BezierComparison,
                         testing::Values(Kind::Drawing, Kind::Grid, Kind::NearlyFlat, Kind::SShape,
                                         Kind::Loop, Kind::Degenerate, Kind::Scaled, Kind::Mixed,
                                         Kind::Denormal, Kind::Steep, Kind::Offset, Kind::Special),
                         KindName);

} // namespace
