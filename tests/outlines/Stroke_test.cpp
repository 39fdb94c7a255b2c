// SPDX-License-Identifier: MIT

#include "Stroke.h"

#include "HardPaths.h"
#include "Moments.h"
#include "OutlineJudge.h"
#include "OutlineMeasure.h"
#include "OutlineOperations.h"
#include "PathSegments.h"
#include "PathStructure.h"
#include "PathText.h"
#include "PointAlgebra.h"
#include "Shapes.h"
#include "StrokeChecks.h"
#include "StrokeJudge.h"
#include "SvgPath.h"
#include "TestSupport.h"
#include "UTrigonometry.h"
#include "Winding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {

using trammel::FillRule;
using trammel::Offset;
using trammel::OutlineMeasure;
using trammel::SignedArea;
using trammel::Stroke;
using trammel::StrokeCap;
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
using trammel_test::HardPath;
using trammel_test::kHardKinds;
using trammel_test::NearBorder;
using trammel_test::Path;
using trammel_test::Plain;
using trammel_test::Round;
using trammel_test::Rounds;
using trammel_test::Style;

typedef TPoint<double> Pt;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

CPath Stroked(CPath const& path, StrokeStyle const& style, double tolerance = 1e-7) {
    CPath out;
    Stroke(path, style, tolerance, out);
    return out;
}
double StrokedArea(std::string const& text, StrokeStyle const& style) {
    return SignedArea(Stroked(Path(text), style));
}

// ---- what Stroke promises

TEST(Stroke, HoldsThePointsWithinHalfTheWidthSaveWithinTheDistance) {
    Dice dice(1);
    for (int i = 0; i < Rounds(1000); ++i) {
        HardPath const hard(i % kHardKinds, dice);
        double const radius = 0.5 * hard.width;
        CPath out;
        double const kept = Stroke(hard.path, Round(hard.width), 1e-6 * hard.width, out);
        ASSERT_LE(kept, 2e-6 * hard.width + 1e-8 * (hard.path.Bounds().Width() + hard.width));
        ASSERT_NO_FATAL_FAILURE(
            ExpectWithinRadius(out, OutlineMeasure(hard.path), radius, kept, 40, i, dice));
    }
}

TEST(Stroke, ReturnsTheToleranceWhereItCanBeKept) {
    CPath out;
    EXPECT_EQ(Stroke(Path("M0 0 L10 0 L10 10"), Round(2), 0.25, out), 0.25);
    EXPECT_EQ(Stroke(Path("M0 0 C10 0 10 10 0 10"), Round(2), 1e-4, out), 1e-4);
    double const least = Stroke(Path("M0 0 C10 0 10 10 0 10"), Round(2), 0.0, out);
    EXPECT_GT(least, 0.0);
    EXPECT_LT(least, 1e-7);
    EXPECT_EQ(Stroke(Path("M0 0 C10 0 10 10 0 10"), Round(2), kNaN, out), least);
    EXPECT_EQ(Stroke(Path("M0 0 C10 0 10 10 0 10"), Round(2), -1.0, out), least);
}

TEST(Stroke, HoldsWhatSweepJoinsAndCapsCoverAndNothingElse) {
    Dice dice(2);
    for (int i = 0; i < Rounds(140); ++i) {
        HardPath const hard(i % kHardKinds, dice);
        StrokeStyle const style = AnyStyle(hard.width, dice);
        ExpectSweep(hard.path, style, hard.width * (dice.Coin() ? 1e-3 : 1e-6), i, dice);
    }
}

TEST(Stroke, HoldsWhatSweepJoinsAndCapsCoverBesideCuspsAndTightTurns) {
    Dice dice(11);
    for (int i = 0; i < Rounds(320); ++i) {
        constexpr std::array<int, 4> kKinds = {{7, 3, 2, 5}};
        HardPath const hard(kKinds[static_cast<std::size_t>(i) % kKinds.size()], dice, false);
        StrokeStyle const style = AnyStyle(hard.width, dice);
        ExpectSweep(hard.path, style, hard.width * dice.Decade(-5.0, -0.2), i, dice);
    }
}

TEST(Stroke, PaintsAllAroundCurvesThatAreTinyBesideThePen) {
    // Both turn within less than the tolerance, and have butt ends beside it.
    StrokeStyle style = Style(0.0709608505, StrokeJoin::kRound, StrokeCap::kRound);
    style.startCap = StrokeCap::kButt;
    CPath const hook = Path("M.8758857254573056.8301185950520267c-9481917429e-15-70000958825e-16 "
                            "49261484127e-16 134754244555e-16-173010128014e-16-22259626918e-16");
    EXPECT_EQ(WindingNumber(Stroked(hook, style, 4.74e-6), Pt(0.897011096, 0.830376672)), 1);
    style = Style(0.40704563873, StrokeJoin::kBevel, StrokeCap::kSquare);
    CPath const twist = Path("M.7271909283.1409437454c454437062404e-16-17682086088e-15 "
                             "49353718429e-16.000118090421118.0001031884195374-86885987902e-15");
    EXPECT_EQ(WindingNumber(Stroked(twist, style, 3.06e-6), Pt(0.727, 0.141)), 1);
}

TEST(Stroke, ClosesItsContoursBitForBit) {
    Dice dice(3);
    for (int i = 0; i < 100; ++i) {
        HardPath const hard(i % kHardKinds, dice);
        CPath const out = Stroked(hard.path, Round(hard.width), 1e-3 * hard.width);
        for (trammel::Subpath const& contour : trammel::Subpaths(out)) {
            EXPECT_TRUE(contour.BeginsWithMove());
            EXPECT_TRUE(contour.Closed());
        }
    }
}

