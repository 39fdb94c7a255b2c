// SPDX-License-Identifier: MIT

// Moving, scaling, turning and mapping a handle polygon; its edges; containment; QuickDraw
// polygons.

#include "CFPolygonRef.h"

#include "ContainmentCases.h"
#include "HandlePolygonSupport.h"
#include "Handles.h"
#include "PolygonSupport.h"
#include "Records.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"
#include "UTrigonometry.h"
#include "plain/PlainPolygon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel_test::ForSmallRings;
using trammel_test::HandlePolygon;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::PointsOf;
using trammel_test::Polygon;
using trammel_test::Record;
using trammel_test::Text;

using Points = std::vector<TPoint<double>>;

/// The plain form of Contains. A repeated closing point makes no further edge.
bool PlainContains(Points const& points, TPoint<double> const& p) {
    std::size_t const n = points.size();
    return plain::OddCrossings(points, n > 0 && points[0] == points[n - 1] ? n - 1 : n, p);
}

// Geometry

TEST_F(HandlePolygon, OffsetMovesEveryPoint) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {-3, 4}}));
    ref.CalcBounds();
    ref.Offset(TPoint<double>(10, -20));
    EXPECT_EQ(Text(PointsOf(ref)), "(11, -18) (7, -16)");
    EXPECT_FALSE(ref.BoundsValid());
    ref.Offset(TPoint<double>(kInf, kNaN));
    EXPECT_EQ(Text(PointsOf(ref)), "(inf, nan) (inf, nan)");
}

TEST_F(HandlePolygon, ScaleMultipliesEveryPoint) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {-3, 4}}));
    ref.CalcBounds();
    ref.Scale(1.0);
    ref.Scale(1.0, 1.0);
    EXPECT_TRUE(ref.BoundsValid());
    ref.Scale(2.0);
    EXPECT_EQ(Text(PointsOf(ref)), "(2, 4) (-6, 8)");
    EXPECT_FALSE(ref.BoundsValid());
    ref.CalcBounds();
    ref.Scale(1.0, 0.5);
    EXPECT_EQ(Text(PointsOf(ref)), "(2, 2) (-6, 4)");
    EXPECT_FALSE(ref.BoundsValid());
    ref.CalcBounds();
    ref.Scale(-2.0, 1.0);
    EXPECT_EQ(Text(PointsOf(ref)), "(-4, 2) (12, 4)");
    EXPECT_FALSE(ref.BoundsValid());
    ref.Scale(1.0, 1.0 + 2.2204460492503131e-16); // no tolerance around 1
    EXPECT_EQ(Text(ref.PolyPoints(0)), "(-4, 2.0000000000000004)");
    ref.Scale(kNaN);
    EXPECT_EQ(Text(PointsOf(ref)), "(nan, nan) (nan, nan)");
}

TEST_F(HandlePolygon, RotateTurnsEveryPointAboutTheCentre) {
    Points const points = {{1, 2}, {-3, 4}, {1e10, -1e-10}};
    TPoint<double> const centre(3.25, -7);
    for (double const angle : {0.0, 0.3, -pi, 100.0}) {
        CFPolygonRef& ref = Keep(Polygon(points));
        ref.CalcBounds();
        ref.Rotate(angle, centre);
        EXPECT_FALSE(ref.BoundsValid());
        for (std::size_t i = 0; i < points.size(); ++i) {
            TPoint<double> expected = points[i];
            expected.Rotate(angle, centre);
            EXPECT_EQ(Text(ref.PolyPoints(static_cast<long>(i))), Text(expected)) << angle;
        }
    }
}

TEST_F(HandlePolygon, MapCarriesOneRectangleOntoAnother) {
    CFPolygonRef& ref = Keep(Polygon({{0, 0}, {10, 20}, {5, 5}}));
    ref.CalcBounds();
    ref.Map(TRect<double>(0, 0, 10, 20), TRect<double>(100, 200, 120, 210));
    EXPECT_EQ(Text(PointsOf(ref)), "(100, 200) (120, 210) (110, 202.5)");
    EXPECT_FALSE(ref.BoundsValid());

    std::mt19937 random(41);
    std::uniform_real_distribution<double> coordinate(-100, 100);
    for (int round = 0; round < 200; ++round) {
        auto const next = [&] { return coordinate(random); };
        TRect<double> const from(next(), next(), next(), next());
        TRect<double> const to(next(), next(), next(), next());
        TPoint<double> point(next(), next());
        CFPolygonRef polygon = Polygon({point, point});
        polygon.Map(from, to);
        point.Map(from, to);
        EXPECT_EQ(Text(PointsOf(polygon)), Text(point) + " " + Text(point));
        polygon.Dispose();
    }
}

