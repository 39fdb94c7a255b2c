// SPDX-License-Identifier: MIT

#include "Hypot_p.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace {

using trammel_detail::Hypot;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Legs of all sizes: alike, or up to 2^64 apart.
template <class Check> void ForManyLegs(int count, Check const& check) {
    std::mt19937_64 engine(1);
    for (int i = 0; i < count; ++i) {
        double const h = 1.0 + static_cast<double>(engine() >> 12) * 0x1p-52;
        double const v = 1.0 + static_cast<double>(engine() >> 12) * 0x1p-52;
        bool const alike = engine() % 2 == 0;
        int const size = static_cast<int>(engine() % 2098) - 1074;
        int const apart = static_cast<int>(engine() % (alike ? 8 : 128)) - (alike ? 4 : 64);
        check(std::ldexp(h, size), -std::ldexp(v, size + apart));
    }
    double const special[] = {0.0,       -0.0,     1.0,      3.0,      4.0,      0x1p-1074,
                              0x1p-1022, 0x1p-459, 0x1p511,  0x1p-460, 0x1p512,  0x1p-538,
                              0x1p-513,  0x1p600,  0x1p1023, 0x1p565,  0x1p-405, 0x1p-406,
                              -0x1p-404, 1e308,    kInf};
    for (double const h : special) {
        for (double const v : special) {
            check(h, v);
            check(h * (1.0 + 0x1p-52), v);
        }
    }
}

// The wider type of long double judges, where a machine has one.
TEST(Hypot, IsOffByLessThanAUnitInTheLastPlace) {
    ForManyLegs(200000, [](double h, double v) {
        double const length = Hypot(h, v);
        long double const exact =
            std::hypot(static_cast<long double>(h), static_cast<long double>(v));
        if (!(exact <= static_cast<long double>(std::numeric_limits<double>::max()))) {
            ASSERT_EQ(length, kInf);
            return;
        }
        double const unit = std::nextafter(length, kInf) - length;
        ASSERT_LE(std::abs(static_cast<long double>(length) - exact),
                  static_cast<long double>(unit))
            << h << ", " << v;
    });
}

// Other C libraries, and glibc on processors with fused operations, have other last bits.
#if defined(__x86_64__) && defined(__GLIBC__)
#if __GLIBC_PREREQ(2, 35)
TEST(Hypot, HasTheBitsOfTheCLibraryOnX86) {
    ForManyLegs(200000, [](double h, double v) {
        // Through a volatile, so that no compiler computes it beforehand.
        double const volatile argument = h;
        double const theirs = std::hypot(argument, v);
        double const ours = Hypot(h, v);
        ASSERT_EQ(std::memcmp(&ours, &theirs, sizeof ours), 0) << h << ", " << v;
    });
}
#endif
#endif

TEST(Hypot, RoundsRightBesideTheSmallestLeg) {
    // Half a unit of the longer leg is not to be taken for the shorter one.
    EXPECT_EQ(Hypot(0x1p-1074, 0x1.1ff252121ff25p-1021), 0x1.1ff252121ff25p-1021);
    EXPECT_EQ(Hypot(0x1.1ff252121ff27p-1021, -0x1p-1074), 0x1.1ff252121ff27p-1021);
}

TEST(Hypot, TakesAnInfinityBeforeANaN) {
    EXPECT_EQ(Hypot(kNaN, -kInf), kInf);
    EXPECT_EQ(Hypot(kInf, kNaN), kInf);
    EXPECT_TRUE(std::isnan(Hypot(kNaN, 1.0)));
    EXPECT_TRUE(std::isnan(Hypot(0x1p900, kNaN)));
    EXPECT_TRUE(std::isnan(Hypot(0.0, kNaN)));
}

} // namespace
