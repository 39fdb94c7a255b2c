// SPDX-License-Identifier: MIT

// The clipper's shortcuts against the plain ways that they stand for.
#include "ContourOrder_p.h"
#include "Contours_p.h"
#include "Nesting_p.h"
#include "Predicates_p.h"
#include "Scratch_p.h"
#include "TestSupport.h"

#include "plain/ClipCorpus.h"
#include "plain/PlainClip.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

using plain::Contour;
using plain::Dice;
using plain::Polygon;
using plain::RandomDoubles;
using plain::Region;
using plain::Vertex;
using trammel_detail::ClipGrid;
using trammel_detail::EdgeTree;
using trammel_detail::GridBox;
using trammel_detail::GridEdge;
using trammel_detail::GridLines;
using trammel_detail::GridPoint;
using trammel_detail::Incidence;
using trammel_detail::Operands;
using trammel_detail::Recheck;
using trammel_detail::RegionContours;
using trammel_detail::RegionOf;

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

/// Returns the operation's result. It joins the parts in the same way as gpc_polygon_clip().
Region Resolve(Drawing const& drawing, std::size_t operation, Recheck recheck) {
    RegionContours resolved =
        trammel_detail::ContoursOf(drawing.lines, kRegions[operation], drawing.grid, recheck);
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

/// Expects the same results whether edges are tested again everywhere or only where it is needed.
void ExpectNothingMissed(Polygon const& a, Polygon const& b) {
    if (!Drawing::BoxOf(a, b).HasArea()) {
        return;
    }
    Drawing const drawing(a, b);
    for (std::size_t operation = 0; operation < 4; ++operation) {
        ExpectSame(Resolve(drawing, operation, Recheck::kWhereNeeded),
                   Resolve(drawing, operation, Recheck::kEverywhere));
    }
}

/// A comb, turned about the middle.
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

TEST(ClipParts, TestingEdgesAgainWhereNeededMissesNothingInRandomPolygons) {
    Dice dice(1807);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        ExpectNothingMissed({RandomDoubles(dice, dice.Int(3, 40)), RandomDoubles(dice, 5)},
                            {RandomDoubles(dice, dice.Int(3, 40))});
    }
}

TEST(ClipParts, TestingEdgesAgainWhereNeededMissesNothingInGridCases) {
    // Most of these touch, overlap or share vertices.
    for (plain::ClipCase const& c : plain::MakeGridCases()) {
        SCOPED_TRACE(c.name);
        ExpectNothingMissed(c.a, c.b);
    }
}

TEST(ClipParts, TestingEdgesAgainWhereNeededMissesNothingInCombs) {
    // The second comb's outline lies along all teeth of the first, to within rounding.
    for (int const teeth : {3, 25, 60}) {
        for (double const angle : {0.0, 0.1, 0.785, 1e-9}) {
            SCOPED_TRACE(std::to_string(teeth) + " " + std::to_string(angle));
            ExpectNothingMissed({Comb(teeth, angle)}, {Comb(teeth, angle + 1.5707963267948966)});
        }
    }
}

