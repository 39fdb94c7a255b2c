// SPDX-License-Identifier: MIT

#include "Finite.h"
#include "SvgPath.h"

#include "PathText.h"
#include "SvgTexts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <random>
#include <string>

namespace {

using trammel::ReadSvgPath;
using trammel::SvgPathResult;
using trammel_test::CurvePoint;
using trammel_test::Elements;
using trammel_test::IsFinite;
using trammel_test::Path;

typedef TPoint<double> Pt;
typedef long double Wide;

constexpr double kPi = 3.14159265358979323846;
constexpr double kArcError = 4.3e-6; // as stated by ReadSvgPath

/// The ellipse of an arc by the published conversion, which computes angles, in Wide.
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
        // Of radii that grew the centre is the middle of the chord.
        Wide const factor =
            (large != sweep ? 1 : -1) * std::sqrt(lambda > 1 ? 0.0L : std::max(square, 0.0L));
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

    /// Stores the point in the coordinates in which the ellipse is the unit circle.
    void ToCircle(Pt p, Wide& x, Wide& y) const {
        Wide const dx = Wide(p.h) - cx;
        Wide const dy = Wide(p.v) - cy;
        x = (std::cos(phi) * dx + std::sin(phi) * dy) / rx;
        y = (-std::sin(phi) * dx + std::cos(phi) * dy) / ry;
    }
};

struct ArcDeviation {
    Wide outside = 0; ///< greatest distance outside the unit circle
    Wide inside = 0;  ///< greatest distance inside it
};

/// Compares an arc that was read with its true ellipse: it has to lie on the ellipse and run from
/// end to end in one direction.
ArcDeviation CheckArc(Pt from, double rx, double ry, double degrees, bool large, bool sweep, Pt to,
                      Wide tolerance) {
    char text[300];
    std::snprintf(text, sizeof text, "M%.17g,%.17gA%.17g %.17g %.17g %d%d%.17g %.17g", from.h,
                  from.v, rx, ry, degrees, large ? 1 : 0, sweep ? 1 : 0, to.h, to.v);
    SCOPED_TRACE(text);
    Ellipse const ellipse(from, to, rx, ry, degrees, large, sweep);
    CPath const path = Path(text);
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
        CPath const path = Path(text);
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
    // The arc is a half circle over the chord, whatever the radius below half the chord.
    for (char const* const radii : {"1 1", "0.001 0.001", "5 5", "-5 5", "1e-300 1e-300"}) {
        CPath const path = Path("M0 0A" + std::string(radii) + " 0 0 1 10 0");
        ASSERT_EQ(path.mPts.size(), 13U) << radii;
        EXPECT_NEAR(path.mPts[6].h, 5.0, 1e-14) << radii;
        EXPECT_NEAR(path.mPts[6].v, -5.0, 1e-14) << radii;
    }
    // In proportion: twice as high as wide.
    CPath const path = Path("M0 0A1 2 0 0 1 10 0");
    EXPECT_NEAR(path.mPts[6].v, -10.0, 1e-13);
}

TEST(SvgArc, QuarterTurnsOfTheAxesAreExact) {
    for (char const* const degrees : {"0", "180", "-180", "360", "720", "1e300"}) {
        if (std::string(degrees) == "1e300") {
            EXPECT_EQ(ReadSvgPath("M0 0A3 2 1e300 0 1 3 2").error.has_value(), false);
            continue;
        }
        EXPECT_EQ(Elements(Path("M0 0A3 2 " + std::string(degrees) + " 0 1 3 2")),
                  Elements(Path("M0 0A3 2 0 0 1 3 2")))
            << degrees;
    }
    for (char const* const degrees : {"90", "-90", "270", "-270", "450"}) {
        EXPECT_EQ(Elements(Path("M0 0A3 2 " + std::string(degrees) + " 0 1 3 2")),
                  Elements(Path("M0 0A2 3 0 0 1 3 2")))
            << degrees;
    }
}

