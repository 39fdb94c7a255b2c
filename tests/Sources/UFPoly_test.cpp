// SPDX-License-Identifier: MIT

#include "UFPoly.h"

#include "PolygonSupport.h"
#include "TestSupport.h"
#include "platform/LocaleForTests.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <locale>
#include <memory>
#include <string>
#include <vector>

namespace {

using trammel_test::Contents;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::PointsOf;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef TRect<double> Box;
typedef std::vector<Pt> Points;

/// A QuickDraw polygon as an application may hand it over: `size` and `box` need not be right.
MacPolygon** QuickDraw(std::int16_t size, Rect const& box, std::vector<Point> const& points) {
    Handle const h = NewHandle(static_cast<Size>(10 + 4 * points.size()));
    std::memcpy(*h, &size, sizeof size);
    std::memcpy(*h + 2, &box, sizeof box);
    for (std::size_t i = 0; i < points.size(); ++i) {
        std::memcpy(*h + 10 + 4 * i, &points[i], 4);
    }
    return reinterpret_cast<MacPolygon**>(h);
}

class FPoly : public trammel_test::WithoutLeaks {
protected:
    /// A reference that is disposed after the test.
    CFPolygonRef Keep(CFPolygonRef ref) {
        mKept.push_back(ref);
        return ref;
    }
    CFPolygonRef Polygon(Points const& points) {
        CFPolygonRef ref;
        ref.CFPolygonCreate(points);
        return Keep(ref);
    }
    /// The handle is disposed after the test.
    MacPolygon** Keep(MacPolygon** qd) {
        mHandles.push_back(reinterpret_cast<Handle>(qd));
        return qd;
    }
    void TearDown() override {
        for (CFPolygonRef& ref : mKept) {
            ref.Dispose();
        }
        for (Handle h : mHandles) {
            DisposeHandle(h);
        }
        WithoutLeaks::TearDown();
    }

private:
    std::vector<CFPolygonRef> mKept;
    std::vector<Handle> mHandles;
};

// Create and convert

TEST_F(FPoly, OpenMakesAnEmptyPolygonAndCloseDoesNothing) {
    long const handles = trammel_detail::LiveHandleCount();
    CFPolygonRef const ref = Keep(OpenFPoly());
    ASSERT_TRUE(ref);
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles + 1);
    EXPECT_EQ(ref.DataSize(), 44);
    EXPECT_EQ(LastFPolyIndex(ref), -1);
    AppendPolyPt(Pt(1, 2), ref);
    std::string const before = Contents(ref);
    CloseFPoly();
    EXPECT_EQ(Contents(ref), before);
    EXPECT_FALSE(ref.Closed());
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles + 1);
}

TEST_F(FPoly, CreatesThatManyPointsAtTheOrigin) {
    CFPolygonRef const ref = Keep(CreatePoly(4));
    EXPECT_EQ(Text(PointsOf(ref)), "(0, 0) (0, 0) (0, 0) (0, 0)");
    EXPECT_EQ(ref.DataSize(), 108);
    EXPECT_FALSE(ref.Closed());
    EXPECT_FALSE(ref.BoundsValid());
    EXPECT_EQ(Keep(CreatePoly(0)).DataSize(), 44);
    for (std::int64_t const n : {std::int64_t{-1}, std::int64_t{LONG_MIN}, std::int64_t{LONG_MAX},
                                 std::int64_t{1} << 60, std::int64_t{1} << 40}) {
        auto const count = static_cast<long>(n);
        EXPECT_FALSE(count == n && CreatePoly(count)) << n;
    }
}

TEST_F(FPoly, CloneCopiesTheBlock) {
    CFPolygonRef ref = Polygon({{1, 2}, {3, 4}, {5, 6}});
    ref.SetClosed(true);
    ref.Bounds();
    CFPolygonRef copy = Keep(CloneFPoly(ref));
    ASSERT_NE(copy.mRef, ref.mRef);
    EXPECT_EQ(Contents(copy), Contents(ref));
    EXPECT_TRUE(copy.Closed());
    EXPECT_TRUE(copy.BoundsValid());
    copy.SetPolyPoints(0, Pt(9, 9));
    EXPECT_EQ(ref.PolyPoints(0), Pt(1, 2));
    EXPECT_FALSE(CloneFPoly(CFPolygonRef()));
}

TEST_F(FPoly, KillFreesTheBlockAndLeavesTheCallersReferenceAsItIs) {
    long const handles = trammel_detail::LiveHandleCount();
    CFPolygonRef ref = OpenFPoly();
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles + 1);
    KillFPoly(ref);
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles);
    EXPECT_NE(ref.mRef, nullptr);
    ref.mRef = nullptr;
    KillFPoly(ref);
    EXPECT_EQ(trammel_detail::LiveHandleCount(), handles);
}

TEST_F(FPoly, ConvertsFromAQuickDrawPolygonByTheSizeOfItsBlock) {
    // Header size and box say something else; they are not read.
    Rect const box = {100, 200, 300, 400};
    MacPolygon** const qd =
        Keep(QuickDraw(9999, box, {{1, 2}, {-3, 40}, {32767, -32768}, {7, -7}})); // v, h
    CFPolygonRef const ref = Keep(Poly2FPoly(qd));
    EXPECT_EQ(Text(PointsOf(ref)), "(2, 1) (40, -3) (-32768, 32767) (-7, 7)");
    EXPECT_FALSE(ref.Closed());
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[-32768, -3, 40, 32767]");
}