TEST(Stroke, IsTheSameByBothFillRules) {
    Dice dice(4);
    for (int i = 0; i < 100; ++i) {
        HardPath const hard(i % kHardKinds, dice);
        CPath const out = Stroked(hard.path, Round(hard.width), 1e-3 * hard.width);
        trammel_test::OutlineJudge const judge(out);
        OutlineMeasure const measure(hard.path);
        for (int k = 0; k < 20; ++k) {
            Pt const p = measure.TPt(dice.Unit()) + dice.Point() * hard.width;
            int const winding = judge.Winding(p);
            ASSERT_TRUE(winding == 0 || winding == 1) << winding;
        }
    }
}

TEST(Stroke, OfALineHasFourSides) {
    CPath const out = Stroked(Path("M1 1 L5 1"), Plain(2));
    EXPECT_EQ(out.mCtls.size(), 5U);
    EXPECT_EQ(SignedArea(out), 8.0);
}

TEST(Stroke, HasFewElements) {
    // One curve on each side for each curve of a circle.
    CPath const circle = trammel::CirclePath(Pt(0.0, 0.0), 10.0, 1e-9);
    EXPECT_LE(Stroked(circle, Round(2), 0.02).mCtls.size(), 2 * circle.mCtls.size());
    // A line with round ends: two sides, and two curves at each end.
    EXPECT_EQ(Stroked(Path("M0 0 L10 0"), Round(2), 0.01).mCtls.size(), 8U);
    // A smooth curve: two sides and two ends, and a few more for tenfold digits.
    CPath const wave = Path("M0 0 C10 0 20 10 30 10");
    EXPECT_LE(Stroked(wave, Plain(1), 0.01).mCtls.size(), 6U);
    EXPECT_LE(Stroked(wave, Plain(1), 1e-6).mCtls.size(), 20U);
}

TEST(Stroke, UnitesArcsAroundTheSamePoint) {
    // Four roads meet, in several ways of drawing them, at 1e-6 of the width.
    for (std::string const cross : {"M0 0 L10 1 M0 0 L2 10 M0 0 L-10 -2 M0 0 L1 -10",
                                    "M0 0 L10 1 L0 0 L2 10 L0 0 L-10 -2 L0 0 L1 -10",
                                    "M10 1 L0 0 L2 10 M-10 -2 L0 0 L1 -10"}) {
        CPath const out = Stroked(Path(cross), Round(2), 2e-6);
        EXPECT_LE(out.mCtls.size(), 60U) << cross;
    }
}

TEST(Stroke, MitersUpToTheLimitAndBevelsBeyond) {
    std::string const corner = "M0 0 L10 0 L10 10"; // a ratio of sqrt(2)
    StrokeStyle style = Plain(2);
    EXPECT_NEAR(StrokedArea(corner, style), 20 + 20, 1e-6);
    style.miterLimit = 1.42;
    EXPECT_NEAR(StrokedArea(corner, style), 40, 1e-6);
    style.miterLimit = 1.41;
    EXPECT_NEAR(StrokedArea(corner, style), 39.5, 1e-6);
    style.miterLimit = kNaN;
    EXPECT_NEAR(StrokedArea(corner, style), 39.5, 1e-6);
    style.join = StrokeJoin::kBevel;
    style.miterLimit = 4.0;
    EXPECT_NEAR(StrokedArea(corner, style), 39.5, 1e-6);
    style.join = StrokeJoin::kRound;
    EXPECT_NEAR(StrokedArea(corner, style), 39 + pi / 4, 1e-5);
}

TEST(Stroke, ClipsMitersAtTheLimit) {
    StrokeStyle style = Plain(2);
    style.join = StrokeJoin::kMiterClip;
    std::string const corner = "M0 0 L10 0 L10 10";
    EXPECT_NEAR(StrokedArea(corner, style), 40, 1e-6);
    // The tip lies sqrt(2) from the corner; beyond 1.2 a triangle of 0.2142² is missing.
    style.miterLimit = 1.2;
    double const off = std::sqrt(2.0) - 1.2;
    EXPECT_NEAR(StrokedArea(corner, style), 40 - off * off, 1e-6);
    // Where the line doubles back, the clipped miter is as long as the limit.
    EXPECT_NEAR(StrokedArea("M0 0 L10 0 L0 0", style), 20 + 2 * 1.2, 1e-6);
    style.join = StrokeJoin::kMiter;
    EXPECT_NEAR(StrokedArea("M0 0 L10 0 L0 0", style), 20, 1e-6);
}

TEST(Stroke, HasCapsAtTheEndsOfOpenSubpathsOnly) {
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", Style(2, StrokeJoin::kMiter, StrokeCap::kSquare)), 24,
                1e-6);
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", Style(2, StrokeJoin::kMiter, StrokeCap::kRound)), 20 + pi,
                1e-5);
    StrokeStyle style = Plain(2);
    style.startCap = StrokeCap::kSquare;
    CPath const out = Stroked(Path("M0 0 L10 0"), style);
    EXPECT_EQ(WindingNumber(out, Pt(-0.9, 0.0)), 1);
    EXPECT_EQ(WindingNumber(out, Pt(10.1, 0.0)), 0);
    // Back at its start without a close: two caps. With one: a join.
    EXPECT_NEAR(StrokedArea("M0 0 L10 0 L10 10 L0 10 L0 0", Plain(2)), 79, 1e-6);
    EXPECT_NEAR(StrokedArea("M0 0 L10 0 L10 10 L0 10 L0 0 Z", Plain(2)), 80, 1e-6);
    EXPECT_NEAR(StrokedArea("M0 0 L10 0 L10 10 L0 10 Z", Plain(2)), 80, 1e-6);
}

