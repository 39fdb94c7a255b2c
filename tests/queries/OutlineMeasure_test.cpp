// SPDX-License-Identifier: MIT

#include "OutlineMeasure.h"

#include "AccurateCurve.h"
#include "CurveTruth.h"
#include "Finite.h"
#include "OutlineTruth.h"
#include "PathText.h"
#include "PathWalk_p.h"
#include "ShortMemory.h"
#include "SvgPath.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using namespace trammel_test;
using trammel::OutlineMeasure;

typedef TPoint<double> Pt;
typedef OutlineMeasure::Place Place;

constexpr std::size_t kNone = OutlineMeasure::kNone;

CPath PathOf(CBezier const& c) {
    CPath path;
    path.MoveTo(c.P0);
    path.CurveTo(c.P1, c.P2, c.P3);
    return path;
}

/// Curves with cusps and retracted handles, curves that double back, and an S with its middle on
/// its chord.
std::vector<CBezier> NastyCurves() {
    return {Cusp() * 20.0,
            CBezier({0, 0}, {0, 0}, {50, 90}, {100, 0}),
            CBezier({0, 0}, {50, 90}, {100, 0}, {100, 0}),
            CBezier({0, 0}, {0, 0}, {100, 0}, {100, 0}),
            CBezier({0, 0}, {300, 0}, {-200, 0}, {100, 0}),
            CBezier({0, 0}, {100, 100}, {0, 100}, {100, 0}),
            CBezier({0, 0}, {200, 300}, {400, -300}, {600, 0}),
            CBezier({0, 0}, {100.001, 100}, {0, 100}, {100, 0}),
            CBezier({0, 0}, {1e-7, 0}, {100, 0}, {100, 1e-7}),
            CBezier({0, 0}, {90, 0}, {90, 0}, {0, 1e-9})};
}

TEST(OutlineMeasure, LengthIsTheIntegralOfTheSpeed) {
    Random random(1);
    for (int i = 0; i < 300; ++i) {
        CPath const path = AnyPath(random, random.Integer(1, 20));
        Truth const truth(path);
        Wide bound = std::ldexp(truth.total, -52);
        for (Truth::Segment const& s : truth.segments) {
            bound += std::ldexp(s.polygon, -46);
        }
        EXPECT_LE(Off(OutlineMeasure(path).Length(), truth.total), bound) << i;
    }
}

TEST(OutlineMeasure, PlaceIsAtItsLength) {
    Random random(2);
    for (int i = 0; i < 150; ++i) {
        CPath const path = AnyPath(random, random.Integer(1, 12));
        Truth const truth(path);
        OutlineMeasure const measure(path);
        if (measure.Length() == 0.0) {
            continue;
        }
        for (int k = 0; k < 12; ++k) {
            double const length = random.Uniform(0, 1) * measure.Length();
            Place const place = measure.AtLength(length);
            EXPECT_EQ(place.length, length);
            ExpectAtLength(truth, place, length);
        }
    }
    for (CBezier const& c : NastyCurves()) {
        OutlineMeasure const measure(PathOf(c));
        Truth const truth(PathOf(c));
        for (int k = 1; k < 200; ++k) {
            ExpectAtLength(truth, measure.At(k / 200.0), k / 200.0 * measure.Length());
        }
    }
}

TEST(OutlineMeasure, OneHundredThousandFractionsOfACurveGiveAsManyPlacesInOrder) {
    for (CBezier const& c : NastyCurves()) {
        OutlineMeasure const measure(PathOf(c));
        double last = -1.0;
        for (int k = 0; k <= 100000; ++k) {
            double const parameter = measure.At(k / 100000.0).parameter;
            ASSERT_LT(last, parameter) << Text(c) << k;
            last = parameter;
        }
        EXPECT_EQ(last, 1.0);
    }
}

TEST(OutlineMeasure, PlacesNeverGoBackFromOneDoubleToTheNext) {
    Random random(3);
    std::vector<CBezier> curves = NastyCurves();
    for (int i = 0; i < 40; ++i) {
        curves.push_back(AnyCurve(random));
    }
    for (CBezier const& c : curves) {
        CPath path = PathOf(c);
        path.LineTo(c.P3 + Pt(10, 0));
        OutlineMeasure const measure(path);
        for (int k = 0; k < 40; ++k) {
            double length = random.Uniform(0, 1) * measure.Length();
            if (k == 0) {
                length = 0.0;
            } else if (k == 1) {
                length = measure.Length() - 10.0; // about where the line begins
                for (int back = 0; back < 30; ++back) {
                    length = std::nextafter(length, 0.0);
                }
            }
            // Steps of one unit in the last place, and steps of about a quantum.
            for (double const step : {0x1p-53, 0x1p-45, 0x1p-41}) {
                double at = length;
                Place last = measure.AtLength(at);
                for (int i = 0; i < 60; ++i) {
                    at = std::max(std::nextafter(at, kInf), at + step * measure.Length());
                    Place const place = measure.AtLength(at);
                    ASSERT_LE(last.element, place.element) << Text(c) << " at " << Text(at);
                    ASSERT_TRUE(last.element < place.element || last.parameter <= place.parameter)
                        << Text(c) << " at " << Text(at);
                    last = place;
                }
            }
        }
    }
}

