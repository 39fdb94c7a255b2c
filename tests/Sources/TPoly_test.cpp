// SPDX-License-Identifier: MIT

#include "TPoly.h"

#include "CFPolygonRef.h"
#include "CMatrix3x3.h"
#include "ShortMemory.h"
#include "TestSupport.h"
#include "plain/PlainPolygon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <new>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Text;

using Points = std::vector<TPoint<double>>;
using Polygon = TPolygon<double>;
using Table = std::vector<double>;

Points PointsOf(Polygon const& polygon) {
    Points points;
    for (long i = 0; i <= polygon.LastIndex(); ++i) {
        points.push_back(polygon.GetPt(i));
    }
    return points;
}

Points PointsOf(CFPolygonRef const& ref) {
    Points points;
    for (long i = 0; i <= ref.LastIndex(); ++i) {
        points.push_back(ref.PolyPoints(i));
    }
    return points;
}

Polygon Open(Points const& points) {
    Polygon polygon;
    for (TPoint<double> const& p : points) {
        polygon.Append(p, true);
    }
    return polygon;
}

Polygon Closed(Points const& points) {
    Polygon polygon = Open(points);
    polygon.Close();
    return polygon;
}

/// The open chain (0, 0), (10, 0), (10, 10).
Polygon Chain() { return Open({{0, 0}, {10, 0}, {10, 10}}); }

/// The closed square (0, 0), (10, 0), (10, 10), (0, 10).
Polygon Square() { return Closed({{0, 0}, {10, 0}, {10, 10}, {0, 10}}); }

/// A polygon whose block could not be made.
Polygon WithoutStorage() {
    trammel_detail::FailNextAllocations(1);
    Polygon polygon;
    trammel_detail::FailNextAllocations(0);
    return polygon;
}

CPolygon<double>& Record(Polygon const& polygon) { return **polygon.mHandle; }

std::string Contents(Polygon const& polygon) {
    Handle const h = reinterpret_cast<Handle>(polygon.mHandle);
    return std::string(*h, static_cast<std::size_t>(GetHandleSize(h)));
}

std::string Report(char const* condition, char const* function) {
    return std::string("^Assertion failed: \\(") + condition + "\\), function " + function +
           ", file Sources/TPoly\\.cpp, line [0-9]+\\.\n$";
}

std::string const kNegative = "index >= 0";
std::string const kBeyond = "index <= LastIndex\\(\\)";

#define EXPECT_ASSERTION(statement, condition, function)                                           \
    EXPECT_EXIT(statement, ::testing::KilledBySignal(SIGABRT),                                     \
                Report((condition).c_str(), function))

/// The plain form of what Contains answers inside the bounds.
bool PlainContains(Points const& points, TPoint<double> const& p) {
    return plain::OddCrossings(points, points.size(), p);
}

Points RandomPoints(std::mt19937& random, std::size_t count, double low, double high) {
    std::uniform_real_distribution<double> coordinate(low, high);
    Points points;
    while (points.size() < count) {
        double const h = coordinate(random);
        points.emplace_back(h, coordinate(random));
    }
    return points;
}

class PointListPolygon : public trammel_test::WithoutLeaks {};
class PointListPolygonDeathTest : public trammel_test::WithoutLeaks {};

// Creation and ownership

TEST_F(PointListPolygon, ANewOneIsEmptyAndOpen) {
    Polygon const polygon;
    ASSERT_NE(polygon.mHandle, nullptr);
    EXPECT_EQ(Contents(polygon).size(), 40U);
    EXPECT_EQ(polygon.LastIndex(), -1);
    EXPECT_TRUE(polygon.Empty());
    EXPECT_FALSE(polygon.Closed());
    EXPECT_FALSE(polygon.BoundsValid());
    EXPECT_EQ(polygon.Length(), 0.0);
    EXPECT_EQ(polygon.LastEdge(), -2);
    EXPECT_EQ(polygon.LastGeometryEdge(), -1);
    EXPECT_EQ(Record(polygon).mReserved, 0);
    EXPECT_EQ(Record(polygon).mClosed, 0);
    EXPECT_EQ(Record(polygon).mBoundsValid, 0);
    EXPECT_EQ(Text(Record(polygon).mBounds),
              Text(TRect<double>(2.2250738585072014e-308, 2.2250738585072014e-308,
                                 1.7976931348623157e308, 1.7976931348623157e308)));
    EXPECT_EQ(Text(polygon.Bounds()), "[0, 0, 0, 0]"); // the initial ones are never reported
}

TEST_F(PointListPolygon, IsAPlainPointer) {
    static_assert(sizeof(Polygon) == sizeof(void*));
    static_assert(!std::is_polymorphic_v<Polygon>);
    static_assert(std::is_nothrow_move_constructible_v<Polygon>);
    static_assert(std::is_nothrow_move_assignable_v<Polygon>);
    SUCCEED();
}

TEST_F(PointListPolygon, ARectangleGivesItsFourCornersClosed) {
    Polygon const polygon(TRect<double>(0, 0, 20, 10)); // left, top, right, bottom
    EXPECT_EQ(Text(PointsOf(polygon)), "(0, 0) (20, 0) (20, 10) (0, 10)");
    EXPECT_TRUE(polygon.Closed());
    EXPECT_EQ(polygon.Length(), 60.0);
    EXPECT_FALSE(polygon.BoundsValid());
    EXPECT_EQ(Text(Record(polygon).mBounds), "[0, 0, 20, 10]");
    EXPECT_EQ(Record(polygon).mReserved, 0);

    // As it stands: neither put in order nor freed of repeated corners.
    EXPECT_EQ(Text(PointsOf(Polygon(TRect<double>(5, 6, 1, 2)))), "(5, 6) (1, 6) (1, 2) (5, 2)");
    EXPECT_EQ(Text(PointsOf(Polygon(TRect<double>()))), "(0, 0) (0, 0) (0, 0) (0, 0)");
}

TEST_F(PointListPolygon, TakesTheRectangleInItsOwnBlock) {
    Polygon polygon = Open({{1, 2}, {3, 4}});
    polygon.CalcBounds();
    polygon = Polygon(Record(polygon).mBounds);
    EXPECT_EQ(Text(PointsOf(polygon)), "(1, 2) (3, 2) (3, 4) (1, 4)");
}

TEST_F(PointListPolygon, CopiesAreIndependent) {
    Polygon source = Chain();
    source.CalcBounds();
    Polygon copy(source);
    Polygon assigned = Open({{7, 7}});
    assigned = source;
    EXPECT_NE(copy.mHandle, source.mHandle);
    EXPECT_NE(assigned.mHandle, source.mHandle);
    EXPECT_EQ(Contents(copy), Contents(source)); // flags and bounds cache too
    EXPECT_EQ(Contents(assigned), Contents(source));
    source.SetPt(0, TPoint<double>(1, 1));
    source.Close();
    for (Polygon const* each : {&copy, &assigned}) {
        EXPECT_EQ(Text(PointsOf(*each)), "(0, 0) (10, 0) (10, 10)");
        EXPECT_FALSE(each->Closed());
        EXPECT_TRUE(each->BoundsValid());
    }
}

TEST_F(PointListPolygon, AssignmentDisposesTheOldBlock) {
    Polygon polygon = Chain();
    Polygon const other = Square();
    long const handles = trammel_detail::LiveHandleCount();
    Polygon& result = polygon = other;
    EXPECT_EQ(&result, &polygon);
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles);
    EXPECT_EQ(Text(PointsOf(polygon)), Text(PointsOf(other)));
}