TEST(Stroke, PaintsCapsOfSubpathsWithoutLength) {
    for (std::string const text : {"M3 4 L3 4", "M3 4 Z", "M3 4 C3 4 3 4 3 4"}) {
        CPath path = Path(text);
        if (path.mCtls.size() < 2) { // a path records no line without length
            path.AddCtl(kPathLine).AddPt(Pt(3.0, 4.0));
        }
        StrokeStyle style = Round(2);
        EXPECT_NEAR(SignedArea(Stroked(path, style)), pi, 1e-5) << text;
        style.startCap = style.endCap = StrokeCap::kSquare;
        CPath const square = Stroked(path, style);
        EXPECT_EQ(SignedArea(square), 4.0);
        EXPECT_EQ(WindingNumber(square, Pt(3.99, 4.99)), 1);
        style.endCap = StrokeCap::kRound;
        EXPECT_NEAR(SignedArea(Stroked(path, style)), 2 + pi / 2, 1e-5) << text;
        style.startCap = style.endCap = StrokeCap::kButt;
        EXPECT_TRUE(Stroked(path, style).mCtls.empty()) << text;
    }
    EXPECT_TRUE(Stroked(Path("M3 4"), Round(2)).mCtls.empty());
}

TEST(Stroke, TurnsRoundAtACuspInsideACurve) {
    // It runs from 0 to 7.5 and back, and not up to its control points.
    CPath path;
    path.MoveTo(Pt(0.0, 0.0)).AddCtl(kPathCurve);
    path.AddPt(Pt(10.0, 0.0)).AddPt(Pt(10.0, 0.0)).AddPt(Pt(0.0, 0.0));
    EXPECT_NEAR(SignedArea(Stroked(path, Plain(2))), 15 + pi / 2, 1e-5);
}

TEST(Stroke, TurnsRoundWhereRoundingLeavesASpeedAtTheTurn) {
    // Each turns at a binary fraction of the parameter. The square of the speed is 0 there, but its
    // coefficients have thirds, which doubles round.
    struct {
        double start, control1, control2, end;
        double length; // of what they cover
    } const lines[] = {{1.0, 0.0, 0.0, 1.0, 0.75},
                       {0.0, 2.0, 1.25, 0.75, 1.3125},
                       {0.0, 1.5, 1.25, 1.25, 1.265625},
                       {0.0, -0.75, -1.25, 0.5, 1.1875}};
    for (auto const& line : lines) {
        CPath path;
        path.MoveTo(Pt(line.start, 0.0)).AddCtl(kPathCurve);
        path.AddPt(Pt(line.control1, 0.0)).AddPt(Pt(line.control2, 0.0)).AddPt(Pt(line.end, 0.0));
        EXPECT_NEAR(SignedArea(Stroked(path, Round(1))), line.length + pi / 4, 1e-5);
    }
}

TEST(Stroke, FollowsCurvesWhoseCurvatureComesCloseToThePens) {
    // Its curvature exceeds the pen's by little, three times.
    CPath const path = Path("M0 4 C1 2 0 2 1 3");
    CPath out;
    double const kept = Stroke(path, Round(3), 4e-6, out);
    OutlineMeasure const measure(path);
    Dice dice(3);
    for (int i = 0; i < 320; ++i) {
        Pt const p(dice.Between(-2.0, 3.0), dice.Between(0.5, 6.0));
        double const distance = measure.Distance(p);
        if (std::abs(distance - 1.5) > kept) {
            ASSERT_EQ(WindingNumber(out, p), distance < 1.5 ? 1 : 0) << p.h << ", " << p.v;
        }
    }
}

TEST(Stroke, HasNoHoleBesideACuspAtACoarseTolerance) {
    // Beside the cusp the curve bends to one side and then to the other, both within a tolerance.
    CPath const path = Path("M2 1c5 5 6 0-2 5");
    CPath out;
    EXPECT_EQ(Stroke(path, Round(3), 0.08, out), 0.08);
    EXPECT_EQ(WindingNumber(out, Pt(5.848328948, 4.152913187)), 1); // 0.65 from the line
    OutlineMeasure const measure(path);
    Dice dice(4);
    for (int i = 0; i < 320; ++i) {
        Pt const p(dice.Between(-2.0, 8.0), dice.Between(-1.0, 8.0));
        double const distance = measure.Distance(p);
        if (std::abs(distance - 1.5) > 0.08) {
            ASSERT_EQ(WindingNumber(out, p), distance < 1.5 ? 1 : 0) << p.h << ", " << p.v;
        }
    }
}

TEST(Stroke, HasNoHoleAtASlightCornerWhereACurveFolds) {
    // The curve begins with infinite curvature, at a corner of less than two degrees.
    CPath const path = Path("M3.4 .9 C3.4 .9 10.3 -6.3 -2.9 -4.5 L-6.5 11.6 Z");
    for (double const tolerance : {0.056, 0.0056, 0.00056}) {
        CPath out;
        // The path is closed, so that no cap tells. A pen whose caps are round, too, takes another
        // way.
        StrokeStyle const style = Style(5.6, StrokeJoin::kRound, StrokeCap::kButt);
        EXPECT_EQ(Stroke(path, style, tolerance, out), tolerance);
        EXPECT_EQ(trammel::ContourAreas(out).size(), 2U) << tolerance; // of a ring
        OutlineMeasure const measure(path);
        Dice dice(6);
        for (int i = 0; i < 320; ++i) {
            Pt const p(dice.Between(-3.0, 7.0), dice.Between(-7.0, 3.0));
            double const distance = measure.Distance(p);
            if (std::abs(distance - 2.8) > tolerance) {
                ASSERT_EQ(WindingNumber(out, p), distance < 2.8 ? 1 : 0) << p.h << ", " << p.v;
            }
        }
    }
}

