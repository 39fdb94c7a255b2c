// SPDX-License-Identifier: MIT

// The clipper's results on figures that can be drawn by hand, and on operands that are unusual.
#include "ClipChecks.h"

#include "gpc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

namespace clip_test {
namespace {

using plain::Clip;
using plain::kOperations;

/// All contours with their least vertex first, in the order of those vertices.
std::vector<Contour> Unordered(Region const& region) {
    std::vector<Contour> contours;
    for (Contour const& contour : region.contours) {
        contours.push_back(plain::Rotated(contour));
    }
    std::sort(contours.begin(), contours.end(), [](Contour const& a, Contour const& b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end());
    });
    return contours;
}

TEST(Clip, HasThePublishedCodesAndRecords) {
    EXPECT_EQ(GPC_DIFF, 0U);
    EXPECT_EQ(GPC_INT, 1U);
    EXPECT_EQ(GPC_XOR, 2U);
    EXPECT_EQ(GPC_UNION, 3U);
    EXPECT_EQ(sizeof(gpc_op), sizeof(int));
    EXPECT_EQ(sizeof(gpc_vertex), 16U);
    EXPECT_EQ(sizeof(gpc_vertex_list), 2 * sizeof(void*));
    EXPECT_EQ(sizeof(gpc_polygon), 3 * sizeof(void*));
}

TEST(Clip, CombinesTwoOverlappingSquares) {
    Polygon const a{Rectangle(0, 0, 10, 10)};
    Polygon const b{Rectangle(5, 5, 15, 15)};
    Region const difference = Clip(GPC_DIFF, a, b);
    ASSERT_EQ(difference.contours.size(), 1U);
    EXPECT_EQ(difference.contours[0],
              (Contour{{5, 5}, {10, 5}, {10, 0}, {0, 0}, {0, 10}, {5, 10}}));
    Region const intersection = Clip(GPC_INT, a, b);
    ASSERT_EQ(intersection.contours.size(), 1U);
    EXPECT_EQ(intersection.contours[0], (Contour{{10, 5}, {5, 5}, {5, 10}, {10, 10}}));
    Region const both = Clip(GPC_UNION, a, b);
    ASSERT_EQ(both.contours.size(), 1U);
    EXPECT_EQ(both.contours[0],
              (Contour{{15, 5}, {10, 5}, {10, 0}, {0, 0}, {0, 10}, {5, 10}, {5, 15}, {15, 15}}));
    Region const either = Clip(GPC_XOR, a, b);
    EXPECT_EQ(either.contours.size(), 2U);
    EXPECT_EQ(either.holes, (std::vector<int>{0, 0}));
    EXPECT_DOUBLE_EQ(Area(either), 150);
}

TEST(Clip, MakesAHoleOfASquareTakenOutOfASquare) {
    Region const region = Clip(GPC_DIFF, {Rectangle(0, 0, 10, 10)}, {Rectangle(4, 4, 6, 6)});
    ASSERT_EQ(region.contours.size(), 2U);
    EXPECT_EQ(region.holes, (std::vector<int>{1, 0}));
    EXPECT_EQ(region.contours[0], (Contour{{6, 6}, {4, 6}, {4, 4}, {6, 4}}));
    EXPECT_EQ(region.contours[1], (Contour{{10, 0}, {0, 0}, {0, 10}, {10, 10}}));
}

TEST(Clip, KeepsDisjointSquaresApart) {
    Polygon const a{Rectangle(0, 0, 1, 1)};
    Polygon const b{Rectangle(2, 0, 3, 1)};
    EXPECT_TRUE(Clip(GPC_INT, a, b).contours.empty());
    Region const both = Clip(GPC_UNION, a, b);
    EXPECT_EQ(both.contours.size(), 2U);
    EXPECT_EQ(both.holes, (std::vector<int>{0, 0}));
    EXPECT_DOUBLE_EQ(Area(Clip(GPC_DIFF, a, b)), 1);
}

TEST(Clip, DividesABowTieIntoTwoTriangles) {
    Contour const bowTie{{0, 0}, {10, 10}, {10, 0}, {0, 10}};
    Region const region = Clip(GPC_UNION, {bowTie}, {});
    ASSERT_EQ(region.contours.size(), 2U);
    EXPECT_EQ(region.holes, (std::vector<int>{0, 0}));
    EXPECT_EQ(Unordered(region),
              (std::vector<Contour>{{{0, 0}, {0, 10}, {5, 5}}, {{10, 0}, {5, 5}, {10, 10}}}));
}

TEST(Clip, MakesHolesOfEverySecondNestedContour) {
    Polygon rings;
    for (int i = 0; i < 9; ++i) {
        rings.push_back(Rectangle(i, i, 30 - i, 30 - i));
        if (i % 3 == 1) {
            std::reverse(rings.back().begin(), rings.back().end());
        }
    }
    Region const region = Clip(GPC_UNION, rings, {});
    ASSERT_EQ(region.contours.size(), 9U);
    for (std::size_t i = 0; i < 9; ++i) {
        double const depth = region.contours[i][0].x;
        int const ring = static_cast<int>(std::min(depth, 30 - depth));
        EXPECT_EQ(region.holes[i], ring % 2);
    }
    ExpectWellFormed(region);
    ExpectDirections(region);
}

TEST(Clip, MakesHolesOfEverySecondOfManyNestedContours) {
    // No contour shares a vertex with another, so that each has to find out by itself what it lies
    // in. The boxes of their edges meet nearly everywhere.
    for (int const sides : {3, 4, 62}) {
        for (std::size_t const count : {8U, 9U, 12U, 16U, 33U, 60U}) {
            Polygon rings;
            for (std::size_t i = 0; i < count; ++i) {
                double const radius = static_cast<double>(i + 1);
                Contour ring;
                for (int k = 0; k < sides; ++k) {
                    double const angle = 6.283185307179586 * k / sides + 0.01;
                    ring.push_back({radius * std::cos(angle), radius * std::sin(angle)});
                }
                rings.push_back(ring);
            }
            Region const region = Clip(GPC_UNION, rings, {});
            ASSERT_EQ(region.contours.size(), count);
            for (std::size_t i = 0; i < count; ++i) {
                Vertex const v = region.contours[i][0];
                auto const ring = static_cast<std::size_t>(std::lround(std::hypot(v.x, v.y)));
                EXPECT_EQ(region.holes[i], (count - ring) % 2 == 0 ? 0 : 1);
            }
            ExpectDirections(region);
        }
    }
}

TEST(Clip, KeepsContoursThatTouchInACornerApart) {
    // A hole that touches the outline in one point, and squares that meet in their corners.
    Contour const diamond{{0, 5}, {5, 2}, {8, 5}, {5, 8}};
    Region const hole = Clip(GPC_DIFF, {Rectangle(0, 0, 10, 10)}, {diamond});
    ASSERT_EQ(hole.contours.size(), 2U);
    EXPECT_EQ(hole.holes[0] + hole.holes[1], 1);
    ExpectDirections(hole);

    Region const squares = Clip(GPC_UNION, {Rectangle(0, 0, 1, 1)}, {Rectangle(1, 1, 2, 2)});
    ASSERT_EQ(squares.contours.size(), 2U);
    EXPECT_EQ(squares.holes, (std::vector<int>{0, 0}));
}

TEST(Clip, KeepsTinyDetailsInLargeDrawings) {
    // A square of size 1e-6 lies beside one of size 1e5, and another lies inside it as a hole.
    Polygon const a{Rectangle(0, 0, 1e5, 1e5), Rectangle(5e4, 5e4, 5e4 + 1e-6, 5e4 + 1e-6)};
    Polygon const b{Rectangle(-1, -1, -1 + 1e-6, -1 + 1e-6)};
    Region const region = Clip(GPC_UNION, a, b);
    ASSERT_EQ(region.contours.size(), 3U);
    EXPECT_EQ(region.holes[0] + region.holes[1] + region.holes[2], 1);
    ExpectDirections(region);
}

TEST(Clip, KeepsTheBitsOfVerticesThatSurvive) {
    Dice dice(3);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        // Around the origin coordinates are finer than any grid over the whole. There are values
        // from 1e-20 to 1 and both zeros. The other square lies far off, so that nothing is cut.
        Contour star;
        for (int i = 0; i < 24; ++i) {
            double const t = 2 * kPi * i / 24;
            double const r = 0.5 + 0.4 * dice.Unit();
            star.push_back({r * std::cos(t), r * std::sin(t)});
        }
        star[0].y = 1e-20 * dice.Unit();
        star[6].x = -1e-19 * dice.Unit();
        star[12].y = -0.0;
        star[18].x = 5e-324;
        Polygon const a{star};
        Polygon const b{Rectangle(10, 10, 11 + dice.Unit(), 12)};
        Region const region = Clip(GPC_UNION, a, b);
        ASSERT_EQ(region.contours.size(), 2U);
        std::size_t same = 0;
        for (Contour const& contour : region.contours) {
            for (Vertex const& v : contour) {
                for (Polygon const* const operand : {&a, &b}) {
                    for (Vertex const& w : (*operand)[0]) {
                        same += std::memcmp(&v, &w, sizeof v) == 0;
                    }
                }
            }
        }
        EXPECT_EQ(same, 28U);
    }
}