TEST_F(PointListPolygon, SelfAssignmentDoesNothing) {
    Polygon polygon = Chain();
    auto const handle = polygon.mHandle;
    Polygon& alias = polygon;
    polygon = alias;
    EXPECT_EQ(polygon.mHandle, handle);
    polygon = std::move(alias);
    EXPECT_EQ(polygon.mHandle, handle);
    EXPECT_EQ(Text(PointsOf(polygon)), "(0, 0) (10, 0) (10, 10)");
}

TEST_F(PointListPolygon, MovingTakesTheBlock) {
    Polygon source = Chain();
    auto const handle = source.mHandle;
    long const handles = trammel_detail::LiveHandleCount();
    Polygon moved(std::move(source));
    EXPECT_EQ(moved.mHandle, handle);
    EXPECT_EQ(source.mHandle, nullptr); // NOLINT(bugprone-use-after-move): it has no storage now
    EXPECT_TRUE(source.Empty());
    Polygon target = Square();
    target = std::move(moved);
    EXPECT_EQ(target.mHandle, handle);
    EXPECT_EQ(moved.mHandle, nullptr); // NOLINT(bugprone-use-after-move): as above
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles);
    source = target; // storage comes back by assignment
    EXPECT_EQ(Text(PointsOf(source)), "(0, 0) (10, 0) (10, 10)");
}

TEST_F(PointListPolygon, ShortMemoryLeavesNoStorage) {
    Polygon const source = Chain();
    CFPolygonRef ref = source;
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(Polygon().mHandle, nullptr);
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(Polygon(TRect<double>(1, 2, 3, 4)).mHandle, nullptr);
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(Polygon(ref).mHandle, nullptr);
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(Polygon(source).mHandle, nullptr);
    Polygon assigned = Square();
    trammel_detail::FailNextAllocations(1);
    assigned = source;
    EXPECT_EQ(assigned.mHandle, nullptr);
    EXPECT_EQ(Text(PointsOf(source)), "(0, 0) (10, 0) (10, 10)");
    ref.Dispose();
}

TEST_F(PointListPolygon, WithoutStorageItIsEmptyAndClosedAndAbsorbsEveryChange) {
    Polygon polygon = WithoutStorage();
    EXPECT_EQ(polygon.mHandle, nullptr);
    polygon.Append(TPoint<double>(1, 2), true);
    polygon.AppendUnique(TPoint<double>(1, 2));
    polygon.SetPt(0, TPoint<double>(1, 2));
    polygon.SetPt(LONG_MAX, TPoint<double>(1, 2));
    polygon.Close();
    polygon.Transform(CMatrix3x3());
    polygon.CalcBounds();
    polygon.InvalBounds();
    EXPECT_EQ(polygon.mHandle, nullptr);
    EXPECT_EQ(polygon.LastIndex(), -1);
    EXPECT_TRUE(polygon.Empty());
    EXPECT_TRUE(polygon.Closed());
    EXPECT_EQ(polygon.LastEdge(), -1);
    EXPECT_EQ(polygon.LastGeometryEdge(), -1);
    EXPECT_EQ(polygon.Length(), 0.0);
    EXPECT_FALSE(polygon.BoundsValid());
    EXPECT_EQ(Text(polygon.Bounds()), "[0, 0, 0, 0]");
    EXPECT_FALSE(polygon.Contains(TPoint<double>(0, 0)));
    EXPECT_TRUE(polygon.Clip(TLine<double>(TPoint<double>(0, 0), TPoint<double>(1, 1))).empty());
    EXPECT_EQ(static_cast<CFPolygonRef>(polygon).mRef, nullptr);
    Table table;
    BuildLTable(polygon, table);
    EXPECT_TRUE(table.empty());

    Polygon const copy(polygon);
    EXPECT_EQ(copy.mHandle, nullptr);
    Polygon assigned = Chain();
    assigned = polygon;
    EXPECT_EQ(assigned.mHandle, nullptr);
}

// Vertices

TEST_F(PointListPolygon, AppendAddsAtTheEnd) {
    Polygon polygon;
    polygon.Append(TPoint<double>(1, 2), true);
    EXPECT_EQ(polygon.LastIndex(), 0);
    EXPECT_FALSE(polygon.Empty());
    polygon.Append(TPoint<double>(3, 4), false);
    EXPECT_EQ(polygon.LastIndex(), 1);
    EXPECT_EQ(Text(polygon.GetPt(0)), "(1, 2)");
    EXPECT_EQ(Text(polygon.GetPt(1)), "(3, 4)");
    EXPECT_EQ(Contents(polygon).size(), 72U);
}

TEST_F(PointListPolygon, AppendUniqueLeavesOutAVertexEqualToTheLastOne) {
    TPoint<double> const p(1, 2);
    EXPECT_EQ(Polygon().AppendUnique(p).AppendUnique(p).LastIndex(), 0);
    EXPECT_EQ(Polygon().Append(p, true).Append(p, true).LastIndex(), 1);
    EXPECT_EQ(Polygon().Append(p, true).Append(p, false).LastIndex(), 0);

    Polygon polygon;
    polygon.AppendUnique(TPoint<double>(0, 0));    // the first is always added
    polygon.AppendUnique(TPoint<double>(-0.0, 0)); // equal
    EXPECT_EQ(Text(PointsOf(polygon)), "(0, 0)");
    polygon.AppendUnique(TPoint<double>(5e-324, 0)); // no tolerance
    polygon.AppendUnique(TPoint<double>(0, 0));      // equal to an earlier one only
    EXPECT_EQ(polygon.LastIndex(), 2);
    polygon.AppendUnique(TPoint<double>(kNaN, 0)); // NaN equals nothing
    polygon.AppendUnique(TPoint<double>(kNaN, 0));
    EXPECT_EQ(polygon.LastIndex(), 4);
    polygon.AppendUnique(TPoint<double>(kInf, 0));
    polygon.AppendUnique(TPoint<double>(kInf, 0));
    EXPECT_EQ(polygon.LastIndex(), 5);
}

TEST_F(PointListPolygon, AppendTakesAVertexOfItsOwn) {
    Polygon polygon = Open({{1, 2}});
    for (int i = 0; i < 100; ++i) {
        polygon.Append(Record(polygon).mPoints[0], true);
        polygon.AppendUnique(Record(polygon).mPoints[0]);
    }
    EXPECT_EQ(polygon.LastIndex(), 100);
    EXPECT_EQ(Text(polygon.GetPt(100)), "(1, 2)");
}

TEST_F(PointListPolygon, AFailedAppendLeavesThePolygonUnchanged) {
    Polygon polygon = Chain();
    std::string const before = Contents(polygon);
    trammel_detail::FailNextAllocations(1);
    polygon.Append(TPoint<double>(7, 7), true);
    EXPECT_EQ(Contents(polygon), before);
    trammel_detail::FailNextAllocations(1);
    polygon.AppendUnique(TPoint<double>(7, 7));
    EXPECT_EQ(Contents(polygon), before);
    EXPECT_EQ(polygon.AppendUnique(TPoint<double>(7, 7)).LastIndex(), 3);
}

