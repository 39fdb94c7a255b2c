// SPDX-License-Identifier: MIT

#include "PathBuilding.h"

#include "CBSpline.h"
#include "CMatrix3x3.h"
#include "CPath.h"
#include "ConicJudge.h"
#include "PathSegments.h"
#include "SvgPath.h"
#include "TestSupport.h"
#include "UTrigonometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>

namespace {

using trammel::AddArc;
using trammel::AddCurve;
using trammel::ArcBy;
using trammel::ArcTo;
using trammel::CurveBy;
using trammel::EllipticalArc;
using trammel::LineBy;
using trammel::MoveBy;
using trammel::QuadBy;
using trammel::QuadTo;
using trammel::SmoothCurveBy;
using trammel::SmoothCurveTo;
using trammel::SmoothQuadBy;
using trammel::SmoothQuadTo;
using trammel_test::ConicJudge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Wide;

typedef TPoint<double> Pt;

CPath From(Pt const& p) {
    CPath path;
    path.MoveTo(p);
    return path;
}

std::string Svg(CPath const& path) { return trammel::WriteSvgPath(path); }

std::size_t Curves(CPath const& path) {
    return static_cast<std::size_t>(std::count(path.mCtls.begin(), path.mCtls.end(), kPathCurve));
}

TEST(PathBuilding, QuadraticCurveIsRaisedToTheCubicOne) {
    CPath path = From(Pt(0, 0));
    EXPECT_EQ(&QuadTo(path, Pt(3, 6), Pt(6, 0)), &path);
    EXPECT_EQ(Svg(path), "M0 0C2 4 4 4 6 0");
}

TEST(PathBuilding, RaisedControlPointsAreRightToTheLastPlace) {
    std::mt19937_64 random(21);
    std::uniform_real_distribution<double> coordinate(-1.0, 1.0);
    for (int i = 0; i < 20000; ++i) {
        double const scale = std::ldexp(1.0, static_cast<int>(random() % 200) - 100);
        Pt const p(coordinate(random) * scale, coordinate(random));
        Pt const q(coordinate(random), coordinate(random) * scale);
        Pt const e(coordinate(random) * 3, coordinate(random) / 3);
        CPath path = From(p);
        QuadTo(path, q, e);
        auto const right = [](double found, double end, double control) {
            Wide const exact = (static_cast<Wide>(end) + 2 * static_cast<Wide>(control)) / 3;
            Wide const place = std::nextafter(std::abs(found), kInf) - std::abs(found);
            return std::abs(found - exact) <= 0.5101L * place;
        };
        EXPECT_TRUE(right(path.mPts[1].h, p.h, q.h) && right(path.mPts[1].v, p.v, q.v));
        EXPECT_TRUE(right(path.mPts[2].h, e.h, q.h) && right(path.mPts[2].v, e.v, q.v));
    }
}

TEST(PathBuilding, CurveThatEndsAtItsStartIsAddedInTwo) {
    CPath path = From(Pt(0, 0));
    AddCurve(path, Pt(8, 0), Pt(0, 8), Pt(0, 0));
    EXPECT_EQ(Svg(path), "M0 0C4 0 4 2 3 3S0 4 0 0");
    QuadTo(path, Pt(4, 0), Pt(0, 0));
    EXPECT_EQ(Curves(path), 4U);
    CPath straight = From(Pt(0, 0)); // the middle lies on the ends, too
    AddCurve(straight, Pt(8, 0), Pt(-8, 0), Pt(0, 0));
    EXPECT_EQ(Curves(straight), 2U);
    EXPECT_EQ(straight.mPts[3], Pt(2.25, 0));
    CPath nothing = From(Pt(1, 1));
    AddCurve(nothing, Pt(1, 1), Pt(1, 1), Pt(1, 1));
    EXPECT_EQ(Svg(nothing), "M1 1");
}

TEST(PathBuilding, SmoothCubicMirrorsTheControlPoint) {
    CPath path = From(Pt(0, 0));
    path.CurveTo(Pt(1, 3), Pt(4, 3), Pt(5, 1));
    SmoothCurveTo(path, Pt(9, 9), Pt(8, 0));
    EXPECT_EQ(Svg(path), "M0 0C1 3 4 3 5 1S9 9 8 0");
    CPath line = From(Pt(0, 0));
    line.LineTo(Pt(5, 1));
    SmoothCurveTo(line, Pt(9, 9), Pt(8, 0));
    EXPECT_EQ(line.mPts[2], Pt(5, 1)) << "after a line the control point is the current point";
}

TEST(PathBuilding, SmoothQuadraticGoesOnWithTheSameDerivative) {
    CPath path = From(Pt(0, 0));
    QuadTo(path, Pt(3, 6), Pt(6, 0));
    SmoothQuadTo(path, Pt(12, 0)); // the control point is (9, -6)
    EXPECT_EQ(Svg(path), "M0 0C2 4 4 4 6 0s4-4 6 0");
    CPath cubic = From(Pt(0, 0));
    cubic.CurveTo(Pt(1, 3), Pt(4, 3), Pt(6, 0));
    SmoothQuadTo(cubic, Pt(12, 0));
    EXPECT_EQ(cubic.mPts[4], Pt(8, -3)) << "the derivatives are 3 (6, 0) - 3 (4, 3)";
    CPath line = From(Pt(0, 0));
    line.LineTo(Pt(5, 1));
    SmoothQuadTo(line, Pt(8, 1));
    EXPECT_EQ(Svg(line), "M0 0 5 1S6 1 8 1");
}

TEST(PathBuilding, SmoothQuadraticsAgreeWithSvgPathText) {
    std::mt19937_64 random(22);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    auto const point = [&] { return Pt(coordinate(random), coordinate(random)); };
    for (int i = 0; i < 2000; ++i) {
        Pt const p = point();
        Pt const q = point();
        Pt const e = point();
        Pt const f = point();
        CPath path = From(p);
        QuadTo(path, q, e);
        SmoothQuadTo(path, f);
        char text[300];
        std::snprintf(text, sizeof text, "M%.17g %.17gQ%.17g %.17g %.17g %.17gT%.17g %.17g", p.h,
                      p.v, q.h, q.v, e.h, e.v, f.h, f.v);
        CPath const read = trammel::ReadSvgPath(text).path;
        ASSERT_EQ(path.mCtls, read.mCtls);
        for (std::size_t k = 0; k < path.mPts.size(); ++k) {
            EXPECT_LT((path.mPts[k] - read.mPts[k]).Length(), 100 * 0x1p-48);
        }
    }
}

TEST(PathBuilding, DrawingAfterACloseBeginsASubpath) {
    CPath path = From(Pt(0, 0));
    path.LineTo(Pt(4, 0)).LineTo(Pt(4, 3)).ClosePath();
    QuadTo(path, Pt(6, 3), Pt(6, 0));
    EXPECT_EQ(path.mCtls[4], kPathMove);
    EXPECT_EQ(path.mPts[3], Pt(4, 3));
    EXPECT_TRUE(path.mOpen);
    path.ClosePath();
    LineBy(path, Pt(1, 1));
    EXPECT_EQ(path.mPts[path.mPts.size() - 2], Pt(6, 0));
    EXPECT_EQ(path.mPts.back(), Pt(7, 1));
    CPath first;
    LineBy(first, Pt(1, 2));
    EXPECT_EQ(Svg(first), "M0 0 1 2");
}

TEST(PathBuilding, RelativeFormsAddToTheCurrentPoint) {
    CPath path = From(Pt(10, 20));
    LineBy(path, Pt(1, 2));
    CurveBy(path, Pt(1, 0), Pt(2, 1), Pt(3, 3));
    SmoothCurveBy(path, Pt(1, 1), Pt(2, 0));
    QuadBy(path, Pt(3, 6), Pt(6, 0));
    SmoothQuadBy(path, Pt(6, 0));
    MoveBy(path, Pt(1, 1));
    LineBy(path, Pt(0, 1));
    CPath expected = From(Pt(10, 20));
    expected.LineTo(Pt(11, 22)).CurveTo(Pt(12, 22), Pt(13, 23), Pt(14, 25));
    SmoothCurveTo(expected, Pt(15, 26), Pt(16, 25));
    QuadTo(expected, Pt(19, 31), Pt(22, 25));
    SmoothQuadTo(expected, Pt(28, 25));
    expected.MoveTo(Pt(29, 26)).LineTo(Pt(29, 27));
    EXPECT_EQ(Svg(path), Svg(expected));
    CPath arc = From(Pt(10, 20));
    ArcBy(arc, 5, 5, 0, false, true, Pt(5, 5), 1e-3);
    CPath absolute = From(Pt(10, 20));
    ArcTo(absolute, 5, 5, 0, false, true, Pt(15, 25), 1e-3);
    EXPECT_EQ(Svg(arc), Svg(absolute));
}

TEST(PathBuilding, DrawingGoesOnAfterATransform) {
    CPath path = From(Pt(1, 1));
    path.LineTo(Pt(2, 1));
    path.Transform(CMatrix3x3().Scale(10, 10));
    LineBy(path, Pt(0, 5));
    EXPECT_EQ(Svg(path), "M10 10H20v5");
    EXPECT_EQ(path.Bounds(), TRect<double>(10, 10, 20, 15));
}

TEST(PathBuilding, ArgumentsMayBePointsOfThePath) {
    CPath path = From(Pt(1, 1));
    path.LineTo(Pt(2, 3));
    for (int i = 0; i < 40; ++i) { // the points move in memory
        QuadTo(path, path.mPts[1], path.mPts[i % 2 == 0 ? 0 : 1]);
        EXPECT_EQ(path.mPts.back(), i % 2 == 0 ? Pt(1, 1) : Pt(2, 3));
    }
}

TEST(PathBuilding, ArcStaysWithinItsToleranceOfTheEllipse) {
    std::mt19937_64 random(23);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    for (int i = 0; i < 1000; ++i) {
        double const size = std::pow(10.0, 6 * unit(random));
        EllipticalArc const arc{Pt(unit(random) * size, unit(random) * size),
                                size * (1.1 + unit(random)),
                                size * (1.1 + unit(random)),
                                unit(random) * 7,
                                unit(random) * 7,
                                unit(random) * 2 * pi};
        double const greater = std::max(arc.hRadius, arc.vRadius);
        double const tolerance = greater * std::pow(10.0, -7 + 6 * unit(random));
        CPath path;
        AddArc(path, arc, tolerance);
        ConicJudge const judge{arc.center.h, arc.center.v, arc.hRadius, arc.vRadius, arc.rotation};
        ConicJudge::Deviation const found = judge.Of(path, arc.sweep > 0);
        // A thin ellipse magnifies rounding where its points are judged on the circle.
        Wide const rounding = size * 0x1p-48L * greater / std::min(arc.hRadius, arc.vRadius);
        EXPECT_LE(found.outside, tolerance + rounding);
        EXPECT_LE(found.inside, rounding);
        EXPECT_TRUE(found.forward);
        EXPECT_NEAR(static_cast<double>(found.turned), arc.sweep,
                    1e-13 * greater / std::min(arc.hRadius, arc.vRadius) * 10);
    }
}

/// What one curve of a circle's arc deviates, from the derivation in long double.
Wide Deviation(Wide angle) {
    Wide const t = std::tan(angle / 4);
    return std::sqrt(1 + 4 * std::pow(t, 6.0L) / (27 * (1 + t * t) * (1 + t * t))) - 1;
}

TEST(PathBuilding, ArcTakesAsFewCurvesAsItsToleranceAllows) {
    std::mt19937_64 random(24);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    for (int i = 0; i < 5000; ++i) {
        double const sweep = 2 * pi * unit(random);
        double const tolerance = std::pow(10.0, -15 * unit(random));
        CPath path;
        AddArc(path, EllipticalArc{Pt(), 1, 1, 0, 0, sweep}, tolerance);
        std::size_t const count = Curves(path);
        EXPECT_LE(Deviation(sweep / static_cast<double>(count)), tolerance);
        if (count > static_cast<std::size_t>(std::ceil(sweep / (pi / 2)))) {
            EXPECT_GT(Deviation(sweep / static_cast<double>(count - 1)), tolerance * 0.999);
        }
    }
}

TEST(PathBuilding, ArcTakesFourToFourHundredCurvesForATurn) {
    struct Row {
        double tolerance;
        std::size_t count;
    };
    for (Row const& row : {Row{10, 4}, Row{2.73e-4, 4}, Row{2.72e-4, 5}, Row{4.3e-6, 8},
                           Row{1e-15, 0}, Row{0, 0}, Row{-1, 0}, Row{kNaN, 0}}) {
        CPath path;
        AddArc(path, EllipticalArc{Pt(), 1, 1, 0, 0, 2 * pi}, row.tolerance);
        if (row.count > 0) {
            EXPECT_EQ(Curves(path), row.count) << row.tolerance;
        } else {
            EXPECT_GT(Curves(path), 300U) << row.tolerance;
            EXPECT_LE(Curves(path), 414U) << row.tolerance;
        }
    }
}

TEST(PathBuilding, FullTurnEndsWhereItStartsAndMoreIsOneTurn) {
    CPath path;
    AddArc(path, EllipticalArc{Pt(3, 4), 5, 2, 0.3, 0.7, -50}, 1e-6);
    EXPECT_EQ(path.mPts.front(), path.mPts.back());
    CPath one;
    AddArc(one, EllipticalArc{Pt(3, 4), 5, 2, 0.3, 0.7, -2 * pi}, 1e-6);
    EXPECT_EQ(Svg(path), Svg(one));
    CPath infinite;
    AddArc(infinite, EllipticalArc{Pt(3, 4), 5, 2, 0.3, 0.7, -kInf}, 1e-6);
    EXPECT_EQ(Svg(infinite), Svg(one));
}

TEST(PathBuilding, ArcBeginsWithALineFromTheCurrentPoint) {
    CPath path = From(Pt(0, 0));
    AddArc(path, EllipticalArc{Pt(10, 0), 2, 2, 0, pi, pi / 2}, 1);
    EXPECT_EQ(path.mCtls[1], kPathLine);
    EXPECT_EQ(path.mPts[1], Pt(8, 0));
    CPath none = From(Pt(0, 0));
    AddArc(none, EllipticalArc{Pt(10, 0), 2, 2, 0, pi, 0}, 1);
    EXPECT_EQ(Svg(none), "M0 0H8") << "without a sweep";
    CPath there = From(Pt(8, 0));
    AddArc(there, EllipticalArc{Pt(10, 0), 2, 2, 0, pi, 0}, 1);
    EXPECT_EQ(Svg(there), "M8 0");
}

TEST(PathBuilding, ArcThatIsNotFiniteAddsNothing) {
    for (double const bad : {kNaN, kInf, -kInf}) {
        for (int field = 0; field < (std::isnan(bad) ? 7 : 6); ++field) {
            EllipticalArc arc{Pt(1, 2), 3, 4, 5, 6, 1};
            (field == 0   ? arc.center.h
             : field == 1 ? arc.center.v
             : field == 2 ? arc.hRadius
             : field == 3 ? arc.vRadius
             : field == 4 ? arc.rotation
             : field == 5 ? arc.startAngle
                          : arc.sweep) = bad;
            CPath path = From(Pt(7, 7));
            AddArc(path, arc, 1e-3);
            EXPECT_EQ(Svg(path), "M7 7") << field;
        }
    }
}

TEST(PathBuilding, SvgArcFollowsItsEllipse) {
    std::mt19937_64 random(25);
    std::uniform_real_distribution<double> coordinate(-100.0, 100.0);
    for (int i = 0; i < 1000; ++i) {
        double const radius = 1.0 + 150.0 * (1.0 + coordinate(random) / 100.0);
        double const tolerance = std::pow(10.0, coordinate(random) / 20.0 - 5.0);
        bool const large = random() % 2 == 0;
        bool const positive = random() % 2 == 0;
        Pt const from(coordinate(random), coordinate(random));
        Pt const to(coordinate(random), coordinate(random));
        CPath path = From(from);
        ArcTo(path, radius, radius, 0.5, large, positive, to, tolerance);
        EXPECT_EQ(path.mPts.back(), to);
        // The centre of a circle, by its definition.
        Wide const h = (static_cast<Wide>(to.h) - from.h) / 2;
        Wide const v = (static_cast<Wide>(to.v) - from.v) / 2;
        Wide const half = std::sqrt(h * h + v * v);
        Wide const r = std::max(static_cast<Wide>(radius), half);
        Wide const up = std::sqrt(std::max(r * r - half * half, 0.0L)) / half;
        Wide const side = large == positive ? -up : up;
        ConicJudge const judge{(from.h + static_cast<Wide>(to.h)) / 2 - side * v * -1,
                               (from.v + static_cast<Wide>(to.v)) / 2 - side * h, r, r, 0};
        ConicJudge const other{(from.h + static_cast<Wide>(to.h)) / 2 + side * v * -1,
                               (from.v + static_cast<Wide>(to.v)) / 2 + side * h, r, r, 0};
        ConicJudge::Deviation const one = judge.Of(path, positive);
        ConicJudge::Deviation const two = other.Of(path, positive);
        ConicJudge::Deviation const found =
            one.outside + one.inside < two.outside + two.inside ? one : two;
        EXPECT_LE(found.outside, tolerance + 1e-10L);
        EXPECT_LE(found.inside, 1e-10L);
        EXPECT_TRUE(found.forward) << "turns the way asked for";
        EXPECT_EQ(std::abs(found.turned) > static_cast<Wide>(pi) - 1e-5L,
                  large || static_cast<Wide>(radius) <= half);
    }
}

TEST(PathBuilding, SvgArcAgreesWithTheReaderOfPathText) {
    CPath path = From(Pt(10, 20));
    ArcTo(path, 30, 20, DegToRad(15.0), true, false, Pt(40, 30), 4.3e-6 * 30);
    CPath const read = trammel::ReadSvgPath("M10 20A30 20 15 1 0 40 30").path;
    for (double const t : {0.1, 0.25, 0.5, 0.75, 0.9}) {
        EXPECT_LT((path.TPt(t) - read.TPt(t)).Length(), 1e-3);
    }
    CPath grown = From(Pt(0, 0));
    ArcTo(grown, -1, 1, 0, false, true, Pt(10, 0), 1);
    EXPECT_NEAR(grown.TPt(0.5).v, -5.0, 0.01) << "too small a radius grows";
}

TEST(PathBuilding, SvgArcWithoutEllipseIsALine) {
    for (double const radius : {0.0, kNaN, kInf}) {
        CPath path = From(Pt(1, 1));
        ArcTo(path, radius, 5, 0, false, true, Pt(4, 1), 1e-3);
        EXPECT_EQ(Svg(path), "M1 1H4") << radius;
    }
    CPath same = From(Pt(1, 1));
    ArcTo(same, 5, 5, 0, true, true, Pt(1, 1), 1e-3);
    EXPECT_EQ(Svg(same), "M1 1");
}

} // namespace
