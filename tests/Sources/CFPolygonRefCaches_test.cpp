// SPDX-License-Identifier: MIT

// The closed flag, the bounds and the cached path of a handle polygon, and which operations drop
// them.

#include "CFPolygonRef.h"

#include "FPolygon.h"
#include "HandlePolygonSupport.h"
#include "Handles.h"
#include "PathObject.h"
#include "TPoint.h"
#include "TPoly.h"
#include "TRect.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

namespace {

using trammel_test::CachedPath;
using trammel_test::CachePath;
using trammel_test::HandlePolygon;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Polygon;
using trammel_test::Record;
using trammel_test::Text;

TEST_F(HandlePolygon, SetClosedDropsTheCachesOnlyWhenItChanges) {
    CFPolygonRef& ref = Keep(Polygon({{1, 1}, {2, 2}}));
    ref.CalcBounds();
    CGPath* const path = CachePath(ref);
    ref.SetClosed(false);
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(CachedPath(ref), path);
    ref.SetClosed(true);
    EXPECT_TRUE(ref.Closed());
    EXPECT_EQ(Record(ref)->polyClosed, 1);
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Record(ref)->polyPath, 0);
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    ref.CalcBounds();
    ref.SetClosed(true);
    EXPECT_TRUE(ref.BoundsValid());
    ref.SetClosed(false);
    EXPECT_FALSE(ref.Closed());
    EXPECT_FALSE(ref.BoundsValid());
    CGPathRelease(path);
}

TEST_F(HandlePolygon, BoundsAreComputedOnceAndKept) {
    CFPolygonRef& ref = Keep(Polygon({{3, -4}, {-1, 2}, {0, 0}}));
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[-1, -4, 3, 2]");
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Record(ref)->polyBoundsValid, 1);
    Record(ref)->polyBBox = TRect<double>(5, 6, 7, 8); // kept: not computed again
    EXPECT_EQ(Text(ref.Bounds()), "[5, 6, 7, 8]");
    ref.CalcBounds(); // always computes
    EXPECT_EQ(Text(ref.Bounds()), "[-1, -4, 3, 2]");
    CFPolygonRef const& constant = ref;
    constant.InvalBounds();
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Text(Record(ref)->polyBBox), "[0, 0, 0, 0]");
}

TEST_F(HandlePolygon, InvalBoundsResetsTheBoxOnlyWhenTheFlagWasSet) {
    CFPolygonRef& ref = Keep(Polygon({{3, -4}}));
    Record(ref)->polyBBox = TRect<double>(5, 6, 7, 8);
    ref.InvalBounds();
    EXPECT_EQ(Text(Record(ref)->polyBBox), "[5, 6, 7, 8]");
    Record(ref)->polyBoundsValid = -3;
    ref.InvalBounds();
    EXPECT_EQ(Text(Record(ref)->polyBBox), "[0, 0, 0, 0]");
    EXPECT_EQ(Record(ref)->polyBoundsValid, 0);
}

TEST_F(HandlePolygon, BoundsTakeTheLastPointFirstAndForgetAnOriginThatComesFirst) {
    // While the bounds are still null, a point at the origin leaves them null.
    EXPECT_EQ(Text(Keep(Polygon({{5, 5}, {7, 7}, {0, 0}})).Bounds()), "[5, 5, 7, 7]");
    EXPECT_EQ(Text(Keep(Polygon({{0, 0}, {5, 5}, {7, 7}})).Bounds()), "[0, 0, 7, 7]");
    EXPECT_EQ(Text(Keep(Polygon({{0, 0}})).Bounds()), "[0, 0, 0, 0]");
    EXPECT_EQ(Text(Keep(Polygon({{2, 3}})).Bounds()), "[2, 3, 2, 3]");
    // A NaN stays when it comes first and is overlooked later.
    EXPECT_EQ(Text(Keep(Polygon({{1, 2}, {kNaN, 5}})).Bounds()), "[nan, 2, nan, 5]");
    EXPECT_EQ(Text(Keep(Polygon({{kNaN, 5}, {1, 2}})).Bounds()), "[1, 2, 1, 5]");
    EXPECT_EQ(Text(Keep(Polygon({{-kInf, kHuge}, {kInf, -kHuge}})).Bounds()),
              Text(TRect<double>(-kInf, -kHuge, kInf, kHuge)));
}