TEST(SvgArc, EndsExactlyAndKeepsSmallArcsOfGiantCircles) {
    // The sagitta of an arc over the chord c = 1 is c²/8r: at r = 1e9 far below the rounding of r.
    CPath const path = Path("M0 0A1e9 1e9 0 0 1 1 0");
    ASSERT_EQ(path.mPts.size(), 4U);
    Pt const middle = CurvePoint(path.mPts.data(), 0.5);
    EXPECT_NEAR(middle.v / -1.25e-10, 1.0, 1e-9);
    EXPECT_NEAR(middle.h, 0.5, 1e-15);
    CPath const straight = Path("M0 0A1e200 1e200 30 0 1 1 0");
    EXPECT_EQ(straight.mPts.back(), Pt(1, 0));
    EXPECT_LT(std::abs(straight.mPts[1].v), 1e-15);
    EXPECT_NEAR(straight.mPts[1].h, 1.0 / 3.0, 1e-15);
    // A circle that all but closes, as icons draw it.
    CPath const circle = Path("M10 0A10 10 0 1 1 10-.0001");
    EXPECT_EQ(circle.mCtls.size(), 9U);
    EXPECT_EQ(circle.mPts.back(), Pt(10, -0.0001));
    EXPECT_NEAR(circle.Length(), 2 * kPi * 10, 2e-3);
}

TEST(SvgArc, FlagsNeedNoSeparators) {
    std::string const expected = Elements(Path("M0 0 a 1 1 0 0 0 0.5 0.5"));
    for (char const* const text :
         {"M0 0a1 1 0 00.5.5", "M0 0a1,1,0,0,0,.5,.5", "M0 0a1 1 0 0 0.5.5", "M0 0a1 1 0 00 .5.5",
          "M0 0a1 1 0,00,.5.5", "M0 0a1 1 0 0 ,0.5.5", "M0 0a1 1 0 00+.5+.5",
          "M0 0a-1-1-0 00.5.5"}) {
        EXPECT_EQ(Elements(Path(text)), expected) << text;
    }
    EXPECT_EQ(Elements(Path("M0 0a1 1 0 01-.5.5 1 1 0 10.5.5")),
              Elements(Path("M0 0 a 1 1 0 0 1 -0.5 0.5 a 1 1 0 1 0 0.5 0.5")));
}

TEST(SvgArc, ShapeBeyondTheRangeOfDoubleIsAnError) {
    for (char const* const text :
         {"M0 0A1e308 1e-308 0 0 1 1 1", "M0 0A1e-308 1e308 45 1 1 1e300 1",
          "M0 0A1.7e308 1.7e308 0 1 1 1 1", "M0 0a1 1 0 0 0 1e308 0 1 1 0 0 0 1e308 0"}) {
        SvgPathResult const result = ReadSvgPath(text);
        for (Pt const& p : result.path.mPts) {
            EXPECT_TRUE(IsFinite(p)) << text;
        }
        if (result.error) {
            EXPECT_EQ(result.error->expected, "coordinates in the range of double") << text;
        }
    }
    EXPECT_TRUE(ReadSvgPath("M0 0a1 1 0 0 0 1e308 0 1 1 0 0 0 1e308 0").error);
}

