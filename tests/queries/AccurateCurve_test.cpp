// SPDX-License-Identifier: MIT

#include "AccurateCurve.h"

#include "../TestSupport.h"
#include "AccurateCurve_p.h"
#include "CMatrix3x3.h"
#include "Dispatch_p.h"
#include "TPoly.h"
#include "UTrigonometry.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <limits>
#include <string>
#include <vector>

namespace {

using trammel::ArcLength;
using trammel::CurvePoint;
using trammel::FlattenWithin;
using trammel::NearestPoint;
using trammel::ParameterAtFraction;
using trammel::ParameterAtLength;
using trammel::TightBounds;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;
using trammel_test::SameBits;
using trammel_test::Text;

typedef TPoint<double> Pt;
typedef long double Wide;

// ------------------------------------------------------------------------------------------------
// An independent view of curves, in long double

struct WidePt {
    Wide h;
    Wide v;
};
WidePt operator+(WidePt a, WidePt b) { return {a.h + b.h, a.v + b.v}; }
WidePt operator-(WidePt a, WidePt b) { return {a.h - b.h, a.v - b.v}; }
WidePt operator*(WidePt a, Wide s) { return {a.h * s, a.v * s}; }
Wide Dot(WidePt a, WidePt b) { return a.h * b.h + a.v * b.v; }
Wide Length(WidePt a) { return std::hypot(a.h, a.v); }
Wide Widened(double x) { return static_cast<Wide>(x); }
WidePt Widened(Pt const& p) { return {Widened(p.h), Widened(p.v)}; }
/// How far a result is from the truth.
Wide Off(double result, Wide truth) { return std::abs(Widened(result) - truth); }

WidePt At(CBezier const& c, Wide t) {
    Wide const s = 1 - t;
    return Widened(c.P0) * (s * s * s) + Widened(c.P1) * (3 * s * s * t) +
           Widened(c.P2) * (3 * s * t * t) + Widened(c.P3) * (t * t * t);
}
WidePt Derivative(CBezier const& c, Wide t) {
    Wide const s = 1 - t;
    WidePt const d0 = Widened(c.P1) - Widened(c.P0);
    WidePt const d1 = Widened(c.P2) - Widened(c.P1);
    WidePt const d2 = Widened(c.P3) - Widened(c.P2);
    return (d0 * (s * s) + d1 * (2 * s * t) + d2 * (t * t)) * 3;
}

/// Nodes and weights of the Gauss-Legendre formula, by Newton's method on the polynomial.
class Gauss {
public:
    static constexpr int kCount = 20;
    Gauss() {
        for (int i = 0; i < kCount; ++i) {
            Wide x = std::cos(acosl(-1.0L) * (i + 0.75L) / (kCount + 0.5L));
            Wide slope = 0;
            for (int step = 0; step < 30; ++step) {
                Wide p0 = 1;
                Wide p1 = x;
                for (int k = 2; k <= kCount; ++k) {
                    Wide const p2 = ((2 * k - 1) * x * p1 - (k - 1) * p0) / k;
                    p0 = p1;
                    p1 = p2;
                }
                slope = kCount * (x * p1 - p0) / (x * x - 1);
                x -= p1 / slope;
            }
            mNodes[static_cast<std::size_t>(i)] = x;
            mWeights[static_cast<std::size_t>(i)] = 2 / ((1 - x * x) * slope * slope);
        }
    }
    Wide Speed(CBezier const& c, Wide a, Wide b) const {
        Wide sum = 0;
        for (std::size_t i = 0; i < kCount; ++i) {
            sum += mWeights[i] * ::Length(Derivative(c, (a + b) / 2 + (b - a) / 2 * mNodes[i]));
        }
        return sum * (b - a) / 2;
    }

private:
    std::array<Wide, kCount> mNodes;
    std::array<Wide, kCount> mWeights;
};

/// The arc length by brute force: halving until the halves agree with the whole. A piece on which
/// the derivative turns by 60 degrees or more may hide a cusp between the nodes, and is halved in
/// any case, until it is too short to matter.
Wide TrueLength(CBezier const& c, Wide a, Wide b, Wide size, int depth = 0) {
    static Gauss const gauss;
    Wide const middle = (a + b) / 2;
    WidePt const d0 = Derivative(c, a);
    WidePt const d2 = Derivative(c, b);
    WidePt const d1 = Derivative(c, middle) * 2 - (d0 + d2) * 0.5L; // the middle coefficient
    auto const near = [](WidePt p, WidePt q) {
        return Dot(p, q) > 0 && 4 * Dot(p, q) * Dot(p, q) > Dot(p, p) * Dot(q, q);
    };
    Wide const longest = (b - a) * (Length(d0) + Length(d1) + Length(d2));
    Wide const whole = gauss.Speed(c, a, b);
    Wide const halves = gauss.Speed(c, a, middle) + gauss.Speed(c, middle, b);
    if (depth == 60 || longest < 1e-20L * size ||
        (near(d0, d1) && near(d1, d2) && near(d0, d2) &&
         std::abs(whole - halves) <= 1e-18L * size)) {
        return halves;
    }
    return TrueLength(c, a, middle, size, depth + 1) + TrueLength(c, middle, b, size, depth + 1);
}

/// The control polygon's length.
Wide PolygonLength(CBezier const& c) {
    return Length(Widened(c.P1) - Widened(c.P0)) + Length(Widened(c.P2) - Widened(c.P1)) +
           Length(Widened(c.P3) - Widened(c.P2));
}
Wide TrueLength(CBezier const& c, Wide a = 0, Wide b = 1) {
    Wide const size = PolygonLength(c);
    return size == 0 ? 0 : TrueLength(c, a, b, size);
}

/// The distance of the curve from `p` at a parameter, seen from `p`.
Wide DistanceAt(CBezier const& c, Wide t, Pt const& p) {
    Wide const s = 1 - t;
    WidePt const q = Widened(p);
    return Length((Widened(c.P0) - q) * (s * s * s) + (Widened(c.P1) - q) * (3 * s * s * t) +
                  (Widened(c.P2) - q) * (3 * s * t * t) + (Widened(c.P3) - q) * (t * t * t));
}

/// The least distance from `p`, by dense samples refined around every local minimum.
Wide TrueDistance(CBezier const& c, Pt const& p) {
    constexpr int kSamples = 1000;
    auto const distance = [&](Wide t) { return DistanceAt(c, t, p); };
    std::vector<Wide> samples;
    for (int i = 0; i <= kSamples; ++i) {
        samples.push_back(distance(static_cast<Wide>(i) / kSamples));
    }
    Wide least = std::min(samples.front(), samples.back());
    for (int i = 0; i <= kSamples; ++i) {
        auto const at = [&](int k) {
            return samples[static_cast<std::size_t>(std::min(std::max(k, 0), kSamples))];
        };
        if (at(i) > at(i - 1) || at(i) > at(i + 1) || at(i) > least * 1.1L + 1e-3L * at(i)) {
            continue;
        }
        Wide lo = static_cast<Wide>(std::max(i - 1, 0)) / kSamples;
        Wide hi = static_cast<Wide>(std::min(i + 1, kSamples)) / kSamples;
        for (int step = 0; step < 120; ++step) {
            Wide const a = lo + (hi - lo) * 0.382L;
            Wide const b = lo + (hi - lo) * 0.618L;
            (distance(a) < distance(b) ? hi : lo) = distance(a) < distance(b) ? b : a;
        }
        least = std::min(least, distance((lo + hi) / 2));
    }
    return least;
}

Wide SegmentDistance(WidePt p, WidePt a, WidePt b) {
    WidePt const d = b - a;
    Wide const square = Dot(d, d);
    Wide const t = square > 0 ? Dot(p - a, d) / square : 0;
    return Length(a + d * std::min(std::max(t, Wide{0}), Wide{1}) - p);
}

// ------------------------------------------------------------------------------------------------
// Curves

CBezier Parabola(double width) {
    // (w·t, w·t²)
    return CBezier({0, 0}, {width / 3, 0}, {2 * width / 3, width / 3}, {width, width});
}
/// (3s², 3s³), s from -1 to 1: a cusp in the middle.
CBezier Cusp() { return CBezier({3, -3}, {-1, 3}, {-1, -3}, {3, 3}); }
double CuspLength() { return 2.0 * (13.0 * std::sqrt(13.0) - 8.0) / 9.0; }

/// Curves of all kinds: any four points, near a cusp, near a line, with loops, with points that
/// coincide, of very unequal parts.
CBezier AnyCurve(Random& random) {
    auto const tiny = [&] { return std::ldexp(random.Uniform(-1, 1), -random.Integer(5, 60)); };
    CBezier c(random.Point(100), random.Point(100), random.Point(100), random.Point(100));
    switch (random.Integer(0, 7)) {
    case 0: // a cusp, slightly disturbed, the middle anywhere
        c = Cusp() * random.Uniform(1, 30);
        c.P1 += Pt(tiny(), tiny());
        c.P2 += Pt(tiny(), tiny());
        c.GetTRange(random.Uniform(0, 0.45), random.Uniform(0.55, 1), c);
        break;
    case 1: { // along a line, disturbed, mostly doubling back
        Pt const direction = random.Point(1);
        for (Pt* p : {&c.P0, &c.P1, &c.P2, &c.P3}) {
            *p = direction * random.Uniform(-100, 100) + Pt(tiny(), tiny());
        }
        break;
    }
    case 2:
        c.P1 = c.P0;
        break;
    case 3:
        c.P2 = c.P3;
        c.P1 = random.Integer(0, 1) == 0 ? c.P0 : c.P1;
        break;
    case 4: // closed
        c.P3 = c.P0;
        break;
    case 5: // a quarter turn
        c = CBezier({0, 100}, {55.228474983079, 100}, {100, 55.228474983079}, {100, 0});
        break;
    default:
        break;
    }
    return c;
}

std::string Text(CBezier const& c) {
    return Text(c.P0) + " " + Text(c.P1) + " " + Text(c.P2) + " " + Text(c.P3);
}

/// Curves with coordinates that are no numbers, or at the limits of the range.
std::vector<CBezier> SpecialCurves() {
    std::vector<double> const values = {0.0,    -0.0,   1.0,   kNaN,    kInf,   -kInf,
                                        1e300,  -1e300, kHuge, -kHuge,  5e-324, -5e-324,
                                        1e-310, 1e-160, 1e160, 1.7e308, 1e16};
    Random random(77);
    auto const any = [&] {
        return values[static_cast<std::size_t>(
            random.Integer(0, static_cast<int>(values.size()) - 1))];
    };
    std::vector<CBezier> curves;
    for (int i = 0; i < 4000; ++i) {
        CBezier c;
        for (Pt* p : {&c.P0, &c.P1, &c.P2, &c.P3}) {
            p->h = any();
            p->v = any();
        }
        curves.push_back(c);
    }
    return curves;
}
bool Finite(Pt const& p) { return std::isfinite(p.h) && std::isfinite(p.v); }
bool Finite(CBezier const& c) {
    return Finite(c.P0) && Finite(c.P1) && Finite(c.P2) && Finite(c.P3);
}

// ------------------------------------------------------------------------------------------------
// Length

TEST(ArcLength, OfAStraightCurveIsTheDistance) {
    EXPECT_NEAR(ArcLength(CBezier({0, 0}, {1, 0}, {2, 0}, {3, 0}), 1e-14), 3.0, 1e-14);
    EXPECT_NEAR(ArcLength(CBezier({1, 1}, {1, 1}, {4, 5}, {4, 5}), 1e-14), 5.0, 2e-14);
    EXPECT_NEAR(ArcLength(CBSpline({1, 1}, {2, 7. / 3}, {4, 5}), 1e-14), 5.0, 2e-14);
}

TEST(ArcLength, CountsBothWaysOfACurveThatDoublesBack) {
    // h = 9t(1 - t): up to 2.25 and back
    EXPECT_NEAR(ArcLength(CBezier({0, 0}, {3, 0}, {3, 0}, {0, 0}), 1e-13), 4.5, 2e-13);
    EXPECT_NEAR(ArcLength(CBSpline({0, 0}, {0, 2}, {0, 0}), 1e-13), 2.0, 2e-13);
}

TEST(ArcLength, OfAParabolaIsRightAtEveryAccuracy) {
    for (double const width : {1.0, 3.0, 300.0}) {
        // asinh(2)/4 + sqrt(5)/2 for the unit parabola
        double const truth = width * (std::asinh(2.0) / 4.0 + std::sqrt(5.0) / 2.0);
        for (int digits = 0; digits <= 15; ++digits) {
            double const accuracy = width * std::pow(10.0, -digits);
            EXPECT_NEAR(ArcLength(Parabola(width), accuracy), truth, accuracy + 1e-15 * width)
                << digits;
            CBSpline const same({0, 0}, {width / 2, 0}, {width, width});
            EXPECT_NEAR(ArcLength(same, accuracy), truth, accuracy + 1e-15 * width) << digits;
        }
    }
}

TEST(ArcLength, OfACuspIsRightAtEveryAccuracy) {
    for (int digits = 0; digits <= 15; ++digits) {
        double const accuracy = std::pow(10.0, -digits);
        EXPECT_NEAR(ArcLength(Cusp(), accuracy), CuspLength(), accuracy + 2e-14) << digits;
    }
}

TEST(ArcLength, OfAnyCurveIsWithinTheAccuracyAndRounding) {
    Random random(1);
    for (int i = 0; i < 3000; ++i) {
        CBezier const curve = AnyCurve(random);
        Wide const truth = TrueLength(curve);
        Wide const rounding = std::ldexp(PolygonLength(curve), -48);
        for (int digits = 0; digits <= 13; ++digits) {
            double const accuracy =
                static_cast<double>(PolygonLength(curve)) * std::pow(10.0, -digits);
            double const length = ArcLength(curve, accuracy);
            ASSERT_LE(Off(length, truth), Widened(accuracy) + rounding) << Text(curve) << digits;
        }
        for (double const finest : {0.0, -1.0, kNaN}) {
            ASSERT_LE(Off(ArcLength(curve, finest), truth), rounding) << Text(curve);
        }
    }
}

TEST(ArcLength, OfAPieceIsThatOfTheRange) {
    Random random(2);
    for (int i = 0; i < 500; ++i) {
        CBezier const curve = AnyCurve(random);
        double const a = random.Uniform(0, 1);
        double const b = random.Uniform(0, 1);
        Wide const truth = a < b ? TrueLength(curve, Widened(a), Widened(b))
                                 : -TrueLength(curve, Widened(b), Widened(a));
        double const accuracy = static_cast<double>(PolygonLength(curve)) * 1e-10;
        ASSERT_LE(Off(ArcLength(curve, a, b, accuracy), truth), 1.001L * Widened(accuracy))
            << Text(curve);
        ASSERT_EQ(ArcLength(curve, a, b, accuracy), -ArcLength(curve, b, a, accuracy));
        ASSERT_EQ(ArcLength(curve, -5, kInf, accuracy), ArcLength(curve, accuracy));
        ASSERT_EQ(ArcLength(curve, a, a, accuracy), 0.0);
    }
    EXPECT_TRUE(std::isnan(ArcLength(Cusp(), kNaN, 1, 0.1)));
    EXPECT_TRUE(std::isnan(ArcLength(Cusp(), 0, kNaN, 0.1)));
}

TEST(ArcLength, OfAQuadraticIsThatOfTheRaisedCubic) {
    Random random(3);
    for (int i = 0; i < 500; ++i) {
        // Multiples of three, so that raising is exact.
        CBSpline const c(Pt(3.0 * random.Integer(-99, 99), 3.0 * random.Integer(-99, 99)),
                         Pt(3.0 * random.Integer(-99, 99), 3.0 * random.Integer(-99, 99)),
                         Pt(3.0 * random.Integer(-99, 99), 3.0 * random.Integer(-99, 99)));
        CBezier const raised(c.P0, (c.P0 + c.P1 * 2.0) / 3.0, (c.P2 + c.P1 * 2.0) / 3.0, c.P2);
        ASSERT_LE(Off(ArcLength(c, 1e-9), TrueLength(raised)), 1e-9L + 1e-12L);
    }
}

/// A curve whose derivative is zero at two parameters, as complex numbers, at a random turn.
CBezier CurveWithZeros(Random& random, Pt const& z0, Pt const& z1) {
    auto const product = [](Pt const& p, Pt const& q) {
        return Pt(p.h * q.h - p.v * q.v, p.h * q.v + p.v * q.h);
    };
    Pt const c = random.Point(1000);
    Pt const a = product(c, product(z0, z1)); // c (t - z0)(t - z1) = a + 2bt + ct²
    Pt const b = product(c, z0 + z1) * -0.5;
    Pt const p0 = random.Point(10);
    Pt const p1 = p0 + a;
    Pt const p2 = p1 + a + b;
    return CBezier(p0, p1, p2, p2 + a + b * 2.0 + c);
}

/// Checks the length for accuracies of a tenth of the control polygon's length down to 10^-13.
void ExpectWithinEveryAccuracy(CBezier const& curve) {
    Wide const truth = TrueLength(curve);
    Wide const size = PolygonLength(curve);
    for (int digits = 1; digits <= 13; ++digits) {
        double const accuracy = static_cast<double>(size) * std::pow(10.0, -digits);
        ASSERT_LE(Off(ArcLength(curve, accuracy), truth), Widened(accuracy) + std::ldexp(size, -48))
            << Text(curve) << digits;
    }
}

// Where the number of nodes changes, pieces are divided, or another method takes over.
TEST(ArcLength, IsWithinTheAccuracyWhereverTheDerivativesZerosAre) {
    Random random(5);
    for (int i = 0; i < 4000; ++i) {
        auto const zero = [&] {
            // Around the parameters from 0 to 1, at distances of 2^-12 to 1 and more.
            double const off = std::ldexp(random.Uniform(0.5, 1.5), -random.Integer(0, 12));
            double const turn = random.Uniform(-4.0, 4.0);
            return Pt(random.Uniform(-0.05, 1.05) + off * std::cos(turn), off * std::sin(turn));
        };
        CBezier const curve = CurveWithZeros(random, zero(), zero());
        ASSERT_NO_FATAL_FAILURE(ExpectWithinEveryAccuracy(curve));
    }
}

// Where a zero is as far away as several times the curve, the zeros are found in two ways: with the
// farther one at 8 to 32 both occur, and the nearer one decides.
TEST(ArcLength, IsWithinTheAccuracyWhereOneZeroIsFarAway) {
    Random random(8);
    for (int i = 0; i < 4000; ++i) {
        double const turn = random.Uniform(-4.0, 4.0);
        double const far = random.Uniform(4.0, 64.0);
        double const off = std::ldexp(random.Uniform(0.5, 1.5), -random.Integer(0, 20));
        CBezier const curve = CurveWithZeros(random, Pt(random.Uniform(-0.05, 1.05), off),
                                             Pt(far * std::cos(turn), far * std::sin(turn)));
        ASSERT_NO_FATAL_FAILURE(ExpectWithinEveryAccuracy(curve));
    }
}

// Nearly double zeros, of which half of the digits are lost.
TEST(ArcLength, IsWithinTheAccuracyWhereZerosAreNearlyOne) {
    Random random(9);
    for (int i = 0; i < 4000; ++i) {
        Pt const zero(random.Uniform(-0.1, 1.1), std::ldexp(1.0, -random.Integer(0, 26)));
        double const apart = std::ldexp(1.0, -random.Integer(10, 50));
        CBezier const curve =
            CurveWithZeros(random, zero, zero + Pt(apart, random.Uniform(-2.0, 2.0) * apart));
        ASSERT_NO_FATAL_FAILURE(ExpectWithinEveryAccuracy(curve));
    }
}

// There the derivative has a zero that no piece has to keep away from; the other one may be
// anywhere.
TEST(ArcLength, IsWithinTheAccuracyWhereTheCurveRestsAtItsEnds) {
    Random random(10);
    for (int i = 0; i < 1000; ++i) {
        double const off = std::ldexp(random.Uniform(0.5, 1.5), -random.Integer(-40, 30));
        double const turn = random.Integer(0, 3) == 0 ? 0.0 : random.Uniform(-4.0, 4.0);
        Pt const other(random.Uniform(-0.05, 1.05) + off * std::cos(turn), off * std::sin(turn));
        CBezier const start = CurveWithZeros(random, Pt(), other);
        CBezier const end(start.P3, start.P2, start.P1, start.P0);
        ASSERT_EQ(start.P0, start.P1);
        ASSERT_NO_FATAL_FAILURE(ExpectWithinEveryAccuracy(start));
        ASSERT_NO_FATAL_FAILURE(ExpectWithinEveryAccuracy(end));
        ASSERT_NO_FATAL_FAILURE(
            ExpectWithinEveryAccuracy(CBezier(start.P0, start.P0, start.P3, start.P3)));
        ASSERT_NO_FATAL_FAILURE(
            ExpectWithinEveryAccuracy(CBezier(start.P0, start.P0, start.P0, start.P3)));

        double const from = random.Uniform(0.0, 1.0);
        double const to = random.Uniform(from, 1.0);
        double const size = static_cast<double>(PolygonLength(start));
        for (double const accuracy : {1e-2 * size, 1e-7 * size, 0.0}) {
            for (CBezier const& curve : {start, end}) {
                ASSERT_LE(Off(ArcLength(curve, from, to, accuracy),
                              TrueLength(curve, Widened(from), Widened(to))),
                          Widened(accuracy) + std::ldexp(PolygonLength(curve), -48))
                    << Text(curve) << accuracy;
            }
            CBSpline const quadratic(start.P0, start.P0, start.P3);
            ASSERT_LE(
                Off(ArcLength(quadratic, accuracy), Length(Widened(start.P3) - Widened(start.P0))),
                Widened(accuracy) + std::ldexp(PolygonLength(start), -48));
        }
    }
}

// Two zeros that are each other's mirror image in a circle around a parameter, one of them maybe
// very near: no estimate may take them for one.
TEST(ArcLength, IsWithinTheAccuracyWhereZerosMirrorEachOther) {
    struct Case {
        CBezier curve;
        double accuracy;
    };
    Case const cases[] = {{CBezier({0, 0}, {-0x1.8a433fedf4612p+10, -0x1.2b595d2f9da5bp+11},
                                   {-0x1.08a86a8ffb7c7p+11, -0x1.91e3ce6f7e38ap+11},
                                   {0x1.aedc0606d868cp+13, 0x1.4722ba3526e82p+14}),
                           2.669953149120029e-05},
                          {CBezier({0, 0}, {-0x1.498ac4a168p-61, 0x1.c0324abf36ab4p-67},
                                   {0x1.038ee3a8524bp-57, 0x1.f1e283c68d007p-61},
                                   {0x1.fd4e478a0148dp-53, 0x1.70294bf4ac1c5p-59}),
                           1.7467949543072804e-21}};
    for (Case const& c : cases) {
        EXPECT_LE(Off(ArcLength(c.curve, c.accuracy), TrueLength(c.curve)),
                  Widened(c.accuracy) + std::ldexp(PolygonLength(c.curve), -48))
            << Text(c.curve);
    }
}

/// Calls `compute` with vectors of four doubles, if the processor has them, and without.
template <class Compute> void ExpectTheSameInBothForms(Compute const& compute) {
    auto const wide = compute();
    trammel_detail::UsePortableForms(true);
    auto const portable = compute();
    trammel_detail::UsePortableForms(false);
    ASSERT_EQ(wide.size(), portable.size());
    for (std::size_t i = 0; i < wide.size(); ++i) {
        ASSERT_TRUE(SameBits(wide[i], portable[i])) << i;
    }
}

TEST(ArcLength, IsTheSameOnEveryProcessor) {
    ExpectTheSameInBothForms([] {
        Random random(6);
        std::vector<double> results;
        for (int i = 0; i < 3000; ++i) {
            CBezier const curve = AnyCurve(random);
            for (double const accuracy : {1.0, 1e-3, 1e-6, 1e-10, 0.0}) {
                results.push_back(ArcLength(curve, accuracy));
            }
            results.push_back(ParameterAtFraction(curve, 0.3, 1e-6));
        }
        return results;
    });
}

TEST(ArcLength, ScalesExactlyByPowersOfTwo) {
    Random random(4);
    for (int i = 0; i < 300; ++i) {
        CBezier const curve = AnyCurve(random);
        double const length = ArcLength(curve, 1e-6);
        for (int const power : {-1000, -500, -101, -3, 7, 99, 400, 1000}) {
            double const scale = std::ldexp(1.0, power);
            ASSERT_EQ(ArcLength(curve * scale, 1e-6 * scale), length * scale)
                << Text(curve) << power;
        }
    }
}

// The coordinate that all points share says nothing of how small the curve is.
TEST(ArcLength, IsRightHoweverSmallTheCurveIsBesideItsDistanceFromTheOrigin) {
    for (double const at : {0.0, 1.0, -0x1p300, kHuge}) {
        for (int const power : {-150, -500, -530, -700, -1000}) {
            double const unit = std::ldexp(1.0, power);
            CBezier const curve(Pt(at, 0), Pt(at, unit), Pt(at, 2 * unit), Pt(at, 3 * unit));
            EXPECT_NEAR(ArcLength(curve, 0.0) / unit, 3.0, 1e-14) << at << ' ' << power;
            EXPECT_NEAR(ArcLength(curve, 0.0, 0.5, 0.0) / unit, 1.5, 1e-14);
            EXPECT_NEAR(ParameterAtLength(curve, unit, 0.0), 1.0 / 3.0, 1e-14);
            CBSpline const quadratic(curve.P0, Pt(at, 1.5 * unit), curve.P3);
            EXPECT_NEAR(ArcLength(quadratic, 0.0) / unit, 3.0, 1e-14);
        }
    }
}

TEST(ArcLength, OfSpecialCurvesEndsAndIsNaNWithoutNumbers) {
    for (CBezier const& curve : SpecialCurves()) {
        for (double const accuracy : {0.0, 1e-12, 1.0, 1e300, kInf, kNaN}) {
            double const length = ArcLength(curve, accuracy);
            ASSERT_EQ(std::isnan(length), !Finite(curve)) << Text(curve);
            ASSERT_FALSE(length < 0.0);
        }
        CBSpline const quadratic(curve.P0, curve.P1, curve.P2);
        bool const finite = Finite(curve.P0) && Finite(curve.P1) && Finite(curve.P2);
        ASSERT_EQ(std::isnan(ArcLength(quadratic, 1e-9)), !finite);
    }
    EXPECT_EQ(ArcLength(CBezier(), 0.0), 0.0);
    EXPECT_EQ(ArcLength(CBezier({7, 7}, {7, 7}, {7, 7}, {7, 7}), 0.0), 0.0);
    EXPECT_EQ(ArcLength(CBezier({-kHuge, 0}, {-kHuge, 0}, {kHuge, 0}, {kHuge, 0}), 0.0), kInf);
    EXPECT_NEAR(ArcLength(CBezier({0, 0}, {1e300, 0}, {2e300, 0}, {3e300, 0}), 0.0) / 3e300, 1.0,
                1e-15);
    EXPECT_EQ(ArcLength(CBezier({0, 0}, {5e-324, 0}, {1e-323, 0}, {1.5e-323, 0}), 0.0), 1.5e-323);
}

TEST(ArcLength, OfAPathIsTheSumOfItsSegments) {
    CPath path;
    path.MoveTo({0, 0}).LineTo({3, 4});
    CBezier const curve({3, 4}, {10, 10}, {20, -10}, {30, 4});
    path.CurveTo(curve.P1, curve.P2, curve.P3).ClosePath();
    path.MoveTo({100, 100}).LineTo({100, 101});
    double const sides = 5.0 + std::hypot(30.0, 4.0) + 1.0;
    for (double const accuracy : {1.0, 1e-6, 1e-12}) {
        EXPECT_NEAR(ArcLength(path, accuracy), static_cast<double>(TrueLength(curve)) + sides,
                    accuracy + 1e-13);
    }
    EXPECT_NEAR(ArcLength(path, 1e-6), path.Length(), 1e-2); // the same segments
    EXPECT_EQ(ArcLength(CPath(), 1.0), 0.0);
    path.LineTo({kInf, 0});
    EXPECT_TRUE(std::isnan(ArcLength(path, 1.0)));
}

TEST(ArcLength, OfACircleDrawnByArcsIsNearTheCircumference) {
    CPath path;
    path.Arc({5, 5}, 10, 0, 2 * pi);
    // Five curves of 72 degrees, each on or outside the circle, by at most 2.7e-4 of the radius.
    double const length = ArcLength(path, 1e-9);
    EXPECT_GT(length, 20 * pi - 1e-9);
    EXPECT_LT(length, 20 * pi * (1 + 2.7e-4));
}

TEST(ArcLength, ReadsDamagedPathsToTheirEnd) {
    CPath path;
    path.MoveTo({0, 0}).LineTo({3, 4});
    path.AddCtl(kPathCurve); // without points
    EXPECT_EQ(ArcLength(path, 1.0), 5.0);
    path.mPts.clear();
    EXPECT_EQ(ArcLength(path, 1.0), 0.0);
}

// ------------------------------------------------------------------------------------------------
// Parameters

TEST(ParameterAtLength, CutsThePieceOfThatLength) {
    Random random(5);
    for (int i = 0; i < 1500; ++i) {
        CBezier const curve = AnyCurve(random);
        Wide const size = PolygonLength(curve);
        Wide const truth = TrueLength(curve);
        double const fraction = random.Uniform(0, 1);
        double const wanted = fraction * static_cast<double>(truth);
        for (int digits = 1; digits <= 13; digits += 3) {
            double const accuracy = static_cast<double>(size) * std::pow(10.0, -digits);
            Wide const bound = Widened(accuracy) + std::ldexp(size, -47);
            double const t = ParameterAtLength(curve, wanted, accuracy);
            ASSERT_TRUE(t >= 0.0 && t <= 1.0);
            ASSERT_LE(Off(wanted, TrueLength(curve, 0, Widened(t))), bound)
                << Text(curve) << digits;
            double const u = ParameterAtFraction(curve, fraction, accuracy);
            ASSERT_LE(Off(wanted, TrueLength(curve, 0, Widened(u))), bound)
                << Text(curve) << digits;
        }
    }
}

TEST(ParameterAtLength, IsLimitedToTheCurve) {
    CBezier const curve({0, 0}, {1, 0}, {2, 0}, {3, 0});
    EXPECT_EQ(ParameterAtLength(curve, 0, 1e-9), 0.0);
    EXPECT_EQ(ParameterAtLength(curve, -1, 1e-9), 0.0);
    EXPECT_EQ(ParameterAtLength(curve, 3.1, 1e-9), 1.0);
    EXPECT_EQ(ParameterAtLength(curve, kInf, 1e-9), 1.0);
    EXPECT_NEAR(ParameterAtLength(curve, 1.5, 1e-12), 0.5, 1e-12);
    EXPECT_EQ(ParameterAtFraction(curve, 0, 1e-9), 0.0);
    EXPECT_EQ(ParameterAtFraction(curve, -kInf, 1e-9), 0.0);
    EXPECT_EQ(ParameterAtFraction(curve, 1, 1e-9), 1.0);
    EXPECT_EQ(ParameterAtFraction(curve, kInf, 1e-9), 1.0);
    EXPECT_NEAR(ParameterAtFraction(curve, 0.25, 1e-12), 0.25, 1e-12);
    EXPECT_TRUE(std::isnan(ParameterAtLength(curve, kNaN, 1e-9)));
    EXPECT_TRUE(std::isnan(ParameterAtFraction(curve, kNaN, 1e-9)));
    EXPECT_EQ(ParameterAtFraction(CBezier(), 0.5, 1e-9), 0.0);
}

TEST(ParameterAtLength, OfSpecialCurvesEnds) {
    for (CBezier const& curve : SpecialCurves()) {
        for (double const accuracy : {0.0, 1.0, kInf, kNaN}) {
            double const t = ParameterAtFraction(curve, 0.3, accuracy);
            ASSERT_EQ(std::isnan(t), !Finite(curve)) << Text(curve);
            ASSERT_TRUE(std::isnan(t) || (t >= 0.0 && t <= 1.0));
            double const u = ParameterAtLength(curve, 1e10, accuracy);
            ASSERT_TRUE(std::isnan(u) || (u >= 0.0 && u <= 1.0));
        }
    }
}

TEST(ParameterAtLength, ScalesExactlyByPowersOfTwo) {
    Random random(6);
    for (int i = 0; i < 200; ++i) {
        CBezier const curve = AnyCurve(random);
        double const t = ParameterAtFraction(curve, 0.3, 1e-6);
        for (int const power : {-900, -101, 7, 99, 900}) {
            double const scale = std::ldexp(1.0, power);
            ASSERT_EQ(ParameterAtFraction(curve * scale, 0.3, 1e-6 * scale), t);
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Nearest point

/// The bound stated for NearestPoint, beside the accuracy.
Wide NearestRounding(CBezier const& c, Pt const& p) {
    Wide greatest = 0;
    for (Pt const& q : {c.P0, c.P1, c.P2, c.P3}) {
        greatest = std::max(greatest, Length(Widened(q) - Widened(p)));
    }
    return std::ldexp(greatest, -44);
}

void ExpectNearest(CBezier const& curve, Pt const& p, double accuracy) {
    CurvePoint const found = NearestPoint(curve, p, accuracy);
    Wide const rounding = NearestRounding(curve, p);
    ASSERT_TRUE(found.t >= 0.0 && found.t <= 1.0);
    ASSERT_TRUE(SameBits(found.point, curve.TPt(found.t)));
    ASSERT_LE(Off(found.distance, DistanceAt(curve, Widened(found.t), p)), rounding);
    ASSERT_LE(Widened(found.distance) - TrueDistance(curve, p), Widened(accuracy) + rounding)
        << Text(curve) << " to " << Text(p) << " within " << accuracy;
}

TEST(NearestPoint, OfALineIsTheFootOfThePerpendicular) {
    CBezier const line({0, 0}, {10, 0}, {20, 0}, {30, 0});
    CurvePoint const found = NearestPoint(line, {7.5, 4}, 1e-12);
    EXPECT_NEAR(found.t, 0.25, 1e-13);
    EXPECT_NEAR(found.point.h, 7.5, 1e-12);
    EXPECT_EQ(found.point.v, 0.0);
    EXPECT_NEAR(found.distance, 4.0, 1e-12);
    EXPECT_EQ(NearestPoint(line, {-3, 4}, 1e-12).t, 0.0);
    EXPECT_NEAR(NearestPoint(line, {-3, 4}, 1e-12).distance, 5.0, 1e-15);
    EXPECT_EQ(NearestPoint(line, {33, -4}, 1e-12).t, 1.0);
    CBSpline const quadratic({0, 0}, {15, 0}, {30, 0});
    EXPECT_NEAR(NearestPoint(quadratic, {7.5, 4}, 1e-12).t, 0.25, 1e-13);
}

TEST(NearestPoint, OfAParabolaSolvesItsCubic) {
    // To (0, c) from (t, t²), c > 1/2: t² = c - 1/2, distance sqrt(c - 1/4).
    for (double const c : {0.6, 0.75, 1.0, 1.25}) {
        CurvePoint const found = NearestPoint(Parabola(1), {0, c}, 1e-13);
        EXPECT_NEAR(found.t, std::sqrt(c - 0.5), 1e-12);
        EXPECT_NEAR(found.distance, std::sqrt(c - 0.25), 1e-13);
    }
    EXPECT_EQ(NearestPoint(Parabola(1), {0, 0.5}, 1e-13).t, 0.0); // the centre of the bend
}

TEST(NearestPoint, IsTheNearestOfTheWholeCurve) {
    Random random(11);
    for (int i = 0; i < 3000; ++i) {
        CBezier const curve = AnyCurve(random);
        Pt p = random.Point(random.Integer(0, 1) == 0 ? 150 : 20);
        switch (random.Integer(0, 5)) {
        case 0: // on the curve, or beside it
            p = curve.TPt(random.Uniform(0, 1)) +
                random.Point(1) * std::ldexp(1.0, -random.Integer(0, 60));
            break;
        case 1: // at an end or a control point
            p = random.Integer(0, 1) == 0 ? curve.P0 : curve.P2;
            break;
        default:
            break;
        }
        for (double const accuracy : {1.0, 1e-3, 1e-6, 1e-9, 0.0}) {
            ExpectNearest(curve, p, accuracy);
        }
    }
}

TEST(NearestPoint, FindsCuspsEndsAndCrossings) {
    Random random(12);
    for (int i = 0; i < 300; ++i) {
        double const off = std::ldexp(random.Uniform(-1, 1), -random.Integer(0, 55));
        ExpectNearest(Cusp(), {off, 0}, 0.0); // the cusp is at (0, 0)
        ExpectNearest(Cusp(), {0, off}, 0.0);
        ExpectNearest(CBezier({0, 0}, {0, 0}, {0, 0}, {5, 7}), {off, 0}, 0.0);
        ExpectNearest(CBezier({0, 0}, {100, 100}, {-100, 100}, {0, off}), {0, off}, 0.0);
        CBezier const loop({0, 0}, {100, 90}, {-60, 90}, {40, 0}); // crosses itself on h = 20
        ExpectNearest(loop, {20, 30 + 30 * off}, 0.0);
        ExpectNearest(loop, {20, 60 * random.Uniform(0, 1)}, 0.0);
    }
}

TEST(NearestPoint, OfTheCentreOfAnArcIsAnyOfItsPoints) {
    Random random(13);
    CBezier const quarter({0, 100}, {55.228474983079, 100}, {100, 55.228474983079}, {100, 0});
    for (int i = 0; i < 200; ++i) {
        Pt const p = random.Point(1) * std::ldexp(1.0, -random.Integer(0, 60));
        for (double const accuracy : {1.0, 1e-3, 1e-6, 1e-9, 0.0}) {
            ExpectNearest(quarter, p, accuracy);
        }
    }
}

TEST(NearestPoint, OfAPointFarAwayIsRightToRounding) {
    Random random(14);
    for (int i = 0; i < 300; ++i) {
        CBezier const curve = AnyCurve(random);
        ExpectNearest(curve, random.Point(1) * std::ldexp(1.0, random.Integer(10, 60)), 1e-9);
        // Far from the origin both.
        Pt const origin = random.Point(1e9);
        CBezier const moved = curve + origin;
        ExpectNearest(moved, origin + random.Point(100), 1e-6);
    }
}

TEST(NearestPoint, IsFoundHoweverSmallTheCurveIsBesideItsDistanceFromTheOrigin) {
    for (double const at : {0.0, 1.0, -0x1p300, kHuge}) {
        for (int const power : {-150, -500, -530, -700, -1000}) {
            double const unit = std::ldexp(1.0, power);
            CBezier const curve(Pt(at, 0), Pt(at, unit), Pt(at, 2 * unit), Pt(at, 3 * unit));
            CurvePoint const found = NearestPoint(curve, Pt(at, 4 * unit), 0.0);
            EXPECT_EQ(found.t, 1.0) << at << ' ' << power;
            EXPECT_EQ(found.distance, unit) << at << ' ' << power;
        }
    }
}

TEST(NearestPoint, OfACurveWithoutExtentIsItsStart) {
    CBezier const point({3, 4}, {3, 4}, {3, 4}, {3, 4});
    CurvePoint const found = NearestPoint(point, {0, 0}, 0.0);
    EXPECT_EQ(found.t, 0.0);
    EXPECT_EQ(found.point, Pt(3, 4));
    EXPECT_EQ(found.distance, 5.0);
    EXPECT_EQ(NearestPoint(point, {3, 4}, 0.0).distance, 0.0);
    EXPECT_EQ(NearestPoint(CBezier(), {0, 0}, 0.0).distance, 0.0);
}

TEST(NearestPoint, ScalesExactlyByPowersOfTwo) {
    Random random(15);
    for (int i = 0; i < 300; ++i) {
        CBezier const curve = AnyCurve(random);
        Pt const p = random.Point(100);
        CurvePoint const found = NearestPoint(curve, p, 1e-6);
        for (int const power : {-900, -101, 7, 99, 900}) {
            double const scale = std::ldexp(1.0, power);
            CurvePoint const scaled = NearestPoint(curve * scale, p * scale, 1e-6 * scale);
            ASSERT_EQ(scaled.t, found.t) << Text(curve) << Text(p) << power;
            ASSERT_EQ(scaled.distance, found.distance * scale);
        }
    }
}

TEST(NearestPoint, OfSpecialCurvesEndsAndIsNaNWithoutNumbers) {
    for (CBezier const& curve : SpecialCurves()) {
        for (Pt const& p : {Pt(0, 0), Pt(1e300, -kHuge), Pt(5e-324, 1), Pt(kNaN, 0), Pt(0, kInf)}) {
            for (double const accuracy : {0.0, 1.0, kInf, kNaN}) {
                CurvePoint const found = NearestPoint(curve, p, accuracy);
                bool const finite = Finite(curve) && Finite(p);
                ASSERT_EQ(std::isnan(found.t), !finite) << Text(curve) << Text(p);
                ASSERT_EQ(std::isnan(found.distance), !finite);
                ASSERT_TRUE(!finite || (found.t >= 0.0 && found.t <= 1.0));
            }
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Bounds

/// Both: contains dense samples of the true curve, and touches it within the stated error.
void ExpectTight(CBezier const& curve) {
    TRect<double> const r = TightBounds(curve);
    TRect<double> const hull = curve.Extents();
    Wide left = Widened(curve.P0.h);
    Wide right = left;
    Wide top = Widened(curve.P0.v);
    Wide bottom = top;
    auto const add = [&](WidePt p) {
        left = std::min(left, p.h);
        right = std::max(right, p.h);
        top = std::min(top, p.v);
        bottom = std::max(bottom, p.v);
    };
    constexpr int kSamples = 300;
    for (int i = 0; i <= kSamples; ++i) {
        add(At(curve, static_cast<Wide>(i) / kSamples));
    }
    // The extrema: zeros of the derivative's coefficients d0, d1, d2 in each coordinate.
    for (Wide WidePt::*coordinate : {&WidePt::h, &WidePt::v}) {
        Wide const d0 = Widened(curve.P1).*coordinate - Widened(curve.P0).*coordinate;
        Wide const d1 = Widened(curve.P2).*coordinate - Widened(curve.P1).*coordinate;
        Wide const d2 = Widened(curve.P3).*coordinate - Widened(curve.P2).*coordinate;
        Wide const b = d1 - d0;
        Wide const c = d0 - 2 * d1 + d2;
        Wide const root = std::sqrt(std::max(b * b - c * d0, Wide{0}));
        Wide const s = b < 0 ? root - b : -root - b;
        for (Wide const t : {s / c, d0 / s}) {
            if (t > 0 && t < 1) {
                add(At(curve, t));
            }
        }
    }
    Wide const ulps = 2 * 0x1p-52L *
                      std::max(std::max(std::abs(left), std::abs(right)),
                               std::max(std::abs(top), std::abs(bottom)));
    Wide const slackH = 0x1p-45L * Widened(hull.right - hull.left) + ulps;
    Wide const slackV = 0x1p-45L * Widened(hull.bottom - hull.top) + ulps;
    // The samples themselves are rounded, in long double.
    Wide const noise =
        0x1p-60L * (std::abs(left) + std::abs(right) + std::abs(top) + std::abs(bottom) +
                    Widened(hull.right - hull.left + hull.bottom - hull.top));
    ASSERT_LE(r.left, left + noise) << Text(curve);
    ASSERT_GE(r.right, right - noise) << Text(curve);
    ASSERT_LE(r.top, top + noise) << Text(curve);
    ASSERT_GE(r.bottom, bottom - noise) << Text(curve);
    ASSERT_LE(Off(r.left, left), slackH) << Text(curve);
    ASSERT_LE(Off(r.right, right), slackH) << Text(curve);
    ASSERT_LE(Off(r.top, top), slackV) << Text(curve);
    ASSERT_LE(Off(r.bottom, bottom), slackV) << Text(curve);
}

TEST(TightBounds, ContainTheCurveAndTouchIt) {
    Random random(21);
    for (int i = 0; i < 5000; ++i) {
        CBezier const curve = AnyCurve(random);
        ExpectTight(curve);
        ExpectTight(curve + random.Point(1e6));
        CBSpline const quadratic(curve.P0, curve.P1, curve.P2);
        TRect<double> const r = TightBounds(quadratic);
        for (int k = 0; k <= 100; ++k) {
            Wide const t = k / 100.0L;
            WidePt const p = Widened(curve.P0) * ((1 - t) * (1 - t)) +
                             Widened(curve.P1) * (2 * t * (1 - t)) + Widened(curve.P2) * (t * t);
            ASSERT_LE(r.left, p.h + 1e-16L);
            ASSERT_GE(r.right, p.h - 1e-16L);
            ASSERT_LE(r.top, p.v + 1e-16L);
            ASSERT_GE(r.bottom, p.v - 1e-16L);
        }
    }
}

// The squares of its differences underflow.
TEST(TightBounds, ContainACoordinateFarSmallerThanTheOther) {
    Random random(22);
    for (int i = 0; i < 20000; ++i) {
        CBezier curve = AnyCurve(random);
        double const small = std::ldexp(1.0, -(i % 1080));
        curve *= i % 2 == 0 ? Pt(small, 1.0) : Pt(1.0, small);
        TRect<double> const r = TightBounds(curve);
        TRect<double> const hull = curve.Extents();
        // As above; long doubles hold numbers smaller than the smallest double.
        Wide const noiseH = 0x1p-50L * Widened(hull.right - hull.left);
        Wide const noiseV = 0x1p-50L * Widened(hull.bottom - hull.top);
        for (int k = 0; k <= 100; ++k) {
            WidePt const p = At(curve, k / 100.0L);
            ASSERT_LE(r.left, p.h + noiseH) << Text(curve);
            ASSERT_GE(r.right, p.h - noiseH) << Text(curve);
            ASSERT_LE(r.top, p.v + noiseV) << Text(curve);
            ASSERT_GE(r.bottom, p.v - noiseV) << Text(curve);
        }
    }
    TRect<double> const thin = TightBounds(CBezier({0, 0}, {1e-300, 1}, {-1e-300, 2}, {0, 3}));
    EXPECT_NEAR(thin.right * 1e300, std::sqrt(3.0) / 6.0, 1e-12);
    EXPECT_EQ(thin.left, -thin.right);
}

TEST(TightBounds, OfKnownCurves) {
    // v = 3·100·t(1 - t): up to 75
    TRect<double> const arch = TightBounds(CBezier({0, 0}, {0, 100}, {100, 100}, {100, 0}));
    EXPECT_EQ(arch.left, 0.0);
    EXPECT_EQ(arch.right, 100.0);
    EXPECT_EQ(arch.top, 0.0);
    EXPECT_NEAR(arch.bottom, 75.0, 3e-12);
    EXPECT_GE(arch.bottom, 75.0);
    TRect<double> const parabola = TightBounds(CBSpline({0, 0}, {5, 10}, {10, 0}));
    EXPECT_NEAR(parabola.bottom, 5.0, 1e-12);
    EXPECT_GE(parabola.bottom, 5.0);
    EXPECT_EQ(parabola.right, 10.0);
    // Monotone in both directions: exactly the ends.
    EXPECT_EQ(TightBounds(CBezier({1, 8}, {2, 7}, {3, 6}, {4, 5})), TRect<double>(1, 5, 4, 8));
    EXPECT_EQ(TightBounds(CBezier()), TRect<double>());
}

TEST(TightBounds, AreNeverBeyondTheControlPoints) {
    for (CBezier const& curve : SpecialCurves()) {
        TRect<double> const r = TightBounds(curve);
        if (!Finite(curve)) {
            ASSERT_TRUE(std::isnan(r.left) && std::isnan(r.top) && std::isnan(r.right) &&
                        std::isnan(r.bottom));
            continue;
        }
        auto const h = std::minmax({curve.P0.h, curve.P1.h, curve.P2.h, curve.P3.h});
        auto const v = std::minmax({curve.P0.v, curve.P1.v, curve.P2.v, curve.P3.v});
        ASSERT_TRUE(r.left >= h.first && r.right <= h.second && r.left <= r.right) << Text(curve);
        ASSERT_TRUE(r.top >= v.first && r.bottom <= v.second && r.top <= r.bottom) << Text(curve);
        for (Pt const& p : {curve.P0, curve.P3}) {
            ASSERT_TRUE(p.h >= r.left && p.h <= r.right && p.v >= r.top && p.v <= r.bottom);
        }
    }
}

TEST(TightBounds, OfAPathAreThoseOfWhatIsDrawn) {
    CPath path;
    EXPECT_EQ(TightBounds(path), TRect<double>());
    path.MoveTo({-50, -50});
    EXPECT_EQ(TightBounds(path), TRect<double>());
    path.MoveTo({0, 0}).LineTo({10, 0}); // at the origin: a point like any other
    EXPECT_EQ(TightBounds(path), TRect<double>(0, 0, 10, 0));
    path.LineTo({10, 5}).ClosePath().MoveTo({500, 500});
    EXPECT_EQ(TightBounds(path), TRect<double>(0, 0, 10, 5));
    path.LineTo({500, 501}).CurveTo({600, 601}, {400, 601}, {500, 501.5});
    TRect<double> const r = TightBounds(path);
    TRect<double> const curve =
        TightBounds(CBezier({500, 501}, {600, 601}, {400, 601}, {500, 501.5}));
    EXPECT_EQ(r, TRect<double>(0, 0, curve.right, curve.bottom));
    EXPECT_LT(r.bottom, path.Bounds().bottom);
    path.LineTo({kNaN, 0});
    EXPECT_TRUE(std::isnan(TightBounds(path).left));
}

// ------------------------------------------------------------------------------------------------
// Flatten

std::vector<Pt> Points(TPolygon<double> const& polygon) {
    std::vector<Pt> points;
    for (long i = 0; i <= polygon.LastIndex(); ++i) {
        points.push_back(polygon.GetPt(i));
    }
    return points;
}

/// The Hausdorff distance of the curve and the polyline, by dense samples of both.
Wide HausdorffDistance(CBezier const& curve, std::vector<Pt> const& points) {
    std::size_t const samples = std::max<std::size_t>(1500, 8 * points.size());
    std::vector<WidePt> onCurve;
    for (std::size_t i = 0; i <= samples; ++i) {
        onCurve.push_back(At(curve, static_cast<Wide>(i) / static_cast<Wide>(samples)));
    }
    Wide worst = 0;
    for (WidePt const& p : onCurve) {
        Wide least = Length(p - Widened(points.front()));
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            least = std::min(least, SegmentDistance(p, Widened(points[i]), Widened(points[i + 1])));
        }
        worst = std::max(worst, least);
    }
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        for (int k = 0; k < 4; ++k) {
            WidePt const a = Widened(points[i]);
            WidePt const p = a + (Widened(points[i + 1]) - a) * (k / 4.0L);
            Wide least = Widened(kInf);
            for (std::size_t j = 0; j + 1 < onCurve.size(); ++j) {
                least = std::min(least, SegmentDistance(p, onCurve[j], onCurve[j + 1]));
            }
            worst = std::max(worst, least);
        }
    }
    return worst;
}

/// The fewest points, by the longest chord that keeps the tolerance, one after another.
std::size_t FewestPoints(CBezier const& curve, double tolerance) {
    auto const keeps = [&](Wide a, Wide b) {
        for (int i = 1; i < 40; ++i) {
            if (SegmentDistance(At(curve, a + (b - a) * i / 40), At(curve, a), At(curve, b)) >
                Widened(tolerance)) {
                return false;
            }
        }
        return true;
    };
    std::size_t count = 1;
    for (Wide t = 0; t < 1; ++count) {
        if (keeps(t, 1)) {
            return count + 1;
        }
        Wide lo = t;
        Wide hi = 1;
        // The first failure from here on, roughly, then exactly.
        for (Wide step = 1e-3L; t + step < 1; step *= 1.3L) {
            if (!keeps(t, t + step)) {
                hi = t + step;
                break;
            }
            lo = t + step;
        }
        for (int i = 0; i < 30; ++i) {
            (keeps(t, (lo + hi) / 2) ? lo : hi) = (lo + hi) / 2;
        }
        t = lo;
    }
    return count;
}

TEST(FlattenWithin, KeepsTheDistanceBothWays) {
    Random random(31);
    for (int i = 0; i < 200; ++i) {
        CBezier const curve = AnyCurve(random);
        for (double const tolerance : {30.0, 3.0, 0.3, 0.03}) {
            TPolygon<double> polygon;
            double const kept = FlattenWithin(curve, tolerance, polygon);
            ASSERT_EQ(kept, tolerance);
            std::vector<Pt> const points = Points(polygon);
            ASSERT_TRUE(points.front() == curve.P0 && points.back() == curve.P3);
            // The samples are not so dense that they would find it all exactly.
            ASSERT_LE(HausdorffDistance(curve, points), 1.0001 * tolerance + 1e-5)
                << Text(curve) << " at " << tolerance;
        }
    }
}

TEST(FlattenWithin, KeepsFineTolerancesOnEveryChord) {
    Random random(32);
    for (int i = 0; i < 60; ++i) {
        CBezier const curve = AnyCurve(random);
        for (double const tolerance : {1e-3, 1e-5}) {
            TPolygon<double> polygon;
            ASSERT_EQ(FlattenWithin(curve, tolerance, polygon), tolerance);
            std::vector<Pt> const points = Points(polygon);
            // Both run alike, so the chord that is near is among the next ones.
            Wide const limit = Widened(tolerance) * 1.0000001L + 1e-12L;
            std::size_t const samples = 20 * points.size();
            std::size_t chord = 0;
            for (std::size_t k = 0; k <= samples; ++k) {
                WidePt const p = At(curve, static_cast<Wide>(k) / static_cast<Wide>(samples));
                Wide least = Widened(kInf);
                std::size_t const begin = chord;
                for (std::size_t j = begin; j < begin + 30 && j + 1 < points.size(); ++j) {
                    Wide const distance =
                        SegmentDistance(p, Widened(points[j]), Widened(points[j + 1]));
                    if (distance < least) {
                        least = distance;
                        chord = j;
                    }
                    if (distance <= limit) {
                        break;
                    }
                }
                ASSERT_LE(least, limit) << Text(curve) << " at " << tolerance << ", " << k;
            }
        }
    }
}

TEST(FlattenWithin, TakesHardlyMoreThanTheFewestPoints) {
    Random random(33);
    std::size_t ours = 0;
    std::size_t fewest = 0;
    for (int i = 0; i < 150; ++i) {
        CBezier const curve(random.Point(100), random.Point(100), random.Point(100),
                            random.Point(100));
        for (double const tolerance : {1.0, 0.1, 0.01}) {
            TPolygon<double> polygon;
            FlattenWithin(curve, tolerance, polygon);
            auto const count = static_cast<std::size_t>(polygon.LastIndex() + 1);
            std::size_t const least = FewestPoints(curve, tolerance);
            EXPECT_LE(static_cast<double>(count), 1.25 * static_cast<double>(least) + 4)
                << Text(curve) << " at " << tolerance;
            ours += count;
            fewest += least;
        }
    }
    std::printf("%zu points, fewest %zu\n", ours, fewest);
    EXPECT_LE(static_cast<double>(ours), 1.1 * static_cast<double>(fewest));
}

/// Checks the flattening's ends and both distances; returns how many points there are.
std::size_t ExpectKept(CBezier const& curve, double tolerance) {
    TPolygon<double> polygon;
    EXPECT_EQ(FlattenWithin(curve, tolerance, polygon), tolerance);
    std::vector<Pt> const points = Points(polygon);
    EXPECT_TRUE(points.front() == curve.P0 && points.back() == curve.P3);
    Wide const size = PolygonLength(curve);
    EXPECT_LE(HausdorffDistance(curve, points), 1.0001L * Widened(tolerance) + 1e-7L * size)
        << Text(curve) << " at " << tolerance;
    return points.size();
}

/// A quadratic curve, raised: any, nearly straight, doubling back on itself sharply or exactly.
CBezier AnyRaised(Random& random) {
    CBSpline c(random.Point(100), random.Point(100), random.Point(100));
    switch (random.Integer(0, 4)) {
    case 0: // along a line, or nearly
        c.P1 = c.P0 + (c.P2 - c.P0) * random.Uniform(-1, 2);
        break;
    case 1: // beyond an end: a turn back, as sharp as the disturbance is small
        c.P1 = c.P0 + (c.P2 - c.P0) * random.Uniform(1.2, 3) +
               random.Point(std::ldexp(1.0, -random.Integer(0, 40)));
        break;
    case 2: // out and back
        c.P2 = c.P0;
        break;
    default:
        break;
    }
    return trammel_detail::Raised(c);
}

// Curves are divided into a few chords in another way than into many, and some of both where the
// one does not succeed: each curve at tolerances just above and below those at which the number of
// points changes.
TEST(FlattenWithin, KeepsTheDistanceWhereTheNumberOfPointsChanges) {
    Random random(37);
    std::array<int, 14> seen = {};
    for (int i = 0; i < 60; ++i) {
        CBezier curve = i % 3 == 0 ? AnyCurve(random) : AnyRaised(random);
        if (i % 3 == 2) { // a third difference that begins to matter
            curve.P1 += random.Point(std::ldexp(1.0, -random.Integer(0, 50)));
        }
        auto const count = [&](double tolerance) {
            TPolygon<double> polygon;
            FlattenWithin(curve, tolerance, polygon);
            return static_cast<std::size_t>(polygon.LastIndex() + 1);
        };
        for (std::size_t wanted = 2; wanted <= 12; ++wanted) {
            double fine = 1e-3;
            double coarse = 300.0;
            if (count(fine) <= wanted) {
                continue;
            }
            for (int step = 0; step < 60; ++step) {
                double const middle = std::sqrt(fine * coarse);
                (count(middle) > wanted ? fine : coarse) = middle;
            }
            ++seen[std::min<std::size_t>(ExpectKept(curve, coarse), 13)];
            ++seen[std::min<std::size_t>(ExpectKept(curve, fine), 13)];
        }
    }
    for (std::size_t points = 2; points < 13; ++points) {
        EXPECT_GT(seen[points], 20) << points;
    }
}

// A second difference of 400/3 tolerances: up to there a few chords are tried.
TEST(FlattenWithin, KeepsTheDistanceAtTheGreatestBendOfAFewChords) {
    for (double const width : {1.0, 40.0, 200.0, 1000.0, 1e5}) {
        for (double const third : {0.0, 1e-9, -1e-9, 3.0, -200.0}) {
            // Second differences of 400/3 and of that and the third difference.
            double const bend = 400.0 / 3.0;
            CBezier const curve({0, 0}, {width / 3, -bend}, {2 * width / 3, -bend}, {width, third});
            double tolerance = 1.0;
            for (int ulps = -2; ulps <= 2; ++ulps) {
                tolerance = 1.0 + ulps * 0x1p-52;
                ExpectKept(curve, tolerance);
            }
            ExpectKept(curve, 0.999);
            ExpectKept(curve, 1.001);
        }
    }
}

TEST(FlattenWithin, TakesTheChordThatKeepsTheTolerance) {
    // v = 12t(1 - t), so 3 above the chord.
    CBezier const curve({0, 0}, {10, 4}, {20, 4}, {30, 0});
    for (Pt const& place : {Pt(0, 0), Pt(7, -3)}) {
        CBezier const placed(curve.P0 + place, curve.P1 + place, curve.P2 + place,
                             curve.P3 + place);
        EXPECT_EQ(ExpectKept(placed, 3.0000001), 2U);
        EXPECT_EQ(ExpectKept(placed, 2.9999999), 3U);
    }
    // The ends are no farther apart than the tolerance, but the curve leaves them.
    EXPECT_GE(ExpectKept(CBezier({0, 0}, {4, 1}, {-3, 1}, {1, 0}), 1.0), 4U);
    EXPECT_GE(ExpectKept(CBezier({0, 0}, {9, 0.1}, {-8, 0.1}, {1, 0}), 1.0), 4U);
}

TEST(FlattenWithin, TakesHardlyMoreThanTheFewestPointsOfDrawnCurves) {
    Random random(38);
    std::size_t ours = 0;
    std::size_t fewest = 0;
    for (int i = 0; i < 300; ++i) {
        // A turn by up to a right angle, one arm up to three times as long as the other.
        double const turn = random.Uniform(0.3, 1.6);
        double const arm = random.Uniform(1, 3);
        Pt const first(random.Uniform(2, 30), 0);
        Pt const second = Pt(std::cos(turn), std::sin(turn)) * first.h * arm;
        CBezier curve({0, 0}, first * 0.6, first + second * 0.4, first + second);
        if (i % 2 == 0) { // a quadratic one
            curve.P1 = first * (2.0 / 3.0);
            curve.P2 = first + second * (1.0 / 3.0);
        }
        for (double const tolerance : {0.25, 0.1}) {
            std::size_t const count = ExpectKept(curve, tolerance);
            std::size_t const least = FewestPoints(curve, tolerance);
            EXPECT_LE(count, least + 1) << Text(curve) << " at " << tolerance;
            ours += count;
            fewest += least;
        }
    }
    std::printf("%zu points, fewest %zu\n", ours, fewest);
    EXPECT_LE(static_cast<double>(ours), 1.05 * static_cast<double>(fewest));
}

TEST(FlattenWithin, MakesStraightCurvesTheirEndsAndTurns) {
    TPolygon<double> line;
    FlattenWithin(CBezier({0, 0}, {1, 1}, {5, 5}, {9, 9}), 1e-6, line);
    EXPECT_EQ(Text(Points(line)), "(0, 0) (9, 9)");
    TPolygon<double> back; // h = 9t(1 - t), up to 2.25
    FlattenWithin(CBezier({0, 0}, {3, 0}, {3, 0}, {0, 0}), 1e-6, back);
    ASSERT_EQ(back.LastIndex(), 2);
    EXPECT_NEAR(back.GetPt(1).h, 2.25, 1e-6);
    TPolygon<double> twice; // two turns
    FlattenWithin(CBezier({0, 0}, {30, 30}, {-20, -20}, {10, 10}), 1e-6, twice);
    EXPECT_EQ(twice.LastIndex(), 3);
    TPolygon<double> point;
    FlattenWithin(CBezier({1, 2}, {1, 2}, {1, 2}, {1, 2}), 1e-6, point);
    EXPECT_EQ(Text(Points(point)), "(1, 2)");
}

TEST(FlattenWithin, DeliversWhatItAppends) {
    Random random(34);
    for (int i = 0; i < 200; ++i) {
        CBezier const curve = AnyCurve(random);
        double const tolerance = i % 2 == 0 ? 0.01 : 2.0; // many chords or few
        TPolygon<double> polygon;
        polygon.Append({-1, -1}, true);
        double const kept = FlattenWithin(curve, tolerance, polygon);
        std::vector<Pt> points = {Pt(-1, -1)};
        auto const add = [](Pt const& p, void* data) {
            auto& list = *static_cast<std::vector<Pt>*>(data);
            if (list.back() != p) {
                list.push_back(p);
            }
        };
        EXPECT_EQ(FlattenWithin(curve, tolerance, add, &points), kept);
        ASSERT_EQ(Text(Points(polygon)), Text(points));
    }
    TPolygon<double> a;
    TPolygon<double> b;
    FlattenWithin(CBSpline({0, 0}, {30, 60}, {60, 0}), 0.01, a);
    FlattenWithin(CBezier({0, 0}, {20, 40}, {40, 40}, {60, 0}), 0.01, b);
    EXPECT_EQ(a.LastIndex(), b.LastIndex());
}

TEST(FlattenWithin, IsTheSameOnEveryProcessor) {
    ExpectTheSameInBothForms([] {
        Random random(36);
        std::vector<double> results;
        for (int i = 0; i < 1000; ++i) {
            CBezier const curve = AnyCurve(random);
            for (double const tolerance : {10.0, 0.1, 1e-3, 1e-5}) {
                TPolygon<double> polygon;
                results.push_back(FlattenWithin(curve, tolerance, polygon));
                for (Pt const& p : Points(polygon)) {
                    results.push_back(p.h);
                    results.push_back(p.v);
                }
            }
        }
        return results;
    });
}

// Points of a curve far from the origin coincide by rounding.
TEST(FlattenWithin, LeavesOutPointsEqualToTheirPredecessor) {
    TPolygon<double> polygon;
    double const far = 0x1p52;
    FlattenWithin(CBezier({far, far}, {far + 1, far + 5}, {far + 4, far + 6}, {far + 8, far}), 1e-6,
                  polygon);
    ASSERT_GT(polygon.LastIndex(), 5);
    ASSERT_LT(polygon.LastIndex(), 40);
    for (long i = 1; i <= polygon.LastIndex(); ++i) {
        ASSERT_NE(polygon.GetPt(i), polygon.GetPt(i - 1)) << i;
    }
}

TEST(FlattenWithin, ScalesExactlyByPowersOfTwo) {
    Random random(35);
    for (int i = 0; i < 200; ++i) {
        CBezier const curve = AnyCurve(random);
        double const tolerance = i % 2 == 0 ? 0.01 : 2.0; // many chords or few
        TPolygon<double> plain;
        FlattenWithin(curve, tolerance, plain);
        for (int const power : {-900, -101, 7, 99, 900}) {
            double const scale = std::ldexp(1.0, power);
            TPolygon<double> scaled;
            ASSERT_EQ(FlattenWithin(curve * scale, tolerance * scale, scaled), tolerance * scale);
            ASSERT_EQ(scaled.LastIndex(), plain.LastIndex()) << power;
            for (long k = 0; k <= plain.LastIndex(); ++k) {
                ASSERT_EQ(scaled.GetPt(k), plain.GetPt(k) * scale);
            }
        }
    }
}

// The coordinate that all points share says nothing of how small the curve is: its turns are found.
TEST(FlattenWithin, KeepsTheTurnsOfCurvesFarSmallerThanACommonCoordinate) {
    for (double const at : {0.0, 1.0, -0x1p300, kHuge}) {
        for (int const power : {-500, -700, -1000}) {
            double const unit = std::ldexp(1.0, power);
            CBezier const curve(Pt(at, 0), Pt(at, 3 * unit), Pt(at, 3 * unit), Pt(at, 0));
            std::vector<Pt> points;
            double const kept = FlattenWithin(
                curve, 1e-6 * unit,
                [](Pt const& p, void* data) { static_cast<std::vector<Pt>*>(data)->push_back(p); },
                &points);
            EXPECT_EQ(kept, 1e-6 * unit);
            double farthest = 0.0;
            for (Pt const& p : points) {
                EXPECT_EQ(p.h, at);
                farthest = std::max(farthest, p.v);
            }
            EXPECT_NEAR(farthest / unit, 2.25, 1e-6) << at << ' ' << power;
            TPolygon<double> polygon;
            EXPECT_EQ(FlattenWithin(curve, 1e-6 * unit, polygon), kept);
            EXPECT_EQ(Text(Points(polygon)), Text(points));
        }
    }
}

TEST(FlattenWithin, MakesNoMorePointsThanTheLimit) {
    for (double const size : {1e-300, 1.0, 1e300}) {
        for (double const tolerance : {0.0, 1e-30 * size, 1e-15 * size, -1.0, kNaN}) {
            TPolygon<double> polygon;
            CBezier const curve = CBezier({0, 0}, {0, 1}, {1, 1}, {1, 0.3}) * size;
            double const kept = FlattenWithin(curve, tolerance, polygon);
            EXPECT_LE(polygon.LastIndex() + 1, trammel::kMostFlatPoints);
            EXPECT_GT(polygon.LastIndex() + 1, trammel::kMostFlatPoints * 9 / 10);
            EXPECT_GT(kept, 1e-12 * size);
            EXPECT_LT(kept, 1e-9 * size); // what so many points achieve
        }
    }
}

TEST(FlattenWithin, OfSpecialCurvesEndsAndIsNaNWithoutNumbers) {
    for (CBezier const& curve : SpecialCurves()) {
        for (double const tolerance : {1e-3, 1e290, kInf}) {
            long count = 0;
            double const kept = FlattenWithin(
                curve, tolerance, [](Pt const&, void* n) { ++*static_cast<long*>(n); }, &count);
            ASSERT_EQ(std::isnan(kept), !Finite(curve)) << Text(curve);
            ASSERT_GE(count, 2);
            ASSERT_LE(count, Finite(curve) ? trammel::kMostFlatPoints : 2);
            if (count > 100) {
                break; // the others take their time, too
            }
        }
    }
}

TEST(FlattenWithin, MakesLinesOfAPath) {
    CPath path;
    path.MoveTo({0, 0}).LineTo({10, 0}).CurveTo({20, 0}, {20, 10}, {10, 10}).ClosePath();
    path.CurveTo({0, 30}, {10, 30}, {10, 20}); // without a move: from (10, 10)
    CPath lines;
    lines.MoveTo({-5, -5}).LineTo({-5, -6});
    EXPECT_EQ(FlattenWithin(path, 0.5, lines), 0.5);
    TPolygon<double> first;
    TPolygon<double> second;
    FlattenWithin(CBezier({10, 0}, {20, 0}, {20, 10}, {10, 10}), 0.5, first);
    FlattenWithin(CBezier({10, 10}, {0, 30}, {10, 30}, {10, 20}), 0.5, second);
    std::string points =
        "(-5, -5) (-5, -6) (0, 0) " + Text(Points(first)) + " " + Text(Points(second));
    EXPECT_EQ(Text(lines.mPts), points);
    EXPECT_FALSE(lines.TestContents(CPath::kContainsCurves));
    EXPECT_EQ(std::count(lines.mCtls.begin(), lines.mCtls.end(), char{kPathMove}), 3);
    EXPECT_EQ(std::count(lines.mCtls.begin(), lines.mCtls.end(), char{kPathClose}), 1);
    EXPECT_EQ(lines.Bounds(),
              TRect<double>(-5, -6, TightBounds(lines).right, TightBounds(lines).bottom));

    CPath itself = path;
    FlattenWithin(itself, 0.5, itself);
    EXPECT_EQ(itself.mPts.size(), path.mPts.size() + lines.mPts.size() - 2);
    CPath nothing;
    EXPECT_EQ(FlattenWithin(CPath(), 0.5, nothing), 0.0);
    EXPECT_EQ(nothing.size(), 0U);
    path.CurveTo({0, kNaN}, {10, 30}, {10, 20.5});
    EXPECT_TRUE(std::isnan(FlattenWithin(path, 0.5, nothing)));
}

} // namespace
