// SPDX-License-Identifier: MIT

#include "SvgPath.h"

#include "PathText.h"
#include "SvgTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

using trammel::ReadSvgPath;
using trammel::SvgPathResult;
using trammel_test::CurvePoint;
using trammel_test::Elements;
using trammel_test::Path;

typedef TPoint<double> Pt;

struct ReadRow {
    char const* text;
    char const* elements;
};

void PrintTo(ReadRow const& row, std::ostream* out) { *out << '"' << row.text << '"'; }

class ReadSvgPathTable : public ::testing::TestWithParam<ReadRow> {};

TEST_P(ReadSvgPathTable, GivesTheElements) {
    EXPECT_EQ(Elements(Path(GetParam().text)), GetParam().elements);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, ReadSvgPathTable,
    ::testing::Values(
        ReadRow{"", ""}, ReadRow{" \t\r\n\f", ""}, ReadRow{"M1 2", "M 1,2"},
        ReadRow{"m1 2", "M 1,2"}, ReadRow{"M1 2 3 4 5 6", "M 1,2 L 3,4 L 5,6"},
        ReadRow{"m1 2 3 4 5 6", "M 1,2 L 4,6 L 9,12"}, ReadRow{"M1 2m3 4 5 6", "M 4,6 L 9,12"},
        ReadRow{"M1 2L3 4 5 6", "M 1,2 L 3,4 L 5,6"}, ReadRow{"M1 2l3 4 5 6", "M 1,2 L 4,6 L 9,12"},
        ReadRow{"M1 2H3 4", "M 1,2 L 3,2 L 4,2"}, ReadRow{"M1 2h3 4", "M 1,2 L 4,2 L 8,2"},
        ReadRow{"M1 2V3 4", "M 1,2 L 1,3 L 1,4"}, ReadRow{"M1 2v3 4", "M 1,2 L 1,5 L 1,9"},
        ReadRow{"M1 2C3 4 5 6 7 8 9 10 11 12 13 14", "M 1,2 C 3,4 5,6 7,8 C 9,10 11,12 13,14"},
        ReadRow{"M1 2c3 4 5 6 7 8 9 10 11 12 13 14", "M 1,2 C 4,6 6,8 8,10 C 17,20 19,22 21,24"},
        ReadRow{"M0 0C1 2 3 4 5 6S7 8 9 10 11 12 13 14",
                "M 0,0 C 1,2 3,4 5,6 C 7,8 7,8 9,10 C 11,12 11,12 13,14"},
        ReadRow{"M0 0C1 2 3 4 5 6s2 2 4 4", "M 0,0 C 1,2 3,4 5,6 C 7,8 7,8 9,10"},
        ReadRow{"M1 2S3 4 5 6", "M 1,2 C 1,2 3,4 5,6"},
        ReadRow{"M0 0Q3 6 6 0 9 3 12 0", "M 0,0 C 2,4 4,4 6,0 C 8,2 10,2 12,0"},
        ReadRow{"M1 1q3 6 6 0", "M 1,1 C 3,5 5,5 7,1"},
        ReadRow{"M0 0Q3 6 6 0T12 0 18 0", "M 0,0 C 2,4 4,4 6,0 C 8,-4 10,-4 12,0 C 14,4 16,4 18,0"},
        ReadRow{"M0 0Q3 6 6 0t6 0", "M 0,0 C 2,4 4,4 6,0 C 8,-4 10,-4 12,0"},
        ReadRow{"M1 2T4 5", "M 1,2 C 1,2 2,3 4,5"}, ReadRow{"M1 2L3 4Z", "M 1,2 L 3,4 Z"},
        ReadRow{"M1 2L3 4z", "M 1,2 L 3,4 Z"},
        ReadRow{"M1 2L3 4zM5 6L7 8Z", "M 1,2 L 3,4 Z M 5,6 L 7,8 Z"},
        ReadRow{"M1 2L3 4zm5 6l7 8Z", "M 1,2 L 3,4 Z M 6,8 L 13,16 Z"}));

