// SPDX-License-Identifier: MIT

#include "CFPolygonRef.h"

#include "FPolygon.h"
#include "HandlePolygonSupport.h"
#include "Handles.h"
#include "PathObject.h"
#include "PolygonSupport.h"
#include "Records.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"
#include "UTrigonometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <functional>
#include <random>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using trammel_test::CachedPath;
using trammel_test::CachePath;
using trammel_test::Contents;
using trammel_test::HandlePolygon;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::PointsOf;
using trammel_test::Polygon;
using trammel_test::Record;
using trammel_test::Text;

using Points = std::vector<TPoint<double>>;

// Creation and lifetime

TEST_F(HandlePolygon, ReferencesAreNullOrEmptyOnDemand) {
    EXPECT_EQ(CFPolygonRef().mRef, nullptr);
    EXPECT_EQ(CFPolygonRef(false).mRef, nullptr);
    CFPolygonRef& ref = Keep(CFPolygonRef(true));
    EXPECT_TRUE(static_cast<bool>(ref));
    EXPECT_EQ(ref.DataSize(), 44);
    EXPECT_EQ(ref.LastIndex(), -1);
    EXPECT_EQ(ref.EdgeCount(), -2);
    EXPECT_EQ(ref.GeometryEdgeCount(), -1);
    EXPECT_FALSE(ref.Closed());
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[0, 0, 0, 0]");
    EXPECT_FALSE(ref.Contains(TPoint<double>(0, 0)));
    EXPECT_EQ(Contents(ref).substr(8), std::string(36, '\0'));
}

TEST_F(HandlePolygon, AReferenceIsAPlainPointer) {
    static_assert(sizeof(CFPolygonRef) == sizeof(void*));
    static_assert(std::is_trivially_copyable_v<CFPolygonRef>);
    static_assert(std::is_trivially_destructible_v<CFPolygonRef>);
    static_assert(!std::is_convertible_v<bool, CFPolygonRef>);
    static_assert(!std::is_convertible_v<int, CFPolygonRef>);
    static_assert(!std::is_polymorphic_v<CFPolygonRef>);
    CFPolygonRef& ref = Keep(CFPolygonRef(true));
    EXPECT_EQ(static_cast<void*>(static_cast<FPolygon**>(ref)), static_cast<void*>(ref.mRef));
    EXPECT_EQ(static_cast<FPolygon**>(CFPolygonRef()), nullptr);
    EXPECT_FALSE(static_cast<bool>(CFPolygonRef()));
}

TEST_F(HandlePolygon, CreatesThatManyPointsAtTheOrigin) {
    CFPolygonRef& ref = Keep(CFPolygonRef());
    ref.CFPolygonCreate(3);
    EXPECT_EQ(ref.DataSize(), 92);
    EXPECT_EQ(ref.LastIndex(), 2);
    EXPECT_EQ(Text(PointsOf(ref)), "(0, 0) (0, 0) (0, 0)");
    EXPECT_FALSE(ref.Closed());
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Contents(ref), std::string(92, '\0'));
}

TEST_F(HandlePolygon, ImpossibleNumbersOfPointsMakeNoBlock) {
    for (long const n : {-1L, -3L, LONG_MIN, LONG_MAX, LONG_MAX / 16, LONG_MAX / 16 - 2,
                         LONG_MIN / 16, ((LONG_MAX >> 3) + 1) + 1}) {
        CFPolygonRef ref;
        ref.CFPolygonCreate(n);
        EXPECT_EQ(ref.mRef, nullptr) << n;
        ref.Dispose();
    }
}

TEST_F(HandlePolygon, CreatesFromAListOfPoints) {
    CFPolygonRef& ref = Keep(CFPolygonRef());
    ref.CFPolygonCreate(Points{{1, 2}, {-3, 4.5}, {kInf, kNaN}});
    EXPECT_EQ(ref.DataSize(), 92);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (-3, 4.5) (inf, nan)");
    EXPECT_FALSE(ref.Closed());
    EXPECT_FALSE(ref.BoundsValid());
    CFPolygonRef& empty = Keep(CFPolygonRef());
    empty.CFPolygonCreate(Points());
    EXPECT_EQ(empty.DataSize(), 44);
}

