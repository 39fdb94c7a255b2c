// SPDX-License-Identifier: MIT

#include "UTrigonometry.h"

#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;
using trammel_test::SameBits;

namespace {

struct Pair {
    double sine;
    double cosine;
};

Pair SinCosOf(double angle) {
    Pair out{7.0, 7.0};
    SinCos(angle, out.sine, out.cosine);
    return out;
}

TEST(UTrigonometry, PiIsTheNearestDouble) {
    std::uint64_t bits = 0;
    double const value = pi;
    std::memcpy(&bits, &value, sizeof bits);
    EXPECT_EQ(bits, 0x400921FB54442D18U);
}

TEST(SinCos, IsExactAtTheFourQuadrantAngles) {
    for (double const zero : {0.0, -0.0}) {
        EXPECT_TRUE(SameBits(SinCosOf(zero).sine, 0.0));
        EXPECT_EQ(SinCosOf(zero).cosine, 1.0);
    }
    EXPECT_TRUE(SameBits(SinCosOf(pi).sine, 0.0));
    EXPECT_EQ(SinCosOf(pi).cosine, -1.0);
    EXPECT_EQ(SinCosOf(pi / 2.0).sine, 1.0);
    EXPECT_TRUE(SameBits(SinCosOf(pi / 2.0).cosine, 0.0));
    EXPECT_EQ(SinCosOf(-pi / 2.0).sine, -1.0);
    EXPECT_TRUE(SameBits(SinCosOf(-pi / 2.0).cosine, 0.0));
}

TEST(SinCos, TreatsMinusPiLikeAnyOtherAngle) {
    Pair const got = SinCosOf(-pi);
    EXPECT_EQ(got.sine, std::sin(-pi));
    EXPECT_EQ(got.cosine, std::cos(-pi));
    EXPECT_NE(got.sine, 0.0);
    EXPECT_LT(std::abs(got.sine), 1.3e-16);
}

TEST(SinCos, IsTheLibrarysSineAndCosineEverywhereElse) {
    double const half = pi / 2.0;
    for (double const angle :
         {3.0 * half, -3.0 * half, 2.0 * pi, -2.0 * pi, std::nextafter(pi, 4.0),
          std::nextafter(pi, 0.0), std::nextafter(half, 4.0), std::nextafter(half, 0.0),
          std::nextafter(-half, 0.0), 5e-324, -5e-324, 1.0, -1.0, 1e22, -1e308}) {
        EXPECT_EQ(SinCosOf(angle).sine, std::sin(angle)) << angle;
        EXPECT_EQ(SinCosOf(angle).cosine, std::cos(angle)) << angle;
    }
    EXPECT_NE(SinCosOf(3.0 * half).cosine, 0.0);
    Random random(101);
    for (int i = 0; i < 1000; ++i) {
        double const angle = random.Uniform(-10.0, 10.0);
        ASSERT_EQ(SinCosOf(angle).sine, std::sin(angle)) << angle;
        ASSERT_EQ(SinCosOf(angle).cosine, std::cos(angle)) << angle;
    }
}

TEST(SinCos, GivesNaNForAnglesThatAreNotFinite) {
    for (double const angle : {kNaN, kInf, -kInf}) {
        EXPECT_TRUE(std::isnan(SinCosOf(angle).sine));
        EXPECT_TRUE(std::isnan(SinCosOf(angle).cosine));
    }
}

TEST(SinCos, MayWriteOverItsAngle) {
    double angle = -pi / 2.0;
    double cosine = 7.0;
    SinCos(angle, angle, cosine);
    EXPECT_EQ(angle, -1.0);
    EXPECT_EQ(cosine, 0.0);
    angle = 0.75;
    double sine = 7.0;
    SinCos(angle, sine, angle);
    EXPECT_EQ(sine, std::sin(0.75));
    EXPECT_EQ(angle, std::cos(0.75));
}

TEST(Angles, ConvertTheKnownOnesExactly) {
    EXPECT_EQ(DegToRad(180.0), pi);
    EXPECT_EQ(DegToRad(-90.0), -pi / 2.0);
    EXPECT_EQ(DegToRad(360.0), 2.0 * pi);
    EXPECT_EQ(RadToDeg(pi), 180.0);
    EXPECT_EQ(RadToDeg(-pi / 2.0), -90.0);
    EXPECT_TRUE(SameBits(DegToRad(-0.0), -0.0));
    EXPECT_TRUE(SameBits(RadToDeg(-0.0), -0.0));
}

TEST(Angles, MultiplyFirstAndDivideThen) {
    int otherFormsDiffer = 0;
    Random random(102);
    for (int i = 0; i < 1000; ++i) {
        double const x = random.Uniform(-1000.0, 1000.0);
        double const radians = x * pi / 180.0;
        double const degrees = x * 180.0 / pi;
        ASSERT_EQ(DegToRad(x), radians) << x;
        ASSERT_EQ(RadToDeg(x), degrees) << x;
        otherFormsDiffer += radians != x * (pi / 180.0) && degrees != x * (180.0 / pi);
    }
    EXPECT_GT(otherFormsDiffer, 0); // else the input could not tell the forms apart
    // The product overflows before the quotient would bring it back.
    EXPECT_EQ(DegToRad(1e308), kInf);
    EXPECT_EQ(DegToRad(-1e308), -kInf);
    EXPECT_EQ(RadToDeg(1e306), kInf);
}

TEST(Angles, PassNaNAndInfinityOn) {
    EXPECT_TRUE(std::isnan(DegToRad(kNaN)));
    EXPECT_TRUE(std::isnan(RadToDeg(kNaN)));
    EXPECT_EQ(DegToRad(-kInf), -kInf);
    EXPECT_EQ(RadToDeg(kInf), kInf);
}

TEST(AbsoluteValue, IsThatOfDoubles) {
    EXPECT_EQ(std::abs(-2.75), 2.75);
    EXPECT_TRUE(SameBits(std::abs(-0.0), 0.0));
    EXPECT_EQ(std::abs(-kInf), kInf);
    EXPECT_TRUE(std::isnan(std::abs(kNaN)));
}

} // namespace
