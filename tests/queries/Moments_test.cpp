// SPDX-License-Identifier: MIT

#include "Moments.h"

#include "CBezier.h"
#include "CMatrix3x3.h"
#include "PathText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel::AreaMoments;
using trammel::ContourAreas;
using trammel::MomentsOf;
using trammel::SignedArea;
using trammel_test::Path;

typedef TPoint<double> Pt;

constexpr double kPi = 3.14159265358979323846;

TEST(SignedArea, IsPositiveFromPlusHTowardPlusV) {
    EXPECT_EQ(SignedArea(Path("M0 0 H4 V3 H0 Z")), 12);
    EXPECT_EQ(SignedArea(Path("M0 0 V3 H4 V0 Z")), -12);
    EXPECT_EQ(SignedArea(Path("M1 1 L4 1 L1 5")), 6);
}

TEST(SignedArea, CountsOverlapsAsOftenAsTheOutlineWindsAroundThem) {
    EXPECT_EQ(SignedArea(Path("M0 0 H4 V4 H0 Z M1 1 H3 V3 H1 Z")), 20);
    EXPECT_EQ(SignedArea(Path("M0 0 H4 V4 H0 Z M1 1 V3 H3 V1 Z")), 12);
    EXPECT_EQ(SignedArea(Path("M0 0 L4 4 V0 L0 4 Z")), 0);
}

TEST(SignedArea, OfACurveIsThatOfItsPolynomial) {
    // v = 3 t (1 - t), h = t between 0 and 1: the integral of 3 t (1 - t) is 1/2.
    CPath parabola;
    parabola.MoveTo(Pt(0, 0)).CurveTo(Pt(1.0 / 3, 1), Pt(2.0 / 3, 1), Pt(1, 0));
    EXPECT_NEAR(SignedArea(parabola), -0.5, 1e-16);
    EXPECT_EQ(SignedArea(Path("M0 0 C0 20 20 20 20 0")), -240);
}

TEST(SignedArea, IsZeroForNothing) {
    EXPECT_EQ(SignedArea(CPath()), 0);
    EXPECT_EQ(SignedArea(Path("M3 4")), 0);
    EXPECT_EQ(SignedArea(TPolygon<double>()), 0);
    EXPECT_EQ(SignedArea(CFPolygonRef()), 0);
    EXPECT_TRUE(ContourAreas(CPath()).empty());
}

TEST(SignedArea, OfPolygonsClosesThem) {
    TPolygon<double> polygon = {Pt(0, 0), Pt(8, 0), Pt(0, 8)};
    CFPolygonRef handle = polygon;
    EXPECT_EQ(SignedArea(polygon), 32);
    EXPECT_EQ(SignedArea(handle), 32);
    EXPECT_EQ(MomentsOf(polygon).area, 32);
    EXPECT_EQ(MomentsOf(handle).area, 32);
    handle.Dispose();
}

TEST(SignedArea, DoesNotLoseDigitsFarFromTheOrigin) {
    // Coordinates that are exact there.
    double const far = 0x1p40;
    CPath square;
    square.MoveTo(Pt(far, -far)).LineTo(Pt(far + 0.5, -far)).LineTo(Pt(far + 0.5, 0.25 - far));
    EXPECT_EQ(SignedArea(square), 0.0625);
    EXPECT_EQ(MomentsOf(square).area, 0.0625);
}

TEST(SignedArea, IsNotFiniteWhereACoordinateIsNot) {
    CPath path = Path("M0 0 H4 V4 H0 Z");
    path.mPts[2].h = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan(SignedArea(path)));
    path.mPts[2].h = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(std::isfinite(SignedArea(path)));
    EXPECT_TRUE(std::isnan(MomentsOf(path).centroid.h));
}

TEST(ContourAreas, TellTheOrientationOfEachContour) {
    std::vector<double> const areas =
        ContourAreas(Path("M0 0 H4 V4 H0 Z M1 1 V3 H3 V1 Z M7 7 M9 9 H8 V8"));
    EXPECT_EQ(areas, (std::vector<double>{16, -4, 0.5}));
}

TEST(ContourAreas, BeginAContourWhereDrawingGoesOnAfterAClose) {
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(Pt(4, 0)).LineTo(Pt(4, 4)).ClosePath();
    path.AddCtl(kPathLine).AddPt(Pt(9, 4));
    path.AddCtl(kPathLine).AddPt(Pt(9, 9));
    EXPECT_EQ(ContourAreas(path), (std::vector<double>{8, 12.5}));
    EXPECT_EQ(SignedArea(path), 20.5);
}

