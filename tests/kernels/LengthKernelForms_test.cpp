// SPDX-License-Identifier: MIT

// What the accurate length takes for granted when it chooses a formula: where the zeros are, and
// what an ellipse without zeros suffices for.
#include "LengthKernelForms_p.h"

#include "../TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <functional>

namespace {

using trammel_detail::Choice;
using trammel_detail::Double4;
using trammel_detail::kChoices;
using trammel_detail::kChoiceSteps;
using trammel_detail::kLeastEllipses;
using trammel_detail::kRatios;
using trammel_detail::kZeroError;
using trammel_detail::RatioRow;
using trammel_detail::SpeedCurve;
using trammel_detail::ZeroPlaces;
using trammel_test::Random;

typedef long double Wide;
typedef std::complex<Wide> Complex;

Wide Widened(double x) { return static_cast<Wide>(x); }
Complex Number(double h, double v) { return Complex(Widened(h), Widened(v)); }
Complex Turned(double length, double angle) { return std::polar(Widened(length), Widened(angle)); }

/// The derivative a + 2bt + ct².
SpeedCurve Curve(Complex const& a, Complex const& b, Complex const& c) {
    SpeedCurve curve = {};
    curve.aH = static_cast<double>(a.real());
    curve.aV = static_cast<double>(a.imag());
    curve.bH = static_cast<double>(b.real());
    curve.bV = static_cast<double>(b.imag());
    curve.cH = static_cast<double>(c.real());
    curve.cV = static_cast<double>(c.imag());
    auto const taxicab = [](double h, double v) { return std::abs(h) + std::abs(v); };
    curve.size =
        taxicab(curve.aH, curve.aV) + taxicab(curve.aH + curve.bH, curve.aV + curve.bV) +
        taxicab(curve.aH + 2.0 * curve.bH + curve.cH, curve.aV + 2.0 * curve.bV + curve.cV);
    return curve;
}
SpeedCurve CurveWithZeros(Random& random, Complex const& z0, Complex const& z1) {
    Complex const c = Turned(std::ldexp(1.0, random.Integer(-20, 20)), random.Uniform(-3.2, 3.2)) /
                      (1 + std::abs(z1));
    return Curve(c * z0 * z1, c * (z0 + z1) * -0.5L, c);
}

/// The zeros of the rounded coefficients, above the real axis, in long double.
std::array<Complex, 2> TrueZeros(SpeedCurve const& curve) {
    Complex const a = Number(curve.aH, curve.aV);
    Complex const b = Number(curve.bH, curve.bV);
    Complex const c = Number(curve.cH, curve.cV);
    Complex const root = std::sqrt(b * b - a * c);
    Complex const s = (std::conj(b) * root).real() >= 0 ? -(b + root) : root - b;
    auto const above = [](Complex const& z) { return Complex(z.real(), std::abs(z.imag())); };
    return {above(s / c), above(a / s)};
}

/// How far a place is from a zero, unless both are beyond all ellipses.
Wide Off(Complex const& place, Complex const& zero) {
    return std::abs(zero) > 8 && std::abs(place) > 7 ? 0 : std::abs(place - zero);
}
Wide Off(ZeroPlaces const& places, std::array<Complex, 2> const& zeros) {
    Complex const p = Number(0.5 * places.h0, 0.5 * std::sqrt(places.v0));
    Complex const q = Number(0.5 * places.h1, 0.5 * std::sqrt(places.v1));
    return std::min(std::max(Off(p, zeros[0]), Off(q, zeros[1])),
                    std::max(Off(p, zeros[1]), Off(q, zeros[0])));
}

/// Whether the shortest formula suffices for the whole curve.
bool ShortestSuffices(SpeedCurve const& curve) {
    ZeroPlaces const zeros(curve);
    return (Choice<Double4>(kLeastEllipses.rows[kRatios - 1], zeros).Of(0.0, 1.0) & 1U) != 0;
}

// The farther zero decides which of the three ways is taken: up to some 10, at some 20 to 2^22, or
// beyond.
TEST(ZeroPlaces, AreRightWithinTheErrorThatChoicesAllowFor) {
    Random random(1);
    for (int i = 0; i < 200000; ++i) {
        auto const turn = [&](double length) { return Turned(length, random.Uniform(-3.2, 3.2)); };
        Complex const zero =
            random.Integer(0, 1) == 0
                ? turn(random.Uniform(0.0, 12.0))
                : Number(random.Uniform(-0.5, 1.5), std::ldexp(1.0, -random.Integer(0, 40)));
        Complex other;
        switch (random.Integer(0, 3)) {
        case 0: // nearly double
            other = zero + turn(std::ldexp(1.0, -random.Integer(10, 60)));
            break;
        case 1: // nearly no b
            other = -zero + turn(std::ldexp(1.0, -random.Integer(0, 60)));
            break;
        case 2: // about where the first way ends
            other = turn(random.Uniform(4.0, 64.0));
            break;
        default: // and the second, and much farther
            other = turn(std::ldexp(random.Uniform(0.5, 1.0), random.Integer(18, 60)));
            break;
        }
        SpeedCurve const curve = CurveWithZeros(random, zero, other);
        ASSERT_LE(Off(ZeroPlaces(curve), TrueZeros(curve)), Widened(kZeroError)) << zero << other;
    }
}

TEST(ZeroPlaces, LeaveOutThoseAtEndsWhereTheCurveRests) {
    Random random(3);
    for (int i = 0; i < 20000; ++i) {
        Complex const other = Turned(std::ldexp(random.Uniform(0.5, 1.0), random.Integer(-40, 4)),
                                     random.Uniform(-3.2, 3.2));
        SpeedCurve start = CurveWithZeros(random, 0, other);
        start.restsAtStart = true;
        SpeedCurve end = CurveWithZeros(random, 1, other);
        end.restsAtEnd = true;
        for (SpeedCurve& curve : {std::ref(start), std::ref(end)}) {
            ZeroPlaces const places(curve);
            Complex const place(0.5L * Widened(places.h0), 0.5L * std::sqrt(Widened(places.v0)));
            ASSERT_LE(Off(place, Complex(other.real(), std::abs(other.imag()))),
                      Widened(kZeroError));
            ASSERT_GT(places.h1, 1e99);
        }
        start.restsAtEnd = true;
        ASSERT_TRUE(ShortestSuffices(start));
    }
}

// A zero that does not exist must not keep the shortest formula from being chosen, as a NaN would.
TEST(ZeroPlaces, OfACurveWithoutZerosAreFarAway) {
    EXPECT_TRUE(ShortestSuffices(Curve(0, 0, 0))); // one point
    for (double const size : {0x1p-156, 1.0, 0x1p102}) {
        EXPECT_TRUE(ShortestSuffices(Curve(Number(size, -size), 0, 0))) << size;
        for (int power = 10; power < 1200; ++power) {
            Wide const small = std::ldexp(Widened(size), -power);
            Complex const b = small * Complex(1, 2);
            Complex const c = small * Complex(-2, 1);
            EXPECT_TRUE(ShortestSuffices(Curve(Number(size, 0.0), b, c))) << size << ' ' << power;
            EXPECT_TRUE(ShortestSuffices(Curve(Number(size, 0.0), 0, c))) << size << ' ' << power;
            EXPECT_TRUE(ShortestSuffices(Curve(Number(size, 0.0), b, 0))) << size << ' ' << power;
            EXPECT_TRUE(ShortestSuffices(Curve(Number(size, 0.0), b, c * (small / Widened(size)))))
                << size << ' ' << power;
        }
    }
}

// The bound computed anew: 512/63 / sqrt(pi) / (2n - 2)^(3/2) · a² · q^n / (1 - q).
TEST(LeastEllipses, SufficeForEveryRatioOfTheirRow) {
    for (int row = 0; row < kRatios; ++row) {
        for (int i = 0; i < kChoices; ++i) {
            int const nodes = 4 * kChoiceSteps[i];
            // The ellipse may not be larger than its numbers say, in either direction.
            Wide const across = Widened(kLeastEllipses.rows[row].across[i]);
            Wide const along = Widened(kLeastEllipses.rows[row].along[i]);
            Wide const axis2 = std::min(1 / across, 1 + 1 / along);
            Wide const inverse = std::sqrt(axis2) - std::sqrt(axis2 - 1);
            Wide const q = inverse * inverse;
            Wide const error = Wide{512} / 63 / std::sqrt(std::acos(Wide{-1})) /
                               std::pow(Wide(2 * nodes - 2), 1.5L) * axis2 *
                               std::pow(q, Wide(nodes)) / (1 - q);
            EXPECT_LE(error, std::pow(Wide{2}, -0.5L * row)) << row << ' ' << nodes;
        }
    }
}

TEST(RatioRow, IsNeverTooLowAndAtMostTwoTooHigh) {
    Random random(2);
    for (int i = 0; i < 100000; ++i) {
        auto const any = [&] {
            return std::ldexp(random.Uniform(-1.0, 1.0), random.Integer(-30, 0));
        };
        SpeedCurve const curve =
            Curve(Number(any(), any()), Number(any(), any()), Number(any(), any()));
        // Of A + Bw + Cw², the whole curve being -1 <= w <= 1.
        auto const size = [](Complex const& z) { return std::abs(z.real()) + std::abs(z.imag()); };
        Complex const c = Number(curve.cH, curve.cV) * 0.25L;
        Complex const b = Number(curve.bH, curve.bV) + c * 2.0L;
        Complex const a = Number(curve.aH, curve.aV) + Number(curve.bH, curve.bV) + c;
        Wide const square = 2.25L * (size(a) + size(b) + size(c)) * (size(b) + 2 * size(c));
        // Just beside the powers of two, on both sides, and anywhere.
        double const beside =
            random.Integer(0, 1) == 0 ? random.Uniform(-1e-12, 1e-12) : random.Uniform(0.0, 1.0);
        Wide const exponent = random.Integer(-10, 90) + Widened(beside);
        double const accuracy =
            static_cast<double>(std::sqrt(square / std::pow(Wide{2}, exponent)));
        std::int64_t const row = RatioRow(curve, accuracy);
        ASSERT_GE(static_cast<Wide>(row), exponent - 1e-14L);
        ASSERT_LE(static_cast<Wide>(row), std::max(exponent, Wide{0}) + 2);
    }
    SpeedCurve const curve = Curve({1, 0}, {1, 2}, {3, 1});
    EXPECT_EQ(RatioRow(curve, trammel_test::kInf), 0);
    EXPECT_EQ(RatioRow(curve, 1e300), 0);
    EXPECT_GE(RatioRow(curve, 1e-300), kRatios);
}

} // namespace