TEST_F(HandlePolygon, CreatesFiveOpenPointsFromARectangle) {
    CFPolygonRef& ref = Keep(CFPolygonRef());
    ref.CFPolygonCreate(TRect<double>(1, 2, 5, 4), 0.0);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (5, 2) (5, 4) (1, 4) (1, 2)");
    EXPECT_EQ(ref.PolyPoints(4), ref.PolyPoints(0));
    EXPECT_EQ(ref.GeometryEdgeCount(), 3);
    EXPECT_FALSE(ref.Closed());
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_TRUE(ref.Contains(TPoint<double>(3, 3)));
    EXPECT_FALSE(ref.Contains(TPoint<double>(6, 3)));

    CFPolygonRef& negativeZero = Keep(CFPolygonRef());
    negativeZero.CFPolygonCreate(TRect<double>(0.1, 0.2, 0.3, 0.7), -0.0);
    EXPECT_EQ(Text(negativeZero.PolyPoints(2)), Text(TPoint<double>(0.3, 0.7)));
}

TEST_F(HandlePolygon, TurnsARectangleAboutItsCentre) {
    for (double const angle : {pi / 2.0, 0.1, -3.0, 5e-324, 1e308}) {
        CFPolygonRef& ref = Keep(CFPolygonRef());
        ref.CFPolygonCreate(TRect<double>(1, 2, 6, 4), angle);
        TPoint<double> const corners[] = {{1, 2}, {6, 2}, {6, 4}, {1, 4}, {1, 2}};
        for (long i = 0; i < 5; ++i) {
            TPoint<double> expected = corners[i];
            expected.Rotate(angle, TPoint<double>(3.5, 3));
            EXPECT_EQ(Text(ref.PolyPoints(i)), Text(expected)) << angle << " " << i;
        }
        EXPECT_FALSE(ref.Closed());
        EXPECT_FALSE(ref.BoundsValid());
    }
    CFPolygonRef& quarter = Keep(CFPolygonRef());
    quarter.CFPolygonCreate(TRect<double>(-2, -1, 2, 1), pi / 2.0);
    // (-2, -1) goes to (1, -2): from +h toward +v.
    EXPECT_NEAR(quarter.PolyPoints(0).h, 1.0, 1e-15);
    EXPECT_NEAR(quarter.PolyPoints(0).v, -2.0, 1e-15);
}

TEST_F(HandlePolygon, ANaNAngleTurnsARectangleIntoNaN) {
    CFPolygonRef& ref = Keep(CFPolygonRef());
    ref.CFPolygonCreate(TRect<double>(1, 2, 5, 4), kNaN);
    EXPECT_EQ(Text(PointsOf(ref)), "(nan, nan) (nan, nan) (nan, nan) (nan, nan) (nan, nan)");
}

TEST_F(HandlePolygon, CreatesFromTheBoundsInItsOwnBlock) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {5, 4}}));
    CFPolygonRef& first = Keep(ref);
    ref.CalcBounds();
    ref.CFPolygonCreate(Record(ref)->polyBBox, 0.0);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (5, 2) (5, 4) (1, 4) (1, 2)");
    EXPECT_NE(ref.mRef, first.mRef);
}

TEST_F(HandlePolygon, CreatingAnewLeavesTheOldBlockToThoseWhoShareIt) {
    CFPolygonRef& first = Keep(Polygon({{1, 2}}));
    CFPolygonRef& other = Keep(Polygon({{7, 8}, {9, 10}}));
    std::vector<std::function<void(CFPolygonRef&)>> const creators = {
        [](CFPolygonRef& r) { r.CFPolygonCreate(2); },
        [](CFPolygonRef& r) {
            r.CFPolygonCreate(Points{{3, 4}});
        },
        [](CFPolygonRef& r) { r.CFPolygonCreate(TRect<double>(1, 2, 3, 4), 0.5); },
        [&other](CFPolygonRef& r) { r.CFPolygonCreate(other); },
        [](CFPolygonRef& r) { r.CFPolygonCreate(r); },
    };
    for (auto const& create : creators) {
        CFPolygonRef ref(first);
        create(ref);
        ASSERT_NE(ref.mRef, nullptr);
        EXPECT_NE(ref.mRef, first.mRef);
        EXPECT_EQ(Text(PointsOf(first)), "(1, 2)");
        ref.Dispose();
    }
}