TEST_F(FPoly, AQuickDrawHeaderAloneGivesAnEmptyPolygon) {
    CFPolygonRef const ref = Keep(Poly2FPoly(Keep(QuickDraw(10, Rect(), {}))));
    ASSERT_TRUE(ref);
    EXPECT_EQ(ref.DataSize(), 44);
    EXPECT_TRUE(ref.BoundsValid());
}

TEST_F(FPoly, NullAndShortQuickDrawHandlesGiveAnEmptyPolygon) {
    CFPolygonRef const ofNull = Keep(Poly2FPoly(nullptr));
    ASSERT_TRUE(ofNull);
    EXPECT_EQ(ofNull.LastIndex(), -1);
    for (Size size = 0; size < 14; ++size) {
        Handle const h = NewHandle(size);
        CFPolygonRef const ref = Keep(Poly2FPoly(Keep(reinterpret_cast<MacPolygon**>(h))));
        ASSERT_TRUE(ref) << size;
        EXPECT_EQ(ref.LastIndex(), -1) << size; // no piece of a point passes for one
    }
    for (Size size = 14; size < 23; ++size) {
        Handle const h = NewHandle(size);
        CFPolygonRef const ref = Keep(Poly2FPoly(Keep(reinterpret_cast<MacPolygon**>(h))));
        EXPECT_EQ(ref.LastIndex(), (size - 14) / 4) << size;
    }
}

TEST_F(FPoly, ConvertsToAQuickDrawPolygon) {
    CFPolygonRef const ref = Polygon({{1.5, 2.25}, {-3.5, 40}, {7, -7.75}});
    MacPolygon** const qd = Keep(FPoly2Poly(ref));
    ASSERT_NE(qd, nullptr);
    Handle const h = reinterpret_cast<Handle>(qd);
    ASSERT_EQ(GetHandleSize(h), 22);
    std::int16_t words[11];
    std::memcpy(words, *h, sizeof words);
    std::int16_t const expected[11] = {22,            // size
                                       -8, -4, 40, 7, // top, left, bottom, right
                                       2,  2,  40, -4, -8, 7};
    for (int i = 0; i < 11; ++i) {
        EXPECT_EQ(words[i], expected[i]) << i;
    }
    EXPECT_EQ(LastPolyIndex(qd), 2);
    EXPECT_EQ(Text(PointsOf(Keep(Poly2FPoly(qd)))), "(2, 2) (-4, 40) (7, -8)");

    MacPolygon** const ofNull = Keep(FPoly2Poly(CFPolygonRef()));
    EXPECT_EQ(GetHandleSize(reinterpret_cast<Handle>(ofNull)), 10);
}

TEST_F(FPoly, MakesFivePointsOfARectangle) {
    CFPolygonRef const ref = Keep(FRectToFPoly(Box(1, 2, 5, 4)));
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (5, 2) (5, 4) (1, 4) (1, 2)");
    EXPECT_FALSE(ref.Closed());
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[1, 2, 5, 4]");
    EXPECT_EQ(ref.GeometryEdgeCount(), 3);
    CFPolygonRef const crossed = Keep(FRectToFPoly(Box(5, 4, 1, 2)));
    EXPECT_EQ(Text(PointsOf(crossed)), "(5, 4) (1, 4) (1, 2) (5, 2) (5, 4)");
    CFPolygonRef const odd = Keep(FRectToFPoly(Box(kNaN, -0.0, kInf, 3)));
    EXPECT_EQ(Text(PointsOf(odd)), "(nan, -0) (inf, -0) (inf, 3) (nan, 3) (nan, -0)");
}

TEST_F(FPoly, TurnsARectangleAboutItsCentreEvenByNothing) {
    for (double const angle : {pi / 2.0, 0.1, -3.0, 0.0, -0.0, 1e308}) {
        Box const r(0.1, 0.2, 6.3, 4.7);
        CFPolygonRef const ref = Keep(RotRectToPoly(r, angle));
        Points expected = {{0.1, 0.2}, {6.3, 0.2}, {6.3, 4.7}, {0.1, 4.7}, {0.1, 0.2}};
        for (Pt& p : expected) {
            p.Rotate(angle, r.MidPt());
        }
        EXPECT_EQ(Text(PointsOf(ref)), Text(expected)) << angle;
        EXPECT_FALSE(ref.Closed());
        EXPECT_TRUE(ref.BoundsValid());
    }
    CFPolygonRef const quarter = Keep(RotRectToPoly(Box(0, 0, 4, 2), pi / 2.0));
    Points const corners = {{3, -1}, {3, 3}, {1, 3}, {1, -1}, {3, -1}};
    for (std::size_t i = 0; i < corners.size(); ++i) { // sine and cosine leave residues
        Pt const corner = quarter.PolyPoints(static_cast<long>(i));
        EXPECT_TRUE(EqualPtTol(corner, corners[i], 1e-14)) << Text(corner);
    }

    // Here the way to the centre and back rounds, and the angle 0 shows that it is gone.
    Box const tiny(1e-20, 1e-20, 1e10, 1e10);
    CFPolygonRef const turned = Keep(RotRectToPoly(tiny, 0.0));
    CFPolygonRef plain;
    plain.CFPolygonCreate(tiny, 0.0);
    Keep(plain);
    EXPECT_EQ(plain.PolyPoints(0), Pt(1e-20, 1e-20));
    EXPECT_EQ(turned.PolyPoints(0), Pt(0, 0));

    CFPolygonRef const lost = Keep(RotRectToPoly(Box(0, 0, 4, 2), kNaN));
    EXPECT_EQ(Text(PointsOf(lost)), "(nan, nan) (nan, nan) (nan, nan) (nan, nan) (nan, nan)");
}