TEST(ClipParts, TestingEdgesAgainWhereNeededMissesNothingAtFlatAngles) {
    // Edges cross at angles from 2^-5 down to a few units in the last place, or pass each other at
    // such a distance. Rounding may make the parts next to a crossing cross once more.
    Dice dice(99);
    for (int power = 5; power <= 53; ++power) {
        SCOPED_TRACE("2^-" + std::to_string(power));
        for (int round = 0; round < trammel_test::Rounds(12); ++round) {
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

TEST(ClipParts, TestingEdgesAgainWhereNeededMissesNothingOnCoarseGrids) {
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

TEST(ClipParts, CrossingsOfTwoEdgesAreKnownAsSuch) {
    // Two squares have two crossings, of two edges each.
    Drawing const drawing({{{0, 0}, {4, 0}, {4, 4}, {0, 4}}}, {{{2, 1}, {6, 1}, {6, 3}, {2, 3}}});
    for (Recheck const recheck : {Recheck::kWhereNeeded, Recheck::kEverywhere}) {
        GridLines lines = drawing.lines;
        trammel_detail::ScratchVector<Incidence> incidences;
        std::optional<EdgeTree> tree;
        trammel_detail::CutAtCrossings(lines, drawing.grid, recheck, incidences, tree);
        ASSERT_EQ(lines.points.size(), 12U);
        std::vector<std::size_t> plainOnes;
        for (std::size_t i = 0; i < 12; ++i) {
            if (incidences[i] >= trammel_detail::kFirstCrossing) {
                plainOnes.push_back(i);
            }
        }
        EXPECT_EQ(plainOnes.size(), recheck == Recheck::kWhereNeeded ? 4U : 0U);
        for (std::size_t const i : plainOnes) {
            EXPECT_EQ(std::count(incidences.begin(), incidences.end(), incidences[i]), 2);
        }
    }
}

typedef std::vector<std::pair<std::size_t, std::size_t>> Pairs;

/// The pairs of edges that a tree finds, in order, each as often as it does. `active` of every
/// `step`th edge is set; 0 stands for all.
Pairs PairsFound(GridLines const& lines, std::size_t step, GridPoint margin,
                 EdgeTree::Order order) {
    trammel_detail::ScratchVector<char> active;
    for (std::size_t i = 0; i < lines.points.size() && step > 0; ++i) {
        active.push_back(i % step == 0 ? 1 : 0);
    }
    EdgeTree const tree(lines, active, margin, order);
    Pairs found;
    tree.ForMeetingPairs(true, [&](std::size_t i, std::size_t j, bool follow) {
        found.emplace_back(i, j);
        EXPECT_EQ(follow, tree.SecondOf(i) == j || tree.SecondOf(j) == i);
    });
    std::sort(found.begin(), found.end());
    return found;
}

/// The same pairs, found by testing all.
Pairs PairsThatMeet(GridLines const& lines, std::size_t step, GridPoint margin) {
    std::vector<GridBox> boxes;
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        for (std::size_t i = lines.Begin(line); i < lines.End(line); ++i) {
            std::size_t const second = i + 1 == lines.End(line) ? lines.Begin(line) : i + 1;
            GridBox const box = trammel_detail::BoxOf(lines.points[i], lines.points[second]);
            boxes.push_back({box.lowX - margin.x, box.lowY - margin.y, box.highX + margin.x,
                             box.highY + margin.y});
        }
    }
    Pairs pairs;
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        for (std::size_t j = i + 1; j < boxes.size(); ++j) {
            if ((step == 0 || i % step == 0 || j % step == 0) && boxes[i].Meets(boxes[j])) {
                pairs.emplace_back(i, j);
            }
        }
    }
    return pairs;
}

/// True when two segments have a point in common.
bool SegmentsMeet(GridEdge const& e, GridEdge const& f) {
    using trammel_detail::SideOf;
    return trammel_detail::BoxOf(e).Meets(trammel_detail::BoxOf(f)) &&
           SideOf(e.a, e.b, f.a) * SideOf(e.a, e.b, f.b) <= 0 &&
           SideOf(f.a, f.b, e.a) * SideOf(f.a, f.b, e.b) <= 0;
}

/// Expects pairs of `boxes` only, and all of these whose edges come near each other.
void ExpectNearPairs(Pairs const& found, Pairs const& boxes, GridLines const& lines,
                     GridPoint margin) {
    EXPECT_TRUE(std::includes(boxes.begin(), boxes.end(), found.begin(), found.end()));
    EdgeTree const tree(lines, trammel_detail::ScratchVector<char>(), {0, 0},
                        EdgeTree::Order::kLines);
    for (auto const& [i, j] : boxes) {
        GridEdge const e = tree.At(j);
        bool near = false;
        for (std::int64_t const x : {-1, 0, 1}) {
            for (std::int64_t const y : {-1, 0, 1}) {
                GridPoint const by = {x * margin.x, y * margin.y};
                near = near || SegmentsMeet(tree.At(i), {{e.a.x + by.x, e.a.y + by.y},
                                                         {e.b.x + by.x, e.b.y + by.y}});
            }
        }
        if (near) {
            EXPECT_TRUE(std::binary_search(found.begin(), found.end(), std::pair(i, j)))
                << i << ", " << j;
        }
    }
}

TEST(ClipParts, TreesInEitherOrderFindTheSamePairs) {
    // A tree goes other ways for few edges (48 and fewer), for edges that mostly meet, where few
    // are active (16 and fewer, or one in 8), and where all are. It may leave out pairs that do not
    // come near each other. Where many are active, each pair comes once.
    Dice dice(5);
    GridPoint const margins[] = {{0, 0}, {std::int64_t{1} << 50, std::int64_t{1} << 54}};
    for (int const vertices : {3, 24, 25, 60, 65}) {
        Contour const b = RandomDoubles(dice, vertices);
        Contour const a = RandomDoubles(dice, vertices);
        Drawing const drawing({a}, {b});
        GridLines cut = drawing.lines;
        trammel_detail::ScratchVector<Incidence> incidences;
        std::optional<EdgeTree> tree;
        trammel_detail::CutAtCrossings(cut, drawing.grid, Recheck::kWhereNeeded, incidences, tree);
        for (GridLines const& lines : {drawing.lines, cut}) {
            for (std::size_t const step : {0, 2, 10, 16, 40, 1000}) {
                for (GridPoint const margin : margins) {
                    SCOPED_TRACE(std::to_string(lines.points.size()) + " edges, active " +
                                 std::to_string(step));
                    Pairs const expected = PairsThatMeet(lines, step, margin);
                    for (auto const order : {EdgeTree::Order::kLines, EdgeTree::Order::kMorton}) {
                        Pairs const found = PairsFound(lines, step, margin, order);
                        if (step == 0 || step == 2) {
                            EXPECT_EQ(std::adjacent_find(found.begin(), found.end()), found.end());
                        }
                        ExpectNearPairs(found, expected, lines, margin);
                    }
                }
            }
        }
    }
}

TEST(ClipParts, ScratchGivesNoByteTwice) {
    struct Block {
        unsigned char* begin;
        std::size_t size;
        unsigned char mark;
    };
    trammel_detail::Scratch scratch;
    std::vector<Block> taken;
    std::mt19937 random(20261122);
    for (int round = 0; round < 1200; ++round) {
        if (random() % 2 == 0 && !taken.empty()) {
            std::swap(taken[random() % taken.size()], taken.back());
            Block const block = taken.back();
            taken.pop_back();
            ASSERT_TRUE(std::all_of(block.begin, block.begin + block.size,
                                    [&](unsigned char byte) { return byte == block.mark; }));
            scratch.TakeBack(block.begin, block.size);
        } else {
            std::size_t const size = 1 + random() % (std::size_t{1} << random() % 19);
            auto* const begin = static_cast<unsigned char*>(scratch.Take(size));
            taken.push_back({begin, size, static_cast<unsigned char>(round)});
            std::fill_n(begin, size, taken.back().mark);
        }
    }
    for (Block const& block : taken) {
        scratch.TakeBack(block.begin, block.size);
    }
}

TEST(ClipParts, LinesThatLieInEachOtherAreOutlinesAndHolesInTurns) {
    // Rays would meet all lines around a line, so a sweep labels most of these.
    int const count = 1500;
    Polygon squares;
    for (int i = 0; i < count; ++i) {
        double const x = 3.0 * (count - i);
        double const y = 1.0 * (count - i);
        squares.push_back({{x, y}, {-y, x}, {-x, -y}, {y, -x}});
    }
    Region const region = Resolve(Drawing(squares, {}), 3, Recheck::kWhereNeeded);
    ASSERT_EQ(region.contours.size(), squares.size());
    for (std::size_t i = 0; i < region.contours.size(); ++i) {
        Vertex const v = region.contours[i][0];
        auto const number = static_cast<int>(std::max(std::fabs(v.x), std::fabs(v.y)) / 3);
        EXPECT_EQ(region.holes[i] != 0, (count - number) % 2 != 0);
    }
}

TEST(ClipParts, HolesBelongToTheInnermostOfContoursThatReachEquallyFar) {
    // Diamonds that lie in each other and touch at their tips. In the middle of a side each reaches
    // two steps beyond the next one, so that their areas are one double.
    std::int64_t const tip = std::int64_t{1} << 59;
    auto const addDiamond = [&](RegionContours& region, std::int64_t beyond, bool hole) {
        std::int64_t const middle = tip / 2 + beyond;
        std::vector<GridPoint> points = {{tip, 0},           {middle, -middle}, {0, -tip},
                                         {-middle, -middle}, {-tip, 0},         {-middle, middle},
                                         {0, tip},           {middle, middle}};
        if (hole) {
            std::reverse(points.begin(), points.end());
        }
        region.contours.points.insert(region.contours.points.end(), points.begin(), points.end());
        region.contours.ends.push_back(region.contours.points.size());
        region.contours.operands.push_back(0);
        region.holes.push_back(hole ? 1 : 0);
    };
    RegionContours outermostFirst;
    addDiamond(outermostFirst, 6, false);
    addDiamond(outermostFirst, 4, true);
    addDiamond(outermostFirst, 2, false);
    addDiamond(outermostFirst, 0, true);
    EXPECT_EQ(trammel_detail::OutersOf(outermostFirst), (std::vector<std::size_t>{0, 0, 2, 2}));
    RegionContours innermostFirst;
    addDiamond(innermostFirst, 0, true);
    addDiamond(innermostFirst, 2, false);
    addDiamond(innermostFirst, 4, true);
    addDiamond(innermostFirst, 6, false);
    EXPECT_EQ(trammel_detail::OutersOf(innermostFirst), (std::vector<std::size_t>{1, 1, 3, 3}));
}

TEST(ClipParts, HatchingIsToldApartByItsSlant) {
    // Thin slanted bars side by side, all of whose boxes meet, with a triangle across some of them.
    std::int64_t const unit = std::int64_t{1} << 40;
    for (auto const& [h, v] :
         {std::pair(5, 3), std::pair(-2, 7), std::pair(1, 1), std::pair(9, -1)}) {
        SCOPED_TRACE(std::to_string(h) + ":" + std::to_string(v));
        GridLines lines;
        std::int64_t const count = 150;
        for (std::int64_t k = 0; k < count; ++k) {
            GridPoint const a = {-v * k * 10 * unit, h * k * 10 * unit};
            GridPoint const b = {a.x + h * 40000 * unit, a.y + v * 40000 * unit};
            lines.points.insert(lines.points.end(), {a,
                                                     b,
                                                     {b.x - 4 * v * unit, b.y + 4 * h * unit},
                                                     {a.x - 4 * v * unit, a.y + 4 * h * unit}});
            lines.Close(1);
        }
        lines.points.insert(lines.points.end(), {{h * 100 * unit, v * 200 * unit},
                                                 {h * 9000 * unit, v * 8000 * unit},
                                                 {-v * 300 * unit, h * 400 * unit}});
        lines.Close(2);
        for (GridPoint const margin : {GridPoint{0, 0}, GridPoint{20 * unit, 30 * unit}}) {
            for (std::size_t const step : {0, 2, 10}) {
                Pairs const boxes = PairsThatMeet(lines, step, margin);
                for (auto const order : {EdgeTree::Order::kLines, EdgeTree::Order::kMorton}) {
                    Pairs const found = PairsFound(lines, step, margin, order);
                    // With a margin, bars meet their neighbours.
                    EXPECT_LT(found.size(), boxes.size() / (margin.x == 0 && step != 10 ? 10 : 2));
                    ExpectNearPairs(found, boxes, lines, margin);
                }
            }
        }
    }
}

/// The sum of a ray's steps, by line.
std::vector<int> StepsByLine(trammel_detail::ScratchVector<trammel_detail::RayCrossing> const& ray,
                             std::size_t lines) {
    std::vector<int> steps(lines, 0);
    for (trammel_detail::RayCrossing const& crossing : ray) {
        steps[crossing.line] += crossing.step;
    }
    return steps;
}

TEST(ClipParts, RaysThroughTreesAndPastAllEdgesCountTheSame) {
    Dice dice(17);
    for (int const vertices : {3, 10, 60}) {
        Polygon const a{RandomDoubles(dice, vertices), RandomDoubles(dice, 4)};
        GridLines lines = Drawing(a, {RandomDoubles(dice, vertices)}).lines;
        // The tree makes boxes only for more than 48 edges.
        while (lines.points.size() <= 48) {
            GridLines const once = lines;
            for (std::size_t line = 0; line < once.Count(); ++line) {
                for (std::size_t i = once.Begin(line); i < once.End(line); ++i) {
                    lines.points.push_back({once.points[i].x / 2, once.points[i].y});
                }
                lines.Close(once.operands[line]);
            }
        }
        // One edge in two is active, lest the tree do without boxes as most edges meet.
        trammel_detail::ScratchVector<char> active;
        for (std::size_t i = 0; i < lines.points.size(); ++i) {
            active.push_back(i % 2 == 0 ? 1 : 0);
        }
        EdgeTree const tree(lines, active, {0, 0}, EdgeTree::Order::kLines);
        ASSERT_TRUE(tree.HasBoxes());
        for (std::size_t i = 0; i < tree.Count(); ++i) {
            if (tree.At(i).a.y != tree.At(i).b.y) {
                std::size_t steps = 0;
                EXPECT_EQ(trammel_detail::InsideWestOf(lines, i), tree.InsideWestOf(i, steps)) << i;
                trammel_detail::ScratchVector<trammel_detail::RayCrossing> past;
                trammel_detail::ScratchVector<trammel_detail::RayCrossing> through;
                trammel_detail::CrossingsWestOf(lines, i, past);
                tree.CrossingsWestOf(i, through);
                EXPECT_EQ(StepsByLine(past, lines.Count()), StepsByLine(through, lines.Count()));
            }
        }
    }
}

TEST(ClipParts, GridPointsBecomeTheNearestDoubles) {
    // Near zero a grid point that is counted from there fits in 64 bits; far from it, it does not.
    Dice dice(12);
    for (double const low : {0.0, -0.7, 0.3, 1.0, -1.9, -2.0, 2.0, 3.0, 100.0, -1e5}) {
        trammel_detail::GridAxis const axis(low, low + 1.0);
        double const ulp = std::nextafter(std::abs(low) + 1, 1e9) - (std::abs(low) + 1);
        for (int round = 0; round < 500; ++round) {
            double const v = std::min(low + dice.Unit(), low + 1.0);
            std::int64_t const exact = axis.ToGrid(v);
            std::int64_t g = exact;
            if (std::abs(v) >= 0x1p-8) {
                EXPECT_EQ(axis.FromGrid(g), v);
                EXPECT_EQ(g, exact);
                EXPECT_EQ(axis.OfDouble(g), v);
            }
            // Off it by less than half of the spacing, and by more.
            std::int64_t const spacing = axis.Spacing(exact);
            for (std::int64_t const off : {spacing / 2 - 1, -(spacing / 2 - 1), spacing / 4}) {
                g = exact + off;
                std::int64_t const before = g;
                double const w = axis.FromGrid(g);
                EXPECT_LE(std::abs(g - before), spacing / 2);
                EXPECT_EQ(axis.OfDouble(g), w);
                EXPECT_LE(std::abs(w - v), ulp);
            }
        }
    }
}

TEST(ClipParts, TiesBetweenDoublesAreRoundedToEven) {
    // The doubles from 1 to 2 are 2^9 steps of 2^-61 apart here.
    for (double const low : {1.0, 1.0 - 0x1p-1}) {
        trammel_detail::GridAxis const axis(low, low + 1.0);
        std::int64_t const even = axis.ToGrid(1.25);
        std::int64_t const spacing = axis.Spacing(even);
        std::int64_t g = even + spacing / 2;
        EXPECT_EQ(axis.FromGrid(g), 1.25);
        EXPECT_EQ(g, even);
        g = even + spacing + spacing / 2;
        EXPECT_EQ(axis.FromGrid(g), 1.25 + 0x1p-51);
        EXPECT_EQ(g, even + 2 * spacing);
        g = even + spacing / 2 + 1;
        EXPECT_EQ(axis.FromGrid(g), 1.25 + 0x1p-52);
        EXPECT_EQ(g, even + spacing);
    }
}

TEST(ClipParts, ScratchGivesItsBlockAndThenTheHeap) {
    trammel_detail::Scratch scratch;
    void* const first = scratch.Take(100);
    void* const second = scratch.Take(100);
    EXPECT_EQ(static_cast<char*>(second) - static_cast<char*>(first), 112);
    scratch.TakeBack(second, 100);
    EXPECT_EQ(scratch.Take(40), second);
    // A block that comes back out of turn leaves a gap until the operation ends.
    scratch.TakeBack(first, 100);
    EXPECT_NE(scratch.Take(100), first);
    void* const large = scratch.Take(1 << 20);
    auto const address = [](void const* p) { return reinterpret_cast<std::uintptr_t>(p); };
    EXPECT_TRUE(address(large) < address(&scratch) ||
                address(large) >= address(&scratch) + sizeof scratch);
    scratch.TakeBack(large, 1 << 20);
    // Requests for no bytes, while the block has some left and when it has none.
    void* const nothing = scratch.Take(0);
    scratch.TakeBack(nothing, 0);
    std::vector<void*> units;
    while (units.size() < sizeof scratch / 16) {
        units.push_back(scratch.Take(16));
    }
    scratch.TakeBack(scratch.Take(0), 0);
    while (!units.empty()) {
        scratch.TakeBack(units.back(), 16);
        units.pop_back();
    }
    trammel_detail::ScratchVector<double> vector(&scratch);
    for (int i = 0; i < 10000; ++i) {
        vector.push_back(i);
    }
    trammel_detail::ScratchVector<double> const moved = std::move(vector);
    for (int i = 0; i < 10000; ++i) {
        ASSERT_EQ(moved[static_cast<std::size_t>(i)], i);
    }
    trammel_detail::ScratchAllocator<double> allocator(&scratch);
    EXPECT_THROW(static_cast<void>(allocator.allocate(std::numeric_limits<std::size_t>::max() / 2)),
                 std::bad_alloc);
}

/// Expects edges that are equal or have at most ends in common.
void ExpectNoCrossings(GridLines const& lines) {
    std::vector<GridEdge> edges;
    for (std::size_t line = 0; line < lines.Count(); ++line) {
        for (std::size_t i = lines.Begin(line); i < lines.End(line); ++i) {
            edges.push_back({lines.points[i],
                             lines.points[i + 1 == lines.End(line) ? lines.Begin(line) : i + 1]});
        }
    }
    // An end in the interior of another edge, or a crossing of two interiors.
    auto const meetsInside = [](GridEdge const& e, GridEdge const& f) {
        using trammel_detail::SideOf;
        int const fa = SideOf(e.a, e.b, f.a);
        int const fb = SideOf(e.a, e.b, f.b);
        auto const inside = [&](GridPoint p, int side) {
            return side == 0 && p != e.a && p != e.b &&
                   trammel_detail::Contains(trammel_detail::BoxOf(e), p);
        };
        return inside(f.a, fa) || inside(f.b, fb) ||
               (fa * fb < 0 && SideOf(f.a, f.b, e.a) * SideOf(f.a, f.b, e.b) < 0);
    };
    std::size_t crossings = 0;
    for (GridEdge const& e : edges) {
        crossings += static_cast<std::size_t>(std::count_if(
            edges.begin(), edges.end(), [&](GridEdge const& f) { return meetsInside(e, f); }));
    }
    EXPECT_EQ(crossings, 0U);
}

/// Expects that cutting the lines leaves no crossings, whichever parts it looks at again.
void ExpectCutWithoutCrossings(GridLines const& lines, ClipGrid const& grid) {
    for (Recheck const recheck : {Recheck::kWhereNeeded, Recheck::kEverywhere}) {
        GridLines cut = lines;
        trammel_detail::ScratchVector<Incidence> incidences;
        std::optional<EdgeTree> tree;
        trammel_detail::CutAtCrossings(cut, grid, recheck, incidences, tree);
        ExpectNoCrossings(cut);
    }
}

TEST(ClipParts, CuttingEndsWhereEdgesAreOneDoubleLong) {
    // The vertices lie a few doubles around a power of two, in a drawing much larger than that. The
    // doubles just below the power count as twice as far apart as they are. The first of these
    // drawings takes more than 24 rounds, in which the diagonals of a square come back again and
    // again. So do some of the random ones.
    std::vector<std::vector<std::pair<int, int>>> drawings = {{{-7, -8},
                                                               {-7, -7},
                                                               {-4, -5},
                                                               {-6, -4},
                                                               {-7, -5},
                                                               {-5, -8},
                                                               {-5, -3},
                                                               {-6, -7},
                                                               {-3, -3},
                                                               {-5, -4},
                                                               {-4, -8},
                                                               {-4, -6},
                                                               {-5, -7},
                                                               {-7, -7}}};
    Dice dice(61);
    for (int i = 0; i < 40; ++i) {
        drawings.emplace_back();
        for (int k = 0; k < 20; ++k) {
            int const x = dice.Int(-7, 5);
            drawings.back().emplace_back(x, dice.Int(-7, 5));
        }
    }
    for (auto const& drawing : drawings) {
        SCOPED_TRACE("drawing " + std::to_string(&drawing - drawings.data()));
        ClipGrid grid(-1, -1, 1, 1);
        GridLines lines;
        for (std::size_t i = 0; i < drawing.size(); ++i) {
            auto const [x, y] = drawing[i];
            lines.points.push_back(grid.Add(0x1p-6 + x * 0x1p-59, 0x1p-6 + y * 0x1p-59));
            if (i + 1 == drawing.size() / 2) {
                lines.Close(1);
            }
        }
        lines.Close(2);
        grid.FinishAdding();
        ExpectCutWithoutCrossings(lines, grid);
    }
}

TEST(ClipParts, CuttingEndsWithoutCrossingsWhereDoublesLieOneWidthApart) {
    // The greatest coordinate is a power of two, so the doubles from there on are twice as far
    // apart as the drawing is wide. Edges pass vertices closely at twice that distance.
    Dice dice(67);
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        bool const wide = dice.Int(0, 1) != 0;
        double const low = 1 - 0x1p-53;
        double const otherLow = dice.Int(0, 1) != 0 ? low : 1 - 0x1p-50;
        ClipGrid grid(wide ? otherLow : low, wide ? low : otherLow, 1, 1);
        GridLines lines;
        for (Operands const operand : {Operands{1}, Operands{2}}) {
            for (int i = 0; i < 10; ++i) {
                double const x = dice.Int(0, 1) != 0 ? low : 1;
                double const y = otherLow + dice.Int(0, 8) * 0.125 * (1 - otherLow);
                lines.points.push_back(wide ? grid.Add(y, x) : grid.Add(x, y));
            }
            lines.Close(operand);
        }
        grid.FinishAdding();
        ExpectCutWithoutCrossings(lines, grid);
    }
}

TEST(ClipParts, SnappingIsMonotoneAndLeavesDoublesInPlace) {
    // Both keep a cut in its edge's box. Without them cutting might not end.
    Dice dice(23);
    for (double const low : {0.0, -0.7, 1.0, -2.0, 3.0, -1e5, 0x1p52}) {
        trammel_detail::GridAxis const axis(low, low + 1.0);
        auto const snapped = [&](std::int64_t g) {
            axis.FromGrid(g);
            return g;
        };
        for (int round = 0; round < 500; ++round) {
            std::int64_t const g = axis.ToGrid(low + dice.Unit());
            std::int64_t const s = axis.Spacing(g);
            for (std::int64_t const d : {std::int64_t{1}, s / 3, s / 2, s}) {
                EXPECT_EQ(snapped(snapped(g + d)), snapped(g + d));
                EXPECT_LE(snapped(g), snapped(g + d));
                EXPECT_LE(snapped(g - d), snapped(g));
            }
        }
    }
}

} // namespace