TEST_F(HandlePolygon, CopiesShareTheBlock) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {3, 4}}));
    CFPolygonRef const constructed(ref);
    CFPolygonRef const shared(ref, false);
    CFPolygonRef const fromHandle(static_cast<FPolygon**>(ref), false);
    CFPolygonRef assigned;
    assigned = ref;
    ref.Append(TPoint<double>(5, 6));
    for (CFPolygonRef const& each : {constructed, shared, fromHandle, assigned}) {
        EXPECT_EQ(each.mRef, ref.mRef);
        EXPECT_EQ(Text(PointsOf(each)), "(1, 2) (3, 4) (5, 6)");
    }
    CFPolygonRef& alias = assigned;
    assigned = alias;
    EXPECT_EQ(assigned.mRef, ref.mRef);
}

TEST_F(HandlePolygon, TheCopyArgumentMakesABlockOfItsOwn) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {3, 4}}));
    ref.SetClosed(true);
    ref.CalcBounds();
    CFPolygonRef byMember;
    byMember.CFPolygonCreate(ref);
    for (CFPolygonRef const& made :
         {CFPolygonRef(ref, true), CFPolygonRef(static_cast<FPolygon**>(ref), true),
          CFPolygonCreateCopy(ref), byMember}) {
        CFPolygonRef& copy = Keep(made);
        ASSERT_NE(copy.mRef, nullptr);
        EXPECT_NE(copy.mRef, ref.mRef);
        EXPECT_EQ(Contents(copy), Contents(ref)); // flag and bounds cache too
        copy.SetPolyPoints(0, TPoint<double>(9, 9));
        EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (3, 4)");
        EXPECT_TRUE(ref.BoundsValid());
    }
}

TEST_F(HandlePolygon, CopyingANullReferenceGivesNull) {
    CFPolygonRef const none;
    EXPECT_EQ(CFPolygonRef(none, true).mRef, nullptr);
    EXPECT_EQ(CFPolygonRef(none, false).mRef, nullptr);
    EXPECT_EQ(CFPolygonRef(static_cast<FPolygon**>(nullptr), true).mRef, nullptr);
    EXPECT_EQ(CFPolygonRef(static_cast<FPolygon**>(nullptr), false).mRef, nullptr);
    EXPECT_EQ(CFPolygonCreateCopy(none).mRef, nullptr);
    CFPolygonRef ref;
    ref.CFPolygonCreate(none);
    EXPECT_EQ(ref.mRef, nullptr);
}

TEST_F(HandlePolygon, DisposeFreesTheBlockAndMakesTheReferenceNull) {
    CFPolygonRef ref = Polygon({{1, 2}});
    long const handles = trammel_detail::LiveHandleCount();
    ref.Dispose();
    EXPECT_EQ(ref.mRef, nullptr);
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles - 1);
    ref.Dispose();
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles - 1);
}

TEST_F(HandlePolygon, ShortMemoryLeavesANullReference) {
    CFPolygonRef& source = Keep(Polygon({{1, 2}}));
    auto const isNull = [](std::function<CFPolygonRef()> const& make) {
        trammel_detail::FailNextAllocations(1);
        CFPolygonRef const ref = make();
        trammel_detail::FailNextAllocations(0);
        return ref.mRef == nullptr;
    };
    CFPolygonRef ref;
    EXPECT_TRUE(isNull([] { return CFPolygonRef(true); }));
    EXPECT_TRUE(isNull([&] { return ref.CFPolygonCreate(3), ref; }));
    EXPECT_TRUE(isNull([&] { return ref.CFPolygonCreate(Points{{1, 2}}), ref; }));
    EXPECT_TRUE(isNull([&] { return ref.CFPolygonCreate(TRect<double>(1, 2, 3, 4), 1.0), ref; }));
    EXPECT_TRUE(isNull([&] { return ref.CFPolygonCreate(source), ref; }));
    EXPECT_TRUE(isNull([&] { return CFPolygonRef(source, true); }));
    EXPECT_TRUE(isNull([&] { return CFPolygonRef(static_cast<FPolygon**>(source), true); }));
    EXPECT_TRUE(isNull([&] { return CFPolygonCreateCopy(source); }));
    EXPECT_EQ(Text(PointsOf(source)), "(1, 2)");
}

