// SPDX-License-Identifier: MIT

#include "FixedPoint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {

constexpr Fixed kHighest = 0x7FFFFFFF;
constexpr Fixed kLowest = INT32_MIN;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Returns a value from the whole range of 32 bits, small ones as often as large ones.
Fixed RandomFixed(std::mt19937& random) {
    std::uint32_t const bits = static_cast<std::uint32_t>(random()) >> (random() % 32);
    std::int64_t const value = random() % 2 == 0 ? std::int64_t{bits} : -std::int64_t{bits};
    return static_cast<Fixed>(
        std::min<std::int64_t>(std::max<std::int64_t>(value, kLowest), kHighest));
}

Fixed const kSpecial[] = {
    kLowest, kLowest + 1, -0x10000, -0x8001, -0x8000, -0x7FFF, -3,      -2,           -1,      0, 1,
    2,       3,           0x7FFF,   0x8000,  0x8001,  0x10000, 0x20000, kHighest - 1, kHighest};

TEST(Fix2X, IsExact) {
    EXPECT_EQ(Fix2X(0), 0.0);
    EXPECT_EQ(Fix2X(1), 0x1p-16);
    EXPECT_EQ(Fix2X(-1), -0x1p-16);
    EXPECT_EQ(Fix2X(0x18000), 1.5);
    EXPECT_EQ(Fix2X(4000), 0.06103515625);
    EXPECT_EQ(Fix2X(kHighest), 32768.0 - 0x1p-16);
    EXPECT_EQ(Fix2X(kLowest), -32768.0);
    static_assert(Fix2X(0x8000) == 0.5);
}

TEST(X2Fix, TakesTheNearestAndTiesAwayFromZero) {
    struct Row {
        double x;
        Fixed expected;
    };
    double const step = 0x1p-16;
    for (Row const& row : {
             Row{0.0, 0},
             Row{-0.0, 0},
             Row{1.0, 0x10000},
             Row{-1.5, -0x18000},
             Row{0.5 * step, 1},
             Row{-0.5 * step, -1},
             Row{std::nextafter(0.5 * step, 0.0), 0},
             Row{std::nextafter(-0.5 * step, 0.0), 0},
             Row{1.5 * step, 2},
             Row{-1.5 * step, -2},
             Row{2.5 * step, 3},
             Row{-2.5 * step, -3},
             Row{2.25 * step, 2},
             Row{2.75 * step, 3},
             Row{1.0 / 3.0, 21845},
             Row{5e-324, 0},
             Row{-5e-324, 0},
             Row{32767.0, 0x7FFF0000},
             Row{-32768.0, kLowest},
         }) {
        EXPECT_EQ(X2Fix(row.x), row.expected) << row.x;
    }
}

TEST(X2Fix, SaturatesAndGivesTheLowestForNaN) {
    double const step = 0x1p-16;
    EXPECT_EQ(X2Fix(32768.0 - step), kHighest);
    EXPECT_EQ(X2Fix(32768.0 - 1.5 * step), kHighest); // a tie, away from zero
    EXPECT_EQ(X2Fix(std::nextafter(32768.0 - 1.5 * step, 0.0)), kHighest - 1);
    EXPECT_EQ(X2Fix(32768.0 - 2 * step), kHighest - 1);
    for (double const x : {32768.0 - 0.5 * step, 32768.0, 40000.0, 1e308, 1.7e308, kInfinity}) {
        EXPECT_EQ(X2Fix(x), kHighest) << x;
        EXPECT_EQ(X2Fix(-x), kLowest) << -x;
    }
    EXPECT_EQ(X2Fix(-32768.0 + step), kLowest + 1);
    EXPECT_EQ(X2Fix(-32768.0 + 0.5 * step), kLowest);
    EXPECT_EQ(X2Fix(kNaN), kLowest);
    EXPECT_EQ(X2Fix(-kNaN), kLowest);
}

TEST(X2Fix, UndoesFix2X) {
    for (Fixed const f : kSpecial) {
        EXPECT_EQ(X2Fix(Fix2X(f)), f);
    }
    std::mt19937 random(1);
    for (int i = 0; i < 100000; ++i) {
        Fixed const f = RandomFixed(random);
        ASSERT_EQ(X2Fix(Fix2X(f)), f);
    }
}

TEST(X2Fix, IsNearestOverRandomNumbers) {
    static_assert(std::numeric_limits<long double>::digits >= 64);
    std::mt19937 random(2);
    std::uniform_real_distribution<double> exponent(-25.0, 17.0);
    for (int i = 0; i < 100000; ++i) {
        double const x = (random() % 2 == 0 ? 1.0 : -1.0) * std::exp2(exponent(random));
        long double const exact = static_cast<long double>(x) * 65536.0L;
        long double const away = std::copysign(std::floor(std::fabs(exact) + 0.5L), exact);
        Fixed const expected = away > 2147483647.0L    ? kHighest
                               : away < -2147483648.0L ? kLowest
                                                       : static_cast<Fixed>(away);
        ASSERT_EQ(X2Fix(x), expected) << x;
    }
}

TEST(Long2Fix, Saturates) {
    EXPECT_EQ(Long2Fix(0), 0);
    EXPECT_EQ(Long2Fix(1), 0x10000);
    EXPECT_EQ(Long2Fix(-1), -0x10000);
    EXPECT_EQ(Long2Fix(32767), 0x7FFF0000);
    EXPECT_EQ(Long2Fix(32768), kHighest);
    EXPECT_EQ(Long2Fix(INT32_MAX), kHighest);
    EXPECT_EQ(Long2Fix(-32768), kLowest);
    EXPECT_EQ(Long2Fix(-32769), kLowest);
    EXPECT_EQ(Long2Fix(INT32_MIN), kLowest);
    static_assert(Long2Fix(2) == 0x20000);
}