TEST(Stroke, HasNoHoleWhereAFoldEndsBesideAnInflection) {
    // The end of the second curve bends to the other side within the last eighth of a tolerance.
    // The hole began in the middle of the blot that the pen makes.
    CPath const path =
        Path("M0 0 C-.27 1.263 .932 .955 .893 1.554 C.829 1.888 .549 1.808 1.035 1.945 Z");
    for (double const tolerance : {2.0, 0.6, 0.2}) {
        CPath out;
        EXPECT_EQ(Stroke(path, Round(2000), tolerance, out), tolerance);
        EXPECT_EQ(trammel::ContourAreas(out).size(), 1U) << tolerance;
        EXPECT_EQ(WindingNumber(out, Pt(0.6288, 2.4779)), 1) << tolerance;
    }
}

TEST(Stroke, PaintsTheWholeDiscAroundACusp) {
    // There the pen turns by half a turn on the spot. Rounding alone tells to which side.
    Dice dice(8);
    for (int i = 0; i < Rounds(120); ++i) {
        Pt const start = dice.Point();
        Pt const first = dice.Point();
        Pt const last = dice.Point();
        CBezier const curve(start, start + first, start + (first - last) * 0.5,
                            start + (first + last) * 0.5);
        CPath path;
        path.MoveTo(curve.P0).CurveTo(curve.P1, curve.P2, curve.P3);
        CPath out;
        double const kept = Stroke(path, Style(2, StrokeJoin::kMiter, StrokeCap::kButt), 2e-6, out);
        Pt const along = trammel::Normalize(last - first);
        for (double angle = 1e-7; angle < 2e-3; angle *= 2.0) {
            for (Pt const side : {Pt(angle, 1), Pt(-angle, 1), Pt(angle, -1), Pt(-angle, -1)}) {
                Pt const way = along * side.h + Pt(-along.v, along.h) * side.v;
                for (double const distance : {0.5, 0.9, 1.0 - 3.0 * kept}) {
                    ASSERT_EQ(WindingNumber(out, curve.MidPt() + way * distance), 1)
                        << trammel::WriteSvgPath(path) << ", angle " << angle;
                }
            }
        }
    }
}

TEST(Stroke, KeepsTheDistanceWhereTheCurvatureIsNearlyThePens) {
    // Beside its centres of curvature a point is nearly as far from many places of the curve.
    CPath const path = Path("M4 2C1 1 0 4 0 1");
    CPath out;
    double const kept = Stroke(path, Round(0.5), 4e-6, out);
    EXPECT_EQ(kept, 4e-6);
    OutlineMeasure const measure(path);
    Dice dice(5);
    for (trammel::PathSegment const& s : trammel::Segments(out)) {
        for (int i = 0; i < 40; ++i) {
            double const t = dice.Between(0.0, 1.0);
            Pt const p = s.IsCurve() ? s.Curve().TPt(t) : s.Line().TPt(t);
            ASSERT_LE(std::abs(measure.Distance(p) - 0.25), kept) << p.h << ", " << p.v;
        }
    }
}

TEST(Stroke, KeepsFineTolerancesWhereAWidePenTurnsInTightCurves) {
    // The pen's inner end follows the centres of curvature, which lie far from the curves. Points
    // are outside, and farther from the border than the distance that is kept.
    struct {
        char const* path;
        double width;
        Pt outside;
    } const cases[] = {
        {"M-.9006411091071382.2885693070568318C-1.3528834955829316.6131141454109752-1."
         "5770846452573763"
         "-.3875048826370296-.6875811068624174 1.288122687931874c.1937071525330432 "
         "1.315944093463326"
         "-.1470333139989084.724020607996715.34074046653195156.591923485466611",
         2.8918310155976683, Pt(-0.47780851270803293, -0.42989141763865596)},
        {"M.25116851969241094.7121430837701026C.2561149303952441.705365727233809.24748681016750101"
         ".713358436537813.2509834127616.7086554327958311Z",
         3.0229174686505589, Pt(0.78622153458086608, 1.7283122054869522)}};
    for (auto const& c : cases) {
        CPath const path = Path(c.path);
        StrokeStyle style = Plain(c.width);
        style.join = StrokeJoin::kBevel;
        CPath out;
        EXPECT_LT(Stroke(path, style, 9e-7, out), 1.2e-6);
        trammel_test::StrokeJudge const ideal(path, style);
        EXPECT_FALSE(ideal.Covers(c.outside) || ideal.IsAtBorder(c.outside, 1.2e-6));
        EXPECT_EQ(WindingNumber(out, c.outside), 0);
    }
}