TEST_F(HandlePolygon, MapTakesTheBoundsOfItsOwnBlock) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {11, 22}}));
    ref.CalcBounds();
    TRect<double> const& own = Record(ref)->polyBBox; // the caches are dropped on the way
    ref.Map(own, TRect<double>(0, 0, 1, 1));
    EXPECT_EQ(Text(PointsOf(ref)), "(0, 0) (1, 1)");
}

TEST_F(HandlePolygon, EdgesRunFromPointToPointAndBack) {
    CFPolygonRef& ref = Keep(Polygon({{1, 1}, {5, 1}, {5, 9}}));
    EXPECT_EQ(ref.EdgeCount(), 1);
    EXPECT_EQ(ref.GeometryEdgeCount(), 2);
    EXPECT_EQ(Text(ref.GetEdge(0)), "(1, 1)-(5, 1)");
    EXPECT_EQ(Text(ref.GetEdge(1)), "(5, 1)-(5, 9)");
    EXPECT_EQ(Text(ref.GetEdge(2)), "(5, 9)-(1, 1)");
    // Outside, points that do not exist read as the origin.
    EXPECT_EQ(Text(ref.GetEdge(3)), "(0, 0)-(1, 1)");
    EXPECT_EQ(Text(ref.GetEdge(LONG_MAX)), "(0, 0)-(1, 1)");
    EXPECT_EQ(Text(ref.GetEdge(-1)), "(0, 0)-(1, 1)");
    EXPECT_EQ(Text(ref.GetEdge(-2)), "(0, 0)-(0, 0)");
    EXPECT_EQ(Text(ref.GetEdge(LONG_MIN)), "(0, 0)-(0, 0)");

    CFPolygonRef& one = Keep(Polygon({{3, 4}}));
    EXPECT_EQ(one.EdgeCount(), -1);
    EXPECT_EQ(Text(one.GetEdge(0)), "(3, 4)-(3, 4)");
    CFPolygonRef& none = Keep(CFPolygonRef(true));
    EXPECT_EQ(Text(none.GetEdge(0)), "(0, 0)-(0, 0)");
}

TEST_F(HandlePolygon, ARepeatedFirstPointIsNotAnEdgeOfItsOwn) {
    EXPECT_EQ(Keep(Polygon({{1, 1}, {5, 1}, {5, 9}})).GeometryEdgeCount(), 2);
    EXPECT_EQ(Keep(Polygon({{1, 1}, {5, 1}, {5, 9}, {1, 1}})).GeometryEdgeCount(), 2);
    EXPECT_EQ(Keep(Polygon({{0, 1}, {5, 1}, {-0.0, 1}})).GeometryEdgeCount(), 1);
    EXPECT_EQ(Keep(Polygon({{3, 4}})).GeometryEdgeCount(), -1);
    EXPECT_EQ(Keep(Polygon({{kNaN, 4}})).GeometryEdgeCount(), 0);
    EXPECT_EQ(Keep(Polygon({{kNaN, 4}, {1, 1}, {kNaN, 4}})).GeometryEdgeCount(), 2);
    EXPECT_EQ(Keep(Polygon({})).GeometryEdgeCount(), -1);
}