TEST(OutlineMeasure, EndsHold) {
    OutlineMeasure const measure(Path("M10 20 L30 20 C40 20 50 30 50 40"));
    for (double const before : {0.0, -0.0, -1e-300, -7.0, -kInf}) {
        EXPECT_EQ(measure.AtLength(before).point, Pt(10, 20));
        EXPECT_EQ(measure.AtLength(before).parameter, 0.0);
        EXPECT_EQ(measure.AtLength(before).element, 1U);
        EXPECT_EQ(measure.TPt(before), Pt(10, 20));
    }
    double const total = measure.Length();
    for (double const behind : {total, std::nextafter(total, kInf), 2 * total, kInf}) {
        EXPECT_EQ(measure.AtLength(behind).point, Pt(50, 40));
        EXPECT_EQ(measure.AtLength(behind).length, total);
        EXPECT_EQ(measure.AtLength(behind).parameter, 1.0);
        EXPECT_EQ(measure.AtLength(behind).element, 2U);
    }
    for (double const behind : {1.0, std::nextafter(1.0, 2.0), 3.0, kInf}) {
        EXPECT_EQ(measure.TPt(behind), Pt(50, 40));
    }
}

TEST(OutlineMeasure, OneStepPastTheEndOfAClosedOutlineIsTheEnd) {
    OutlineMeasure const measure(Path("M0 0 H10 V10 Z M50 50 H60 V60 Z"));
    Place const end = measure.At(std::nextafter(1.0, 2.0));
    EXPECT_EQ(end.element, 7U);
    EXPECT_EQ(end.parameter, 1.0);
    EXPECT_EQ(end.subpath, 1U);
    EXPECT_EQ(end.point, Pt(50, 50));
}

TEST(OutlineMeasure, GapBetweenSubpathsHasNoLength) {
    OutlineMeasure const measure(Path("M0 0 H10 M100 0 H110 M200 0 M300 0 V10 Z"));
    EXPECT_EQ(measure.Length(), 40.0);
    Place const before = measure.AtLength(10);
    EXPECT_EQ(before.point, Pt(10, 0));
    EXPECT_EQ(before.element, 1U);
    EXPECT_EQ(before.subpath, 0U);
    Place const behind = measure.AtLength(std::nextafter(10.0, 11.0));
    EXPECT_NEAR(behind.point.h, 100, 1e-12);
    EXPECT_EQ(behind.element, 3U);
    EXPECT_EQ(behind.subpath, 1U);
    EXPECT_EQ(measure.AtLength(25).point, Pt(300, 5));
    EXPECT_EQ(measure.AtLength(35).point, Pt(300, 5));
    EXPECT_EQ(measure.AtLength(35).tangent, Pt(0, -1));
}

TEST(OutlineMeasure, SubpathsWithoutSegmentsCount) {
    CPath path;
    path.mCtls = {kPathMove, kPathMove, kPathLine, kPathClose, kPathLine};
    path.mPts = {Pt(1, 1), Pt(0, 0), Pt(10, 0), Pt(10, 5)};
    OutlineMeasure const measure(path);
    EXPECT_EQ(measure.Length(), 25.0);
    EXPECT_EQ(measure.AtLength(5).subpath, 1U);
    EXPECT_EQ(measure.AtLength(15).subpath, 1U);
    EXPECT_EQ(measure.AtLength(22).subpath, 2U);
    EXPECT_EQ(measure.AtLength(22).point, Pt(10, 2));
}

TEST(OutlineMeasure, SegmentsWithoutLengthArePassedOver) {
    CPath path;
    path.mCtls = {kPathMove, kPathLine, kPathLine, kPathLine, kPathCurve, kPathLine};
    path.mPts = {Pt(1, 1), Pt(1, 1), Pt(4, 5), Pt(4, 5), Pt(4, 5), Pt(4, 5), Pt(4, 5), Pt(4, 15)};
    OutlineMeasure const measure(path);
    EXPECT_EQ(measure.Length(), 15.0);
    EXPECT_EQ(measure.At(0).element, 2U);
    EXPECT_EQ(measure.At(0).tangent, Pt(0.6, 0.8));
    EXPECT_EQ(measure.AtLength(5).element, 2U);
    EXPECT_EQ(measure.AtLength(6).element, 5U);
}