TEST_F(FPoly, ShortMemoryGivesNullReferences) {
    MacPolygon** const qd = Keep(QuickDraw(14, Rect(), {{1, 2}}));
    CFPolygonRef const ref = Polygon({{1, 2}});
    trammel_detail::FailNextAllocations(7);
    EXPECT_FALSE(OpenFPoly());
    EXPECT_FALSE(CreatePoly(3));
    EXPECT_FALSE(CloneFPoly(ref));
    EXPECT_FALSE(Poly2FPoly(qd));
    EXPECT_EQ(FPoly2Poly(ref), nullptr);
    EXPECT_FALSE(FRectToFPoly(Box(1, 2, 3, 4)));
    EXPECT_FALSE(RotRectToPoly(Box(1, 2, 3, 4), 1.0));
    EXPECT_FALSE(trammel_detail::TakeInjectedFailure()) << "each asked once";
}

// Query

TEST_F(FPoly, ClosureIsJudgedByThePoints) {
    EXPECT_TRUE(FPolyClosed(CFPolygonRef()));
    EXPECT_TRUE(FPolyClosed(Keep(OpenFPoly())));
    EXPECT_TRUE(FPolyClosed(Polygon({{3, 4}})));
    CFPolygonRef triangle = Polygon({{1, 1}, {5, 1}, {5, 5}});
    EXPECT_FALSE(FPolyClosed(triangle));
    triangle.SetClosed(true);
    EXPECT_FALSE(FPolyClosed(triangle));
    AppendPolyPt(Pt(1, 1), triangle);
    EXPECT_TRUE(FPolyClosed(triangle));
    triangle.SetClosed(false);
    EXPECT_TRUE(FPolyClosed(triangle));
    EXPECT_FALSE(FPolyClosed(Polygon({{1, 1}, {5, 1}, {1, 1.0000000000000002}})));
    EXPECT_TRUE(FPolyClosed(Polygon({{0.0, 1}, {5, 1}, {-0.0, 1}})));
    EXPECT_FALSE(FPolyClosed(Polygon({{kNaN, 1}})));
}

TEST_F(FPoly, LastIndexesFollowFromTheSizeOfTheBlock) {
    EXPECT_EQ(LastFPolyIndex(CFPolygonRef()), -1);
    EXPECT_EQ(LastFPolyIndex(Keep(OpenFPoly())), -1);
    EXPECT_EQ(LastFPolyIndex(Keep(CreatePoly(5))), 4);

    EXPECT_EQ(LastPolyIndex(Keep(QuickDraw(0, Rect(), std::vector<Point>(4)))), 3); // 26 bytes
    EXPECT_EQ(LastPolyIndex(Keep(QuickDraw(0, Rect(), {}))), -1);
    EXPECT_EQ(LastPolyIndex(Keep(QuickDraw(0, Rect(), std::vector<Point>(1)))), 0);
    EXPECT_EQ(LastPolyIndex(nullptr), -3);
    Handle const large = NewHandle(10 + 4L * 100000);
    EXPECT_EQ(LastPolyIndex(Keep(reinterpret_cast<MacPolygon**>(large))), 99999);
}

TEST_F(FPoly, FindBBoxRebuildsTheBounds) {
    CFPolygonRef const ref = Polygon({{1, 2}, {5, 7}});
    FindFPolyBBox(ref);
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[1, 2, 5, 7]");
    FPolygon* const record = *static_cast<FPolygon**>(ref);
    record->polyBBox = Box(100, 100, 200, 200); // a cache gone stale
    EXPECT_EQ(Text(ref.Bounds()), "[100, 100, 200, 200]");
    FindFPolyBBox(ref);
    EXPECT_EQ(Text(ref.Bounds()), "[1, 2, 5, 7]");
    FindFPolyBBox(CFPolygonRef());
}