TEST(ContourAreas, BeginAtTheOriginWithoutAMove) {
    CPath path;
    path.AddCtl(kPathLine).AddPt(Pt(4, 0));
    path.AddCtl(kPathLine).AddPt(Pt(4, 4));
    EXPECT_EQ(ContourAreas(path), (std::vector<double>{8}));
}

TEST(MomentsOf, ARectangleHasItsTextbookMoments) {
    AreaMoments const moments = MomentsOf(Path("M10 20 H22 V26 H10 Z")); // 12 by 6
    EXPECT_EQ(moments.area, 72);
    EXPECT_EQ(moments.centroid, Pt(16, 23));
    EXPECT_NEAR(moments.hh, 12.0 * 12 * 12 * 6 / 12, 1e-11);
    EXPECT_NEAR(moments.vv, 12.0 * 6 * 6 * 6 / 12, 1e-11);
    EXPECT_NEAR(moments.hv, 0, 1e-11);
}

TEST(MomentsOf, ARightTriangleHasItsTextbookMoments) {
    AreaMoments const moments = MomentsOf(Path("M0 0 H6 L0 3 Z"));
    EXPECT_EQ(moments.area, 9);
    EXPECT_NEAR(moments.centroid.h, 2, 1e-15);
    EXPECT_NEAR(moments.centroid.v, 1, 1e-15);
    EXPECT_NEAR(moments.hh, 6.0 * 6 * 6 * 3 / 36, 1e-13);
    EXPECT_NEAR(moments.vv, 6.0 * 3 * 3 * 3 / 36, 1e-13);
    EXPECT_NEAR(moments.hv, -6.0 * 6 * 3 * 3 / 72, 1e-13);
}

TEST(MomentsOf, ADiscOfArcsHasThoseOfADisc) {
    CPath disc;
    disc.Arc(Pt(5, -7), 2, 0, 2 * kPi).ClosePath();
    AreaMoments const moments = MomentsOf(disc);
    // Its five curves of 72 degrees run outside the circle, by at most 7.2e-5 of the radius.
    EXPECT_NEAR(moments.area, kPi * 4, 1.81e-3);
    EXPECT_NEAR(moments.centroid.h, 5, 1e-12);
    EXPECT_NEAR(moments.centroid.v, -7, 1e-12);
    EXPECT_NEAR(moments.hh, kPi * 16 / 4, 3.63e-3);
    EXPECT_NEAR(moments.hv, 0, 1e-12);
}

/// The integrals by quadrature in long double: chords' triangles, very many of them.
struct Quadrature {
    long double sums[6] = {};

    void AddTriangle(long double ah, long double av, long double bh, long double bv) {
        long double const cross = ah * bv - av * bh;
        sums[0] += cross / 2;
        sums[1] += cross * (ah + bh) / 6;
        sums[2] += cross * (av + bv) / 6;
        sums[3] += cross * (ah * ah + ah * bh + bh * bh) / 12;
        sums[4] += cross * (ah * (2 * av + bv) + bh * (av + 2 * bv)) / 24;
        sums[5] += cross * (av * av + av * bv + bv * bv) / 12;
    }
    void AddCurve(CBezier const& c, int chords) {
        long double lastH = c.P0.h;
        long double lastV = c.P0.v;
        for (int i = 1; i <= chords; ++i) {
            long double const t = static_cast<long double>(i) / chords;
            long double const s = 1 - t;
            long double const b[] = {s * s * s, 3 * s * s * t, 3 * s * t * t, t * t * t};
            long double const h = b[0] * c.P0.h + b[1] * c.P1.h + b[2] * c.P2.h + b[3] * c.P3.h;
            long double const v = b[0] * c.P0.v + b[1] * c.P1.v + b[2] * c.P2.v + b[3] * c.P3.v;
            AddTriangle(lastH, lastV, h, v);
            lastH = h;
            lastV = v;
        }
    }
};

