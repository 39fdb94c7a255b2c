// SPDX-License-Identifier: MIT

// Laws that the clipper's results obey whatever the operands are.
#include "ClipChecks.h"

#include "gpc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <string>
#include <thread>
#include <vector>

namespace clip_test {
namespace {

using plain::Box;
using plain::Clip;
using plain::ClipCase;
using plain::Combine;
using plain::kOperationNames;
using plain::kOperations;
using plain::Normalised;

/// Pairs of polygons with one to three contours each, whose vertices lie anywhere in the unit
/// square.
std::vector<ClipCase> RandomPairs(int count) {
    Dice dice(77);
    std::vector<ClipCase> pairs;
    for (int i = 0; i < count; ++i) {
        ClipCase c{"pair " + std::to_string(i), {}, {}};
        c.a = plain::RandomPolygon(dice, 14);
        c.b = plain::RandomPolygon(dice, 14);
        pairs.push_back(c);
    }
    return pairs;
}

/// The results of all operations, in the order of kOperations.
std::array<Region, 4> ClipAll(ClipCase const& c) {
    return {Clip(GPC_DIFF, c.a, c.b), Clip(GPC_INT, c.a, c.b), Clip(GPC_XOR, c.a, c.b),
            Clip(GPC_UNION, c.a, c.b)};
}

TEST(ClipLaws, AreasObeyInclusionAndExclusion) {
    for (ClipCase const& c : RandomPairs(300)) {
        SCOPED_TRACE(c.name);
        std::array<Region, 4> const results = ClipAll(c);
        double const difference = Area(results[GPC_DIFF]);
        double const intersection = Area(results[GPC_INT]);
        double const both = Area(results[GPC_UNION]);
        double const areaA = Area(Clip(GPC_UNION, c.a, {}));
        double const areaB = Area(Clip(GPC_UNION, {}, c.b));
        double const tolerance = kAreaTolerance * both;
        EXPECT_NEAR(areaA, plain::EvenOddArea(c.a), tolerance);
        EXPECT_NEAR(areaB, plain::EvenOddArea(c.b), tolerance);
        EXPECT_NEAR(areaA + areaB, both + intersection, tolerance);
        EXPECT_NEAR(areaA, difference + intersection, tolerance);
        EXPECT_NEAR(both, areaB + difference, tolerance);
    }
}

TEST(ClipLaws, UnionsContainBothOperands) {
    for (ClipCase const& c : RandomPairs(100)) {
        SCOPED_TRACE(c.name);
        Region const both = Clip(GPC_UNION, c.a, c.b);
        EXPECT_LE(Area(Clip(GPC_DIFF, c.a, both.contours)), kAreaTolerance * Area(both));
        EXPECT_LE(Area(Clip(GPC_DIFF, c.b, both.contours)), kAreaTolerance * Area(both));
    }
}

TEST(ClipLaws, ExclusiveOrIsTheUnionWithoutTheIntersection) {
    for (ClipCase const& c : RandomPairs(100)) {
        SCOPED_TRACE(c.name);
        std::array<Region, 4> const results = ClipAll(c);
        Region const twoSteps =
            Clip(GPC_DIFF, results[GPC_UNION].contours, results[GPC_INT].contours);
        double const tolerance = kAreaTolerance * Area(results[GPC_UNION]);
        EXPECT_NEAR(Area(results[GPC_XOR]), Area(twoSteps), tolerance);
        EXPECT_LE(Area(Clip(GPC_XOR, results[GPC_XOR].contours, twoSteps.contours)), tolerance);
    }
}

TEST(ClipLaws, OperandsMayChangePlacesExceptInADifference) {
    for (ClipCase const& c : RandomPairs(100)) {
        SCOPED_TRACE(c.name);
        for (gpc_op const operation : {GPC_INT, GPC_XOR, GPC_UNION}) {
            ExpectIdentical(Clip(operation, c.a, c.b), Clip(operation, c.b, c.a));
        }
    }
}

TEST(ClipLaws, AnOperandAndItselfGiveNothingOrItself) {
    for (ClipCase const& c : RandomPairs(100)) {
        SCOPED_TRACE(c.name);
        Region const alone = Clip(GPC_UNION, c.a, {});
        EXPECT_TRUE(Clip(GPC_DIFF, c.a, c.a).contours.empty());
        EXPECT_TRUE(Clip(GPC_XOR, c.a, c.a).contours.empty());
        ExpectIdentical(Clip(GPC_INT, c.a, c.a), alone);
        ExpectIdentical(Clip(GPC_UNION, c.a, c.a), alone);
    }
}

TEST(ClipLaws, DirectionsAndFirstVerticesOfOperandsDoNotMatter) {
    for (ClipCase const& c : RandomPairs(100)) {
        SCOPED_TRACE(c.name);
        Polygon turned = c.a;
        for (Contour& contour : turned) {
            std::reverse(contour.begin(), contour.end());
            std::rotate(contour.begin(), contour.begin() + 1, contour.end());
        }
        for (gpc_op const operation : kOperations) {
            ExpectIdentical(Clip(operation, turned, c.b), Clip(operation, c.a, c.b));
        }
    }
}

TEST(ClipLaws, PointsAreInsideWhereTheOperandsTellIt) {
    Dice dice(78);
    for (ClipCase const& c : RandomPairs(300)) {
        SCOPED_TRACE(c.name);
        std::array<Region, 4> const results = ClipAll(c);
        plain::Measure const measure(c);
        for (int i = 0; i < 60; ++i) {
            double const x = dice.Unit();
            Vertex const p{x, dice.Unit()};
            if (plain::IsNearALine(c, measure, p)) {
                continue;
            }
            for (std::size_t k = 0; k < 4; ++k) {
                EXPECT_EQ(plain::Inside(results[k].contours, p),
                          Combine(kOperations[k], plain::Inside(c.a, p), plain::Inside(c.b, p)))
                    << kOperationNames[k] << " at " << p.x << " " << p.y;
            }
        }
    }
}

TEST(ClipLaws, ContoursAreWellFormedAndNeverCross) {
    // The doubles from 1024 to 2048 are integers of one unit, in which the test is exact.
    for (ClipCase const& c : RandomPairs(100)) {
        SCOPED_TRACE(c.name);
        Polygon const a = Mapped(c.a, 1024, 1024, 1024, 1024);
        Polygon const b = Mapped(c.b, 1024, 1024, 1024, 1024);
        for (gpc_op const operation : kOperations) {
            Region const region = Clip(operation, a, b);
            ExpectWellFormed(region);
            ExpectDirections(region);
            ExpectNoCrossings(region);
        }
    }
}

TEST(ClipLaws, TheSameOperandsGiveTheSameBitsEveryTime) {
    // Whatever was clipped before, in this thread or at the same time in another.
    std::vector<ClipCase> const pairs = RandomPairs(40);
    std::vector<std::array<Region, 4>> first;
    for (ClipCase const& c : pairs) {
        first.push_back(ClipAll(c));
    }
    std::array<std::vector<std::array<Region, 4>>, 3> later;
    std::vector<std::thread> threads;
    for (std::vector<std::array<Region, 4>>& results : later) {
        threads.emplace_back([&pairs, &results] {
            results.resize(pairs.size());
            for (std::size_t i = pairs.size(); i > 0; --i) {
                results[i - 1] = ClipAll(pairs[i - 1]);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        for (std::size_t k = 0; k < 4; ++k) {
            for (auto const& results : later) {
                SCOPED_TRACE(pairs[i].name + ": " + kOperationNames[k]);
                ExpectIdentical(results[i][k], first[i][k]);
            }
        }
    }
}

TEST(ClipLaws, ResultsMoveWithTheOperandsToTheBit) {
    // All coordinates stay exact: they are multiplied by powers of two, or moved within their
    // binade by multiples of the unit in their last place.
    Dice dice(5);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Polygon a;
        Polygon b;
        for (Polygon* const operand : {&a, &b}) {
            Contour contour;
            for (int i = dice.Int(3, 12); i > 0; --i) {
                double const x = 4 + std::ldexp(dice.Int(0, 1 << 20), -20);
                contour.push_back({x, 4 + std::ldexp(dice.Int(0, 1 << 20), -20)});
            }
            operand->push_back(contour);
        }
        for (std::size_t k = 0; k < 4; ++k) {
            Region const region = Clip(kOperations[k], a, b);
            for (int const power : {-900, -30, 1, 52, 900}) {
                double const scale = std::ldexp(1.0, power);
                Region scaled = region;
                scaled.contours = Mapped(scaled.contours, scale, scale, 0, 0);
                ExpectIdentical(scaled, Clip(kOperations[k], Mapped(a, scale, scale, 0, 0),
                                             Mapped(b, scale, scale, 0, 0)));
            }
            Region wide = region;
            wide.contours = Mapped(wide.contours, 0x1p40, 0x1p-40, 0, 0);
            ExpectIdentical(wide, Clip(kOperations[k], Mapped(a, 0x1p40, 0x1p-40, 0, 0),
                                       Mapped(b, 0x1p40, 0x1p-40, 0, 0)));
            for (double const distance : {1.0, 2.5, 0.0009765625}) {
                Region moved = region;
                moved.contours = Mapped(moved.contours, 1, 1, distance, distance);
                ExpectIdentical(moved, Clip(kOperations[k], Mapped(a, 1, 1, distance, distance),
                                            Mapped(b, 1, 1, distance, distance)));
            }
        }
    }
}

TEST(ClipLaws, AreasObeyTheLawsAtAnyScaleAndPlace) {
    Dice dice(11);
    Polygon const a{Star(40, 0.5, 0.5, 0.5, 0.4, dice), Rectangle(0.4, 0.4, 0.6, 0.6)};
    Polygon const b{Star(30, 0.8, 0.6, 0.4, 0.6, dice)};
    struct Place {
        double scaleX, scaleY, moveX, moveY;
    };
    Place const places[] = {{1e-300, 1e-300, 0, 0},    {1e-300, 1, 0, 0},
                            {3e-17, 7e-17, 0, 0},      {1, 1, 0, 0},
                            {1e6, 1e-9, 0, 0},         {1e-6, 1e9, 0, 0},
                            {1.1e11, 1.1e11, 0, 0},    {-1.1e11, 1.1e11, 0, 0},
                            {1e300, 1e300, 0, 0},      {100, 100, 1e11, -1e11},
                            {1, 1000, 1.1e11, 1.1e11}, {1e-3, 1e-3, 1e6, -3},
                            {8e307, 8e307, -9e307, 0}, {DBL_MAX, DBL_MAX, -DBL_MAX / 2, 0},
                            {1e-300, 1e300, 0, -1e300}};
    for (Place const& place : places) {
        SCOPED_TRACE(std::to_string(place.scaleX) + " " + std::to_string(place.scaleY) + " " +
                     std::to_string(place.moveX));
        // Into 0.1 to 0.9, so that the largest place does not overflow.
        auto const put = [&](Polygon const& p) {
            return Mapped(Mapped(p, 0.5, 0.5, 0.1, 0.1), place.scaleX, place.scaleY, place.moveX,
                          place.moveY);
        };
        Polygon const placedA = put(a);
        Polygon const placedB = put(b);
        // Placing has rounded the coordinates, so that their own even-odd areas are the truth.
        Box box;
        box.Include(placedA);
        box.Include(placedB);
        ASSERT_TRUE(std::isfinite(box.highX) && std::isfinite(box.highX - box.lowX));
        Normalised const normalised(box);
        double const areaA = plain::EvenOddArea(normalised(placedA));
        double const areaB = plain::EvenOddArea(normalised(placedB));
        double const rounding = std::max(
            plain::RoundingOfArea(normalised(placedA)),
            normalised.Area(plain::RoundingOfArea(placedA) + plain::RoundingOfArea(placedB)));
        double const tolerance = kAreaTolerance + (std::isfinite(rounding) ? rounding : 0);
        Region regions[4];
        for (std::size_t k = 0; k < 4; ++k) {
            regions[k] = Clip(kOperations[k], placedA, placedB);
            ExpectWellFormed(regions[k]);
            regions[k].contours = normalised(regions[k].contours);
            EXPECT_NEAR(Area(regions[k]), plain::EvenOddArea(regions[k].contours), 1e-12);
        }
        EXPECT_NEAR(Area(regions[0]) + Area(regions[1]), areaA, tolerance);
        EXPECT_NEAR(Area(regions[3]) + Area(regions[1]), areaA + areaB, tolerance);
        EXPECT_NEAR(Area(regions[3]) - Area(regions[1]), Area(regions[2]), tolerance);
        EXPECT_GT(Area(regions[1]), 0.01);
    }
}

} // namespace
} // namespace clip_test
