// SPDX-License-Identifier: MIT

#include "Integers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {

using trammel_detail::TruncateToInt16;
using trammel_detail::TruncateToInt32;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Row {
    double x;
    std::int32_t wide;
    std::int16_t narrow;
};

TEST(Truncation, FollowsItsTable) {
    for (Row const& row : {
             Row{0.0, 0, 0},
             Row{-0.0, 0, 0},
             Row{0.999, 0, 0},
             Row{-0.999, 0, 0},
             Row{1.9, 1, 1},
             Row{-1.9, -1, -1},
             Row{32767.9, 32767, 32767},
             Row{32768.0, 32768, -32768},
             Row{-32768.9, -32768, -32768},
             Row{-32769.0, -32769, 32767},
             Row{40000.0, 40000, -25536},
             Row{65535.0, 65535, -1},
             Row{65536.0, 65536, 0},
             Row{65537.5, 65537, 1},
             Row{2147483647.0, INT32_MAX, -1},
             Row{2147483647.9, INT32_MAX, -1},
             Row{2147483648.0, INT32_MIN, 0},
             Row{-2147483647.9, -2147483647, 1},
             Row{-2147483648.0, INT32_MIN, 0},
             Row{-2147483648.9, INT32_MIN, 0},
             Row{-2147483649.0, INT32_MIN, 0},
             Row{4294967297.0, INT32_MIN, 0}, // not the low 32 bits
             Row{1e308, INT32_MIN, 0},
             Row{-1e308, INT32_MIN, 0},
             Row{5e-324, 0, 0},
             Row{kInfinity, INT32_MIN, 0},
             Row{-kInfinity, INT32_MIN, 0},
             Row{kNaN, INT32_MIN, 0},
             Row{-kNaN, INT32_MIN, 0},
         }) {
        EXPECT_EQ(TruncateToInt32(row.x), row.wide) << row.x;
        EXPECT_EQ(TruncateToInt16(row.x), row.narrow) << row.x;
    }
    static_assert(TruncateToInt32(-7.5) == -7 && TruncateToInt16(98304.0) == -32768);
}

TEST(Truncation, AgreesWithTheLibrarysTruncOverRandomNumbers) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> exponent(-3.0, 33.0);
    for (int i = 0; i < 100000; ++i) {
        double const x = (random() % 2 == 0 ? 1.0 : -1.0) * std::exp2(exponent(random));
        double const whole = std::trunc(x);
        bool const inside = whole >= -2147483648.0 && whole <= 2147483647.0;
        std::int64_t const expected = inside ? static_cast<std::int64_t>(whole) : INT32_MIN;
        ASSERT_EQ(TruncateToInt32(x), expected) << x;
        std::int64_t const low = expected & 0xFFFF;
        ASSERT_EQ(TruncateToInt16(x), low >= 0x8000 ? low - 0x10000 : low) << x;
    }
}

TEST(LowInt16, KeepsTheLowBits) {
    EXPECT_EQ(trammel_detail::LowInt16(0x12345678), 0x5678);
    EXPECT_EQ(trammel_detail::LowInt16(0x1234FFFF), -1);
    EXPECT_EQ(trammel_detail::LowInt16(0x18000), -32768);
    EXPECT_EQ(trammel_detail::LowInt16(INT32_MIN), 0);
    EXPECT_EQ(trammel_detail::LowInt16(-32769), 32767);
}

TEST(WrappingAdd, IsModulo32Bits) {
    using trammel_detail::WrappingAdd;
    EXPECT_EQ(WrappingAdd(2, 3), 5);
    EXPECT_EQ(WrappingAdd(INT32_MAX, 1), INT32_MIN);
    EXPECT_EQ(WrappingAdd(INT32_MIN, -1), INT32_MAX);
    std::mt19937 random(6);
    for (int i = 0; i < 10000; ++i) {
        std::int32_t const a = static_cast<std::int32_t>(random());
        std::int32_t const b = static_cast<std::int32_t>(random());
        // The result is congruent to the exact one modulo 2^32.
        ASSERT_EQ(static_cast<std::uint32_t>(WrappingAdd(a, b)),
                  static_cast<std::uint32_t>((std::int64_t{a} + b) & 0xFFFFFFFF));
    }
}

} // namespace