TEST(OutlineMeasure, OutlineWithoutLengthIsItsStart) {
    for (double const t : {-1.0, 0.0, 0.5, 1.0, 2.0}) {
        EXPECT_EQ(OutlineMeasure(CPath()).At(t).point, Pt(0, 0));
        EXPECT_EQ(OutlineMeasure(CPath()).At(t).element, kNone);
        EXPECT_EQ(OutlineMeasure(Path("M3 4")).At(t).point, Pt(3, 4));
        EXPECT_EQ(OutlineMeasure(Path("M3 4")).At(t).element, kNone);
        EXPECT_EQ(OutlineMeasure(Path("M3 4")).At(t).subpath, kNone);
        CPath dot;
        dot.mCtls = {kPathMove, kPathLine};
        dot.mPts = {Pt(3, 4), Pt(3, 4)};
        EXPECT_EQ(OutlineMeasure(dot).At(t).point, Pt(3, 4));
        EXPECT_EQ(OutlineMeasure(dot).At(t).element, 1U);
        EXPECT_EQ(OutlineMeasure(dot).At(t).tangent, Pt(0, 0));
        EXPECT_EQ(OutlineMeasure(dot).At(t).parameter, 0.0);
    }
}

TEST(OutlineMeasure, NanIsOnNoElement) {
    OutlineMeasure const measure(Path("M0 0 H10"));
    for (Place const& place : {measure.At(kNaN), measure.AtLength(kNaN)}) {
        EXPECT_TRUE(std::isnan(place.point.h) && std::isnan(place.point.v));
        EXPECT_EQ(place.element, kNone);
        EXPECT_EQ(place.subpath, kNone);
    }
    EXPECT_TRUE(std::isnan(measure.TPt(kNaN).h));
}

TEST(OutlineMeasure, SubpathThatIsNotFiniteIsAbsent) {
    for (double const bad : {kNaN, kInf, -kInf}) {
        CPath path = Path("M0 0 H10");
        path.MoveTo(Pt(20, 0));
        path.LineTo(Pt(30, 0));
        path.CurveTo(Pt(30, bad), Pt(31, 1), Pt(32, 0));
        path.LineTo(Pt(40, 0));
        path.MoveTo(Pt(50, 0));
        path.LineTo(Pt(60, 0));
        OutlineMeasure const measure(path);
        EXPECT_EQ(measure.Length(), 20.0);
        EXPECT_EQ(measure.AtLength(15).point, Pt(55, 0));
        EXPECT_EQ(measure.AtLength(15).element, 7U);
        EXPECT_EQ(measure.AtLength(15).subpath, 2U);
    }
}

TEST(OutlineMeasure, AnyDoublesAreMeasuredWithoutHarm) {
    Random random(4);
    for (CBezier const& c : SpecialCurves()) {
        OutlineMeasure const measure(PathOf(c));
        if (!IsFinite(c)) {
            EXPECT_EQ(measure.Length(), 0.0);
            EXPECT_EQ(measure.At(0.5).element, kNone);
            continue;
        }
        EXPECT_GE(measure.Length(), 0.0);
        double last = 0.0;
        for (double const t : {0.0, 1e-300, 0.2, 0.5, 0.9, 1.0}) {
            Place const place = measure.At(t);
            EXPECT_TRUE(place.parameter >= last && place.parameter <= 1.0) << Text(c) << t;
            last = place.parameter;
        }
    }
}

TEST(OutlineMeasure, ScaledOutlineHasTheSamePlaces) {
    Random random(5);
    for (int i = 0; i < 60; ++i) {
        CBezier const c = AnyCurve(random);
        OutlineMeasure const measure(PathOf(c));
        for (int const exponent :
             {-500, -109, -108, -107, -106, -105, -60, 60, 92, 93, 94, 95, 96, 500}) {
            OutlineMeasure const scaled(PathOf(c * std::ldexp(1.0, exponent)));
            ASSERT_EQ(scaled.Length(), std::ldexp(measure.Length(), exponent));
            for (double const t : {0.1, 0.3, 0.77}) {
                Place const a = measure.At(t);
                Place const b = scaled.At(t);
                EXPECT_EQ(a.parameter, b.parameter) << Text(c) << exponent;
                EXPECT_NEAR(a.tangent.h, b.tangent.h, 1e-14);
                EXPECT_NEAR(a.tangent.v, b.tangent.v, 1e-14);
                double const back = std::ldexp(b.curvature, exponent);
                EXPECT_LE(std::abs(back - a.curvature), 1e-13 * std::abs(a.curvature));
            }
        }
    }
}

TEST(OutlineMeasure, TinyCurveBesideItsDistanceFromTheOriginIsMeasured) {
    Pt const far(0x1p-95, 0x1p-94);
    CBezier const c = CBezier({0, 0}, {1, 3}, {6, -4}, {10, 0}) * 0x1p-120 + far;
    EXPECT_EQ(OutlineMeasure(PathOf(c)).Length(),
              0x1p-120 * OutlineMeasure(PathOf((c - far) * 0x1p120)).Length());
    EXPECT_EQ(OutlineMeasure(PathOf(c)).At(0.3).parameter,
              OutlineMeasure(PathOf((c - far) * 0x1p120)).At(0.3).parameter);
}

