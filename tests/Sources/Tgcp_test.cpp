// SPDX-License-Identifier: MIT

#include "Tgcp.h"

#include "Handles.h"
#include "ShortMemory.h"
#include "TestSupport.h"
#include "UFPoly.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <vector>

namespace {

using trammel_test::Random;
using trammel_test::Text;
using trammel_test::WithoutLeaks;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef std::vector<Pt> Points;

Tgcp_contour Contour(Points const& vertices, bool hole = false) {
    Tgcp_contour contour;
    contour.mVertices = vertices;
    contour.mHole = hole;
    return contour;
}

Tgpc_polygon Polygon(std::vector<Points> const& contours) {
    Tgpc_polygon polygon;
    for (Points const& vertices : contours) {
        polygon.AddContour(Contour(vertices));
    }
    return polygon;
}

/// Twice the signed area, by the shoelace formula.
double TwiceArea(Points const& p) {
    double sum = 0.0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        Pt const& a = p[i];
        Pt const& b = p[(i + 1) % p.size()];
        sum += a.h * b.v - b.h * a.v;
    }
    return sum;
}

/// The area, holes subtracted by their flags.
double Area(Tgpc_polygon const& p) {
    double area = 0.0;
    for (Tgcp_contour const& contour : p.mContours) {
        double const size = std::abs(TwiceArea(contour.mVertices)) / 2.0;
        area += contour.mHole ? -size : size;
    }
    return area;
}

Tgpc_polygon Clip(TPolyOp op, Tgpc_polygon const& a, Tgpc_polygon const& b) {
    Tgpc_polygon result;
    Tgpc_polygon_clip(op, a, b, result);
    return result;
}

bool SameContours(Tgpc_polygon const& a, Tgpc_polygon const& b) {
    if (a.NumContours() != b.NumContours()) {
        return false;
    }
    for (std::size_t i = 0; i < a.mContours.size(); ++i) {
        if (a.mContours[i].mHole != b.mContours[i].mHole ||
            a.mContours[i].mVertices != b.mContours[i].mVertices) {
            return false;
        }
    }
    return true;
}

class Tgcp : public WithoutLeaks {};

TEST_F(Tgcp, NewContourHasNoVerticesAndNoFlags) {
    Tgcp_contour const contour;
    EXPECT_FALSE(contour.mReserved);
    EXPECT_FALSE(contour.mHole);
    EXPECT_EQ(contour.size(), 0u);
    EXPECT_TRUE(contour.Bounds().Null());
}

TEST_F(Tgcp, RectangleGivesFourCornersFromTheTopLeftClockwiseToTheEye) {
    Tgcp_contour const contour(Box(1, 2, 30, 40));
    EXPECT_EQ(contour.mVertices, (Points{{1, 2}, {30, 2}, {30, 40}, {1, 40}}));
    EXPECT_FALSE(contour.mHole);
    EXPECT_FALSE(contour.mReserved);
    Tgpc_polygon const polygon(Box(1, 2, 30, 40));
    ASSERT_EQ(polygon.NumContours(), 1);
    EXPECT_EQ(polygon.mContours[0].mVertices, contour.mVertices);
}

TEST_F(Tgcp, HandlePolygonIsTakenInReverseAndGivenBackAsItStands) {
    CFPolygonRef source = OpenFPoly();
    for (Pt const& p : Points{{1, 1}, {5, 1}, {3, 7}}) {
        AppendPolyPt(p, source);
    }
    Tgcp_contour const contour(source);
    EXPECT_EQ(contour.mVertices, (Points{{3, 7}, {5, 1}, {1, 1}}));
    CFPolygonRef back = contour.ConvertToFPoly();
    ASSERT_EQ(LastFPolyIndex(back), 3);
    EXPECT_EQ(back.PolyPoints(0), Pt(3, 7));
    EXPECT_EQ(back.PolyPoints(1), Pt(5, 1));
    EXPECT_EQ(back.PolyPoints(2), Pt(1, 1));
    EXPECT_EQ(back.PolyPoints(3), Pt(3, 7)) << "closed explicitly";
    EXPECT_FALSE(back.Closed());
    Tgpc_polygon const polygon(source);
    EXPECT_EQ(polygon.NumContours(), 1);
    KillFPoly(back);
    KillFPoly(source);
}

TEST_F(Tgcp, NullAndEmptyHandlePolygonsGiveAContourWithoutVertices) {
    EXPECT_EQ(Tgcp_contour(CFPolygonRef()).size(), 0u);
    CFPolygonRef empty = OpenFPoly();
    EXPECT_EQ(Tgcp_contour(empty).size(), 0u);
    KillFPoly(empty);
}

