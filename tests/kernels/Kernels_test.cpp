// SPDX-License-Identifier: MIT

// Both forms of the kernels, and the loops that need only one, agree with the scalar formula to the
// last bit.

#include "CurveKernels_p.h"
#include "Dispatch_p.h"
#include "FlattenKernels_p.h"
#include "Hypot_p.h"
#include "PointKernels_p.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using trammel_detail::AffineMap;
using trammel_detail::FlatCubic;
using trammel_detail::FlatPlan;
using trammel_detail::FlatRun;
using trammel_detail::Lane;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;

std::vector<std::uint64_t> BitsOf(std::vector<double> const& numbers) {
    std::vector<std::uint64_t> bits(numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        std::memcpy(&bits[i], &numbers[i], sizeof(double));
    }
    return bits;
}

std::vector<double> RandomNumbers(Random& random, std::size_t count) {
    std::vector<double> numbers(count);
    for (double& x : numbers) {
        x = std::ldexp(random.Uniform(-1.0, 1.0), random.Integer(-20, 20));
    }
    return numbers;
}

/// Calls check() with the form for this processor, then with the portable one.
template <class Check> void ForBothForms(Check check) {
    for (bool const portable : {false, true}) {
        SCOPED_TRACE(portable ? "portable" : "for this processor");
        trammel_detail::UsePortableForms(portable);
        check();
    }
    trammel_detail::UsePortableForms(false);
}

TEST(EdgeLengths, HaveTheBitsOfHypot) {
    Random random(1);
    for (std::size_t edges = 0; edges < 40; ++edges) {
        std::vector<double> points = RandomNumbers(random, 2 * edges + 2);
        for (std::size_t i = 0; i < points.size(); i += 7) {
            std::array<double, 6> const special = {0.0, kNaN, kInf, 0x1p600, 5e-324, 0x1p-500};
            points[i] = special[(i + edges) % special.size()];
        }
        std::vector<double> expected(edges);
        for (std::size_t i = 0; i < edges; ++i) {
            expected[i] = trammel_detail::Hypot(points[2 * i + 3] - points[2 * i + 1],
                                                points[2 * i + 2] - points[2 * i]);
        }
        ForBothForms([&] {
            std::vector<double> lengths(edges);
            trammel_detail::EdgeLengths(points.data(), static_cast<long>(edges), lengths.data());
            EXPECT_EQ(BitsOf(lengths), BitsOf(expected));
        });
    }
}

TEST(TransformPoints, HasTheBitsOfTheFormula) {
    Random random(2);
    for (std::size_t count = 0; count < 40; ++count) {
        std::vector<double> const points = RandomNumbers(random, 2 * count);
        std::vector<double> const m = RandomNumbers(random, 8);
        for (bool const aboutOrigin : {false, true}) {
            double const fromV = aboutOrigin ? 0.0 : m[0];
            double const fromH = aboutOrigin ? 0.0 : m[1];
            double const matrix[6] = {m[5], m[4], m[3], m[2], m[7], m[6]};
            double const from[2] = {fromV, fromH};
            AffineMap const map = {matrix, aboutOrigin ? nullptr : from};
            std::vector<double> expected = points;
            for (std::size_t i = 0; i < expected.size(); i += 2) {
                double const v = points[i] - fromV;
                double const h = points[i + 1] - fromH;
                expected[i] = h * m[4] + v * m[2] + m[6];
                expected[i + 1] = h * m[5] + v * m[3] + m[7];
            }
            ForBothForms([&] {
                // One byte off, as the points of handle polygons may lie anywhere.
                std::vector<char> bytes(16 * count + 1);
                if (count > 0) {
                    std::memcpy(&bytes[1], points.data(), 16 * count);
                }
                trammel_detail::TransformPoints(bytes.data() + 1, static_cast<long>(count), map);
                std::vector<double> moved(2 * count);
                if (count > 0) {
                    std::memcpy(moved.data(), &bytes[1], 16 * count);
                }
                EXPECT_EQ(BitsOf(moved), BitsOf(expected)) << count;
            });
        }
    }
}

TEST(NotBelow, TellsEachPointWhoseHeightIsAtMostTheGivenOne) {
    Random random(3);
    for (long count = 0; count <= 64; ++count) {
        std::vector<double> points(2 * static_cast<std::size_t>(count) + 1);
        std::uint64_t expected = 0;
        for (long i = 0; i < count; ++i) {
            std::array<double, 6> const heights = {kNaN, -kInf, kInf, 0.0, -0.0, 1.0};
            double const v = heights[static_cast<std::size_t>(random.Integer(0, 5))];
            points[2 * static_cast<std::size_t>(i)] = v;
            expected |= std::uint64_t{v <= 0.0} << i;
        }
        auto const* const bytes = reinterpret_cast<char const*>(points.data());
        EXPECT_EQ(trammel_detail::NotBelow(bytes, count, 0.0), expected) << count;
    }
}

