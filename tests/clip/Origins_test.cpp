// SPDX-License-Identifier: MIT

// Where the edges of results come from.
#include "Boolean_p.h"

#include "plain/ClipCorpus.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

namespace {

using plain::Contour;
using plain::Dice;
using plain::Vertex;
using trammel_detail::BooleanOperand;
using trammel_detail::CombineByWinding;
using trammel_detail::EdgeOf;
using trammel_detail::GridLines;
using trammel_detail::IsReversed;
using trammel_detail::Origin;
using trammel_detail::Origins;
using trammel_detail::RegionOf;
using trammel_detail::UniteByWinding;
using trammel_detail::WindingRegion;
using trammel_detail::WindingResult;

RegionOf const kRegions[4] = {{{false, true, false, false}},
                              {{false, false, false, true}},
                              {{false, true, true, false}},
                              {{false, true, true, true}}};
RegionOf const& kUnion = kRegions[3];

void Add(Contour const& contour, std::uint32_t owner, BooleanOperand& operand) {
    operand.Add(contour.empty() ? nullptr : &contour[0].x, contour.size(), owner);
}

/// Returns the region of the first `firstCount` contours and the others.
WindingResult Combined(std::vector<Contour> const& contours, std::size_t firstCount,
                       RegionOf const& of, bool evenOdd, Origins origins) {
    BooleanOperand first(nullptr);
    BooleanOperand second(nullptr);
    for (std::size_t i = 0; i < contours.size(); ++i) {
        Add(contours[i], i < firstCount ? 0 : 1, i < firstCount ? first : second);
    }
    WindingRegion region(of, nullptr);
    region.rules = {{evenOdd, 0}, {evenOdd, 1}};
    return CombineByWinding(first, second, region, nullptr, origins);
}

/// Returns the union of contours, each of which is an operand.
WindingResult United(std::vector<Contour> const& contours, bool evenOdd, Origins origins) {
    BooleanOperand all(nullptr);
    for (std::size_t i = 0; i < contours.size(); ++i) {
        Add(contours[i], static_cast<std::uint32_t>(i), all);
    }
    return UniteByWinding(all, static_cast<std::uint32_t>(contours.size()), evenOdd, nullptr,
                          origins);
}

/// All edges that were given, in the order of their numbers.
std::vector<std::pair<Vertex, Vertex>> EdgesOf(std::vector<Contour> const& contours) {
    std::vector<std::pair<Vertex, Vertex>> edges;
    for (Contour const& contour : contours) {
        for (std::size_t i = 0; i < contour.size(); ++i) {
            edges.emplace_back(contour[i], contour[i + 1 < contour.size() ? i + 1 : 0]);
        }
    }
    return edges;
}

Vertex VertexOf(WindingResult const& result, std::size_t i) {
    Vertex v{};
    result.grid.ToDoubles(result.resolved.contours.points[i], v.x, v.y);
    return v;
}

/// Expects each edge of the result within `distance` of its origin, which runs in the direction
/// that is told.
void ExpectOnOrigins(WindingResult const& result, std::vector<Contour> const& contours,
                     double distance) {
    std::vector<std::pair<Vertex, Vertex>> const edges = EdgesOf(contours);
    GridLines const& lines = result.resolved.contours;
    ASSERT_EQ(lines.origins.size(), lines.points.size());
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        for (std::size_t i = lines.Begin(line); i < lines.End(line); ++i) {
            ASSERT_LT(EdgeOf(lines.origins[i]), edges.size());
            auto [a, b] = edges[EdgeOf(lines.origins[i])];
            if (IsReversed(lines.origins[i])) {
                std::swap(a, b);
            }
            Vertex const p = VertexOf(result, i);
            Vertex const q = VertexOf(result, i + 1 < lines.End(line) ? i + 1 : lines.Begin(line));
            // The rounding of long double is far below the distances.
            typedef long double Real;
            Real const dx = Real{b.x} - a.x;
            Real const dy = Real{b.y} - a.y;
            Real const length = std::hypot(dx, dy);
            ASSERT_GT(length, 0);
            Real last = -distance;
            for (Vertex const& v : {p, q}) {
                Real const along = ((v.x - Real{a.x}) * dx + (v.y - Real{a.y}) * dy) / length;
                Real const across = ((v.y - Real{a.y}) * dx - (v.x - Real{a.x}) * dy) / length;
                ASSERT_LE(std::fabs(across), distance) << "edge " << i;
                ASSERT_LE(along, length + distance) << "edge " << i;
                ASSERT_GE(along, last - distance) << "edge " << i;
                last = along;
            }
        }
    }
}

void ExpectSameContours(WindingResult const& a, WindingResult const& b) {
    EXPECT_EQ(a.resolved.contours.ends, b.resolved.contours.ends);
    ASSERT_EQ(a.resolved.contours.points.size(), b.resolved.contours.points.size());
    for (std::size_t i = 0; i < a.resolved.contours.points.size(); ++i) {
        EXPECT_TRUE(a.resolved.contours.points[i] == b.resolved.contours.points[i]);
    }
    EXPECT_TRUE(b.resolved.contours.origins.empty());
}

/// The ways to combine contours, with and without origins.
void ExpectOrigins(std::vector<Contour> const& contours, double distance) {
    for (bool const evenOdd : {false, true}) {
        for (RegionOf const& region : kRegions) {
            WindingResult const result =
                Combined(contours, contours.size() / 2, region, evenOdd, Origins::kKept);
            ExpectOnOrigins(result, contours, distance);
            ExpectSameContours(result, Combined(contours, contours.size() / 2, region, evenOdd,
                                                Origins::kLeftOut));
        }
        WindingResult const result = United(contours, evenOdd, Origins::kKept);
        ExpectOnOrigins(result, contours, distance);
        ExpectSameContours(result, United(contours, evenOdd, Origins::kLeftOut));
    }
}