TEST(SvgArc, ComesWithinAnyTolerance) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    std::uniform_real_distribution<double> radius(20.0, 300.0);
    std::uniform_real_distribution<double> exponent(-11.0, 1.0);
    double worst = 0.0;
    for (int i = 0; i < 300; ++i) {
        Pt const from(coordinate(random), coordinate(random));
        Pt const to(coordinate(random), coordinate(random));
        double const rx = radius(random);
        double const ry = radius(random);
        double const degrees = coordinate(random);
        bool const large = random() % 2 == 0;
        double const tolerance = std::pow(10.0, exponent(random));
        char text[300];
        std::snprintf(text, sizeof text, "M%.17g,%.17gA%.17g %.17g %.17g %d1%.17g %.17g", from.h,
                      from.v, rx, ry, degrees, large ? 1 : 0, to.h, to.v);
        SvgPathResult const result = ReadSvgPath(text, tolerance);
        ASSERT_EQ(result.arcs, 1U);
        Ellipse const ellipse(from, to, rx, ry, degrees, large, true);
        CPath const& path = result.path;
        std::size_t const curves = path.mCtls.size() - 1;
        for (std::size_t k = 0; k < curves; ++k) {
            for (int n = 0; n < 20; ++n) {
                Wide x = 0;
                Wide y = 0;
                ellipse.ToCircle(CurvePoint(&path.mPts[3 * k], n / 19.0), x, y);
                double const away =
                    static_cast<double>((std::hypot(x, y) - 1) * std::max(ellipse.rx, ellipse.ry));
                EXPECT_LE(std::abs(away), tolerance + 1e-11) << text;
                worst = std::max(worst, away / tolerance);
            }
        }
        // One curve fewer would not do, unless it is a quarter turn already.
        if (curves > 1 && std::abs(ellipse.delta) / static_cast<Wide>(curves - 1) < kPi / 2) {
            double const quarter = static_cast<double>(std::abs(ellipse.delta)) /
                                   static_cast<double>(curves - 1) / 4.0;
            double const t = std::tan(quarter);
            double const away = 2.0 / 27.0 * std::pow(t, 6) / std::pow(1 + t * t, 2);
            EXPECT_GT(away * static_cast<double>(std::max(ellipse.rx, ellipse.ry)),
                      tolerance * 0.999)
                << text;
        }
    }
    EXPECT_GT(worst, 0.9) << "the stated bound is not far too wide";
}

TEST(SvgArc, CircleTakesTheStatedNumbersOfCurves) {
    auto const curves = [](double tolerance) {
        return ReadSvgPath("M1 0A1 1 0 0 1 -1 0A1 1 0 0 1 1 0", tolerance).path.mCtls.size() - 1;
    };
    EXPECT_EQ(curves(1e9), 4U);
    EXPECT_EQ(curves(2.8e-4), 4U);
    EXPECT_EQ(curves(4.3e-6), 8U);
    EXPECT_EQ(curves(2.4e-9), 28U);
    EXPECT_EQ(curves(0.0), 414U);
    EXPECT_EQ(curves(-1.0), 414U);
    EXPECT_EQ(curves(std::nan("")), 414U);
}

TEST(SvgArc, ArcsThatBecomeCurvesAreCounted) {
    EXPECT_EQ(ReadSvgPath("M0 0a1 1 0 0 1 2 0 1 1 0 0 1 2 0L9 9C1 2 3 4 5 6").arcs, 2U);
    EXPECT_EQ(ReadSvgPath("M0 0a0 1 0 0 1 2 0a1 1 0 0 1 0 0", 1e-3).arcs, 0U);
}

TEST(SvgArc, TwoHalfTurnsMakeACircleWhateverTheRoundingOfTheirEnds) {
    // The ends are off by some 1e-16, which would move the centre by its root.
    for (char const* const begin : {"M.1 .1", "M.3-.7", "M1000.1 .2", "M-7.3 12345.6"}) {
        std::string const text = std::string(begin) + "a5 5 0 1 0 10 0 5 5 0 1 0-10 0";
        CPath const path = ReadSvgPath(text, 1e-2).path;
        ASSERT_EQ(path.mPts.size(), 13U) << text;
        Pt const start = path.mPts.front();
        EXPECT_NEAR(path.mPts[3].h - start.h, 5.0, 1e-11) << text;
        EXPECT_NEAR(path.mPts[3].v - start.v, 5.0, 1e-11) << text;
        EXPECT_NEAR(path.mPts[9].v - start.v, -5.0, 1e-11) << text;
    }
}

} // namespace