INSTANTIATE_TEST_SUITE_P(
    Numbers, ReadSvgPathTable,
    ::testing::Values(
        ReadRow{"M1.5.5-3e2 1", "M 1.5,0.5 L -300,1"},
        ReadRow{"M1.5.5.25.125", "M 1.5,0.5 L 0.25,0.125"}, ReadRow{"M1-2-3-4", "M 1,-2 L -3,-4"},
        ReadRow{"M+1+2", "M 1,2"}, ReadRow{"M+.5-.5", "M 0.5,-0.5"}, ReadRow{"M1.,2.", "M 1,2"},
        ReadRow{"M1..5", "M 1,0.5"}, ReadRow{"M1e2 1E2", "M 100,100"},
        ReadRow{"M1e+2 1e-2", "M 100,0.01"}, ReadRow{"M1e2.5", "M 100,0.5"},
        ReadRow{"M1.5e1-1.5e-1", "M 15,-0.14999999999999999"},
        ReadRow{"M007 0.10", "M 7,0.10000000000000001"}, ReadRow{"M-0 0", "M -0,0"},
        ReadRow{"M1e-999-1e-999", "M 0,-0"}, ReadRow{"M0e999 0.000e99999999999999999999", "M 0,0"},
        ReadRow{"M5e-324 2e-324", "M 4.9406564584124654e-324,0"},
        ReadRow{"M3e-324 1e-99999999999999999999", "M 4.9406564584124654e-324,0"},
        ReadRow{"M1.7976931348623157e308-1.7976931348623157e308",
                "M 1.7976931348623157e+308,-1.7976931348623157e+308"},
        ReadRow{"M9007199254740993 9007199254740992.99999", "M 9007199254740992,9007199254740992"},
        ReadRow{"M2.2250738585072011e-308 1", "M 2.2250738585072009e-308,1"}));

INSTANTIATE_TEST_SUITE_P(Separators, ReadSvgPathTable,
                         ::testing::Values(ReadRow{"  M  1  2  ", "M 1,2"},
                                           ReadRow{"M1,2", "M 1,2"},
                                           ReadRow{"M1 , 2 , 3 , 4", "M 1,2 L 3,4"},
                                           ReadRow{"M1,2,3,4", "M 1,2 L 3,4"},
                                           ReadRow{"M1,-2,-3,-4", "M 1,-2 L -3,-4"},
                                           ReadRow{"\nM\n1\t2\r\nL\f3 4\n", "M 1,2 L 3,4"},
                                           ReadRow{"M1 2 Z M 3 4", "M 1,2 Z M 3,4"}));

INSTANTIATE_TEST_SUITE_P(ArcsThatAreLines, ReadSvgPathTable,
                         ::testing::Values(ReadRow{"M1 1A0 5 0 0 1 3 3", "M 1,1 L 3,3"},
                                           ReadRow{"M1 1A5 0 0 0 1 3 3", "M 1,1 L 3,3"},
                                           ReadRow{"M1 1a5 0 0 0 1 3 3h1", "M 1,1 L 4,4 L 5,4"},
                                           ReadRow{"M1 1A5 5 0 1 1 1 1", "M 1,1"},
                                           ReadRow{"M1 1a5 5 0 1 1 0 0h1", "M 1,1 L 2,1"}));