TEST_F(PointListPolygon, SetPtStoresAndDropsTheBounds) {
    Polygon polygon = Chain();
    polygon.CalcBounds();
    EXPECT_EQ(&polygon.SetPt(1, TPoint<double>(30, -2)), &polygon);
    EXPECT_EQ(Text(PointsOf(polygon)), "(0, 0) (30, -2) (10, 10)");
    EXPECT_FALSE(polygon.BoundsValid());
    polygon.SetPt(2, Record(polygon).mPoints[1]);
    EXPECT_EQ(Text(polygon.GetPt(2)), "(30, -2)");
}

TEST_F(PointListPolygon, SetPtBeyondTheLastIndexChangesNothing) {
    Polygon polygon = Chain();
    polygon.CalcBounds();
    std::string const before = Contents(polygon);
    for (long const i : {3L, 4L, 1000000L, LONG_MAX, LONG_MAX / 16 + 1}) {
        polygon.SetPt(i, TPoint<double>(7, 7));
        EXPECT_EQ(Contents(polygon), before) << i;
    }
    Polygon empty;
    empty.SetPt(0, TPoint<double>(7, 7));
    EXPECT_TRUE(empty.Empty());
}

TEST_F(PointListPolygon, CloseHasNoWayBack) {
    Polygon polygon = Chain();
    polygon.CalcBounds();
    EXPECT_FALSE(polygon.Closed());
    EXPECT_EQ(&polygon.Close(), &polygon);
    EXPECT_TRUE(polygon.Closed());
    EXPECT_EQ(Record(polygon).mClosed, 1);
    EXPECT_TRUE(polygon.BoundsValid());
    polygon.Close();
    polygon.Append(TPoint<double>(1, 1), true);
    EXPECT_TRUE(polygon.Closed());
    Record(polygon).mClosed = -7;
    EXPECT_TRUE(polygon.Closed());
}

TEST_F(PointListPolygon, TransformMapsEveryVertexAndDropsTheBounds) {
    Polygon polygon = Chain();
    polygon.CalcBounds();
    CMatrix3x3 m;
    m.Scale(2.0, 3.0).Translate(100.0, -1.0);
    EXPECT_EQ(&polygon.Transform(m), &polygon);
    EXPECT_EQ(Text(PointsOf(polygon)), "(100, -1) (120, -1) (120, 29)");
    EXPECT_FALSE(polygon.BoundsValid());

    std::mt19937 random(51);
    Points const points = RandomPoints(random, 50, -1000, 1000);
    Polygon turned = Open(points);
    CMatrix3x3 rotation;
    rotation.Rotate(0.7, TPoint<double>(3, 4)).Shear(0.1, 0.2);
    turned.Transform(rotation);
    for (std::size_t i = 0; i < points.size(); ++i) {
        TPoint<double> expected = points[i];
        expected.Transform(rotation);
        EXPECT_EQ(Text(turned.GetPt(static_cast<long>(i))), Text(expected));
    }

    Polygon empty; // no vertex, so none is stored
    empty.CalcBounds();
    empty.Transform(m);
    EXPECT_TRUE(empty.BoundsValid());
}

// Edges

TEST_F(PointListPolygon, EdgesRunFromVertexToVertexAndBack) {
    for (Polygon const& polygon : {Chain(), Closed({{0, 0}, {10, 0}, {10, 10}})}) {
        EXPECT_EQ(Text(polygon.GetEdge(0)), "(0, 0)-(10, 0)");
        EXPECT_EQ(Text(polygon.GetEdge(1)), "(10, 0)-(10, 10)");
        EXPECT_EQ(Text(polygon.GetEdge(2)), "(10, 10)-(0, 0)");
        EXPECT_EQ(polygon.LastGeometryEdge(), 2);
        EXPECT_EQ(polygon.LastEdge(), polygon.Closed() ? 2 : 1);
        TLine<double> line;
        polygon.GetEdge(1, line);
        EXPECT_EQ(Text(line), "(10, 0)-(10, 10)");
        TPoint<double> a;
        TPoint<double> b;
        polygon.GetEdge(2, a, b);
        EXPECT_EQ(Text(a), "(10, 10)");
        EXPECT_EQ(Text(b), "(0, 0)");
    }
    EXPECT_EQ(Text(Open({{3, 4}}).GetEdge(0)), "(3, 4)-(3, 4)");
}

TEST_F(PointListPolygon, GetEdgeMayStoreIntoItsOwnVertices) {
    Polygon const polygon = Chain();
    TPoint<double> end;
    polygon.GetEdge(0, Record(polygon).mPoints[1], end);
    EXPECT_EQ(Text(end), "(10, 0)"); // read before anything was written
    EXPECT_EQ(Text(PointsOf(polygon)), "(0, 0) (0, 0) (10, 10)");
    TPoint<double> start;
    polygon.GetEdge(1, start, Record(polygon).mPoints[1]);
    EXPECT_EQ(Text(start), "(0, 0)");
    EXPECT_EQ(Text(PointsOf(polygon)), "(0, 0) (10, 10) (10, 10)");
}

TEST_F(PointListPolygon, LengthCountsTheClosingEdgeWhenClosed) {
    EXPECT_EQ(Chain().Length(), 20.0);
    EXPECT_EQ(Square().Length(), 40.0);
    EXPECT_EQ(Open({{0, 0}, {10, 0}, {10, 10}, {0, 10}}).Length(), 30.0);
    EXPECT_EQ(Open({{0, 0}, {3, 4}}).Length(), 5.0);
    EXPECT_EQ(Closed({{0, 0}, {3, 4}}).Length(), 10.0);
    EXPECT_EQ(Open({{3, 4}}).Length(), 0.0);
    EXPECT_EQ(Closed({{3, 4}}).Length(), 0.0);
    EXPECT_EQ(Closed({}).Length(), 0.0);
    EXPECT_EQ(Open({{0, 0}, {1e200, 0}}).Length(), 1e200); // measured by hypot
    EXPECT_EQ(Open({{-kHuge, 0}, {kHuge, 0}}).Length(), kInf);
    EXPECT_EQ(Open({{0, 0}, {kInf, 0}}).Length(), kInf);
    EXPECT_TRUE(std::isnan(Open({{0, 0}, {kNaN, 0}}).Length()));
}

// Bounds

TEST_F(PointListPolygon, BoundsAreComputedOnceAndKept) {
    Polygon const polygon = Open({{3, -4}, {-1, 2}, {0, 0}});
    EXPECT_FALSE(polygon.BoundsValid());
    EXPECT_EQ(Text(polygon.Bounds()), "[-1, -4, 3, 2]");
    EXPECT_TRUE(polygon.BoundsValid());
    EXPECT_EQ(Record(polygon).mBoundsValid, 1);
    Record(polygon).mBounds = TRect<double>(5, 6, 7, 8); // kept: not computed again
    EXPECT_EQ(Text(polygon.Bounds()), "[5, 6, 7, 8]");
    polygon.CalcBounds(); // always computes
    EXPECT_EQ(Text(polygon.Bounds()), "[-1, -4, 3, 2]");
    EXPECT_EQ(Text(Polygon().Bounds()), "[0, 0, 0, 0]");
}

TEST_F(PointListPolygon, InvalBoundsOnlyClearsTheFlag) {
    Polygon polygon = Square();
    polygon.CalcBounds();
    EXPECT_EQ(&polygon.InvalBounds(), &polygon);
    EXPECT_FALSE(polygon.BoundsValid());
    EXPECT_EQ(Text(Record(polygon).mBounds), "[0, 0, 10, 10]");
}