TEST_F(HandlePolygon, ANullReferenceAbsorbsEverything) {
    CFPolygonRef ref;
    EXPECT_EQ(ref.DataSize(), 0);
    EXPECT_EQ(ref.LastIndex(), -1);
    EXPECT_EQ(ref.EdgeCount(), -2);
    EXPECT_EQ(ref.GeometryEdgeCount(), -1);
    EXPECT_EQ(Text(ref.PolyPoints(0)), "(0, 0)");
    EXPECT_EQ(Text(ref.PolyPoints(-1)), "(0, 0)");
    EXPECT_EQ(Text(ref.GetEdge(0)), "(0, 0)-(0, 0)");
    EXPECT_EQ(Text(ref.Bounds()), "[0, 0, 0, 0]");
    EXPECT_FALSE(ref.Closed());
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_FALSE(ref.Contains(TPoint<double>(0, 0)));
    ref.SetSize(3);
    ref.SetPolyPoints(0, TPoint<double>(1, 2));
    ref.Append(TPoint<double>(1, 2));
    ref.Insert(0, TPoint<double>(1, 2));
    ref.Delete(0, 1);
    ref.SetClosed(true);
    ref.InvalBounds();
    ref.CalcBounds();
    ref.Offset(TPoint<double>(1, 2));
    ref.Scale(2.0);
    ref.Scale(2.0, 3.0);
    ref.Rotate(1.0, TPoint<double>(1, 2));
    ref.Map(TRect<double>(0, 0, 1, 1), TRect<double>(0, 0, 2, 2));
    ref.Dispose();
    EXPECT_EQ(ref.mRef, nullptr);
}

// Size and points

TEST_F(HandlePolygon, SetSizeKeepsThePointsAndClearsNewOnes) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {3, 4}}));
    ref.CalcBounds();
    ref.SetSize(3);
    EXPECT_EQ(ref.DataSize(), 92);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (3, 4) (0, 0)");
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Text(Record(ref)->polyBBox), "[0, 0, 0, 0]");
    ref.CalcBounds();
    ref.SetSize(1);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2)");
    EXPECT_FALSE(ref.BoundsValid());
    ref.SetSize(3); // what was cut off does not come back
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (0, 0) (0, 0)");
    ref.SetSize(0);
    EXPECT_EQ(ref.DataSize(), 44);
    ref.CalcBounds();
    ref.SetSize(0); // the same size drops the bounds as well
    EXPECT_FALSE(ref.BoundsValid());
}

TEST_F(HandlePolygon, ImpossibleSizesChangeNothing) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {3, 4}}));
    ref.CalcBounds();
    std::string const before = Contents(ref);
    for (long const n : {-1L, LONG_MIN, LONG_MAX, LONG_MAX / 16, (LONG_MAX >> 3) + 1}) {
        ref.SetSize(n);
        EXPECT_EQ(Contents(ref), before) << n;
    }
    trammel_detail::FailNextAllocations(1);
    ref.SetSize(5);
    EXPECT_EQ(Contents(ref), before);
}

TEST_F(HandlePolygon, StoresPointsAndDropsTheBounds) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {3, 4}}));
    EXPECT_EQ(Text(ref.Bounds()), "[1, 2, 3, 4]");
    ref.SetPolyPoints(1, TPoint<double>(-5, 6));
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (-5, 6)");
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Text(Record(ref)->polyBBox), "[0, 0, 0, 0]");
    EXPECT_EQ(Text(ref.Bounds()), "[-5, 2, 1, 6]");
    ref.SetPolyPoints(0, TPoint<double>(kNaN, -0.0));
    EXPECT_EQ(Text(ref.PolyPoints(0)), Text(TPoint<double>(kNaN, -0.0)));
}

TEST_F(HandlePolygon, IndexesOutsideReadTheOriginAndStoreNothing) {
    CFPolygonRef& ref = Keep(Polygon({{1, 2}, {3, 4}}));
    ref.CalcBounds();
    std::string const before = Contents(ref);
    for (long const i : {-1L, -2L, 2L, 3L, 1000000L, LONG_MAX, LONG_MIN, LONG_MAX / 16 + 1,
                         ((LONG_MAX >> 3) + 1), -((LONG_MAX >> 3) + 1)}) {
        EXPECT_EQ(Text(ref.PolyPoints(i)), "(0, 0)") << i;
        ref.SetPolyPoints(i, TPoint<double>(7, 8));
        EXPECT_EQ(Contents(ref), before) << i;
    }
}

TEST_F(HandlePolygon, AppendAddsAtTheEndAndGrowsCurrentBounds) {
    CFPolygonRef& ref = Keep(CFPolygonRef(true));
    ref.Append(TPoint<double>(1, 2));
    EXPECT_EQ(ref.DataSize(), 60);
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[1, 2, 1, 2]");
    ref.Append(TPoint<double>(5, -3));
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[1, -3, 5, 2]");
    ref.Append(TPoint<double>(2, 0));
    EXPECT_EQ(Text(ref.Bounds()), "[1, -3, 5, 2]");
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (5, -3) (2, 0)");
    ref.InvalBounds();
    ref.Append(TPoint<double>(100, 100));
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Text(Record(ref)->polyBBox), "[0, 0, 0, 0]");
    EXPECT_EQ(Text(ref.Bounds()), "[1, -3, 100, 100]");
}

