// SPDX-License-Identifier: MIT

// ArcLength, and the parameters at a length or a fraction of it, are within their accuracy.

#include "AccurateCurve.h"

#include "CBSpline.h"
#include "CBezier.h"
#include "CPath.h"
#include "CurveTruth.h"
#include "Finite.h"
#include "TPoint.h"
#include "TestSupport.h"
#include "UTrigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

using trammel::ArcLength;
using trammel::ParameterAtFraction;
using trammel::ParameterAtLength;
using trammel_test::AnyCurve;
using trammel_test::Cusp;
using trammel_test::CuspLength;
using trammel_test::ExpectTheSameInBothForms;
using trammel_test::IsFinite;
using trammel_test::kHuge;
using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Length;
using trammel_test::Off;
using trammel_test::Parabola;
using trammel_test::PolygonLength;
using trammel_test::Random;
using trammel_test::Rounds;
using trammel_test::SpecialCurves;
using trammel_test::Text;
using trammel_test::TrueLength;
using trammel_test::Wide;
using trammel_test::Widened;

typedef TPoint<double> Pt;

// ---------------------------------------------------------------------------------------------
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

// There the number of nodes changes, or pieces are divided, or another method takes over.
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

// There are two ways to find the zeros when one is several times as far away as the curve is long.
// With the farther one at 8 to 32 both ways occur, and the nearer zero decides.
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

// Half of the digits of a nearly double zero are lost.
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

// At such an end the derivative has a zero that no piece has to keep away from. The other zero may
// be anywhere.
TEST(ArcLength, IsWithinTheAccuracyWhereTheCurveRestsAtItsEnds) {
    Random random(10);
    for (int i = 0; i < Rounds(1000); ++i) {
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

// The two zeros are each other's mirror image in a circle around a parameter, and one of them may
// be very near. No estimate may take them for one.
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
            ASSERT_EQ(std::isnan(length), !IsFinite(curve)) << Text(curve);
            ASSERT_FALSE(length < 0.0);
        }
        CBSpline const quadratic(curve.P0, curve.P1, curve.P2);
        bool const finite = IsFinite(curve.P0) && IsFinite(curve.P1) && IsFinite(curve.P2);
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
    // Five curves of 72 degrees, each on or outside the circle, by at most 7.2e-5 of the radius.
    double const length = ArcLength(path, 1e-9);
    EXPECT_GT(length, 20 * pi - 1e-9);
    EXPECT_LT(length, 20 * pi * (1 + 7.2e-5));
}

TEST(ArcLength, ReadsDamagedPathsToTheirEnd) {
    CPath path;
    path.MoveTo({0, 0}).LineTo({3, 4});
    path.AddCtl(kPathCurve); // without points
    EXPECT_EQ(ArcLength(path, 1.0), 5.0);
    path.mPts.clear();
    EXPECT_EQ(ArcLength(path, 1.0), 0.0);
}

// ---------------------------------------------------------------------------------------------
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
            ASSERT_EQ(std::isnan(t), !IsFinite(curve)) << Text(curve);
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

} // namespace