TEST(MomentsOf, AgreeWithQuadratureOnRandomCurves) {
    std::mt19937_64 random(11);
    auto const number = [&] { return static_cast<double>(random() % 20001) / 1000.0 - 10.0; };
    for (int i = 0; i < 60; ++i) {
        CBezier const c(Pt(number(), number()), Pt(number(), number()), Pt(number(), number()),
                        Pt(number(), number()));
        CPath path;
        path.MoveTo(c.P0).CurveTo(c.P1, c.P2, c.P3);
        // Chords are off by terms of the second order in their number; one step of Richardson's
        // extrapolation leaves the fourth.
        Quadrature coarse;
        Quadrature fine;
        coarse.AddCurve(c, 1000);
        fine.AddCurve(c, 2000);
        for (Quadrature* const q : {&coarse, &fine}) {
            q->AddTriangle(c.P3.h, c.P3.v, c.P0.h, c.P0.v);
        }
        long double sums[6];
        for (int k = 0; k < 6; ++k) {
            sums[k] = (4 * fine.sums[k] - coarse.sums[k]) / 3;
        }
        AreaMoments const m = MomentsOf(path);
        auto const area = static_cast<double>(sums[0]);
        ASSERT_NEAR(SignedArea(path), area, 1e-9);
        ASSERT_NEAR(m.area, area, 1e-9);
        if (std::abs(area) > 1) {
            ASSERT_NEAR(m.centroid.h, static_cast<double>(sums[1] / sums[0]), 1e-8);
            ASSERT_NEAR(m.centroid.v, static_cast<double>(sums[2] / sums[0]), 1e-8);
            ASSERT_NEAR(m.hh, static_cast<double>(sums[3] - sums[1] * sums[1] / sums[0]), 1e-6);
            ASSERT_NEAR(m.hv, static_cast<double>(sums[4] - sums[1] * sums[2] / sums[0]), 1e-6);
            ASSERT_NEAR(m.vv, static_cast<double>(sums[5] - sums[2] * sums[2] / sums[0]), 1e-6);
        }
    }
}

/// The closed control polygons' length, and the greatest extent of their points.
void Sizes(CPath const& path, double& length, double& extent) {
    length = 0;
    TRect<double> box(path.mPts[0].h, path.mPts[0].v, path.mPts[0].h, path.mPts[0].v);
    double low[2] = {path.mPts[0].h, path.mPts[0].v};
    double high[2] = {low[0], low[1]};
    for (std::size_t i = 0; i < path.mPts.size(); ++i) {
        Pt const& p = path.mPts[i];
        length += (p - path.mPts[i > 0 ? i - 1 : path.mPts.size() - 1]).Hypotenuse();
        low[0] = std::min(low[0], p.h);
        low[1] = std::min(low[1], p.v);
        high[0] = std::max(high[0], p.h);
        high[1] = std::max(high[1], p.v);
    }
    extent = std::max(high[0] - low[0], high[1] - low[1]);
}

/// The path with each coordinate multiplied by a power of two.
CPath Scaled(CPath path, int h, int v) {
    for (Pt& p : path.mPts) {
        p = Pt(std::scalbn(p.h, h), std::scalbn(p.v, v));
    }
    return path;
}

TEST(MomentsOf, HaveTheSameDigitsForOutlinesOfAllSizes) {
    CPath const path = Path("M1 2 C9 -4 6 8 3 6 S-2 1 1 2 Z M3 3 L8 2 L5 7 Z");
    AreaMoments const unit = MomentsOf(path);
    // Sizes at which products of two, three or four coordinates leave the range of double.
    for (int const h : {0, 1, -90, 99, 105, 200, 300, 500, 700, 1000, -105, -200, -500, -1000}) {
        for (int const v : {0, 3, 99, 110, 250, 500, 999, -101, -250, -500, -900}) {
            CPath const scaled = Scaled(path, h, v);
            AreaMoments const moments = MomentsOf(scaled);
            auto const expect = [&](double is, double one, int degreeH, int degreeV) {
                int const exponent = h * degreeH + v * degreeV;
                if (exponent > -950 && exponent < 1000) {
                    EXPECT_EQ(is, std::scalbn(one, exponent)) << h << " " << v;
                }
            };
            expect(moments.area, unit.area, 1, 1);
            expect(SignedArea(scaled), SignedArea(path), 1, 1);
            expect(ContourAreas(scaled)[1], ContourAreas(path)[1], 1, 1);
            expect(moments.centroid.h, unit.centroid.h, 1, 0);
            expect(moments.centroid.v, unit.centroid.v, 0, 1);
            expect(moments.hh, unit.hh, 3, 1);
            expect(moments.hv, unit.hv, 2, 2);
            expect(moments.vv, unit.vv, 1, 3);
        }
    }
}

TEST(SignedArea, OfASliverWhoseProductsOverflowIsRight) {
    // The cross product's two terms are some 1e320 each.
    double const far = 0x1p530;
    CPath sliver;
    sliver.MoveTo(Pt(0, 0)).LineTo(Pt(far, far)).LineTo(Pt(far / 2, far / 2 + 0x1p480));
    EXPECT_EQ(SignedArea(sliver), 0x1p1009);
    EXPECT_EQ(MomentsOf(sliver).area, 0x1p1009);
    // A difference of two coordinates overflows.
    CPath flat;
    flat.MoveTo(Pt(-0x1p1023, 0)).LineTo(Pt(0x1p1023, 0)).LineTo(Pt(0, 0x1p-1000));
    EXPECT_EQ(SignedArea(flat), 0x1p23);
    EXPECT_NEAR(MomentsOf(flat).centroid.h, 0, 1e293);
    // A small outline far from the origin.
    CPath small;
    small.MoveTo(Pt(0x1p600, 0)).LineTo(Pt(0x1p600 + 0x1p548, 0)).LineTo(Pt(0x1p600, 0x1p-600));
    EXPECT_EQ(SignedArea(small), 0x1p-53);
    EXPECT_EQ(MomentsOf(small).centroid.h, 0x1p600);
}

