// SPDX-License-Identifier: MIT

// Compares the library with the plain forms: equality to the last bit, and random numbers that are
// the same everywhere.

#ifndef TRAMMEL_COMPARING_H
#define TRAMMEL_COMPARING_H

#include "TPoint.h"
#include "TRect.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace plain {

/// True for the same bits, and for two NaNs whatever their sign and payload (which depend on the
/// order in which a compiler hands operands to an instruction).
inline bool SameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}
inline bool SameBits(TPoint<double> const& a, TPoint<double> const& b) {
    return SameBits(a.h, b.h) && SameBits(a.v, b.v);
}
inline bool SameBits(TRect<double> const& a, TRect<double> const& b) {
    return SameBits(a[kTopLeft], b[kTopLeft]) && SameBits(a[kBottomRight], b[kBottomRight]);
}

/// For EXPECT_PRED_FORMAT2: numbers, points or rectangles that agree to the last bit.
template <class T>
testing::AssertionResult Same(char const* aText, char const* bText, T const& a, T const& b) {
    if (SameBits(a, b)) {
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << aText << " is " << trammel_test::Text(a) << ", " << bText
                                       << " is " << trammel_test::Text(b);
}

#define EXPECT_SAME(a, b) EXPECT_PRED_FORMAT2(plain::Same, a, b)
#define ASSERT_SAME(a, b) ASSERT_PRED_FORMAT2(plain::Same, a, b)

/// Random numbers that do not depend on the standard library's distributions.
class Random {
public:
    explicit Random(std::uint64_t seed) : mEngine(seed) {}

    /// A number in [0, 1).
    double Unit() { return static_cast<double>(mEngine() >> 11U) * 0x1p-53; }
    /// A number in [lo, hi).
    double Uniform(double lo, double hi) { return lo + (hi - lo) * Unit(); }
    /// A whole number in [lo, hi].
    int Int(int lo, int hi) {
        return lo + static_cast<int>(mEngine() % static_cast<std::uint64_t>(hi - lo + 1));
    }
    /// True once in `n`.
    bool OneIn(int n) { return Int(1, n) == 1; }
    /// A power of ten with an exponent in [lo, hi).
    double Decade(double lo, double hi) { return std::pow(10.0, Uniform(lo, hi)); }
    TPoint<double> Pt(double lo, double hi) {
        double const h = Uniform(lo, hi);
        return TPoint<double>(h, Uniform(lo, hi));
    }

private:
    std::mt19937_64 mEngine;
};

/// A fraction of a length: now and then a quarter of it, its ends among them, and beyond these.
inline double RandomFraction(Random& random) {
    return random.OneIn(6) ? random.Int(-1, 5) / 4.0 : random.Uniform(-0.1, 1.1);
}

/// A number from -2 to 2 or, as often, one that is special, or that overflows or underflows when it
/// is multiplied.
inline double WildNumber(Random& random) {
    constexpr double kMax = std::numeric_limits<double>::max();
    using trammel_test::kInf;
    constexpr std::array<double, 16> kSpecial = {
        0.0,   -0.0,   1.0,   -3.0, 5e-324, -1e-310, 1e-160, 1e154,
        1e150, -1e160, 1e300, kMax, -kMax,  kInf,    -kInf,  trammel_test::kNaN};
    return random.OneIn(2) ? kSpecial[static_cast<std::size_t>(random.Int(0, 15))]
                           : random.Uniform(-2, 2);
}
inline TPoint<double> WildPoint(Random& random) {
    double const h = WildNumber(random);
    return TPoint<double>(h, WildNumber(random));
}

/// The double `steps` representable numbers above (below, when negative) `x`.
inline double StepUlps(double x, int steps) {
    double const limit = std::numeric_limits<double>::infinity();
    for (; steps > 0; --steps) {
        x = std::nextafter(x, limit);
    }
    for (; steps < 0; ++steps) {
        x = std::nextafter(x, -limit);
    }
    return x;
}

} // namespace plain

#endif