TEST(Stroke, GoesOnWhereACurveStandsStill) {
    // The first has no speed and no acceleration at (7, 1), and goes on in its direction.
    CPath stroke;
    Stroke(Path("M3 4C11 -2 3 4 11 -2C13.75 -3.5 5.5 1 8.25 -0.5"), Round(1), 0.07, stroke);
    EXPECT_EQ(WindingNumber(stroke, Pt(6.9695, 0.9592)), 1); // 0.05 from the line
    for (char const* const text :
         {"M3 4C11 -2 3 4 11 -2", "M0 0C0 0 8 4 8 4", "M0 0C6 6 0 3 6 3"}) {
        CPath const path = Path(text);
        OutlineMeasure const measure(path);
        for (double const tolerance : {0.07, 1e-3, 1e-6}) {
            CPath out;
            ASSERT_EQ(Stroke(path, Round(1), tolerance, out), tolerance);
            Dice dice(6);
            for (int i = 0; i < 320; ++i) {
                Pt const near = measure.PtAtLength(dice.Between(0.0, measure.Length()));
                Pt const p = near + Pt(dice.Between(-0.6, 0.6), dice.Between(-0.6, 0.6));
                double const distance = measure.Distance(p);
                if (std::abs(distance - 0.5) > tolerance) {
                    ASSERT_EQ(WindingNumber(out, p), distance < 0.5 ? 1 : 0)
                        << text << ": " << p.h << ", " << p.v;
                }
            }
        }
    }
}

TEST(Stroke, LeavesOutSubpathsThatAreNotFinite) {
    CPath path = Path("M0 0 L10 0");
    path.MoveTo(Pt(0.0, 5.0)).LineTo(Pt(kNaN, 5.0));
    path.MoveTo(Pt(0.0, 9.0)).LineTo(Pt(kInfinity, 9.0));
    EXPECT_EQ(SignedArea(Stroked(path, Plain(2))), 20.0);
    for (double const width : {0.0, -1.0, kNaN, kInfinity}) {
        EXPECT_TRUE(Stroked(Path("M0 0 L10 0"), Plain(width)).mCtls.empty()) << width;
    }
}

// ---- dashes

StrokeStyle Dashed(std::vector<double> const& dashes, double offset = 0.0) {
    StrokeStyle style = Plain(2);
    style.dashes = dashes;
    style.dashOffset = offset;
    return style;
}

TEST(StrokeDashes, FollowTheListAndTheOffset) {
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", Dashed({3, 1})), 2 * (3 + 3 + 2), 1e-6);
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", Dashed({3, 1}, 2)), 2 * (1 + 3 + 3), 1e-6);
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", Dashed({3, 1}, -1)), 2 * (3 + 3 + 1), 1e-6);
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", Dashed({3, 1}, 4e6 + 2)), 2 * (1 + 3 + 3), 1e-5);
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", Dashed({3})), 2 * (3 + 3), 1e-6);
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", Dashed({3, 1}, kNaN)), 2 * (3 + 3 + 2), 1e-6);
}

TEST(StrokeDashes, RestartAtEachSubpath) {
    EXPECT_NEAR(StrokedArea("M0 0 L10 0 M0 9 L10 9", Dashed({6, 100})), 2 * 12, 1e-6);
}

TEST(StrokeDashes, AreMeasuredAlongTheCurve) {
    CPath const circle = trammel::CirclePath(Pt(0.0, 0.0), 10.0, 1e-10);
    // A dash of a tenth of the circle: a part of a ring.
    CPath const out = Stroked(circle, Dashed({2 * pi, 100}));
    EXPECT_NEAR(SignedArea(out), 2 * pi * 2, 1e-5);
    double const angle = 0.2 * pi;
    EXPECT_EQ(WindingNumber(out, Pt(10 * std::cos(angle - 1e-5), 10 * std::sin(angle - 1e-5))), 1);
    EXPECT_EQ(WindingNumber(out, Pt(10 * std::cos(angle + 1e-5), 10 * std::sin(angle + 1e-5))), 0);
}

TEST(StrokeDashes, MeetAtTheStartOfAClosedSubpathIfAsked) {
    std::string const square = "M0 0 L10 0 L10 10 L0 10 Z";
    StrokeStyle style = Dashed({5, 30, 5, 100});
    EXPECT_NEAR(StrokedArea(square, style), 2 * 10 - 1, 1e-6);
    style.joinsDashesAtStart = true;
    EXPECT_NEAR(StrokedArea(square, style), 2 * 10, 1e-6);
    style.dashes = {50};
    EXPECT_NEAR(StrokedArea(square, style), 80, 1e-6);
    style.joinsDashesAtStart = false;
    EXPECT_NEAR(StrokedArea(square, style), 79, 1e-6);
}

TEST(StrokeDashes, OfNoLengthPaintTheirCaps) {
    StrokeStyle style = Dashed({0, 4});
    style.startCap = style.endCap = StrokeCap::kSquare;
    EXPECT_NEAR(StrokedArea("M0 0 L10 0", style), 3 * 4, 1e-6);
    // They are turned along the line.
    EXPECT_EQ(WindingNumber(Stroked(Path("M0 0 L10 10"), style), Pt(1.3, 0.0)), 1);
    style.startCap = style.endCap = StrokeCap::kButt;
    EXPECT_EQ(StrokedArea("M0 0 L10 0", style), 0.0);
}

TEST(StrokeDashes, BeginNotAtTheEndWhereRoundingPutsThemJustBeforeIt) {
    StrokeStyle style = Dashed({2, 3});
    style.startCap = style.endCap = StrokeCap::kSquare;
    // The length is 10 save rounding, so the third dash would begin at the end.
    EXPECT_NEAR(StrokedArea("M0.7 0.2 L3.5 9.8", style), 16, 1e-6);
    // Nor at the start, where a dash has ended.
    style = Dashed({0.3, 0.3}, 0.6 - 0.1 * 3);
    style.startCap = style.endCap = StrokeCap::kSquare;
    style.width = 0.1;
    EXPECT_NEAR(StrokedArea("M0 0 H3", style), 0.2, 1e-6);
}

