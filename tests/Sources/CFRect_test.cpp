// SPDX-License-Identifier: MIT

#include "CFRect.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;

namespace {

CFRect FromRaw(Fixed left, Fixed top, Fixed right, Fixed bottom) {
    CFRect r;
    r.left = left;
    r.top = top;
    r.right = right;
    r.bottom = bottom;
    return r;
}

TEST(CFRect, HasTheLayoutOfTheRecord) {
    EXPECT_EQ(sizeof(CFRect), sizeof(FRect));
    EXPECT_EQ(offsetof(CFRect, top), 0U);
    EXPECT_EQ(offsetof(CFRect, left), 4U);
    EXPECT_EQ(offsetof(CFRect, bottom), 8U);
    EXPECT_EQ(offsetof(CFRect, right), 12U);
    EXPECT_FALSE(std::is_polymorphic_v<CFRect>);
    EXPECT_FALSE((std::is_convertible_v<CFRect, FRect>));
}

TEST(CFRect, StartsWithoutValueAndEmpty) {
    CFRect const r;
    EXPECT_EQ(r.top, INT32_MIN);
    EXPECT_EQ(r.left, INT32_MIN);
    EXPECT_EQ(r.bottom, INT32_MIN);
    EXPECT_EQ(r.right, INT32_MIN);
    EXPECT_TRUE(r.Empty());
}

TEST(CFRect, IsEmptyWithoutWidthOrHeight) {
    EXPECT_FALSE(FromRaw(0, 0, 1, 1).Empty());
    EXPECT_TRUE(FromRaw(0, 0, 0, 1).Empty());
    EXPECT_TRUE(FromRaw(0, 0, 1, 0).Empty());
    EXPECT_TRUE(FromRaw(2, 0, 1, 1).Empty());
    EXPECT_TRUE(FromRaw(0, 2, 1, 1).Empty());
    EXPECT_FALSE(FromRaw(INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX).Empty());
}

TEST(CFRect, FromDoublesTakesTheNearestFixedPointValues) {
    CFRect const r(TRect<double>(1.5, -2.25, 40000.0, 0.5 / 65536.0));
    EXPECT_EQ(r.left, 0x00018000);
    EXPECT_EQ(r.top, -0x00024000);
    EXPECT_EQ(r.right, INT32_MAX);
    EXPECT_EQ(r.bottom, 1);
    CFRect const special(TRect<double>(kNaN, -kInf, kInf, -0.5 / 65536.0));
    EXPECT_EQ(special.left, INT32_MIN);
    EXPECT_EQ(special.top, INT32_MIN);
    EXPECT_EQ(special.right, INT32_MAX);
    EXPECT_EQ(special.bottom, -1);
}

TEST(CFRect, ToShortsRoundsAndDoesNotRectify) {
    TRect<short> const r = FromRaw(0x00028000, -0x00028000, 0x00017FFF, -0x00037FFF);
    EXPECT_EQ(r, TRect<short>(3, -3, 1, -3));
    TRect<short> const inverted = FromRaw(0x000A0000, 0x00140000, 0x00050000, 0x00010000);
    EXPECT_EQ(inverted, TRect<short>(10, 20, 5, 1));
    // 32767.5 rounds to 32768, which is cut to 16 bits.
    TRect<short> const extreme = FromRaw(INT32_MIN, 0, INT32_MAX, 0x7FFF7FFF);
    EXPECT_EQ(extreme, TRect<short>(-32768, 0, -32768, 32767));
}

TEST(CFRect, ToDoublesGoesBySinglePrecision) {
    TRect<double> const extreme = FromRaw(INT32_MAX, INT32_MIN, 0x00018000, -0x00024000);
    EXPECT_EQ(extreme, TRect<double>(32768.0, -32768.0, 1.5, -2.25));
    // 24 bits survive: 256 + 1/65536 needs 25.
    TRect<double> const rounded = FromRaw(0x00FFFFFF, 0x01000001, 0x01000003, -0x01000001);
    EXPECT_EQ(rounded, TRect<double>(16777215.0 / 65536.0, 256.0, 16777220.0 / 65536.0, -256.0));
    Random random(411);
    for (int i = 0; i < 1000; ++i) {
        Fixed const field = random.Integer(INT32_MIN / 2, INT32_MAX / 2);
        TRect<double> const r = FromRaw(field, 0, 0, field);
        ASSERT_EQ(r.left, static_cast<double>(static_cast<float>(field) / 65536.0F));
        ASSERT_EQ(r.bottom, r.left);
    }
}

TEST(CFRect, ConvertsDirectlyAsWell) {
    CFRect const r = FromRaw(0x00018000, 0x00008000, 0x00040000, 0x00050000);
    EXPECT_EQ(static_cast<TRect<double>>(r), TRect<double>(1.5, 0.5, 4.0, 5.0));
    EXPECT_EQ(static_cast<TRect<short>>(r), TRect<short>(2, 1, 4, 5));
}

TEST(CFRect, ValuesOfUpTo24BitsMakeTheRoundTrip) {
    Random random(412);
    for (int i = 0; i < 1000; ++i) {
        Fixed const limit = 0x00FFFFFF;
        CFRect const r = FromRaw(random.Integer(-limit, limit), random.Integer(-limit, limit),
                                 random.Integer(-limit, limit), random.Integer(-limit, limit));
        TRect<double> const wide = r;
        CFRect const back(wide);
        ASSERT_EQ(back.left, r.left);
        ASSERT_EQ(back.top, r.top);
        ASSERT_EQ(back.right, r.right);
        ASSERT_EQ(back.bottom, r.bottom);
    }
}

TEST(CFRect, MidPtHalvesBeforeItAdds) {
    CFPoint const high = FromRaw(0x7FFF0000, 0, 0x7FFF0000, 0x00010000).MidPt();
    EXPECT_EQ(high.h, 0x7FFF0000);
    EXPECT_EQ(high.v, 0x00008000);
    CFPoint const low = FromRaw(INT32_MIN, INT32_MIN, INT32_MIN, INT32_MAX).MidPt();
    EXPECT_EQ(low.h, INT32_MIN);
    EXPECT_EQ(low.v, 0); // -2^30 and (2^31 - 1)/2 rounded up
    CFPoint const ordinary = FromRaw(0x00010000, 0x00020000, 0x00040000, -0x00040000).MidPt();
    EXPECT_EQ(ordinary.h, 0x00028000);
    EXPECT_EQ(ordinary.v, -0x00010000);
}

TEST(CFRect, MidPtRoundsEachHalfUpward) {
    CFPoint const odd = FromRaw(1, -1, 1, -1).MidPt();
    EXPECT_EQ(odd.h, 2);
    EXPECT_EQ(odd.v, 0);
    CFPoint const mixed = FromRaw(3, -3, 0, 0).MidPt();
    EXPECT_EQ(mixed.h, 2);
    EXPECT_EQ(mixed.v, -1);
}

TEST(CFRect, MidPtOfRoundedHalvesBeyondTheRangeWraps) {
    CFPoint const wrapped = FromRaw(INT32_MAX, 0, INT32_MAX, 0).MidPt();
    EXPECT_EQ(wrapped.h, INT32_MIN);
    EXPECT_EQ(wrapped.v, 0);
}

} // namespace