TEST_F(Tgcp, BlocksWithoutAWholeHeaderGiveAContourWithoutVertices) {
    for (Size const size : {0, 4, 11, 12, 27, 28, 43, 44}) {
        Handle const block = NewHandle(size);
        CFPolygonRef const foreign(reinterpret_cast<FPolygon**>(block), false);
        EXPECT_EQ(Tgcp_contour(foreign).size(), 0u) << size;
        EXPECT_EQ(Tgpc_polygon(foreign).NumContours(), 1) << size;
        DisposeHandle(block);
    }
}

TEST_F(Tgcp, ConvertingWhatIsNotThereGivesAnEmptyPolygon) {
    Tgpc_polygon polygon(Box(0, 0, 1, 1));
    polygon.AddContour(Tgcp_contour());
    for (long i :
         {-1L, 1L, 2L, std::numeric_limits<long>::max(), std::numeric_limits<long>::min()}) {
        CFPolygonRef converted = polygon.ConvertToFPoly(i);
        EXPECT_TRUE(converted) << i;
        EXPECT_EQ(LastFPolyIndex(converted), -1) << i;
        KillFPoly(converted);
    }
    CFPolygonRef first = polygon.ConvertToFPoly(0);
    EXPECT_EQ(LastFPolyIndex(first), 4);
    KillFPoly(first);
}

TEST_F(Tgcp, BoundsAreThoseOfTheVerticesAndNullWithout) {
    EXPECT_TRUE(Tgpc_polygon().Bounds().Null());
    Tgcp_contour const contour = Contour({{10, 10}, {20, 10}, {20, 30}});
    EXPECT_EQ(contour.Bounds(), Box(10, 10, 20, 30)) << "the origin is not in it";
    Tgpc_polygon polygon;
    polygon.AddContour(contour);
    polygon.AddContour(Tgcp_contour());
    polygon.AddContour(Contour({{-5, 12}, {1, 12}, {1, 50}}));
    EXPECT_EQ(polygon.Bounds(), Box(-5, 10, 20, 50));
}

TEST_F(Tgcp, VerticesAreOpenToDirectChange) {
    Tgcp_contour contour(Box(0, 0, 4, 4));
    contour.Vertices().push_back(Pt(2, 9));
    EXPECT_EQ(contour.size(), 5u);
    EXPECT_EQ(contour.mVertices[4], Pt(2, 9));
}

TEST_F(Tgcp, ContoursAreAddedAndAssignedAsCopies) {
    Tgcp_contour contour = Contour({{0, 0}, {1, 0}, {0, 1}}, true);
    contour.mReserved = true;
    Tgpc_polygon a;
    a.AddContour(contour);
    contour.mVertices[0] = Pt(9, 9);
    Tgpc_polygon b;
    b = a;
    a.mContours[0].mVertices[1] = Pt(7, 7);
    ASSERT_EQ(b.NumContours(), 1);
    EXPECT_EQ(b.mContours[0].mVertices, (Points{{0, 0}, {1, 0}, {0, 1}}));
    EXPECT_TRUE(b.mContours[0].mHole);
    EXPECT_TRUE(b.mContours[0].mReserved);
}

TEST_F(Tgcp, RecordsCarryCoordinatesAndHoleFlagsBothWays) {
    Tgpc_polygon polygon;
    polygon.AddContour(Contour({{1, 2}, {3, 4}, {5, 6}}));
    polygon.AddContour(Contour({{7, 8}}, true));
    polygon.AddContour(Tgcp_contour());
    gpc_polygon record = Create_gpc(polygon);
    ASSERT_EQ(record.num_contours, 3);
    EXPECT_EQ(record.hole[0], 0);
    EXPECT_EQ(record.hole[1], 1);
    ASSERT_EQ(record.contour[0].num_vertices, 3);
    EXPECT_EQ(record.contour[0].vertex[1].x, 3) << "x is h";
    EXPECT_EQ(record.contour[0].vertex[1].y, 4) << "y is v";
    EXPECT_EQ(record.contour[1].num_vertices, 1);
    EXPECT_EQ(record.contour[2].num_vertices, 0);
    record.hole[1] = -7; // any value but 0 is a hole
    polygon.mContours[0].mReserved = true;
    Tgpc_polygon const back = Create_Tgpc(&record);
    ASSERT_EQ(back.NumContours(), 3);
    EXPECT_EQ(back.mContours[0].mVertices, polygon.mContours[0].mVertices);
    EXPECT_FALSE(back.mContours[0].mHole);
    EXPECT_FALSE(back.mContours[0].mReserved) << "not carried";
    EXPECT_TRUE(back.mContours[1].mHole);
    EXPECT_EQ(record.num_contours, 3) << "the record is not freed";
    gpc_free_polygon(&record);
}