TEST(OutlineMeasure, PlacesAreRightFarFromTheOrigin) {
    Pt const far(1e9, -3e9);
    CBezier const c = CBezier({0, 0}, {10, 30}, {60, -40}, {100, 0}) + far;
    OutlineMeasure const measure(PathOf(c));
    Truth const truth(PathOf(c));
    for (int k = 1; k < 100; ++k) {
        double const length = k / 100.0 * measure.Length();
        Wide const part = TrueLength(c, 0, Widened(measure.AtLength(length).parameter));
        EXPECT_LE(Off(length, part), std::ldexp(truth.segments[0].polygon, -42));
    }
}

TEST(OutlineMeasure, FractionsOfAMillionSegmentsStayRight) {
    CPath path;
    path.MoveTo(Pt(0, 0));
    for (int i = 1; i <= 1000000; ++i) {
        path.LineTo(Pt(i % 2 == 0 ? 0.0 : 0.1, 0.0));
    }
    OutlineMeasure const measure(path);
    EXPECT_EQ(measure.Length(), 100000.0);
    for (int const i : {1, 1000, 499999, 999999}) {
        Place const place = measure.At((i + 0.25) / 1e6);
        EXPECT_EQ(place.element, static_cast<std::size_t>(i + 1));
        EXPECT_NEAR(place.parameter, 0.25, 1e-9);
    }
}

TEST(OutlineMeasure, CurvatureIsTheBend) {
    // (t, t²) has the curvature 2/(1 + 4t²)^(3/2), and turns from +h toward +v.
    OutlineMeasure const parabola(PathOf(Parabola(1)));
    for (int k = 0; k <= 50; ++k) {
        Place const place = parabola.At(k / 50.0);
        double const t = place.parameter;
        EXPECT_NEAR(place.curvature, 2.0 / std::pow(1.0 + 4.0 * t * t, 1.5), 1e-13);
        EXPECT_NEAR(place.tangent.h, 1.0 / std::hypot(1.0, 2.0 * t), 1e-15);
        EXPECT_NEAR(place.tangent.v, 2.0 * t / std::hypot(1.0, 2.0 * t), 1e-15);
    }
    CBezier const p = Parabola(1);
    EXPECT_LT(OutlineMeasure(PathOf(CBezier(p.P3, p.P2, p.P1, p.P0))).At(0.5).curvature, 0.0);
    EXPECT_EQ(OutlineMeasure(Path("M0 0 L3 4")).At(0.5).curvature, 0.0);
    EXPECT_EQ(OutlineMeasure(Path("M0 0 L3 4")).At(0.5).tangent, Pt(0.6, 0.8));
}

TEST(OutlineMeasure, CurvatureIsInfiniteWhereTheCurveStands) {
    Place const cusp = OutlineMeasure(PathOf(Cusp())).At(0.5);
    EXPECT_NEAR(cusp.parameter, 0.5, 1e-6);
    EXPECT_NEAR(std::abs(cusp.tangent.h), 1.0, 1e-6);
    EXPECT_GT(std::abs(cusp.curvature), 1e6);
    EXPECT_EQ(OutlineMeasure(Path("M0 0 C0 0 10 0 10 10")).At(0).curvature, kInf);
    EXPECT_EQ(OutlineMeasure(Path("M0 0 C0 0 10 0 10 10")).At(0).tangent, Pt(1, 0));
    EXPECT_EQ(OutlineMeasure(Path("M0 0 C0 10 10 10 10 10")).At(1).curvature, -kInf);
    EXPECT_EQ(OutlineMeasure(Path("M0 0 C0 10 10 10 10 10")).At(1).tangent, Pt(1, 0));
    EXPECT_EQ(OutlineMeasure(Path("M0 0 C0 0 10 0 10 0")).At(0).curvature, 0.0);
    EXPECT_EQ(OutlineMeasure(Path("M0 0 C0 0 10 0 10 0")).At(1).tangent, Pt(1, 0));
}