TEST_F(HandlePolygon, AppendToCurrentBoundsOfAnEmptyPolygonStartsThem) {
    CFPolygonRef& ref = Keep(CFPolygonRef(true));
    ref.CalcBounds();
    EXPECT_TRUE(ref.BoundsValid());
    ref.Append(TPoint<double>(3, 4));
    EXPECT_EQ(Text(ref.Bounds()), "[3, 4, 3, 4]");
}

TEST_F(HandlePolygon, AFailedAppendInsertOrSetSizeLeavesBlockBoundsAndCachedPath) {
    std::pair<char const*, std::function<void(CFPolygonRef&)>> const operations[] = {
        {"Append", [](CFPolygonRef& r) { r.Append(TPoint<double>(9, 9)); }},
        {"Insert before the first", [](CFPolygonRef& r) { r.Insert(0, TPoint<double>(9, 9)); }},
        {"Insert before the last", [](CFPolygonRef& r) { r.Insert(1, TPoint<double>(9, 9)); }},
        {"Insert at the end", [](CFPolygonRef& r) { r.Insert(2, TPoint<double>(9, 9)); }},
        {"SetSize", [](CFPolygonRef& r) { r.SetSize(1000); }},
    };
    for (bool const boundsValid : {false, true}) {
        for (auto const& [name, operation] : operations) {
            SCOPED_TRACE(name);
            CFPolygonRef& ref = Keep(Polygon({{1, 2}, {3, 4}}));
            if (boundsValid) {
                ref.CalcBounds();
            }
            CGPath* const path = CachePath(ref);
            std::string const before = Contents(ref);
            trammel_detail::FailNextAllocations(1);
            operation(ref);
            EXPECT_FALSE(trammel_detail::TakeInjectedFailure()) << "it asked for memory";
            EXPECT_EQ(Contents(ref), before);
            EXPECT_EQ(CachedPath(ref), path);
            operation(ref); // now there is memory
            EXPECT_NE(Contents(ref), before);
            CGPathRelease(path);
        }
    }
}

TEST_F(HandlePolygon, InsertPutsAPointBeforeAnother) {
    CFPolygonRef& ref = Keep(Polygon({{1, 1}, {2, 2}, {3, 3}}));
    ref.Insert(0, TPoint<double>(0.5, 0.5));
    EXPECT_EQ(Text(PointsOf(ref)), "(0.5, 0.5) (1, 1) (2, 2) (3, 3)");
    ref.Insert(2, TPoint<double>(1.5, 1.5));
    EXPECT_EQ(Text(PointsOf(ref)), "(0.5, 0.5) (1, 1) (1.5, 1.5) (2, 2) (3, 3)");
    ref.Insert(5, TPoint<double>(4, 4)); // the number of points: appends
    EXPECT_EQ(Text(PointsOf(ref)), "(0.5, 0.5) (1, 1) (1.5, 1.5) (2, 2) (3, 3) (4, 4)");
    EXPECT_EQ(ref.DataSize(), 44 + 16 * 6);
    EXPECT_FALSE(ref.BoundsValid());
}

TEST_F(HandlePolygon, InsertOutsideIsTakenToTheNearerEnd) {
    for (long const i : {-1L, -1000L, LONG_MIN, -((LONG_MAX >> 3) + 1)}) {
        CFPolygonRef& ref = Keep(Polygon({{1, 1}, {2, 2}}));
        ref.Insert(i, TPoint<double>(9, 9));
        EXPECT_EQ(Text(PointsOf(ref)), "(9, 9) (1, 1) (2, 2)") << i;
    }
    for (long const i : {2L, 3L, 1000L, LONG_MAX, (LONG_MAX >> 3) + 1}) {
        CFPolygonRef& ref = Keep(Polygon({{1, 1}, {2, 2}}));
        ref.Insert(i, TPoint<double>(9, 9));
        EXPECT_EQ(Text(PointsOf(ref)), "(1, 1) (2, 2) (9, 9)") << i;
    }
    CFPolygonRef& empty = Keep(CFPolygonRef(true));
    empty.Insert(5, TPoint<double>(9, 9));
    EXPECT_EQ(Text(PointsOf(empty)), "(9, 9)");
}