// The path's building operations alone would drop or bend these.
INSTANTIATE_TEST_SUITE_P(
    BuildingRules, ReadSvgPathTable,
    ::testing::Values(
        // A curve that returns to its start.
        ReadRow{"M0 0C8 0 0 8 0 0", "M 0,0 C 4,0 4,2 3,3 C 2,4 0,4 0,0"},
        ReadRow{"M0 0C8 0 0 8 0 0Z", "M 0,0 C 4,0 4,2 3,3 C 2,4 0,4 0,0 Z"},
        ReadRow{"M0 0Q3 3 0 0", "M 0,0 C 1,1 1.5,1.5 1.5,1.5 C 1.5,1.5 1,1 0,0"},
        // Its middle lies on its ends: cut at a quarter.
        ReadRow{"M0 0C64 0-64 0 0 0", "M 0,0 C 16,0 20,0 18,0 C 12,0 -48,0 0,0"},
        // It never leaves its start.
        ReadRow{"M1 1C1 1 1 1 1 1", "M 1,1"}, ReadRow{"M1 1C1 1 1 1 1 1L2 2", "M 1,1 L 2,2"},
        // Smooth commands after a cut curve reflect its own control point, not the last piece's.
        ReadRow{"M0 0C8 0 0 8 0 0S1 1 2 2", "M 0,0 C 4,0 4,2 3,3 C 2,4 0,4 0,0 C 0,-8 1,1 2,2"},
        ReadRow{"M1 1C1 1 2 3 1 1S3 3 5 5",
                "M 1,1 C 1,1 1.25,1.5 1.375,1.75 C 1.5,2 1.5,2 1,1 C 0,-1 3,3 5,5"},
        ReadRow{"M1 1Q1 1 1 1T3 3", "M 1,1 C 1,1 1.6666666666666667,1.6666666666666667 3,3"},
        // Smooth commands after other segments start with the current point.
        ReadRow{"M0 0C1 2 3 4 5 6L7 7S1 1 2 2", "M 0,0 C 1,2 3,4 5,6 L 7,7 C 7,7 1,1 2,2"},
        ReadRow{"M0 0C1 2 3 4 5 6L5 6S1 1 2 2", "M 0,0 C 1,2 3,4 5,6 C 5,6 1,1 2,2"},
        ReadRow{"M0 0Q3 3 6 0S1 1 2 2", "M 0,0 C 2,2 4,2 6,0 C 6,0 1,1 2,2"},
        ReadRow{"M0 0C1 2 3 4 6 6T9 9", "M 0,0 C 1,2 3,4 6,6 C 6,6 7,7 9,9"},
        ReadRow{"M0 0C1 2 3 4 6 6ZS1 1 2 2", "M 0,0 C 1,2 3,4 6,6 Z M 0,0 C 0,0 1,1 2,2"},
        // Drawing after a close.
        ReadRow{"M1 1L5 5ZL7 3", "M 1,1 L 5,5 Z M 1,1 L 7,3"},
        ReadRow{"M1 1L5 5Zl7 3", "M 1,1 L 5,5 Z M 1,1 L 8,4"},
        ReadRow{"M1 1L5 5ZH5", "M 1,1 L 5,5 Z M 1,1 L 5,1"},
        ReadRow{"M1 1L5 5Zv4z", "M 1,1 L 5,5 Z M 1,1 L 1,5 Z"},
        ReadRow{"M1 1L5 5ZC1 2 3 4 5 5", "M 1,1 L 5,5 Z M 1,1 C 1,2 3,4 5,5"},
        ReadRow{"M1 1L5 5ZC8 1 1 8 1 1",
                "M 1,1 L 5,5 Z M 1,1 C 4.5,1 4.5,2.75 3.625,3.625 C 2.75,4.5 1,4.5 1,1"},
        ReadRow{"M1 1L5 5ZA0 0 0 0 0 2 2", "M 1,1 L 5,5 Z M 1,1 L 2,2"},
        ReadRow{"M1 1L5 5Zm1 1h1", "M 1,1 L 5,5 Z M 2,2 L 3,2"},
        // Nothing is drawn, nothing is begun.
        ReadRow{"M1 1L5 5ZL1 1", "M 1,1 L 5,5 Z"},
        ReadRow{"M1 1L5 5Zh0C1 1 1 1 1 1", "M 1,1 L 5,5 Z"},
        ReadRow{"M1 1L5 5ZZz", "M 1,1 L 5,5 Z"},
        ReadRow{"M1 1L5 5ZL1 1L2 2", "M 1,1 L 5,5 Z M 1,1 L 2,2"}, ReadRow{"M1 1Z", "M 1,1 Z"},
        ReadRow{"M1 1L1 1", "M 1,1"}, ReadRow{"M1 1L1 1Z", "M 1,1 Z"},
        ReadRow{"M1 1h0v0l0 0L2 2", "M 1,1 L 2,2"}, ReadRow{"M1 1M2 2M3 3L4 4", "M 3,3 L 4,4"},
        ReadRow{"M1 1L2 2M5 5", "M 1,1 L 2,2 M 5,5"}, ReadRow{"M1 1ZM1 1Z", "M 1,1 Z M 1,1 Z"}));

TEST(ReadSvgPath, BoundsAndCurrentPointAreThoseOfThePoints) {
    CPath const path = Path("M1 1L5 3L2 7Zl-4 0");
    EXPECT_EQ(path.CurrentPoint(), Pt(-3, 1));
    EXPECT_TRUE(path.mOpen);
    EXPECT_EQ(path.Bounds().left, -3.0);
    EXPECT_EQ(path.Bounds().bottom, 7.0);
    EXPECT_FALSE(Path("M1 1L5 3Z").mOpen);
}