TEST(ExtentOfPoints, IsTheLeastAndTheGreatestOfEachCoordinateInBothDirections) {
    Random random(4);
    for (std::size_t count = 1; count < 40; ++count) {
        std::vector<double> points = RandomNumbers(random, 2 * count);
        if (count > 3) {
            points[6] = kNaN; // not in the first point, so it changes nothing
        }
        double lowV = kInf;
        double lowH = kInf;
        double highV = -kInf;
        double highH = -kInf;
        for (std::size_t i = 0; i < points.size(); i += 2) {
            lowV = std::fmin(lowV, points[i]);
            highV = std::fmax(highV, points[i]);
            lowH = std::fmin(lowH, points[i + 1]);
            highH = std::fmax(highH, points[i + 1]);
        }
        auto const* const bytes = reinterpret_cast<char const*>(points.data());
        bool const endsInNaN = count == 4; // and begins so, backward
        for (bool const backward : {false, true}) {
            if (backward && endsInNaN) {
                continue;
            }
            ForBothForms([&] {
                double extent[4];
                trammel_detail::ExtentOfPoints(backward ? bytes + 16 * (count - 1) : bytes, bytes,
                                               static_cast<long>(count), extent);
                EXPECT_EQ(extent[0], lowV) << count;
                EXPECT_EQ(extent[1], lowH) << count;
                EXPECT_EQ(extent[2], highV) << count;
                EXPECT_EQ(extent[3], highH) << count;
            });
        }
    }
}

TEST(ExtentOfPoints, KeepsANaNOfTheFirstPointOnly) {
    for (std::size_t const count : {3, 8, 9, 10, 11, 30}) {
        std::vector<double> points(2 * count);
        for (std::size_t i = 0; i < count; ++i) {
            points[2 * i] = static_cast<double>(i);
            points[2 * i + 1] = i == 1 ? kNaN : static_cast<double>(i + 1);
        }
        points[0] = kNaN;
        ForBothForms([&] {
            auto const* const bytes = reinterpret_cast<char const*>(points.data());
            double extent[4];
            trammel_detail::ExtentOfPoints(bytes, bytes, static_cast<long>(count), extent);
            EXPECT_TRUE(std::isnan(extent[0])) << count;
            EXPECT_TRUE(std::isnan(extent[2])) << count;
            EXPECT_EQ(extent[1], 1.0) << count;
            EXPECT_EQ(extent[3], static_cast<double>(count)) << count;
        });
    }
}

/// Everything that a plan for the cubic and its first run compute.
std::vector<double> PlannedRun(FlatCubic const& curve, double tolerance) {
    FlatPlan plan = {};
    double const chords = trammel_detail::PlanFlattening(curve, 0.75 / tolerance, plan);
    plan.chords = 20;
    plan.panel = plan.done = 0;
    plan.step = chords / plan.chords;
    plan.perChord = plan.chords / chords;
    FlatRun run = {};
    trammel_detail::NextFlatRun(curve, tolerance, plan, run);
    std::vector<double> result = {chords, static_cast<double>(run.count)};
    result.insert(result.end(), plan.sums, plan.sums + trammel_detail::kPanels + 1);
    for (int i = 1; i <= run.count; ++i) {
        bool const fails = (run.failing >> (i - 1) & 1U) != 0;
        result.insert(result.end(), {run.t[i], run.h[i], run.v[i], fails ? 1.0 : 0.0});
    }
    return result;
}

TEST(FlattenKernels, PlanAndVerifyWithTheSameBitsInBothForms) {
    Random random(5);
    for (int i = 0; i < 200; ++i) {
        FlatCubic c = {};
        for (double* const x : {&c.aH, &c.aV, &c.bH, &c.bV, &c.cH, &c.cV}) {
            *x = random.Uniform(-100.0, 100.0);
        }
        c.endH = 3.0 * c.aH + 3.0 * c.bH + c.cH;
        c.endV = 3.0 * c.aV + 3.0 * c.bV + c.cV;
        c.lastH = c.aH + 2.0 * c.bH + c.cH;
        c.lastV = c.aV + 2.0 * c.bV + c.cV;
        std::vector<std::vector<std::uint64_t>> results;
        ForBothForms([&] { results.push_back(BitsOf(PlannedRun(c, 0.1))); });
        ASSERT_EQ(results[0], results[1]);
        ASSERT_GT(results[0].size(), 80U); // 20 points of four numbers
    }
}

} // namespace