TEST_F(PointListPolygon, AppendKeepsBoundsThatWereCurrent) {
    std::function<void(Polygon&)> const renewals[] = {
        [](Polygon& polygon) { polygon.InvalBounds(); },
        [](Polygon& polygon) { polygon.SetPt(0, TPoint<double>(0, 0)); },
        [](Polygon& polygon) { polygon.Transform(CMatrix3x3()); },
    };
    for (auto const& renew : renewals) {
        Polygon polygon = Square();
        EXPECT_EQ(Text(polygon.Bounds()), "[0, 0, 10, 10]");
        polygon.Append(TPoint<double>(50, 60), true);
        polygon.AppendUnique(TPoint<double>(-50, 60));
        EXPECT_TRUE(polygon.BoundsValid());
        EXPECT_EQ(Text(polygon.Bounds()), "[0, 0, 10, 10]");
        EXPECT_FALSE(polygon.Contains(TPoint<double>(20, 40)));
        renew(polygon);
        EXPECT_EQ(Text(polygon.Bounds()), "[-50, 0, 50, 60]");
        EXPECT_TRUE(polygon.Contains(TPoint<double>(20, 40)));
    }
}

TEST_F(PointListPolygon, BoundsTakeTheFirstVertexFirstAndForgetAnOriginThatLeads) {
    // While the bounds are still null, a vertex at the origin leaves them null.
    EXPECT_EQ(Text(Open({{0, 0}, {5, 5}, {7, 7}}).Bounds()), "[5, 5, 7, 7]");
    EXPECT_EQ(Text(Open({{5, 5}, {7, 7}, {0, 0}}).Bounds()), "[0, 0, 7, 7]");
    EXPECT_EQ(Text(Open({{0, 0}}).Bounds()), "[0, 0, 0, 0]");
    EXPECT_EQ(Text(Open({{kNaN, 5}, {1, 2}}).Bounds()), "[nan, 2, nan, 5]");
    EXPECT_EQ(Text(Open({{1, 2}, {kNaN, 5}}).Bounds()), "[1, 2, 1, 5]");
    EXPECT_EQ(Text(Open({{-kInf, kHuge}, {kInf, -kHuge}}).Bounds()),
              Text(TRect<double>(-kInf, -kHuge, kInf, kHuge)));

    // So containment misses what lies only in the forgotten part.
    Polygon const triangle = Open({{0, 0}, {10, 5}, {10, 10}});
    EXPECT_TRUE(PlainContains(PointsOf(triangle), TPoint<double>(4, 3)));
    EXPECT_FALSE(triangle.Contains(TPoint<double>(4, 3)));
}

// Containment

TEST_F(PointListPolygon, ContainsCountsTheEdgesOfASquareHalfOpen) {
    Points const corners = {{0, 0}, {0, 10}, {10, 10}, {10, 0}};
    for (Polygon const& square : {Closed(corners), Open(corners)}) { // the closing edge always
        EXPECT_TRUE(square.Contains(TPoint<double>(5, 5)));
        EXPECT_FALSE(square.Contains(TPoint<double>(0, 5)));  // edge of smaller h
        EXPECT_TRUE(square.Contains(TPoint<double>(10, 5)));  // edge of larger h
        EXPECT_TRUE(square.Contains(TPoint<double>(5, 0)));   // edge of smaller v
        EXPECT_FALSE(square.Contains(TPoint<double>(5, 10))); // edge of larger v
        EXPECT_FALSE(square.Contains(TPoint<double>(0, 0)));
        EXPECT_TRUE(square.Contains(TPoint<double>(10, 0)));
        EXPECT_FALSE(square.Contains(TPoint<double>(10, 10)));
        for (TPoint<double> const& outside :
             {TPoint<double>(-1, 5), TPoint<double>(11, 5), TPoint<double>(5, -1),
              TPoint<double>(5, 11), TPoint<double>(kNaN, 5), TPoint<double>(5, kNaN),
              TPoint<double>(kInf, 5), TPoint<double>(5, -kInf)}) {
            EXPECT_FALSE(square.Contains(outside)) << Text(outside);
        }
    }
    EXPECT_FALSE(Polygon().Contains(TPoint<double>(0, 0)));
    EXPECT_FALSE(Open({{5, 5}}).Contains(TPoint<double>(5, 5)));
}

TEST_F(PointListPolygon, APointOutsideTheBoundsIsOutsideWithoutALookAtTheEdges) {
    Polygon const square = Square();
    square.CalcBounds();
    Record(square).mBounds = TRect<double>(0, 0, 4, 4);
    EXPECT_TRUE(square.Contains(TPoint<double>(4, 4)));
    EXPECT_FALSE(square.Contains(TPoint<double>(5, 5)));
    square.CalcBounds();
    EXPECT_TRUE(square.Contains(TPoint<double>(5, 5)));
}

TEST_F(PointListPolygon, ContainsAgreesWithTheRuleWrittenOut) {
    std::mt19937 random(52);
    double const specials[] = {0,      -0.0, 1,     -1,   2.5,    kHuge,
                               -kHuge, kInf, -kInf, kNaN, 5e-324, 1e-308};
    long inside = 0;
    for (int round = 0; round < 4000; ++round) {
        bool const special = round % 4 == 0;
        auto const next = [&] {
            return special && random() % 3 == 0 ? specials[random() % std::size(specials)]
                                                : static_cast<double>(random() % 9) - 4.0;
        };
        Points points;
        for (unsigned long n = random() % 9; n > 0; --n) {
            double const h = next();
            points.emplace_back(h, next());
        }
        Polygon const polygon = round % 2 == 0 ? Open(points) : Closed(points);
        for (int k = 0; k < 20; ++k) {
            double const h = next() / (k % 2 == 0 ? 1.0 : 2.0);
            TPoint<double> const p(h, next());
            bool const expected = polygon.Bounds().Contains(p) && PlainContains(points, p);
            ASSERT_EQ(polygon.Contains(p), expected) << Text(points) << " " << Text(p);
            inside += expected ? 1 : 0;
        }
    }
    EXPECT_GT(inside, 5000);
}

TEST_F(PointListPolygon, BothPolygonKindsContainTheSamePoints) {
    std::mt19937 random(53);
    for (int round = 0; round < 100; ++round) {
        Polygon const polygon = Closed(RandomPoints(random, 3 + random() % 20, 1, 20));
        CFPolygonRef ref = polygon;
        for (TPoint<double> const& p : RandomPoints(random, 100, 0, 21)) {
            EXPECT_EQ(polygon.Contains(p), ref.Contains(p)) << Text(p);
        }
        ref.Dispose();
    }
}

// Conversion

TEST_F(PointListPolygon, AClosedPolygonConvertsWithItsFirstVertexRepeated) {
    CFPolygonRef ref = Square();
    EXPECT_EQ(Text(PointsOf(ref)), "(0, 0) (10, 0) (10, 10) (0, 10) (0, 0)");
    EXPECT_TRUE(ref.Closed());
    EXPECT_FALSE(ref.BoundsValid());
    ref.Dispose();

    // Also where the last vertex is the first already.
    CFPolygonRef repeated = Closed({{1, 1}, {2, 1}, {1, 1}});
    EXPECT_EQ(Text(PointsOf(repeated)), "(1, 1) (2, 1) (1, 1) (1, 1)");
    repeated.Dispose();
}

TEST_F(PointListPolygon, AnOpenPolygonConvertsAsItIs) {
    CFPolygonRef ref = Chain();
    EXPECT_EQ(Text(PointsOf(ref)), "(0, 0) (10, 0) (10, 10)");
    EXPECT_FALSE(ref.Closed());
    ref.Dispose();
}

