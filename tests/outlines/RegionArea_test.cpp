// SPDX-License-Identifier: MIT

#include "RegionArea.h"

#include "AccurateCurve.h"
#include "CMatrix3x3.h"
#include "Moments.h"
#include "PathText.h"
#include "PolygonOperations.h"
#include "StripArea.h"
#include "Winding.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel::AreaWithin;
using trammel::FillRule;
using trammel::RegionArea;
using trammel_test::Path;
using trammel_test::Rings;

typedef TPoint<double> Pt;

constexpr FillRule kRules[] = {FillRule::kNonZero, FillRule::kEvenOdd};
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Expects an area, and that `error` holds and is at most `most`.
void ExpectArea(CPath const& path, FillRule rule, double accuracy, double area, double most) {
    AreaWithin const found = RegionArea(path, rule, accuracy);
    EXPECT_LE(std::abs(found.area - area), found.error + 1e-15 * area);
    EXPECT_LE(found.error, most);
}

class Dice {
public:
    explicit Dice(std::uint64_t seed) : mEngine(seed) {}
    double Unit() { return static_cast<double>(mEngine() >> 11) * 0x1p-53; }
    Pt Point() {
        double const h = Unit();
        return Pt(h, Unit());
    }
    int Below(int n) { return static_cast<int>(mEngine() % static_cast<std::uint64_t>(n)); }

private:
    std::mt19937_64 mEngine;
};

/// A path of closed contours with curves and lines at random.
CPath RandomPath(Dice& dice, int contours) {
    CPath path;
    for (int i = 0; i < contours; ++i) {
        path.MoveTo(dice.Point());
        int const segments = 1 + dice.Below(3);
        for (int k = 0; k < segments; ++k) {
            if (dice.Below(4) == 0) {
                path.LineTo(dice.Point());
            } else {
                Pt const c1 = dice.Point();
                Pt const c2 = dice.Point();
                path.CurveTo(c1, c2, dice.Point());
            }
        }
        path.ClosePath();
    }
    return path;
}

/// The path's contours with `chords` chords in the place of each curve, which are a closed move,
/// line and curve list. Adds the greatest area that the chords can miss to `missed`.
Rings Chords(CPath const& path, int chords, double& missed) {
    Rings rings;
    std::size_t next = 0;
    for (char const code : path.mCtls) {
        if (code == kPathMove) {
            rings.emplace_back();
            rings.back().Append(path.mPts[next++], true);
        } else if (code == kPathLine) {
            rings.back().Append(path.mPts[next++], true);
        } else if (code == kPathCurve) {
            CBezier const curve(path.mPts[next - 1], path.mPts[next], path.mPts[next + 1],
                                path.mPts[next + 2]);
            for (int k = 1; k <= chords; ++k) {
                rings.back().Append(curve.TPt(static_cast<double>(k) / chords), true);
            }
            // A chord is off by an eighth of the second derivative, which is at most 12 here, times
            // its parameter's range squared. The length is below 6.
            missed += 6.0 * 12.0 / 8.0 / (static_cast<double>(chords) * chords);
            next += 3;
        }
    }
    return rings;
}

TEST(RegionArea, IsExactWhereParabolasOverlap) {
    // v = h² and v = 1 - h² from h = -1 to 1, each closed by a line. They have a lens of area
    // 2 sqrt(2) / 3 in common.
    std::string const up = "M -1 1 C -0.3333333333333333 -0.3333333333333333"
                           " 0.3333333333333333 -0.3333333333333333 1 1 Z";
    std::string const down = "M -1 0 C -0.3333333333333333 1.3333333333333333"
                             " 0.3333333333333333 1.3333333333333333 1 0 Z";
    double const lens = 2.0 * std::sqrt(2.0) / 3.0;
    CPath const path = Path(up + down);
    for (double const accuracy : {1.0, 1e-2, 1e-4, 1e-6, 1e-8, 1e-10}) {
        // The second contour runs the other way, and none holds a point twice the same way.
        ExpectArea(path, FillRule::kEvenOdd, accuracy, 8.0 / 3.0 - 2.0 * lens, accuracy + 1e-10);
    }
    CPath const same = Path(up + "M 1 0 C 0.3333333333333333 1.3333333333333333"
                                 " -0.3333333333333333 1.3333333333333333 -1 0 Z");
    for (double const accuracy : {1.0, 1e-2, 1e-4, 1e-6, 1e-8, 1e-10}) {
        ExpectArea(same, FillRule::kNonZero, accuracy, 8.0 / 3.0 - lens, accuracy + 1e-10);
        ExpectArea(same, FillRule::kEvenOdd, accuracy, 8.0 / 3.0 - 2.0 * lens, accuracy + 1e-10);
    }
}

