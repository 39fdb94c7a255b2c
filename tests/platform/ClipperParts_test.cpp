// SPDX-License-Identifier: MIT
//
// The clipper's shortcuts against the plain ways that they stand for.
#include "ClipperContours_p.h"
#include "ClipperOrder_p.h"
#include "ClipperSweep_p.h"

#include "plain/ClipCorpus.h"
#include "plain/PlainClip.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace {

using plain::Contour;
using plain::Dice;
using plain::Polygon;
using plain::Region;
using plain::Vertex;
using trammel_detail::Caution;
using trammel_detail::ClipGrid;
using trammel_detail::EdgeTree;
using trammel_detail::GridBox;
using trammel_detail::GridLines;
using trammel_detail::GridPoint;
using trammel_detail::Meeting;
using trammel_detail::RegionOf;
using trammel_detail::ResolvedContours;

RegionOf const kRegions[4] = {{false, true, false, false},
                              {false, false, false, true},
                              {false, true, true, false},
                              {false, true, true, true}};

/// The operands' lines on a grid over both.
struct Drawing {
    plain::Box box;
    ClipGrid grid;
    GridLines lines;

    Drawing(Polygon const& a, Polygon const& b)
        : box(BoxOf(a, b)), grid(box.lowX, box.lowY, box.highX, box.highY) {
        Add(a, 1);
        Add(b, 2);
        grid.FinishAdding();
    }
    static plain::Box BoxOf(Polygon const& a, Polygon const& b) {
        plain::Box box;
        box.Include(a);
        box.Include(b);
        return box;
    }

private:
    void Add(Polygon const& polygon, trammel_detail::Operands operand) {
        for (Contour const& contour : polygon) {
            for (Vertex const& v : contour) {
                lines.points.push_back(grid.Add(v.x, v.y));
            }
            lines.Close(operand);
        }
    }
};

/// The operation's result, the parts put together by hand.
Region Resolve(Drawing const& drawing, std::size_t operation, Caution caution) {
    ResolvedContours resolved;
    EXPECT_TRUE(trammel_detail::ResolveContours(drawing.lines, kRegions[operation], drawing.grid,
                                                resolved, caution));
    Region region;
    for (std::size_t const c : trammel_detail::OrderContours(resolved)) {
        Contour contour;
        for (std::size_t i = resolved.contours.Begin(c); i < resolved.contours.End(c); ++i) {
            Vertex v{};
            drawing.grid.ToDoubles(resolved.contours.points[i], v.x, v.y);
            contour.push_back(v);
        }
        region.contours.push_back(contour);
        region.holes.push_back(resolved.holes[c]);
    }
    return region;
}

void ExpectSame(Region const& a, Region const& b) {
    EXPECT_EQ(a.holes, b.holes);
    ASSERT_EQ(a.contours.size(), b.contours.size());
    for (std::size_t i = 0; i < a.contours.size(); ++i) {
        EXPECT_EQ(a.contours[i], b.contours[i]) << "contour " << i;
    }
}

/// To look again only where it is needed gives what looking everywhere does.
void ExpectNothingMissed(Polygon const& a, Polygon const& b) {
    if (!Drawing::BoxOf(a, b).HasArea()) {
        return;
    }
    Drawing const drawing(a, b);
    for (std::size_t operation = 0; operation < 4; ++operation) {
        ExpectSame(Resolve(drawing, operation, Caution::kWhereNeeded),
                   Resolve(drawing, operation, Caution::kEverywhere));
    }
}

Contour RandomContour(Dice& dice, int vertices) {
    Contour contour;
    for (int i = 0; i < vertices; ++i) {
        double const x = dice.Unit();
        contour.push_back({x, dice.Unit()});
    }
    return contour;
}

/// Teeth, turned about the middle.
Contour Comb(int teeth, double angle) {
    Contour contour;
    auto const add = [&](double x, double y) {
        contour.push_back(
            {x * std::cos(angle) - y * std::sin(angle), x * std::sin(angle) + y * std::cos(angle)});
    };
    for (int i = 0; i < teeth; ++i) {
        double const y = static_cast<double>(i) / teeth - 0.5;
        add(-0.49, y);
        add(0.5, y);
        add(0.5, y + 0.5 / teeth);
        add(-0.49, y + 0.5 / teeth);
    }
    add(-0.5, 0.5);
    add(-0.5, -0.5);
    return contour;
}

TEST(ClipperParts, LookingAgainWhereNeededFindsAllInRandomPolygons) {
    Dice dice(1807);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        ExpectNothingMissed({RandomContour(dice, dice.Int(3, 40)), RandomContour(dice, 5)},
                            {RandomContour(dice, dice.Int(3, 40))});
    }
}

TEST(ClipperParts, LookingAgainWhereNeededFindsAllInGridCases) {
    // Most of these touch, overlap or share vertices.
    for (plain::GridCase const& c : plain::MakeGridCases()) {
        SCOPED_TRACE(c.name);
        ExpectNothingMissed(c.a, c.b);
    }
}

TEST(ClipperParts, LookingAgainWhereNeededFindsAllInCombs) {
    // The second comb's outline lies along all teeth of the first, to within rounding.
    for (int const teeth : {3, 25, 60}) {
        for (double const angle : {0.0, 0.1, 0.785, 1e-9}) {
            SCOPED_TRACE(std::to_string(teeth) + " " + std::to_string(angle));
            ExpectNothingMissed({Comb(teeth, angle)}, {Comb(teeth, angle + 1.5707963267948966)});
        }
    }
}