TEST_F(PointListPolygon, AnEmptyPolygonConvertsToAnEmptyOne) {
    for (bool const closed : {false, true}) {
        CFPolygonRef ref = closed ? Closed({}) : Open({});
        ASSERT_NE(ref.mRef, nullptr);
        EXPECT_EQ(ref.DataSize(), 44);
        EXPECT_EQ(ref.Closed(), closed);
        ref.Dispose();
    }
    Polygon const square = Square();
    trammel_detail::FailNextAllocations(1);
    EXPECT_EQ(static_cast<CFPolygonRef>(square).mRef, nullptr);
}

TEST_F(PointListPolygon, AHandlePolygonConvertsToAnOpenOneWithoutCurrentBounds) {
    CFPolygonRef ref;
    ref.CFPolygonCreate(Points{{1, 2}, {-3, 4}, {5, 60}});
    ref.SetClosed(true);
    Polygon const polygon(ref);
    EXPECT_EQ(Text(PointsOf(polygon)), "(1, 2) (-3, 4) (5, 60)");
    EXPECT_EQ(Contents(polygon).size(), 88U);
    EXPECT_FALSE(polygon.Closed());
    EXPECT_FALSE(polygon.BoundsValid());
    EXPECT_EQ(Record(polygon).mReserved, 0);
    EXPECT_EQ(Text(Record(polygon).mBounds), "[-3, 2, 5, 60]");
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (-3, 4) (5, 60)");
    ref.Dispose();

    EXPECT_EQ(Polygon(CFPolygonRef()).LastIndex(), -1);
    EXPECT_FALSE(Polygon(CFPolygonRef()).Closed());
    CFPolygonRef empty(true);
    EXPECT_EQ(Polygon(empty).LastIndex(), -1);
    empty.Dispose();
}

TEST_F(PointListPolygon, GoesToAHandlePolygonAndBackUnchanged) {
    std::mt19937 random(54);
    double const specials[] = {kNaN, kInf, -kInf, -0.0, kHuge, 5e-324};
    for (int round = 0; round < 200; ++round) {
        Points points = RandomPoints(random, random() % 30, -1e6, 1e6);
        for (TPoint<double>& p : points) {
            if (random() % 8 == 0) {
                p.h = specials[random() % std::size(specials)];
            }
        }
        CFPolygonRef open = Open(points);
        EXPECT_EQ(Text(PointsOf(Polygon(open))), Text(points));
        open.Dispose();
        CFPolygonRef closed = Closed(points);
        if (!points.empty()) {
            points.push_back(points.front());
        }
        EXPECT_EQ(Text(PointsOf(Polygon(closed))), Text(points));
        closed.Dispose();
    }
}

// Along the polygon

TEST_F(PointListPolygon, TPtWalksTheEdges) {
    Polygon const chain = Chain();
    EXPECT_EQ(Text(chain.TPt(0.0)), "(0, 0)");
    EXPECT_EQ(Text(chain.TPt(-0.0)), "(0, 0)");
    EXPECT_EQ(Text(chain.TPt(0.25)), "(5, 0)");
    EXPECT_EQ(Text(chain.TPt(0.5)), "(10, 0)");
    EXPECT_EQ(Text(chain.TPt(0.75)), "(10, 5)");
    EXPECT_EQ(Text(chain.TPt(1.0)), "(10, 10)");
}

TEST_F(PointListPolygon, TPtWalksTheClosingEdgeButEndsAtTheLastVertex) {
    Polygon const square = Square();
    EXPECT_EQ(Text(square.TPt(0.5)), "(10, 10)");
    EXPECT_EQ(Text(square.TPt(0.75)), "(0, 10)");
    EXPECT_EQ(Text(square.TPt(0.9)), "(0, 4)");
    EXPECT_EQ(Text(square.TPt(1.0)), "(0, 10)");
}

TEST_F(PointListPolygon, TPtIsNotLimited) {
    Polygon const chain = Chain();
    EXPECT_EQ(Text(chain.TPt(-0.5)), "(-10, 0)");
    EXPECT_EQ(Text(chain.TPt(1.5)), "(10, 10)");
    EXPECT_EQ(Text(chain.TPt(kInf)), "(10, 10)");
    EXPECT_EQ(Text(chain.TPt(kNaN)), "(10, 10)");
    EXPECT_EQ(Text(Square().TPt(1.5)), "(0, 10)");
}

TEST_F(PointListPolygon, TPtOnEdgesWithoutLength) {
    Polygon const doubled = Open({{0, 0}, {0, 0}, {10, 0}});
    EXPECT_EQ(Text(doubled.TPt(0.5)), "(5, 0)");
    EXPECT_EQ(Text(doubled.TPt(-0.5)), "(nan, nan)"); // -5 along an edge of length 0
    Polygon const point = Open({{3, 4}, {3, 4}});
    EXPECT_EQ(Text(point.TPt(0.0)), "(3, 4)");
    EXPECT_EQ(Text(point.TPt(0.5)), "(nan, nan)"); // 0 / 0
    EXPECT_EQ(Text(point.TPt(1.0)), "(3, 4)");
    // No edge at all.
    EXPECT_EQ(Text(Open({{3, 4}}).TPt(0.5)), "(3, 4)");
}

TEST_F(PointListPolygon, BuildLTableSumsTheOpenChain) {
    Table table;
    BuildLTable<double>(Square(), table);
    EXPECT_EQ(Text(table), "0 10 20 30"); // the closing edge is not in it
    Table diagonal;
    BuildLTable(Open({{0, 0}, {3, 4}, {3, 4}, {3, 16}}), diagonal);
    EXPECT_EQ(Text(diagonal), "0 5 5 17");
    Table one;
    BuildLTable(Open({{3, 4}}), one);
    EXPECT_EQ(Text(one), "0");
    Table none;
    BuildLTable(Polygon(), none);
    EXPECT_TRUE(none.empty());
    Table special; // measured by square root, which overflows where Length does not
    BuildLTable(Open({{0, 0}, {1e200, 0}, {1e200, kNaN}}), special);
    EXPECT_EQ(Text(special), "0 inf nan");
}

TEST_F(PointListPolygon, BuildLTableAppends) {
    Table table = {7};
    BuildLTable(Chain(), table);
    EXPECT_EQ(Text(table), "7 0 10 20");
    BuildLTable(Polygon(), table);
    EXPECT_EQ(Text(table), "7 0 10 20");
}

/// TPt with a table built within the call and with one kept by the caller.
std::string ByTable(Polygon const& polygon, double t) {
    Table table;
    BuildLTable(polygon, table);
    Table const before = table;
    std::string const kept = Text(polygon.TPt(t, &table));
    EXPECT_EQ(Text(table), Text(before)) << t;
    EXPECT_EQ(Text(polygon.TPt(t, nullptr)), kept) << t;
    return kept;
}

TEST_F(PointListPolygon, TPtByTableWalksTheOpenChain) {
    Polygon const chain = Chain();
    EXPECT_EQ(ByTable(chain, 0.25), "(5, 0)");
    EXPECT_EQ(ByTable(chain, 0.5), "(10, 0)");
    EXPECT_EQ(ByTable(chain, 0.75), "(10, 5)");
    EXPECT_EQ(ByTable(chain, 1.0), "(10, 10)");
    EXPECT_EQ(ByTable(Square(), 0.9), "(3, 10)");
    EXPECT_EQ(ByTable(Square(), 1.0), "(0, 10)");
    EXPECT_EQ(ByTable(Open({{1, 1}, {3, 1}}), 0.5), "(2, 1)");
}