TEST(OutlineMeasure, NearestPlaceIsNoFartherThanTheLeastDistance) {
    Random random(11);
    for (int i = 0; i < 25; ++i) {
        CPath const path = AnyPath(random, random.Integer(1, 12));
        OutlineMeasure const measure(path);
        Truth const truth(path);
        if (truth.segments.empty()) {
            continue;
        }
        for (int k = 0; k < 4; ++k) {
            Pt const p = k == 0 ? measure.TPt(random.Uniform(0, 1)) : random.Point(200);
            Wide const least = OutlineDistance(truth, p);
            for (double const accuracy : {0.0, 1e-3, 1.0}) {
                OutlineMeasure::Nearest const nearest = measure.FindNearest(p, accuracy);
                EXPECT_LE(Widened(nearest.distance) - least, Widened(accuracy + 600 * 0x1p-44))
                    << i;
                EXPECT_GE(Widened(nearest.distance) - least, -600 * 0x1p-44) << i;
                EXPECT_EQ(nearest.distance, measure.Distance(p, accuracy));
                EXPECT_LE(Off(nearest.distance, Length(Widened(nearest.point) - Widened(p))),
                          600 * 0x1p-44);
                ExpectAtLength(truth,
                               {nearest.point, Pt(), 0.0, nearest.length, nearest.element,
                                nearest.parameter, nearest.subpath},
                               nearest.length);
                EXPECT_EQ(nearest.t, nearest.length / measure.Length());
            }
        }
    }
}

/// A ring whose vertices lie at random distances from its centre: a comb of spikes.
CPath Spikes(std::size_t count, bool curves) {
    Random random(12);
    double turn = 0.0;
    auto const next = [&](double step) {
        turn += step;
        double const radius = random.Uniform(200, 450);
        return Pt(radius * std::cos(turn), radius * std::sin(turn));
    };
    double const step = 6.28 / static_cast<double>(count);
    CPath path;
    path.MoveTo(next(0));
    for (std::size_t i = 1; i < count; ++i) {
        if (curves) {
            Pt const c1 = next(0.3 * step);
            Pt const c2 = next(0.4 * step);
            path.CurveTo(c1, c2, next(0.3 * step));
        } else {
            path.LineTo(next(step));
        }
    }
    path.ClosePath();
    return path;
}

TEST(OutlineMeasure, NearestPlaceOfARaggedRingIsThatOfTheNearestSegment) {
    Random random(13);
    for (bool const curves : {false, true}) {
        CPath const path = Spikes(3000, curves);
        OutlineMeasure const measure(path);
        for (int i = 0; i < 40; ++i) {
            Pt const p = random.Point(600);
            double least = kInf;
            for (trammel_detail::SegmentCursor cursor(path); cursor.Next();) {
                TLine<double> const line = cursor.Line();
                CBezier const c = cursor.IsCurve()
                                      ? cursor.Curve()
                                      : CBezier(line.mStart, line.mStart, line.mEnd, line.mEnd);
                least = std::min(least, trammel::NearestPoint(c, p, 0).distance);
            }
            EXPECT_NEAR(measure.Distance(p), least, 1100 * 0x1p-44) << Text(p);
        }
    }
}

TEST(OutlineMeasure, NearestPlaceOfAnOutlineFarFromTheOrigin) {
    Pt const far(-4e8, 7e8);
    CPath path;
    path.MoveTo(far);
    path.LineTo(far + Pt(10, 0));
    path.CurveTo(far + Pt(20, 0), far + Pt(20, 10), far + Pt(10, 10));
    OutlineMeasure const measure(path);
    EXPECT_EQ(measure.FindNearest(far + Pt(5, -3)).distance, 3.0);
    EXPECT_EQ(measure.FindNearest(far + Pt(5, -3)).point, far + Pt(5, 0));
    EXPECT_EQ(measure.FindNearest(far + Pt(5, -3)).length, 5.0);
    EXPECT_NEAR(measure.FindNearest(far + Pt(30, 5)).distance, 12.5, 1e-12);
    EXPECT_NEAR(measure.FindNearest(far + Pt(30, 5)).parameter, 0.5, 1e-9);
}

TEST(OutlineMeasure, PlaceOnALineWhoseCoordinatesAddUpToInfinityIsOnIt) {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(1e308, 1e308));
    OutlineMeasure const measure(path);
    EXPECT_EQ(measure.At(0.5).point, Pt(5e307, 5e307));
    EXPECT_EQ(measure.At(1.0).point, Pt(1e308, 1e308));
}

TEST(OutlineMeasure, LengthsBeyondTheRangeOfDoubleAreInfinite) {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(3, 0)).LineTo(Pt(1.7e308, 1.7e308)).LineTo(Pt(0, 5));
    OutlineMeasure const measure(path);
    EXPECT_EQ(measure.Length(), kInf);
    EXPECT_EQ(measure.AtLength(2).point, Pt(2, 0));
    EXPECT_EQ(measure.AtLength(100).point, Pt(3, 0)); // the start of the line that is too long
    EXPECT_EQ(measure.At(1).point, Pt(0, 5));
    EXPECT_EQ(measure.At(1).element, 3U);
    CPath same;
    measure.GetLengthRange(0, kInf, same);
    EXPECT_EQ(same.mCtls, path.mCtls);
    EXPECT_TRUE(same.mPts == path.mPts);
}

