// SPDX-License-Identifier: MIT

#include "TPoly.h"

#include "CFPolygonRef.h"
#include "CMatrix3x3.h"
#include "Handles.h"
#include "PointListSupport.h"
#include "PolygonSupport.h"
#include "ShortMemory.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <csignal>
#include <cstddef>
#include <functional>
#include <iterator>
#include <new>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using trammel_test::Chain;
using trammel_test::Clip;
using trammel_test::Closed;
using trammel_test::ClosedSquare;
using trammel_test::Contents;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Open;
using trammel_test::PlainContains;
using trammel_test::PointListPolygon;
using trammel_test::PointsOf;
using trammel_test::RandomPoints;
using trammel_test::Record;
using trammel_test::Text;
using trammel_test::WithoutStorage;

using Points = std::vector<TPoint<double>>;
using Polygon = TPolygon<double>;
using Table = std::vector<double>;

std::string Report(char const* condition, char const* function) {
    return std::string("^Assertion failed: \\(") + condition + "\\), function " + function +
           ", file Sources/TPoly\\.cpp, line [0-9]+\\.\n$";
}

std::string const kNegative = "index >= 0";
std::string const kBeyond = "index <= LastIndex\\(\\)";

#define EXPECT_ASSERTION(statement, condition, function)                                           \
    EXPECT_EXIT(statement, ::testing::KilledBySignal(SIGABRT),                                     \
                Report((condition).c_str(), function))

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
    Polygon const other = ClosedSquare();
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
    Polygon target = ClosedSquare();
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
    Polygon assigned = ClosedSquare();
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
    EXPECT_EQ(ClosedSquare().Length(), 40.0);
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
    Polygon polygon = ClosedSquare();
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
        Polygon polygon = ClosedSquare();
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

    // So Contains misses the points that lie only in the forgotten part.
    Polygon const triangle = Open({{0, 0}, {10, 5}, {10, 10}});
    EXPECT_TRUE(PlainContains(PointsOf(triangle), TPoint<double>(4, 3)));
    EXPECT_FALSE(triangle.Contains(TPoint<double>(4, 3)));
}

// Conversion

TEST_F(PointListPolygon, AClosedPolygonConvertsWithItsFirstVertexRepeated) {
    CFPolygonRef ref = ClosedSquare();
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
    Polygon const square = ClosedSquare();
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
