// SPDX-License-Identifier: MIT

#include "URotation.h"

#include "TestSupport.h"
#include "plain/Comparing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace {

using trammel_test::kInf;
using trammel_test::kNaN;

typedef TPoint<double> Pt;

Pt Turned(Pt p) {
    Transform(p);
    return p;
}

Pt TurnedBack(Pt p) {
    UnTransform(p);
    return p;
}

std::vector<Pt> const kPoints = {{1, 0},          {0, 1},      {-3.25, 7.5}, {1e300, -1e300},
                                 {5e-324, 1e-10}, {-0.0, 0.0}, {0, 0},       {123456.789, -1}};

/// The functions' answers before any angle is set. They are asked for before main, because no test
/// can be sure to be the first.
struct BeforeAnyAngle {
    std::vector<Pt> turned;
    std::vector<Pt> turnedBack;
    BeforeAnyAngle() {
        for (Pt const& p : kPoints) {
            turned.push_back(Turned(p));
            turnedBack.push_back(TurnedBack(p));
        }
    }
};

BeforeAnyAngle const kBefore;

TEST(URotation, BeforeAnAngleIsSetEveryPointMapsToTheOrigin) {
    ASSERT_EQ(kBefore.turned.size(), kPoints.size());
    for (std::size_t i = 0; i < kPoints.size(); ++i) {
        EXPECT_EQ(kBefore.turned[i], Pt(0, 0)) << kPoints[i].NSString();
        EXPECT_EQ(kBefore.turnedBack[i], Pt(0, 0)) << kPoints[i].NSString();
    }
}

TEST(URotation, AQuarterTurnLeadsFromRightToDownWithAResidue) {
    SetRotate(std::acos(-1.0) / 2.0);
    Pt const p = Turned(Pt(1, 0));
    EXPECT_NEAR(p.h, 0.0, 1e-15);
    EXPECT_EQ(p.v, 1.0);
    EXPECT_NE(p.h, 0.0) << "the cosine is the C library's, not an exact 0";
    EXPECT_EQ(p.h, 6.123233995736766e-17);
    EXPECT_EQ(Turned(Pt(0, 1)), Pt(-1.0, 6.123233995736766e-17));
}

TEST(URotation, AHalfTurnLeavesAResidueToo) {
    SetRotate(std::acos(-1.0));
    EXPECT_EQ(Turned(Pt(1, 0)), Pt(-1.0, 1.2246467991473532e-16));
}

TEST(URotation, TheTablesHoldTheCLibrarysSineAndCosine) {
    trammel_test::Random random(1);
    for (int i = 0; i < 4000; ++i) {
        double const angle =
            i % 2 == 0 ? random.Uniform(-7.0, 7.0) : random.Uniform(-1e6, 1e6) * (i % 97);
        Pt const p = random.Point(1000.0);
        // Not folded at compile time, and not seen together by the compiler.
        double volatile opaque = angle;
        double const c = std::cos(opaque);
        double const s = std::sin(opaque);
        SetRotate(angle);
        ASSERT_SAME(Turned(p), Pt(p.h * c + p.v * -s, p.h * s + p.v * c)) << angle;
        SetUnRotate(angle);
        ASSERT_SAME(TurnedBack(p), Pt(p.h * c + p.v * -s, p.h * s + p.v * c)) << angle;
    }
}

TEST(URotation, TheThirdEntryIsTheSecondWithItsSignFlipped) {
    SetRotate(0.0); // sine 0, third entry -0
    EXPECT_SAME(Turned(Pt(-0.0, 0.0)), Pt(-0.0, 0.0));
    EXPECT_SAME(Turned(Pt(0.0, -0.0)), Pt(0.0, 0.0));
    SetRotate(-0.0); // sine -0, third entry 0
    EXPECT_SAME(Turned(Pt(-0.0, 0.0)), Pt(0.0, 0.0));
    EXPECT_SAME(Turned(Pt(-0.0, -1.0)), Pt(-0.0, -1.0));
}

TEST(URotation, TheTwoRotationsAreIndependent) {
    SetRotate(0.5);
    SetUnRotate(1.25);
    Pt const byHalf = Turned(Pt(3, 4));
    Pt const byMore = TurnedBack(Pt(3, 4));
    EXPECT_NE(byHalf, byMore);
    SetRotate(2.0);
    EXPECT_EQ(TurnedBack(Pt(3, 4)), byMore);
    EXPECT_NE(Turned(Pt(3, 4)), byHalf);
    SetUnRotate(0.5);
    EXPECT_EQ(TurnedBack(Pt(3, 4)), byHalf) << "the angle is not negated";
}

TEST(URotation, AnAngleHoldsUntilTheNextOne) {
    SetRotate(0.75);
    Pt const first = Turned(Pt(2, -5));
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(Turned(Pt(2, -5)), first);
    }
}

TEST(URotation, TheNegatedAngleUndoes) {
    trammel_test::Random random(2);
    for (int i = 0; i < 1000; ++i) {
        double const angle = random.Uniform(-10.0, 10.0);
        Pt const p = random.Point(100.0);
        SetRotate(angle);
        SetUnRotate(-angle);
        Pt const back = TurnedBack(Turned(p));
        EXPECT_NEAR(back.h, p.h, 1e-13);
        EXPECT_NEAR(back.v, p.v, 1e-13);
    }
}

TEST(URotation, BothCoordinatesAreReadBeforeEitherIsWritten) {
    SetRotate(std::acos(-1.0) / 4.0);
    Pt const p = Turned(Pt(1, 1));
    EXPECT_NEAR(p.h, 0.0, 1e-15);
    EXPECT_NEAR(p.v, std::sqrt(2.0), 1e-15);
}

TEST(URotation, NonFiniteAnglesAndPointsGiveNaN) {
    for (double const angle : {kNaN, kInf, -kInf}) {
        SetRotate(angle);
        SetUnRotate(angle);
        EXPECT_SAME(Turned(Pt(1, 2)), Pt(kNaN, kNaN));
        EXPECT_SAME(TurnedBack(Pt(0, 0)), Pt(kNaN, kNaN));
    }
    SetRotate(1.0);
    EXPECT_SAME(Turned(Pt(kNaN, 1)), Pt(kNaN, kNaN));
    EXPECT_SAME(Turned(Pt(kInf, 1)), Pt(kInf, kInf));
    EXPECT_SAME(Turned(Pt(kInf, kInf)), Pt(kNaN, kInf));
    double const largest = std::numeric_limits<double>::max();
    EXPECT_SAME(Turned(Pt(largest, largest)),
                Pt(largest * std::cos(1.0) - largest * std::sin(1.0), kInf));
}

} // namespace
