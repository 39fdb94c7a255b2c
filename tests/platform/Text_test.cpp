// SPDX-License-Identifier: MIT

#include "Text_p.h"

#include "LocaleForTests.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel_detail::FormatFixed6;
using trammel_detail::FormatFixed6List;
using trammel_detail::FormatIntegerList;
using trammel_detail::kNumeralRoom;
using trammel_detail::ReadNumeral;
using trammel_detail::WriteScientific;
using trammel_detail::WriteShortest;

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

std::string Shortest(double value) {
    char text[kNumeralRoom];
    return std::string(text, WriteShortest(text, value));
}

template <class... Decimals> std::string Scientific(double value, Decimals... decimals) {
    char text[kNumeralRoom];
    return std::string(text, WriteScientific(text, value, decimals...));
}

/// Numbers of all kinds: bits at random, of a drawing's size, of few digits, and about powers of
/// two.
std::vector<double> Numbers() {
    std::vector<double> numbers = {0.0, -0.0, 1e22, 1e23, 0.001, 0.0001, 123456.0, 0.3};
    for (int exponent = -1074; exponent < 1024; ++exponent) {
        double const power = std::ldexp(1.0, exponent);
        numbers.insert(numbers.end(), {-power, std::nextafter(power, 0.0)});
    }
    std::mt19937_64 random(11);
    for (int i = 0; i < 3000; ++i) {
        std::uint64_t const bits = random();
        double value = 0.0;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) {
            numbers.push_back(value);
        }
        numbers.push_back(static_cast<double>(bits >> 12) * 0x1p-40);
        numbers.push_back(static_cast<double>(bits % 100000000) / 1000.0);
    }
    return numbers;
}

TEST(Numeral, IsPlainOrScientificWhicheverIsShorter) {
    EXPECT_EQ(Shortest(0.0), "0");
    EXPECT_EQ(Shortest(-0.0), "-0");
    EXPECT_EQ(Shortest(0.1), "0.1");
    EXPECT_EQ(Shortest(-1.5), "-1.5");
    EXPECT_EQ(Shortest(100000.0), "1e+05");
    EXPECT_EQ(Shortest(120000.0), "120000");
    EXPECT_EQ(Shortest(0.001), "0.001");
    EXPECT_EQ(Shortest(0.0001), "1e-04");
    EXPECT_EQ(Shortest(-0.00012), "-0.00012");
    EXPECT_EQ(Shortest(0.000012), "1.2e-05");
    EXPECT_EQ(Shortest(1152921504606846976.0), "1152921504606846976");
    EXPECT_EQ(Shortest(1e300), "1e+300");
    EXPECT_EQ(Shortest(5e-324), "5e-324");
    EXPECT_EQ(Shortest(kInfinity), "inf");
    EXPECT_EQ(Shortest(-kInfinity), "-inf");
    EXPECT_EQ(Shortest(kNaN), "nan");
    EXPECT_EQ(Shortest(std::copysign(kNaN, -1.0)), "-nan");
}

TEST(Numeral, HasTheDecimalsAskedForOrTheFewest) {
    EXPECT_EQ(Scientific(2.0 / 3.0, 0), "7e-01");
    EXPECT_EQ(Scientific(-2.0 / 3.0, 3), "-6.667e-01");
    EXPECT_EQ(Scientific(1.0, 2), "1.00e+00");
    EXPECT_EQ(Scientific(1234.5), "1.2345e+03");
    EXPECT_EQ(Scientific(1e-300), "1e-300");
    // The nearest decimal of 16 digits, 5.684341886080801e-14, reads as the double below.
    EXPECT_EQ(Scientific(0x1p-44), "5.684341886080802e-14");
}

TEST(Numeral, ReadsAsTheNearestDouble) {
    EXPECT_EQ(ReadNumeral("0"), 0.0);
    EXPECT_EQ(ReadNumeral("12.5"), 12.5);
    EXPECT_EQ(ReadNumeral("-.5"), -0.5);
    EXPECT_EQ(ReadNumeral("7."), 7.0);
    EXPECT_EQ(ReadNumeral("1.5e3"), 1500.0);
    EXPECT_EQ(ReadNumeral("1.5E+3"), 1500.0);
    EXPECT_EQ(ReadNumeral("25e-1"), 2.5);
    EXPECT_EQ(ReadNumeral("9007199254740993"), 9007199254740992.0); // a tie
    EXPECT_EQ(ReadNumeral("9007199254740993.00000000000000000001"), 9007199254740994.0);
    EXPECT_EQ(ReadNumeral("0." + std::string(400, '0') + "1e401"), 1.0);
    EXPECT_EQ(ReadNumeral("1" + std::string(400, '0') + "e-400"), 1.0);
}

TEST(Numeral, OutOfRangeReadsAsInfinityOrZero) {
    EXPECT_EQ(ReadNumeral("1e400"), kInfinity);
    EXPECT_EQ(ReadNumeral("-1e400"), -kInfinity);
    EXPECT_EQ(ReadNumeral("1e99999999999999999999"), kInfinity);
    EXPECT_EQ(ReadNumeral("1e-99999999999999999999"), 0.0);
    EXPECT_EQ(ReadNumeral("0.01e-330"), 0.0);
    EXPECT_EQ(ReadNumeral("0e99999999999999999999"), 0.0);
    EXPECT_EQ(ReadNumeral("2.5e-324"), 5e-324);
    EXPECT_EQ(ReadNumeral("2.4e-324"), 0.0);
}

TEST(Numeral, ReadsBackAsTheValueWritten) {
    for (double const value : Numbers()) {
        ASSERT_EQ(ReadNumeral(Shortest(value)), value);
        ASSERT_EQ(ReadNumeral(Scientific(value)), value);
        ASSERT_EQ(ReadNumeral(Scientific(value, 16)), value);
    }
}

#ifdef __cpp_lib_to_chars
TEST(Numeral, IsWhatTheStandardLibraryWrites) {
    for (double const value : Numbers()) {
        char text[kNumeralRoom];
        char* const end = text + kNumeralRoom;
        ASSERT_EQ(Shortest(value), std::string(text, std::to_chars(text, end, value).ptr));
        auto const format = std::chars_format::scientific;
        ASSERT_EQ(Scientific(value),
                  std::string(text, std::to_chars(text, end, value, format).ptr));
        ASSERT_EQ(Scientific(value, 4),
                  std::string(text, std::to_chars(text, end, value, format, 4).ptr));
    }
}
#endif

TEST(Numeral, DoesNotDependOnTheLocale) {
    CommaLocale const locale;
    if (!locale.Available()) {
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    }
    EXPECT_EQ(Shortest(1234567.5), "1234567.5");
    EXPECT_EQ(Scientific(-1.25), "-1.25e+00");
    EXPECT_EQ(Scientific(1.25, 1), "1.2e+00");
    EXPECT_EQ(ReadNumeral("1.25"), 1.25);
}

} // namespace