TEST(OutlineMeasure, PieceOfAnOutlineWithoutLengthIsNothingWhateverTheRangeIs) {
    CPath path;
    path.MoveTo(Pt(3, 4)).AddCtl(kPathLine).AddPt(Pt(3, 4));
    for (double const from : {-1.0, -kInf, 0.0}) {
        CPath piece;
        OutlineMeasure(path).GetLengthRange(from, 1, piece);
        EXPECT_TRUE(piece.mCtls.empty()) << from;
    }
}

TEST(OutlineMeasure, NearestPlaceScalesWithTheOutline) {
    Random random(14);
    CPath const path = AnyPath(random, 10);
    OutlineMeasure const measure(path);
    for (int const exponent : {-498, 60, 498}) {
        CPath big(path);
        for (Pt& p : big.mPts) {
            p *= std::ldexp(1.0, exponent);
        }
        OutlineMeasure const scaled(big);
        for (int i = 0; i < 50; ++i) {
            Pt const p = random.Point(150);
            double const distance = scaled.Distance(p * std::ldexp(1.0, exponent));
            EXPECT_NEAR(std::ldexp(distance, -exponent), measure.Distance(p), 300 * 0x1p-44);
        }
    }
}

TEST(OutlineMeasure, NothingIsNearestWithoutSegmentsOrForPointsThatAreNotFinite) {
    OutlineMeasure const measure(Path("M0 0 H10"));
    for (OutlineMeasure::Nearest const& nearest :
         {OutlineMeasure(CPath()).FindNearest(Pt(1, 1)), measure.FindNearest(Pt(kNaN, 0)),
          measure.FindNearest(Pt(0, kInf))}) {
        EXPECT_EQ(nearest.distance, kInf);
        EXPECT_EQ(nearest.element, kNone);
        EXPECT_EQ(nearest.subpath, kNone);
        EXPECT_EQ(nearest.point, Pt(0, 0));
        EXPECT_EQ(nearest.length, 0.0);
        EXPECT_EQ(nearest.t, 0.0);
    }
    EXPECT_EQ(measure.Distance(Pt(kNaN, 0)), kInf);
}

TEST(OutlineMeasure, NearestPlaceOfADotIsTheDot) {
    CPath dot;
    dot.mCtls = {kPathMove, kPathLine};
    dot.mPts = {Pt(3, 4), Pt(3, 4)};
    OutlineMeasure::Nearest const nearest = OutlineMeasure(dot).FindNearest(Pt(0, 0));
    EXPECT_EQ(nearest.distance, 5.0);
    EXPECT_EQ(nearest.point, Pt(3, 4));
    EXPECT_EQ(nearest.element, 1U);
    EXPECT_EQ(nearest.t, 0.0);
}

TEST(OutlineMeasure, NearestPlacesOfManyPointsAreThoseOfEach) {
    Random random(15);
    OutlineMeasure const measure(AnyPath(random, 30));
    std::vector<Pt> points = {Pt(kNaN, 0)};
    for (int i = 0; i < 100; ++i) {
        points.push_back(random.Point(150));
    }
    std::vector<OutlineMeasure::Nearest> nearest(points.size());
    measure.FindNearest(points.data(), points.size(), nearest.data(), 0.01);
    for (std::size_t i = 0; i < points.size(); ++i) {
        OutlineMeasure::Nearest const single = measure.FindNearest(points[i], 0.01);
        EXPECT_EQ(nearest[i].distance, single.distance);
        EXPECT_EQ(nearest[i].length, single.length);
        EXPECT_EQ(nearest[i].element, single.element);
    }
}

std::string Cut(std::string const& text, double length0, double length1) {
    CPath piece;
    OutlineMeasure(Path(text)).GetLengthRange(length0, length1, piece);
    return trammel::WriteSvgPath(piece);
}

TEST(OutlineMeasure, PieceSpanningAGapBeginsANewSubpath) {
    std::string const two = "M0 0 H10 M100 0 H110 V10";
    EXPECT_EQ(Cut(two, 5, 15), trammel::WriteSvgPath(Path("M5 0 H10 M100 0 H105")));
    EXPECT_EQ(Cut(two, 10, 15), trammel::WriteSvgPath(Path("M100 0 H105")));
    EXPECT_EQ(Cut(two, 5, 10), trammel::WriteSvgPath(Path("M5 0 H10")));
    EXPECT_EQ(Cut(two, 0, 30), trammel::WriteSvgPath(Path(two)));
    EXPECT_EQ(Cut(two, -kInf, kInf), trammel::WriteSvgPath(Path(two)));
}

