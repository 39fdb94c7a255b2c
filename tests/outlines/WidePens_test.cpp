// SPDX-License-Identifier: MIT

// Strokes and offsets whose pen paints the same places many times.

#include "Stroke.h"

#include "HardPaths.h"
#include "OutlineMeasure.h"
#include "PathStructure.h"
#include "StrokeChecks.h"
#include "TestSupport.h"
#include "Winding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using trammel::FillRule;
using trammel::Offset;
using trammel::OutlineMeasure;
using trammel::Stroke;
using trammel::StrokeJoin;
using trammel::StrokeStyle;
using trammel::WindingNumber;
using trammel_test::AnyStyle;
using trammel_test::DashesOf;
using trammel_test::Dice;
using trammel_test::ExpectOffset;
using trammel_test::ExpectSideOfBorder;
using trammel_test::ExpectSweep;
using trammel_test::ExpectWithinRadius;
using trammel_test::Round;
using trammel_test::Rounds;

typedef TPoint<double> Pt;

/// Lines and curves to random points of a square, in subpaths of 1 to `most` segments, some of them
/// closed.
CPath Scribble(int segments, int most, Dice& dice) {
    CPath path;
    for (int left = segments; left > 0;) {
        path.MoveTo(dice.Point());
        int const here = 1 + dice.Below(most);
        for (int i = 0; i < here; ++i) {
            Pt const a = dice.Point();
            Pt const b = dice.Point();
            Pt const end = dice.Point();
            dice.Coin() ? path.CurveTo(a, b, end) : path.LineTo(end);
        }
        if (dice.Coin()) {
            path.ClosePath();
        }
        left -= here;
    }
    return path;
}

TEST(WidePens, PaintWhatSweepJoinsAndCapsCoverAndNothingElse) {
    Dice dice(21);
    for (int i = 0; i < Rounds(8); ++i) {
        CPath const path = Scribble(70, i % 4 == 0 ? 1 : 40, dice);
        StrokeStyle const style = AnyStyle(dice.Decade(-0.5, 2.5), dice);
        ASSERT_NO_FATAL_FAILURE(ExpectSweep(path, style, 1e-6 * style.width, i, dice));
    }
}

TEST(WidePens, PaintWhatIsWithinHalfTheWidthAtAnyTolerance) {
    Dice dice(22);
    for (int i = 0; i < Rounds(24); ++i) {
        CPath const path = Scribble(120, 120, dice);
        double const radius = dice.Decade(-0.5, 3.0);
        double const tolerance = radius * dice.Decade(-8.0, 1.0);
        CPath out;
        double const kept = Stroke(path, Round(2.0 * radius), tolerance, out);
        ASSERT_LE(kept, tolerance + 1e-7 * (radius + 2.0));
        ASSERT_NO_FATAL_FAILURE(
            ExpectWithinRadius(out, OutlineMeasure(path), radius, kept, 60, i, dice));
    }
}

TEST(WidePens, PaintDashesThatAreShorterThanTheyAreWide) {
    Dice dice(23);
    for (int i = 0; i < Rounds(16); ++i) {
        CPath const path = Scribble(70, 20, dice);
        double const radius = dice.Decade(-1.0, 1.0);
        StrokeStyle style = Round(2.0 * radius);
        style.dashes = {radius * dice.Decade(-1.0, 0.0), radius * dice.Decade(-1.0, 0.0)};
        CPath out;
        double const kept = Stroke(path, style, 1e-6 * radius, out);
        CPath const dashes =
            DashesOf(path, style.dashes[0], style.dashes[0] + style.dashes[1], 0.0);
        // The dashes' ends are as exact as lengths.
        ASSERT_NO_FATAL_FAILURE(ExpectWithinRadius(out, OutlineMeasure(dashes), radius,
                                                   kept + 1e-6 * radius, 60, i, dice));
    }
}

TEST(WidePens, PaintDots) {
    Dice dice(26);
    CPath path;
    std::vector<Pt> dots;
    for (int i = 0; i < 300; ++i) {
        dots.push_back(dice.Point());
        path.MoveTo(dots.back()).ClosePath();
    }
    CPath out;
    double const kept = Stroke(path, Round(6.0), 1e-6, out);
    EXPECT_EQ(trammel::SplitSubpaths(out).size(), 1U);
    for (int k = 0; k < 300; ++k) {
        Pt const p = dice.Point() * 5.0;
        double distance = 10.0;
        for (Pt const& dot : dots) {
            distance = std::min(distance, (p - dot).Length());
        }
        if (std::abs(distance - 3.0) > kept) {
            ASSERT_EQ(WindingNumber(out, p), distance < 3.0 ? 1 : 0);
        }
    }
}

