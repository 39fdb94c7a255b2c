// SPDX-License-Identifier: MIT

#include "CMatrix3x3.h"

#include "TestSupport.h"
#include "UTrigonometry.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iomanip>
#include <limits>
#include <sstream>
#include <string>
#include <type_traits>

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;
using trammel_test::SameBits;

namespace {

using DPoint = TPoint<double>;
using SPoint = TPoint<short>;
using DRect = TRect<double>;
using SRect = TRect<short>;

using Entries = std::array<double, 6>;

/// a, b, c, d, tx, ty.
Entries EntriesOf(CMatrix3x3 const& m) { return {m.a, m.b, m.c, m.d, m.tx, m.ty}; }

/// The same to the last bit, the kind included.
::testing::AssertionResult Same(CMatrix3x3 const& got, CMatrix3x3 const& want) {
    Entries const g = EntriesOf(got);
    Entries const w = EntriesOf(want);
    for (std::size_t i = 0; i < g.size(); ++i) {
        if (!SameBits(g[i], w[i])) {
            return ::testing::AssertionFailure()
                   << "entry " << i << " is " << g[i] << ", not " << w[i];
        }
    }
    if (got.mKind != want.mKind) {
        return ::testing::AssertionFailure() << "kind is " << got.mKind << ", not " << want.mKind;
    }
    return ::testing::AssertionSuccess();
}

CMatrix3x3 WithKind(CMatrix3x3 m, std::int32_t kind) {
    m.mKind = kind;
    return m;
}

DPoint Mapped(CMatrix3x3 const& m, DPoint p) {
    m.Transform(p);
    return p;
}

void ExpectNear(DPoint const& got, DPoint const& want, double tolerance) {
    EXPECT_NEAR(got.h, want.h, tolerance);
    EXPECT_NEAR(got.v, want.v, tolerance);
}

CMatrix3x3 RandomMatrix(Random& random) {
    CMatrix3x3 m;
    for (double* const entry : {&m.a, &m.b, &m.c, &m.d, &m.tx, &m.ty}) {
        *entry = random.Uniform(-10.0, 10.0);
    }
    m.mKind = random.Integer(0, 0x7FF);
    return m;
}

/// The product as its formula says.
CMatrix3x3 Product(CMatrix3x3 const& m, CMatrix3x3 const& n) {
    return {m.a * n.a + m.b * n.c,
            m.a * n.b + m.b * n.d,
            m.c * n.a + m.d * n.c,
            m.c * n.b + m.d * n.d,
            m.tx * n.a + m.ty * n.c + n.tx,
            m.tx * n.b + m.ty * n.d + n.ty,
            0};
}

TEST(CMatrix3x3, HasItsFieldsInOrder) {
    EXPECT_EQ(offsetof(CMatrix3x3, a), 0U);
    EXPECT_EQ(offsetof(CMatrix3x3, b), 8U);
    EXPECT_EQ(offsetof(CMatrix3x3, c), 16U);
    EXPECT_EQ(offsetof(CMatrix3x3, d), 24U);
    EXPECT_EQ(offsetof(CMatrix3x3, tx), 32U);
    EXPECT_EQ(offsetof(CMatrix3x3, ty), 40U);
    EXPECT_EQ(offsetof(CMatrix3x3, mKind), 48U);
    EXPECT_TRUE((std::is_same_v<decltype(CMatrix3x3::mKind), std::int32_t>));
    EXPECT_FALSE(std::is_polymorphic_v<CMatrix3x3>);
}

TEST(CMatrix3x3, KindBitsHaveTheirValues) {
    EXPECT_EQ(kMatrixTranslate, 0x1);
    EXPECT_EQ(kMatrixScale, 0x2);
    EXPECT_EQ(kMatrixRotate, 0x4);
    EXPECT_EQ(kMatrixReflect, 0x8);
    EXPECT_EQ(kMatrixMap, 0x10);
    EXPECT_EQ(kMatrixShear, 0x20);
    EXPECT_EQ(kMatrixRotateAbout, 0x40);
    EXPECT_EQ(kMatrixScaleAbout, 0x80);
    EXPECT_EQ(kMatrixReflect3, 0x100);
    EXPECT_EQ(kMatrixShear3, 0x200);
    EXPECT_EQ(kMatrixInverted, 0x400);
}

TEST(CMatrix3x3, StartsAsTheIdentity) {
    CMatrix3x3 const m;
    EXPECT_TRUE(Same(m, CMatrix3x3(1.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0)));
    EXPECT_EQ(Mapped(m, DPoint(3.0, -4.0)), DPoint(3.0, -4.0));
}

TEST(CMatrix3x3, StoresSevenValuesAsGiven) {
    CMatrix3x3 const m(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 0x48);
    EXPECT_EQ(EntriesOf(m), (Entries{1.5, 2.5, 3.5, 4.5, 5.5, 6.5}));
    EXPECT_EQ(m.mKind, 0x48);
    EXPECT_EQ(CMatrix3x3(1.0, 0.0, 0.0, 1.0, 0.0, 0.0, -1L).mKind, -1);
    // Of a long the low 32 bits.
    EXPECT_EQ(CMatrix3x3(1.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0x500000007L).mKind, 7);
}

TEST(CMatrix3x3, ValueCopiesTheEntriesOut) {
    CMatrix3x3 m(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 9);
    double a = 0.0;
    double b = 0.0;
    double c = 0.0;
    double d = 0.0;
    double tx = 0.0;
    double ty = 0.0;
    m.Value(a, b, c, d, tx, ty);
    EXPECT_EQ((Entries{a, b, c, d, tx, ty}), EntriesOf(m));
    m.Value(m.ty, m.tx, m.d, m.c, m.b, m.a); // into itself, reversed
    EXPECT_EQ(EntriesOf(m), (Entries{6.5, 5.5, 4.5, 3.5, 2.5, 1.5}));
}

TEST(CMatrix3x3, IdentityResetsAndReturnsTheMatrix) {
    CMatrix3x3 m(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 9);
    EXPECT_EQ(&m.Identity(), &m);
    EXPECT_TRUE(Same(m, CMatrix3x3()));
}

TEST(CMatrix3x3, DeterminantAndSingularityAreExact) {
    EXPECT_EQ(CMatrix3x3(2.0, 3.0, 5.0, 11.0, 7.0, 7.0, 0).Determinant(), 7.0);
    EXPECT_FALSE(CMatrix3x3().IsSingular());
    EXPECT_TRUE(CMatrix3x3(2.0, 4.0, 1.0, 2.0, 7.0, 7.0, 0).IsSingular());
    EXPECT_FALSE(CMatrix3x3(1e-150, 0.0, 0.0, 1e-150, 0.0, 0.0, 0).IsSingular());
    EXPECT_TRUE(CMatrix3x3(1e-170, 0.0, 0.0, 1e-170, 0.0, 0.0, 0).IsSingular()); // underflow
    EXPECT_FALSE(CMatrix3x3(kNaN, 0.0, 0.0, 1.0, 0.0, 0.0, 0).IsSingular());
    Random random(701);
    for (int i = 0; i < 1000; ++i) {
        CMatrix3x3 const m = RandomMatrix(random);
        ASSERT_EQ(m.Determinant(), m.a * m.d - m.b * m.c);
    }
}

TEST(CMatrix3x3, GetDTransformDropsTranslationAndKind) {
    CMatrix3x3 m(1.5, 2.5, 3.5, 4.5, 5.5, 6.5, 9);
    EXPECT_TRUE(Same(m.GetDTransform(), CMatrix3x3(1.5, 2.5, 3.5, 4.5, 0.0, 0.0, 0)));
}

TEST(CMatrix3x3, TransformsRowVectors) {
    CMatrix3x3 const m(2.0, 3.0, 5.0, 7.0, 11.0, 13.0, 0);
    DPoint p(1.0, 10.0);
    m.Transform(p);
    EXPECT_EQ(p, DPoint(2.0 + 50.0 + 11.0, 3.0 + 70.0 + 13.0));
    p.Set(1.0, 10.0);
    m.DTransform(p);
    EXPECT_EQ(p, DPoint(52.0, 73.0));
    Random random(702);
    for (int i = 0; i < 1000; ++i) {
        CMatrix3x3 const n = RandomMatrix(random);
        DPoint const q = random.Point(100.0);
        ASSERT_TRUE(SameBits(Mapped(n, q),
                             DPoint(q.h * n.a + q.v * n.c + n.tx, q.h * n.b + q.v * n.d + n.ty)));
        DPoint vector = q;
        n.DTransform(vector);
        ASSERT_TRUE(SameBits(vector, DPoint(q.h * n.a + q.v * n.c, q.h * n.b + q.v * n.d)));
    }
}

TEST(CMatrix3x3, ConcatAppliesTheFirstFirst) {
    CMatrix3x3 const m1(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 0x400);
    CMatrix3x3 const m2(7.0, 8.0, 9.0, 10.0, 11.0, 12.0, 0x40);
    CMatrix3x3 const want(25.0, 28.0, 57.0, 64.0, 100.0, 112.0, 0);
    EXPECT_TRUE(Same(Concat(m1, m2), want));
    EXPECT_TRUE(Same(m1 * m2, want));
    EXPECT_EQ(m1.mKind, 0x400);
    Random random(703);
    for (int i = 0; i < 1000; ++i) {
        CMatrix3x3 const m = RandomMatrix(random);
        CMatrix3x3 const n = RandomMatrix(random);
        ASSERT_TRUE(Same(Concat(m, n), Product(m, n)));
        ASSERT_TRUE(Same(m * n, Product(m, n)));
        DPoint const p = random.Point(10.0);
        ExpectNear(Mapped(m * n, p), Mapped(n, Mapped(m, p)), 1e-9);
        ASSERT_TRUE(Same(m * CMatrix3x3(), WithKind(m, 0)));
    }
}

TEST(CMatrix3x3, PreCatIsPostCat) {
    Random random(704);
    for (int i = 0; i < 100; ++i) {
        CMatrix3x3 const m = RandomMatrix(random);
        CMatrix3x3 const n = RandomMatrix(random);
        CMatrix3x3 post = m;
        EXPECT_EQ(&post.PostCat(n), &post);
        ASSERT_TRUE(Same(post, Product(m, n)));
        CMatrix3x3 pre = m;
        EXPECT_EQ(&pre.PreCat(n), &pre);
        ASSERT_TRUE(Same(pre, post));
        ASSERT_NE(EntriesOf(pre), EntriesOf(Product(n, m)));
    }
}

TEST(CMatrix3x3, MayBeItsOwnArgument) {
    CMatrix3x3 const m(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 0x48);
    CMatrix3x3 const square = Product(m, m);
    CMatrix3x3 post = m;
    post.PostCat(post);
    EXPECT_TRUE(Same(post, square));
    CMatrix3x3 pre = m;
    pre.PreCat(pre);
    EXPECT_TRUE(Same(pre, square));
    CMatrix3x3 inverse = m;
    EXPECT_TRUE(inverse.Inverse(inverse));
    EXPECT_TRUE(Same(inverse, m.Inverse()));
}

// The elementary operations, by the temporary matrix that each concatenates.

TEST(CMatrix3x3Building, TranslateMoves) {
    CMatrix3x3 m;
    EXPECT_EQ(&m.Translate(3.0, 4.0), &m);
    EXPECT_EQ(Mapped(m, DPoint(1.0, 1.0)), DPoint(4.0, 5.0));
    EXPECT_TRUE(Same(m, CMatrix3x3(1.0, 0.0, 0.0, 1.0, 3.0, 4.0, 0)));
}

TEST(CMatrix3x3Building, ElementaryOperationsPostConcatenateAndLeaveKindZero) {
    Random random(705);
    for (int i = 0; i < 200; ++i) {
        CMatrix3x3 const m = RandomMatrix(random);
        double const x = random.Uniform(-4.0, 4.0);
        double const y = random.Uniform(-4.0, 4.0);
        auto const after = [&](CMatrix3x3 const& temporary) { return Product(m, temporary); };
        CMatrix3x3 const translation(1.0, 0.0, 0.0, 1.0, x, y, 0);
        ASSERT_TRUE(Same(CMatrix3x3(m).Translate(x, y), after(translation)));
        ASSERT_TRUE(Same(CMatrix3x3(m).Translate(DPoint(x, y)), after(translation)));
        CMatrix3x3 const scaling(x, 0.0, 0.0, y, 0.0, 0.0, 0);
        ASSERT_TRUE(Same(CMatrix3x3(m).Scale(x, y), after(scaling)));
        ASSERT_TRUE(Same(CMatrix3x3(m).Scale(DPoint(x, y)), after(scaling)));
        ASSERT_TRUE(Same(CMatrix3x3(m).Scale(x), after(CMatrix3x3(x, 0.0, 0.0, x, 0.0, 0.0, 0))));
        CMatrix3x3 const rotation(std::cos(x), std::sin(x), -std::sin(x), std::cos(x), 0.0, 0.0, 0);
        ASSERT_TRUE(Same(CMatrix3x3(m).Rotate(x), after(rotation)));
        CMatrix3x3 const shear(1.0, std::tan(y), std::tan(x), 1.0, 0.0, 0.0, 0);
        ASSERT_TRUE(Same(CMatrix3x3(m).Shear(x, y), after(shear)));
        ASSERT_TRUE(Same(CMatrix3x3(m).Shear(DPoint(x, y)), after(shear)));
    }
}

TEST(CMatrix3x3Building, EveryOperationReturnsTheMatrix) {
    CMatrix3x3 m;
    DPoint const o;
    DPoint const p(1.0, 2.0);
    DPoint const q(3.0, 5.0);
    EXPECT_EQ(&m.Translate(p), &m);
    EXPECT_EQ(&m.Scale(2.0, 3.0), &m);
    EXPECT_EQ(&m.Scale(p), &m);
    EXPECT_EQ(&m.Scale(2.0), &m);
    EXPECT_EQ(&m.Rotate(1.0), &m);
    EXPECT_EQ(&m.Shear(0.1, 0.2), &m);
    EXPECT_EQ(&m.Shear(p), &m);
    EXPECT_EQ(&m.Rotate(1.0, p), &m);
    EXPECT_EQ(&m.Scale(1.0, 2.0, p), &m);
    EXPECT_EQ(&m.Reflect(p, q), &m);
    EXPECT_EQ(&m.Rotate(o, p, q), &m);
    EXPECT_EQ(&m.Scale(o, p, q), &m);
    EXPECT_EQ(&m.Reflect(o, p, q), &m);
    EXPECT_EQ(&m.Shear(o, p, q), &m);
    EXPECT_EQ(&m.Map(DRect(0.0, 0.0, 1.0, 1.0), DRect(0.0, 0.0, 2.0, 2.0)), &m);
}

TEST(CMatrix3x3Building, AppliesInCallOrder) {
    CMatrix3x3 m;
    m.Translate(1.0, 0.0).Rotate(pi / 2.0);
    EXPECT_EQ(Mapped(m, DPoint(0.0, 0.0)), DPoint(0.0, 1.0));
    CMatrix3x3 other;
    other.Rotate(pi / 2.0).Translate(1.0, 0.0);
    EXPECT_EQ(Mapped(other, DPoint(0.0, 0.0)), DPoint(1.0, 0.0));
}

TEST(CMatrix3x3Building, QuarterTurnsAreExact) {
    EXPECT_EQ(EntriesOf(CMatrix3x3().Rotate(pi / 2.0)), (Entries{0.0, 1.0, -1.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(EntriesOf(CMatrix3x3().Rotate(-pi / 2.0)), (Entries{0.0, -1.0, 1.0, 0.0, 0.0, 0.0}));
    EXPECT_EQ(EntriesOf(CMatrix3x3().Rotate(pi)), (Entries{-1.0, 0.0, 0.0, -1.0, 0.0, 0.0}));
    EXPECT_EQ(EntriesOf(CMatrix3x3().Rotate(0.0)), (Entries{1.0, 0.0, 0.0, 1.0, 0.0, 0.0}));
    // Positive turns +x toward +y.
    EXPECT_EQ(Mapped(CMatrix3x3().Rotate(pi / 2.0), DPoint(1.0, 0.0)), DPoint(0.0, 1.0));
}

TEST(CMatrix3x3Building, ShearAddsTangents) {
    DPoint const p = Mapped(CMatrix3x3().Shear(0.5, 0.25), DPoint(2.0, 3.0));
    EXPECT_EQ(p, DPoint(2.0 + 3.0 * std::tan(0.5), 2.0 * std::tan(0.25) + 3.0));
}

TEST(CMatrix3x3Building, RotateAboutAPointLeavesItFixed) {
    CMatrix3x3 m;
    DPoint const c(3.0, -7.0);
    m.Rotate(0.5, c);
    ExpectNear(Mapped(m, c), c, 1e-14);
    EXPECT_EQ(m.mKind, 0x40);
    m.Translate(1.0, 1.0);
    EXPECT_EQ(m.mKind, 0);
}

TEST(CMatrix3x3Building, CompoundOperationsAreTheirStepsPlusAKind) {
    Random random(706);
    for (int i = 0; i < 300; ++i) {
        CMatrix3x3 const m = RandomMatrix(random);
        DPoint const o = random.Point(10.0);
        DPoint const p = random.Point(10.0);
        DPoint const q = random.Point(10.0);
        double const x = random.Uniform(-4.0, 4.0);
        double const y = random.Uniform(-4.0, 4.0);

        CMatrix3x3 want = m;
        want.Translate(-p.h, -p.v).Rotate(x).Translate(p.h, p.v);
        ASSERT_TRUE(Same(CMatrix3x3(m).Rotate(x, p), WithKind(want, 0x40)));

        want = m;
        want.Translate(-p.h, -p.v).Scale(x, y).Translate(p.h, p.v);
        ASSERT_TRUE(Same(CMatrix3x3(m).Scale(x, y, p), WithKind(want, 0x80)));

        double const theta = std::atan2(q.v - p.v, q.h - p.h);
        want = m;
        want.Translate(-p.h, -p.v)
            .Rotate(-theta)
            .Scale(1.0, -1.0)
            .Rotate(theta)
            .Translate(p.h, p.v);
        ASSERT_TRUE(Same(CMatrix3x3(m).Reflect(p, q), WithKind(want, 0x8)));

        double const theta1 = std::atan2(p.v - o.v, p.h - o.h);
        double const theta2 = std::atan2(q.v - o.v, q.h - o.h);
        want = m;
        want.Translate(-o.h, -o.v).Rotate(theta2 - theta1).Translate(o.h, o.v);
        ASSERT_TRUE(Same(CMatrix3x3(m).Rotate(o, p, q), WithKind(want, 0x40)));

        want = m;
        want.Scale((q.h - o.h) / (p.h - o.h), (q.v - o.v) / (p.v - o.v), o);
        ASSERT_TRUE(Same(CMatrix3x3(m).Scale(o, p, q), WithKind(want, 0x80)));

        want = m;
        want.Translate(-o.h, -o.v)
            .Rotate(-theta1)
            .Scale(1.0, -1.0)
            .Rotate(theta2)
            .Translate(o.h, o.v);
        ASSERT_TRUE(Same(CMatrix3x3(m).Reflect(o, p, q), WithKind(want, 0x100)));

        want = m;
        want.Translate(-o.h, -o.v).Rotate(-theta);
        DPoint const q2 = Mapped(want, p);
        DPoint const q3 = Mapped(want, q);
        want.Shear((q3.h - q2.h) / q2.v, (q3.v - q2.v) / q2.h).Rotate(theta).Translate(o.h, o.v);
        ASSERT_TRUE(Same(CMatrix3x3(m).Shear(o, p, q), WithKind(want, 0x200)));
    }
}

TEST(CMatrix3x3Building, ReflectMirrorsInALine) {
    CMatrix3x3 m;
    m.Reflect(DPoint(0.0, 0.0), DPoint(1.0, 0.0));
    EXPECT_EQ(m.mKind, 0x8);
    EXPECT_EQ(Mapped(m, DPoint(3.0, 4.0)), DPoint(3.0, -4.0));
    ExpectNear(Mapped(CMatrix3x3().Reflect(DPoint(1.0, 1.0), DPoint(2.0, 2.0)), DPoint(5.0, 2.0)),
               DPoint(2.0, 5.0), 1e-14);
    // Coincident points: the horizontal line through them.
    EXPECT_EQ(Mapped(CMatrix3x3().Reflect(DPoint(1.0, 3.0), DPoint(1.0, 3.0)), DPoint(5.0, 4.0)),
              DPoint(5.0, 2.0));
    Random random(707);
    for (int i = 0; i < 300; ++i) {
        DPoint const p = random.Point(10.0);
        DPoint const q = random.Point(10.0);
        CMatrix3x3 const mirror = CMatrix3x3().Reflect(p, q);
        DPoint const r = random.Point(10.0);
        ExpectNear(Mapped(mirror, p), p, 1e-12);
        ExpectNear(Mapped(mirror, q), q, 1e-12);
        ExpectNear(Mapped(mirror, Mapped(mirror, r)), r, 1e-12);
        EXPECT_NEAR(mirror.Determinant(), -1.0, 1e-14);
    }
}

TEST(CMatrix3x3Building, ReflectOfThreePointsLaysTheLineOntoTheThird) {
    CMatrix3x3 m;
    DPoint const o(1.0, 1.0);
    m.Reflect(o, DPoint(3.0, 1.0), DPoint(1.0, 5.0));
    EXPECT_EQ(m.mKind, 0x100);
    ExpectNear(Mapped(m, o), o, 1e-14);
    ExpectNear(Mapped(m, DPoint(3.0, 1.0)), DPoint(1.0, 3.0), 1e-14);
    ExpectNear(Mapped(m, DPoint(1.0, 2.0)), DPoint(2.0, 1.0), 1e-14); // mirrored
}

TEST(CMatrix3x3Building, RotateOfThreePointsTurnsOneDirectionToTheOther) {
    CMatrix3x3 m;
    DPoint const o(1.0, 1.0);
    m.Rotate(o, DPoint(3.0, 1.0), DPoint(1.0, 5.0));
    EXPECT_EQ(m.mKind, 0x40);
    EXPECT_EQ(Mapped(m, DPoint(3.0, 1.0)), DPoint(1.0, 3.0)); // a quarter turn is exact
    EXPECT_EQ(Mapped(m, o), o);
}

TEST(CMatrix3x3Building, ScaleOfThreePointsCarriesOneToTheOther) {
    CMatrix3x3 m;
    DPoint const o(1.0, 1.0);
    m.Scale(o, DPoint(3.0, 5.0), DPoint(5.0, 3.0));
    EXPECT_EQ(m.mKind, 0x80);
    EXPECT_EQ(EntriesOf(m), (Entries{2.0, 0.0, 0.0, 0.5, -1.0, 0.5}));
    EXPECT_EQ(Mapped(m, DPoint(3.0, 5.0)), DPoint(5.0, 3.0));
}

TEST(CMatrix3x3Building, ScaleOfThreePointsLeavesTooShortArmsAlone) {
    DPoint const o;
    EXPECT_EQ(CMatrix3x3().Scale(o, DPoint(5e-16, 2.0), DPoint(7.0, 6.0)).a, 1.0);
    EXPECT_EQ(CMatrix3x3().Scale(o, DPoint(5e-16, 2.0), DPoint(7.0, 6.0)).d, 3.0);
    EXPECT_EQ(CMatrix3x3().Scale(o, DPoint(2.0, -5e-16), DPoint(6.0, 7.0)).a, 3.0);
    EXPECT_EQ(CMatrix3x3().Scale(o, DPoint(2.0, -5e-16), DPoint(6.0, 7.0)).d, 1.0);
    // 1e-15 itself is long enough.
    EXPECT_EQ(CMatrix3x3().Scale(o, DPoint(1e-15, -1e-15), DPoint(2e-15, 3e-15)).a, 2e-15 / 1e-15);
    EXPECT_EQ(CMatrix3x3().Scale(o, DPoint(1e-15, -1e-15), DPoint(2e-15, 3e-15)).d, 3e-15 / -1e-15);
    EXPECT_EQ(CMatrix3x3().Scale(o, DPoint(std::nextafter(1e-15, 0.0), 1.0), DPoint(7.0, 1.0)).a,
              1.0);
    EXPECT_TRUE(std::isnan(CMatrix3x3().Scale(o, DPoint(kNaN, 1.0), DPoint(7.0, 1.0)).a));
}

TEST(CMatrix3x3Building, ShearOfThreePointsTakesRatiosForAngles) {
    CMatrix3x3 m;
    m.Shear(DPoint(0.0, 0.0), DPoint(2.0, 1.0), DPoint(3.0, 1.0));
    EXPECT_EQ(m.mKind, 0x200);
    EXPECT_EQ(EntriesOf(m), (Entries{1.0, 0.0, std::tan(1.0), 1.0, 0.0, 0.0}));
    // The points are taken through the matrix as it stands then.
    CMatrix3x3 moved;
    moved.Translate(10.0, 5.0).Shear(DPoint(0.0, 0.0), DPoint(2.0, 1.0), DPoint(3.0, 1.0));
    EXPECT_EQ(moved.c, std::tan(1.0 / 6.0));
    EXPECT_EQ(moved.tx, 10.0 + 5.0 * std::tan(1.0 / 6.0));
    EXPECT_EQ(moved.ty, 5.0);
}

TEST(CMatrix3x3Building, ShearOfThreePointsDividesByZeroUnguarded) {
    CMatrix3x3 m; // q2.v is 0: tan(infinity)
    m.Shear(DPoint(0.0, 0.0), DPoint(2.0, 0.0), DPoint(3.0, 0.0));
    EXPECT_TRUE(std::isnan(m.c));
    EXPECT_EQ(m.mKind, 0x200);
}

TEST(CMatrix3x3Map, CarriesOneRectangleOntoTheOther) {
    CMatrix3x3 m;
    m.Map(DRect(1.0, 2.0, 11.0, 22.0), DRect(100.0, 200.0, 120.0, 280.0));
    EXPECT_EQ(EntriesOf(m), (Entries{2.0, 0.0, 0.0, 4.0, 98.0, 192.0}));
    EXPECT_EQ(m.mKind, 0x10);
    EXPECT_EQ(Mapped(m, DPoint(1.0, 2.0)), DPoint(100.0, 200.0));
    EXPECT_EQ(Mapped(m, DPoint(11.0, 22.0)), DPoint(120.0, 280.0));
}

TEST(CMatrix3x3Map, TakesWidthsAndHeightsWithTheirSigns) {
    CMatrix3x3 m;
    m.Map(DRect(0.0, 0.0, 10.0, 10.0), DRect(20.0, 0.0, 0.0, 30.0));
    EXPECT_EQ(EntriesOf(m), (Entries{-2.0, 0.0, 0.0, 3.0, 20.0, 0.0}));
    m.Identity().Map(DRect(10.0, 10.0, 0.0, 0.0), DRect(0.0, 0.0, 10.0, 20.0));
    EXPECT_EQ(EntriesOf(m), (Entries{-1.0, 0.0, 0.0, -2.0, 10.0, 20.0}));
}

TEST(CMatrix3x3Map, LeavesTheDirectionOfAFlatSourceAlone) {
    CMatrix3x3 m;
    m.Map(DRect(5.0, 0.0, 5.0, 10.0), DRect(100.0, 7.0, 200.0, 27.0));
    EXPECT_EQ(EntriesOf(m), (Entries{1.0, 0.0, 0.0, 2.0, 0.0, 7.0}));
    m.Identity().Map(DRect(0.0, 5.0, 10.0, 5.0), DRect(7.0, 100.0, 27.0, 200.0));
    EXPECT_EQ(EntriesOf(m), (Entries{2.0, 0.0, 0.0, 1.0, 7.0, 0.0}));
    m.Identity().Map(DRect(), DRect(7.0, 100.0, 27.0, 200.0));
    EXPECT_EQ(EntriesOf(m), (Entries{1.0, 0.0, 0.0, 1.0, 0.0, 0.0}));
    EXPECT_EQ(m.mKind, 0x10);
}

TEST(CMatrix3x3Map, IsNarrowBelowSinglePrecisionsEpsilon) {
    double const epsilon = 0x1p-23;
    DRect const dst(3.0, 4.0, 4.0, 5.0);
    CMatrix3x3 m;
    m.Map(DRect(0.0, 0.0, epsilon, -epsilon), dst); // epsilon itself is wide enough
    EXPECT_EQ(EntriesOf(m), (Entries{0x1p23, 0.0, 0.0, -0x1p23, 3.0, 4.0}));
    double const less = std::nextafter(epsilon, 0.0);
    m.Identity().Map(DRect(0.0, 0.0, less, -less), dst);
    EXPECT_EQ(EntriesOf(m), (Entries{1.0, 0.0, 0.0, 1.0, 0.0, 0.0}));
    m.Identity().Map(DRect(0.0, 0.0, kNaN, 1.0), dst); // NaN is not narrow
    EXPECT_TRUE(std::isnan(m.a));
}

TEST(CMatrix3x3Map, IsItsStepsPlusAKind) {
    Random random(708);
    for (int i = 0; i < 300; ++i) {
        CMatrix3x3 const m = RandomMatrix(random);
        DRect const src(random.Point(10.0), random.Point(10.0));
        DRect const dst(random.Point(10.0), random.Point(10.0));
        CMatrix3x3 want = m;
        want.Translate(-src.left, -src.top)
            .Scale((dst.right - dst.left) / (src.right - src.left),
                   (dst.bottom - dst.top) / (src.bottom - src.top))
            .Translate(dst.left, dst.top);
        ASSERT_TRUE(Same(CMatrix3x3(m).Map(src, dst), WithKind(want, 0x10)));
    }
}

TEST(CMatrix3x3Inverse, OfAScalingDividesByTheFactors) {
    CMatrix3x3 const m = CMatrix3x3().Scale(2.0, 4.0);
    EXPECT_EQ(EntriesOf(m.Inverse()), (Entries{0.5, 0.0, 0.0, 0.25, 0.0, 0.0}));
    EXPECT_EQ(m.Inverse().mKind, 0x400);
}

TEST(CMatrix3x3Inverse, KeepsTheKindAndAddsInverted) {
    CMatrix3x3 const m(2.0, 0.0, 0.0, 2.0, 1.0, 1.0, 0x48);
    EXPECT_EQ(m.Inverse().mKind, 0x448);
    CMatrix3x3 out;
    EXPECT_TRUE(m.Inverse(out));
    EXPECT_EQ(out.mKind, 0x448);
    CMatrix3x3 self = m;
    EXPECT_EQ(&self.Invert(), &self);
    EXPECT_EQ(self.mKind, 0x448);
    self.Invert();
    EXPECT_EQ(self.mKind, 0x448);
    EXPECT_EQ(m.mKind, 0x48);
}

TEST(CMatrix3x3Inverse, IsTheSameInAllThreeFormsAndByItsFormula) {
    Random random(709);
    for (int i = 0; i < 1000; ++i) {
        CMatrix3x3 const m = RandomMatrix(random);
        double const determinant = m.a * m.d - m.b * m.c;
        CMatrix3x3 want;
        want.a = m.d / determinant;
        want.c = -m.c / determinant;
        want.b = -m.b / determinant;
        want.d = m.a / determinant;
        want.tx = -(m.tx * want.a + m.ty * want.c);
        want.ty = -(m.tx * want.b + m.ty * want.d);
        want.mKind = m.mKind | 0x400;
        ASSERT_TRUE(Same(m.Inverse(), want));
        CMatrix3x3 out(7.0, 7.0, 7.0, 7.0, 7.0, 7.0, 7);
        ASSERT_TRUE(m.Inverse(out));
        ASSERT_TRUE(Same(out, want));
        CMatrix3x3 self = m;
        self.Invert();
        ASSERT_TRUE(Same(self, want));
        if (std::abs(determinant) > 1.0) {
            DPoint const p = random.Point(10.0);
            ExpectNear(Mapped(m.Inverse(), Mapped(m, p)), p, 1e-9);
            ExpectNear(Mapped(m * m.Inverse(), p), p, 1e-9);
        }
    }
}

std::string ThrownBy(CMatrix3x3 const& m, CMatrix3x3& out) {
    try {
        m.Inverse(out);
    } catch (char const* text) {
        return text;
    }
    return "nothing";
}

TEST(CMatrix3x3Inverse, OfASingularMatrixThrowsATextAndLeavesTheReceiver) {
    CMatrix3x3 const singular(2.0, 4.0, 1.0, 2.0, 5.0, 6.0, 0x48);
    CMatrix3x3 m = singular;
    try {
        m.Inverse();
        ADD_FAILURE() << "did not throw";
    } catch (char const* text) {
        EXPECT_STREQ(text, "marix_singularity");
    }
    EXPECT_TRUE(Same(m, singular));
    try {
        m.Invert();
        ADD_FAILURE() << "did not throw";
    } catch (char const* text) {
        EXPECT_STREQ(text, "marix_singularity");
    }
    EXPECT_TRUE(Same(m, singular));
    CMatrix3x3 out(7.0, 7.0, 7.0, 7.0, 7.0, 7.0, 7);
    EXPECT_EQ(ThrownBy(m, out), "marix_singularity");
    EXPECT_TRUE(Same(out, CMatrix3x3()));
    EXPECT_TRUE(Same(m, singular));
}

TEST(CMatrix3x3Inverse, IntoItselfWhenSingularBecomesTheIdentity) {
    CMatrix3x3 m(0.0, 0.0, 0.0, 0.0, 5.0, 6.0, 0x48);
    EXPECT_EQ(ThrownBy(m, m), "marix_singularity");
    EXPECT_TRUE(Same(m, CMatrix3x3()));
}

TEST(CMatrix3x3Inverse, OfNaNAndInfinityDoesNotThrow) {
    CMatrix3x3 const nan = CMatrix3x3(kNaN, 0.0, 0.0, 1.0, 0.0, 0.0, 0).Inverse();
    EXPECT_TRUE(std::isnan(nan.a) && std::isnan(nan.d));
    CMatrix3x3 const infinite = CMatrix3x3(kInf, 0.0, 0.0, 1.0, 0.0, 0.0, 0).Inverse();
    EXPECT_EQ(infinite.a, 0.0);
    EXPECT_TRUE(std::isnan(infinite.d));
}

TEST(CMatrix3x3Stream, WritesTheIdentityAsSevenCharacters) {
    std::ostringstream out;
    out << CMatrix3x3();
    EXPECT_EQ(out.str(), "1001000");
}

TEST(CMatrix3x3Stream, WritesWithTheStreamsFormattingAndNoSeparators) {
    CMatrix3x3 const m(0.5, -2.0, 1e20, 1.0 / 3.0, 100.25, -0.0, 1088);
    std::ostringstream plain;
    EXPECT_EQ(&(plain << m), &plain);
    EXPECT_EQ(plain.str(), "0.5-21e+200.333333100.25-01088");
    std::ostringstream formatted;
    formatted << std::fixed << std::setprecision(1) << std::hex << m;
    EXPECT_EQ(formatted.str(), "0.5-2.0100000000000000000000.00.3100.2-0.0440");
    std::ostringstream member;
    EXPECT_EQ(&m.operator<<(member), &member);
    EXPECT_EQ(member.str(), plain.str());
}

TEST(CMatrix3x3Stream, ReadsSixDoublesAndTheKind) {
    std::istringstream in("1.5 -2 3e1\n4 5 6 1088 next");
    CMatrix3x3 m;
    EXPECT_EQ(&(in >> m), &in);
    EXPECT_TRUE(Same(m, CMatrix3x3(1.5, -2.0, 30.0, 4.0, 5.0, 6.0, 1088)));
    std::string rest;
    in >> rest;
    EXPECT_EQ(rest, "next");
    std::istringstream again("1 2 3 4 5 6 7");
    EXPECT_EQ(&m.operator>>(again), &again);
    EXPECT_TRUE(Same(m, CMatrix3x3(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7)));
    std::istringstream source("6 5 4 3 2 1 0");
    EXPECT_TRUE(Same(CMatrix3x3(source), CMatrix3x3(6.0, 5.0, 4.0, 3.0, 2.0, 1.0, 0)));
}

TEST(CMatrix3x3Stream, TellsOfFailureByTheStreamsState) {
    std::istringstream empty("");
    EXPECT_TRUE(Same(CMatrix3x3(empty), CMatrix3x3(0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0)));
    EXPECT_TRUE(empty.fail());
    std::istringstream cut("1 2 x 4 5 6 7");
    EXPECT_TRUE(Same(CMatrix3x3(cut), CMatrix3x3(1.0, 2.0, 0.0, 0.0, 0.0, 0.0, 0)));
    EXPECT_TRUE(cut.fail());
    // The extractor leaves a matrix alone from the first failure on.
    CMatrix3x3 m(7.0, 7.0, 7.0, 7.0, 7.0, 7.0, 7);
    std::istringstream early("1 2 x 4 5 6 8");
    early >> m;
    EXPECT_TRUE(Same(m, CMatrix3x3(1.0, 2.0, 0.0, 7.0, 7.0, 7.0, 7)));
    std::istringstream wide("1 2 3 4 5 6 99999999999");
    wide >> m;
    EXPECT_TRUE(wide.fail());
    EXPECT_EQ(m.mKind, std::numeric_limits<std::int32_t>::max());
}

TEST(CMatrix3x3Stream, DoesNotReadBackWhatItWrote) {
    std::stringstream text;
    text << CMatrix3x3();
    CMatrix3x3 m;
    text >> m;
    EXPECT_TRUE(text.fail());
}

// The members of points and rectangles that take a matrix.

TEST(TPointTransform, GoesThroughTheMatrix) {
    CMatrix3x3 const m(2.0, 3.0, 5.0, 7.0, 11.0, 13.0, 0);
    DPoint p(1.0, 10.0);
    EXPECT_EQ(&p.Transform(m), &p);
    EXPECT_EQ(p, DPoint(63.0, 86.0));
}

TEST(TPointTransform, OfShortsTruncates) {
    SPoint p(3, -3);
    EXPECT_EQ(&p.Transform(CMatrix3x3().Scale(0.5)), &p);
    EXPECT_EQ(p, SPoint(1, -1));
    p.Set(3, 4);
    p.Transform(CMatrix3x3().Translate(0.6, -0.6));
    EXPECT_EQ(p, SPoint(3, 3));
    p.Set(20000, 1);
    p.Transform(CMatrix3x3().Scale(2.0));
    EXPECT_EQ(p, SPoint(-25536, 2));
    p.Set(1, 2);
    p.Transform(CMatrix3x3(kNaN, 0.0, 0.0, 1.0, 0.0, 0.0, 0));
    EXPECT_EQ(p, SPoint(0, 2));
}

TEST(TPointMap, MovesAsTheRectangleDoes) {
    DPoint p(6.0, 12.0);
    EXPECT_EQ(&p.Map(DRect(1.0, 2.0, 11.0, 22.0), DRect(100.0, 200.0, 120.0, 280.0)), &p);
    EXPECT_EQ(p, DPoint(110.0, 240.0));
    p.Set(6.0, 12.0);
    p.Map(DRect(1.0, 2.0, 1.0, 22.0), DRect(100.0, 200.0, 120.0, 280.0)); // flat source
    EXPECT_EQ(p, DPoint(6.0, 240.0));
    SPoint s(5, -3);
    EXPECT_EQ(&s.Map(SRect(0, 0, 10, 10), SRect(0, 0, 5, 15)), &s);
    EXPECT_EQ(s, SPoint(2, -4));
}

TEST(TPointMap, MayBeACornerOfARectangleItIsMappedBy) {
    DRect from(1.0, 2.0, 3.0, 4.0);
    DRect const to(10.0, 20.0, 30.0, 40.0);
    from.mCorners[0].Map(from, to);
    EXPECT_EQ(from, DRect(10.0, 20.0, 3.0, 4.0));
}

TEST(TRectMap, MovesBothCornersAndDoesNotRectify) {
    DRect r(0.0, 0.0, 5.0, 10.0);
    EXPECT_EQ(&r.Map(DRect(0.0, 0.0, 10.0, 10.0), DRect(20.0, 0.0, 0.0, 30.0)), &r);
    EXPECT_EQ(r, DRect(20.0, 0.0, 10.0, 30.0)); // left beyond right
    SRect s(1, 1, 3, 5);
    EXPECT_EQ(&s.Map(SRect(0, 0, 10, 10), SRect(0, 0, 15, 5)), &s);
    EXPECT_EQ(s, SRect(1, 0, 4, 2)); // 1.5, 0.5, 4.5, 2.5
    s.Set(1, 1, 3, 5);
    s.Map(SRect(-32768, 0, 32767, 1), SRect(0, 0, 1, 1)); // the width of 65535 does not wrap
    EXPECT_EQ(s, SRect(0, 1, 0, 5));
}

TEST(TRectMap, MayBeItsOwnSourceAndDestination) {
    DRect r(1.0, 2.0, 3.0, 4.0);
    r.Map(r, DRect(10.0, 20.0, 50.0, 80.0));
    EXPECT_EQ(r, DRect(10.0, 20.0, 50.0, 80.0));
    r.Map(DRect(0.0, 0.0, 10.0, 10.0), r);
    EXPECT_EQ(r, DRect(50.0, 140.0, 210.0, 500.0));
    SRect s(1, 2, 3, 4);
    s.Map(s, SRect(10, 20, 50, 80));
    EXPECT_EQ(s, SRect(10, 20, 50, 80));
}

TEST(TRectTransform, IsTheBoundsOfTheCorners) {
    DRect r(1.0, 1.0, 3.0, 2.0);
    EXPECT_EQ(&r.Transform(CMatrix3x3().Rotate(pi / 2.0)), &r);
    EXPECT_EQ(r, DRect(-2.0, 1.0, -1.0, 3.0));
    Random random(710);
    for (int i = 0; i < 500; ++i) {
        DRect const old(random.Point(10.0), random.Point(10.0));
        CMatrix3x3 const m = RandomMatrix(random);
        DRect moved = old;
        moved.Transform(m);
        DRect want;
        for (DPoint const& corner :
             {old.TopLeft(), old.TopRight(), old.BottomLeft(), old.BottomRight()}) {
            DPoint const p = Mapped(m, corner);
            want |= p;
            ASSERT_TRUE(moved.Contains(p));
        }
        ASSERT_EQ(moved, want);
    }
}

TEST(TRectTransform, ForgetsAFirstCornerAtTheOrigin) {
    CMatrix3x3 m;
    m.Translate(-1.0, -1.0).PostCat(CMatrix3x3(1.0, 1.0, 1.0, 2.0, 0.0, 0.0, 0));
    DRect r(1.0, 1.0, 2.0, 2.0);
    r.Transform(m); // corners (0,0), (1,1), (1,2), (2,3)
    EXPECT_EQ(r, DRect(1.0, 1.0, 2.0, 3.0));
    DRect plain(1.0, 1.0, 2.0, 2.0);
    plain.Transform(CMatrix3x3().Translate(-1.0, -1.0)); // here other corners reach it
    EXPECT_EQ(plain, DRect(0.0, 0.0, 1.0, 1.0));
    DRect last(-1.0, -1.0, 0.0, 0.0); // only the first corners are forgotten
    last.Transform(CMatrix3x3(1.0, 1.0, 1.0, 2.0, 0.0, 0.0, 0));
    EXPECT_EQ(last, DRect(-2.0, -3.0, 0.0, 0.0));
}

TEST(TRectTransform, OfShortsUnitesInDoubleAndTruncatesOnce) {
    SRect r(0, 0, 1, 1);
    CMatrix3x3 const m(1.0, 1.0, 1.0, 2.0, 0.5, 0.5, 0);
    EXPECT_EQ(&r.Transform(m), &r);
    // The first corner (0.5, 0.5) is not at the origin, though its truncation is.
    EXPECT_EQ(r, SRect(0, 0, 2, 3));
    SRect s(0, 0, 10, 10);
    s.Transform(CMatrix3x3().Scale(0.25));
    EXPECT_EQ(s, SRect(0, 0, 2, 2));
    SRect wide(0, 0, 20000, 10);
    wide.Transform(CMatrix3x3().Scale(2.0));
    EXPECT_EQ(wide, SRect(0, 0, -25536, 20));
}

} // namespace