TEST(Clip, DropsVerticesWithinHorizontalRunsOnly) {
    Contour const square{{0, 0},   {0, 0},  {5, 0},  {10, 0}, {10, 0}, {10, 3}, {10, 7},
                         {10, 10}, {6, 10}, {6, 10}, {2, 10}, {0, 10}, {0, 5},  {0, 5}};
    Region const region = Clip(GPC_UNION, {square}, {});
    ASSERT_EQ(region.contours.size(), 1U);
    // Horizontal runs lose their inner vertices, the others keep theirs.
    EXPECT_EQ(region.contours[0],
              (Contour{{10, 7}, {10, 3}, {10, 0}, {0, 0}, {0, 5}, {0, 10}, {10, 10}}));
}

TEST(Clip, TakesEmptyOperandsForTheEmptySet) {
    Polygon const square{Rectangle(0, 0, 1, 1)};
    for (Polygon const& empty :
         {Polygon{}, Polygon{{}}, Polygon{{{0, 0}, {1, 1}}}, Polygon{{{0, 0}, {1, 0}, {2, 0}}}}) {
        EXPECT_EQ(Area(Clip(GPC_DIFF, square, empty)), 1);
        EXPECT_TRUE(Clip(GPC_INT, square, empty).contours.empty());
        EXPECT_EQ(Area(Clip(GPC_XOR, square, empty)), 1);
        EXPECT_EQ(Area(Clip(GPC_UNION, square, empty)), 1);
        EXPECT_TRUE(Clip(GPC_DIFF, empty, square).contours.empty());
        EXPECT_TRUE(Clip(GPC_INT, empty, square).contours.empty());
        EXPECT_EQ(Area(Clip(GPC_XOR, empty, square)), 1);
        EXPECT_EQ(Area(Clip(GPC_UNION, empty, square)), 1);
        for (gpc_op const operation : kOperations) {
            EXPECT_TRUE(Clip(operation, empty, empty).contours.empty());
        }
    }
}

