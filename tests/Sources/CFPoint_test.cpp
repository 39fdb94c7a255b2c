// SPDX-License-Identifier: MIT

#include "CFPoint.h"

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

constexpr Fixed kNoValue = INT32_MIN;

TEST(CFPoint, HasTheLayoutOfTheRecord) {
    EXPECT_EQ(sizeof(CFPoint), sizeof(FPoint));
    EXPECT_EQ(offsetof(CFPoint, v), 0U);
    EXPECT_EQ(offsetof(CFPoint, h), 4U);
    EXPECT_FALSE(std::is_polymorphic_v<CFPoint>);
}

TEST(CFPoint, IsNoRecordByConversion) {
    // A silent conversion would choose truncation where the class chooses rounding.
    EXPECT_FALSE((std::is_convertible_v<CFPoint, FPoint>));
    EXPECT_FALSE((std::is_base_of_v<FPoint, CFPoint>));
}

TEST(CFPoint, StartsWithoutValue) {
    CFPoint const p;
    EXPECT_EQ(p.h, kNoValue);
    EXPECT_EQ(p.v, kNoValue);
    EXPECT_TRUE(p == CFPoint());
    EXPECT_FALSE(p == CFPoint(0L, 0L));
}

TEST(CFPoint, StoresRawValuesHorizontalFirst) {
    CFPoint const p(0x00018000L, -5L);
    EXPECT_EQ(p.h, 0x00018000);
    EXPECT_EQ(p.v, -5);
    CFPoint const copy(p);
    EXPECT_TRUE(copy == p);
    EXPECT_FALSE(copy == CFPoint(0x00018000L, -4L));
    EXPECT_FALSE(copy == CFPoint(0x00018001L, -5L));
    CFPoint assigned;
    assigned = p;
    EXPECT_TRUE(assigned == p);
}

TEST(CFPoint, FromShortsIsExact) {
    CFPoint const p(TPoint<short>(-32768, 32767));
    EXPECT_EQ(p.h, INT32_MIN);
    EXPECT_EQ(p.v, 0x7FFF0000);
    CFPoint const q(TPoint<short>(1, -1));
    EXPECT_EQ(q.h, 0x00010000);
    EXPECT_EQ(q.v, -0x00010000);
}

TEST(CFPoint, FromDoublesTakesTheNearestFixedPointValue) {
    CFPoint const p(TPoint<double>(1.5, -2.25));
    EXPECT_EQ(p.h, 0x00018000);
    EXPECT_EQ(p.v, -0x00024000);
    CFPoint const halves(TPoint<double>(0.5 / 65536.0, -0.5 / 65536.0));
    EXPECT_EQ(halves.h, 1);
    EXPECT_EQ(halves.v, -1);
    CFPoint const less(TPoint<double>(0.49 / 65536.0, -1.49 / 65536.0));
    EXPECT_EQ(less.h, 0);
    EXPECT_EQ(less.v, -1);
}

TEST(CFPoint, FromDoublesBeyondTheRangeSaturates) {
    CFPoint const p(TPoint<double>(32768.0, -32769.0));
    EXPECT_EQ(p.h, INT32_MAX);
    EXPECT_EQ(p.v, INT32_MIN);
    CFPoint const infinite(TPoint<double>(kInf, -kInf));
    EXPECT_EQ(infinite.h, INT32_MAX);
    EXPECT_EQ(infinite.v, INT32_MIN);
    CFPoint const nan(TPoint<double>(kNaN, 0.0));
    EXPECT_EQ(nan.h, kNoValue);
    EXPECT_EQ(nan.v, 0);
}

TEST(CFPoint, ToDoublesIsExact) {
    TPoint<double> const p = CFPoint(INT32_MAX, -1);
    EXPECT_EQ(p.h, 32767.0 + 65535.0 / 65536.0);
    EXPECT_EQ(p.v, -1.0 / 65536.0);
    TPoint<double> const none = CFPoint();
    EXPECT_EQ(none, TPoint<double>(-32768.0, -32768.0));
    Random random(401);
    for (int i = 0; i < 1000; ++i) {
        CFPoint const raw(random.Integer(INT32_MIN / 2, INT32_MAX / 2),
                          random.Integer(INT32_MIN / 2, INT32_MAX / 2));
        TPoint<double> const wide = raw;
        ASSERT_EQ(wide.h, raw.h / 65536.0);
        ASSERT_EQ(wide.v, raw.v / 65536.0);
        ASSERT_TRUE(CFPoint(wide) == raw);
    }
}

} // namespace