TEST_F(HandlePolygon, InsertGrowsCurrentBounds) {
    CFPolygonRef& ref = Keep(Polygon({{1, 1}, {2, 2}}));
    ref.CalcBounds();
    ref.Insert(1, TPoint<double>(-4, 7));
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[-4, 1, 2, 7]");
    // It is the cache that grows, not a new computation.
    Record(ref)->polyBBox = TRect<double>(100, 100, 101, 101);
    ref.Insert(0, TPoint<double>(90, 100));
    EXPECT_EQ(Text(ref.Bounds()), "[90, 100, 101, 101]");
}

TEST_F(HandlePolygon, DeleteRemovesThePointsFromAnIndexOn) {
    CFPolygonRef& ref = Keep(Polygon({{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}}));
    ref.CalcBounds();
    ref.Delete(1, 2);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 1) (4, 4) (5, 5)");
    EXPECT_EQ(ref.DataSize(), 92);
    EXPECT_FALSE(ref.BoundsValid());
    ref.Delete(2, 1);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 1) (4, 4)");
    ref.Delete(0, 1);
    EXPECT_EQ(Text(PointsOf(ref)), "(4, 4)");
    ref.Delete(0, 0);
    EXPECT_EQ(Text(PointsOf(ref)), "(4, 4)");
    ref.Delete(0, 1);
    EXPECT_EQ(ref.DataSize(), 44);
    EXPECT_EQ(Text(ref.Bounds()), "[0, 0, 0, 0]");
}

TEST_F(HandlePolygon, DeleteBeyondTheEndTakesThatManyPointsOffTheEnd) {
    struct Case {
        long i;
        long count;
        char const* left;
    };
    Case const cases[] = {
        {2, 2, "(1, 1)"},
        {3, 1, "(1, 1) (2, 2)"},
        {3, 2, "(1, 1)"},
        {4, 1, "(1, 1) (2, 2)"},
        {(LONG_MAX >> 3) + 1, 1, "(1, 1) (2, 2)"},
        {LONG_MAX, 1, "(1, 1) (2, 2)"},
        {LONG_MAX, 2, "(1, 1)"},
        {1, 3, ""},
        {0, 4, ""},
        {2, 3, ""},
        {1, 1000, ""},
        {1, (LONG_MAX >> 3) + 1, ""},
        {1, LONG_MAX / 16 + 1, ""},
        {1, LONG_MAX, ""},
        {3, LONG_MAX, ""},
        {LONG_MAX, LONG_MAX, ""},
    };
    for (Case const& c : cases) {
        CFPolygonRef& ref = Keep(Polygon({{1, 1}, {2, 2}, {3, 3}}));
        ref.CalcBounds();
        ref.Delete(c.i, c.count);
        EXPECT_EQ(Text(PointsOf(ref)), c.left) << c.i << " " << c.count;
        EXPECT_FALSE(ref.BoundsValid()) << c.i << " " << c.count;
    }
}

TEST_F(HandlePolygon, DeleteOfNoneOrANegativeRangeRemovesNothingAndDropsTheCaches) {
    std::pair<long, long> const ranges[] = {
        {-1, 1}, {-1, 4},        {LONG_MIN, LONG_MAX}, {0, -1},       {1, -2}, {0, LONG_MIN},
        {0, 0},  {3, 0},         {LONG_MAX, 0},        {LONG_MIN, 1}, {-1, 0}, {-1, -1},
        {4, -1}, {LONG_MAX, -1}, {LONG_MIN, LONG_MIN}};
    for (auto const& [i, count] : ranges) {
        CFPolygonRef& ref = Keep(Polygon({{1, 1}, {2, 2}, {3, 3}}));
        ref.CalcBounds();
        CGPath* const path = CachePath(ref);
        ref.Delete(i, count);
        EXPECT_EQ(Text(PointsOf(ref)), "(1, 1) (2, 2) (3, 3)") << i << " " << count;
        EXPECT_FALSE(ref.BoundsValid()) << i << " " << count;
        EXPECT_EQ(Text(Record(ref)->polyBBox), "[0, 0, 0, 0]") << i << " " << count;
        EXPECT_EQ(CachedPath(ref), nullptr) << i << " " << count;
        CGPathRelease(path);
    }
}

