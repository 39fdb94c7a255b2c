// SPDX-License-Identifier: MIT

// A point-list polygon's answers: which points it contains, points along it, and the pieces of
// lines inside it.

#include "TPoly.h"

#include "CFPolygonRef.h"
#include "ContainmentCases.h"
#include "PointListSupport.h"
#include "PolygonSupport.h"
#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

using trammel_test::Chain;
using trammel_test::Clip;
using trammel_test::Closed;
using trammel_test::ClosedSquare;
using trammel_test::ForSmallRings;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Open;
using trammel_test::PlainContains;
using trammel_test::PointListPolygon;
using trammel_test::RandomPoints;
using trammel_test::Record;
using trammel_test::Text;

using Points = std::vector<TPoint<double>>;
using Polygon = TPolygon<double>;
using Table = std::vector<double>;

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
    Polygon const square = ClosedSquare();
    square.CalcBounds();
    Record(square).mBounds = TRect<double>(0, 0, 4, 4);
    EXPECT_TRUE(square.Contains(TPoint<double>(4, 4)));
    EXPECT_FALSE(square.Contains(TPoint<double>(5, 5)));
    square.CalcBounds();
    EXPECT_TRUE(square.Contains(TPoint<double>(5, 5)));
}

TEST_F(PointListPolygon, ContainsAgreesWithTheRuleWrittenOut) {
    long inside = 0;
    ForSmallRings(52, [&](int round, Points const& vertices, Points const& points) {
        Polygon const polygon = round % 2 == 0 ? Open(vertices) : Closed(vertices);
        for (TPoint<double> const& p : points) {
            bool const expected = polygon.Bounds().Contains(p) && PlainContains(vertices, p);
            ASSERT_EQ(polygon.Contains(p), expected) << Text(vertices) << " " << Text(p);
            inside += expected ? 1 : 0;
        }
    });
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
    Polygon const square = ClosedSquare();
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
    EXPECT_EQ(Text(ClosedSquare().TPt(1.5)), "(0, 10)");
}

TEST_F(PointListPolygon, TPtOnEdgesWithoutLengthMayBeNaN) {
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
    BuildLTable<double>(ClosedSquare(), table);
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
    EXPECT_EQ(ByTable(ClosedSquare(), 0.9), "(3, 10)");
    EXPECT_EQ(ByTable(ClosedSquare(), 1.0), "(0, 10)");
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

TEST_F(PointListPolygon, TPtByTableOnEdgesWithoutLengthGivesAVertex) {
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
    Polygon const square = ClosedSquare(); // 40 around, 30 along the chain
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

TEST_F(PointListPolygon, ClipCutsALineIntoThePiecesInside) {
    Polygon const square = ClosedSquare();
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

TEST_F(PointListPolygon, ClipAlongEdgesAndThroughVerticesFollowsTheRuleForPoints) {
    Polygon const square = ClosedSquare();
    EXPECT_EQ(Text(Clip(square, -5, 0, 15, 0)), "(0, 0)-(10, 0)"); // the edge of smaller v is in
    EXPECT_EQ(Text(Clip(square, -5, 10, 15, 10)), "");
    EXPECT_EQ(Text(Clip(square, -5, -5, 15, 15)), "(0, 0)-(10, 10)");
    // Touches the vertex (10, 0), which both its edges find and which counts as inside.
    EXPECT_EQ(Text(Clip(square, 5, -5, 15, 5)), "(10, 0)-(10, 0)");
    // Touches (0, 10), which does not.
    EXPECT_EQ(Text(Clip(square, -5, 5, 5, 15)), "");
}

TEST_F(PointListPolygon, ClipOfALineWithoutLengthGivesItsPointWhereInside) {
    EXPECT_EQ(Text(Clip(ClosedSquare(), 5, 5, 5, 5)), "(5, 5)-(5, 5)");
    EXPECT_EQ(Text(Clip(ClosedSquare(), 50, 5, 50, 5)), "");
}

TEST_F(PointListPolygon, ClipOfLinesWithoutNumbersGivesNoPieces) {
    for (Polygon const& polygon : {ClosedSquare(), Polygon(), Open({{5, 5}})}) {
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

} // namespace