TEST_F(PointListPolygon, TPtByTableIsLimitedToTheChain) {
    Polygon const chain = Chain();
    EXPECT_EQ(ByTable(chain, 1.5), "(10, 10)");
    EXPECT_EQ(ByTable(chain, kInf), "(10, 10)");
    EXPECT_EQ(ByTable(chain, -0.5), "(0, 0)");
    EXPECT_EQ(ByTable(chain, -kInf), "(0, 0)");
    EXPECT_EQ(ByTable(chain, 0.0), "(0, 0)");
    EXPECT_EQ(ByTable(chain, kNaN), "(nan, nan)");
}

TEST_F(PointListPolygon, TPtByTableTakesFractionsBelowOneTenThousandthAsTheStart) {
    Polygon const chain = Chain();
    EXPECT_EQ(ByTable(chain, 0.00005), "(0, 0)");
    EXPECT_EQ(ByTable(chain, std::nextafter(0.0001, 0.0)), "(0, 0)");
    double const h = 10.0 * ((20.0 * 0.0001) / 10.0);
    EXPECT_EQ(ByTable(chain, 0.0001), Text(TPoint<double>(h, 0))); // itself not
    EXPECT_GT(h, 0.0);
}

TEST_F(PointListPolygon, TPtByTableOnEdgesWithoutLength) {
    EXPECT_EQ(ByTable(Open({{0, 0}, {10, 0}, {10, 0}, {10, 10}}), 0.5), "(10, 0)");
    EXPECT_EQ(ByTable(Open({{3, 4}, {3, 4}}), 0.5), "(3, 4)");
    EXPECT_EQ(ByTable(Open({{3, 4}, {3, 4}, {3, 4}, {3, 4}}), 1.0), "(3, 4)");
    for (double const t : {-1.0, 0.0, 0.5, 1.0, 2.0, kNaN, kInf}) {
        EXPECT_EQ(ByTable(Open({{3, 4}}), t), "(3, 4)") << t;
    }
    EXPECT_EQ(ByTable(Open({{0, 0}, {1e200, 0}}), 0.5), "(nan, nan)"); // the table holds infinity
}

TEST_F(PointListPolygon, TPtSearchesAShorterTableAsFarAsItReaches) {
    Polygon const chain = Chain();
    Table two = {0, 10};
    EXPECT_EQ(Text(chain.TPt(0.5, &two)), "(5, 0)");
    EXPECT_EQ(Text(chain.TPt(1.0, &two)), "(10, 0)");
    Table one = {0};
    Table none;
    for (double const t : {0.0, 0.5, 1.0, kNaN}) {
        EXPECT_EQ(Text(chain.TPt(t, &one)), "(0, 0)");
        EXPECT_EQ(Text(chain.TPt(t, &none)), "(0, 0)");
    }
    // Entries beyond the vertices are never met.
    Table four = {0, 10, 20, 1000};
    EXPECT_EQ(Text(chain.TPt(0.75, &four)), "(10, 5)");
    EXPECT_EQ(Text(chain.TPt(1.0, &four)), "(10, 10)");
}

TEST_F(PointListPolygon, TPtTakesTheTableAsItStands) {
    Polygon const chain = Chain();
    Table other = {0, 5, 20}; // of other lengths: three quarters are 15, two thirds along edge 1
    EXPECT_EQ(Text(chain.TPt(0.75, &other)), Text(TPt(TPoint<double>(10, 0), TPoint<double>(10, 10),
                                                      (15.0 - 5.0) / (20.0 - 5.0))));
    // A vertex that the search meets from below is reached along the edge before it, with that
    // edge's rounding; one that it meets from above is returned as it is.
    Polygon const rough = Open({{0, 0}, {1e17, 0}, {0.25, 0}, {5, 0}, {6, 0}});
    Table even = {0, 1, 2, 3, 4};
    EXPECT_EQ(Text(rough.TPt(0.5, &even)), "(0, 0)");
    EXPECT_EQ(Text(rough.TPt(0.25, &even)), "(1e+17, 0)");

    std::mt19937 random(55);
    double const specials[] = {0, 1, -1, kInf, -kInf, kNaN, kHuge};
    for (int round = 0; round < 2000; ++round) { // whatever it holds, nothing outside is read
        Table table(random() % 8);
        for (double& entry : table) {
            entry = specials[random() % std::size(specials)];
        }
        chain.TPt(static_cast<double>(random() % 100) / 100.0, &table);
    }
}

TEST_F(PointListPolygon, BothFormsOfTPtAgreeOnOpenChains) {
    std::mt19937 random(56);
    for (int round = 0; round < 100; ++round) {
        Polygon const polygon = Open(RandomPoints(random, 2 + random() % 40, -100, 100));
        for (int k = 1; k <= 50; ++k) {
            double const t = k / 50.0;
            TPoint<double> const walked = polygon.TPt(t);
            TPoint<double> const searched = polygon.TPt(t, nullptr);
            EXPECT_NEAR(walked.h, searched.h, 1e-9);
            EXPECT_NEAR(walked.v, searched.v, 1e-9);
        }
    }
}

TEST_F(PointListPolygon, CalcPtFromEndMeasuresFromEitherEnd) {
    Polygon const chain = Chain();
    EXPECT_EQ(Text(chain.CalcPtFromEnd(5, true)), "(5, 0)");
    EXPECT_EQ(Text(chain.CalcPtFromEnd(5, false)), "(10, 5)");
    EXPECT_EQ(Text(chain.CalcPtFromEnd(0, true)), "(0, 0)");
    EXPECT_EQ(Text(chain.CalcPtFromEnd(0, false)), "(10, 10)");
    EXPECT_EQ(Text(chain.CalcPtFromEnd(20, true)), "(10, 10)");
    EXPECT_EQ(Text(chain.CalcPtFromEnd(25, true)), "(10, 10)");
    EXPECT_EQ(Text(chain.CalcPtFromEnd(-5, true)), "(0, 0)");
    EXPECT_EQ(Text(chain.CalcPtFromEnd(25, false)), "(0, 0)");
    EXPECT_EQ(Text(chain.CalcPtFromEnd(kNaN, true)), "(nan, nan)");
}

TEST_F(PointListPolygon, CalcPtFromEndDividesByTheClosedLengthAndWalksTheOpenChain) {
    Polygon const square = Square(); // 40 around, 30 along the chain
    EXPECT_EQ(Text(square.CalcPtFromEnd(20, true)), "(10, 5)");
    EXPECT_EQ(Text(square.CalcPtFromEnd(10, true)), "(7.5, 0)");
    EXPECT_EQ(Text(square.CalcPtFromEnd(10, false)), "(7.5, 10)");
}

TEST_F(PointListPolygon, CalcPtFromEndOfAPolygonWithoutLength) {
    Polygon const point = Open({{3, 4}, {3, 4}});
    EXPECT_EQ(Text(point.CalcPtFromEnd(5, true)), "(3, 4)");
    EXPECT_EQ(Text(point.CalcPtFromEnd(5, false)), "(3, 4)");
    EXPECT_EQ(Text(point.CalcPtFromEnd(0, true)), "(3, 4)");
    EXPECT_EQ(Text(Open({{3, 4}}).CalcPtFromEnd(5, true)), "(3, 4)");
    Polygon const bad = Open({{3, 4}, {kNaN, 4}}); // a length of NaN is not 0
    EXPECT_EQ(Text(bad.CalcPtFromEnd(5, true)), "(nan, nan)");
}