TEST(RegionArea, IsTheSignedAreaWhereNothingOverlapsWhateverTheAccuracy) {
    CPath const path =
        Path("M 0 0 C 3 -2 7 -2 10 0 C 12 3 12 7 10 10 C 7 12 3 12 0 10 C -2 7 -2 3 "
             "0 0 Z M 3 3 C 2 4 2 6 3 7 C 4 8 6 8 7 7 C 8 6 8 4 7 3 C 6 2 4 2 3 3 Z");
    double const area = trammel::SignedArea(path);
    for (FillRule const rule : kRules) {
        for (double const accuracy : {1e3, 1.0, 1e-3}) {
            ExpectArea(path, rule, accuracy, area, 1e-9);
        }
    }
}

TEST(RegionArea, CountsEachPointOnce) {
    std::string const square = "M 0 0 L 4 0 L 4 4 L 0 4 Z";
    ExpectArea(Path(square + square), FillRule::kNonZero, 1.0, 16.0, 1e-9);
    ExpectArea(Path(square + square), FillRule::kEvenOdd, 1.0, 0.0, 1e-9);
    ExpectArea(Path(square + "M 1 1 L 3 1 L 3 3 L 1 3 Z"), FillRule::kNonZero, 1.0, 16.0, 1e-9);
    ExpectArea(Path(square + "M 1 1 L 3 1 L 3 3 L 1 3 Z"), FillRule::kEvenOdd, 1.0, 12.0, 1e-9);
}

TEST(RegionArea, CancelsEqualAndReversedCurves) {
    std::string const drop = "M 0 0 C 8 -3 8 9 0 6 Z";
    double const area = std::abs(trammel::SignedArea(Path(drop)));
    std::string const reversed = "M 0 6 C 8 9 8 -3 0 0 Z";
    ExpectArea(Path(drop + drop), FillRule::kNonZero, 1e-9, area, 1e-8);
    ExpectArea(Path(drop + drop), FillRule::kEvenOdd, 1e-9, 0.0, 1e-8);
    ExpectArea(Path(drop + reversed), FillRule::kNonZero, 1e-9, 0.0, 1e-8);
    ExpectArea(Path(drop + drop + reversed), FillRule::kNonZero, 1e-9, area, 1e-8);
}

TEST(RegionArea, TakesEmptyAndDegeneratePaths) {
    for (FillRule const rule : kRules) {
        EXPECT_EQ(RegionArea(CPath(), rule, 1.0).area, 0.0);
        EXPECT_EQ(RegionArea(CPath(), rule, 1.0).error, 0.0);
        EXPECT_EQ(RegionArea(Path("M 3 3"), rule, 1.0).area, 0.0);
        EXPECT_EQ(RegionArea(Path("M 3 3 L 5 5"), rule, 1.0).area, 0.0);
        EXPECT_EQ(RegionArea(Path("M 3 3 C 5 5 7 7 9 9 Z"), rule, 1e-9).area, 0.0);
    }
    for (double const bad : {kNaN, kInfinity, -kInfinity}) {
        CPath path = Path("M 0 0 L 2 0 L 2 2 L 0 2 Z");
        path.MoveTo(Pt(1, 1));
        path.CurveTo(Pt(5, bad), Pt(6, 6), Pt(1, 7));
        path.ClosePath();
        EXPECT_EQ(RegionArea(path, FillRule::kNonZero, 1e-6).area, 4.0);
    }
    for (double const accuracy : {0.0, -1.0, kNaN}) {
        ExpectArea(Path("M 0 0 C 4 4 -3 4 1 0 Z"), FillRule::kNonZero, accuracy,
                   RegionArea(Path("M 0 0 C 4 4 -3 4 1 0 Z"), FillRule::kNonZero, 1e-12).area,
                   1e-10);
    }
    EXPECT_GE(RegionArea(Path("M 0 0 C 4 4 -3 4 1 0 Z"), FillRule::kNonZero, kInfinity).area, 0.0);
}