TEST_F(Tgcp, RecordsWithNullPointersHaveNothingThere) {
    EXPECT_EQ(Create_Tgpc(nullptr).NumContours(), 0);
    gpc_polygon record = {};
    record.num_contours = 2;
    EXPECT_EQ(Create_Tgpc(&record).NumContours(), 0) << "no contours behind the count";
    gpc_vertex vertex = {3, 4};
    gpc_vertex_list lists[2] = {{5, nullptr}, {1, &vertex}};
    record.contour = lists;
    Tgpc_polygon const polygon = Create_Tgpc(&record);
    ASSERT_EQ(polygon.NumContours(), 2);
    EXPECT_EQ(polygon.mContours[0].size(), 0u);
    EXPECT_EQ(polygon.mContours[1].mVertices, (Points{{3, 4}}));
    EXPECT_FALSE(polygon.mContours[0].mHole || polygon.mContours[1].mHole) << "no hole flags";
    record.num_contours = -1;
    EXPECT_EQ(Create_Tgpc(&record).NumContours(), 0);
    record.num_contours = 2;
    lists[1].num_vertices = -1;
    EXPECT_EQ(Create_Tgpc(&record).mContours[1].size(), 0u);
}

TEST_F(Tgcp, OperationCodesAreTheClippers) {
    EXPECT_EQ(kPolyDifference, 0);
    EXPECT_EQ(kPolyIntersection, 1);
    EXPECT_EQ(kPolyXor, 2);
    EXPECT_EQ(kPolyUnion, 3);
}

TEST_F(Tgcp, UnionOfDisjointRectanglesHasTwoContoursAndNoHole) {
    Tgpc_polygon const result =
        Clip(kPolyUnion, Tgpc_polygon(Box(0, 0, 10, 10)), Tgpc_polygon(Box(20, 0, 30, 10)));
    ASSERT_EQ(result.NumContours(), 2);
    EXPECT_FALSE(result.mContours[0].mHole);
    EXPECT_FALSE(result.mContours[1].mHole);
    EXPECT_EQ(Area(result), 200.0);
}

TEST_F(Tgcp, DifferenceWithARectangleInsideHasAHole) {
    Tgpc_polygon const result =
        Clip(kPolyDifference, Tgpc_polygon(Box(0, 0, 10, 10)), Tgpc_polygon(Box(2, 2, 5, 5)));
    ASSERT_EQ(result.NumContours(), 2);
    EXPECT_NE(result.mContours[0].mHole, result.mContours[1].mHole);
    EXPECT_EQ(Area(result), 91.0);
}

TEST_F(Tgcp, IntersectionOfDisjointPolygonsIsEmpty) {
    EXPECT_EQ(
        Clip(kPolyIntersection, Tgpc_polygon(Box(0, 0, 10, 10)), Tgpc_polygon(Box(20, 0, 30, 10)))
            .NumContours(),
        0);
}

TEST_F(Tgcp, TheFourOperationsOnOverlappingRectanglesHaveTheirAreas) {
    Tgpc_polygon const a(Box(0, 0, 10, 10));
    Tgpc_polygon const b(Box(5, 5, 15, 15));
    EXPECT_EQ(Area(Clip(kPolyDifference, a, b)), 75.0);
    EXPECT_EQ(Area(Clip(kPolyIntersection, a, b)), 25.0);
    EXPECT_EQ(Area(Clip(kPolyXor, a, b)), 150.0);
    EXPECT_EQ(Area(Clip(kPolyUnion, a, b)), 175.0);
    EXPECT_EQ(Clip(kPolyIntersection, a, b).Bounds(), Box(5, 5, 10, 10));
}

TEST_F(Tgcp, InputsAreReadEvenOddWhateverTheirHoleFlags) {
    Tgpc_polygon frame =
        Polygon({{{0, 0}, {10, 0}, {10, 10}, {0, 10}}, {{2, 2}, {8, 2}, {8, 8}, {2, 8}}});
    Tgpc_polygon const window(Box(0, 0, 10, 10));
    EXPECT_EQ(Area(Clip(kPolyIntersection, frame, window)), 64.0);
    frame.mContours[0].mHole = true;
    EXPECT_EQ(Area(Clip(kPolyIntersection, frame, window)), 64.0);
}