TEST(ReadSvgPath, KeepsDotsWhereAsked) {
    trammel::SvgPathOptions options;
    options.keepDots = true;
    auto const read = [&](char const* text) {
        return trammel::WriteSvgPath(trammel::ReadSvgPath(text, options).path);
    };
    EXPECT_EQ(read("M60 30h0"), "M60 30h0");
    EXPECT_EQ(read("M60 30L60 30l0 0M1 1v5"), "M60 30h0M1 1V6");
    EXPECT_EQ(read("M60 30c0 0 0 0 0 0"), "M60 30h0");
    EXPECT_EQ(read("M60 30a5 5 0 0 1 0 0"), "M60 30h0");
    EXPECT_EQ(read("M60 30h0z"), "M60 30h0Z");
    EXPECT_EQ(read("M1 1h9zh0"), "M1 1h9ZM1 1H1");
    EXPECT_EQ(read("M1 1h0 x"), "M1 1H1");
    // A length makes the lines without one superfluous, wherever they stand.
    EXPECT_EQ(read("M1 1h0h9h0"), "M1 1h9");
    EXPECT_EQ(read("M1 1h9h0z"), "M1 1h9Z");
    // Nothing is drawn here, or a close stands for the dot.
    EXPECT_EQ(read("M60 30"), "M60 30");
    EXPECT_EQ(read("M60 30z"), "M60 30Z");
    EXPECT_EQ(read("M60 30h0M1 1"), "M60 30h0M1 1");
}

TEST(ReadSvgPath, RaisesQuadraticCurvesExactly) {
    std::mt19937_64 random(20240607);
    std::uniform_int_distribution<std::int64_t> coordinate(-1000000000000, 1000000000000);
    double worst = 0.0;
    for (int i = 0; i < 20000; ++i) {
        std::int64_t p[6];
        for (std::int64_t& c : p) {
            c = coordinate(random) >> (random() % 40);
        }
        std::string text = "M" + std::to_string(p[0]) + "," + std::to_string(p[1]) + "Q";
        for (int k = 2; k < 6; ++k) {
            text += std::to_string(p[k]) + " ";
        }
        CPath const path = Path(text);
        if (path.mPts.size() != 4) {
            continue; // returned to its start
        }
        for (int k = 0; k < 2; ++k) {
            std::int64_t const sums[] = {p[k] + 2 * p[2 + k], p[4 + k] + 2 * p[2 + k]};
            for (int c = 0; c < 2; ++c) {
                Pt const point = path.mPts[static_cast<std::size_t>(1 + c)];
                double const value = k == 0 ? point.h : point.v;
                // The sums are below 2^53, so this is the error times 3 without rounding.
                double const error =
                    std::abs(std::fma(3.0, value, -static_cast<double>(sums[c]))) / 3.0;
                double const unit =
                    std::nextafter(std::abs(value), std::numeric_limits<double>::infinity()) -
                    std::abs(value);
                worst = std::max(worst, error / unit);
            }
        }
    }
    EXPECT_LT(worst, 0.51);
    EXPECT_GT(worst, 0.3) << "thirds cannot all be exact";
}

TEST(ReadSvgPath, RaisesHugeQuadraticCurvesWithoutOverflow) {
    CPath const path = Path("M1.5e308 0Q1.5e308 9e307 0 1.5e308");
    ASSERT_EQ(path.mPts.size(), 4U);
    EXPECT_EQ(path.mPts[1].h, 1.5e308);
    EXPECT_NEAR(path.mPts[1].v / 6e307, 1.0, 1e-15);
    EXPECT_NEAR(path.mPts[2].h / 1e308, 1.0, 1e-15);
    EXPECT_NEAR(path.mPts[2].v / 1.1e308, 1.0, 1e-15);
}

