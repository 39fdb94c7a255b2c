// SPDX-License-Identifier: MIT

#include "TPoint.h"

#include "TestSupport.h"
#include "UTrigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <tuple>
#include <type_traits>

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;
using trammel_test::SameBits;

namespace {

using DPoint = TPoint<double>;
using SPoint = TPoint<short>;

Point MakePoint(int h, int v) {
    Point p;
    p.v = static_cast<std::int16_t>(v);
    p.h = static_cast<std::int16_t>(h);
    return p;
}

/// The low 16 bits of an exact integer result.
short Wrapped(std::int64_t value) {
    return static_cast<short>(static_cast<std::uint16_t>(static_cast<std::uint64_t>(value)));
}

TEST(TPointLayout, IsVerticalFirst) {
    EXPECT_EQ(offsetof(DPoint, v), 0U);
    EXPECT_EQ(offsetof(DPoint, h), 8U);
    EXPECT_EQ(sizeof(DPoint), 16U);
    EXPECT_EQ(offsetof(SPoint, v), 0U);
    EXPECT_EQ(offsetof(SPoint, h), 2U);
    EXPECT_EQ(sizeof(SPoint), sizeof(Point));
    EXPECT_FALSE(std::is_polymorphic_v<DPoint>);
}

TEST(TPointDouble, StartsNullAndTakesHorizontalFirst) {
    EXPECT_EQ(DPoint().h, 0.0);
    EXPECT_EQ(DPoint().v, 0.0);
    DPoint const p(3.0, -4.0);
    EXPECT_EQ(p.h, 3.0);
    EXPECT_EQ(p.v, -4.0);
    DPoint const copy(p);
    EXPECT_EQ(copy, p);
    DPoint q;
    q.Set(5.0, 6.0);
    EXPECT_EQ(q.h, 5.0);
    EXPECT_EQ(q.v, 6.0);
    q = p;
    EXPECT_EQ(q, DPoint(3.0, -4.0));
    q.SetNull();
    EXPECT_TRUE(SameBits(q, DPoint(0.0, 0.0)));
}

TEST(TPointShort, StartsNullAndTakesHorizontalFirst) {
    EXPECT_EQ(SPoint().h, 0);
    EXPECT_EQ(SPoint().v, 0);
    SPoint p(3, -4);
    EXPECT_EQ(p.h, 3);
    EXPECT_EQ(p.v, -4);
    p.Set(5, 6);
    EXPECT_EQ(p.h, 5);
    EXPECT_EQ(p.v, 6);
    SPoint const copy(p);
    EXPECT_EQ(copy, SPoint(5, 6));
    p.SetNull();
    EXPECT_EQ(p, SPoint(0, 0));
}

template <class P> void ExpectAPairInTheOrderOfTheArguments() {
    using T = decltype(P::h);
    static_assert(std::tuple_size_v<P> == 2);
    static_assert(std::is_same_v<std::tuple_element_t<0, P>, T>);
    static_assert(std::is_same_v<std::tuple_element_t<1, P>, T>);
    static_assert(std::is_same_v<std::tuple_element_t<1, P const>, T const>);

    P p(3, -4);
    auto [h, v] = p;
    EXPECT_EQ(h, 3);
    EXPECT_EQ(v, -4);
    h = 7; // of the copy
    EXPECT_EQ(p, P(3, -4));

    auto& [hRef, vRef] = p;
    hRef = 5;
    vRef = 6;
    EXPECT_EQ(p.h, 5);
    EXPECT_EQ(p.v, 6);

    P const& constant = p;
    auto const& [hConst, vConst] = constant;
    static_assert(std::is_same_v<decltype(hConst), T const>);
    EXPECT_EQ(&hConst, &p.h);
    EXPECT_EQ(&vConst, &p.v);

    auto&& [hOfResult, vOfResult] = p + P(1, 1);
    EXPECT_EQ(hOfResult, 6);
    EXPECT_EQ(vOfResult, 7);

    static_assert(std::is_same_v<decltype(get<0>(p)), T&>);
    static_assert(std::is_same_v<decltype(get<0>(constant)), T const&>);
    static_assert(std::is_same_v<decltype(get<0>(P(1, 2))), T&&>);
    static_assert(std::is_same_v<decltype(get<1>(P(1, 2))), T&&>);
    get<0>(p) = 8;
    get<1>(p) = 9;
    EXPECT_EQ(p, P(8, 9));
    EXPECT_EQ(get<0>(constant), 8);
    EXPECT_EQ(get<1>(constant), 9);
    EXPECT_EQ(get<0>(P(1, 2)), 1);
    EXPECT_EQ(get<1>(P(1, 2)), 2);
}

TEST(TPointDouble, StructuredBindingsTakeHorizontalFirst) {
    ExpectAPairInTheOrderOfTheArguments<DPoint>();
}

TEST(TPointShort, StructuredBindingsTakeHorizontalFirst) {
    ExpectAPairInTheOrderOfTheArguments<SPoint>();
}

TEST(TPointDouble, IsNullWhenBothCoordinatesAreZeroOfEitherSign) {
    EXPECT_TRUE(DPoint().Null());
    EXPECT_TRUE(DPoint(-0.0, 0.0).Null());
    EXPECT_FALSE(DPoint(5e-324, 0.0).Null());
    EXPECT_FALSE(DPoint(0.0, -1.0).Null());
    EXPECT_FALSE(DPoint(kNaN, 0.0).Null());
    EXPECT_FALSE(DPoint(0.0, kNaN).Null());
    EXPECT_TRUE(SPoint().Null());
    EXPECT_FALSE(SPoint(0, 1).Null());
    EXPECT_FALSE(SPoint(-1, 0).Null());
}

TEST(TPointConversion, FromShortIsExact) {
    EXPECT_EQ(DPoint(SPoint(-32768, 32767)), DPoint(-32768.0, 32767.0));
    Random random(301);
    for (int i = 0; i < 1000; ++i) {
        SPoint const p(random.Short(), random.Short());
        ASSERT_EQ(SPoint(DPoint(p)), p);
    }
}

TEST(TPointConversion, ToShortTruncatesTowardZero) {
    EXPECT_EQ(SPoint(DPoint(2.9, -2.9)), SPoint(2, -2));
    EXPECT_EQ(SPoint(DPoint(0.999, -0.999)), SPoint(0, 0));
    EXPECT_EQ(SPoint(DPoint(32767.99, -32768.99)), SPoint(32767, -32768));
}

TEST(TPointConversion, ToShortWrapsAt16Bits) {
    EXPECT_EQ(SPoint(DPoint(40000.0, 0.0)), SPoint(-25536, 0));
    EXPECT_EQ(SPoint(DPoint(0.0, -40000.0)), SPoint(0, 25536));
    EXPECT_EQ(SPoint(DPoint(65536.0, 65537.9)), SPoint(0, 1));
    EXPECT_EQ(SPoint(DPoint(2147483647.5, -2147483648.5)), SPoint(-1, 0));
}

TEST(TPointConversion, ToShortOfWhatFitsNo32BitsIsZero) {
    EXPECT_EQ(SPoint(DPoint(2147483648.0, -2147483649.0)), SPoint(0, 0));
    EXPECT_EQ(SPoint(DPoint(2147483649.0, 1e300)), SPoint(0, 0));
    EXPECT_EQ(SPoint(DPoint(kNaN, kInf)), SPoint(0, 0));
    EXPECT_EQ(SPoint(DPoint(-kInf, 7.0)), SPoint(0, 7));
}

TEST(TPointConversion, FromFixedPointIsExactOrTruncates) {
    FPoint const p{0x00018000, -0x0002C000}; // v 1.5, h -2.75
    EXPECT_EQ(DPoint(p), DPoint(-2.75, 1.5));
    EXPECT_EQ(SPoint(p), SPoint(-2, 1));
    FPoint const extreme{std::numeric_limits<Fixed>::max(), std::numeric_limits<Fixed>::min()};
    EXPECT_EQ(DPoint(extreme), DPoint(-32768.0, 32767.0 + 65535.0 / 65536.0));
    EXPECT_EQ(SPoint(extreme), SPoint(-32768, 32767));
}

TEST(TPointConversion, FromPlatformPointIsExact) {
    EXPECT_EQ(DPoint(MakePoint(-32768, 12)), DPoint(-32768.0, 12.0));
    EXPECT_EQ(SPoint(MakePoint(-32768, 12)), SPoint(-32768, 12));
}

TEST(TPointConversion, FromSinglePrecisionPointsTakesXForH) {
    CGPoint const cg{0.1F, -7.75F};
    EXPECT_EQ(DPoint(cg), DPoint(static_cast<double>(0.1F), -7.75));
    EXPECT_EQ(SPoint(cg), SPoint(0, -7));
    _NSPoint const ns{-3.99F, 40000.5F};
    EXPECT_EQ(DPoint(ns), DPoint(static_cast<double>(-3.99F), 40000.5));
    EXPECT_EQ(SPoint(ns), SPoint(-3, -25536));
    CGPoint const bad{std::numeric_limits<float>::quiet_NaN(),
                      std::numeric_limits<float>::infinity()};
    EXPECT_EQ(SPoint(bad), SPoint(0, 0));
    EXPECT_TRUE(std::isnan(DPoint(bad).h));
    EXPECT_EQ(DPoint(bad).v, kInf);
}

TEST(TPointConversion, ToPlatformPointRoundsHalvesAwayFromZero) {
    struct {
        double in;
        int out;
    } const cases[] = {
        {2.5, 3},          {-2.5, -3},        {0.5, 1},          {-0.5, -1},
        {2.49, 2},         {-2.51, -3},       {1.5, 2},          {0.0, 0},
        {40000.0, -25536}, {32767.5, -32768}, {-32768.5, 32767}, {0.49999999999999994, 0},
        {kNaN, 0},         {kInf, 0},         {1e10, 0},
    };
    for (auto const& c : cases) {
        Point const h = DPoint(c.in, 7.0);
        EXPECT_EQ(h.h, c.out) << c.in;
        EXPECT_EQ(h.v, 7);
        Point const v = DPoint(7.0, c.in);
        EXPECT_EQ(v.v, c.out) << c.in;
        EXPECT_EQ(v.h, 7);
    }
}

TEST(TPointConversion, OfShortToPlatformPointIsTheIdentity) {
    Point const p = SPoint(-32768, 32767);
    EXPECT_EQ(p.h, -32768);
    EXPECT_EQ(p.v, 32767);
}

TEST(TPointConversion, ToSinglePrecisionPointsGivesHAsX) {
    CGPoint const cg = DPoint(0.1, -1e39);
    EXPECT_EQ(cg.x, 0.1F);
    EXPECT_EQ(cg.y, -std::numeric_limits<float>::infinity());
    _NSPoint const ns = DPoint(16777217.0, 2.5);
    EXPECT_EQ(ns.x, 16777216.0F);
    EXPECT_EQ(ns.y, 2.5F);
    CGPoint const fromShort = SPoint(-3, 4);
    EXPECT_EQ(fromShort.x, -3.0F);
    EXPECT_EQ(fromShort.y, 4.0F);
    _NSPoint const nsFromShort = SPoint(-3, 4);
    EXPECT_EQ(nsFromShort.x, -3.0F);
    EXPECT_EQ(nsFromShort.y, 4.0F);
}

TEST(TPointText, WritesHorizontalFirst) {
    EXPECT_EQ(DPoint(1.5, 2.0).NSString(), "{1.500000, 2.000000}");
    EXPECT_EQ(SPoint(3, -4).NSString(), "{3, -4}");
    EXPECT_EQ(DPoint(-0.0000004, 1e15).NSString(), "{-0.000000, 1000000000000000.000000}");
    EXPECT_EQ(DPoint(-kNaN, -kInf).NSString(), "{nan, -inf}");
    EXPECT_EQ(SPoint(-32768, 32767).NSString(), "{-32768, 32767}");
}

TEST(TPointDouble, AddsSubtractsMultipliesAndDividesByCoordinate) {
    DPoint const p(6.0, -8.0);
    DPoint const q(2.0, 4.0);
    EXPECT_EQ(-p, DPoint(-6.0, 8.0));
    EXPECT_EQ(p + q, DPoint(8.0, -4.0));
    EXPECT_EQ(p - q, DPoint(4.0, -12.0));
    EXPECT_EQ(p * q, DPoint(12.0, -32.0));
    EXPECT_EQ(p / q, DPoint(3.0, -2.0));
    EXPECT_EQ(p * 0.5, DPoint(3.0, -4.0));
    EXPECT_EQ(p / 4.0, DPoint(1.5, -2.0));
    EXPECT_EQ(p, DPoint(6.0, -8.0)); // the plain operators leave the operands alone
    EXPECT_EQ(q, DPoint(2.0, 4.0));
    EXPECT_TRUE(SameBits(-DPoint(0.0, -0.0), DPoint(-0.0, 0.0)));
}

TEST(TPointDouble, DividesByZeroAsTheFloatingPointUnitDoes) {
    DPoint const p = DPoint(1.0, -1.0) / DPoint(0.0, 0.0);
    EXPECT_EQ(p.h, kInf);
    EXPECT_EQ(p.v, -kInf);
    EXPECT_TRUE(std::isnan((DPoint(0.0, 1.0) / 0.0).h));
    EXPECT_EQ((DPoint(0.0, 1.0) / 0.0).v, kInf);
    EXPECT_EQ((DPoint(0.0, 1.0) / -0.0).v, -kInf);
}

TEST(TPointDouble, CompoundOperatorsReturnThePoint) {
    DPoint p(1.0, 2.0);
    EXPECT_EQ(&(p += DPoint(1.0, 1.0)), &p);
    EXPECT_EQ(&(p -= DPoint(1.0, 1.0)), &p);
    EXPECT_EQ(&(p *= DPoint(1.0, 1.0)), &p);
    EXPECT_EQ(&(p /= DPoint(1.0, 1.0)), &p);
    EXPECT_EQ(&(p *= 1.0), &p);
    EXPECT_EQ(&(p /= 1.0), &p);
    EXPECT_EQ(&p.Offset(0.0, 0.0), &p);
    EXPECT_EQ(&p.Offset(DPoint()), &p);
    EXPECT_EQ(&p.Scale(1.0), &p);
    EXPECT_EQ(&p.Scale(1.0, 1.0), &p);
    EXPECT_EQ(&p.Rotate(0.0), &p);
    EXPECT_EQ(&p.Rotate(0.0, DPoint()), &p);
    EXPECT_EQ(p, DPoint(1.0, 2.0));
}

TEST(TPointDouble, MayBeItsOwnArgument) {
    DPoint p(3.0, -5.0);
    DPoint const& self = p;
    p += self;
    EXPECT_EQ(p, DPoint(6.0, -10.0));
    p *= self;
    EXPECT_EQ(p, DPoint(36.0, 100.0));
    p /= self;
    EXPECT_EQ(p, DPoint(1.0, 1.0));
    p -= self;
    EXPECT_EQ(p, DPoint(0.0, 0.0));
    p.Set(3.0, -5.0);
    p.Offset(self);
    EXPECT_EQ(p, DPoint(6.0, -10.0));
    p.Rotate(1.0, self); // about itself: stays, though the steps pass through the origin
    EXPECT_EQ(p, DPoint(6.0, -10.0));
    p *= p.h;
    EXPECT_EQ(p, DPoint(36.0, -60.0));
    p /= p.v;
    EXPECT_EQ(p, DPoint(-0.6, 1.0));
    p.Set(2.0, 3.0);
    p.Scale(p.h, p.v);
    EXPECT_EQ(p, DPoint(4.0, 9.0));
}

TEST(TPointShort, MayBeItsOwnArgument) {
    SPoint p(7, -9);
    SPoint const& self = p;
    p.Rotate(1.0, self);
    EXPECT_EQ(p, SPoint(7, -9));
    p += self;
    EXPECT_EQ(p, SPoint(14, -18));
    p /= self;
    EXPECT_EQ(p, SPoint(1, 1));
    p.Set(30, -40);
    p *= self;
    EXPECT_EQ(p, SPoint(900, 1600));
    p -= self;
    EXPECT_EQ(p, SPoint(0, 0));
}

TEST(TPointShort, WrapsAt16Bits) {
    EXPECT_EQ(-SPoint(-32768, 5), SPoint(-32768, -5));
    EXPECT_EQ(SPoint(32767, -32768) + SPoint(1, -1), SPoint(-32768, 32767));
    EXPECT_EQ(SPoint(-32768, 32767) - SPoint(1, -1), SPoint(32767, -32768));
    EXPECT_EQ(SPoint(256, -32768) * SPoint(256, -1), SPoint(0, -32768));
    EXPECT_EQ(SPoint(300, 181) * SPoint(300, 181), SPoint(24464, 32761));
    EXPECT_EQ(SPoint(-32768, -32768) * SPoint(-32768, 32767), SPoint(0, -32768));
    SPoint p(32767, 0);
    EXPECT_EQ(&p.Offset(1, -1), &p);
    EXPECT_EQ(p, SPoint(-32768, -1));
    p.Offset(SPoint(-1, 1));
    EXPECT_EQ(p, SPoint(32767, 0));
}

TEST(TPointShort, DividesByAPointTowardZero) {
    EXPECT_EQ(SPoint(-7, 7) / SPoint(2, -2), SPoint(-3, -3));
    EXPECT_EQ(SPoint(-32768, 32767) / SPoint(-1, -1), SPoint(-32768, -32767));
    EXPECT_EQ(SPoint(5, -5) / SPoint(10, 3), SPoint(0, -1));
}

TEST(TPointShort, ArithmeticIsExactModulo65536) {
    Random random(302);
    for (int i = 0; i < 1000; ++i) {
        SPoint const p(random.Short(), random.Short());
        SPoint const q(random.Short(), random.Short());
        std::int64_t const ph = p.h;
        std::int64_t const pv = p.v;
        ASSERT_EQ(p + q, SPoint(Wrapped(ph + q.h), Wrapped(pv + q.v)));
        ASSERT_EQ(p - q, SPoint(Wrapped(ph - q.h), Wrapped(pv - q.v)));
        ASSERT_EQ(p * q, SPoint(Wrapped(ph * q.h), Wrapped(pv * q.v)));
        ASSERT_EQ(-p, SPoint(Wrapped(-ph), Wrapped(-pv)));
        ASSERT_EQ(p + q - q, p);
        if (q.h != 0 && q.v != 0) {
            ASSERT_EQ(p / q, SPoint(Wrapped(ph / q.h), Wrapped(pv / q.v)));
        }
    }
}

TEST(TPointShort, ScalesInDoubleAndTruncates) {
    EXPECT_EQ(SPoint(100, 200) * 0.5, SPoint(50, 100));
    EXPECT_EQ(SPoint(3, 3) * 0.5, SPoint(1, 1));
    EXPECT_EQ(SPoint(3, -3) * 0.5, SPoint(1, -1));
    EXPECT_EQ(SPoint(20000, -20000) * 2.0, SPoint(-25536, 25536));
    EXPECT_EQ(SPoint(7, -7) / 2.0, SPoint(3, -3));
    EXPECT_EQ(SPoint(7, -7) / 0.1, SPoint(70, -70));
    EXPECT_EQ(SPoint(7, -7) / 0.0, SPoint(0, 0));
    EXPECT_EQ(SPoint(7, -7) * kNaN, SPoint(0, 0));
    EXPECT_EQ(SPoint(7, 1) * 1e9, SPoint(0, -13824)); // 7e9 fits no 32 bits, 1e9 does
    SPoint p(3, -3);
    EXPECT_EQ(&(p *= 1.5), &p);
    EXPECT_EQ(p, SPoint(4, -4));
    EXPECT_EQ(&(p /= 3.0), &p);
    EXPECT_EQ(p, SPoint(1, -1));
    p.Set(10, 10);
    EXPECT_EQ(&p.Scale(0.37), &p);
    EXPECT_EQ(p, SPoint(3, 3));
    EXPECT_EQ(&p.Scale(1.5, -2.5), &p);
    EXPECT_EQ(p, SPoint(4, -7));
}

TEST(TPointDouble, OffsetsAndScales) {
    DPoint p(1.0, 2.0);
    p.Offset(0.5, -4.0);
    EXPECT_EQ(p, DPoint(1.5, -2.0));
    p.Offset(DPoint(1.0, 1.0));
    EXPECT_EQ(p, DPoint(2.5, -1.0));
    p.Scale(2.0);
    EXPECT_EQ(p, DPoint(5.0, -2.0));
    p.Scale(0.5, -3.0);
    EXPECT_EQ(p, DPoint(2.5, 6.0));
}

TEST(TPointDouble, ArithmeticIsThatOfItsCoordinates) {
    Random random(303);
    for (int i = 0; i < 1000; ++i) {
        DPoint const p = random.Point(1e6);
        DPoint const q = random.Point(1e-3);
        double const s = random.Uniform(-7.0, 7.0);
        ASSERT_TRUE(SameBits(p + q, DPoint(p.h + q.h, p.v + q.v)));
        ASSERT_TRUE(SameBits(p - q, DPoint(p.h - q.h, p.v - q.v)));
        ASSERT_TRUE(SameBits(p * q, DPoint(p.h * q.h, p.v * q.v)));
        ASSERT_TRUE(SameBits(p / q, DPoint(p.h / q.h, p.v / q.v)));
        ASSERT_TRUE(SameBits(p * s, DPoint(p.h * s, p.v * s)));
        ASSERT_TRUE(SameBits(p / s, DPoint(p.h / s, p.v / s)));
    }
}

TEST(TPointComparison, EqualityIsExactAndFailsOnNaN) {
    EXPECT_TRUE(DPoint(1.0, 2.0) == DPoint(1.0, 2.0));
    EXPECT_TRUE(DPoint(0.0, -0.0) == DPoint(-0.0, 0.0));
    EXPECT_FALSE(DPoint(1.0, 2.0) == DPoint(1.0, std::nextafter(2.0, 3.0)));
    EXPECT_TRUE(DPoint(1.0, 2.0) != DPoint(std::nextafter(1.0, 2.0), 2.0));
    EXPECT_FALSE(DPoint(1.0, 2.0) != DPoint(1.0, 2.0));
    DPoint const nan(kNaN, 0.0);
    EXPECT_FALSE(nan == nan); // NOLINT(misc-redundant-expression)
    EXPECT_TRUE(nan != nan);  // NOLINT(misc-redundant-expression)
    EXPECT_TRUE(SPoint(1, 2) == SPoint(1, 2));
    EXPECT_FALSE(SPoint(1, 2) == SPoint(2, 1));
    EXPECT_TRUE(SPoint(1, 2) != SPoint(1, 3));
    EXPECT_TRUE(SPoint(1, 2) != SPoint(0, 2));
    EXPECT_FALSE(SPoint(1, 2) != SPoint(1, 2));
}

TEST(TPointComparison, LessOrEqualIsDominanceInBothCoordinates) {
    EXPECT_TRUE(DPoint(1.0, 2.0) <= DPoint(1.0, 3.0));
    EXPECT_TRUE(DPoint(1.0, 2.0) <= DPoint(1.0, 2.0));
    EXPECT_FALSE(DPoint(2.0, 1.0) <= DPoint(1.0, 3.0));
    EXPECT_FALSE(DPoint(1.0, 3.0) <= DPoint(2.0, 1.0));
    EXPECT_FALSE(DPoint(kNaN, 1.0) <= DPoint(2.0, 2.0));
    EXPECT_FALSE(DPoint(1.0, 1.0) <= DPoint(2.0, kNaN));
    EXPECT_TRUE(SPoint(1, 2) <= SPoint(1, 3));
    EXPECT_FALSE(SPoint(2, 1) <= SPoint(1, 3));
    EXPECT_FALSE(SPoint(1, 3) <= SPoint(2, 1));
}

TEST(TPointDouble, RotatesFromTheHorizontalTowardTheVerticalAxis) {
    DPoint p(1.0, 0.0);
    p.Rotate(pi / 2.0);
    EXPECT_NEAR(p.h, 0.0, 1e-15);
    EXPECT_EQ(p.v, 1.0);
    EXPECT_EQ(p.h, std::cos(pi / 2.0)); // the library's cosine, not an exact zero
    EXPECT_NE(p.h, 0.0);
}

TEST(TPointDouble, RotatesByThePlainFormula) {
    Random random(304);
    for (int i = 0; i < 1000; ++i) {
        DPoint const old = random.Point(1000.0);
        DPoint const centre = random.Point(1000.0);
        double const angle = random.Uniform(-10.0, 10.0);
        double const s = std::sin(angle);
        double const c = std::cos(angle);
        DPoint p = old;
        p.Rotate(angle);
        ASSERT_TRUE(SameBits(p, DPoint(old.h * c - old.v * s, old.h * s + old.v * c)));
        DPoint const q = old - centre;
        p = old;
        p.Rotate(angle, centre);
        ASSERT_TRUE(
            SameBits(p, DPoint(q.h * c - q.v * s + centre.h, q.h * s + q.v * c + centre.v)));
        // A turn keeps the distance and can be undone.
        ASSERT_NEAR((p - centre).Length(), (old - centre).Length(), 1e-9);
        p.Rotate(-angle, centre);
        ASSERT_NEAR(p.h, old.h, 1e-9);
        ASSERT_NEAR(p.v, old.v, 1e-9);
    }
}

TEST(TPointShort, RotatesInDoubleAndTruncatesTowardZero) {
    SPoint p(10, 0);
    p.Rotate(pi / 4.0);
    EXPECT_EQ(p, SPoint(7, 7));
    p.Set(10, 0);
    p.Rotate(-pi / 4.0);
    EXPECT_EQ(p, SPoint(7, -7));
    p.Set(100, 0);
    p.Rotate(pi / 2.0);
    EXPECT_EQ(p, SPoint(0, 100));
    p.Set(3, 4);
    p.Rotate(kNaN);
    EXPECT_EQ(p, SPoint(0, 0));
}

TEST(TPointShort, RotatesAboutACentreInSteps) {
    SPoint p(15, 20);
    EXPECT_EQ(&p.Rotate(pi / 4.0, SPoint(5, 20)), &p);
    EXPECT_EQ(p, SPoint(12, 27));
    // The difference 32769 wraps to -32767 before the turn.
    p.Set(32767, 0);
    p.Rotate(pi / 4.0, SPoint(-2, 0));
    EXPECT_EQ(p, SPoint(-23171, -23169));
}

TEST(TPoint, SlopeIsTheUnguardedQuotient) {
    EXPECT_EQ(DPoint(4.0, -2.0).Slope(), -0.5);
    EXPECT_EQ(DPoint(0.0, 5.0).Slope(), kInf);
    EXPECT_EQ(DPoint(0.0, -5.0).Slope(), -kInf);
    EXPECT_EQ(DPoint(-0.0, 5.0).Slope(), -kInf);
    EXPECT_TRUE(std::isnan(DPoint(0.0, 0.0).Slope()));
    EXPECT_TRUE(std::isnan(DPoint(kNaN, 1.0).Slope()));
    EXPECT_EQ(SPoint(4, -2).Slope(), -0.5);
    EXPECT_EQ(SPoint(0, 5).Slope(), kInf);
    EXPECT_TRUE(std::isnan(SPoint(0, 0).Slope()));
}

TEST(TPoint, AngleIsTheArcTangentOfBothCoordinates) {
    EXPECT_EQ(DPoint(0.0, 5.0).Angle(), pi / 2.0);
    EXPECT_EQ(DPoint(0.0, -5.0).Angle(), -pi / 2.0);
    EXPECT_EQ(DPoint(-1.0, 0.0).Angle(), pi);
    EXPECT_EQ(DPoint(-1.0, -0.0).Angle(), -pi);
    EXPECT_EQ(DPoint(3.0, 0.0).Angle(), 0.0);
    EXPECT_EQ(DPoint(0.0, 0.0).Angle(), 0.0);
    EXPECT_TRUE(std::isnan(DPoint(kNaN, 0.0).Angle()));
    EXPECT_EQ(SPoint(0, 5).Angle(), pi / 2.0);
    EXPECT_EQ(SPoint(-7, 7).Angle(), std::atan2(7.0, -7.0));
}

TEST(TPoint, LengthAndHypotenuseAgreeOnOrdinaryValues) {
    EXPECT_EQ(DPoint(3.0, -4.0).Length(), 5.0);
    EXPECT_EQ(DPoint(3.0, -4.0).Hypotenuse(), 5.0);
    EXPECT_EQ(DPoint().Length(), 0.0);
    EXPECT_EQ(SPoint(3, -4).Length(), 5.0);
    EXPECT_EQ(SPoint(3, -4).Hypotenuse(), 5.0);
    Random random(305);
    for (int i = 0; i < 1000; ++i) {
        DPoint const p = random.Point(1e4);
        ASSERT_EQ(p.Length(), std::sqrt(p.h * p.h + p.v * p.v));
        ASSERT_DOUBLE_EQ(p.Hypotenuse(), std::hypot(p.h, p.v));
        ASSERT_NEAR(p.Length(), p.Hypotenuse(), 1e-11);
    }
}

TEST(TPoint, OnlyTheHypotenuseReachesHugeAndTinyLengths) {
    EXPECT_EQ(DPoint(3e200, 4e200).Length(), kInf);
    EXPECT_DOUBLE_EQ(DPoint(3e200, 4e200).Hypotenuse(), 5e200);
    EXPECT_EQ(DPoint(3e-200, 4e-200).Length(), 0.0);
    EXPECT_DOUBLE_EQ(DPoint(3e-200, 4e-200).Hypotenuse(), 5e-200);
    EXPECT_TRUE(std::isnan(DPoint(kNaN, kInf).Length()));
    EXPECT_EQ(DPoint(kNaN, kInf).Hypotenuse(), kInf);
}

TEST(TPointShort, LengthSumsIn32BitsAndWraps) {
    EXPECT_TRUE(std::isnan(SPoint(-32768, -32768).Length()));
    EXPECT_DOUBLE_EQ(SPoint(-32768, -32768).Hypotenuse(), std::hypot(32768.0, 32768.0));
    EXPECT_NEAR(SPoint(-32768, -32768).Hypotenuse(), 46340.950011841577, 1e-10);
    EXPECT_EQ(SPoint(-32768, 32767).Length(), std::sqrt(2147418113.0)); // just fits
    EXPECT_EQ(SPoint(32767, 0).Length(), 32767.0);
}

} // namespace