Contour Square(double x, double y, double size) {
    return {{x, y}, {x + size, y}, {x + size, y + size}, {x, y + size}};
}

TEST(Origins, TellTheEdgesOfTwoSquares) {
    WindingResult const result =
        Combined({Square(0, 0, 2), Square(1, 1, 2)}, 1, kUnion, false, Origins::kKept);
    GridLines const& lines = result.resolved.contours;
    ASSERT_EQ(lines.Count(), 1U);
    std::vector<std::string> told;
    for (std::size_t i = 0; i < lines.points.size(); ++i) {
        Vertex const v = VertexOf(result, i);
        told.push_back(std::to_string(static_cast<int>(v.x)) + "," +
                       std::to_string(static_cast<int>(v.y)) + ": " +
                       std::to_string(EdgeOf(lines.origins[i])) +
                       (IsReversed(lines.origins[i]) ? " reversed" : ""));
    }
    std::rotate(told.begin(), std::min_element(told.begin(), told.end()), told.end());
    EXPECT_EQ(told,
              (std::vector<std::string>{"0,0: 3 reversed", "0,2: 2 reversed", "1,2: 7 reversed",
                                        "1,3: 6 reversed", "3,3: 5 reversed", "3,1: 4 reversed",
                                        "2,1: 1 reversed", "2,0: 0 reversed"}));
}

TEST(Origins, CountContoursAndVerticesThatAreLeftOut) {
    double const kNaN = std::numeric_limits<double>::quiet_NaN();
    std::vector<Contour> const contours = {
        {{0, 0}, {1, 0}},                                         // edges 0 and 1
        {{0, 0}, {1, 0}, {kNaN, 1}},                              // 2 to 4
        {},                                                       //
        {{0, 0}, {0, 0}, {4, 0}, {4, 0}, {4, 4}, {9, 4}, {0, 4}}, // 5 to 11, a spike to (9, 4)
        {{9, 0}, {9, 0}, {9, 0}},                                 // 12 to 14
        {{20, 20}, {21, 20}, {21, 21}},                           // 15 to 17, apart
    };
    WindingResult const result = Combined(contours, 4, kUnion, true, Origins::kKept);
    ExpectOnOrigins(result, contours, 0x1p-60);
    std::vector<std::uint32_t> edges;
    for (Origin const origin : result.resolved.contours.origins) {
        edges.push_back(EdgeOf(origin));
    }
    std::sort(edges.begin(), edges.end());
    EXPECT_EQ(edges, (std::vector<std::uint32_t>{6, 8, 10, 11, 15, 16, 17}));
}

TEST(Origins, AreTheLowestNumbersWhereEdgesCoincide) {
    Contour reversed = Square(0, 0, 4);
    std::reverse(reversed.begin(), reversed.end());
    for (std::size_t copies : {3U, 50U}) { // at once and in stages
        std::vector<Contour> contours(copies, reversed);
        contours[copies / 2] = Square(0, 0, 4);
        WindingResult const result = United(contours, false, Origins::kKept);
        std::vector<Origin> origins(result.resolved.contours.origins.begin(),
                                    result.resolved.contours.origins.end());
        std::sort(origins.begin(), origins.end());
        EXPECT_EQ(origins, (std::vector<Origin>{0, 2, 4, 6}));
    }
}

TEST(Origins, HoldTheEdgesOfRandomContours) {
    Dice dice(4711);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        std::vector<Contour> contours;
        for (int i = dice.Int(2, 6); i > 0; --i) {
            contours.push_back(plain::RandomDoubles(dice, dice.Int(1, 40)));
        }
        ExpectOrigins(contours, 0x1p-48);
    }
}

TEST(Origins, HoldTheEdgesOfContoursThatOverlapAndTurnBack) {
    Dice dice(1234);
    for (int round = 0; round < 120; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        int const size = dice.Int(2, 12);
        std::vector<Contour> contours;
        for (int i = dice.Int(2, 5); i > 0; --i) {
            Contour contour;
            for (int k = dice.Int(1, 25); k > 0; --k) {
                contour.push_back({static_cast<double>(dice.Int(0, size)),
                                   static_cast<double>(dice.Int(0, size))});
            }
            contours.push_back(contour);
        }
        ExpectOrigins(contours, 0x1p-44);
    }
}

TEST(Origins, GoThroughTheStagesOfAUnionOfMany) {
    Dice dice(99);
    for (double const size : {0.02, 0.2}) {
        std::vector<Contour> contours;
        for (int i = 0; i < 400; ++i) {
            double const x = dice.Int(0, 1000) / 1000.0;
            double const y = dice.Int(0, 1000) / 1000.0;
            contours.push_back({{x, y}, {x + size, y + size / 3}, {x + size / 2, y + size}});
        }
        for (bool const evenOdd : {false, true}) {
            WindingResult const result = United(contours, evenOdd, Origins::kKept);
            ExpectOnOrigins(result, contours, 0x1p-47);
            ExpectSameContours(result, United(contours, evenOdd, Origins::kLeftOut));
        }
    }
}

TEST(Origins, HoldWhereAllDetailsAreAFewDoublesLarge) {
    Dice dice(5);
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        std::vector<Contour> contours;
        for (int i = 0; i < 3; ++i) {
            Contour contour;
            for (int k = 0; k < 8; ++k) {
                contour.push_back({1 + dice.Int(0, 20) * 0x1p-52, 1 + dice.Int(0, 20) * 0x1p-52});
            }
            contours.push_back(contour);
        }
        ExpectOrigins(contours, 4 * 0x1p-52);
    }
}

} // namespace
