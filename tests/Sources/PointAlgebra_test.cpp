// SPDX-License-Identifier: MIT

#include "PointAlgebra.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using trammel::Cross;
using trammel::Dot;
using trammel::Normalize;
using trammel_test::kInf;
using trammel_test::kNaN;

typedef TPoint<double> Pt;

TEST(PointAlgebra, NumberTimesPointIsPointTimesNumber) {
    EXPECT_EQ(2.0 * Pt(3, -4), Pt(6, -8));
    EXPECT_EQ(2 * Pt(3, -4), Pt(6, -8));
    EXPECT_EQ(0.5F * Pt(3, -4), Pt(1.5, -2));
    EXPECT_EQ(1.5 * TPoint<short>(3, 5), TPoint<short>(4, 7)) << "shorts are truncated";
    EXPECT_EQ(0.1 * Pt(0.7, 1e300), Pt(0.7, 1e300) * 0.1);
}

TEST(PointAlgebra, ConstantExpressionsCompute) {
    constexpr Pt sum = 2.0 * Pt(3, 4) + Pt(1, 1) / 2.0 - -Pt(0.5, 0.5);
    static_assert(sum == Pt(7, 9));
    static_assert(Dot(Pt(1, 2), Pt(3, 4)) == 11.0);
    static_assert(Cross(Pt(1, 2), Pt(3, 4)) == -2.0);
    constexpr TPoint<short> cut = TPoint<short>(Pt(70000.5, -1.5));
    static_assert(cut == TPoint<short>(4464, -1));
    EXPECT_EQ(sum, Pt(7, 9));
}

TEST(PointAlgebra, ProductsTellAnglesAndSides) {
    EXPECT_EQ(Dot(Pt(3, 4), Pt(-4, 3)), 0.0);
    EXPECT_EQ(Cross(Pt(1, 0), Pt(0, 1)), 1.0) << "from h toward v";
    EXPECT_EQ(Cross(Pt(0, 1), Pt(1, 0)), -1.0);
    EXPECT_TRUE(std::isnan(Dot(Pt(kNaN, 0), Pt(1, 1))));
}

TEST(PointAlgebra, NormalizedVectorHasLengthOneAndTheSameDirection) {
    std::mt19937_64 random(51);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    std::uniform_int_distribution<int> exponent(-1073, 1023);
    for (int i = 0; i < 50000; ++i) {
        int const e = exponent(random);
        Pt const p(std::ldexp(unit(random), e),
                   std::ldexp(unit(random), std::clamp(e + exponent(random) % 60, -1073, 1023)));
        if (p.Null()) {
            continue;
        }
        long double const h = p.h;
        long double const v = p.v;
        long double const length = std::hypot(h, v);
        Pt const found = Normalize(p);
        EXPECT_LE(std::abs(found.h - h / length), 0x1p-51L) << p.h << " " << p.v;
        EXPECT_LE(std::abs(found.v - v / length), 0x1p-51L) << p.h << " " << p.v;
    }
    EXPECT_EQ(Normalize(Pt(3, -4)), Pt(0.6, -0.8));
    EXPECT_EQ(Normalize(Pt(0, 5e-324)), Pt(0, 1));
    EXPECT_EQ(Normalize(Pt(-1.7e308, 0)), Pt(-1, 0));
}

TEST(PointAlgebra, VectorWithoutDirectionIsNotNormalized) {
    EXPECT_EQ(Normalize(Pt(0, 0)), Pt(0, 0));
    for (Pt const& p : {Pt(kInf, 1), Pt(1, -kInf), Pt(kNaN, 0), Pt(0, kNaN), Pt(kInf, kInf)}) {
        Pt const found = Normalize(p);
        EXPECT_TRUE(std::isnan(found.h) || std::isnan(found.v));
    }
}

} // namespace