#ifdef __SIZEOF_INT128__ // compilers for 32-bit x86 have none
__extension__ typedef __int128 Int128;

/// Exact areas of paths whose coordinates are integers: twenty times the area is an integer.
Int128 TwentyAreas(CPath const& path) {
    auto const cross = [](Pt const& a, Pt const& b) {
        return static_cast<Int128>(a.h) * static_cast<Int128>(b.v) -
               static_cast<Int128>(a.v) * static_cast<Int128>(b.h);
    };
    Int128 sum = 0;
    std::vector<Pt> const& p = path.mPts;
    for (std::size_t i = 1; i + 2 < p.size(); i += 3) {
        Pt const& a = p[i - 1];
        sum += 6 * cross(a, p[i]) + 3 * cross(a, p[i + 1]) + cross(a, p[i + 2]) +
               3 * cross(p[i], p[i + 1]) + 3 * cross(p[i], p[i + 2]) +
               6 * cross(p[i + 1], p[i + 2]);
    }
    return sum + 10 * cross(p.back(), p.front());
}

TEST(SignedArea, KeepsTheStatedBoundAgainstExactArithmetic) {
    std::mt19937_64 random(5);
    double worst = 0;
    for (int i = 0; i < 3000; ++i) {
        auto const coordinate = [&] {
            return static_cast<double>(static_cast<long>(random() % 0x8000000) + 0x1000000000);
        };
        CPath path;
        path.MoveTo(Pt(coordinate(), coordinate()));
        for (std::uint64_t n = random() % 40; n < 40; ++n) {
            path.CurveTo(Pt(coordinate(), coordinate()), Pt(coordinate(), coordinate()),
                         Pt(coordinate(), coordinate()));
        }
        double length = 0;
        double extent = 0;
        Sizes(path, length, extent);
        long double const exact = static_cast<long double>(TwentyAreas(path)) / 20;
        double const bound = 0x1p-46 * length * extent;
        auto const off = static_cast<double>(std::abs(SignedArea(path) - exact));
        ASSERT_LE(off, bound);
        ASSERT_LE(static_cast<double>(std::abs(MomentsOf(path).area - exact)), bound);
        worst = std::max(worst, off / bound);
    }
    RecordProperty("worst", std::to_string(worst));
}
#endif

TEST(SignedArea, KeepsTheStatedBoundForManyShortLinesFarFromTheFirstPoint) {
    // Each round of the triangle has the same rounding errors, and an area of 5e-30.
    Pt const a(0x1.bc08b58417340p-1, 0x1.c7af78cca16d8p-1);
    Pt const b(0x1.bc08b58417330p-1, 0x1.c7af78cca16bep-1);
    Pt const c(0x1.bc08b5841734ep-1, 0x1.c7af78cca16bcp-1);
    CPath path;
    path.MoveTo(Pt(0, 0)).LineTo(a);
    for (int i = 0; i < 10000; ++i) {
        path.LineTo(b).LineTo(c).LineTo(a);
    }
    double length = 0;
    double extent = 0;
    Sizes(path, length, extent);
    double const bound = 0x1p-46 * length * extent;
    EXPECT_LE(std::abs(SignedArea(path)), bound);
    EXPECT_LE(std::abs(MomentsOf(path).area), bound);
}

TEST(MomentsOf, FollowsAnAffineMap) {
    CPath const path = Path("M10 20 C90 -40 60 80 30 60 S-20 10 10 20 Z");
    AreaMoments const before = MomentsOf(path);
    CPath moved = path;
    CMatrix3x3 m;
    m.Scale(2, 0.5).Translate(100, -300);
    moved.Transform(m);
    AreaMoments const after = MomentsOf(moved);
    EXPECT_NEAR(after.area, before.area, 1e-9);
    EXPECT_NEAR(after.centroid.h, 2 * before.centroid.h + 100, 1e-10);
    EXPECT_NEAR(after.centroid.v, before.centroid.v / 2 - 300, 1e-10);
    EXPECT_NEAR(after.hh, before.hh * 4, 1e-5);
    EXPECT_NEAR(after.hv, before.hv, 1e-5);
    EXPECT_NEAR(after.vv, before.vv / 4, 1e-5);
}

} // namespace