TEST_F(FPoly, DescriptionHasALineForEachPoint) {
    EXPECT_EQ(PolyDescription(Polygon({{10, 20}, {30.5, 40}})), "10, 20\n30.5, 40\n");
    EXPECT_EQ(PolyDescription(CFPolygonRef()), "");
    EXPECT_EQ(PolyDescription(Keep(OpenFPoly())), "");
    EXPECT_EQ(PolyDescription(Polygon({{1e6, 999999}, {123456.7, -0.0}, {1e-5, 0.0001}})),
              "1e+06, 999999\n123457, -0\n1e-05, 0.0001\n");
    EXPECT_EQ(PolyDescription(Polygon({{1.0 / 3.0, -2.0 / 3.0}, {5e-324, 1e308}})),
              "0.333333, -0.666667\n4.94066e-324, 1e+308\n");
    EXPECT_EQ(PolyDescription(Polygon({{kInf, -kInf}})), "inf, -inf\n");
    EXPECT_EQ(PolyDescription(Polygon({{kNaN, 1}})), "nan, 1\n");
}

TEST_F(FPoly, DescriptionDoesNotChangeThePolygon) {
    CFPolygonRef ref = Polygon({{10, 20}, {30, 40}});
    ref.SetClosed(true);
    std::string const before = Contents(ref);
    EXPECT_EQ(PolyDescription(ref), "10, 20\n30, 40\n");
    EXPECT_EQ(Contents(ref), before);
}

/// Decimal comma, points between groups of three.
class CommaAndGroups : public std::numpunct<char> {
protected:
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

TEST_F(FPoly, DescriptionIsTheSameInEveryLocale) {
    CFPolygonRef const ref = Polygon({{1234.5, 20000}, {1e6, 0.25}});
    std::string const expected = "1234.5, 20000\n1e+06, 0.25\n";
    std::locale const former = std::locale::global(
        std::locale(std::locale::classic(), new CommaAndGroups)); // freed by the locale
    std::string const text = PolyDescription(ref);
    std::locale::global(former);
    EXPECT_EQ(text, expected);
    CommaLocale const comma;
    if (!comma.Available()) {
        GTEST_SKIP() << "the machine has no locale with a decimal comma";
    }
    EXPECT_EQ(PolyDescription(ref), expected);
}

// Change

TEST_F(FPoly, ScalesAboutTheOrigin) {
    CFPolygonRef const ref = Polygon({{1, 2}, {-3, 4}});
    ref.Bounds();
    ScaleFPoly(ref, 1.0);
    EXPECT_TRUE(ref.BoundsValid());
    ScaleFPoly(ref, 2.5);
    EXPECT_EQ(Text(PointsOf(ref)), "(2.5, 5) (-7.5, 10)");
    EXPECT_FALSE(ref.BoundsValid());
    ScaleFPoly(CFPolygonRef(), 2.0);
}

TEST_F(FPoly, RotatesAboutACentre) {
    CFPolygonRef const ref = Polygon({{3, 1}, {1, 1}});
    RotateFPoly(ref, pi / 2.0, Pt(1, 1));
    EXPECT_TRUE(EqualPtTol(ref.PolyPoints(0), Pt(1, 3), 1e-14)) << Text(ref.PolyPoints(0));
    EXPECT_EQ(ref.PolyPoints(1), Pt(1, 1));
    RotateFPoly(CFPolygonRef(), 2.0, Pt(1, 1));
}

TEST_F(FPoly, MapsRectangleToRectangle) {
    CFPolygonRef const ref = Polygon({{0, 0}, {10, 20}, {5, 5}});
    MapFPoly(ref, Box(0, 0, 10, 20), Box(100, 200, 120, 210));
    EXPECT_EQ(Text(PointsOf(ref)), "(100, 200) (120, 210) (110, 202.5)");
    MapFPoly(CFPolygonRef(), Box(0, 0, 1, 1), Box(0, 0, 2, 2));
}

TEST_F(FPoly, OffsetMovesAndComputesTheBounds) {
    CFPolygonRef const ref = Polygon({{1, 2}, {-3, 4}});
    OffsetFPoly(ref, Pt(10, -20));
    EXPECT_EQ(Text(PointsOf(ref)), "(11, -18) (7, -16)");
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[7, -18, 11, -16]");
    OffsetFPoly(CFPolygonRef(), Pt(1, 1));
}

TEST_F(FPoly, AppendsAndInserts) {
    CFPolygonRef const ref = Keep(OpenFPoly());
    AppendPolyPt(Pt(1, 1), ref);
    AppendPolyPt(Pt(3, 3), ref);
    EXPECT_FALSE(ref.BoundsValid());
    InsertPolyPt(1, Pt(2, 2), ref);
    InsertPolyPt(0, Pt(0.5, 0.5), ref);
    InsertPolyPt(4, Pt(4, 4), ref);
    EXPECT_EQ(Text(PointsOf(ref)), "(0.5, 0.5) (1, 1) (2, 2) (3, 3) (4, 4)");
    InsertPolyPt(-5, Pt(-1, -1), ref);
    InsertPolyPt(99, Pt(9, 9), ref);
    EXPECT_EQ(ref.PolyPoints(0), Pt(-1, -1));
    EXPECT_EQ(ref.PolyPoints(6), Pt(9, 9));
    AppendPolyPt(Pt(1, 1), CFPolygonRef());
    InsertPolyPt(0, Pt(1, 1), CFPolygonRef());
}

TEST_F(FPoly, DeleteRemovesTheLastPointAndComputesTheBounds) {
    CFPolygonRef const ref = Polygon({{1, 2}, {3, 4}, {50, 60}});
    DeletePolyPt(ref);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 2) (3, 4)");
    EXPECT_TRUE(ref.BoundsValid());
    EXPECT_EQ(Text(ref.Bounds()), "[1, 2, 3, 4]");
    DeletePolyPt(ref);
    DeletePolyPt(ref);
    EXPECT_EQ(ref.LastIndex(), -1);
    EXPECT_EQ(ref.DataSize(), 44);
    ref.InvalBounds();
    DeletePolyPt(ref); // nothing to remove
    EXPECT_EQ(ref.DataSize(), 44);
    EXPECT_TRUE(ref.BoundsValid());
    DeletePolyPt(CFPolygonRef());
}