TEST(ReadSvgPath, CutCurveCoversTheWholeCurve) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> coordinate(-10.0, 10.0);
    for (int i = 0; i < 200; ++i) {
        double c[6];
        for (double& x : c) {
            x = coordinate(random);
        }
        char text[200];
        std::snprintf(text, sizeof text, "M%.17g %.17gC%.17g %.17g %.17g %.17g %.17g %.17g", c[0],
                      c[1], c[2], c[3], c[4], c[5], c[0], c[1]);
        CPath const path = Path(text);
        ASSERT_EQ(path.mCtls, (std::vector<char>{kPathMove, kPathCurve, kPathCurve}));
        Pt const whole[] = {Pt(c[0], c[1]), Pt(c[2], c[3]), Pt(c[4], c[5]), Pt(c[0], c[1])};
        for (double t = 0.0; t <= 1.0; t += 0.125) {
            EXPECT_LT((CurvePoint(&path.mPts[0], t) - CurvePoint(whole, t / 2)).Length(), 1e-13);
            EXPECT_LT((CurvePoint(&path.mPts[3], t) - CurvePoint(whole, 0.5 + t / 2)).Length(),
                      1e-13);
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Errors

struct ErrorRow {
    std::string_view text;
    std::size_t position;
    char const* found;
    char const* expected;
    char const* elements; // before the error
};

void PrintTo(ErrorRow const& row, std::ostream* out) { *out << '"' << row.text << '"'; }

class ReadSvgPathError : public ::testing::TestWithParam<ErrorRow> {};

TEST_P(ReadSvgPathError, TellsWhereAndWhyAndKeepsWhatCameBefore) {
    ErrorRow const& row = GetParam();
    SvgPathResult const result = ReadSvgPath(row.text);
    ASSERT_TRUE(result.error);
    EXPECT_EQ(result.error->position, row.position);
    EXPECT_EQ(result.error->found, row.found);
    EXPECT_EQ(result.error->expected, row.expected);
    EXPECT_EQ(Elements(result.path), row.elements);
    EXPECT_EQ(result.error->Message(), "at byte " + std::to_string(row.position) + ": expected " +
                                           row.expected + ", found " + row.found);
}

using namespace std::string_view_literals;
constexpr char const* kMove = "a move (M or m)";
constexpr char const* kNumber = "a number";
constexpr char const* kCommand = "a command";
constexpr char const* kEither = "a command or a number";
constexpr char const* kNumberRange = "a number in the range of double";
constexpr char const* kRange = "coordinates in the range of double";
constexpr char const* kFlag = "an arc flag (0 or 1)";
constexpr char const* kEnd = "end of text";

INSTANTIATE_TEST_SUITE_P(
    All, ReadSvgPathError,
    ::testing::Values(
        ErrorRow{"L1 1", 0, "'L'", kMove, ""}, ErrorRow{"  z", 2, "'z'", kMove, ""},
        ErrorRow{"1 1", 0, "'1'", kMove, ""}, ErrorRow{"none", 0, "'none'", kMove, ""},
        ErrorRow{",M1 1", 0, "','", kMove, ""}, ErrorRow{"\0"sv, 0, "byte 0x00", kMove, ""},
        ErrorRow{"M", 1, kEnd, kNumber, ""}, ErrorRow{"M1", 2, kEnd, kNumber, ""},
        ErrorRow{"M1 1 2", 6, kEnd, kNumber, "M 1,1"}, ErrorRow{"M1 1,", 5, kEnd, kNumber, "M 1,1"},
        ErrorRow{"M,1 1", 1, "','", kNumber, ""}, ErrorRow{"M1,,1", 3, "','", kNumber, ""},
        ErrorRow{"M1 1,L2 2", 5, "'L'", kNumber, "M 1,1"},
        ErrorRow{"M1 1 2 2Z,", 9, "','", kCommand, "M 1,1 L 2,2 Z"},
        ErrorRow{"M1 1Z5", 5, "'5'", kCommand, "M 1,1 Z"},
        ErrorRow{"M1 1X2", 4, "'X'", kEither, "M 1,1"},
        ErrorRow{"M1 1L2 2;", 8, "';'", kEither, "M 1,1 L 2,2"},
        ErrorRow{"M1 1L2 2 3", 10, kEnd, kNumber, "M 1,1 L 2,2"},
        ErrorRow{"M1 1C1 2 3 4 5Z", 14, "'Z'", kNumber, "M 1,1"},
        ErrorRow{"M1 -", 4, kEnd, "a digit", ""}, ErrorRow{"M+-1 1", 2, "'-'", "a digit", ""},
        ErrorRow{"M. 1", 2, "' '", "a digit", ""}, ErrorRow{"M-.e5 1", 3, "'e'", "a digit", ""},
        ErrorRow{"M1e 1", 2, "'e'", kNumber, ""}, ErrorRow{"M1 1e+", 4, "'e'", kEither, "M 1,1"},
        ErrorRow{"M1 1em", 4, "'em'", kEither, "M 1,1"}, ErrorRow{"M0x10 1", 2, "'x'", kNumber, ""},
        ErrorRow{"M1 1LNaN 2", 5, "'NaN'", kNumber, "M 1,1"},
        ErrorRow{"M1 1L-inf 2", 6, "'inf'", "a digit", "M 1,1"},
        ErrorRow{"M1 1 nan", 5, "'nan'", kEither, "M 1,1"},
        ErrorRow{"M1 1infinity", 4, "'infinity'", kEither, "M 1,1"},
        ErrorRow{"M1 1L1e999 2", 5, "'1e999'", kNumberRange, "M 1,1"},
        ErrorRow{"M1 1L2 2 -1.8e308 2", 9, "'-1.8e308'", kNumberRange, "M 1,1 L 2,2"},
        ErrorRow{"M1e99999999999999999999 0", 1, "'1e99999999999999999999'", kNumberRange, ""},
        ErrorRow{"M1e308 0l1e308 0", 9, "'1e308 0'", kRange, "M 1e+308,0"},
        ErrorRow{"M1e308 0h-1 1e308", 12, "'1e308'", kRange, "M 1e+308,0"},
        ErrorRow{"M1e308 0m1e308 0", 9, "'1e308 0'", kRange, "M 1e+308,0"},
        ErrorRow{"M0 0C0 0-1e308 0 1e308 0S1 1 2 2", 25, "'1 1 2 2'", kRange,
                 "M 0,0 C 0,0 -1e+308,0 1e+308,0"},
        ErrorRow{"M0 0A1 1 0 2 0 1 1", 11, "'2'", kFlag, "M 0,0"},
        ErrorRow{"M0 0A1 1 0 0,-1 1 1", 13, "'-'", kFlag, "M 0,0"},
        ErrorRow{"M0 0A1 1 0 1", 12, kEnd, kFlag, "M 0,0"},
        ErrorRow{"M0 0A1 1 0 01 1", 15, kEnd, kNumber, "M 0,0"},
        ErrorRow{"M1 1\0L2 2"sv, 4, "byte 0x00", kEither, "M 1,1"},
        ErrorRow{"M1 1\x7F", 4, "byte 0x7F", kEither, "M 1,1"},
        ErrorRow{"M1 1\v2 2", 4, "byte 0x0B", kEither, "M 1,1"},
        ErrorRow{"M1 1\xC3\xA9", 4, "U+00E9", kEither, "M 1,1"},
        ErrorRow{"M1 1\xE2\x88\x92"
                 "5 5",
                 4, "U+2212", kEither, "M 1,1"},
        ErrorRow{"M1 1\xF0\x9F\x98\x80", 4, "U+1F600", kEither, "M 1,1"},
        ErrorRow{"M1 1\xC3", 4, "byte 0xC3", kEither, "M 1,1"},
        ErrorRow{"M1 1\xFF\xFE", 4, "byte 0xFF", kEither, "M 1,1"},
        ErrorRow{"M1 1\xC0\x80", 4, "byte 0xC0", kEither, "M 1,1"},
        ErrorRow{"M1 1\xE0\x80\x80", 4, "byte 0xE0", kEither, "M 1,1"},
        ErrorRow{"M1 1\xED\xA0\x80", 4, "byte 0xED", kEither, "M 1,1"},
        ErrorRow{"\xEF\xBB\xBFM1 1", 0, "U+FEFF", kMove, ""},
        ErrorRow{"M1 1L\n,2", 6, "','", kNumber, "M 1,1"},
        ErrorRow{"M1 1bcdefghijklmnopqrstuvwxyzabcdefghijklmnopqrstuvwxyz", 4,
                 "'bcdefghijklmnopqrstuvwxyzabcdefg...'", kEither, "M 1,1"}));

TEST(ReadSvgPath, ErrorsStayShort) {
    for (std::string const& text :
         {"M" + std::string(100000, 'x'), "M1" + std::string(100000, '0') + " 1",
          "M0 0" + std::string(100000, 'k'), "M1e308 0h1" + std::string(308, '0')}) {
        SvgPathResult const result = ReadSvgPath(text);
        ASSERT_TRUE(result.error);
        EXPECT_LE(result.error->found.size(), 40U);
        EXPECT_NE(result.error->found.find("..."), std::string::npos) << result.error->found;
        EXPECT_EQ(result.error->Message().find('\n'), std::string::npos);
    }
}

TEST(ReadSvgPath, LineEndsAndControlCharactersDoNotReachTheMessage) {
    SvgPathResult const result = ReadSvgPath("M1e308 0l1e308\n0");
    ASSERT_TRUE(result.error);
    EXPECT_EQ(result.error->found, "'1e308 0'");
}

} // namespace
