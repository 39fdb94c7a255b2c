// SPDX-License-Identifier: MIT

#include "Shapes.h"

#include "CPath.h"
#include "ConicJudge.h"
#include "Moments.h"
#include "PathSegments.h"
#include "SvgPath.h"
#include "TestSupport.h"
#include "UTrigonometry.h"
#include "UnitCircle_p.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <random>
#include <stdexcept>
#include <string>

namespace {

using trammel::CirclePath;
using trammel::CornerRadii;
using trammel::EllipsePath;
using trammel::PolygonPath;
using trammel::RegularPolygonPath;
using trammel::RoundedRectPath;
using trammel::SignedArea;
using trammel::StarPath;
using trammel_detail::UnitPoint;
using trammel_test::ConicJudge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Wide;

typedef TPoint<double> Pt;

std::string Svg(CPath const& path) { return trammel::WriteSvgPath(path); }

std::size_t Curves(CPath const& path) {
    return static_cast<std::size_t>(std::count(path.mCtls.begin(), path.mCtls.end(), kPathCurve));
}

TEST(Shapes, UnitPointsAreRightWithinTwoRoundings) {
    Wide const turn = 2 * std::acos(-1.0L);
    Wide worst = 0;
    for (std::size_t n = 1; n < 300; ++n) {
        for (std::size_t i = 0; i <= n; ++i) {
            Pt const p = UnitPoint(i, n);
            Wide const angle = turn * static_cast<Wide>(i) / static_cast<Wide>(n);
            worst =
                std::max({worst, std::abs(p.h - std::cos(angle)), std::abs(p.v - std::sin(angle))});
        }
    }
    EXPECT_LT(worst, 0x1p-51L);
    EXPECT_EQ(UnitPoint(0, 7), Pt(1, 0));
    EXPECT_EQ(UnitPoint(3, 12), Pt(0, 1));
    EXPECT_EQ(UnitPoint(2, 4), Pt(-1, 0));
    EXPECT_EQ(UnitPoint(9, 12), Pt(0, -1));
    EXPECT_EQ(UnitPoint(5, 5), Pt(1, 0));
    EXPECT_EQ(UnitPoint(1, 8).h, UnitPoint(1, 8).v);
}

TEST(Shapes, CircleStaysWithinItsTolerance) {
    std::mt19937_64 random(31);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int i = 0; i < 500; ++i) {
        double const size = std::pow(10.0, 6 * unit(random));
        Pt const center(size * unit(random), size * unit(random));
        double const h = size * (1.1 + unit(random));
        double const v = size * (1.1 + unit(random));
        double const rotation = random() % 2 == 0 ? 0.0 : 7 * unit(random);
        double const tolerance = std::max(h, v) * std::pow(10.0, -7 + 6 * unit(random));
        CPath const path = EllipsePath(center, h, v, rotation, tolerance);
        ConicJudge::Deviation const found = ConicJudge{center.h, center.v, h, v, rotation}.Of(path);
        Wide const rounding = size * 0x1p-48L * std::max(h, v) / std::min(h, v);
        EXPECT_LE(found.outside, tolerance + rounding);
        EXPECT_LE(found.inside, rounding);
        EXPECT_TRUE(found.forward);
        EXPECT_NEAR(static_cast<double>(found.turned), 2 * pi, 1e-10);
        EXPECT_EQ(path.mPts.front(), path.mPts.back());
        EXPECT_EQ(path.mCtls.back(), kPathClose);
    }
}

TEST(Shapes, CircleIsExactAtTheEndsOfItsAxes) {
    CPath const path = CirclePath(Pt(0.1, 0.7), 3, 1e-9);
    std::size_t const quarter = Curves(path) / 4;
    EXPECT_EQ(path.mPts[0], Pt(0.1 + 3.0, 0.7));
    EXPECT_EQ(path.mPts[3 * quarter], Pt(0.1, 0.7 + 3.0));
    EXPECT_EQ(path.mPts[6 * quarter], Pt(0.1 - 3.0, 0.7));
    EXPECT_EQ(path.mPts[9 * quarter], Pt(0.1, 0.7 - 3.0));
    EXPECT_EQ(Curves(CirclePath(Pt(), 1, 1)), 4U);
    EXPECT_EQ(Curves(CirclePath(Pt(), 1, 4.3e-6)), 8U);
}

TEST(Shapes, AreasAreThoseOfTheFigures) {
    EXPECT_NEAR(SignedArea(CirclePath(Pt(5, 5), 2, 1e-12)), pi * 4, 1e-10);
    EXPECT_NEAR(SignedArea(EllipsePath(Pt(5, 5), -2, 3, 1, 1e-12)), pi * 6, 1e-10);
    EXPECT_NEAR(SignedArea(RoundedRectPath(TRect<double>(0, 0, 10, 20), 2, 3, 1e-12)),
                200 - (4 - pi) * 6, 1e-10);
    EXPECT_NEAR(SignedArea(RegularPolygonPath(Pt(1, 1), 2, 6, 0.3)), 6 * std::sqrt(3.0), 1e-13);
    EXPECT_NEAR(SignedArea(StarPath(Pt(), 3, 1, 5, 0)), 5 * 3 * std::sin(pi / 5), 1e-13);
}

