// SPDX-License-Identifier: MIT
#include "SvgPath.h"

#include "../platform/LocaleForTests.h"
#include "CMatrix3x3.h"
#include "CountedMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#if TRAMMEL_TEST_COUNTS_MEMORY

using trammel_test::gAllocatedBytes;

#endif

namespace {

using trammel::ReadSvgPath;
using trammel::SvgPathResult;
using trammel::WriteSvgPath;

typedef TPoint<double> Pt;

constexpr double kPi = 3.14159265358979323846;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
typedef long double Wide;
constexpr double kArcError = 4.3e-6; // as stated by ReadSvgPath

/// "M 1,2 L 3,4 Z", every number in full.
std::string Elements(CPath const& path) {
    std::string text;
    std::size_t point = 0;
    for (char const code : path.mCtls) {
        text += text.empty() ? "" : " ";
        text += "MLCZ"[static_cast<int>(code)];
        for (int n = code == kPathCurve ? 3 : code == kPathClose ? 0 : 1; n > 0; --n) {
            char numbers[80];
            std::snprintf(numbers, sizeof numbers, " %.17g,%.17g", path.mPts.at(point).h,
                          path.mPts.at(point).v);
            text += numbers;
            ++point;
        }
    }
    EXPECT_EQ(point, path.mPts.size());
    return text;
}

bool Same(CPath const& a, CPath const& b) {
    return a.mCtls == b.mCtls && a.mPts.size() == b.mPts.size() &&
           (a.mPts.empty() ||
            std::memcmp(a.mPts.data(), b.mPts.data(), a.mPts.size() * sizeof(Pt)) == 0);
}

CPath Read(std::string_view text) {
    SvgPathResult const result = ReadSvgPath(text);
    EXPECT_FALSE(result.error) << text.substr(0, 200) << ": " << result.error->Message();
    return result.path;
}

/// A path of any codes, also such as the building operations do not make.
CPath Raw(std::string const& codes, std::vector<Pt> const& points) {
    CPath path;
    for (char const c : codes) {
        char const* const known = std::strchr("MLCZ", c);
        path.AddCtl(static_cast<char>(known != nullptr ? known - "MLCZ" : 9));
    }
    for (Pt const& p : points) {
        path.AddPt(p);
    }
    return path;
}

// ------------------------------------------------------------------------------------------------
// Reading

struct ReadRow {
    char const* text;
    char const* elements;
};

void PrintTo(ReadRow const& row, std::ostream* out) { *out << '"' << row.text << '"'; }

class ReadSvgPathTable : public ::testing::TestWithParam<ReadRow> {};

TEST_P(ReadSvgPathTable, GivesTheElements) {
    EXPECT_EQ(Elements(Read(GetParam().text)), GetParam().elements);
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

// What the path's building operations alone would drop or bend.
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
        // Smooth commands after a cut curve reflect its own control point, not that of the piece.
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
    CPath const path = Read("M1 1L5 3L2 7Zl-4 0");
    EXPECT_EQ(path.CurrentPoint(), Pt(-3, 1));
    EXPECT_TRUE(path.mOpen);
    EXPECT_EQ(path.Bounds().left, -3.0);
    EXPECT_EQ(path.Bounds().bottom, 7.0);
    EXPECT_FALSE(Read("M1 1L5 3Z").mOpen);
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
        CPath const path = Read(text);
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
                double const unit = std::nextafter(std::abs(value), kInfinity) - std::abs(value);
                worst = std::max(worst, error / unit);
            }
        }
    }
    EXPECT_LT(worst, 0.51);
    EXPECT_GT(worst, 0.3) << "thirds cannot all be exact";
}