TEST_F(HandlePolygon, DeleteLeavesTheHeaderOfAnEmptyPolygon) {
    CFPolygonRef& empty = Keep(CFPolygonRef(true));
    std::pair<long, long> const ranges[] = {{0, 1}, {0, LONG_MAX}, {5, 1}, {-1, 1}, {0, 0}};
    for (auto const& [i, count] : ranges) {
        empty.SetClosed(true);
        empty.CalcBounds();
        empty.Delete(i, count);
        EXPECT_EQ(empty.DataSize(), 44) << i << " " << count;
        EXPECT_TRUE(empty.Closed()) << i << " " << count;
        EXPECT_FALSE(empty.BoundsValid()) << i << " " << count;
    }
}

TEST_F(HandlePolygon, DeletingNeedsNoMemory) {
    CFPolygonRef& ref = Keep(CFPolygonRef());
    ref.CFPolygonCreate(10000);
    trammel_detail::FailNextAllocations(1000);
    ref.Delete(10, 9990);
    EXPECT_EQ(ref.LastIndex(), 9);
    ref.Delete(0, 10);
    EXPECT_EQ(ref.LastIndex(), -1);
}

TEST_F(HandlePolygon, MembersThatChangeItReturnTheReference) {
    CFPolygonRef& ref = Keep(CFPolygonRef());
    CFPolygonRef const* const self = &ref.CFPolygonCreate(0).Append(TPoint<double>(1, 2));
    EXPECT_EQ(self, &ref);
    EXPECT_EQ(&ref.SetSize(2).SetPolyPoints(1, TPoint<double>(3, 4)), &ref);
    EXPECT_EQ(&ref.Insert(0, TPoint<double>(9, 9)).Delete(0, 1).SetClosed(true), &ref);
    EXPECT_EQ(&ref.Offset(TPoint<double>(1, 1)).Scale(2.0).Scale(0.5, 0.25), &ref);
    EXPECT_EQ(&ref.Rotate(0.0, TPoint<double>(0, 0)), &ref);
    EXPECT_EQ(&ref.Map(TRect<double>(0, 0, 1, 1), TRect<double>(0, 0, 1, 1)), &ref);
    EXPECT_EQ(Text(PointsOf(ref)), "(2, 1.5) (4, 2.5)");
}

// Everything together

TEST_F(HandlePolygon, KeepsStepWithAPlainListUnderRandomOperations) {
    std::mt19937 random(44);
    CFPolygonRef ref(true);
    Points model;
    auto const size = [&] { return static_cast<long>(model.size()); };
    for (int step = 0; step < 20000; ++step) {
        double const h = 1.0 + static_cast<double>(random() % 100);
        TPoint<double> const p(h, 1.0 + static_cast<double>(random() % 100));
        long const i = static_cast<long>(random() % (model.size() + 3)) - 1;
        switch (random() % 9) {
        case 0:
        case 1:
            ref.Append(p);
            model.push_back(p);
            break;
        case 2:
        case 3:
            ref.Insert(i, p);
            model.insert(model.begin() + std::clamp(i, 0L, size()), p);
            break;
        case 4: {
            long const count = static_cast<long>(random() % 5) - 1;
            ref.Delete(i, count);
            if (i >= 0 && count > 0) {
                long const kept = size() - std::min(count, size());
                for (long k = i; k < kept; ++k) {
                    model[static_cast<std::size_t>(k)] = model[static_cast<std::size_t>(k + count)];
                }
                model.resize(static_cast<std::size_t>(kept));
            }
            break;
        }
        case 5:
            ref.SetPolyPoints(i, p);
            if (i >= 0 && i < size()) {
                model[static_cast<std::size_t>(i)] = p;
            }
            break;
        case 6:
            ref.SetClosed(random() % 2 == 0);
            break;
        case 7:
            if (random() % 20 == 0) {
                long const n = static_cast<long>(random() % 40);
                ref.SetSize(n);
                model.resize(static_cast<std::size_t>(n), TPoint<double>());
                // Points at the origin would start the bounds anew.
                for (long k = 0; k < n; ++k) {
                    if (model[static_cast<std::size_t>(k)].Null()) {
                        ref.SetPolyPoints(k, p);
                        model[static_cast<std::size_t>(k)] = p;
                    }
                }
            }
            break;
        default: {
            TRect<double> bounds;
            for (TPoint<double> const& point : model) {
                bounds |= point;
            }
            ASSERT_EQ(Text(ref.Bounds()), Text(bounds)) << step;
        }
        }
        ASSERT_EQ(ref.DataSize(), 44 + 16 * size()) << step;
        ASSERT_EQ(ref.LastIndex(), size() - 1);
        if (step % 16 == 0) {
            ASSERT_EQ(Text(PointsOf(ref)), Text(model)) << step;
        }
    }
    ref.Dispose();
}