TEST_F(HandlePolygon, ContainsCountsTheEdgesOfASquareHalfOpen) {
    for (bool const repeated : {false, true}) {
        CFPolygonRef& ref = Keep(Polygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
        if (repeated) {
            ref.Append(TPoint<double>(0, 0));
        }
        EXPECT_TRUE(ref.Contains(TPoint<double>(5, 5)));
        EXPECT_FALSE(ref.Contains(TPoint<double>(0, 5)));  // edge of smaller h
        EXPECT_TRUE(ref.Contains(TPoint<double>(10, 5)));  // edge of larger h
        EXPECT_TRUE(ref.Contains(TPoint<double>(5, 0)));   // edge of smaller v
        EXPECT_FALSE(ref.Contains(TPoint<double>(5, 10))); // edge of larger v
        EXPECT_FALSE(ref.Contains(TPoint<double>(0, 0)));
        EXPECT_TRUE(ref.Contains(TPoint<double>(10, 0)));
        EXPECT_FALSE(ref.Contains(TPoint<double>(10, 10)));
        EXPECT_FALSE(ref.Contains(TPoint<double>(0, 10)));
        for (TPoint<double> const& outside :
             {TPoint<double>(-1, 5), TPoint<double>(11, 5), TPoint<double>(5, -1),
              TPoint<double>(5, 11), TPoint<double>(kNaN, 5), TPoint<double>(5, kNaN),
              TPoint<double>(kInf, 5), TPoint<double>(-kInf, 5), TPoint<double>(5, kInf)}) {
            EXPECT_FALSE(ref.Contains(outside)) << Text(outside);
        }
    }
}

TEST_F(HandlePolygon, ContainsTakesEveryPolygonAsClosed) {
    for (bool const closed : {false, true}) {
        CFPolygonRef& ref = Keep(Polygon({{0, 0}, {10, 0}, {0, 10}}));
        ref.SetClosed(closed);
        EXPECT_TRUE(ref.Contains(TPoint<double>(2, 2)));
        EXPECT_FALSE(ref.Contains(TPoint<double>(8, 8)));
        EXPECT_TRUE(ref.Contains(TPoint<double>(4, 5)));
        EXPECT_FALSE(ref.Contains(TPoint<double>(-1, 5)));
        // Exactly on the slanted edge: that edge does not count, the one before it does.
        EXPECT_TRUE(ref.Contains(TPoint<double>(5, 5)));
    }
    EXPECT_FALSE(Keep(Polygon({{0, 0}, {10, 10}})).Contains(TPoint<double>(5, 5)));
    EXPECT_FALSE(Keep(Polygon({{5, 5}})).Contains(TPoint<double>(5, 5)));
}

TEST_F(HandlePolygon, ContainsIsEvenOddWhereThePolygonCrossesItself) {
    // A pentagram: its middle is wound around twice.
    CFPolygonRef& star = Keep(Polygon({{0, -100}, {59, 81}, {-95, -31}, {95, -31}, {-59, 81}}));
    EXPECT_FALSE(star.Contains(TPoint<double>(0, 0)));
    EXPECT_TRUE(star.Contains(TPoint<double>(0, -60)));
    EXPECT_TRUE(star.Contains(TPoint<double>(60, -20)));
    EXPECT_FALSE(star.Contains(TPoint<double>(0, 70)));
}

TEST_F(HandlePolygon, ContainsIgnoresTheBounds) {
    CFPolygonRef& ref = Keep(Polygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}}));
    ref.CalcBounds();
    Record(ref)->polyBBox = TRect<double>(100, 100, 101, 101);
    EXPECT_TRUE(ref.Contains(TPoint<double>(5, 5)));
    ref.InvalBounds();
    ref.Contains(TPoint<double>(5, 5));
    EXPECT_FALSE(ref.BoundsValid());
}

TEST_F(HandlePolygon, ContainsAgreesWithTheRuleWrittenOut) {
    long inside = 0;
    ForSmallRings(42, [&](int round, Points vertices, Points const& points) {
        if (!vertices.empty() && round % 3 == 0) {
            vertices.push_back(vertices.front());
        }
        CFPolygonRef& ref = Keep(Polygon(vertices));
        for (TPoint<double> const& p : points) {
            ASSERT_EQ(ref.Contains(p), PlainContains(vertices, p))
                << Text(vertices) << " " << Text(p);
            inside += ref.Contains(p) ? 1 : 0;
        }
    });
    EXPECT_GT(inside, 5000);
}