TEST_F(HandlePolygon, TheCachedPathIsReleasedByExactlyTheOperationsThatChangePoints) {
    static TPoint<double> const p(1, 2);
    static TRect<double> const from(0, 0, 1, 1);
    static TRect<double> const to(0, 0, 2, 2);
    struct Case {
        char const* name;
        std::function<void(CFPolygonRef&)> operation;
        bool releases;
    };
    std::vector<Case> const cases = {
        {"SetSize larger", [](CFPolygonRef& r) { r.SetSize(9); }, true},
        {"SetSize same", [](CFPolygonRef& r) { r.SetSize(3); }, true},
        {"SetPolyPoints", [](CFPolygonRef& r) { r.SetPolyPoints(0, p); }, true},
        {"Append", [](CFPolygonRef& r) { r.Append(p); }, true},
        {"Delete", [](CFPolygonRef& r) { r.Delete(0, 1); }, true},
        {"SetClosed to the other", [](CFPolygonRef& r) { r.SetClosed(true); }, true},
        {"InvalBounds", [](CFPolygonRef& r) { r.InvalBounds(); }, true},
        {"Offset", [](CFPolygonRef& r) { r.Offset(p); }, true},
        {"Offset by nothing", [](CFPolygonRef& r) { r.Offset(TPoint<double>()); }, true},
        {"Scale", [](CFPolygonRef& r) { r.Scale(2.0); }, true},
        {"Scale by NaN", [](CFPolygonRef& r) { r.Scale(kNaN); }, true},
        {"Scale in h", [](CFPolygonRef& r) { r.Scale(2.0, 1.0); }, true},
        {"Scale in v", [](CFPolygonRef& r) { r.Scale(1.0, 2.0); }, true},
        {"Rotate", [](CFPolygonRef& r) { r.Rotate(1.0, p); }, true},
        {"Rotate by nothing", [](CFPolygonRef& r) { r.Rotate(0.0, p); }, true},
        {"Map", [](CFPolygonRef& r) { r.Map(from, to); }, true},

        {"Insert", [](CFPolygonRef& r) { r.Insert(1, p); }, false},
        {"Insert at the end", [](CFPolygonRef& r) { r.Insert(3, p); }, false},
        {"Insert often, so that the block moves",
         [](CFPolygonRef& r) {
             for (int i = 0; i < 1000; ++i) {
                 r.Insert(0, p);
             }
         },
         false},
        {"SetClosed to the same", [](CFPolygonRef& r) { r.SetClosed(false); }, false},
        {"SetSize negative", [](CFPolygonRef& r) { r.SetSize(-1); }, false},
        {"SetPolyPoints outside", [](CFPolygonRef& r) { r.SetPolyPoints(3, p); }, false},
        {"Scale by 1", [](CFPolygonRef& r) { r.Scale(1.0); }, false},
        {"Scale by 1 and 1", [](CFPolygonRef& r) { r.Scale(1.0, 1.0); }, false},
        {"CalcBounds", [](CFPolygonRef& r) { r.CalcBounds(); }, false},
        {"Bounds", [](CFPolygonRef& r) { r.Bounds(); }, false},
        {"Contains", [](CFPolygonRef& r) { r.Contains(p); }, false},
        {"GetEdge", [](CFPolygonRef& r) { r.GetEdge(0); }, false},
        {"PolyPoints", [](CFPolygonRef& r) { r.PolyPoints(0); }, false},
        {"CreateQDPoly",
         [](CFPolygonRef& r) { DisposeHandle(reinterpret_cast<Handle>(r.CreateQDPoly())); }, false},
        {"copying", [](CFPolygonRef& r) { CFPolygonCreateCopy(r).Dispose(); }, false},
        {"sharing", [](CFPolygonRef& r) { CFPolygonRef(r, false).Bounds(); }, false},
        {"converting", [](CFPolygonRef& r) { TPolygon<double> const polygon(r); }, false},
        {"the record's SetPolyPoints", [](CFPolygonRef& r) { Record(r)->SetPolyPoints(0, p); },
         false},
    };
    for (Case const& each : cases) {
        for (bool const boundsValid : {false, true}) { // the two caches are independent
            CFPolygonRef ref = Polygon({{1, 1}, {5, 1}, {5, 5}});
            if (boundsValid) {
                ref.CalcBounds();
            }
            CGPath* const path = CachePath(ref);
            each.operation(ref);
            if (each.releases) {
                EXPECT_EQ(Record(ref)->polyPath, 0) << each.name;
                EXPECT_EQ(CGPathGetRetainCount(path), 1) << each.name;
            } else {
                EXPECT_EQ(CachedPath(ref), path) << each.name;
                EXPECT_EQ(CGPathGetRetainCount(path), 2) << each.name;
            }
            ref.Dispose();
            EXPECT_EQ(CGPathGetRetainCount(path), 1) << each.name;
            CGPathRelease(path);
        }
    }
}