TEST(OutlineMeasure, WholeClosedSubpathStaysClosed) {
    std::string const squares = "M0 0 H10 V10 H0 Z M20 0 H30 V10 H20 V0 Z";
    EXPECT_EQ(Cut(squares, 0, 80), trammel::WriteSvgPath(Path(squares)));
    EXPECT_EQ(Cut(squares, 0, 40), trammel::WriteSvgPath(Path("M0 0 H10 V10 H0 Z")));
    EXPECT_EQ(Cut(squares, 40, 80), trammel::WriteSvgPath(Path("M20 0 H30 V10 H20 V0 Z")));
    EXPECT_EQ(Cut(squares, 5, 40), trammel::WriteSvgPath(Path("M5 0 H10 V10 H0 V0")));
    EXPECT_EQ(Cut(squares, 0, 35), trammel::WriteSvgPath(Path("M0 0 H10 V10 H0 V5")));
    EXPECT_EQ(Cut(squares, 35, 80), trammel::WriteSvgPath(Path("M0 5 V0 M20 0 H30 V10 H20 V0 Z")));
}

TEST(OutlineMeasure, EmptyAndReversedRangesAppendNothing) {
    for (auto const& range : {std::pair<double, double>(5, 5),
                              {7, 3},
                              {kNaN, 5},
                              {5, kNaN},
                              {-2, 0},
                              {10, 12},
                              {kNaN, kNaN}}) {
        EXPECT_EQ(Cut("M0 0 H10", range.first, range.second), "");
    }
    EXPECT_EQ(Cut("", 0, 1), "");
    CPath out = Path("M1 2 L3 4");
    OutlineMeasure(Path("M0 0 H10")).GetTRange(0.5, 0.25, out);
    EXPECT_EQ(out.mCtls.size(), 2U);
}

TEST(OutlineMeasure, SubpathsWithoutLengthAreLeftOutOfPieces) {
    CPath path;
    path.mCtls = {kPathMove,  kPathLine, kPathMove, kPathLine, kPathMove, kPathLine,
                  kPathClose, kPathMove, kPathLine, kPathLine, kPathMove, kPathLine};
    path.mPts = {Pt(1, 1),  Pt(1, 1),  Pt(0, 0),  Pt(10, 0), Pt(5, 5), Pt(5, 5),
                 Pt(20, 0), Pt(20, 0), Pt(30, 0), Pt(7, 7),  Pt(7, 7)};
    CPath piece;
    OutlineMeasure(path).GetTRange(0, 1, piece);
    std::vector<char> const codes = {kPathMove, kPathLine, kPathMove, kPathLine, kPathLine};
    EXPECT_EQ(piece.mCtls, codes);
    EXPECT_EQ(piece.mPts[2], Pt(20, 0));
    EXPECT_EQ(piece.mPts[3], Pt(20, 0));
}

TEST(OutlineMeasure, LoopOfOneCurveIsKeptInPieces) {
    CPath path;
    path.mCtls = {kPathMove, kPathCurve, kPathLine};
    path.mPts = {Pt(0, 0), Pt(10, 10), Pt(-10, 10), Pt(0, 0), Pt(5, 0)};
    OutlineMeasure const measure(path);
    CPath piece;
    measure.GetTRange(0, 1, piece);
    EXPECT_EQ(piece.mCtls, path.mCtls);
    EXPECT_EQ(OutlineMeasure(piece).Length(), measure.Length());
}

TEST(OutlineMeasure, PieceHasItsLengthAndItsEnds) {
    Random random(16);
    for (int i = 0; i < 200; ++i) {
        OutlineMeasure const measure(AnyPath(random, random.Integer(1, 15)));
        double const total = measure.Length();
        double a = random.Uniform(0, 1) * total;
        double b = random.Uniform(0, 1) * total;
        if (b < a) {
            std::swap(a, b);
        }
        if (!(b - a > 1e-6)) {
            continue;
        }
        CPath piece = Path("M-5 -5 H-4");
        measure.GetLengthRange(a, b, piece);
        EXPECT_NEAR(OutlineMeasure(piece).Length(), 1 + b - a, total * 0x1p-40) << i;
        EXPECT_EQ(piece.mPts[2], measure.PtAtLength(a));
        EXPECT_EQ(piece.mPts.back(), measure.PtAtLength(b));
    }
}

TEST(OutlineMeasure, PiecesAddUpToTheWhole) {
    Random random(17);
    for (int i = 0; i < 50; ++i) {
        OutlineMeasure const measure(AnyPath(random, 10));
        double sum = 0.0;
        for (int k = 0; k < 20; ++k) {
            CPath piece;
            measure.GetTRange(k / 20.0, (k + 1) / 20.0, piece);
            sum += OutlineMeasure(piece).Length();
        }
        EXPECT_NEAR(sum, measure.Length(), measure.Length() * 0x1p-38);
    }
}