TEST(StrokeDashes, ThatBeginAtACornerTakeNothingOfTheSegmentBefore) {
    // The sides have the length 10 save rounding, and the corners' joins are in the gaps.
    EXPECT_NEAR(StrokedArea("M0.2 0.7 L9.8 3.5 L7 13.1 L-2.6 10.3 Z", Dashed({5, 5})), 40, 1e-6);
    EXPECT_NEAR(StrokedArea("M0.1 0.2 L2.9 9.8 L-6.7 12.6 L-9.5 3 Z", Dashed({5, 5})), 40, 1e-6);
}

TEST(StrokeDashes, OfNoLengthAtACornerAreTurnedAlongTheSegmentBehind) {
    StrokeStyle style = Dashed({0, 10});
    style.startCap = style.endCap = StrokeCap::kSquare;
    for (char const* const path : {"M0 0 L6 8 L16 8", "M0.1 0.3 L6.1 8.3 L16.1 8.3"}) {
        EXPECT_EQ(WindingNumber(Stroked(Path(path), style), Pt(6.9, 8.9)), 1) << path;
        EXPECT_EQ(WindingNumber(Stroked(Path(path), style), Pt(4.9, 8.3)), 0) << path;
    }
}

TEST(StrokeDashes, AreNoneInAListWithoutMeaning) {
    for (std::vector<double> const& dashes : std::vector<std::vector<double>>{
             {}, {0}, {0, 0}, {3, -1}, {kNaN, 1}, {kInfinity}, {1e-9, 1e-9}}) {
        EXPECT_EQ(StrokedArea("M0 0 L10 0", Dashed(dashes)), 20.0);
    }
}

TEST(StrokeDashes, HoldThePointsWithinHalfTheWidth) {
    Dice dice(5);
    for (int i = 0; i < 100; ++i) {
        HardPath hard(i % kHardKinds, dice);
        OutlineMeasure const whole(hard.path);
        StrokeStyle style = Round(hard.width);
        // Shorter than the pen.
        double const step = std::max(dice.Between(0.1, 1.0) * hard.width, whole.Length() / 100.0);
        style.dashes = {0.3 * step, 0.7 * step};
        CPath out;
        double const kept = Stroke(hard.path, style, 1e-4 * hard.width, out);
        CPath const dashes = DashesOf(hard.path, 0.3 * step, step, 0.0);
        ASSERT_NO_FATAL_FAILURE(ExpectWithinRadius(out, OutlineMeasure(dashes), 0.5 * hard.width,
                                                   1.001 * kept, 20, i, dice));
    }
}

TEST(StrokeDashes, HaveTheJoinsAndCapsOfTheirStretches) {
    Dice dice(9);
    for (int i = 0; i < Rounds(70); ++i) {
        HardPath const hard(i % kHardKinds, dice);
        StrokeStyle style = Style(hard.width, static_cast<StrokeJoin>(dice.Below(4)),
                                  static_cast<StrokeCap>(dice.Below(3)));
        style.endCap = static_cast<StrokeCap>(dice.Below(3));
        StrokeStyle const solid = style;
        OutlineMeasure const whole(hard.path);
        double const step = dice.Between(0.04, 0.3) * whole.Length();
        double const part = dice.Between(0.2, 0.8);
        style.dashes = {part * step, (1.0 - part) * step};
        style.dashOffset = dice.Unit() * part * step;
        CPath out;
        double const kept = Stroke(hard.path, style, 1e-6 * hard.width, out);
        CPath const dashes = DashesOf(hard.path, part * step, step, -style.dashOffset);
        trammel_test::StrokeJudge const ideal(dashes, solid);
        trammel_test::OutlineJudge const judge(out);
        OutlineMeasure const drawn(dashes);
        // The dashes' ends are as exact as lengths, and directions turn fast near cusps.
        double const slack = 1.01 * kept + 1e-6 * hard.width;
        std::vector<Pt> points;
        for (int k = 0; k < 10; ++k) {
            points.push_back(NearBorder(drawn, 0.5 * hard.width, dice));
            points.push_back(dashes.mPts[static_cast<std::size_t>(
                                 dice.Below(static_cast<int>(dashes.mPts.size())))] +
                             dice.Point() * hard.width);
        }
        for (Pt const& p : points) {
            int const winding = judge.Winding(p);
            ASSERT_TRUE(winding == (ideal.Covers(p) ? 1 : 0) || ideal.IsAtBorder(p, slack))
                << "path " << i << ": " << trammel::WriteSvgPath(hard.path) << " at " << p.h << ' '
                << p.v << ", winding number " << winding << ", width " << hard.width << ", step "
                << step;
        }
    }
}

// ---- offsets

TEST(Offset, HoldsThePointsWithinTheDistanceOfTheRegion) {
    Dice dice(6);
    for (int i = 0; i < Rounds(300); ++i) {
        HardPath const hard(i % kHardKinds, dice);
        CPath const region = trammel::WithSubpathsClosed(hard.path);
        FillRule const rule = dice.Coin() ? FillRule::kNonZero : FillRule::kEvenOdd;
        double const distance = hard.width * (dice.Coin() ? 1.0 : -0.3);
        CPath out;
        double const kept =
            Offset(region, rule, distance, StrokeJoin::kRound, 4.0, 1e-4 * hard.width, out);
        int held = 0;
        ASSERT_NO_FATAL_FAILURE(ExpectOffset(region, rule, distance, out, kept, 20, i, dice, held));
    }
}