TEST_F(Tgcp, ResultMayBeEitherInput) {
    Tgpc_polygon const a = Polygon({{{0, 0}, {10, 1}, {9, 12}, {-1, 8}}});
    Tgpc_polygon const b = Polygon({{{5, 5}, {15, 4}, {14, 18}, {4, 15}}});
    for (TPolyOp op : {kPolyDifference, kPolyIntersection, kPolyXor, kPolyUnion}) {
        Tgpc_polygon const fresh = Clip(op, a, b);
        EXPECT_GT(fresh.NumContours(), 0);
        Tgpc_polygon first = a;
        Tgpc_polygon_clip(op, first, b, first);
        EXPECT_TRUE(SameContours(first, fresh)) << op;
        Tgpc_polygon second = b;
        Tgpc_polygon_clip(op, a, second, second);
        EXPECT_TRUE(SameContours(second, fresh)) << op;
    }
    Tgpc_polygon all = a;
    Tgpc_polygon_clip(kPolyXor, all, all, all);
    EXPECT_EQ(all.NumContours(), 0);
}

TEST_F(Tgcp, AnEarlierResultIsReplaced) {
    Tgpc_polygon result(Box(100, 100, 200, 200));
    Tgpc_polygon_clip(kPolyIntersection, Tgpc_polygon(Box(0, 0, 1, 1)),
                      Tgpc_polygon(Box(5, 5, 6, 6)), result);
    EXPECT_EQ(result.NumContours(), 0);
}

TEST_F(Tgcp, OperationsOutsideTheFourGiveNoContours) {
    for (int code : {-1, 4, 5, 1000, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(Clip(static_cast<TPolyOp>(code), Tgpc_polygon(Box(0, 0, 10, 10)),
                       Tgpc_polygon(Box(5, 5, 15, 15)))
                      .NumContours(),
                  0)
            << code;
    }
}

TEST_F(Tgcp, EmptyOperandsFollowTheSetOperation) {
    Tgpc_polygon const a(Box(0, 0, 10, 10));
    Tgpc_polygon const none;
    EXPECT_EQ(Area(Clip(kPolyUnion, a, none)), 100.0);
    EXPECT_EQ(Area(Clip(kPolyDifference, a, none)), 100.0);
    EXPECT_EQ(Area(Clip(kPolyXor, none, a)), 100.0);
    EXPECT_EQ(Clip(kPolyDifference, none, a).NumContours(), 0);
    EXPECT_EQ(Clip(kPolyIntersection, a, none).NumContours(), 0);
    EXPECT_EQ(Clip(kPolyUnion, none, none).NumContours(), 0);
}

TEST_F(Tgcp, ContoursThatAreNotFiniteAreLeftOut) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    double const infinity = std::numeric_limits<double>::infinity();
    Tgpc_polygon a(Box(0, 0, 10, 10));
    a.AddContour(Contour({{1, nan}, {5, 1}, {5, 5}}));
    a.AddContour(Contour({{1, 1}, {infinity, 1}, {5, 5}}));
    EXPECT_EQ(Area(Clip(kPolyUnion, a, Tgpc_polygon(Box(20, 0, 30, 10)))), 200.0);
}

TEST_F(Tgcp, HandlePolygonsGoThroughAClipAndBack) {
    CFPolygonRef left = FRectToFPoly(Box(0, 0, 10, 10));
    CFPolygonRef right = RotRectToPoly(Box(6, 0, 16, 10), 0.5);
    Tgpc_polygon const common = Clip(kPolyIntersection, Tgpc_polygon(left), Tgpc_polygon(right));
    ASSERT_EQ(common.NumContours(), 1);
    CFPolygonRef result = common.ConvertToFPoly(0);
    EXPECT_TRUE(FPolyClosed(result));
    Random random(20);
    for (int i = 0; i < 2000; ++i) {
        Pt const p(random.Uniform(-2, 18), random.Uniform(-4, 14));
        EXPECT_EQ(FPtInFPoly(result, p), FPtInFPoly(left, p) && FPtInFPoly(right, p)) << Text(p);
    }
    KillFPoly(result);
    KillFPoly(right);
    KillFPoly(left);
}