TEST(Fix2Long, TakesTheNearestAndHalvesAwayFromZero) {
    EXPECT_EQ(Fix2Long(0), 0);
    EXPECT_EQ(Fix2Long(0x7FFF), 0);
    EXPECT_EQ(Fix2Long(0x8000), 1);
    EXPECT_EQ(Fix2Long(0x17FFF), 1);
    EXPECT_EQ(Fix2Long(0x18000), 2);
    EXPECT_EQ(Fix2Long(-0x7FFF), 0);
    EXPECT_EQ(Fix2Long(-0x8000), -1);
    EXPECT_EQ(Fix2Long(-0x17FFF), -1);
    EXPECT_EQ(Fix2Long(-0x18000), -2);
    EXPECT_EQ(Fix2Long(kHighest), 32768);
    EXPECT_EQ(Fix2Long(0x7FFF7FFF), 32767);
    EXPECT_EQ(Fix2Long(kLowest), -32768);
    static_assert(Fix2Long(-0x28000) == -3);
    std::mt19937 random(3);
    for (int i = 0; i < 100000; ++i) {
        Fixed const f = RandomFixed(random);
        ASSERT_EQ(Fix2Long(f), static_cast<std::int32_t>(std::round(Fix2X(f)))) << f;
    }
}

TEST(FixDiv, TakesTheNearestAndTiesTowardPlusInfinity) {
    struct Row {
        Fixed dividend;
        Fixed divisor;
        Fixed expected;
    };
    for (Row const& row : {
             Row{0x10000, 0x20000, 0x8000},
             Row{-0x10000, 0x20000, -0x8000},
             Row{0x10000, 0x30000, 0x5555},
             Row{0x20000, 0x30000, 0xAAAB},
             Row{-0x10000, 0x30000, -0x5555},
             Row{-0x20000, 0x30000, -0xAAAB},
             Row{1, 0x20000, 1},   // 1/2
             Row{-1, 0x20000, 0},  // -1/2
             Row{1, -0x20000, 0},  // -1/2
             Row{-1, -0x20000, 1}, // 1/2
             Row{3, 0x20000, 2},   // 3/2
             Row{-3, 0x20000, -1}, // -3/2
             Row{5, -0x20000, -2}, // -5/2
             Row{0, 5, 0},
             Row{0, -5, 0},
             Row{0x7FFF0000, 0x20000, 0x3FFF8000},
             Row{kHighest, 0x20000, 0x40000000},
             Row{kLowest, 0x20000, -0x40000000},
             Row{kHighest, 0x10000, kHighest},
             Row{kLowest, 0x10000, kLowest},
             Row{1, kHighest, 0},
             Row{0x8000, 0x10000, 0x8000},
         }) {
        EXPECT_EQ(FixDiv(row.dividend, row.divisor), row.expected)
            << row.dividend << " / " << row.divisor;
    }
}

TEST(FixDiv, Saturates) {
    EXPECT_EQ(FixDiv(kHighest, 1), kHighest);
    EXPECT_EQ(FixDiv(kHighest, -1), kLowest);
    EXPECT_EQ(FixDiv(kLowest, 1), kLowest);
    EXPECT_EQ(FixDiv(kLowest, -1), kHighest);
    EXPECT_EQ(FixDiv(kLowest, -0x10000), kHighest);
    EXPECT_EQ(FixDiv(kHighest, 0xFFFF), kHighest);
}

TEST(FixDiv, OfZeroDivisorTakesTheDividendsSign) {
    EXPECT_EQ(FixDiv(0, 0), kHighest);
    EXPECT_EQ(FixDiv(1, 0), kHighest);
    EXPECT_EQ(FixDiv(kHighest, 0), kHighest);
    EXPECT_EQ(FixDiv(-1, 0), kLowest);
    EXPECT_EQ(FixDiv(kLowest, 0), kLowest);
}

/// Expects FixDiv to give the nearest integer q to 65536 a / b, ties upward. That is q - 1/2 <=
/// 65536 a / b < q + 1/2, checked by multiplication, without a division.
void ExpectNearestQuotient(Fixed a, Fixed b) {
    std::int64_t const sign = b < 0 ? -1 : 1;
    std::int64_t const under = sign * b;
    std::int64_t const twice = 131072 * sign * a; // 2 * 65536 a / b * under
    std::int64_t const q = FixDiv(a, b);
    bool const atLeast = (2 * q - 1) * under <= twice;
    bool const below = twice < (2 * q + 1) * under;
    ASSERT_TRUE(atLeast || q == kLowest) << a << " / " << b << " = " << q;
    ASSERT_TRUE(below || q == kHighest) << a << " / " << b << " = " << q;
}

TEST(FixDiv, IsNearestOverSpecialAndRandomNumbers) {
    for (Fixed const a : kSpecial) {
        for (Fixed const b : kSpecial) {
            if (b != 0) {
                ExpectNearestQuotient(a, b);
            }
        }
    }
    std::mt19937 random(4);
    for (int i = 0; i < 200000; ++i) {
        Fixed const b = RandomFixed(random);
        if (b != 0) {
            ExpectNearestQuotient(RandomFixed(random), b);
        }
    }
}

} // namespace