TEST(Offset, HoldsWhatTheOuterSideOfTheBorderCoversByEveryJoin) {
    Dice dice(7);
    int judged = 0;
    for (int i = 0; i < 70; ++i) {
        HardPath const hard(i % kHardKinds, dice);
        CPath region = trammel::WithSubpathsClosed(hard.path);
        if (dice.Below(3) == 0) { // a polygon with the same ends
            region = CPath();
            for (std::size_t k = 0; k < hard.path.mPts.size(); ++k) {
                k == 0 ? region.MoveTo(hard.path.mPts[k]) : region.LineTo(hard.path.mPts[k]);
            }
            region.ClosePath();
        }
        FillRule const rule = dice.Coin() ? FillRule::kNonZero : FillRule::kEvenOdd;
        bool const grows = dice.Coin();
        double const distance = hard.width * (grows ? 1.0 : -0.3);
        StrokeStyle border = Style(2.0 * std::abs(distance), static_cast<StrokeJoin>(dice.Below(4)),
                                   StrokeCap::kButt);
        border.miterLimit = dice.Between(1.0, 6.0);
        double const tolerance = hard.width * (dice.Coin() ? 1e-3 : 1e-6);
        ASSERT_NO_FATAL_FAILURE(
            ExpectSideOfBorder(region, rule, distance, border, tolerance, i, dice, judged));
    }
    EXPECT_GT(judged, 300);
}

TEST(Offset, TurnsThePenNoFartherThanATinyBendDoes) {
    // A narrow hole ends in a bend that is shorter than a thousandth of the distance. The pen turns
    // inside of the hole. The first point is 1.2245 from there on the other side, and beyond the
    // bevel of the region's corner.
    CPath const region = Path("M-.917432-.74658C.244242.340326.244159.340243-.068031.059017"
                              "c.996813-.507745.996792-.507765.008621.411522Z");
    CPath out;
    Offset(region, FillRule::kEvenOdd, 1.227211, StrokeJoin::kMiter, 1.308134, 1.2e-3, out);
    EXPECT_EQ(WindingNumber(out, Pt(-.423692, 1.320373)), 0);
    EXPECT_EQ(WindingNumber(out, Pt(-.4, 1.2)), 1);
}

TEST(Offset, GrowsContoursThatTouchAndAreHardlyWiderThanARounding) {
    // The curve runs along the closing line. The region has two contours, 1e-9 wide, that touch.
    CPath const region = Path("M-.78939693782564.2614622562853621"
                              "C.1891308163879639.41123322598521844 -1.1249221644335692"
                              ".21010760492293953 -.33132792202041805.3315731491409187Z");
    CPath out;
    for (double const tolerance : {1e-3, 1e-4, 1e-6}) {
        Offset(region, FillRule::kEvenOdd, 0.8885, StrokeJoin::kRound, 4.0, tolerance, out);
        // From the left end of the contours they are 0.8868 and 0.8977 away.
        EXPECT_EQ(WindingNumber(out, Pt(-1.62344, 0.55252)), 1) << tolerance;
        EXPECT_EQ(WindingNumber(out, Pt(-1.632, 0.561)), 0) << tolerance;
    }
}

TEST(Offset, GoesAroundTheEndsOfSpikesThatAreAsThinAsARounding) {
    // The end of a spike that the region has along a line, up to the last digits.
    CPath const region = Path("M0 51.174095 51.174095 0 7.3105850000000006 58.484680000000004 "
                              "29.242340000000002 29.242340000000002Z");
    CPath out;
    Offset(region, FillRule::kNonZero, 0.731059, StrokeJoin::kRound, 4.0, 1e-3, out);
    EXPECT_EQ(WindingNumber(out, Pt(6.88, 59.06)), 1); // 0.717 from the end
    EXPECT_EQ(WindingNumber(out, Pt(6.86, 59.09)), 0); // 0.754 from it

    // Regions with spikes: there and back along a line, and more or less far back.
    Dice dice(12);
    int judged = 0;
    for (int i = 0; i < 400; ++i) {
        double const distance = dice.Decade(-2.0, 0.0) * (dice.Below(3) == 0 ? -1.0 : 1.0);
        CPath spiky;
        for (int k = 0; k < 3; ++k) {
            Pt const from = dice.Point();
            Pt const to = dice.Point();
            k == 0 ? spiky.MoveTo(from) : spiky.LineTo(from);
            if (dice.Coin()) {
                spiky.LineTo(to);
                spiky.LineTo(dice.Coin() ? from : from + (to - from) * dice.Between(-0.5, 0.9));
            }
        }
        spiky.ClosePath();
        CPath plain;
        double const off = RemoveOverlap(spiky, FillRule::kEvenOdd, 0.0, plain);
        double const kept =
            Offset(spiky, FillRule::kEvenOdd, distance, StrokeJoin::kRound, 4.0, 1e-4, out);
        OutlineMeasure const border(plain);
        for (Pt const& end : plain.mPts) {
            Pt const p = end + dice.Point() * (1.1 * std::abs(distance));
            double const away = border.Distance(p);
            double const height = trammel::Contains(plain, p, FillRule::kNonZero) ? -away : away;
            if (std::abs(height - distance) > kept + off && away > 10.0 * off) {
                ++judged;
                ASSERT_EQ(WindingNumber(out, p), height < distance ? 1 : 0)
                    << "region " << i << ": " << trammel::WriteSvgPath(spiky) << " at " << p.h
                    << ' ' << p.v << ", distance " << distance;
            }
        }
    }
    EXPECT_GT(judged, 1000);
}