// Clipping

TEST_F(PointListPolygon, PointSortOrdersByHOrByV) {
    TPoint<double> const a(1, 5);
    TPoint<double> const b(2, 0);
    EXPECT_TRUE(PointSort(true).mByH);
    EXPECT_FALSE(PointSort(false).mByH);
    EXPECT_TRUE(PointSort(true)(a, b));
    EXPECT_FALSE(PointSort(true)(b, a));
    EXPECT_TRUE(PointSort(false)(b, a));
    EXPECT_FALSE(PointSort(false)(a, b));
    // The other coordinate decides between equals.
    EXPECT_TRUE(PointSort(true)(TPoint<double>(1, 2), TPoint<double>(1, 3)));
    EXPECT_FALSE(PointSort(true)(TPoint<double>(1, 3), TPoint<double>(1, 2)));
    EXPECT_TRUE(PointSort(false)(TPoint<double>(2, 1), TPoint<double>(3, 1)));
    EXPECT_FALSE(PointSort(false)(TPoint<double>(3, 1), TPoint<double>(2, 1)));
    for (bool const byH : {false, true}) {
        EXPECT_FALSE(PointSort(byH)(a, a));
        EXPECT_FALSE(PointSort(byH)(TPoint<double>(0, 0), TPoint<double>(-0.0, -0.0)));
        EXPECT_TRUE(PointSort(byH)(TPoint<double>(-kInf, -kInf), TPoint<double>(kInf, kInf)));
    }
    // A NaN counts as different and comes before nothing.
    EXPECT_FALSE(PointSort(true)(TPoint<double>(kNaN, 1), TPoint<double>(1, 2)));
    EXPECT_FALSE(PointSort(true)(TPoint<double>(1, 1), TPoint<double>(kNaN, 2)));
    EXPECT_FALSE(PointSort(false)(TPoint<double>(1, kNaN), TPoint<double>(2, 1)));
}

std::vector<TLine<double>> Clip(Polygon const& polygon, double h0, double v0, double h1,
                                double v1) {
    return polygon.Clip(TLine<double>(TPoint<double>(h0, v0), TPoint<double>(h1, v1)));
}

TEST_F(PointListPolygon, ClipCutsALineIntoThePiecesInside) {
    Polygon const square = Square();
    EXPECT_EQ(Text(Clip(square, -5, 5, 15, 5)), "(0, 5)-(10, 5)");
    EXPECT_EQ(Text(Clip(square, 15, 5, -5, 5)), "(0, 5)-(10, 5)"); // sorted
    EXPECT_EQ(Text(Clip(square, 5, 15, 5, -5)), "(5, 0)-(5, 10)"); // by v where it is steep
    EXPECT_EQ(Text(Clip(square, 8, 5, 2, 5)), "(2, 5)-(8, 5)");    // wholly inside
    EXPECT_EQ(Text(Clip(square, 2, 8, 8, 2)), "(8, 2)-(2, 8)");    // at 45 degrees by v
    EXPECT_EQ(Text(Clip(square, 2, 7, 8, 2)), "(2, 7)-(8, 2)");    // flatter by h
    EXPECT_EQ(Text(Clip(square, 5, 5, 15, 5)), "(5, 5)-(10, 5)");
    EXPECT_EQ(Text(Clip(square, -5, 12, 15, 12)), "");
    EXPECT_EQ(Text(Clip(square, 11, 1, 12, 2)), "");
}

TEST_F(PointListPolygon, ClipFindsEveryPieceAndTheClosingEdge) {
    Points const shape = {{1, 1}, {3, 1}, {3, 9}, {7, 9}, {7, 1}, {9, 1}, {9, 11}, {1, 11}};
    for (Polygon const& polygon : {Open(shape), Closed(shape)}) {
        EXPECT_EQ(Text(Clip(polygon, 0, 5, 10, 5)), "(1, 5)-(3, 5) (7, 5)-(9, 5)");
        EXPECT_EQ(Text(Clip(polygon, 2, 5, 8, 5)), "(2, 5)-(3, 5) (7, 5)-(8, 5)");
        EXPECT_EQ(Text(Clip(polygon, 0, 10, 10, 10)), "(1, 10)-(9, 10)");
        EXPECT_EQ(Text(Clip(polygon, 4, 5, 6, 5)), "");
    }
}

TEST_F(PointListPolygon, ClipAlongEdgesAndThroughVertices) {
    Polygon const square = Square();
    EXPECT_EQ(Text(Clip(square, -5, 0, 15, 0)), "(0, 0)-(10, 0)"); // the edge of smaller v is in
    EXPECT_EQ(Text(Clip(square, -5, 10, 15, 10)), "");
    EXPECT_EQ(Text(Clip(square, -5, -5, 15, 15)), "(0, 0)-(10, 10)");
    // Touches the vertex (10, 0), which both its edges find and which counts as inside.
    EXPECT_EQ(Text(Clip(square, 5, -5, 15, 5)), "(10, 0)-(10, 0)");
    // Touches (0, 10), which does not.
    EXPECT_EQ(Text(Clip(square, -5, 5, 5, 15)), "");
}

TEST_F(PointListPolygon, ClipOfALineWithoutLength) {
    EXPECT_EQ(Text(Clip(Square(), 5, 5, 5, 5)), "(5, 5)-(5, 5)");
    EXPECT_EQ(Text(Clip(Square(), 50, 5, 50, 5)), "");
}

TEST_F(PointListPolygon, ClipOfLinesWithoutNumbersGivesNoPieces) {
    for (Polygon const& polygon : {Square(), Polygon(), Open({{5, 5}})}) {
        EXPECT_EQ(Text(Clip(polygon, kNaN, 5, 15, 5)), "");
        EXPECT_EQ(Text(Clip(polygon, -5, kNaN, 15, 5)), "");
        EXPECT_EQ(Text(Clip(polygon, -5, 5, kNaN, 5)), "");
        EXPECT_EQ(Text(Clip(polygon, -5, 5, 15, kNaN)), "");
        EXPECT_EQ(Text(Clip(polygon, -kInf, 5, kInf, 5)), "");
        EXPECT_EQ(Text(Clip(polygon, -kInf, -kInf, kInf, kInf)), "");
    }
    EXPECT_EQ(Text(Clip(Polygon(), -5, 5, 15, 5)), "");
    EXPECT_EQ(Text(Clip(Open({{5, 5}, {kNaN, 5}, {5, 9}, {kInf, kHuge}}), -5, 6, 15, 6)), "");
}

