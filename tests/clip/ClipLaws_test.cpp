// SPDX-License-Identifier: MIT

// Laws that the clipper's results obey whatever the operands are.
#include "ClipChecks.h"

#include "gpc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace clip_test {
namespace {

using plain::Box;
using plain::Clip;
using plain::Combine;
using plain::kOperationNames;
using plain::kOperations;
using plain::Normalised;

TEST(ClipLaws, HoldForRandomPolygons) {
    Dice dice(77);
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        Polygon a;
        Polygon b;
        for (Polygon* const operand : {&a, &b}) {
            for (int i = dice.Int(1, 3); i > 0; --i) {
                operand->push_back(RandomDoubles(dice, dice.Int(3, 14)));
            }
        }
        Region const results[4] = {Clip(GPC_DIFF, a, b), Clip(GPC_INT, a, b), Clip(GPC_XOR, a, b),
                                   Clip(GPC_UNION, a, b)};
        double const difference = Area(results[0]);
        double const intersection = Area(results[1]);
        double const either = Area(results[2]);
        double const both = Area(results[3]);
        Region const regionA = Clip(GPC_UNION, a, {});
        Region const regionB = Clip(GPC_UNION, {}, b);
        double const areaA = Area(regionA);
        double const areaB = Area(regionB);
        double const tolerance = kAreaTolerance * both;
        EXPECT_NEAR(areaA, plain::EvenOddArea(a), tolerance);
        EXPECT_NEAR(areaB, plain::EvenOddArea(b), tolerance);

        // 1. Inclusion and exclusion.
        EXPECT_NEAR(areaA + areaB, both + intersection, tolerance);
        EXPECT_NEAR(areaA, difference + intersection, tolerance);
        EXPECT_NEAR(both, areaB + difference, tolerance);
        // 2. The union contains each operand: nothing of it is left outside.
        EXPECT_LE(Area(Clip(GPC_DIFF, a, results[3].contours)), tolerance);
        EXPECT_LE(Area(Clip(GPC_DIFF, b, results[3].contours)), tolerance);
        // 3. Exclusive-or is union minus intersection.
        Region const twoSteps = Clip(GPC_DIFF, results[3].contours, results[1].contours);
        EXPECT_NEAR(either, Area(twoSteps), tolerance);
        EXPECT_LE(Area(Clip(GPC_XOR, results[2].contours, twoSteps.contours)), tolerance);
        // 4. Operands may change places, save in a difference.
        for (gpc_op const operation : {GPC_INT, GPC_XOR, GPC_UNION}) {
            EXPECT_NEAR(Area(results[operation]), Area(Clip(operation, b, a)), tolerance);
        }
        // 5. With itself.
        EXPECT_TRUE(Clip(GPC_DIFF, a, a).contours.empty());
        EXPECT_TRUE(Clip(GPC_XOR, a, a).contours.empty());
        ExpectIdentical(Clip(GPC_INT, a, a), regionA);
        ExpectIdentical(Clip(GPC_UNION, a, a), regionA);
        // 6. Direction and first vertex of the operands do not matter.
        Polygon turned = a;
        for (Contour& contour : turned) {
            std::reverse(contour.begin(), contour.end());
            std::rotate(contour.begin(), contour.begin() + 1, contour.end());
        }
        EXPECT_NEAR(Area(Clip(GPC_INT, turned, b)), intersection, tolerance);

        // 7. Points are in the result exactly where the operands' membership says so.
        for (int i = 0; i < 60; ++i) {
            Vertex const p{dice.Unit(), dice.Unit()};
            bool nearEdge = false;
            for (Polygon const* const operand : {&a, &b}) {
                for (Contour const& contour : *operand) {
                    for (std::size_t k = 0; k < contour.size(); ++k) {
                        Vertex const u = contour[k];
                        Vertex const v = contour[(k + 1) % contour.size()];
                        double const side = (v.x - u.x) * (p.y - u.y) - (v.y - u.y) * (p.x - u.x);
                        nearEdge |= std::fabs(side) < 1e-9 * std::hypot(v.x - u.x, v.y - u.y);
                    }
                }
            }
            if (nearEdge) {
                continue;
            }
            for (std::size_t k = 0; k < 4; ++k) {
                EXPECT_EQ(plain::Inside(results[k].contours, p),
                          Combine(kOperations[k], plain::Inside(a, p), plain::Inside(b, p)))
                    << kOperationNames[k] << " at " << p.x << " " << p.y;
            }
        }
        for (Region const& region : results) {
            ExpectWellFormed(region);
            ExpectDirections(region);
        }
    }
}

TEST(ClipLaws, MoveResultsWithTheOperands) {
    // By what leaves every coordinate exact: a power of two as factor, and a distance that is a
    // multiple of the coordinates' last place and keeps them in their binade.
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

TEST(ClipLaws, HoldAtAnyScaleAndPlace) {
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
        // The truth for the coordinates as they are after rounding: their own even-odd areas.
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
