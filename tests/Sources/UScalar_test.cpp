// SPDX-License-Identifier: MIT

#include "UScalar.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;
using trammel_test::SameBits;

namespace {

TEST(Minmax, OrdersShorts) {
    struct {
        short a;
        short b;
        short lo;
        short hi;
    } const cases[] = {
        {3, 5, 3, 5},
        {5, 3, 3, 5},
        {4, 4, 4, 4},
        {-1, 1, -1, 1},
        {32767, -32768, -32768, 32767},
        {-32768, 32767, -32768, 32767},
    };
    for (auto const& c : cases) {
        short lo = 99;
        short hi = 99;
        minmax(lo, hi, c.a, c.b);
        EXPECT_EQ(lo, c.lo) << c.a << " " << c.b;
        EXPECT_EQ(hi, c.hi) << c.a << " " << c.b;
    }
}

TEST(Minmax, OrdersDoubles) {
    struct {
        double a;
        double b;
        double lo;
        double hi;
    } const cases[] = {
        {3.0, 5.0, 3.0, 5.0},
        {5.0, 3.0, 3.0, 5.0},
        {4.5, 4.5, 4.5, 4.5},
        {kInf, -kInf, -kInf, kInf},
        {-kInf, 1e308, -kInf, 1e308},
        {5e-324, 0.0, 0.0, 5e-324},
        // Equal, yet to be told apart: the lower is the second, the higher the first.
        {0.0, -0.0, -0.0, 0.0},
        {-0.0, 0.0, 0.0, -0.0},
    };
    for (auto const& c : cases) {
        double lo = 99.0;
        double hi = 99.0;
        minmax(lo, hi, c.a, c.b);
        EXPECT_TRUE(SameBits(lo, c.lo)) << c.a << " " << c.b;
        EXPECT_TRUE(SameBits(hi, c.hi)) << c.a << " " << c.b;
    }
}

TEST(Minmax, WithANaNGivesTheSecondTwice) {
    double lo = 99.0;
    double hi = 99.0;
    minmax(lo, hi, kNaN, 1.5);
    EXPECT_EQ(lo, 1.5);
    EXPECT_EQ(hi, 1.5);
    minmax(lo, hi, 1.5, kNaN);
    EXPECT_TRUE(std::isnan(lo));
    EXPECT_TRUE(std::isnan(hi));
}

TEST(Minmax, MayWriteOverItsInput) {
    double x = 5.0;
    double y = 3.0;
    minmax(x, y, x, y);
    EXPECT_EQ(x, 3.0);
    EXPECT_EQ(y, 5.0);
    short lower = 7;
    short upper = 9;
    minmax(upper, lower, lower, upper);
    EXPECT_EQ(upper, 7);
    EXPECT_EQ(lower, 9);
}

double Pinned(double lo, double hi, double value) {
    PinValueToRange(lo, hi, value);
    return value;
}

TEST(PinValueToRange, Clamps) {
    EXPECT_EQ(Pinned(0.0, 10.0, -1.0), 0.0);
    EXPECT_EQ(Pinned(0.0, 10.0, 11.0), 10.0);
    EXPECT_EQ(Pinned(0.0, 10.0, 4.25), 4.25);
    EXPECT_EQ(Pinned(0.0, 10.0, 0.0), 0.0);
    EXPECT_EQ(Pinned(0.0, 10.0, 10.0), 10.0);
    EXPECT_EQ(Pinned(0.0, 10.0, kInf), 10.0);
    EXPECT_EQ(Pinned(0.0, 10.0, -kInf), 0.0);
    EXPECT_EQ(Pinned(-kInf, kInf, 1e308), 1e308);
}

TEST(PinValueToRange, KeepsAValueThatEqualsABound) {
    EXPECT_TRUE(SameBits(Pinned(0.0, 1.0, -0.0), -0.0));
    EXPECT_TRUE(SameBits(Pinned(-1.0, -0.0, 0.0), 0.0));
}

TEST(PinValueToRange, WithBoundsOutOfOrderTriesTheLowerOneFirst) {
    EXPECT_EQ(Pinned(5.0, 3.0, 4.0), 5.0);
    EXPECT_EQ(Pinned(5.0, 3.0, 2.0), 5.0);
    EXPECT_EQ(Pinned(5.0, 3.0, 5.0), 3.0);
    EXPECT_EQ(Pinned(5.0, 3.0, 6.0), 3.0);
}

TEST(PinValueToRange, LeavesANaNAloneAndIgnoresNaNBounds) {
    EXPECT_TRUE(std::isnan(Pinned(0.0, 10.0, kNaN)));
    EXPECT_EQ(Pinned(kNaN, 10.0, -5.0), -5.0);
    EXPECT_EQ(Pinned(kNaN, 10.0, 15.0), 10.0);
    EXPECT_EQ(Pinned(0.0, kNaN, 15.0), 15.0);
}

TEST(PinValueToRange, MayPinABoundToTheOther) {
    double bound = 12.0;
    PinValueToRange(bound, 10.0, bound);
    EXPECT_EQ(bound, 10.0);
    bound = -3.0;
    PinValueToRange(0.0, bound, bound);
    EXPECT_EQ(bound, 0.0);
}

TEST(EqualTPt, ComparesTheLargerDifferenceStrictly) {
    TPoint<double> const p(10.0, 20.0);
    EXPECT_TRUE(EqualTPt(p, TPoint<double>(10.5, 20.999), 1.0));
    EXPECT_TRUE(EqualTPt(p, TPoint<double>(9.5, 19.001), 1.0));
    EXPECT_FALSE(EqualTPt(p, TPoint<double>(10.0, 21.0), 1.0));
    EXPECT_FALSE(EqualTPt(p, TPoint<double>(9.0, 20.0), 1.0));
    EXPECT_TRUE(EqualTPt(p, TPoint<double>(10.0, 21.0), std::nextafter(1.0, 2.0)));
    EXPECT_FALSE(EqualTPt(p, TPoint<double>(10.0, 25.0), 1.0));
    EXPECT_FALSE(EqualTPt(p, TPoint<double>(15.0, 20.0), 1.0));
}

TEST(EqualTPt, WithoutToleranceNothingIsEqual) {
    TPoint<double> const p(10.0, 20.0);
    EXPECT_FALSE(EqualTPt(p, p, 0.0));
    EXPECT_FALSE(EqualTPt(p, p, -1.0));
    EXPECT_FALSE(EqualTPt(p, p, kNaN));
    EXPECT_TRUE(EqualTPt(p, p, 5e-324));
    TPoint<short> const s(10, 20);
    EXPECT_FALSE(EqualTPt(s, s, 0.0));
    EXPECT_TRUE(EqualTPt(s, s, 0.5));
}

TEST(EqualTPt, TakesTheMaximumOfNaNsInOrder) {
    TPoint<double> const p(0.0, 0.0);
    EXPECT_FALSE(EqualTPt(p, TPoint<double>(kNaN, 0.0), 1.0));
    EXPECT_FALSE(EqualTPt(p, TPoint<double>(kNaN, kNaN), 1.0));
    EXPECT_TRUE(EqualTPt(p, TPoint<double>(0.0, kNaN), 1.0));
    EXPECT_FALSE(EqualTPt(p, TPoint<double>(2.0, kNaN), 1.0));
}

TEST(EqualTPt, InfinitiesAreNeverNear) {
    TPoint<double> const far(kInf, 0.0);
    EXPECT_FALSE(EqualTPt(far, TPoint<double>(0.0, 0.0), kInf));
    EXPECT_FALSE(EqualTPt(far, far, 1.0)); // inf - inf
    EXPECT_TRUE(EqualTPt(TPoint<double>(0.0, 0.0), TPoint<double>(1e308, -1e308), kInf));
}

TEST(EqualTPt, OfShortsWrapsItsDifference) {
    TPoint<short> const a(-32768, 0);
    TPoint<short> const b(32767, 0);
    EXPECT_TRUE(EqualTPt(a, b, 2.0));
    EXPECT_FALSE(EqualTPt(a, b, 1.0));
    EXPECT_TRUE(EqualTPt(b, a, 1.5));
    EXPECT_FALSE(EqualTPt(TPoint<short>(0, 0), TPoint<short>(3, -4), 4.0));
    EXPECT_TRUE(EqualTPt(TPoint<short>(0, 0), TPoint<short>(3, -4), 4.5));
    // A difference that stays -32768 in 16 bits has the magnitude 32768 in double.
    EXPECT_FALSE(EqualTPt(TPoint<short>(0, 0), TPoint<short>(-32768, 0), 32768.0));
    EXPECT_TRUE(EqualTPt(TPoint<short>(0, 0), TPoint<short>(-32768, 0), 32768.5));
}

TEST(TPt, InterpolatesAndExtrapolates) {
    TPoint<double> const a(1.0, 2.0);
    TPoint<double> const b(5.0, -6.0);
    EXPECT_EQ(TPt(a, b, 0.0), TPoint<double>(1.0, 2.0));
    EXPECT_EQ(TPt(a, b, 0.25), TPoint<double>(2.0, 0.0));
    EXPECT_EQ(TPt(a, b, 1.0), TPoint<double>(5.0, -6.0));
    EXPECT_EQ(TPt(a, b, 2.0), TPoint<double>(9.0, -14.0));
    EXPECT_EQ(TPt(a, b, -1.0), TPoint<double>(-3.0, 10.0));
}

TEST(TPt, IsTheStartPlusTheScaledDifference) {
    int otherFormDiffers = 0;
    Random random(201);
    for (int i = 0; i < 1000; ++i) {
        TPoint<double> const a = random.Point(1000.0);
        TPoint<double> const b = random.Point(1000.0);
        double const t = random.Uniform(-2.0, 3.0);
        TPoint<double> const want(a.h + (b.h - a.h) * t, a.v + (b.v - a.v) * t);
        ASSERT_TRUE(SameBits(TPt(a, b, t), want));
        otherFormDiffers += want.h != a.h * (1.0 - t) + b.h * t;
    }
    EXPECT_GT(otherFormDiffers, 0);
    // The far end comes with the rounding of the difference.
    EXPECT_EQ(TPt(TPoint<double>(1e16, 0.0), TPoint<double>(1.0, 0.0), 1.0).h, 0.0);
}

TEST(TPt, PassesSpecialValuesOn) {
    TPoint<double> const a(0.0, 0.0);
    EXPECT_TRUE(std::isnan(TPt(a, TPoint<double>(kInf, 1.0), 0.0).h));
    EXPECT_EQ(TPt(a, TPoint<double>(kInf, 1.0), 0.0).v, 0.0);
    EXPECT_EQ(TPt(a, TPoint<double>(1.0, -1.0), kInf).h, kInf);
    EXPECT_EQ(TPt(a, TPoint<double>(1.0, -1.0), kInf).v, -kInf);
    EXPECT_TRUE(std::isnan(TPt(a, a, kNaN).h));
}

TEST(MidPt, IsTheStartPlusHalfTheDifference) {
    EXPECT_EQ(MidPt(TPoint<double>(0.0, 10.0), TPoint<double>(4.0, -2.0)),
              TPoint<double>(2.0, 4.0));
    // Not the half of the sum: that would overflow here, and not there.
    EXPECT_EQ(MidPt(TPoint<double>(1e308, 0.0), TPoint<double>(1e308, 0.0)).h, 1e308);
    EXPECT_EQ(MidPt(TPoint<double>(-1e308, 0.0), TPoint<double>(1e308, 0.0)).h, kInf);
    Random random(202);
    for (int i = 0; i < 1000; ++i) {
        TPoint<double> const a = random.Point(1.0);
        TPoint<double> const b = random.Point(1e6);
        ASSERT_TRUE(SameBits(MidPt(a, b),
                             TPoint<double>(a.h + (b.h - a.h) * 0.5, a.v + (b.v - a.v) * 0.5)));
        ASSERT_TRUE(SameBits(MidPt(a, b), TPt(a, b, 0.5)));
    }
}

TEST(Distances, AgreeOnThreeFourFive) {
    TPoint<double> const a(1.0, 2.0);
    TPoint<double> const b(4.0, -2.0);
    EXPECT_EQ(Hypotenuse(a, b), 5.0);
    EXPECT_EQ(LineLength(a, b), 5.0);
    EXPECT_EQ(LineMagnitude(a, b), 25.0);
    EXPECT_EQ(LineLength(TPoint<short>(1, 2), TPoint<short>(4, -2)), 5.0);
    EXPECT_EQ(Hypotenuse(a, a), 0.0);
    EXPECT_EQ(LineLength(b, b), 0.0);
    EXPECT_EQ(LineMagnitude(b, b), 0.0);
}

TEST(Distances, AreTheirPlainFormulas) {
    Random random(203);
    for (int i = 0; i < 1000; ++i) {
        TPoint<double> const a = random.Point(100.0);
        TPoint<double> const b = random.Point(100.0);
        double const dh = b.h - a.h;
        double const dv = b.v - a.v;
        ASSERT_DOUBLE_EQ(Hypotenuse(a, b), std::hypot(dh, dv));
        ASSERT_EQ(LineLength(a, b), std::sqrt(dh * dh + dv * dv));
        ASSERT_EQ(LineMagnitude(a, b), dh * dh + dv * dv);
        ASSERT_EQ(Hypotenuse(a, b), Hypotenuse(b, a));
        ASSERT_EQ(LineLength(a, b), LineLength(b, a));
    }
}

TEST(Distances, OnlyTheHypotenuseReachesHugeAndTinyLengths) {
    TPoint<double> const origin;
    TPoint<double> const huge(3e200, 4e200);
    EXPECT_DOUBLE_EQ(Hypotenuse(origin, huge), 5e200);
    EXPECT_EQ(LineLength(origin, huge), kInf);
    EXPECT_EQ(LineMagnitude(origin, huge), kInf);
    TPoint<double> const tiny(3e-200, 4e-200);
    EXPECT_DOUBLE_EQ(Hypotenuse(origin, tiny), 5e-200);
    EXPECT_EQ(LineLength(origin, tiny), 0.0);
    EXPECT_EQ(LineMagnitude(origin, tiny), 0.0);
}

TEST(Distances, FollowTheArithmeticForSpecialValues) {
    TPoint<double> const origin;
    TPoint<double> const mixed(kInf, kNaN);
    EXPECT_EQ(Hypotenuse(origin, mixed), kInf); // hypot: an infinity beats a NaN
    EXPECT_TRUE(std::isnan(LineLength(origin, mixed)));
    EXPECT_TRUE(std::isnan(LineMagnitude(origin, mixed)));
    EXPECT_TRUE(std::isnan(Hypotenuse(TPoint<double>(kInf, 0.0), TPoint<double>(kInf, 0.0))));
    EXPECT_EQ(LineLength(origin, TPoint<double>(-kInf, 1.0)), kInf);
}

TEST(Distances, OfShortsDoNotWrap) {
    EXPECT_EQ(LineLength(TPoint<short>(-32768, 0), TPoint<short>(32767, 0)), 65535.0);
    EXPECT_EQ(LineLength(TPoint<short>(0, 32767), TPoint<short>(0, -32768)), 65535.0);
    EXPECT_EQ(LineLength(TPoint<short>(-32768, -32768), TPoint<short>(32767, 32767)),
              std::sqrt(65535.0 * 65535.0 * 2.0));
    Random random(204);
    for (int i = 0; i < 1000; ++i) {
        TPoint<short> const a(random.Short(), random.Short());
        TPoint<short> const b(random.Short(), random.Short());
        ASSERT_EQ(LineLength(a, b), LineLength(TPoint<double>(a), TPoint<double>(b)));
    }
}

} // namespace