TEST(OutlineMeasure, BatchesGiveTheSamePlaces) {
    Random random(6);
    CPath const path = AnyPath(random, 200);
    OutlineMeasure const measure(path);
    std::vector<double> fractions = {0.0, 1.0, -1.0, 2.0, kNaN, 0.5};
    for (int i = 0; i < 300; ++i) {
        fractions.push_back(random.Uniform(0, 1));
    }
    for (int i = 0; i <= 300; ++i) {
        fractions.push_back(i / 300.0);
    }
    std::vector<double> lengths;
    for (double const t : fractions) {
        lengths.push_back(t * measure.Length());
    }
    std::size_t const count = fractions.size();
    std::vector<Pt> points(count);
    std::vector<Pt> pointsAtLengths(count);
    std::vector<Place> places(count);
    std::vector<Place> placesAtLengths(count);
    measure.TPts(fractions.data(), count, points.data());
    measure.PtsAtLengths(lengths.data(), count, pointsAtLengths.data());
    measure.Places(fractions.data(), count, places.data());
    measure.PlacesAtLengths(lengths.data(), count, placesAtLengths.data());
    for (std::size_t i = 0; i < count; ++i) {
        Place const single = measure.At(fractions[i]);
        EXPECT_TRUE(SameBits(points[i], measure.TPt(fractions[i])));
        EXPECT_TRUE(SameBits(points[i], single.point));
        EXPECT_TRUE(SameBits(places[i].point, single.point));
        EXPECT_TRUE(SameBits(places[i].parameter, single.parameter));
        EXPECT_EQ(places[i].element, single.element);
        EXPECT_TRUE(SameBits(pointsAtLengths[i], measure.PtAtLength(lengths[i])));
        EXPECT_TRUE(SameBits(placesAtLengths[i].point, pointsAtLengths[i]));
    }
}

TEST(OutlineMeasure, TakesAtMost300BytesForACurveAndNoneToAsk) {
    Random random(18);
    CPath path;
    path.MoveTo(Pt(0, 0));
    for (int i = 1; i <= 2000; ++i) {
        path.CurveTo(Pt(i - 0.7, 0.3), Pt(i - 0.3, -0.2), Pt(i, 0)); // as drawings have them
    }
    std::size_t const before = AllocatedBytes();
    OutlineMeasure const measure(path);
    EXPECT_LE(AllocatedBytes() - before, std::size_t{2000} * 300);
    std::size_t const after = AllocationCount();
    double sum = 0.0;
    for (int i = 0; i < 500; ++i) {
        sum += measure.At(i / 500.0).curvature + measure.FindNearest(random.Point(100)).length;
    }
    EXPECT_EQ(AllocationCount(), after);
    EXPECT_NE(sum, 0.0);
}

TEST(OutlineMeasure, ShortMemoryLeavesThePieceAsItWas) {
    CPath const path = Path("M0 0 H10 C20 0 30 10 30 20 M40 40 H50 V50 Z");
    OutlineMeasure const measure(path);
    for (int allocations = 0;; ++allocations) {
        CPath out = Path("M1 1 H2");
        out.mCtls.shrink_to_fit();
        out.mPts.shrink_to_fit();
        try {
            ShortMemory const memory(allocations);
            OutlineMeasure const other(path);
            other.GetTRange(0.1, 0.9, out);
            EXPECT_GT(allocations, 3);
            EXPECT_GT(out.mCtls.size(), 2U);
            break;
        } catch (std::bad_alloc const&) {
            EXPECT_EQ(trammel::WriteSvgPath(out), trammel::WriteSvgPath(Path("M1 1 H2")));
            ASSERT_LT(allocations, 100);
        }
    }
}

TEST(OutlineMeasure, ThreadsGetTheSamePlaces) {
    Random random(19);
    OutlineMeasure const measure(AnyPath(random, 100));
    auto const sum = [&measure] {
        double all = 0.0;
        for (int i = 0; i < 2000; ++i) {
            Place const place = measure.At(i / 2000.0);
            all += place.parameter + measure.FindNearest(place.point * 1.1).length;
        }
        return all;
    };
    double const alone = sum();
    std::array<double, 4> sums = {};
    std::vector<std::thread> threads;
    for (double& result : sums) {
        threads.emplace_back([&result, &sum] { result = sum(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (double const result : sums) {
        EXPECT_EQ(result, alone);
    }
}

TEST(OutlineMeasure, IsIndependentOfThePath) {
    CPath path = Path("M0 0 H10");
    OutlineMeasure measure(path);
    OutlineMeasure const copy(measure);
    path.LineTo(Pt(50, 50));
    measure = OutlineMeasure(path);
    EXPECT_EQ(copy.Length(), 10.0);
    EXPECT_EQ(copy.TPt(1), Pt(10, 0));
    EXPECT_GT(measure.Length(), 70.0);
}

TEST(OutlineMeasure, BothFormsGiveTheSameBits) {
    Random random(7);
    CPath const path = AnyPath(random, 100);
    ExpectTheSameInBothForms([&] {
        OutlineMeasure const measure(path);
        std::vector<double> numbers = {measure.Length()};
        for (int i = 0; i <= 500; ++i) {
            Place const place = measure.At(i / 500.0);
            numbers.push_back(place.parameter);
            numbers.push_back(place.curvature);
        }
        return numbers;
    });
}

} // namespace