TEST_F(Tgcp, AClipWithoutMemoryForItsRecordsThrowsAndLeavesTheResult) {
    if (!trammel_test::ShortMalloc::Works()) {
        GTEST_SKIP() << "malloc cannot be made to fail here";
    }
    Tgpc_polygon const a(Box(0, 0, 10, 10));
    Tgpc_polygon const b(Box(5, 5, 15, 15));
    Tgpc_polygon const before(Box(1, 2, 3, 4));
    // The record of each operand takes three requests: holes, contours and vertices.
    for (long granted = 0; granted < 6; ++granted) {
        Tgpc_polygon result = before;
        {
            trammel_test::ShortMalloc const memory(granted);
            EXPECT_THROW(Tgpc_polygon_clip(kPolyUnion, a, b, result), std::bad_alloc) << granted;
        }
        EXPECT_TRUE(SameContours(result, before)) << granted;
    }
    for (long granted = 0; granted < 3; ++granted) {
        trammel_test::ShortMalloc const memory(granted);
        EXPECT_THROW(Create_gpc(a), std::bad_alloc) << granted;
    }
}

TEST_F(Tgcp, AClipWithoutMemoryForItsContoursThrowsAndLeavesTheResult) {
    Tgpc_polygon const a(Box(0, 0, 10, 10));
    Tgpc_polygon const b(Box(5, 5, 15, 15));
    Tgpc_polygon const before(Box(1, 2, 3, 4));
    Tgpc_polygon const expected = Clip(kPolyUnion, a, b);
    // The contours and the vertices of the one contour take a request each.
    for (long granted = 0; granted < 3; ++granted) {
        Tgpc_polygon result = before;
        bool thrown = false;
        try {
            trammel_test::ShortMemory const memory(granted);
            Tgpc_polygon_clip(kPolyUnion, a, b, result);
        } catch (std::bad_alloc const&) {
            thrown = true;
        }
        EXPECT_EQ(thrown, granted < 2) << granted;
        EXPECT_TRUE(SameContours(result, thrown ? before : expected)) << granted;
    }
}

/// While it lives, `items` claims to have `count` elements. Only its size() may be asked for: no
/// machine that runs this test has the memory for the elements.
template <class Item> class ClaimedSize {
public:
    ClaimedSize(std::vector<Item>& items, std::size_t count) : mItems(items) {
        std::uintptr_t const begin = 4096;
        std::uintptr_t const end = begin + count * sizeof(Item);
        std::uintptr_t const pointers[3] = {begin, end, end}; // begin, end, end of the block
        static_assert(sizeof pointers == sizeof items);
        std::memcpy(mOwn, static_cast<void*>(&mItems), sizeof mOwn);
        std::memcpy(static_cast<void*>(&mItems), pointers, sizeof pointers);
    }
    ~ClaimedSize() { std::memcpy(static_cast<void*>(&mItems), mOwn, sizeof mOwn); }
    ClaimedSize(ClaimedSize const&) = delete;
    ClaimedSize& operator=(ClaimedSize const&) = delete;

private:
    std::vector<Item>& mItems;
    unsigned char mOwn[sizeof(std::vector<Item>)];
};

TEST_F(Tgcp, CountsThatDoNotFitTheRecordsAreTheStandardExceptionAndLeaveTheResult) {
    if (sizeof(std::size_t) < 8) {
        GTEST_SKIP() << "no vector has so many items here";
    }
    Tgpc_polygon const b(Box(5, 5, 15, 15));
    Tgpc_polygon const before(Box(1, 2, 3, 4));
    for (std::size_t const count : {std::size_t{1} << 31U, (std::size_t{1} << 31U) + 4,
                                    std::size_t{1} << 32U, (std::size_t{1} << 32U) + 4}) {
        Tgpc_polygon result = before;
        Tgpc_polygon manyVertices(Box(0, 0, 10, 10));
        {
            ClaimedSize<Pt> const claim(manyVertices.mContours[0].mVertices, count);
            ASSERT_EQ(manyVertices.mContours[0].size(), count);
            EXPECT_THROW(Create_gpc(manyVertices), std::bad_alloc) << count;
            EXPECT_THROW(Tgpc_polygon_clip(kPolyUnion, manyVertices, b, result), std::bad_alloc);
            EXPECT_THROW(Tgpc_polygon_clip(kPolyUnion, b, manyVertices, result), std::bad_alloc);
        }
        Tgpc_polygon manyContours;
        {
            ClaimedSize<Tgcp_contour> const claim(manyContours.mContours, count);
            EXPECT_THROW(Create_gpc(manyContours), std::bad_alloc) << count;
            EXPECT_THROW(Tgpc_polygon_clip(kPolyUnion, manyContours, b, result), std::bad_alloc);
        }
        EXPECT_TRUE(SameContours(result, before)) << count;
    }
}

} // namespace
