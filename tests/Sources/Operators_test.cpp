// SPDX-License-Identifier: MIT

#include "Operators.h"

#include <gtest/gtest.h>

/// An application's own operators, which the library's must not displace.
static TPoint<short> operator*(double /*s*/, TPoint<short> const& /*p*/) {
    return TPoint<short>(-1, -1);
}

namespace app {

template <class T> TRect<T> operator*(double /*s*/, TRect<T> const& /*r*/) {
    return TRect<T>(7, 7, 7, 7);
}

static TRect<double> Twice(TRect<double> const& r) { return 2.0 * r; }
static TPoint<double> Twice(TPoint<double> const& p) { return 2.0 * p; }

} // namespace app

namespace {

typedef TPoint<double> Pt;

TEST(Operators, NumberComesBeforeOrAfter) {
    EXPECT_EQ(2.0 * TRect<double>(1, 2, 3, 4), TRect<double>(2, 4, 6, 8));
    EXPECT_EQ(3 * TRect<short>(1, 2, 3, 4), TRect<short>(3, 6, 9, 12));
    CBezier const curve(Pt(0, 0), Pt(1, 0), Pt(2, 1), Pt(2, 2));
    EXPECT_EQ(2 * curve, curve * 2.0);
}

TEST(Operators, OperatorOfAnApplicationGoesFirst) {
    EXPECT_EQ(2.0 * TPoint<short>(5, 5), TPoint<short>(-1, -1));
    EXPECT_EQ(app::Twice(TRect<double>(1, 2, 3, 4)), TRect<double>(7, 7, 7, 7));
    EXPECT_EQ(app::Twice(Pt(1, 2)), Pt(2, 4)) << "found from another namespace";
}

TEST(Operators, MatrixMapsWhatStandsBeforeIt) {
    CMatrix3x3 const m = CMatrix3x3().Scale(2, 3).Translate(1, 0);
    EXPECT_EQ(Pt(1, 1) * m, Pt(3, 3));
    EXPECT_EQ(TPoint<short>(1, 1) * m, TPoint<short>(3, 3));
    EXPECT_EQ(TLine<double>(Pt(0, 0), Pt(1, 1)) * m, TLine<double>(Pt(1, 0), Pt(3, 3)));
    CBezier const curve(Pt(0, 0), Pt(1, 0), Pt(1, 1), Pt(2, 2));
    EXPECT_EQ(curve * m, CBezier(Pt(1, 0), Pt(3, 0), Pt(3, 3), Pt(5, 6)));
}

TEST(Operators, MatricesApplyFromTheLeft) {
    CMatrix3x3 const a = CMatrix3x3().Translate(1, 0);
    CMatrix3x3 const b = CMatrix3x3().Scale(10, 10);
    EXPECT_EQ(Pt(1, 1) * a * b, Pt(20, 10));
    EXPECT_EQ(Pt(1, 1) * (a * b), Pt(20, 10));
}

TEST(Operators, ConstantExpressionsCompute) {
    constexpr CBezier curve(Pt(0, 0), Pt(0, 1), Pt(1, 1), Pt(1, 0));
    static_assert(curve.TPt(0.5) == Pt(0.5, 0.75));
    constexpr TRect<double> rect(0, 0, 3, 4);
    static_assert(rect.Width() == 3.0 && rect.Contains(Pt(3, 4)) && !rect.Empty());
    constexpr CMatrix3x3 m(2, 0, 0, 3, 1, 0, 0);
    static_assert(m.Determinant() == 6.0 && !m.IsSingular());
    constexpr TLine<double> line(Pt(0, 0), Pt(2, 4));
    static_assert(line.MidPt() == Pt(1, 2));
    EXPECT_EQ(line.TPt(1.0), Pt(2, 4));
}

} // namespace