TEST(WidePens, PaintASolidLineWhereDashesHaveNoMeaning) {
    Dice dice(25);
    CPath const path = Scribble(70, 20, dice);
    StrokeStyle style = Round(3.0);
    CPath solid;
    Stroke(path, style, 1e-4, solid);
    style.dashes = {0.0, 0.0};
    CPath out;
    Stroke(path, style, 1e-4, out);
    EXPECT_EQ(out.mCtls, solid.mCtls);
    EXPECT_TRUE(out.mPts == solid.mPts);
    EXPECT_FALSE(out.mCtls.empty());
}

TEST(WidePens, GrowAndShrinkRegionsOfManyContours) {
    Dice dice(24);
    int held = 0;
    for (int i = 0; i < Rounds(20); ++i) {
        CPath const region = trammel::WithSubpathsClosed(Scribble(40, 40, dice));
        FillRule const rule = dice.Coin() ? FillRule::kNonZero : FillRule::kEvenOdd;
        double const distance = dice.Coin() ? dice.Decade(-2.0, 2.0) : -dice.Decade(-2.5, -0.8);
        double const tolerance = std::abs(distance) * dice.Decade(-6.0, 0.5);
        CPath out;
        double const kept = Offset(region, rule, distance, StrokeJoin::kRound, 4.0, tolerance, out);
        ASSERT_LE(kept, tolerance + 1e-6 * (std::abs(distance) + 2.0));
        ASSERT_NO_FATAL_FAILURE(ExpectOffset(region, rule, distance, out, kept, 60, i, dice, held));
    }
    EXPECT_GT(held, Rounds(500));
}

/// A region around the origin whose border goes in and out between two circles.
CPath RaggedRegion(int segments, Dice& dice) {
    CPath region;
    auto const at = [&](double place) {
        double const radius = dice.Between(0.4, 1.0);
        double const angle = 2.0 * pi * place / segments;
        return Pt(radius * std::cos(angle), radius * std::sin(angle));
    };
    region.MoveTo(at(0.0));
    for (int i = 1; i <= segments; ++i) {
        Pt const a = at(i - 0.7);
        Pt const b = at(i - 0.3);
        Pt const end = i < segments ? at(i) : region.mPts.front();
        dice.Coin() ? region.CurveTo(a, b, end) : region.LineTo(end);
    }
    return region.ClosePath();
}

TEST(WidePens, GrowAndShrinkRegionsByEveryJoin) {
    Dice dice(27);
    int judged = 0;
    for (int i = 0; i < Rounds(24); ++i) {
        CPath const region = RaggedRegion(70, dice);
        FillRule const rule = dice.Coin() ? FillRule::kNonZero : FillRule::kEvenOdd;
        double const distance = dice.Coin() ? dice.Decade(-0.3, 2.0) : -dice.Decade(-2.0, 0.0);
        StrokeStyle const border = AnyStyle(2.0 * std::abs(distance), dice);
        double const tolerance = std::abs(distance) * dice.Decade(-6.0, -2.0);
        ASSERT_NO_FATAL_FAILURE(
            ExpectSideOfBorder(region, rule, distance, border, tolerance, i, dice, judged));
    }
    EXPECT_GT(judged, Rounds(500));
}

TEST(WidePens, HaveFewElements) {
    // The hull of the ends has 12 corners. A round pen has an arc around each, and a line to the
    // next one. An arc that several parts paint may be of two curves.
    CPath path;
    for (int i = 0; i < 600; ++i) {
        double const angle = 2.0 * pi * (i % 12) / 12;
        double const radius = i % 5 == 0 ? 1.0 : 0.3;
        Pt const p(radius * std::cos(angle), radius * std::sin(angle));
        i == 0 ? path.MoveTo(p) : path.LineTo(p);
    }
    CPath out;
    Stroke(path, Round(20.0), 1e-4, out);
    EXPECT_EQ(trammel::SplitSubpaths(out).size(), 1U);
    EXPECT_LE(out.mCtls.size(), 2U + 12U + 24U);
}

} // namespace