TEST(ReadSvgPath, RaisesHugeQuadraticCurvesWithoutOverflow) {
    CPath const path = Read("M1.5e308 0Q1.5e308 9e307 0 1.5e308");
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
        CPath const path = Read(text);
        ASSERT_EQ(path.mCtls, (std::vector<char>{kPathMove, kPathCurve, kPathCurve}));
        auto const at = [](Pt const* p, double t) {
            double const u = 1.0 - t;
            return p[0] * (u * u * u) + p[1] * (3 * u * u * t) + p[2] * (3 * u * t * t) +
                   p[3] * (t * t * t);
        };
        Pt const whole[] = {Pt(c[0], c[1]), Pt(c[2], c[3]), Pt(c[4], c[5]), Pt(c[0], c[1])};
        for (double t = 0.0; t <= 1.0; t += 0.125) {
            EXPECT_LT((at(&path.mPts[0], t) - at(whole, t / 2)).Length(), 1e-13);
            EXPECT_LT((at(&path.mPts[3], t) - at(whole, 0.5 + t / 2)).Length(), 1e-13);
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Arcs

/// The ellipse of an arc by the published conversion, in Wide and by angles.
struct Ellipse {
    Wide cx, cy, rx, ry, phi, theta, delta;

    Ellipse(Pt from, Pt to, double rxIn, double ryIn, double degrees, bool large, bool sweep)
        : rx(Wide(std::abs(rxIn))), ry(Wide(std::abs(ryIn))),
          phi(static_cast<Wide>(degrees) / 180.0L * 3.14159265358979323846264338L) {
        Wide const pi = 3.14159265358979323846264338L;
        Wide const x1 = Wide(from.h);
        Wide const y1 = Wide(from.v);
        Wide const x2 = Wide(to.h);
        Wide const y2 = Wide(to.v);
        Wide const c = std::cos(phi);
        Wide const s = std::sin(phi);
        Wide const xp = c * (x1 - x2) / 2 + s * (y1 - y2) / 2;
        Wide const yp = -s * (x1 - x2) / 2 + c * (y1 - y2) / 2;
        Wide const lambda = xp * xp / (rx * rx) + yp * yp / (ry * ry);
        if (lambda > 1) {
            rx *= std::sqrt(lambda);
            ry *= std::sqrt(lambda);
        }
        Wide const square = (rx * rx * ry * ry - rx * rx * yp * yp - ry * ry * xp * xp) /
                            (rx * rx * yp * yp + ry * ry * xp * xp);
        Wide const factor = (large != sweep ? 1 : -1) * std::sqrt(std::max(square, 0.0L));
        Wide const cxp = factor * rx * yp / ry;
        Wide const cyp = -factor * ry * xp / rx;
        cx = c * cxp - s * cyp + (x1 + x2) / 2;
        cy = s * cxp + c * cyp + (y1 + y2) / 2;
        theta = std::atan2((yp - cyp) / ry, (xp - cxp) / rx);
        delta = std::atan2((-yp - cyp) / ry, (-xp - cxp) / rx) - theta;
        if (sweep && delta < 0) {
            delta += 2 * pi;
        } else if (!sweep && delta > 0) {
            delta -= 2 * pi;
        }
    }

    /// The point in the coordinates in which the ellipse is the unit circle.
    void ToCircle(Pt p, Wide& x, Wide& y) const {
        Wide const dx = Wide(p.h) - cx;
        Wide const dy = Wide(p.v) - cy;
        x = (std::cos(phi) * dx + std::sin(phi) * dy) / rx;
        y = (-std::sin(phi) * dx + std::cos(phi) * dy) / ry;
    }
};

Pt CurvePoint(Pt const* p, double t) {
    double const u = 1.0 - t;
    return p[0] * (u * u * u) + p[1] * (3 * u * u * t) + p[2] * (3 * u * t * t) +
           p[3] * (t * t * t);
}

struct ArcDeviation {
    Wide outside = 0; ///< greatest distance from the unit circle
    Wide inside = 0;
};

/// Compares an arc that was read with its true ellipse: on it, from end to end, in one direction.
ArcDeviation CheckArc(Pt from, double rx, double ry, double degrees, bool large, bool sweep, Pt to,
                      Wide tolerance) {
    char text[300];
    std::snprintf(text, sizeof text, "M%.17g,%.17gA%.17g %.17g %.17g %d%d%.17g %.17g", from.h,
                  from.v, rx, ry, degrees, large ? 1 : 0, sweep ? 1 : 0, to.h, to.v);
    SCOPED_TRACE(text);
    Ellipse const ellipse(from, to, rx, ry, degrees, large, sweep);
    CPath const path = Read(text);
    ArcDeviation deviation;
    std::size_t const curves = path.mCtls.size() - 1;
    EXPECT_GE(curves, 1U);
    EXPECT_EQ(path.mPts.size(), 3 * curves + 1);
    EXPECT_EQ(curves, static_cast<std::size_t>(std::max(
                          1.0L, std::ceil(std::abs(ellipse.delta) / Wide(kPi / 4) - 1e-6L))));
    EXPECT_EQ(path.mPts.front(), from);
    EXPECT_EQ(path.mPts.back(), to);
    Wide turned = 0;
    Wide lastX = 0;
    Wide lastY = 0;
    ellipse.ToCircle(from, lastX, lastY);
    constexpr int kSteps = 64;
    for (std::size_t i = 0; i < curves; ++i) {
        Wide const before = turned;
        for (int k = 1; k <= kSteps; ++k) {
            Pt const p = CurvePoint(&path.mPts[3 * i], k / static_cast<double>(kSteps));
            Wide x = 0;
            Wide y = 0;
            ellipse.ToCircle(p, x, y);
            Wide const radius = std::hypot(x, y);
            deviation.outside = std::max(deviation.outside, radius - 1);
            deviation.inside = std::max(deviation.inside, 1 - radius);
            Wide const step = std::atan2(lastX * y - lastY * x, lastX * x + lastY * y);
            EXPECT_GT(sweep ? step : -step, -tolerance);
            turned += step;
            lastX = x;
            lastY = y;
        }
        // All curves have the same share.
        EXPECT_NEAR(static_cast<double>(turned - before),
                    static_cast<double>(ellipse.delta) / static_cast<double>(curves),
                    static_cast<double>(tolerance) * 4);
    }
    EXPECT_NEAR(static_cast<double>(turned), static_cast<double>(ellipse.delta),
                static_cast<double>(tolerance) * 4);
    EXPECT_LT(deviation.outside, Wide(kArcError) + tolerance);
    EXPECT_LT(deviation.inside, tolerance);
    return deviation;
}

TEST(SvgArc, StaysWithinItsBoundOfTheEllipse) {
    std::mt19937_64 random(42);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    std::uniform_real_distribution<double> radius(1.0, 300.0);
    std::uniform_real_distribution<double> angle(-720.0, 720.0);
    Wide worst = 0;
    for (int i = 0; i < 2000; ++i) {
        Pt const from(coordinate(random), coordinate(random));
        Pt const to(coordinate(random), coordinate(random));
        double const rx = radius(random);
        double const ry = radius(random);
        worst = std::max(worst, CheckArc(from, rx, ry, angle(random), random() % 2 == 0,
                                         random() % 2 == 0, to, 1e-6L)
                                    .outside);
    }
    EXPECT_GT(worst, 4e-6L) << "the stated bound is not far too wide";
}

TEST(SvgArc, BoundHoldsAtAnEighthTurn) {
    ArcDeviation const circle = CheckArc(Pt(1, 0), 1, 1, 0, false, true, Pt(0, 1), 1e-12L);
    EXPECT_GT(circle.outside, 4.1e-6L);
    ArcDeviation const half = CheckArc(Pt(10, 0), 10, 10, 0, false, true, Pt(-10, 0), 1e-7L);
    EXPECT_LT(half.outside, Wide(kArcError));
}

TEST(SvgArc, FollowsTheFlags) {
    // Circles of radius 5 through (0, 0) and (8, 0): centres (4, 3) and (4, -3).
    struct Row {
        int large;
        int sweep;
        double lowest;
        double highest; // extremes of v
    };
    for (Row const& row : {Row{0, 0, 0, 2}, Row{0, 1, -2, 0}, Row{1, 0, 0, 8}, Row{1, 1, -8, 0}}) {
        std::string const text =
            "M0 0A5 5 0 " + std::to_string(row.large) + std::to_string(row.sweep) + "8 0";
        CPath const path = Read(text);
        double lowest = 0.0;
        double highest = 0.0;
        for (int i = 0; i <= 1000; ++i) {
            Pt const p = path.TPt(i / 1000.0);
            lowest = std::min(lowest, p.v);
            highest = std::max(highest, p.v);
        }
        EXPECT_NEAR(lowest, row.lowest, 1e-3) << text;
        EXPECT_NEAR(highest, row.highest, 1e-3) << text;
    }
}

TEST(SvgArc, EnlargesRadiiThatAreTooSmall) {
    // A half circle over the chord, whatever the radius below half of it.
    for (char const* const radii : {"1 1", "0.001 0.001", "5 5", "-5 5", "1e-300 1e-300"}) {
        CPath const path = Read("M0 0A" + std::string(radii) + " 0 0 1 10 0");
        ASSERT_EQ(path.mPts.size(), 13U) << radii;
        EXPECT_NEAR(path.mPts[6].h, 5.0, 1e-14) << radii;
        EXPECT_NEAR(path.mPts[6].v, -5.0, 1e-14) << radii;
    }
    // In proportion: twice as high as wide.
    CPath const path = Read("M0 0A1 2 0 0 1 10 0");
    EXPECT_NEAR(path.mPts[6].v, -10.0, 1e-13);
}

TEST(SvgArc, QuarterTurnsOfTheAxesAreExact) {
    for (char const* const degrees : {"0", "180", "-180", "360", "720", "1e300"}) {
        if (std::string(degrees) == "1e300") {
            EXPECT_EQ(ReadSvgPath("M0 0A3 2 1e300 0 1 3 2").error.has_value(), false);
            continue;
        }
        EXPECT_EQ(Elements(Read("M0 0A3 2 " + std::string(degrees) + " 0 1 3 2")),
                  Elements(Read("M0 0A3 2 0 0 1 3 2")))
            << degrees;
    }
    for (char const* const degrees : {"90", "-90", "270", "-270", "450"}) {
        EXPECT_EQ(Elements(Read("M0 0A3 2 " + std::string(degrees) + " 0 1 3 2")),
                  Elements(Read("M0 0A2 3 0 0 1 3 2")))
            << degrees;
    }
}

TEST(SvgArc, EndsExactlyAndKeepsSmallArcsOfGiantCircles) {
    // Sagitta c²/8r of an arc over the chord c = 1: at r = 1e9 far below the rounding of r itself.
    CPath const path = Read("M0 0A1e9 1e9 0 0 1 1 0");
    ASSERT_EQ(path.mPts.size(), 4U);
    Pt const middle = CurvePoint(path.mPts.data(), 0.5);
    EXPECT_NEAR(middle.v / -1.25e-10, 1.0, 1e-9);
    EXPECT_NEAR(middle.h, 0.5, 1e-15);
    CPath const straight = Read("M0 0A1e200 1e200 30 0 1 1 0");
    EXPECT_EQ(straight.mPts.back(), Pt(1, 0));
    EXPECT_LT(std::abs(straight.mPts[1].v), 1e-15);
    EXPECT_NEAR(straight.mPts[1].h, 1.0 / 3.0, 1e-15);
    // A circle that all but closes, as icons draw it.
    CPath const circle = Read("M10 0A10 10 0 1 1 10-.0001");
    EXPECT_EQ(circle.mCtls.size(), 9U);
    EXPECT_EQ(circle.mPts.back(), Pt(10, -0.0001));
    EXPECT_NEAR(circle.Length(), 2 * kPi * 10, 2e-3);
}

TEST(SvgArc, FlagsNeedNoSeparators) {
    std::string const expected = Elements(Read("M0 0 a 1 1 0 0 0 0.5 0.5"));
    for (char const* const text :
         {"M0 0a1 1 0 00.5.5", "M0 0a1,1,0,0,0,.5,.5", "M0 0a1 1 0 0 0.5.5", "M0 0a1 1 0 00 .5.5",
          "M0 0a1 1 0,00,.5.5", "M0 0a1 1 0 0 ,0.5.5", "M0 0a1 1 0 00+.5+.5",
          "M0 0a-1-1-0 00.5.5"}) {
        EXPECT_EQ(Elements(Read(text)), expected) << text;
    }
    EXPECT_EQ(Elements(Read("M0 0a1 1 0 01-.5.5 1 1 0 10.5.5")),
              Elements(Read("M0 0 a 1 1 0 0 1 -0.5 0.5 a 1 1 0 1 0 0.5 0.5")));
}

TEST(SvgArc, ShapeBeyondTheRangeOfDoubleIsAnError) {
    for (char const* const text :
         {"M0 0A1e308 1e-308 0 0 1 1 1", "M0 0A1e-308 1e308 45 1 1 1e300 1",
          "M0 0A1.7e308 1.7e308 0 1 1 1 1", "M0 0a1 1 0 0 0 1e308 0 1 1 0 0 0 1e308 0"}) {
        SvgPathResult const result = ReadSvgPath(text);
        for (Pt const& p : result.path.mPts) {
            EXPECT_TRUE(std::isfinite(p.h) && std::isfinite(p.v)) << text;
        }
        if (result.error) {
            EXPECT_EQ(result.error->expected, "coordinates in the range of double") << text;
        }
    }
    EXPECT_TRUE(ReadSvgPath("M0 0a1 1 0 0 0 1e308 0 1 1 0 0 0 1e308 0").error);
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

// ------------------------------------------------------------------------------------------------
// Writing

struct WriteRow {
    char const* read; // in any spelling
    char const* written;
};

void PrintTo(WriteRow const& row, std::ostream* out) { *out << '"' << row.read << '"'; }

class WriteSvgPathTable : public ::testing::TestWithParam<WriteRow> {};

TEST_P(WriteSvgPathTable, GivesTheShortestText) {
    CPath const path = Read(GetParam().read);
    std::string const written = WriteSvgPath(path);
    EXPECT_EQ(written, GetParam().written);
    EXPECT_TRUE(Same(Read(written), path));
}

INSTANTIATE_TEST_SUITE_P(
    All, WriteSvgPathTable,
    ::testing::Values(
        WriteRow{"", ""}, WriteRow{"M 1 2", "M1 2"}, WriteRow{"M 1 2 Z", "M1 2Z"},
        // Numbers.
        WriteRow{"M 0.5 -0.5", "M.5-.5"}, WriteRow{"M 0.5 0.25", "M.5.25"},
        WriteRow{"M -0 0", "M-0 0"}, WriteRow{"M 100 1000", "M100 1e3"},
        WriteRow{"M 1500 15000", "M1500 15e3"}, WriteRow{"M 0.001 0.0001", "M.001 1e-4"},
        WriteRow{"M 0.0015 0.00015", "M.0015 15e-5"}, WriteRow{"M 1e-4 0.5", "M1e-4.5"},
        WriteRow{"M 1e21 5e-324", "M1e21 5e-324"}, WriteRow{"M 12.5 1e100", "M12.5 1e100"},
        WriteRow{"M 123456789 0.1", "M123456789 .1"},
        WriteRow{"M 1.7976931348623157e308 0", "M17976931348623157e292 0"},
        // Commands.
        WriteRow{"M 1 2 L 3 4 L 5 7", "M1 2 3 4 5 7"},
        WriteRow{"M 101 102 L 103 105 L 104 101", "M101 102l2 3 1-4"},
        WriteRow{"M 1 2 L 9 2 L 9 8 L 1 8 Z", "M1 2H9V8H1Z"},
        WriteRow{"M 101 102 L 109 102 L 109 108 L 101 108 Z", "M101 102h8v6h-8Z"},
        WriteRow{"M 0 0 C 1 2 3 4 5 6", "M0 0C1 2 3 4 5 6"},
        WriteRow{"M 0 0 C 1 2 3 4 5 6 C 7 8 9 9 8 7", "M0 0C1 2 3 4 5 6S9 9 8 7"},
        WriteRow{"M 1 2 C 1 2 3 4 5 6", "M1 2S3 4 5 6"},
        WriteRow{"M 0 0 L 9 5 C 1 2 3 4 5 6 7 9 9 9 8 7", "M0 0 9 5C1 2 3 4 5 6 7 9 9 9 8 7"},
        // The start of a closed subpath goes without saying, where something is drawn.
        WriteRow{"M 3 4 L 5 7 Z M 3 4 L 7 5", "M3 4 5 7ZL7 5"},
        WriteRow{"M 3 4 L 5 7 Z M 3 4 C 7 5 8 8 9 9", "M3 4 5 7ZC7 5 8 8 9 9"},
        WriteRow{"M 3 4 L 5 7 Z M 3 4", "M3 4 5 7ZM3 4"},
        WriteRow{"M 3 4 L 5 7 Z M 3 4 Z", "M3 4 5 7ZM3 4Z"},
        WriteRow{"M 3 4 L 5 7 Z M 3 5 L 7 5", "M3 4 5 7ZM3 5H7"},
        WriteRow{"M 0 4 L 5 7 Z M -0 4 L 7 5", "M0 4 5 7ZM-0 4 7 5"},
        // The relative form with fewer digits than the difference of the doubles has.
        WriteRow{"M 100.1 0 L 100.3 0", "M100.1 0h.2"},
        WriteRow{"m.1.3l.1.1.1.1.1.1", "m.1.3.1.1.1.1.1.1"},
        // Minus zero has no relative spelling from zero.
        WriteRow{"M 0 5 L -0 9", "M0 5-0 9"}));

/// All texts of a path by trying everything: each element in each command that fits, its letter
/// written or left out, separators written only where the text would else read differently.
/// Coordinates and their differences must be short exact decimals.
class ShortestByForce {
public:
    explicit ShortestByForce(CPath const& path) : mPath(path) {}

    std::size_t Length() {
        mBest = std::numeric_limits<std::size_t>::max();
        Extend("", 0, 0, Pt(), Pt());
        return mBest;
    }

private:
    static std::string Spelled(double value) {
        char text[32];
        std::snprintf(text, sizeof text, "%.10g", value);
        std::string number = text;
        if (number.substr(0, 2) == "0.") {
            number.erase(0, 1);
        } else if (number.substr(0, 3) == "-0.") {
            number.erase(1, 1);
        }
        return number;
    }

    void Try(std::string const& text, char letter, std::vector<double> const& numbers,
             std::size_t element, std::size_t point, Pt current, Pt start) {
        for (bool const withLetter : {true, false}) {
            // Every choice of separators, as bits.
            for (std::size_t bits = 0; bits < std::size_t{1} << numbers.size(); ++bits) {
                std::string longer = text;
                if (withLetter) {
                    longer += letter;
                }
                for (std::size_t i = 0; i < numbers.size(); ++i) {
                    longer += (bits >> i & 1) != 0 ? " " : "";
                    longer += Spelled(numbers[i]);
                }
                if (longer.size() < mBest && ReadsSoFar(longer, element + 1, point)) {
                    Extend(longer, element + 1, point, current, start);
                    break; // other separators that read the same are as long or longer
                }
            }
        }
    }

    bool ReadsSoFar(std::string const& text, std::size_t elements, std::size_t points) {
        SvgPathResult const result = ReadSvgPath(text);
        CPath part = mPath;
        part.mCtls.resize(elements);
        part.mPts.resize(points);
        return !result.error && Same(result.path, part);
    }

    void Extend(std::string const& text, std::size_t element, std::size_t point, Pt current,
                Pt start) {
        if (element == mPath.mCtls.size()) {
            mBest = std::min(mBest, text.size());
            return;
        }
        Pt const* const p = mPath.mPts.data() + point;
        switch (mPath.mCtls[element]) {
        case kPathMove:
            Try(text, 'M', {p[0].h, p[0].v}, element, point + 1, p[0], p[0]);
            Try(text, 'm', {p[0].h - current.h, p[0].v - current.v}, element, point + 1, p[0],
                p[0]);
            break;
        case kPathLine:
            Try(text, 'L', {p[0].h, p[0].v}, element, point + 1, p[0], start);
            Try(text, 'l', {p[0].h - current.h, p[0].v - current.v}, element, point + 1, p[0],
                start);
            Try(text, 'H', {p[0].h}, element, point + 1, p[0], start);
            Try(text, 'h', {p[0].h - current.h}, element, point + 1, p[0], start);
            Try(text, 'V', {p[0].v}, element, point + 1, p[0], start);
            Try(text, 'v', {p[0].v - current.v}, element, point + 1, p[0], start);
            break;
        case kPathCurve: {
            std::vector<double> const absolute{p[0].h, p[0].v, p[1].h, p[1].v, p[2].h, p[2].v};
            std::vector<double> relative;
            for (int i = 0; i < 3; ++i) {
                relative.push_back(p[i].h - current.h);
                relative.push_back(p[i].v - current.v);
            }
            auto const tail = [](std::vector<double> const& all) {
                return std::vector<double>(all.begin() + 2, all.end());
            };
            Try(text, 'C', absolute, element, point + 3, p[2], start);
            Try(text, 'c', relative, element, point + 3, p[2], start);
            Try(text, 'S', tail(absolute), element, point + 3, p[2], start);
            Try(text, 's', tail(relative), element, point + 3, p[2], start);
            break;
        }
        default:
            Try(text, 'Z', {}, element, point, start, start);
            break;
        }
    }

    CPath const& mPath;
    std::size_t mBest = 0;
};

TEST(WriteSvgPath, NoTextIsShorter) {
    std::mt19937 random(7);
    auto const coordinate = [&] {
        double const steps[] = {1.0, 0.5, 0.25, 1.0};
        return (static_cast<int>(random() % 60) - 20) * steps[random() % 4];
    };
    auto const point = [&] {
        double const h = coordinate();
        double const v = coordinate();
        return Pt(h, v);
    };
    for (int i = 0; i < 300; ++i) {
        CPath path;
        path.MoveTo(point());
        std::size_t const count = 2 + random() % 3;
        while (path.mCtls.size() < count) {
            Pt const current = path.CurrentPoint();
            switch (random() % 4) {
            case 0:
                path.LineTo(point());
                break;
            case 1:
                path.LineTo(random() % 2 == 0 ? Pt(current.h, coordinate())
                                              : Pt(coordinate(), current.v));
                break;
            case 2:
                if (random() % 2 == 0 && path.mCtls.back() == kPathCurve) {
                    Pt const control = path.mPts[path.mPts.size() - 2];
                    path.CurveTo(current * 2.0 - control, point(), point());
                } else {
                    path.CurveTo(point(), point(), point());
                }
                break;
            default:
                if (path.mOpen && path.mCtls.back() != kPathMove) {
                    path.LineTo(point());
                }
                break;
            }
        }
        if (random() % 3 == 0) {
            path.ClosePath();
        }
        std::string const written = WriteSvgPath(path);
        EXPECT_TRUE(Same(Read(written), path)) << written;
        EXPECT_EQ(written.size(), ShortestByForce(path).Length()) << written;
    }
}

/// A path from the building operations with coordinates of one flavour.
CPath RandomPath(std::mt19937_64& random, int flavour) {
    auto const coordinate = [&]() -> double {
        switch (flavour) {
        case 0:
            return static_cast<double>(random() % 41) - 20.0;
        case 1:
            return static_cast<double>(random() % 20001) / 1000.0 - 10.0;
        case 2: { // any finite double
            double value;
            do {
                std::uint64_t const bits = random();
                std::memcpy(&value, &bits, sizeof value);
            } while (!std::isfinite(value));
            return value;
        }
        case 3: {
            double const special[] = {0.0,
                                      -0.0,
                                      5e-324,
                                      -5e-324,
                                      2.2250738585072014e-308,
                                      1.7976931348623157e308,
                                      -1.7976931348623157e308,
                                      0.1,
                                      1.0 / 3.0,
                                      9007199254740993.0,
                                      1e21,
                                      1e22,
                                      123456.0};
            return special[random() % std::size(special)];
        }
        default:
            return static_cast<double>(random() % 1000) / 7.0 + 1000.0;
        }
    };
    auto const point = [&] {
        double const h = coordinate();
        double const v = coordinate();
        return Pt(h, v);
    };
    CPath path;
    std::size_t const count = random() % 40;
    for (std::size_t i = 0; i < count; ++i) {
        Pt const current = path.CurrentPoint();
        std::uint64_t const kind = random() % 10;
        if (!path.mOpen || kind == 0) {
            path.MoveTo(path.mCtls.empty() || random() % 2 == 0
                            ? point()
                            : path.mPts[static_cast<std::size_t>(random() % path.mPts.size())]);
        } else if (kind == 1) {
            path.ClosePath();
            if (random() % 2 == 0) { // go on from the start
                std::size_t p = 0;
                Pt start;
                for (char const code : path.mCtls) {
                    if (code == kPathMove) {
                        start = path.mPts[p];
                    }
                    p += code == kPathCurve ? 3 : code == kPathClose ? 0 : 1;
                }
                path.MoveTo(start);
            }
        } else if (kind < 4) {
            path.LineTo(random() % 2 == 0 ? Pt(current.h, coordinate())
                                          : Pt(coordinate(), current.v));
        } else if (kind < 6) {
            path.LineTo(point());
        } else if (kind == 6 && path.mCtls.back() == kPathCurve) {
            Pt const control = path.mPts[path.mPts.size() - 2];
            Pt const c1(2.0 * current.h - control.h, 2.0 * current.v - control.v);
            if (std::isfinite(c1.h) && std::isfinite(c1.v)) {
                path.CurveTo(c1, point(), point());
            }
        } else if (kind == 7) {
            path.CurveTo(current, point(), point());
        } else {
            path.CurveTo(point(), point(), point());
        }
    }
    return path;
}

TEST(WriteSvgPath, ReadsBackBitByBit) {
    std::mt19937_64 random(2024);
    for (int flavour = 0; flavour < 5; ++flavour) {
        for (int i = 0; i < 1000; ++i) {
            CPath const path = RandomPath(random, flavour);
            std::string const written = WriteSvgPath(path);
            CPath const back = Read(written);
            ASSERT_TRUE(Same(back, path)) << written << "\n"
                                          << Elements(path) << "\n"
                                          << Elements(back);
            EXPECT_EQ(WriteSvgPath(back), written);
        }
    }
}

TEST(WriteSvgPath, ElementsWithoutMoveStartWhereTheyAreMeasuredFrom) {
    Pt const a(1, 1);
    Pt const b(5, 2);
    Pt const c(6, 7);
    Pt const d(8, 9);
    struct Row {
        char const* codes;
        std::vector<Pt> points;
        char const* written;
    };
    for (Row const& row : {
             Row{"C", {a, b, c}, "M0 0C1 1 5 2 6 7"},
             Row{"CC", {a, b, c, a, c, d}, "M0 0C1 1 5 2 6 7 1 1 6 7 8 9"},
             Row{"CZ", {a, b, c}, "M0 0C1 1 5 2 6 7Z"},
             Row{"MLZC", {a, b, a, c, d}, "M1 1 5 2ZM5 2C1 1 6 7 8 9"},
             // The second close is measured to the first subpath's start, here (1, 1).
             Row{"MLZCZ", {a, b, a, c, d}, "M1 1 5 2ZM5 2C1 1 6 7 8 9L1 1"},
             Row{"MLZCZC",
                 {a, b, a, c, d, a, c, b},
                 "M1 1 5 2ZM5 2C1 1 6 7 8 9L1 1M8 9C1 1 6 7 5 2"},
             Row{"L", {a}, "M0 0 1 1"},
             Row{"MLZL", {a, b, c}, "M1 1 5 2ZM5 2 6 7"},
         }) {
        CPath const path = Raw(row.codes, row.points);
        std::string const written = WriteSvgPath(path);
        EXPECT_EQ(written, row.written) << row.codes;
        EXPECT_NEAR(Read(written).Length(), path.Length(), 1e-12) << row.codes;
    }
}

TEST(WriteSvgPath, LeavesOutWhatHasNoMeaning) {
    Pt const a(1, 1);
    Pt const b(5, 2);
    struct Row {
        char const* name;
        char const* codes;
        std::vector<Pt> points;
        char const* written;
    };
    for (Row const& row : {
             Row{"a close in front", "ZMLZ", {a, b}, "M1 1 5 2Z"},
             Row{"two closes", "MLZZ", {a, b}, "M1 1 5 2Z"},
             Row{"two moves", "MMLZ", {b, a, b}, "M1 1 5 2Z"},
             Row{"two moves with rubbish between", "M?ML", {b, a, b}, "M1 1 5 2"},
             Row{"an unknown code", "M?L?Z?", {a, b}, "M1 1 5 2Z"},
             Row{"a curve without its points", "MLC", {a, b, a, b}, "M1 1 5 2"},
             Row{"a move without its point", "MLM", {a, b}, "M1 1 5 2"},
             Row{"points without codes", "ML", {a, b, a, b}, "M1 1 5 2"},
             Row{"points only", "", {a, b}, ""},
             Row{"closes only", "ZZ", {}, ""},
         }) {
        EXPECT_EQ(WriteSvgPath(Raw(row.codes, row.points)), row.written) << row.name;
    }
}

TEST(WriteSvgPath, WritesWhatATransformHasFlattened) {
    CPath path = Read("M1 2L3 4C5 6 7 8 9 10Z");
    path.Transform(CMatrix3x3().Scale(0.0, 0.0));
    EXPECT_EQ(WriteSvgPath(path), "M0 0H0S0 0 0 0Z");
    EXPECT_EQ(Elements(Read(WriteSvgPath(path))), "M 0,0 Z");
}

TEST(WriteSvgPath, ThrowsAtNumbersThatHaveNoText) {
    for (double const bad : {kNaN, kInfinity, -kInfinity}) {
        for (std::size_t i = 0; i < 5; ++i) {
            for (bool const vertical : {false, true}) {
                CPath path = Read("M1 2L3 4C5 6 7 8 9 10Z");
                (vertical ? path.mPts[i].v : path.mPts[i].h) = bad;
                try {
                    WriteSvgPath(path);
                    FAIL() << "point " << i;
                } catch (std::invalid_argument const& e) {
                    EXPECT_EQ(std::string(e.what()),
                              "element " + std::to_string(std::min<std::size_t>(i, 2)) +
                                  " of the path has a coordinate that is not finite");
                }
            }
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Anything

/// Whatever the text, the result is in order.
void CheckAnyText(std::string_view text) {
    SvgPathResult const result = ReadSvgPath(text);
    std::size_t points = 0;
    bool open = false;
    for (char const code : result.path.mCtls) {
        ASSERT_TRUE(open || code == kPathMove);
        open = code != kPathClose;
        points += code == kPathCurve ? 3 : code == kPathClose ? 0 : 1;
    }
    ASSERT_EQ(points, result.path.mPts.size());
    for (Pt const& p : result.path.mPts) {
        ASSERT_TRUE(std::isfinite(p.h) && std::isfinite(p.v));
    }
    if (result.error) {
        ASSERT_LE(result.error->position, text.size());
        ASSERT_FALSE(result.error->found.empty());
        // What stands before the error alone gives the same segments.
        ASSERT_TRUE(Same(ReadSvgPath(text.substr(0, result.error->position)).path, result.path));
    }
    std::string const written = WriteSvgPath(result.path);
    SvgPathResult const back = ReadSvgPath(written);
    ASSERT_FALSE(back.error);
    ASSERT_TRUE(Same(back.path, result.path)) << text << "\n" << written;
    if (!result.error && result.path.mCtls.size() > 1 &&
        text.find_first_of("AaQqTt") == text.npos && text.find_first_of("CcSs") == text.npos) {
        ASSERT_LE(written.size(), text.size()) << text << "\n" << written;
    }
}

TEST(SvgPathFuzz, RandomTexts) {
    std::mt19937 random(99);
    std::string_view const alphabet = "MmLlHhVvCcSsQqTtAaZz0123456789.-+eE, \n0011";
    for (int i = 0; i < 30000; ++i) {
        std::string text = "M";
        std::size_t const length = random() % 60;
        while (text.size() < length) {
            text += alphabet[random() % alphabet.size()];
        }
        SCOPED_TRACE(text);
        CheckAnyText(text);
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TEST(SvgPathFuzz, MutatedTexts) {
    std::string const seeds[] = {
        "M10 10C20 20 40 20 50 10S70-10 90 10Q110 30 130 10T170 10A25 50-30 01 50-25l1e2.5Z",
        "m1.5.5-3e2 1h3v4H5V6l7 8L9 1c1 2 3 4 5 6z m1 1a1 1 0 00.5.5a3 4 5 1 1-6-7z",
        "M0 0C8 0 0 8 0 0S1 1 2 2ZC1 2 3 4 0 0Zl5 5ZZm1-1 1-1",
    };
    std::mt19937 random(123);
    for (int i = 0; i < 30000; ++i) {
        std::string text = seeds[random() % std::size(seeds)];
        for (std::uint32_t n = 1 + random() % 4; n > 0; --n) {
            std::size_t const at = random() % text.size();
            switch (random() % 4) {
            case 0:
                text.erase(at, 1 + random() % 3);
                break;
            case 1:
                text[at] = static_cast<char>(random() % 256);
                break;
            case 2:
                text.insert(at, 1, "MmLlHhVvCcSsQqTtAaZz0123456789.-+eE, "[random() % 37]);
                break;
            default:
                text.insert(at, text.substr(random() % text.size(), random() % 12));
                break;
            }
            if (text.empty()) {
                text = "M";
            }
        }
        SCOPED_TRACE(text);
        CheckAnyText(text);
        if (::testing::Test::HasFatalFailure()) {
            return;
        }
    }
}

TEST(SvgPathFuzz, ReadsNothingBeyondTheEnd) {
    // Each prefix in a block of its own, for the address sanitizer.
    std::string const text = "M1.5e3-2E-1a1 1 0 01.5.5\xE2\x88\x92+.5Z";
    for (std::size_t length = 0; length <= text.size(); ++length) {
        std::vector<char> const block(text.begin(),
                                      text.begin() + static_cast<std::ptrdiff_t>(length));
        CheckAnyText(std::string_view(block.data(), block.size()));
    }
    EXPECT_TRUE(ReadSvgPath(std::string_view()).path.mCtls.empty());
}

// ------------------------------------------------------------------------------------------------
// The surroundings

TEST(SvgPath, KnowsNoLocale) {
    CommaLocale const locale;
    if (!locale.Available()) {
        GTEST_SKIP() << "no locale with a decimal comma here";
    }
    CPath const path = Read("M1.5.25l1e-3,2.5");
    EXPECT_EQ(path.mPts[0], Pt(1.5, 0.25));
    EXPECT_EQ(path.mPts[1], Pt(1.501, 2.75));
    EXPECT_EQ(WriteSvgPath(Read("M1.5.25V2.75")), "M1.5.25v2.5");
    EXPECT_TRUE(ReadSvgPath("M1,5").error == std::nullopt);
}

#if TRAMMEL_TEST_COUNTS_MEMORY

/// `count` segments of all kinds.
std::string LongText(std::size_t count) {
    std::mt19937 random(1);
    std::string text = "M0 0";
    char segment[120];
    auto const number = [&] { return static_cast<double>(random() % 100000) / 997.0; };
    for (std::size_t i = 0; i < count; ++i) {
        switch (i % 5) {
        case 0:
            std::snprintf(segment, sizeof segment, "l%.3f-%.3f", number(), number());
            break;
        case 1:
            std::snprintf(segment, sizeof segment, "C%.2f,%.2f,%.2f,%.2f,%.2f,%.2f", number(),
                          number(), number(), number(), number(), number());
            break;
        case 2:
            std::snprintf(segment, sizeof segment, "q%.4f %.4f 1 2", number(), number());
            break;
        case 3:
            std::snprintf(segment, sizeof segment, "a5 7 30 01%.3f 1", number());
            break;
        default:
            std::snprintf(segment, sizeof segment, "zm%.1f 3", number());
            break;
        }
        text += segment;
    }
    return text;
}

TEST(SvgPath, MemoryIsLinear) {
    for (std::size_t const count : {1000U, 10000U, 100000U}) {
        std::string const text = LongText(count);
        std::size_t before = gAllocatedBytes;
        CPath const path = Read(text);
        std::size_t const read = gAllocatedBytes - before;
        // Growing by halves or doubling: all blocks together, freed ones too, within a few times
        // the last. Quadratic growth would be thousands of times.
        EXPECT_LT(read, 6 * path.size() + 4096) << count;
        before = gAllocatedBytes;
        std::string const written = WriteSvgPath(path);
        EXPECT_LT(gAllocatedBytes - before, 8 * written.size() + 65536) << count;
    }
}
#endif

// With millions of bytes in one token, one error or one gap, anything quadratic would not come to
// an end within this program's time.
TEST(SvgPath, LongRunsOfOneThing) {
    std::size_t const count = 1000000;
    EXPECT_EQ(Elements(Read("M1" + std::string(count, ' ') + "2")), "M 1,2");
    EXPECT_EQ(Elements(Read("M0." + std::string(count, '0') + "1 2")), "M 0,2");
    EXPECT_EQ(Elements(Read("M" + std::string(count, '0') + "1 1e-" + std::string(count, '9'))),
              "M 1,0");
    EXPECT_EQ(Elements(Read("M1" + std::string(count, '0') + "e-" + std::to_string(count) + " 2")),
              "M 1,2");
    EXPECT_EQ(Elements(Read("M1 1" + std::string(count, 'Z'))), "M 1,1 Z");
    EXPECT_EQ(ReadSvgPath("M" + std::string(count, '7') + " 1").error->position, 1U);
    EXPECT_EQ(ReadSvgPath("M1 1" + std::string(count, ',')).error->position, 5U);
    EXPECT_EQ(ReadSvgPath("M1 1" + std::string(count, 'x')).error->position, 4U);
    std::string moves;
    std::string lines = "M0 0";
    for (std::size_t i = 0; i < count / 8; ++i) {
        moves += "M1 2m3 4";
        lines += "h1v1h-1v-1Z";
    }
    EXPECT_EQ(Elements(Read(moves)), "M 4,6");
    CPath const path = Read(lines);
    EXPECT_EQ(path.mCtls.size(), count / 8 * 6);
    EXPECT_TRUE(Same(Read(WriteSvgPath(path)), path));
}

// ------------------------------------------------------------------------------------------------
// Real drawings

TEST(SvgPath, RealOutlines) {
    // A letter with a counter in quadratic curves, as font tools write them, and an icon in arcs.
    CPath const letter =
        Read("M702 563Q479 563 393.0 512.0Q307 461 307 338Q307 240 371.5 182.5Q436 125 547 125"
             "Q700 125 792.5 233.5Q885 342 885 522V563ZM1069 639V0H885V170Q822 68 728.0 19.5"
             "Q634 -29 498 -29Q326 -29 224.5 67.5Q123 164 123 326Q123 515 249.5 611.0"
             "Q376 707 627 707H885V725Q885 852 801.5 921.5Q718 991 567 991Q471 991 380.0 968.0"
             "Q289 945 205 899V1069Q306 1108 401.0 1127.0Q496 1146 586 1146Q829 1146 949.0 1020.0"
             "Q1069 894 1069 639Z");
    EXPECT_EQ(std::count(letter.mCtls.begin(), letter.mCtls.end(), kPathClose), 2);
    EXPECT_EQ(std::count(letter.mCtls.begin(), letter.mCtls.end(), kPathCurve), 6 + 14);
    EXPECT_EQ(letter.Bounds().left, 123.0);
    EXPECT_EQ(letter.Bounds().right, 1069.0);
    CPath const icon =
        Read("M12 2a10 10 0 1 0 0 20 10 10 0 1 0 0-20zm0 18a8 8 0 1 1 0-16 8 8 0 1 1 0 "
             "16zm.5-13H11v6l5.25 3.15.75-1.23-4.5-2.67z");
    EXPECT_EQ(std::count(icon.mCtls.begin(), icon.mCtls.end(), kPathClose), 3);
    EXPECT_NEAR(icon.Length(), 2 * kPi * 18 + 25.5456, 0.01);
    for (CPath const& path : {letter, icon}) {
        EXPECT_TRUE(Same(Read(WriteSvgPath(path)), path));
    }
}

/// The values of all attributes named d in a file.
std::vector<std::string> PathTexts(std::filesystem::path const& file) {
    std::ifstream in(file, std::ios::binary);
    std::string const text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::vector<std::string> found;
    for (std::size_t at = text.find("d=\""); at != text.npos; at = text.find("d=\"", at)) {
        std::size_t const begin = at + 3;
        std::size_t const end = text.find('"', begin);
        if (end == text.npos) {
            break;
        }
        if (at > 0 && std::strchr(" \t\r\n", text[at - 1]) != nullptr &&
            text.find('&', begin) > end) {
            found.push_back(text.substr(begin, end - begin));
        }
        at = end;
    }
    return found;
}

TEST(SvgPath, InstalledIcons) {
    std::size_t files = 0;
    std::size_t paths = 0;
    std::size_t bytes = 0;
    std::size_t written = 0;
    for (char const* const folder :
         {"/usr/share/icons/Adwaita", "/usr/share/icons/breeze", "/usr/share/icons/Papirus",
          "/usr/share/icons/oxygen", "/usr/share/icons/hicolor"}) {
        std::error_code error;
        std::filesystem::recursive_directory_iterator const end;
        for (std::filesystem::recursive_directory_iterator i(folder, error);
             i != end && files < 1000; i.increment(error)) {
            if (error || i->path().extension() != ".svg" || i->is_symlink()) {
                continue;
            }
            ++files;
            for (std::string const& text : PathTexts(i->path())) {
                SvgPathResult const result = ReadSvgPath(text);
                EXPECT_FALSE(result.error)
                    << i->path() << ": " << text.substr(0, 100) << ": " << result.error->Message();
                std::string const shorter = WriteSvgPath(result.path);
                EXPECT_TRUE(Same(Read(shorter), result.path)) << i->path() << ": " << text;
                ++paths;
                bytes += text.size();
                written += shorter.size();
            }
        }
    }
    if (paths == 0) {
        GTEST_SKIP()
            << "no icons in /usr/share/icons (packages adwaita-icon-theme, breeze-icon-theme)";
    }
    std::printf("%zu icons, %zu paths: %zu bytes, written again in %zu\n", files, paths, bytes,
                written);
}

} // namespace