TEST(Shapes, RoundedRectangleStaysWithinItsSides) {
    CPath const path = RoundedRectPath(TRect<double>(0.1, 0.2, 10.3, 20.7), 2.1, 3.3, 1e-6);
    EXPECT_EQ(path.Bounds(), TRect<double>(0.1, 0.2, 10.3, 20.7));
    EXPECT_EQ(path.mPts.front(), path.mPts.back());
    ConicJudge const corner{10.3 - 2.1L, 0.2 + 3.3L, 2.1, 3.3, 0};
    CPath quarter;
    quarter.MoveTo(path.mPts[1]);
    for (std::size_t i = 2; path.mCtls[i] == kPathCurve; ++i) {
        Pt const* const p = &path.mPts[3 * i - 4];
        quarter.CurveTo(p[0], p[1], p[2]);
    }
    EXPECT_LE(corner.Of(quarter).outside, 1e-6L);
    EXPECT_LE(corner.Of(quarter).inside, 1e-14L);
    EXPECT_NEAR(static_cast<double>(corner.Of(quarter).turned), pi / 2, 1e-14);
}

TEST(Shapes, RadiiShrinkTogetherWhereTheyDoNotFit) {
    // The left side needs 30 of 20: all radii shrink to two thirds.
    CornerRadii radii;
    radii.topLeft = Pt(3, 15);
    radii.bottomLeft = Pt(6, 15);
    radii.topRight = Pt(9, 3);
    CPath const path = RoundedRectPath(TRect<double>(0, 0, 100, 20), radii, 1);
    EXPECT_EQ(path.mPts.front(), Pt(2, 0));
    EXPECT_EQ(path.mPts[1], Pt(94, 0));
    EXPECT_EQ(path.mPts[4], Pt(100, 2));
    EXPECT_EQ(path.mPts[5], Pt(100, 20)) << "a corner without a radius is a corner";
    EXPECT_EQ(path.mPts[6], Pt(4, 20));
    EXPECT_EQ(path.mPts[9], Pt(0, 10)) << "the left side has no length and is left out";
    EXPECT_EQ(path.mPts[12], Pt(2, 0));
    EXPECT_EQ(Curves(path), 3U);
}

TEST(Shapes, OneRadiusIsLimitedToHalfItsOwnSide) {
    CPath const path = RoundedRectPath(TRect<double>(0, 0, 10, 20), 50, 3, 1);
    EXPECT_EQ(path.mPts.front(), Pt(5, 0));
    EXPECT_EQ(path.mPts[3], Pt(10, 3)) << "the top side has no length and is left out";
    EXPECT_EQ(Svg(RoundedRectPath(TRect<double>(0, 0, 10, 20), 0, 3, 1)), "M0 0H10V20H0V0Z");
    EXPECT_EQ(Svg(RoundedRectPath(TRect<double>(10, 20, 0, 0), -1, 3, 1)), "M0 0H10V20H0V0Z")
        << "the rectangle is put in order";
    EXPECT_EQ(Svg(RoundedRectPath(TRect<double>(0, 0, 10, 20), 1e300, 1e300, 1)),
              Svg(RoundedRectPath(TRect<double>(0, 0, 10, 20), 5, 10, 1)));
}

TEST(Shapes, PolygonsTakeTheirVertices) {
    EXPECT_EQ(Svg(PolygonPath({Pt(0, 0), Pt(4, 0), Pt(4, 0), Pt(4, 3)})), "M0 0H4V3Z");
    EXPECT_EQ(Svg(PolygonPath({})), "");
    EXPECT_EQ(Svg(PolygonPath({Pt(1, 2)})), "M1 2Z");
    EXPECT_EQ(Svg(RegularPolygonPath(Pt(1, 1), 1, 4, 0)), "M2 1 1 2 0 1 1 0Z");
    EXPECT_EQ(Svg(RegularPolygonPath(Pt(1, 1), 1, 0, 0)), "");
    EXPECT_EQ(Svg(StarPath(Pt(), 4, 1, 2, 0)), "M4 0 0 1-4 0 0-1Z");
}

TEST(Shapes, ArgumentThatIsNotFiniteGivesAnEmptyPath) {
    TRect<double> const box(0, 0, 10, 20);
    for (double const bad : {kNaN, kInf, -kInf}) {
        EXPECT_EQ(Svg(CirclePath(Pt(bad, 0), 1, 1)), "");
        EXPECT_EQ(Svg(CirclePath(Pt(0, 0), bad, 1)), "");
        EXPECT_EQ(Svg(EllipsePath(Pt(0, 0), 1, 1, bad, 1)), "");
        EXPECT_EQ(Svg(RoundedRectPath(TRect<double>(0, bad, 10, 20), 1, 1, 1)), "");
        EXPECT_EQ(Svg(RegularPolygonPath(Pt(), bad, 5, 0)), "");
        EXPECT_EQ(Svg(StarPath(Pt(), 1, bad, 5, 0)), "");
        EXPECT_EQ(Svg(StarPath(Pt(), 1, 2, 5, bad)), "");
    }
    EXPECT_EQ(Svg(RoundedRectPath(box, kNaN, 1, 1)), "");
    EXPECT_EQ(Svg(CirclePath(Pt(1e308, 0), 1e308, 1)), "") << "its coordinates overflow";
    EXPECT_EQ(Svg(CirclePath(Pt(3, 4), 0, 1)), "M3 4Z");
    EXPECT_THROW(RegularPolygonPath(Pt(), 1, std::numeric_limits<std::size_t>::max(), 0),
                 std::length_error);
    EXPECT_THROW(StarPath(Pt(), 1, 1, std::numeric_limits<std::size_t>::max() - 1, 0),
                 std::length_error);
}

TEST(Shapes, ToleranceOfAnyKindEnds) {
    for (double const tolerance : {0.0, -1.0, kNaN, 1e-300}) {
        EXPECT_LE(Curves(CirclePath(Pt(), 1, tolerance)), 416U) << tolerance;
    }
    EXPECT_EQ(Curves(CirclePath(Pt(), 1, kInf)), 4U);
    EXPECT_EQ(Curves(CirclePath(Pt(), 1e-300, 1e-310)), Curves(CirclePath(Pt(), 1, 1e-10)));
}

} // namespace