TEST(Clip, DropsWhatEnclosesNothing) {
    Contour const spike{{0, 0}, {5, 5}, {9, 9}, {5, 5}};
    Contour const point{{3, 3}, {3, 3}, {3, 3}, {3, 3}};
    Contour const line{{0, 0}, {4, 0}, {2, 0}, {7, 0}};
    Contour const thereAndBack{{0, 0}, {1, 2}, {3, 3}, {4, 1}, {3, 3}, {1, 2}};
    for (Contour const& nothing : {spike, point, line, thereAndBack}) {
        for (gpc_op const operation : kOperations) {
            EXPECT_TRUE(Clip(operation, {nothing}, {}).contours.empty());
            EXPECT_TRUE(Clip(operation, {nothing}, {nothing}).contours.empty());
            EXPECT_TRUE(Clip(operation, {nothing, nothing}, {spike}).contours.empty());
        }
        EXPECT_EQ(Area(Clip(GPC_XOR, {Rectangle(1, 1, 9, 9)}, {nothing})), 64);
    }
    // The same contour twice cancels; three times is the contour.
    Contour const square = Rectangle(0, 0, 1, 1);
    EXPECT_TRUE(Clip(GPC_UNION, {square, square}, {}).contours.empty());
    EXPECT_EQ(Clip(GPC_UNION, {square, square, square}, {}).contours.size(), 1U);
    // A contour run through twice is inside nowhere.
    Contour twice = square;
    twice.insert(twice.end(), square.begin(), square.end());
    EXPECT_TRUE(Clip(GPC_UNION, {twice}, {}).contours.empty());
}