TEST_F(HandlePolygon, SpecialCoordinatesPassThroughEveryOperation) {
    double const specials[] = {0, -0.0, kHuge, -kHuge, kInf, -kInf, kNaN, 5e-324};
    for (double const x : specials) {
        for (double const y : specials) {
            CFPolygonRef ref = Polygon({{1, 2}, {x, y}, {y, x}});
            TPoint<double> const p(x, y);
            TRect<double> const r(x, y, y, x);
            ref.Bounds();
            ref.Append(p);
            ref.Insert(1, p);
            ref.SetPolyPoints(2, p);
            EXPECT_EQ(Text(ref.PolyPoints(1)), Text(p));
            EXPECT_EQ(Text(ref.PolyPoints(2)), Text(p));
            ref.Contains(p);
            ref.Offset(p);
            ref.Scale(x);
            ref.Scale(x, y);
            ref.Rotate(x, p);
            ref.Map(r, TRect<double>(0, 0, 1, 1));
            ref.Map(TRect<double>(0, 0, 1, 1), r);
            ref.Contains(p);
            ref.GetEdge(0);
            ref.GeometryEdgeCount();
            ref.Bounds();
            DisposeHandle(reinterpret_cast<Handle>(ref.CreateQDPoly()));
            EXPECT_EQ(ref.LastIndex(), 4);
            ref.Dispose();
            ref.CFPolygonCreate(r, x);
            EXPECT_EQ(ref.LastIndex(), 4);
            ref.Dispose();
        }
    }
}

TEST_F(HandlePolygon, BlocksThatHoldNoWholePointAreNeitherReadNorWrittenBeyondTheirEnd) {
    for (Size size = 0; size < 80; ++size) {
        SCOPED_TRACE(size);
        std::vector<char> const bytes(static_cast<std::size_t>(size), '\0');
        long const whole = size < 60 ? 0 : (size - 44) / 16;
        for (long const at : {-1L, 0L, 1L, 2L, 9L}) {
            Handle block = nullptr;
            ASSERT_EQ(PtrToHand(bytes.data(), &block, size), noErr);
            CFPolygonRef polygon(reinterpret_cast<FPolygon**>(block), false);
            EXPECT_EQ(polygon.LastIndex(), (size - 60) / 16);
            EXPECT_EQ(polygon.PolyPoints(at), TPoint<double>(0, 0));
            polygon.SetPolyPoints(at, TPoint<double>(5, 6));
            EXPECT_EQ(polygon.PolyPoints(at),
                      at >= 0 && at < whole ? TPoint<double>(5, 6) : TPoint<double>(0, 0));
            polygon.Offset(TPoint<double>(1, 1))
                .Scale(2.0)
                .Map(TRect<double>(0, 0, 1, 1), TRect<double>(0, 0, 2, 2));
            EXPECT_FALSE(polygon.Contains(TPoint<double>(1, 1)));
            polygon.Delete(at, 1);
            EXPECT_EQ(polygon.DataSize(), at >= 0 && whole > 0 ? size - 16 : size);
            long const before = polygon.DataSize();
            polygon.Insert(at, TPoint<double>(7, 8));
            EXPECT_EQ(polygon.DataSize(), size < 44 ? before : before + 16);
            if (size >= 44) {
                long const left = (before - 44) / 16;
                EXPECT_EQ(polygon.PolyPoints(std::clamp(at, 0L, left)), TPoint<double>(7, 8));
            }
            CFPolygonRef copy(polygon, true);
            EXPECT_EQ(copy.DataSize(), polygon.DataSize());
            EXPECT_EQ(copy.Bounds(), polygon.Bounds());
            MacPolygon** const quickDraw = copy.CreateQDPoly();
            EXPECT_GE(GetHandleSize(reinterpret_cast<Handle>(quickDraw)), 10);
            DisposeHandle(reinterpret_cast<Handle>(quickDraw));
            EXPECT_EQ(copy.GetPath(), nullptr);
            copy.SetClosed(true).Append(TPoint<double>(1, 2));
            EXPECT_EQ(copy.DataSize(), polygon.DataSize() + 16);
            copy.SetSize(1);
            EXPECT_EQ(copy.LastIndex(), 0);
            copy.Dispose();
            polygon.Dispose();
        }
    }
}

} // namespace