TEST_F(HandlePolygon, ContainsDoesNotDependOnWhereThePolygonStartsOrWhetherItRepeatsItsStart) {
    std::mt19937 random(43);
    std::uniform_real_distribution<double> coordinate(-10, 10);
    for (int round = 0; round < 300; ++round) {
        Points points;
        for (int n = 0; n < 7; ++n) {
            double const h = coordinate(random);
            points.emplace_back(h, coordinate(random));
        }
        CFPolygonRef ref = Polygon(points);
        std::rotate(points.begin(), points.begin() + 1 + round % 6, points.end());
        points.push_back(points.front());
        CFPolygonRef turned = Polygon(points);
        for (int k = 0; k < 20; ++k) {
            double const h = coordinate(random);
            TPoint<double> const p(h, coordinate(random));
            EXPECT_EQ(ref.Contains(p), turned.Contains(p));
        }
        ref.Dispose();
        turned.Dispose();
    }
}

// QuickDraw

MacPolygon const& QDRecord(MacPolygon** h) { return **h; }

Point QDPoint(MacPolygon** h, long i) {
    Point p;
    std::memcpy(&p, reinterpret_cast<char const*>(*h) + 10 + 4 * i, sizeof p);
    return p;
}

TEST_F(HandlePolygon, ConvertsToAQuickDrawPolygonWithRounding) {
    CFPolygonRef& ref = Keep(Polygon({{1.4, -1.4}, {2.5, -2.5}, {0.5, 3.49}}));
    MacPolygon** const qd = ref.CreateQDPoly();
    ASSERT_NE(qd, nullptr);
    EXPECT_EQ(GetHandleSize(reinterpret_cast<Handle>(qd)), 22);
    EXPECT_EQ(QDRecord(qd).polySize, 22);
    EXPECT_EQ(QDRecord(qd).polyBBox.top, -3); // halves away from zero
    EXPECT_EQ(QDRecord(qd).polyBBox.left, 1);
    EXPECT_EQ(QDRecord(qd).polyBBox.bottom, 3);
    EXPECT_EQ(QDRecord(qd).polyBBox.right, 3);
    Point const expected[] = {{-1, 1}, {-3, 3}, {3, 1}};
    for (long i = 0; i < 3; ++i) {
        EXPECT_EQ(QDPoint(qd, i).v, expected[i].v) << i;
        EXPECT_EQ(QDPoint(qd, i).h, expected[i].h) << i;
    }
    EXPECT_TRUE(ref.BoundsValid()); // computed on the way
    DisposeHandle(reinterpret_cast<Handle>(qd));
}

TEST_F(HandlePolygon, ANullOrEmptyPolygonGivesAQuickDrawHeaderAlone) {
    for (CFPolygonRef const& ref : {CFPolygonRef(), Keep(CFPolygonRef(true))}) {
        MacPolygon** const qd = ref.CreateQDPoly();
        ASSERT_NE(qd, nullptr);
        Handle const h = reinterpret_cast<Handle>(qd);
        EXPECT_EQ(std::string(*h, static_cast<std::size_t>(GetHandleSize(h))),
                  std::string("\x0A\0\0\0\0\0\0\0\0\0", 10));
        DisposeHandle(h);
    }
}

TEST_F(HandlePolygon, QuickDrawCoordinatesAndSizesKeepTheirLow16Bits) {
    CFPolygonRef& ref = Keep(Polygon({{40000, -40000}, {kNaN, kHuge}, {65535.5, -kInf}}));
    MacPolygon** qd = ref.CreateQDPoly();
    ASSERT_NE(qd, nullptr);
    EXPECT_EQ(QDPoint(qd, 0).h, -25536);
    EXPECT_EQ(QDPoint(qd, 0).v, 25536);
    EXPECT_EQ(QDPoint(qd, 1).h, 0);
    EXPECT_EQ(QDPoint(qd, 1).v, 0);
    EXPECT_EQ(QDPoint(qd, 2).h, 0);
    EXPECT_EQ(QDPoint(qd, 2).v, 0);
    DisposeHandle(reinterpret_cast<Handle>(qd));

    ref.SetSize(20000);
    qd = ref.CreateQDPoly();
    ASSERT_NE(qd, nullptr);
    EXPECT_EQ(GetHandleSize(reinterpret_cast<Handle>(qd)), 80010);
    EXPECT_EQ(QDRecord(qd).polySize, 14474);
    DisposeHandle(reinterpret_cast<Handle>(qd));

    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(ref.CreateQDPoly(), nullptr);
}

} // namespace