TEST(ClipperParts, LookingAgainWhereNeededFindsAllBetweenFlatAngles) {
    // Edges that cross at angles from 2^-5 down to a few units in the last place, or pass each
    // other at such a distance: the parts next to a crossing may cross once more for rounding.
    Dice dice(99);
    for (int power = 5; power <= 53; ++power) {
        SCOPED_TRACE("2^-" + std::to_string(power));
        for (int round = 0; round < 12; ++round) {
            Polygon fans[2];
            for (Polygon& fan : fans) {
                for (int i = 0; i < 6; ++i) {
                    auto const y = [&] { return 1.3 + std::ldexp(dice.Unit(), -power); };
                    double const left = 1 + 0.1 * dice.Unit();
                    double const right = 2 - 0.1 * dice.Unit();
                    double const first = y();
                    fan.push_back({{left, first}, {right, y()}, {1.5, 1.9}});
                }
            }
            ExpectNothingMissed(fans[0], fans[1]);
        }
    }
}

TEST(ClipperParts, LookingAgainWhereNeededFindsAllOnCoarseGrids) {
    // With few doubles across the drawing every cut moves edges by as much as their details.
    Dice dice(64);
    for (double const distance : {0x1p40, 0x1p48, 0x1p50, 0x1p52}) {
        for (int round = 0; round < 30; ++round) {
            SCOPED_TRACE(std::to_string(distance) + " " + std::to_string(round));
            Polygon operands[2];
            for (Polygon& operand : operands) {
                Contour contour;
                for (int i = 0; i < 14; ++i) {
                    double const x = distance + dice.Int(0, 60);
                    contour.push_back({x, distance + dice.Int(0, 60)});
                }
                operand.push_back(contour);
            }
            ExpectNothingMissed(operands[0], operands[1]);
        }
    }
}

TEST(ClipperParts, CrossingsOfTwoEdgesAreKnownAsSuch) {
    // Two squares: two crossings, of two edges each.
    Drawing const drawing({{{0, 0}, {4, 0}, {4, 4}, {0, 4}}}, {{{2, 1}, {6, 1}, {6, 3}, {2, 3}}});
    for (Caution const caution : {Caution::kWhereNeeded, Caution::kEverywhere}) {
        GridLines lines = drawing.lines;
        trammel_detail::ScratchVector<Meeting> meetings;
        std::optional<EdgeTree> tree;
        ASSERT_TRUE(trammel_detail::CutAtCrossings(lines, drawing.grid, caution, meetings, tree));
        ASSERT_EQ(lines.points.size(), 12U);
        std::vector<std::size_t> plainOnes;
        for (std::size_t i = 0; i < 12; ++i) {
            if (meetings[i] >= trammel_detail::kFirstCrossing) {
                plainOnes.push_back(i);
            }
        }
        EXPECT_EQ(plainOnes.size(), caution == Caution::kWhereNeeded ? 4U : 0U);
        for (std::size_t const i : plainOnes) {
            EXPECT_EQ(std::count(meetings.begin(), meetings.end(), meetings[i]), 2);
        }
    }
}

TEST(ClipperParts, TreesInEitherOrderFindTheSamePairs) {
    Dice dice(5);
    Drawing const drawing({RandomContour(dice, 90)}, {RandomContour(dice, 110)});
    GridLines lines = drawing.lines;
    trammel_detail::ScratchVector<Meeting> meetings;
    std::optional<EdgeTree> tree;
    ASSERT_TRUE(
        trammel_detail::CutAtCrossings(lines, drawing.grid, Caution::kWhereNeeded, meetings, tree));
    // All, and one edge in ten.
    for (bool const all : {true, false}) {
        trammel_detail::ScratchVector<char> fresh;
        for (std::size_t i = 0; i < lines.points.size() && !all; ++i) {
            fresh.push_back(i % 10 == 0 ? 1 : 0);
        }
        typedef std::vector<std::pair<std::size_t, std::size_t>> Pairs;
        Pairs expected;
        EdgeTree const edges(lines, fresh, {0, 0}, EdgeTree::Order::kLines);
        for (std::size_t i = 0; i < edges.Count(); ++i) {
            for (std::size_t j = i + 1; j < edges.Count(); ++j) {
                if ((all || fresh[i] != 0 || fresh[j] != 0) &&
                    trammel_detail::BoxOf(edges.At(i)).Meets(trammel_detail::BoxOf(edges.At(j)))) {
                    expected.emplace_back(i, j);
                }
            }
        }
        for (EdgeTree::Order const order : {EdgeTree::Order::kLines, EdgeTree::Order::kPlaces}) {
            Pairs found;
            EdgeTree const sorted(lines, fresh, {0, 0}, order);
            sorted.ForMeetingPairs(
                true, [&](std::size_t i, std::size_t j, bool) { found.emplace_back(i, j); });
            std::sort(found.begin(), found.end());
            EXPECT_EQ(found, expected);
        }
    }
}

TEST(ClipperParts, TheSweepFindsTheSameRegions) {
    Dice dice(31);
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Drawing const drawing({RandomContour(dice, dice.Int(3, 25))},
                              {RandomContour(dice, dice.Int(3, 25))});
        for (std::size_t operation = 0; operation < 4; ++operation) {
            Region const cut = Resolve(drawing, operation, Caution::kWhereNeeded);
            Drawing swept = drawing;
            ASSERT_TRUE(
                trammel_detail::SweepBoundary(kRegions[operation], swept.grid, swept.lines));
            Region const region = Resolve(swept, 0, Caution::kWhereNeeded);
            EXPECT_NEAR(plain::AreaByFlags(region), plain::AreaByFlags(cut), 1e-12);
            EXPECT_NEAR(plain::EvenOddArea(region.contours), plain::EvenOddArea(cut.contours),
                        1e-12);
        }
    }
}

} // namespace