TEST_F(FPoly, DeleteOfAPartOfAPointRemovesNothing) {
    for (long size = 45; size < 60; ++size) {
        Handle const block = NewHandleClear(size);
        CFPolygonRef const foreign(reinterpret_cast<FPolygon**>(block), false);
        DeletePolyPt(foreign);
        EXPECT_EQ(foreign.DataSize(), size);
        EXPECT_EQ(LastFPolyIndex(foreign), 0);
        DisposeHandle(block);
    }
}

TEST_F(FPoly, InsertPtsAppendsARunInEitherDirection) {
    Points const source = {{10, 1}, {11, 1}, {12, 1}, {13, 1}};
    struct Case {
        long count;
        short mode;
        char const* appended;
    };
    for (Case const& each : std::vector<Case>{
             {3, 1, " (11, 1) (12, 1) (13, 1)"}, // all but the first
             {3, 2, " (12, 1) (11, 1) (10, 1)"}, // all but the last, backward
             {3, 0, ""},
             {3, 3, ""},
             {3, -1, ""},
             {3, 257, ""},
             {1, 1, " (11, 1)"},
             {1, 2, " (10, 1)"},
             {0, 1, ""},
             {0, 2, ""},
             {-1, 1, ""},
             {-1, 2, ""},
             {LONG_MIN, 1, ""},
             {LONG_MIN, 2, ""},
             {5, 1, " (11, 1) (12, 1) (13, 1) (0, 0) (0, 0)"}, // beyond the source
             {5, 2, " (0, 0) (13, 1) (12, 1) (11, 1) (10, 1)"},
         }) {
        CFPolygonRef const src = Polygon(source);
        CFPolygonRef const dst = Polygon({{1, 1}, {2, 1}});
        std::string const before = Contents(src);
        InsertPolyPts(dst, src, each.count, each.mode);
        EXPECT_EQ(Text(PointsOf(dst)), std::string("(1, 1) (2, 1)") + each.appended)
            << each.count << ", " << each.mode;
        EXPECT_TRUE(dst.BoundsValid()) << "computed in every case";
        EXPECT_EQ(Contents(src), before);
    }
}

TEST_F(FPoly, InsertPtsComputesTheBoundsOfTheDestination) {
    CFPolygonRef const src = Polygon({{10, 1}, {11, 70}});
    CFPolygonRef const dst = Polygon({{1, 1}, {2, 3}});
    InsertPolyPts(dst, src, 1, 0);
    EXPECT_TRUE(dst.BoundsValid());
    EXPECT_FALSE(src.BoundsValid());
    EXPECT_EQ(Text(dst.Bounds()), "[1, 1, 2, 3]");
    InsertPolyPts(dst, src, 1, 1);
    EXPECT_EQ(Text(dst.Bounds()), "[1, 1, 11, 70]");
}

TEST_F(FPoly, InsertPtsOfAPolygonIntoItselfTakesThePointsThatItHadBefore) {
    char const* const start = "(1, 1) (2, 1) (3, 1)";
    struct Case {
        long count;
        short mode;
        char const* appended;
    };
    for (Case const& each : std::vector<Case>{
             {2, 1, " (2, 1) (3, 1)"},
             {2, 2, " (2, 1) (1, 1)"},
             {3, 2, " (3, 1) (2, 1) (1, 1)"},
             {6, 1, " (2, 1) (3, 1) (0, 0) (0, 0) (0, 0) (0, 0)"},
             {5, 2, " (0, 0) (0, 0) (3, 1) (2, 1) (1, 1)"},
         }) {
        CFPolygonRef const ref = Polygon({{1, 1}, {2, 1}, {3, 1}});
        InsertPolyPts(ref, ref, each.count, each.mode);
        EXPECT_EQ(Text(PointsOf(ref)), std::string(start) + each.appended)
            << each.count << ", " << each.mode;
    }
    // Often enough for the block to move while it is read.
    CFPolygonRef const ref = Polygon({{1, 1}, {2, 1}, {3, 1}});
    for (int i = 0; i < 12; ++i) {
        InsertPolyPts(ref, ref, ref.LastIndex(), 2);
    }
    EXPECT_EQ(ref.LastIndex(), 2 * 4096); // n becomes 2n - 1
}