TEST(RegionArea, KeepsTheErrorThatItTells) {
    Dice dice(20250201);
    for (int round = 0; round < 60; ++round) {
        CPath const path = RandomPath(dice, 1 + dice.Below(3));
        double missed = 1e-12;
        Rings const chords = Chords(path, 24, missed);
        for (FillRule const rule : kRules) {
            double const strips =
                trammel_test::StripArea({chords}, [&](std::vector<int> const& windings) {
                    return IsInside(windings[0], rule);
                });
            AreaWithin const fine = RegionArea(path, rule, 1e-11);
            EXPECT_LE(fine.error, 2e-11);
            ASSERT_NEAR(fine.area, strips, missed + fine.error) << "round " << round;
            for (double const accuracy : {1.0, 1e-1, 1e-2, 1e-4, 1e-7}) {
                AreaWithin const coarse = RegionArea(path, rule, accuracy);
                ASSERT_LE(coarse.error, accuracy + 1e-11);
                ASSERT_LE(std::abs(coarse.area - fine.area), coarse.error + fine.error)
                    << "round " << round << " accuracy " << accuracy;
            }
        }
    }
}

TEST(RegionArea, AgreesWithFineFlatteningsCutByTheEngine) {
    Dice dice(20250202);
    for (int round = 0; round < 40; ++round) {
        CPath const path = RandomPath(dice, 5);
        double missed = 1e-12;
        Rings const chords = Chords(path, 1500, missed);
        for (FillRule const rule : kRules) {
            double area = 0.0;
            for (TPolygon<double> const& ring : trammel::RemoveOverlap(chords, rule)) {
                area += trammel::SignedArea(ring);
            }
            ASSERT_NEAR(RegionArea(path, rule, 1e-10).area, area, missed) << "round " << round;
        }
    }
}

TEST(RegionArea, ScalesAndMovesWithTheOutline) {
    Dice dice(20250203);
    for (int const exponent : {-1000, -300, -20, 20, 300, 480}) {
        CPath const path = RandomPath(dice, 3);
        double const size = std::scalbn(1.0, exponent);
        CMatrix3x3 map;
        map.Scale(Pt(size, size));
        CPath scaled = path;
        for (Pt& p : scaled.mPts) {
            p = p * size;
        }
        AreaWithin const area = RegionArea(path, FillRule::kNonZero, 1e-6);
        AreaWithin const other = RegionArea(scaled, FillRule::kNonZero, 1e-6 * size * size);
        if (exponent > -500) {
            EXPECT_EQ(other.area, area.area * size * size) << exponent;
            EXPECT_EQ(other.error, area.error * size * size) << exponent;
        } else {
            EXPECT_LE(other.area, 1e-300);
        }
    }
    // Coordinates near the greatest double: areas are infinite, and nothing else happens.
    CPath const huge = Path("M -1e308 -1e308 C 1e308 -1.7e308 1.7e308 1e308 -1e308 1e308 Z");
    EXPECT_EQ(RegionArea(huge, FillRule::kNonZero, 1.0).area, kInfinity);
}

TEST(RegionArea, EndsWhereOutlinesRunBesideEachOther) {
    // The same curve divided elsewhere, and copies nudged by less and less.
    CBezier const curve(Pt(0, 0), Pt(9, 2), Pt(-3, 7), Pt(8, 8));
    for (double const nudge : {0.0, 1e-15, 1e-12, 1e-9, 1e-6}) {
        CBezier first;
        CBezier second;
        curve.Divide(first, second, 0.3);
        CPath path;
        path.MoveTo(curve.P0);
        path.CurveTo(curve.P1, curve.P2, curve.P3);
        path.LineTo(Pt(20, -5));
        path.ClosePath();
        path.MoveTo(first.P0 + Pt(nudge, 0));
        path.CurveTo(first.P1, first.P2, first.P3);
        path.CurveTo(second.P1, second.P2, second.P3);
        path.LineTo(Pt(20, -5));
        path.ClosePath();
        CPath const one = [&] {
            CPath alone;
            alone.MoveTo(curve.P0);
            alone.CurveTo(curve.P1, curve.P2, curve.P3);
            alone.LineTo(Pt(20, -5));
            alone.ClosePath();
            return alone;
        }();
        double const area = RegionArea(one, FillRule::kNonZero, 1e-9).area;
        AreaWithin const both = RegionArea(path, FillRule::kNonZero, 1e-5);
        EXPECT_LE(both.error, 1.1e-5);
        EXPECT_NEAR(both.area, area, both.error + 20.0 * nudge);
    }
}

} // namespace