TEST(Offset, KeepsTheDistanceBetweenCornersThatAreNoneAtTheTolerance) {
    // Both ends of a nearly straight piece turn the same way there.
    CPath out;
    double const kept =
        Offset(Path("M4 3C2 4 1 5 5 2L3 5C2 5 4 4 5 0ZM2 1C4 5 1 5 3 4 5 0 5 0 5 3L4 0"
                    "C3 1 3 1 3 2"),
               FillRule::kNonZero, -0.02, StrokeJoin::kRound, 4.0, 0.005, out);
    EXPECT_LT(kept, 0.00501);
    EXPECT_EQ(WindingNumber(out, Pt(3.5328, 3.096)), 0); // 0.0073 inside the border
}

TEST(Offset, JoinsTheCornersOfASquare) {
    CPath const square = Path("M0 0 L0 10 L10 10 L10 0 Z"); // in either direction
    for (CPath const& path : {square, trammel::Reversed(square)}) {
        auto const area = [&](double distance, StrokeJoin join, double limit = 4.0) {
            CPath out;
            Offset(path, FillRule::kNonZero, distance, join, limit, 1e-7, out);
            return SignedArea(out);
        };
        EXPECT_NEAR(area(1, StrokeJoin::kMiter), 144, 1e-6);
        EXPECT_NEAR(area(1, StrokeJoin::kMiter, 1.4), 142, 1e-6);
        EXPECT_NEAR(area(1, StrokeJoin::kBevel), 142, 1e-6);
        EXPECT_NEAR(area(1, StrokeJoin::kRound), 140 + pi, 1e-5);
        EXPECT_NEAR(area(-1, StrokeJoin::kMiter), 64, 1e-6);
        EXPECT_NEAR(area(-4.9, StrokeJoin::kRound), 0.04, 1e-6);
        EXPECT_EQ(area(-5.1, StrokeJoin::kRound), 0.0);
        EXPECT_EQ(std::abs(area(0, StrokeJoin::kRound)), 100.0);
        EXPECT_EQ(area(kNaN, StrokeJoin::kRound), 0.0);
        EXPECT_EQ(area(kInfinity, StrokeJoin::kRound), 0.0);
    }
}

TEST(Offset, LeavesNothingOfARegionThatIsThinnerThanTwiceTheDistance) {
    // The centres of curvature have a cusp beside the long side.
    CPath const region = Path("M-4.5 5.3C-3.8 6.1-3 7.2-2.2 8.4-2.4 17.7-6.3 16.9-16 19Z");
    for (double const distance : {-10.0, -20.0, -97.0}) {
        CPath out;
        Offset(region, FillRule::kNonZero, distance, StrokeJoin::kRound, 4.0, 0.01, out);
        EXPECT_TRUE(out.mCtls.empty()) << distance << ' ' << trammel::WriteSvgPath(out);
    }
}

TEST(Offset, RunsOnceAroundItsRegionAtTolerancesFarBeyondTheDistance) {
    for (char const* const text : {"M-4 7.5C-7.5 6 8-2-5 3 1.5-2 7.5-10 4.5 8.5-9.5 8.5 7 9-0 2.5Z",
                                   "M9.5 1c-12.5 6-12 9-1 0ZM-1 4S6.5-9-5-9C6.5-5.5-8-3 1-5Z"}) {
        for (double const tolerance : {0.1, 1000.0, 1e300, kInfinity}) {
            CPath out;
            double const kept = Offset(Path(text), FillRule::kNonZero, 0.025, StrokeJoin::kRound,
                                       4.0, tolerance, out);
            EXPECT_EQ(kept, tolerance);
            for (int i = 0; i < 400; ++i) {
                int const winding = WindingNumber(out, Pt(i % 20 - 9.9, i / 20 - 9.9));
                EXPECT_TRUE(winding == 0 || winding == 1) << text << ' ' << tolerance;
            }
        }
    }
}

TEST(Offset, OfARegionThatIsTinyBesideTheDistanceIsADisc) {
    CPath const region = Path("M0 0C1 3 2 -3 1 0Z");
    for (double const distance : {1e20, 1e160, 1e273}) {
        CPath out;
        Offset(region, FillRule::kNonZero, distance, StrokeJoin::kRound, 4.0, 1e-5 * distance, out);
        EXPECT_EQ(WindingNumber(out, Pt(0.0, 0.999 * distance)), 1) << distance;
        EXPECT_EQ(WindingNumber(out, Pt(0.0, 1.001 * distance)), 0) << distance;
    }
}

TEST(Offset, GrowsIntoHolesAndShrinksAroundThem) {
    std::string const ring = "M0 0 L20 0 L20 20 L0 20 Z M5 5 L15 5 L15 15 L5 15 Z";
    CPath out;
    Offset(Path(ring), FillRule::kEvenOdd, 1.0, StrokeJoin::kMiter, 4.0, 1e-7, out);
    EXPECT_NEAR(SignedArea(out), 22 * 22 - 8 * 8, 1e-6);
    Offset(Path(ring), FillRule::kEvenOdd, -1.0, StrokeJoin::kMiter, 4.0, 1e-7, out);
    EXPECT_NEAR(SignedArea(out), 18 * 18 - 12 * 12, 1e-6);
    Offset(Path(ring), FillRule::kEvenOdd, 6.0, StrokeJoin::kMiter, 4.0, 1e-7, out);
    EXPECT_NEAR(SignedArea(out), 32 * 32, 1e-6);
    // By the nonzero rule there is no hole, and the inner square's sides are no border.
    Offset(Path(ring), FillRule::kNonZero, -1.0, StrokeJoin::kMiter, 4.0, 1e-7, out);
    EXPECT_NEAR(SignedArea(out), 18 * 18, 1e-6);
}

} // namespace