TEST_F(FPoly, InsertPtsAbsorbsNullReferences) {
    CFPolygonRef const ref = Polygon({{1, 1}, {2, 1}});
    for (short const mode : {short{0}, short{1}, short{2}}) {
        InsertPolyPts(CFPolygonRef(), ref, 3, mode);
        InsertPolyPts(CFPolygonRef(), CFPolygonRef(), LONG_MAX, mode);
        InsertPolyPts(CFPolygonRef(), ref, (1L << 36) - 1, mode);
    }
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 1) (2, 1)");
    InsertPolyPts(ref, CFPolygonRef(), 2, 1); // points that are not there read as (0, 0)
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 1) (2, 1) (0, 0) (0, 0)");
}

TEST_F(FPoly, InsertPtsDoesNotBeginARunThatNoPolygonCanHold) {
    for (short const mode : {short{1}, short{2}}) {
        for (std::int64_t const wide : {std::int64_t{1} << 36, (std::int64_t{1} << 36) + 1,
                                        std::int64_t{1} << 62, std::int64_t{LONG_MAX}}) {
            auto const count = static_cast<long>(wide);
            if (count != wide) {
                continue; // a long of 32 bits
            }
            CFPolygonRef const src = Polygon({{10, 1}, {11, 1}});
            CFPolygonRef const dst = Polygon({{1, 1}});
            InsertPolyPts(dst, src, count, mode);
            EXPECT_EQ(Text(PointsOf(dst)), "(1, 1)") << count;
            EXPECT_TRUE(dst.BoundsValid());
        }
    }
}

TEST_F(FPoly, InsertPtsEndsWhereMemoryDoes) {
    for (short const mode : {short{1}, short{2}}) {
        CFPolygonRef const src = Polygon({{10, 1}, {11, 1}, {12, 1}});
        CFPolygonRef const dst = Polygon({{1, 1}});
        trammel_detail::FailNextAllocations(1);
        InsertPolyPts(dst, src, 2, mode);
        EXPECT_FALSE(trammel_detail::TakeInjectedFailure());
        EXPECT_EQ(Text(PointsOf(dst)), "(1, 1)") << "no point of the run after the one that failed";
        EXPECT_TRUE(dst.BoundsValid());
    }
}

TEST_F(FPoly, ShortMemoryLeavesThePolygonAsItWas) {
    CFPolygonRef const ref = Polygon({{1, 1}, {2, 1}});
    trammel_detail::FailNextAllocations(2);
    AppendPolyPt(Pt(9, 9), ref);
    InsertPolyPt(0, Pt(9, 9), ref);
    EXPECT_EQ(Text(PointsOf(ref)), "(1, 1) (2, 1)");
    EXPECT_FALSE(trammel_detail::TakeInjectedFailure());
    trammel_detail::FailNextAllocations(1000);
    DeletePolyPt(ref); // these ask for none
    OffsetFPoly(ref, Pt(1, 1));
    ScaleFPoly(ref, 2.0);
    RotateFPoly(ref, 0.0, Pt(0, 0));
    MapFPoly(ref, Box(0, 0, 1, 1), Box(0, 0, 1, 1));
    FindFPolyBBox(ref);
    EXPECT_EQ(Text(PointsOf(ref)), "(4, 4)");
}

// Containment

TEST_F(FPoly, PointInPolygonFollowsTheEvenOddRule) {
    CFPolygonRef const square = Polygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
    EXPECT_TRUE(FPtInFPoly(square, Pt(5, 5)));
    EXPECT_FALSE(FPtInFPoly(square, Pt(11, 5)));
    EXPECT_FALSE(FPtInFPoly(square, Pt(0, 5)));
    EXPECT_TRUE(FPtInFPoly(square, Pt(10, 5)));
    EXPECT_TRUE(FPtInFPoly(square, Pt(5, 0)));
    EXPECT_FALSE(FPtInFPoly(square, Pt(5, 10)));
    EXPECT_FALSE(FPtInFPoly(square, Pt(kNaN, 5)));
    EXPECT_FALSE(FPtInFPoly(CFPolygonRef(), Pt(0, 0)));
    EXPECT_FALSE(FPtInFPoly(Keep(OpenFPoly()), Pt(0, 0)));
}

TEST_F(FPoly, RectangleInPolygonLooksAtTheCornersOnly) {
    CFPolygonRef const square = Polygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
    // Each set of corners inside: all of them, none of them, or some.
    struct Case {
        char const* name;
        Box rect;
        bool all;
        bool any;
    };
    for (Case const& each : std::vector<Case>{
             {"within", Box(2, 2, 8, 8), true, true},
             {"around", Box(-5, -5, 15, 15), false, false},
             {"beside", Box(20, 20, 30, 30), false, false},
             {"top-left inside", Box(8, 8, 15, 15), false, true},
             {"top-right inside", Box(-5, 8, 2, 15), false, true},
             {"bottom-right inside", Box(-5, -5, 2, 2), false, true},
             {"bottom-left inside", Box(8, -5, 15, 2), false, true},
             {"across: no corner", Box(-5, 4, 15, 6), false, false},
             {"a point within", Box(5, 5, 5, 5), true, true},
             {"turned inside out", Box(8, 8, 2, 2), true, true},
             {"NaN", Box(kNaN, 2, 8, 8), false, true},
         }) {
        EXPECT_EQ(FRectInFPoly(square, each.rect, true), each.all) << each.name;
        EXPECT_EQ(FRectInFPoly(square, each.rect, false), each.any) << each.name;
    }
}