TEST_F(PointListPolygon, ThePiecesOfAClippedLineLieInsideInOrder) {
    std::mt19937 random(57);
    long pieces = 0;
    for (int round = 0; round < 200; ++round) {
        Polygon const polygon = Closed(RandomPoints(random, 3 + random() % 20, 1, 100));
        Points const ends = RandomPoints(random, 2, -20, 120);
        TLine<double> const line(ends[0], ends[1]);
        PointSort const before(std::abs(line.Slope()) < 1.0);
        double inside = 0.0;
        TPoint<double> last(-1000, -1000);
        for (TLine<double> const& piece : polygon.Clip(line)) {
            EXPECT_TRUE(polygon.Contains(piece.MidPt()));
            EXPECT_FALSE(before(piece.mEnd, piece.mStart));
            EXPECT_FALSE(before(piece.mStart, last));
            last = piece.mEnd;
            EXPECT_LT(line.Distance(piece.mStart), 1e-6);
            EXPECT_LT(line.Distance(piece.mEnd), 1e-6);
            inside += piece.Length();
            ++pieces;
        }
        // The same length as by many small steps.
        int const steps = 5000;
        int hits = 0;
        for (int k = 0; k < steps; ++k) {
            hits += polygon.Contains(line.TPt((k + 0.5) / steps)) ? 1 : 0;
        }
        EXPECT_NEAR(inside, line.Length() * hits / steps, 0.01 + line.Length() * 22 / steps);
    }
    EXPECT_GT(pieces, 200);
}

TEST_F(PointListPolygon, ClippingDoesNotDependOnTheDirectionOfTheLine) {
    std::mt19937 random(58);
    for (int round = 0; round < 300; ++round) {
        Polygon const polygon = Closed(RandomPoints(random, 3 + random() % 10, 1, 100));
        Points const ends = RandomPoints(random, 2, -20, 120);
        auto const forth = polygon.Clip(TLine<double>(ends[0], ends[1]));
        auto const back = polygon.Clip(TLine<double>(ends[1], ends[0]));
        ASSERT_EQ(forth.size(), back.size());
        for (std::size_t i = 0; i < forth.size(); ++i) {
            EXPECT_NEAR(forth[i].mStart.h, back[i].mStart.h, 1e-6);
            EXPECT_NEAR(forth[i].mEnd.v, back[i].mEnd.v, 1e-6);
        }
    }
}

// Special values, sizes and memory

TEST_F(PointListPolygon, SpecialCoordinatesPassThroughEveryOperation) {
    double const specials[] = {0, -0.0, kHuge, -kHuge, kInf, -kInf, kNaN, 5e-324};
    for (double const x : specials) {
        for (double const y : specials) {
            TPoint<double> const p(x, y);
            Polygon polygon = Closed({{1, 2}, {x, y}, {y, x}, {3, 4}});
            polygon.Length();
            polygon.Bounds();
            polygon.Contains(p);
            for (double const t : {-1.0, 0.0, 0.3, 1.0, x}) {
                polygon.TPt(t);
                polygon.TPt(t, nullptr);
                polygon.CalcPtFromEnd(t, true);
                polygon.CalcPtFromEnd(t, false);
            }
            polygon.Clip(TLine<double>(p, TPoint<double>(3, 5)));
            Clip(polygon, 0, 0, 5, 5);
            CMatrix3x3 m;
            m.Scale(x, y).Translate(y, x);
            polygon.Transform(m);
            polygon.SetPt(2, p);
            EXPECT_EQ(Text(polygon.GetPt(2)), Text(p));
            EXPECT_EQ(polygon.LastIndex(), 3);
        }
    }
}

TEST_F(PointListPolygon, AppendingManyVerticesReallocatesSeldom) {
    Polygon polygon;
    long const before = trammel_detail::BlockReallocationCount();
    for (int i = 0; i < 100000; ++i) {
        polygon.AppendUnique(TPoint<double>(i, 1));
    }
    EXPECT_LE(trammel_detail::BlockReallocationCount() - before, 40);
    EXPECT_EQ(polygon.LastIndex(), 99999);
    EXPECT_EQ(polygon.Length(), 99999.0);
    EXPECT_EQ(Text(polygon.TPt(0.5, nullptr)), "(49999.5, 1)");
}

TEST_F(PointListPolygon, ShortMemoryForATableIsTheStandardException) {
    Polygon const polygon = Chain();
    Table table;
    {
        trammel_test::ShortMemory const none(0);
        EXPECT_THROW(BuildLTable(polygon, table), std::bad_alloc);
        EXPECT_THROW(polygon.TPt(0.5, nullptr), std::bad_alloc);
    }
    EXPECT_EQ(Text(PointsOf(polygon)), Text(PointsOf(Chain())));
}

// Assertions

TEST_F(PointListPolygonDeathTest, GetPtAssertsTheIndex) {
    Polygon const chain = Chain();
    EXPECT_ASSERTION(chain.GetPt(-1), kNegative, "GetPt");
    EXPECT_ASSERTION(chain.GetPt(LONG_MIN), kNegative, "GetPt");
    EXPECT_ASSERTION(chain.GetPt(3), kBeyond, "GetPt");
    EXPECT_ASSERTION(chain.GetPt(LONG_MAX), kBeyond, "GetPt");
    EXPECT_ASSERTION(Polygon().GetPt(0), kBeyond, "GetPt");
    EXPECT_ASSERTION(Polygon().GetPt(-1), kNegative, "GetPt"); // the first of the two
    EXPECT_ASSERTION(WithoutStorage().GetPt(0), kBeyond, "GetPt");
}

TEST_F(PointListPolygonDeathTest, SetPtAssertsNegativeIndexesOnly) {
    Polygon chain = Chain();
    EXPECT_ASSERTION(chain.SetPt(-1, TPoint<double>()), kNegative, "SetPt");
    EXPECT_ASSERTION(chain.SetPt(LONG_MIN, TPoint<double>()), kNegative, "SetPt");
    EXPECT_ASSERTION(WithoutStorage().SetPt(-1, TPoint<double>()), kNegative, "SetPt");
}

TEST_F(PointListPolygonDeathTest, GetEdgeAssertsTheIndexAndThroughGetPtItsVertices) {
    Polygon const chain = Chain();
    TPoint<double> a;
    TPoint<double> b;
    TLine<double> line;
    EXPECT_ASSERTION(chain.GetEdge(-1), kNegative, "GetEdge");
    EXPECT_ASSERTION(chain.GetEdge(-1, line), kNegative, "GetEdge");
    EXPECT_ASSERTION(chain.GetEdge(-1, a, b), kNegative, "GetEdge");
    EXPECT_ASSERTION(chain.GetEdge(3), kBeyond, "GetPt");
    EXPECT_ASSERTION(chain.GetEdge(LONG_MAX), kBeyond, "GetPt");
    EXPECT_ASSERTION(Polygon().GetEdge(0), kBeyond, "GetPt");
    EXPECT_ASSERTION(Polygon().GetEdge(-1), kNegative, "GetEdge");
}

TEST_F(PointListPolygonDeathTest, PointsAlongAPolygonWithoutVerticesAssert) {
    Table table;
    Table longTable = {0, 10, 20};
    Polygon const empty;
    EXPECT_ASSERTION(empty.TPt(0.0), kBeyond, "GetPt");
    EXPECT_ASSERTION(empty.TPt(1.0), kNegative, "GetPt");
    EXPECT_ASSERTION(empty.TPt(0.5), kNegative, "GetPt");
    EXPECT_ASSERTION(empty.TPt(0.0, nullptr), kBeyond, "GetPt");
    EXPECT_ASSERTION(empty.TPt(0.5, nullptr), kBeyond, "GetPt");
    EXPECT_ASSERTION(empty.TPt(0.5, &table), kBeyond, "GetPt");
    EXPECT_ASSERTION(empty.TPt(0.5, &longTable), kBeyond, "GetPt");
    EXPECT_ASSERTION(empty.CalcPtFromEnd(1.0, true), kBeyond, "GetPt");
    EXPECT_ASSERTION(WithoutStorage().TPt(0.0), kBeyond, "GetPt");
}

} // namespace