TEST(Clip, LeavesOutContoursWithNaNOrInfinity) {
    double const bad[] = {std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity()};
    for (double const value : bad) {
        for (int place = 0; place < 8; ++place) {
            Contour contour = Rectangle(1, 1, 5, 5);
            Vertex& v = contour[static_cast<std::size_t>(place / 2)];
            (place % 2 == 0 ? v.x : v.y) = value;
            Polygon const a{Rectangle(0, 0, 2, 2), contour};
            EXPECT_EQ(Area(Clip(GPC_UNION, a, {Rectangle(4, 4, 5, 5)})), 5);
            EXPECT_EQ(Area(Clip(GPC_UNION, {Rectangle(4, 4, 5, 5)}, a)), 5);
            EXPECT_TRUE(Clip(GPC_XOR, {contour}, {contour}).contours.empty());
        }
    }
}

TEST(Clip, CombinesOperandsThatAreAUnitInTheLastPlaceApart) {
    Dice dice(21);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Contour const contour = RandomDoubles(dice, 12);
        Contour moved = contour;
        for (Vertex& v : moved) {
            for (int i = dice.Int(0, 3); i > 0; --i) {
                v.x = std::nextafter(v.x, dice.Int(0, 1));
                v.y = std::nextafter(v.y, dice.Int(0, 1));
            }
        }
        double const area = plain::EvenOddArea({contour});
        for (std::size_t k = 0; k < 4; ++k) {
            Region const region = Clip(kOperations[k], {contour}, {moved});
            ExpectWellFormed(region);
            double const expected =
                kOperations[k] == GPC_INT || kOperations[k] == GPC_UNION ? area : 0;
            EXPECT_NEAR(Area(region), expected, 1e-13);
            EXPECT_NEAR(plain::EvenOddArea(region.contours), expected, 1e-13);
        }
    }
}

TEST(Clip, LeavesNoCrossingsOnGridsAsCoarseAsTheDoubles) {
    // Far from the origin there are few doubles. Every crossing is rounded by as much as the size
    // of the figures' details, so that new crossings come up.
    Dice dice(8);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Polygon a{plain::RandomContour(dice, 15, 30)};
        Polygon b{plain::RandomContour(dice, 15, 30)};
        a = Mapped(a, 1, 1, 0x1p52, -0x1p52 - 2 * plain::kGridOffset);
        b = Mapped(b, 1, 1, 0x1p52, -0x1p52 - 2 * plain::kGridOffset);
        for (gpc_op const operation : kOperations) {
            Region const region = Clip(operation, a, b);
            ExpectWellFormed(region);
            Region near = region;
            near.contours = Mapped(region.contours, 1, 1, -0x1p52, 0x1p52 + 2 * plain::kGridOffset);
            ExpectDirections(near);
            // All coordinates are small integers now, at which the test on crossings is exact.
            ExpectNoCrossings(near);
            plain::Box box;
            box.Include(near.contours);
            if (box.HasArea()) {
                EXPECT_NEAR(Area(near), plain::EvenOddArea(near.contours), 1e-9);
            }
        }
    }
}

TEST(Clip, FindsTheHolesOfAFrameAroundManySquares) {
    // 40,000 squares lie in a frame. If each contour were compared with all others, this would be
    // by far the longest of the tests.
    Polygon a{Rectangle(-1, -1, 400, 400)};
    for (int i = 0; i < 200; ++i) {
        for (int k = 0; k < 200; ++k) {
            a.push_back(Rectangle(2 * i, 2 * k, 2 * i + 1, 2 * k + 1));
        }
    }
    Region const region = Clip(GPC_UNION, a, {});
    ASSERT_EQ(region.contours.size(), 40001U);
    EXPECT_EQ(std::count(region.holes.begin(), region.holes.end(), 1), 40000);
    EXPECT_EQ(Area(region), 401.0 * 401 - 40000);
}

} // namespace
} // namespace clip_test