TEST_F(FPoly, EachCornerOfARectangleCounts) {
    // Three corners inside: the polygon is a square without one of its own corners.
    Box const rect(2, 2, 8, 8);
    for (CFPolygonRef const ref : {
             Polygon({{5, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 5}}), // without top left
             Polygon({{0, 0}, {5, 0}, {10, 5}, {10, 10}, {0, 10}}), // top right
             Polygon({{0, 0}, {10, 0}, {10, 5}, {5, 10}, {0, 10}}), // bottom right
             Polygon({{0, 0}, {10, 0}, {10, 10}, {5, 10}, {0, 5}}), // bottom left
         }) {
        EXPECT_FALSE(FRectInFPoly(ref, rect, true)) << PolyDescription(ref);
        EXPECT_TRUE(FRectInFPoly(ref, rect, false)) << PolyDescription(ref);
    }
    // One corner inside, each in turn.
    for (CFPolygonRef const ref : {
             Polygon({{0, 0}, {4, 0}, {4, 4}, {0, 4}}),
             Polygon({{6, 0}, {10, 0}, {10, 4}, {6, 4}}),
             Polygon({{6, 6}, {10, 6}, {10, 10}, {6, 10}}),
             Polygon({{0, 6}, {4, 6}, {4, 10}, {0, 10}}),
         }) {
        EXPECT_FALSE(FRectInFPoly(ref, rect, true)) << PolyDescription(ref);
        EXPECT_TRUE(FRectInFPoly(ref, rect, false)) << PolyDescription(ref);
    }
}

TEST_F(FPoly, AConcavePolygonMayCutIntoARectangleThatIsInside) {
    CFPolygonRef const notched =
        Polygon({{0, 0}, {4, 0}, {5, 9}, {6, 0}, {10, 0}, {10, 10}, {0, 10}});
    EXPECT_FALSE(FPtInFPoly(notched, Pt(5, 5)));
    EXPECT_TRUE(FRectInFPoly(notched, Box(2, 2, 8, 8), true));
    EXPECT_FALSE(FRectInFPoly(CFPolygonRef(), Box(2, 2, 8, 8), true));
    EXPECT_FALSE(FRectInFPoly(CFPolygonRef(), Box(2, 2, 8, 8), false));
    EXPECT_FALSE(FRectInFPoly(Keep(OpenFPoly()), Box(2, 2, 8, 8), true));
}

TEST_F(FPoly, PolygonInPolygonLooksAtThePointsOnly) {
    CFPolygonRef const square = Polygon({{0, 0}, {10, 0}, {10, 10}, {0, 10}});
    struct Case {
        char const* name;
        Points inner;
        bool all;
        bool any;
    };
    for (Case const& each : std::vector<Case>{
             {"within", {{2, 2}, {8, 2}, {5, 8}}, true, true},
             {"first outside", {{-2, 2}, {8, 2}, {5, 8}}, false, true},
             {"middle outside", {{2, 2}, {18, 2}, {5, 8}}, false, true},
             {"last outside", {{2, 2}, {8, 2}, {5, 18}}, false, true},
             {"first inside", {{2, 2}, {18, 2}, {5, 18}}, false, true},
             {"last inside", {{-2, 2}, {18, 2}, {5, 8}}, false, true},
             {"outside", {{-2, 2}, {18, 2}, {5, 18}}, false, false},
             {"one point", {{5, 5}}, true, true},
             {"empty", {}, true, false},
         }) {
        CFPolygonRef const inner = Polygon(each.inner);
        EXPECT_EQ(FPolyInFPoly(square, inner, true), each.all) << each.name;
        EXPECT_EQ(FPolyInFPoly(square, inner, false), each.any) << each.name;
    }
    EXPECT_TRUE(FPolyInFPoly(square, CFPolygonRef(), true));
    EXPECT_FALSE(FPolyInFPoly(square, CFPolygonRef(), false));
    EXPECT_FALSE(FPolyInFPoly(CFPolygonRef(), square, true));
    EXPECT_FALSE(FPolyInFPoly(CFPolygonRef(), square, false));
    EXPECT_TRUE(FPolyInFPoly(CFPolygonRef(), CFPolygonRef(), true));
    // By the rule for edges, one corner of a square is inside itself: that of larger h, smaller v.
    EXPECT_FALSE(FPolyInFPoly(square, square, true));
    EXPECT_TRUE(FPolyInFPoly(square, square, false));
}

