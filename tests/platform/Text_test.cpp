// SPDX-License-Identifier: MIT

#include "Text_p.h"

#include "LocaleForTests.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace {

using trammel_detail::FormatFixed6;
using trammel_detail::FormatFixed6List;
using trammel_detail::FormatIntegerList;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

TEST(FormatFixed6, WritesSixDecimals) {
    EXPECT_EQ(FormatFixed6(0.0), "0.000000");
    EXPECT_EQ(FormatFixed6(-0.0), "-0.000000");
    EXPECT_EQ(FormatFixed6(1.0), "1.000000");
    EXPECT_EQ(FormatFixed6(-2.5), "-2.500000");
    EXPECT_EQ(FormatFixed6(0.1234567), "0.123457");
    EXPECT_EQ(FormatFixed6(0.00000049), "0.000000");
    EXPECT_EQ(FormatFixed6(-1e-300), "-0.000000");
    EXPECT_EQ(FormatFixed6(113596369920.0), "113596369920.000000");
    EXPECT_EQ(FormatFixed6(0x1p-7), "0.007812"); // 0.0078125: the tie goes to the even digit
    EXPECT_EQ(FormatFixed6(3 * 0x1p-7), "0.023438");
}

TEST(FormatFixed6, WritesAllDigitsOfHugeNumbers) {
    std::string const text = FormatFixed6(1e308);
    EXPECT_EQ(text.size(), 309U + 7U);
    EXPECT_EQ(text.substr(0, 20), "10000000000000000109");
    EXPECT_EQ(text.substr(309), ".000000");
    std::string const lowest = FormatFixed6(std::numeric_limits<double>::lowest());
    EXPECT_EQ(lowest.size(), 1U + 309U + 7U);
    EXPECT_EQ(lowest.substr(0, 18), "-17976931348623157");
}

TEST(FormatFixed6, NamesWhatIsNoNumber) {
    EXPECT_EQ(FormatFixed6(kNaN), "nan");
    EXPECT_EQ(FormatFixed6(std::copysign(kNaN, -1.0)), "nan");
    EXPECT_EQ(FormatFixed6(kInfinity), "inf");
    EXPECT_EQ(FormatFixed6(-kInfinity), "-inf");
}

TEST(FormatFixed6, AgreesWithPrintfOverAllKindsOfNumbers) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 50000; ++i) {
        std::uint64_t const bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        if (i % 2 == 0) { // numbers of a drawing's size, often exact ties
            value = static_cast<double>(static_cast<std::int64_t>(bits >> 20)) * 0x1p-30;
        }
        if (std::isnan(value)) {
            continue;
        }
        char expected[400];
        std::snprintf(expected, sizeof expected, "%f", value);
        ASSERT_EQ(FormatFixed6(value), expected);
    }
}

TEST(FormatFixed6, DoesNotDependOnTheLocale) {
    CommaLocale const locale;
    if (!locale.Available()) {
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    }
    EXPECT_EQ(FormatFixed6(1234567.5), "1234567.500000");
    EXPECT_EQ(FormatFixed6List({1.5, 2.0}), "{1.500000, 2.000000}");
    EXPECT_EQ(FormatIntegerList({1234567}), "{1234567}");
}

TEST(FormatList, PutsBracesAroundAndCommasBetween) {
    EXPECT_EQ(FormatFixed6List({1.0, -2.5}), "{1.000000, -2.500000}");
    EXPECT_EQ(FormatFixed6List({1.0, 2.0, kNaN, -kInfinity}), "{1.000000, 2.000000, nan, -inf}");
    EXPECT_EQ(FormatFixed6List({}), "{}");
    EXPECT_EQ(FormatIntegerList({3, -4}), "{3, -4}");
    EXPECT_EQ(FormatIntegerList({-32768, 0, 32767, 1}), "{-32768, 0, 32767, 1}");
    EXPECT_EQ(FormatIntegerList({}), "{}");
}

} // namespace
