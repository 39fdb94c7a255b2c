// SPDX-License-Identifier: MIT

// Polygons and points with which the tests of both kinds of polygon compare Contains with its rule.

#ifndef TRAMMEL_CONTAINMENTCASES_H
#define TRAMMEL_CONTAINMENTCASES_H

#include "TPoint.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <vector>

namespace trammel_test {

/// Calls `tryRing(round, vertices, points)` for 4,000 random rings of up to eight vertices, each
/// with 20 points to ask about. It ends at the first fatal failure.
///
/// Coordinates are small integers, so that points meet vertices and edges exactly. Every fourth
/// ring has special values, too.
template <class TryRing> void ForSmallRings(unsigned seed, TryRing const& tryRing) {
    std::mt19937 random(seed);
    double const specials[] = {0,      -0.0, 1,     -1,   2.5,    kHuge,
                               -kHuge, kInf, -kInf, kNaN, 5e-324, 1e-308};
    for (int round = 0; round < 4000 && !::testing::Test::HasFatalFailure(); ++round) {
        bool const special = round % 4 == 0;
        auto const next = [&] {
            return special && random() % 3 == 0 ? specials[random() % std::size(specials)]
                                                : static_cast<double>(random() % 9) - 4.0;
        };
        std::vector<TPoint<double>> vertices;
        for (unsigned long n = random() % 9; n > 0; --n) {
            double const h = next();
            vertices.emplace_back(h, next());
        }
        std::vector<TPoint<double>> points;
        for (int k = 0; k < 20; ++k) {
            double const h = next() / (k % 2 == 0 ? 1.0 : 2.0);
            points.emplace_back(h, next());
        }
        tryRing(round, vertices, points);
    }
}

} // namespace trammel_test

#endif