TEST_F(FPoly, InFptBoundsReachesOneUnitBeyondTheBox) {
    Pt const a(10, 20);
    Pt const b(30, 50);
    EXPECT_TRUE(InFptBounds(a, b, Pt(20, 30)));
    EXPECT_TRUE(InFptBounds(b, a, Pt(20, 30)));
    EXPECT_TRUE(InFptBounds(Pt(10, 50), Pt(30, 20), Pt(20, 30)));
    struct Side {
        Pt edge;
        Pt outward;
    };
    for (Side const& side : std::vector<Side>{{{10, 30}, {-1, 0}},
                                              {{30, 30}, {1, 0}},
                                              {{20, 20}, {0, -1}},
                                              {{20, 50}, {0, 1}},
                                              {{30, 50}, {1, 1}},
                                              {{10, 20}, {-1, -1}}}) {
        EXPECT_TRUE(InFptBounds(a, b, side.edge));
        EXPECT_TRUE(InFptBounds(a, b, side.edge + side.outward * 0.5));
        EXPECT_TRUE(InFptBounds(a, b, side.edge + side.outward))
            << "the grown border belongs to it";
        EXPECT_FALSE(InFptBounds(a, b, side.edge + side.outward * 1.0000001));
        EXPECT_FALSE(InFptBounds(a, b, side.edge + side.outward * 1.5));
    }
    EXPECT_TRUE(InFptBounds(a, a, Pt(9.5, 20.5)));
    EXPECT_TRUE(InFptBounds(Pt(0, 0), Pt(0, 0), Pt(1, -1)));
    EXPECT_FALSE(InFptBounds(a, b, Pt(kNaN, 30)));
    EXPECT_FALSE(InFptBounds(a, b, Pt(kInf, 30)));
}

// Points and rectangles

TEST_F(FPoly, PointsAreEqualBelowATolerance) {
    Pt const a(10, 20);
    EXPECT_TRUE(EqualPtTol(a, a, 0.5));
    EXPECT_TRUE(EqualPtTol(a, Pt(10.25, 19.75), 0.5));
    EXPECT_FALSE(EqualPtTol(a, Pt(10.5, 20), 0.5)) << "exactly the tolerance";
    EXPECT_FALSE(EqualPtTol(a, Pt(10, 19.5), 0.5));
    EXPECT_FALSE(EqualPtTol(a, Pt(9.5, 20), 0.5));
    EXPECT_FALSE(EqualPtTol(a, Pt(10, 20.5), 0.5));
    EXPECT_TRUE(EqualPtTol(a, Pt(10.4999, 20.4999), 0.5)) << "each axis for itself";
    EXPECT_FALSE(EqualPtTol(a, Pt(10, 99), 0.5));
    EXPECT_FALSE(EqualPtTol(a, Pt(99, 20), 0.5));
    EXPECT_FALSE(EqualPtTol(a, a, 0.0));
    EXPECT_FALSE(EqualPtTol(a, a, -1.0));
    EXPECT_TRUE(EqualPtTol(a, Pt(1e300, -1e300), kInf));
    EXPECT_FALSE(EqualPtTol(a, a, kNaN));
    EXPECT_FALSE(EqualPtTol(Pt(kNaN, 1), Pt(kNaN, 1), kInf));
    EXPECT_FALSE(EqualPtTol(Pt(kInf, 1), Pt(kInf, 1), kInf));
}

TEST_F(FPoly, FRectCenterStoresTheCentreAndHalfTheSizes) {
    Pt centre(9, 9);
    double hRadius = 9;
    double vRadius = 9;
    FRectCenter(Box(1, 2, 6, 8), centre, hRadius, vRadius);
    EXPECT_EQ(centre, Pt(3.5, 5));
    EXPECT_EQ(hRadius, 2.5);
    EXPECT_EQ(vRadius, 3.0);
    FRectCenter(Box(6, 8, 1, 2), centre, hRadius, vRadius);
    EXPECT_EQ(centre, Pt(3.5, 5));
    EXPECT_EQ(hRadius, -2.5);
    EXPECT_EQ(vRadius, -3.0);
    Box changed(1, 2, 6, 8); // the rectangle was copied first
    FRectCenter(changed, centre, changed.left, changed.top);
    EXPECT_EQ(changed.left, 2.5);
    EXPECT_EQ(changed.top, 3.0);
}

TEST_F(FPoly, ATrueCircleHasNearlyEqualSides) {
    EXPECT_TRUE(IsTrueCircle(Box(0, 0, 100, 100)));
    EXPECT_TRUE(IsTrueCircle(Box(0, 0, 100, 100.05)));
    EXPECT_TRUE(IsTrueCircle(Box(0, 0, 100.05, 100)));
    EXPECT_FALSE(IsTrueCircle(Box(0, 0, 100, 100.07)));
    EXPECT_FALSE(IsTrueCircle(Box(0, 0, 100.07, 100)));
    double const limit = 0.06103515625; // 4000/65536
    EXPECT_FALSE(IsTrueCircle(Box(0, 0, limit, 0)));
    EXPECT_FALSE(IsTrueCircle(Box(0, 0, 0, limit)));
    EXPECT_TRUE(IsTrueCircle(Box(0, 0, std::nextafter(limit, 0.0), 0)));
    EXPECT_FALSE(IsTrueCircle(Box(0, 0, 64, 64 + limit)));
    EXPECT_TRUE(IsTrueCircle(Box()));
    EXPECT_TRUE(IsTrueCircle(Box(5, 5, 1, 1)));
    EXPECT_FALSE(IsTrueCircle(Box(0, 0, kNaN, 1)));
    EXPECT_FALSE(IsTrueCircle(Box(0, 0, kInf, kInf)));
}

} // namespace