TEST_F(HandlePolygon, OperationsOnAnEmptyPolygonReleaseThePathAsTheirDefinitionSays) {
    static TPoint<double> const p(1, 2);
    static TRect<double> const from(0, 0, 1, 1);
    static TRect<double> const to(0, 0, 2, 2);
    // Map goes through SetPolyPoints, of which there is none here; the others drop the caches.
    std::vector<std::pair<std::function<void(CFPolygonRef&)>, bool>> const cases = {
        {[](CFPolygonRef& r) { r.Offset(p); }, true},
        {[](CFPolygonRef& r) { r.Scale(2.0); }, true},
        {[](CFPolygonRef& r) { r.Rotate(2.0, p); }, true},
        {[](CFPolygonRef& r) { r.Map(from, to); }, false},
    };
    for (auto const& [operation, drops] : cases) {
        CFPolygonRef ref(true);
        ref.CalcBounds();
        CGPath* const path = CachePath(ref);
        operation(ref);
        EXPECT_EQ(ref.BoundsValid(), !drops);
        EXPECT_EQ(CachedPath(ref), drops ? nullptr : path);
        ref.Dispose();
        CGPathRelease(path);
    }
}

TEST_F(HandlePolygon, ACopyHasNoPathAndTheSourceKeepsIts) {
    CFPolygonRef& ref = Keep(Polygon({{1, 1}, {5, 1}}));
    CGPath* const path = CachePath(ref);
    CFPolygonRef byMember;
    byMember.CFPolygonCreate(ref);
    for (CFPolygonRef copy : {CFPolygonCreateCopy(ref), CFPolygonRef(ref, true),
                              CFPolygonRef(static_cast<FPolygon**>(ref), true), byMember}) {
        EXPECT_EQ(Record(copy)->polyPath, 0);
        EXPECT_EQ(CachedPath(ref), path);
        copy.Append(TPoint<double>(1, 2));
        copy.Dispose();
        EXPECT_EQ(CachedPath(ref), path);
        EXPECT_EQ(CGPathGetRetainCount(path), 2);
    }
    CGPathRelease(path);
}

TEST_F(HandlePolygon, ABlockCopiedByteByByteDoesNotReleaseTheOthersPath) {
    CFPolygonRef& ref = Keep(Polygon({{1, 1}, {5, 1}}));
    CGPath* const path = CachePath(ref);
    for (int how = 0; how < 3; ++how) {
        Handle h = nullptr;
        ASSERT_EQ(PtrToHand(*ref.mRef, &h, ref.DataSize()), noErr);
        CFPolygonRef copy(reinterpret_cast<FPolygon**>(h), false);
        EXPECT_EQ(Record(copy)->polyPath, Record(ref)->polyPath);
        if (how == 1) {
            copy.Append(TPoint<double>(1, 2));
            EXPECT_EQ(Record(copy)->polyPath, 0);
        } else if (how == 2) {
            copy.SetClosed(true);
            EXPECT_EQ(Record(copy)->polyPath, 0);
        }
        copy.Dispose();
        EXPECT_EQ(CachedPath(ref), path);
        EXPECT_EQ(CGPathGetRetainCount(path), 2);
    }
    // A token that stands for no path is dropped, too.
    CFPolygonRef& other = Keep(Polygon({{1, 1}}));
    Record(other)->polyPath = 0x7654321;
    other.InvalBounds();
    EXPECT_EQ(Record(other)->polyPath, 0);
    CGPathRelease(path);
}

TEST_F(HandlePolygon, DisposeReleasesThePath) {
    CFPolygonRef ref = Polygon({{1, 1}});
    CGPath* const path = CachePath(ref);
    ref.Dispose();
    EXPECT_EQ(CGPathGetRetainCount(path), 1);
    CGPathRelease(path);
}

} // namespace
