// SPDX-License-Identifier: MIT

#include "TRect.h"

#include "Log.h"
#include "Records.h"
#include "RectSupport.h"
#include "TPoint.h"
#include "TestSupport.h"
#include "UHygiene.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

namespace {

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::Random;
using trammel_test::RandomRect;
using trammel_test::RandomShortRect;
using trammel_test::SameBits;
using trammel_test::SameFields;

using DPoint = TPoint<double>;
using SPoint = TPoint<short>;
using DRect = TRect<double>;
using SRect = TRect<short>;
constexpr auto kNoSuchCorner = static_cast<PointSelector>(7);

TEST(TRectLayout, IsTopLeftBottomRight) {
    EXPECT_EQ(sizeof(DRect), 32U);
    EXPECT_EQ(offsetof(DRect, top), 0U);
    EXPECT_EQ(offsetof(DRect, left), 8U);
    EXPECT_EQ(offsetof(DRect, bottom), 16U);
    EXPECT_EQ(offsetof(DRect, right), 24U);
    EXPECT_EQ(sizeof(SRect), sizeof(Rect));
    EXPECT_EQ(offsetof(SRect, top), 0U);
    EXPECT_EQ(offsetof(SRect, left), 2U);
    EXPECT_EQ(offsetof(SRect, bottom), 4U);
    EXPECT_EQ(offsetof(SRect, right), 6U);
    EXPECT_FALSE(std::is_polymorphic_v<DRect>);
    EXPECT_TRUE((std::is_same_v<std::underlying_type_t<PointSelector>, std::int32_t>));
    EXPECT_EQ(kTopLeft, 0);
    EXPECT_EQ(kBottomRight, 1);
}

TEST(TRect, StartsNull) {
    DRect const d;
    EXPECT_TRUE(SameFields(d, DRect(0.0, 0.0, 0.0, 0.0)));
    EXPECT_TRUE(d.Null());
    EXPECT_TRUE(SRect().Null());
}

TEST(TRect, FourValuesAreLeftTopRightBottomAndStayAsGiven) {
    DRect const d(10.0, 20.0, 1.0, 2.0);
    EXPECT_EQ(d.left, 10.0);
    EXPECT_EQ(d.top, 20.0);
    EXPECT_EQ(d.right, 1.0);
    EXPECT_EQ(d.bottom, 2.0);
    SRect s(10, 20, 1, 2);
    EXPECT_EQ(s.left, 10);
    EXPECT_EQ(s.top, 20);
    EXPECT_EQ(s.right, 1);
    EXPECT_EQ(s.bottom, 2);
    s.Set(-1, -2, -3, -4);
    EXPECT_EQ(s, SRect(-1, -2, -3, -4));
    DRect e;
    e.Set(4.0, 3.0, 2.0, 1.0);
    EXPECT_EQ(e, DRect(4.0, 3.0, 2.0, 1.0));
    e.SetNull();
    EXPECT_TRUE(e.Null());
    s.SetNull();
    EXPECT_TRUE(s.Null());
}

TEST(TRect, SetFlagsChangesNothing) {
    DRect r(1.0, 2.0, 3.0, 4.0);
    r.SetFlags();
    EXPECT_EQ(r, DRect(1.0, 2.0, 3.0, 4.0));
    SRect s(1, 2, 3, 4);
    s.SetFlags();
    EXPECT_EQ(s, SRect(1, 2, 3, 4));
}

TEST(TRect, FromTwoPointsIsRectified) {
    EXPECT_EQ(DRect(DPoint(5.0, 1.0), DPoint(2.0, 7.0)), DRect(2.0, 1.0, 5.0, 7.0));
    EXPECT_EQ(SRect(SPoint(2, 7), SPoint(5, 1)), SRect(2, 1, 5, 7));
    DRect r;
    r.Set(DPoint(5.0, 7.0), DPoint(2.0, 1.0));
    EXPECT_EQ(r, DRect(2.0, 1.0, 5.0, 7.0));
    SRect s;
    s.Set(SPoint(5, 7), SPoint(2, 1));
    EXPECT_EQ(s, SRect(2, 1, 5, 7));
}

TEST(TRect, FromCentreAndHalfSizesIsRectified) {
    EXPECT_EQ(DRect(DPoint(10.0, 20.0), 3.0, 4.0), DRect(7.0, 16.0, 13.0, 24.0));
    EXPECT_EQ(DRect(DPoint(10.0, 20.0), -3.0, -4.0), DRect(7.0, 16.0, 13.0, 24.0));
    DRect r;
    r.Set(DPoint(10.0, 20.0), 3.0, -4.0);
    EXPECT_EQ(r, DRect(7.0, 16.0, 13.0, 24.0));
    EXPECT_EQ(SRect(SPoint(10, 20), 3, -4), SRect(7, 16, 13, 24));
    SRect s;
    s.Set(SPoint(10, 20), -3, 4);
    EXPECT_EQ(s, SRect(7, 16, 13, 24));
    // 32768 wraps to -32768 and is then the smaller edge.
    s.Set(SPoint(32767, 0), 1, 1);
    EXPECT_EQ(s, SRect(-32768, -1, 32766, 1));
}

TEST(TRect, OfThreePointsIsTheirBounds) {
    DRect r;
    r.Set(DPoint(5.0, 1.0), DPoint(2.0, 7.0), DPoint(9.0, -3.0));
    EXPECT_EQ(r, DRect(2.0, -3.0, 9.0, 7.0));
    r.Set(DPoint(5.0, 1.0), DPoint(2.0, 7.0), DPoint(3.0, 3.0));
    EXPECT_EQ(r, DRect(2.0, 1.0, 5.0, 7.0));
    SRect s;
    s.Set(SPoint(5, 1), SPoint(2, 7), SPoint(-9, 30));
    EXPECT_EQ(s, SRect(-9, 1, 5, 30));
    // Two points at the origin make the null rectangle, which the third replaces.
    r.Set(DPoint(), DPoint(), DPoint(3.0, 4.0));
    EXPECT_EQ(r, DRect(3.0, 4.0, 3.0, 4.0));
}

TEST(TRect, RectifySwapsWhatIsOutOfOrder) {
    DRect r(10.0, 20.0, 1.0, 2.0);
    EXPECT_EQ(&r.Rectify(), &r);
    EXPECT_EQ(r, DRect(1.0, 2.0, 10.0, 20.0));
    r.Rectify();
    EXPECT_EQ(r, DRect(1.0, 2.0, 10.0, 20.0));
    SRect s(3, 9, 5, 4);
    s.Rectify();
    EXPECT_EQ(s, SRect(3, 4, 5, 9));
    s.Set(5, 4, 3, 9);
    s.Rectify();
    EXPECT_EQ(s, SRect(3, 4, 5, 9));
    DRect nan(kNaN, 5.0, 1.0, 2.0);
    nan.Rectify();
    EXPECT_TRUE(SameFields(nan, DRect(kNaN, 2.0, 1.0, 5.0)));
    DRect zeros(0.0, 0.0, -0.0, -0.0); // equal: stay in place
    zeros.Rectify();
    EXPECT_TRUE(SameFields(zeros, DRect(0.0, 0.0, -0.0, -0.0)));
}

TEST(TRect, NullMeansAllFourFieldsZero) {
    EXPECT_TRUE(DRect(-0.0, 0.0, -0.0, 0.0).Null());
    EXPECT_FALSE(DRect(5e-324, 0.0, 0.0, 0.0).Null());
    EXPECT_FALSE(DRect(0.0, 1.0, 0.0, 0.0).Null());
    EXPECT_FALSE(DRect(0.0, 0.0, -1.0, 0.0).Null());
    EXPECT_FALSE(DRect(0.0, 0.0, 0.0, kNaN).Null());
    EXPECT_FALSE(SRect(0, 0, 0, 1).Null());
    EXPECT_FALSE(SRect(1, 0, 0, 0).Null());
}

TEST(TRect, ValidMeansInOrder) {
    EXPECT_TRUE(DRect().Valid());
    EXPECT_TRUE(DRect(1.0, 2.0, 3.0, 4.0).Valid());
    EXPECT_TRUE(DRect(1.0, 2.0, 1.0, 2.0).Valid());
    EXPECT_FALSE(DRect(3.0, 2.0, 1.0, 4.0).Valid());
    EXPECT_FALSE(DRect(1.0, 4.0, 3.0, 2.0).Valid());
    EXPECT_FALSE(DRect(kNaN, 0.0, 1.0, 1.0).Valid());
    EXPECT_FALSE(DRect(0.0, 0.0, 1.0, kNaN).Valid());
    EXPECT_TRUE(SRect(-1, -1, -1, 0).Valid());
    EXPECT_FALSE(SRect(0, 0, -1, 0).Valid());
    EXPECT_FALSE(SRect(0, 0, 0, -1).Valid());
}

TEST(TRect, EmptyMeansWithoutArea) {
    EXPECT_TRUE(DRect().Empty());
    EXPECT_TRUE(DRect(0.0, 0.0, 0.0, 5.0).Empty());
    EXPECT_TRUE(DRect(0.0, 0.0, 0.0, 5.0).Valid());
    EXPECT_TRUE(DRect(0.0, 0.0, 5.0, 0.0).Empty());
    EXPECT_TRUE(DRect(3.0, 0.0, 1.0, 5.0).Empty());
    EXPECT_TRUE(DRect(0.0, 3.0, 5.0, 1.0).Empty());
    EXPECT_FALSE(DRect(0.0, 0.0, 5e-324, 5e-324).Empty());
    EXPECT_FALSE(DRect(kNaN, kNaN, kNaN, kNaN).Empty());
    EXPECT_FALSE(DRect(kNaN, 0.0, 1.0, 1.0).Empty());
    EXPECT_TRUE(DRect(kNaN, 1.0, 1.0, 1.0).Empty()); // the other direction still decides
    EXPECT_TRUE(SRect(0, 0, 0, 5).Empty());
    EXPECT_TRUE(SRect(2, 0, 1, 5).Empty());
    EXPECT_FALSE(SRect(0, 0, 1, 1).Empty());
}

TEST(TRect, MeasuresItself) {
    DRect const d(1.0, 2.0, 4.0, 8.0);
    EXPECT_EQ(d.Width(), 3.0);
    EXPECT_EQ(d.Height(), 6.0);
    EXPECT_EQ(d.GetSize(), DPoint(3.0, 6.0));
    EXPECT_EQ(DRect(4.0, 8.0, 1.0, 2.0).GetSize(), DPoint(-3.0, -6.0));
    SRect const s(1, 2, 4, 8);
    EXPECT_EQ(s.Width(), 3);
    EXPECT_EQ(s.Height(), 6);
    EXPECT_EQ(s.GetSize(), SPoint(3, 6));
    SRect const widest(-32768, -32768, 32767, 32766);
    EXPECT_EQ(widest.Width(), -1);
    EXPECT_EQ(widest.Height(), -2);
    EXPECT_EQ(widest.GetSize(), SPoint(-1, -2));
    EXPECT_TRUE((std::is_same_v<decltype(s.Width()), short>));
}

TEST(TRect, MidPtIsComputedInDouble) {
    EXPECT_EQ(DRect(1.0, 2.0, 4.0, 8.0).MidPt(), DPoint(2.5, 5.0));
    EXPECT_EQ(SRect(1, 2, 4, 9).MidPt(), DPoint(2.5, 5.5));
    EXPECT_EQ(SRect(32767, -32768, 32767, -32768).MidPt(), DPoint(32767.0, -32768.0));
    EXPECT_EQ(SRect(32767, 32767, 32766, -32768).MidPt(), DPoint(32766.5, -0.5));
    EXPECT_EQ(DRect(1e308, 0.0, 1e308, 0.0).MidPt().h, kInf);
    Random random(501);
    for (int i = 0; i < 1000; ++i) {
        DRect const r = RandomRect(random);
        ASSERT_TRUE(
            SameBits(r.MidPt(), DPoint((r.left + r.right) / 2.0, (r.top + r.bottom) / 2.0)));
    }
}

TEST(TRect, HandsOutItsFourCorners) {
    DRect const d(1.0, 2.0, 3.0, 4.0);
    EXPECT_EQ(d.TopLeft(), DPoint(1.0, 2.0));
    EXPECT_EQ(d.TopRight(), DPoint(3.0, 2.0));
    EXPECT_EQ(d.BottomLeft(), DPoint(1.0, 4.0));
    EXPECT_EQ(d.BottomRight(), DPoint(3.0, 4.0));
    SRect const s(1, 2, 3, 4);
    EXPECT_EQ(s.TopLeft(), SPoint(1, 2));
    EXPECT_EQ(s.TopRight(), SPoint(3, 2));
    EXPECT_EQ(s.BottomLeft(), SPoint(1, 4));
    EXPECT_EQ(s.BottomRight(), SPoint(3, 4));
}

TEST(TRectCorner, IsSelectedByNumber) {
    DRect const d(1.0, 2.0, 3.0, 4.0);
    EXPECT_EQ(d[kTopLeft], DPoint(1.0, 2.0));
    EXPECT_EQ(d[kBottomRight], DPoint(3.0, 4.0));
    EXPECT_EQ(d[kNoSuchCorner], DPoint(1.0, 2.0));
    EXPECT_EQ(d[static_cast<PointSelector>(-1)], DPoint(1.0, 2.0));
    EXPECT_EQ(d[static_cast<PointSelector>(2)], DPoint(1.0, 2.0));
    SRect const s(1, 2, 3, 4);
    EXPECT_EQ(s[kTopLeft], SPoint(1, 2));
    EXPECT_EQ(s[kBottomRight], SPoint(3, 4));
    EXPECT_EQ(s[kNoSuchCorner], SPoint(1, 2));
}

TEST(TRectCorner, LiesInTheRectangle) {
    DRect const d;
    EXPECT_EQ(static_cast<void const*>(&d[kTopLeft]), static_cast<void const*>(&d.top));
    EXPECT_EQ(static_cast<void const*>(&d[kBottomRight]), static_cast<void const*>(&d.bottom));
    EXPECT_TRUE((std::is_same_v<decltype(d[kTopLeft]), DPoint const&>));
}

// An optimiser that takes field and corner for different objects would keep the value read first.

[[gnu::noinline]] double ReadWriteRead(DRect& r, DPoint const& topLeft, DPoint const& bottomRight) {
    double const before = topLeft.h + 2.0 * topLeft.v + 4.0 * bottomRight.h + 8.0 * bottomRight.v;
    r.left += 1.0;
    r.top += 10.0;
    r.right += 100.0;
    r.bottom += 1000.0;
    return topLeft.h + 2.0 * topLeft.v + 4.0 * bottomRight.h + 8.0 * bottomRight.v - before;
}

[[gnu::noinline]] int ReadWriteRead(SRect& r, SPoint const& topLeft, SPoint const& bottomRight) {
    int const before = topLeft.h + 2 * topLeft.v + 4 * bottomRight.h + 8 * bottomRight.v;
    r.left = static_cast<short>(r.left + 1);
    r.top = static_cast<short>(r.top + 10);
    r.right = static_cast<short>(r.right + 100);
    r.bottom = static_cast<short>(r.bottom + 1000);
    return topLeft.h + 2 * topLeft.v + 4 * bottomRight.h + 8 * bottomRight.v - before;
}

TEST(TRectCorner, SeesWritesToTheFields) {
    DRect d(1.0, 2.0, 3.0, 4.0);
    EXPECT_EQ(ReadWriteRead(d, d[kTopLeft], d[kBottomRight]), 1.0 + 20.0 + 400.0 + 8000.0);
    SRect s(1, 2, 3, 4);
    EXPECT_EQ(ReadWriteRead(s, s[kTopLeft], s[kBottomRight]), 1 + 20 + 400 + 8000);

    DRect local(1.0, 2.0, 3.0, 4.0);
    DPoint const& corner = local[kBottomRight];
    EXPECT_EQ(corner, DPoint(3.0, 4.0));
    local.right = 30.0;
    EXPECT_EQ(corner.h, 30.0);
    local.Set(5.0, 6.0, 7.0, 8.0);
    EXPECT_EQ(corner, DPoint(7.0, 8.0));
    local *= 2.0;
    EXPECT_EQ(corner, DPoint(14.0, 16.0));
    local = DRect(0.0, 0.0, -1.0, -2.0);
    EXPECT_EQ(corner, DPoint(-1.0, -2.0));
    local |= DPoint(9.0, 9.0);
    EXPECT_EQ(corner, DPoint(9.0, 9.0));
}

TEST(TRectContains, PointsOnAllFourEdges) {
    DRect const r(1.0, 2.0, 3.0, 4.0);
    for (double const h : {1.0, 2.0, 3.0}) {
        for (double const v : {2.0, 3.0, 4.0}) {
            EXPECT_TRUE(r.Contains(DPoint(h, v))) << h << " " << v;
        }
    }
    EXPECT_FALSE(r.Contains(DPoint(std::nextafter(1.0, 0.0), 3.0)));
    EXPECT_FALSE(r.Contains(DPoint(std::nextafter(3.0, 4.0), 3.0)));
    EXPECT_FALSE(r.Contains(DPoint(2.0, std::nextafter(2.0, 0.0))));
    EXPECT_FALSE(r.Contains(DPoint(2.0, std::nextafter(4.0, 5.0))));
    EXPECT_FALSE(r.Contains(DPoint(kNaN, 3.0)));
    EXPECT_FALSE(r.Contains(DPoint(2.0, kNaN)));
    SRect const s(1, 2, 3, 4);
    EXPECT_TRUE(s.Contains(SPoint(1, 2)));
    EXPECT_TRUE(s.Contains(SPoint(3, 4)));
    EXPECT_FALSE(s.Contains(SPoint(0, 2)));
    EXPECT_FALSE(s.Contains(SPoint(4, 2)));
    EXPECT_FALSE(s.Contains(SPoint(1, 1)));
    EXPECT_FALSE(s.Contains(SPoint(1, 5)));
}

TEST(TRectContains, NothingWhenOutOfOrderOrNaN) {
    EXPECT_FALSE(DRect(3.0, 2.0, 1.0, 4.0).Contains(DPoint(2.0, 3.0)));
    EXPECT_FALSE(DRect(1.0, 4.0, 3.0, 2.0).Contains(DPoint(2.0, 3.0)));
    EXPECT_FALSE(DRect(kNaN, 2.0, 3.0, 4.0).Contains(DPoint(2.0, 3.0)));
    EXPECT_FALSE(DRect(1.0, 2.0, 3.0, kNaN).Contains(DPoint(2.0, 3.0)));
    EXPECT_TRUE(DRect(-kInf, -kInf, kInf, kInf).Contains(DPoint(1e308, kInf)));
    EXPECT_TRUE(DRect().Contains(DPoint())); // the null rectangle is the point at the origin here
}

TEST(TRectContains, RectanglesByTheirStoredCorners) {
    DRect const r(0.0, 0.0, 10.0, 10.0);
    EXPECT_TRUE(r.Contains(DRect(0.0, 0.0, 10.0, 10.0)));
    EXPECT_TRUE(r.Contains(DRect(2.0, 2.0, 3.0, 3.0)));
    EXPECT_TRUE(r.Contains(DRect(3.0, 3.0, 2.0, 2.0))); // out of order: the corners still lie in
    EXPECT_FALSE(r.Contains(DRect(2.0, 2.0, 11.0, 3.0)));
    EXPECT_FALSE(r.Contains(DRect(-1.0, 2.0, 3.0, 3.0)));
    EXPECT_FALSE(r.Contains(DRect(2.0, 2.0, 3.0, kNaN)));
    EXPECT_TRUE(SRect(0, 0, 10, 10).Contains(SRect(10, 10, 0, 0)));
    EXPECT_FALSE(SRect(0, 0, 10, 10).Contains(SRect(5, 5, 5, 11)));
}

TEST(TRect, EqualityComparesAllFourFields) {
    DRect const r(1.0, 2.0, 3.0, 4.0);
    EXPECT_TRUE(r == DRect(1.0, 2.0, 3.0, 4.0));
    EXPECT_FALSE(r != DRect(1.0, 2.0, 3.0, 4.0));
    EXPECT_FALSE(r == DRect(0.0, 2.0, 3.0, 4.0));
    EXPECT_FALSE(r == DRect(1.0, 0.0, 3.0, 4.0));
    EXPECT_FALSE(r == DRect(1.0, 2.0, 0.0, 4.0));
    EXPECT_FALSE(r == DRect(1.0, 2.0, 3.0, 0.0));
    EXPECT_TRUE(r != DRect(1.0, 2.0, 3.0, 0.0));
    EXPECT_TRUE(DRect() == DRect(-0.0, -0.0, -0.0, -0.0));
    DRect const nan(1.0, 2.0, 3.0, kNaN);
    EXPECT_FALSE(nan == nan); // NOLINT(misc-redundant-expression)
    EXPECT_TRUE(nan != nan);  // NOLINT(misc-redundant-expression)
    EXPECT_TRUE(SRect(1, 2, 3, 4) == SRect(1, 2, 3, 4));
    EXPECT_TRUE(SRect(1, 2, 3, 4) != SRect(1, 2, 3, 5));
    EXPECT_FALSE(SRect(1, 2, 3, 4) == SRect(4, 3, 2, 1));
}

TEST(TRectDouble, MovesAndScales) {
    DRect const r(1.0, 2.0, 3.0, 4.0);
    EXPECT_EQ(r + DPoint(10.0, 20.0), DRect(11.0, 22.0, 13.0, 24.0));
    EXPECT_EQ(r - DPoint(10.0, 20.0), DRect(-9.0, -18.0, -7.0, -16.0));
    EXPECT_EQ(r * 2.0, DRect(2.0, 4.0, 6.0, 8.0));
    EXPECT_EQ(r / 2.0, DRect(0.5, 1.0, 1.5, 2.0));
    EXPECT_EQ(r, DRect(1.0, 2.0, 3.0, 4.0));
    DRect s = r;
    EXPECT_EQ(&(s += DPoint(1.0, 1.0)), &s);
    EXPECT_EQ(s, DRect(2.0, 3.0, 4.0, 5.0));
    EXPECT_EQ(&(s -= DPoint(1.0, 1.0)), &s);
    EXPECT_EQ(&(s *= 3.0), &s);
    EXPECT_EQ(s, DRect(3.0, 6.0, 9.0, 12.0));
    EXPECT_EQ(&(s /= 3.0), &s);
    EXPECT_EQ(&(s *= DPoint(2.0, -1.0)), &s);
    EXPECT_EQ(s, DRect(2.0, -2.0, 6.0, -4.0));
    EXPECT_EQ(&s.Scale(0.5), &s);
    EXPECT_EQ(s, DRect(1.0, -1.0, 3.0, -2.0));
    EXPECT_EQ(&s.Scale(1.5, 2.5), &s);
    EXPECT_EQ(s, DRect(1.5, -2.5, 4.5, -5.0));
    EXPECT_EQ(&s.Offset(1.0, 2.0), &s);
    EXPECT_EQ(s, DRect(2.5, -0.5, 5.5, -3.0));
    EXPECT_EQ(&s.Offset(DPoint(-2.5, 0.5)), &s);
    EXPECT_EQ(s, DRect(0.0, 0.0, 3.0, -2.5));
    DRect const divided = r / 0.0;
    EXPECT_EQ(divided, DRect(kInf, kInf, kInf, kInf));
}

TEST(TRectShort, MovesWithWrap) {
    SRect r(1, 2, 32767, 4);
    EXPECT_EQ(r + SPoint(1, -3), SRect(2, -1, -32768, 1));
    EXPECT_EQ(&(r += SPoint(1, -3)), &r);
    EXPECT_EQ(&(r -= SPoint(1, -3)), &r);
    EXPECT_EQ(r, SRect(1, 2, 32767, 4));
    EXPECT_EQ(SRect(-32768, 0, 0, 0) - SPoint(1, 0), SRect(32767, 0, -1, 0));
    EXPECT_EQ(&r.Offset(1, 1), &r);
    EXPECT_EQ(r, SRect(2, 3, -32768, 5));
    r.Offset(SPoint(-1, -1));
    EXPECT_EQ(r, SRect(1, 2, 32767, 4));
    // Every short passes through double unchanged.
    SRect s(0, 0, 0, 0);
    s.Offset(-32768, 32767);
    EXPECT_EQ(s, SRect(-32768, 32767, -32768, 32767));
}

TEST(TRectShort, ScalesInDoubleAndTruncates) {
    EXPECT_EQ(SRect(1, -1, 3, -3) * 1.5, SRect(1, -1, 4, -4));
    EXPECT_EQ(SRect(1, -1, 3, -3) / 2.0, SRect(0, 0, 1, -1));
    EXPECT_EQ(SRect(20000, 0, 1, 1) * 2.0, SRect(-25536, 0, 2, 2));
    EXPECT_EQ(SRect(1, -1, 3, -3) / 0.0, SRect(0, 0, 0, 0));
    EXPECT_EQ(SRect(1, -1, 3, -3) * kNaN, SRect(0, 0, 0, 0));
    SRect r(0, 0, 10, 10);
    EXPECT_EQ(&(r *= 1.5), &r);
    EXPECT_EQ(r, SRect(0, 0, 15, 15));
    EXPECT_EQ(&(r /= 4.0), &r);
    EXPECT_EQ(r, SRect(0, 0, 3, 3));
    r.Set(0, 0, 10, 10);
    EXPECT_EQ(&r.Scale(1.5), &r);
    EXPECT_EQ(r, SRect(0, 0, 15, 15));
}

TEST(TRectShort, ScaleByTwoFactorsTruncatesTheFactors) {
    SRect r(0, 0, 10, 10);
    EXPECT_EQ(&r.Scale(1.5, 1.5), &r);
    EXPECT_EQ(r, SRect(0, 0, 10, 10));
    r.Set(1, 2, 3, 4);
    r.Scale(1.5, 2.7);
    EXPECT_EQ(r, SRect(1, 4, 3, 8));
    r.Scale(-2.9, 0.9);
    EXPECT_EQ(r, SRect(-2, 0, -6, 0));
    r.Set(300, 1, 3, 4);
    r.Scale(300.0, -1.0);
    EXPECT_EQ(r, SRect(24464, -1, 900, -4));
}

TEST(TRectShort, MultipliesByAPointInIntegers) {
    SRect r(1, 2, 3, 4);
    EXPECT_EQ(&(r *= SPoint(-3, 5)), &r);
    EXPECT_EQ(r, SRect(-3, 10, -9, 20));
    r *= SPoint(16384, 1);
    EXPECT_EQ(r, SRect(16384, 10, -16384, 20)); // -49152 and -147456 wrapped
}

TEST(TRect, InsetsAndOutsets) {
    DRect d(0.0, 0.0, 10.0, 20.0);
    EXPECT_EQ(&d.Inset(1.0, 2.0), &d);
    EXPECT_EQ(d, DRect(1.0, 2.0, 9.0, 18.0));
    EXPECT_EQ(&d.Inset(0.5), &d);
    EXPECT_EQ(d, DRect(1.5, 2.5, 8.5, 17.5));
    EXPECT_EQ(&d.Inset(DPoint(0.5, 1.5)), &d);
    EXPECT_EQ(d, DRect(2.0, 4.0, 8.0, 16.0));
    EXPECT_EQ(&d.Outset(2.0, 4.0), &d);
    EXPECT_EQ(d, DRect(0.0, 0.0, 10.0, 20.0));
    EXPECT_EQ(&d.Outset(1.0), &d);
    EXPECT_EQ(d, DRect(-1.0, -1.0, 11.0, 21.0));
    d.Inset(100.0); // inside out, and left so
    EXPECT_EQ(d, DRect(99.0, 99.0, -89.0, -79.0));
    SRect s(0, 0, 10, 20);
    EXPECT_EQ(&s.Inset(1, 2), &s);
    EXPECT_EQ(s, SRect(1, 2, 9, 18));
    EXPECT_EQ(&s.Inset(1), &s);
    EXPECT_EQ(&s.Inset(SPoint(1, 2)), &s);
    EXPECT_EQ(s, SRect(3, 5, 7, 15));
    EXPECT_EQ(&s.Outset(3, 5), &s);
    EXPECT_EQ(&s.Outset(1), &s);
    EXPECT_EQ(s, SRect(-1, -1, 11, 21));
    s.Set(-32768, 0, 32767, 1);
    s.Outset(1, 0);
    EXPECT_EQ(s, SRect(32767, 0, -32768, 1));
}

TEST(TRect, UnionWithNullRectangleTakesTheOther) {
    DRect const r(1.0, 2.0, 3.0, 4.0);
    EXPECT_EQ(DRect(0.0, 0.0, 0.0, 0.0) | r, r);
    EXPECT_EQ(r | DRect(), r);
    EXPECT_TRUE((DRect() | DRect()).Null());
    DRect const inverted(3.0, 4.0, 1.0, 2.0); // taken as it is
    EXPECT_EQ(DRect() | inverted, inverted);
    EXPECT_EQ(inverted | DRect(), inverted);
    EXPECT_TRUE(SameFields(DRect() | DRect(kNaN, 1.0, 2.0, 3.0), DRect(kNaN, 1.0, 2.0, 3.0)));
    EXPECT_EQ(SRect() | SRect(1, 2, 3, 4), SRect(1, 2, 3, 4));
    EXPECT_EQ(SRect(1, 2, 3, 4) | SRect(), SRect(1, 2, 3, 4));
}

TEST(TRect, UnionReachesAroundBoth) {
    EXPECT_EQ(DRect(0.0, 0.0, 5.0, 5.0) | DRect(3.0, -2.0, 9.0, 4.0), DRect(0.0, -2.0, 9.0, 5.0));
    EXPECT_EQ(SRect(0, 0, 5, 5) | SRect(3, -2, 9, 4), SRect(0, -2, 9, 5));
    // Neither operand is put in order first.
    EXPECT_EQ(DRect(5.0, 5.0, 0.0, 0.0) | DRect(2.0, 2.0, 3.0, 3.0), DRect(2.0, 2.0, 3.0, 3.0));
    DRect r(0.0, 0.0, 5.0, 5.0);
    EXPECT_EQ(&(r |= DRect(3.0, -2.0, 9.0, 4.0)), &r);
    EXPECT_EQ(r, DRect(0.0, -2.0, 9.0, 5.0));
}

TEST(TRect, UnionKeepsItsOwnValueOnTiesAndNaN) {
    EXPECT_TRUE(SameFields(DRect(0.0, 0.0, 1.0, -0.0) | DRect(-0.0, -0.0, 1.0, 0.0),
                           DRect(0.0, 0.0, 1.0, -0.0)));
    EXPECT_EQ(DRect(1.0, 2.0, 3.0, 4.0) | DRect(kNaN, kNaN, kNaN, kNaN), DRect(1.0, 2.0, 3.0, 4.0));
    EXPECT_TRUE(SameFields(DRect(kNaN, 2.0, 3.0, kNaN) | DRect(0.0, 0.0, 9.0, 9.0),
                           DRect(kNaN, 0.0, 9.0, kNaN)));
}

TEST(TRect, UnionWithAPointGrowsToIt) {
    DRect r(0.0, 0.0, 5.0, 5.0);
    EXPECT_EQ(&(r |= DPoint(7.0, -1.0)), &r);
    EXPECT_EQ(r, DRect(0.0, -1.0, 7.0, 5.0));
    r |= DPoint(3.0, 3.0);
    EXPECT_EQ(r, DRect(0.0, -1.0, 7.0, 5.0));
    r |= DPoint(-2.0, 8.0);
    EXPECT_EQ(r, DRect(-2.0, -1.0, 7.0, 8.0));
    r |= DPoint(kNaN, 9.0);
    EXPECT_EQ(r, DRect(-2.0, -1.0, 7.0, 9.0));
    r |= DPoint(8.0, kNaN);
    EXPECT_EQ(r, DRect(-2.0, -1.0, 8.0, 9.0));
    DRect ties(0.0, -0.0, -0.0, 0.0); // null: taken over as it is
    ties |= DPoint(-0.0, 1.0);
    EXPECT_TRUE(SameFields(ties, DRect(-0.0, 1.0, -0.0, 1.0)));
    ties |= DPoint(0.0, 1.0); // a tie keeps the zero that is there
    EXPECT_TRUE(SameFields(ties, DRect(-0.0, 1.0, -0.0, 1.0)));
    EXPECT_EQ(SRect(0, 0, 5, 5) | SPoint(-7, 9), SRect(-7, 0, 5, 9));
    EXPECT_EQ(DRect(0.0, 0.0, 5.0, 5.0) | DPoint(6.0, 6.0), DRect(0.0, 0.0, 6.0, 6.0));
}

TEST(TRect, UnionOfANullRectangleWithAPointStartsThere) {
    DRect r;
    r |= DPoint(0.0, 0.0);
    EXPECT_TRUE(r.Null());
    r |= DPoint(3.0, 4.0); // the origin is forgotten
    EXPECT_EQ(r, DRect(3.0, 4.0, 3.0, 4.0));
    r |= DPoint(0.0, 0.0);
    EXPECT_EQ(r, DRect(0.0, 0.0, 3.0, 4.0));
    SRect s;
    s |= SPoint(3, 4);
    EXPECT_EQ(s, SRect(3, 4, 3, 4));
    DRect nan;
    nan |= DPoint(kNaN, 1.0);
    EXPECT_TRUE(SameFields(nan, DRect(kNaN, 1.0, kNaN, 1.0)));
}

TEST(TRect, IntersectionTakesANullOperandForNoConstraint) {
    DRect const r(1.0, 2.0, 3.0, 4.0);
    EXPECT_EQ(r & DRect(), r);
    EXPECT_EQ(DRect() & r, r);
    EXPECT_TRUE((DRect() & DRect()).Null());
    DRect const inverted(3.0, 4.0, 1.0, 2.0);
    EXPECT_EQ(DRect() & inverted, inverted); // taken as it is, though not valid
    EXPECT_EQ(inverted & DRect(), inverted);
    EXPECT_EQ(SRect(1, 2, 3, 4) & SRect(), SRect(1, 2, 3, 4));
    EXPECT_EQ(SRect() & SRect(1, 2, 3, 4), SRect(1, 2, 3, 4));
}

TEST(TRect, IntersectionIsTheCommonPartOrNull) {
    EXPECT_EQ(DRect(0.0, 0.0, 10.0, 10.0) & DRect(5.0, -5.0, 20.0, 5.0),
              DRect(5.0, 0.0, 10.0, 5.0));
    EXPECT_TRUE((DRect(0.0, 0.0, 10.0, 10.0) & DRect(20.0, 20.0, 30.0, 30.0)).Null());
    EXPECT_TRUE((DRect(0.0, 0.0, 10.0, 10.0) & DRect(2.0, 20.0, 3.0, 30.0)).Null());
    EXPECT_EQ(DRect(0.0, 0.0, 10.0, 10.0) & DRect(10.0, 0.0, 20.0, 10.0),
              DRect(10.0, 0.0, 10.0, 10.0)); // touching: degenerate, not null
    EXPECT_TRUE((DRect(5.0, 5.0, 0.0, 0.0) & DRect(0.0, 0.0, 9.0, 9.0)).Null()); // out of order
    DRect r(0.0, 0.0, 10.0, 10.0);
    EXPECT_EQ(&(r &= DRect(5.0, 5.0, 6.0, 6.0)), &r);
    EXPECT_EQ(r, DRect(5.0, 5.0, 6.0, 6.0));
    EXPECT_EQ(SRect(0, 0, 10, 10) & SRect(5, -5, 20, 5), SRect(5, 0, 10, 5));
    EXPECT_TRUE((SRect(0, 0, 10, 10) & SRect(20, 20, 30, 30)).Null());
}

TEST(TRect, IntersectionKeepsItsOwnValueOnTiesAndIsNullWithItsOwnNaN) {
    EXPECT_TRUE(SameFields(DRect(0.0, -0.0, 1.0, 0.0) & DRect(-0.0, 0.0, 1.0, -0.0),
                           DRect(0.0, -0.0, 1.0, 0.0)));
    EXPECT_EQ(DRect(1.0, 2.0, 3.0, 4.0) & DRect(kNaN, kNaN, kNaN, kNaN), DRect(1.0, 2.0, 3.0, 4.0));
    EXPECT_TRUE((DRect(kNaN, 0.0, 9.0, 9.0) & DRect(0.0, 0.0, 9.0, 9.0)).Null());
}

TEST(TRect, UnionAndIntersectionFollowTheirLawsOnRandomRectangles) {
    Random random(502);
    for (int i = 0; i < 1000; ++i) {
        DRect const a = RandomRect(random);
        DRect const b = RandomRect(random);
        DRect const both = a | b;
        ASSERT_EQ(both, b | a);
        ASSERT_EQ(both, DRect(std::min(a.left, b.left), std::min(a.top, b.top),
                              std::max(a.right, b.right), std::max(a.bottom, b.bottom)));
        ASSERT_TRUE(both.Contains(a) && both.Contains(b));
        ASSERT_EQ(a | a, a);
        ASSERT_EQ(a & a, a);
        DRect const common = a & b;
        ASSERT_EQ(common, b & a);
        ASSERT_EQ(common.Null(), !NaiveSectTRect(a, b));
        if (!common.Null()) {
            ASSERT_TRUE(a.Contains(common) && b.Contains(common));
            ASSERT_EQ(common | a, a);
        }
        ASSERT_EQ(a | a[kTopLeft] | a[kBottomRight], a);
        DPoint const p = random.Point(150.0);
        ASSERT_TRUE((a | p).Contains(p));
        ASSERT_EQ((a | p) == a, a.Contains(p));
    }
}

TEST(TRect, MayBeItsOwnArgument) {
    DRect r(1.0, 2.0, 3.0, 4.0);
    DRect const& self = r;
    r -= r[kTopLeft];
    EXPECT_EQ(r, DRect(0.0, 0.0, 2.0, 2.0));
    r.Set(1.0, 2.0, 3.0, 4.0);
    r += r[kTopLeft];
    EXPECT_EQ(r, DRect(2.0, 4.0, 4.0, 6.0));
    r.Set(1.0, 2.0, 3.0, 4.0);
    r += r[kBottomRight];
    EXPECT_EQ(r, DRect(4.0, 6.0, 6.0, 8.0));
    r.Set(2.0, 3.0, 5.0, 7.0);
    r *= r[kTopLeft];
    EXPECT_EQ(r, DRect(4.0, 9.0, 10.0, 21.0));
    r.Set(2.0, 3.0, 5.0, 7.0);
    r.Offset(r[kTopLeft]);
    EXPECT_EQ(r, DRect(4.0, 6.0, 7.0, 10.0));
    r.Set(2.0, 3.0, 50.0, 70.0);
    r.Inset(r[kTopLeft]);
    EXPECT_EQ(r, DRect(4.0, 6.0, 48.0, 67.0));
    r.Set(2.0, 3.0, 50.0, 70.0);
    r.Outset(r.left, r.top);
    EXPECT_EQ(r, DRect(0.0, 0.0, 52.0, 73.0));
    r.Set(2.0, 3.0, 5.0, 7.0);
    r *= r.left;
    EXPECT_EQ(r, DRect(4.0, 6.0, 10.0, 14.0));
    r /= r.right;
    EXPECT_EQ(r, DRect(0.4, 0.6, 1.0, 1.4));
    r.Set(5.0, 7.0, 2.0, 3.0);
    r.Set(r[kBottomRight], r[kTopLeft]);
    EXPECT_EQ(r, DRect(2.0, 3.0, 5.0, 7.0));
    r.Set(r[kBottomRight], r.left, r.top);
    EXPECT_EQ(r, DRect(3.0, 4.0, 7.0, 10.0));
    r.Set(r[kBottomRight], r[kTopLeft], r[kBottomRight]);
    EXPECT_EQ(r, DRect(3.0, 4.0, 7.0, 10.0));
    r.Set(r.bottom, r.right, r.top, r.left);
    EXPECT_EQ(r, DRect(10.0, 7.0, 4.0, 3.0));
    r |= r[kTopLeft]; // out of order, so its own corner makes it grow
    EXPECT_EQ(r, DRect(10.0, 7.0, 10.0, 7.0));
    r |= self;
    EXPECT_EQ(r, DRect(10.0, 7.0, 10.0, 7.0));
    r &= self;
    EXPECT_EQ(r, DRect(10.0, 7.0, 10.0, 7.0));
    r.Set(5.0, 5.0, 1.0, 1.0);
    r &= self;
    EXPECT_TRUE(r.Null());
    r |= r[kBottomRight];
    EXPECT_TRUE(r.Null());
}

TEST(TRectShort, MayBeItsOwnArgument) {
    SRect r(1, 2, 3, 4);
    r -= r[kTopLeft];
    EXPECT_EQ(r, SRect(0, 0, 2, 2));
    r.Set(2, 3, 5, 7);
    r *= r[kTopLeft];
    EXPECT_EQ(r, SRect(4, 9, 10, 21));
    r += r[kBottomRight];
    EXPECT_EQ(r, SRect(14, 30, 20, 42));
    SRect a(0, 0, 10, 10);
    SRect const b(5, 5, 20, 20);
    EXPECT_TRUE(SectTRect(a, b, a));
    EXPECT_EQ(a, SRect(5, 5, 10, 10));
    a.Set(0, 0, 10, 10);
    EXPECT_TRUE(SectTRect(b, a, a));
    EXPECT_EQ(a, SRect(5, 5, 10, 10));
    a.Set(10, 30, 0, 20);
    EXPECT_TRUE(SectTRect(a, a, a));
    EXPECT_EQ(a, SRect(0, 20, 10, 30));
    a.Set(0, 0, 1, 1);
    EXPECT_FALSE(SectTRect(a, b, a));
    EXPECT_TRUE(a.Null());
}

TEST(TRect, FloorCeilRoundsOutward) {
    DRect r(0.2, -0.7, 3.1, 4.0);
    EXPECT_EQ(&r.FloorCeil(), &r);
    EXPECT_EQ(r, DRect(0.0, -1.0, 4.0, 4.0));
    r.FloorCeil();
    EXPECT_EQ(r, DRect(0.0, -1.0, 4.0, 4.0));
    DRect special(-kInf, kNaN, 1e300, -0.5);
    special.FloorCeil();
    EXPECT_TRUE(SameFields(special, DRect(-kInf, kNaN, 1e300, -0.0)));
    SRect s(-3, 4, 5, -6);
    EXPECT_EQ(&s.FloorCeil(), &s);
    EXPECT_EQ(s, SRect(-3, 4, 5, -6));
    Random random(503);
    for (int i = 0; i < 1000; ++i) {
        DRect const d = RandomRect(random);
        DRect out = d;
        out.FloorCeil();
        ASSERT_TRUE(out.Contains(d));
        ASSERT_TRUE(d.left - out.left < 1.0 && out.right - d.right < 1.0);
        ASSERT_TRUE(d.top - out.top < 1.0 && out.bottom - d.bottom < 1.0);
        ASSERT_EQ(DRect(SRect(out)), out); // integral
    }
}

TEST(SectTRect, GivesTheCommonPart) {
    SRect out(1, 2, 3, 4);
    EXPECT_TRUE(SectTRect(SRect(0, 0, 10, 10), SRect(5, -5, 20, 5), out));
    EXPECT_EQ(out, SRect(5, 0, 10, 5));
    EXPECT_TRUE(SectTRect(SRect(10, 10, 0, 0), SRect(5, 5, 20, 20), out));
    EXPECT_EQ(out, SRect(5, 5, 10, 10));
    EXPECT_TRUE(SectTRect(SRect(5, 20, 20, 5), SRect(10, 0, 0, 10), out));
    EXPECT_EQ(out, SRect(5, 5, 10, 10));
}

TEST(SectTRect, CountsTouching) {
    SRect out;
    EXPECT_TRUE(SectTRect(SRect(0, 0, 10, 10), SRect(10, 0, 20, 10), out));
    EXPECT_EQ(out, SRect(10, 0, 10, 10));
    EXPECT_TRUE(SectTRect(SRect(0, 0, 10, 10), SRect(10, 10, 20, 20), out));
    EXPECT_EQ(out, SRect(10, 10, 10, 10));
    EXPECT_TRUE(SectTRect(SRect(0, 0, 10, 10), SRect(3, -5, 4, 0), out));
    EXPECT_EQ(out, SRect(3, 0, 4, 0));
}

TEST(SectTRect, NullsItsOutputWhenThereIsNoCommonPart) {
    SRect out(1, 2, 3, 4);
    EXPECT_FALSE(SectTRect(SRect(0, 0, 10, 10), SRect(20, 20, 30, 30), out));
    EXPECT_TRUE(out.Null());
    out.Set(1, 2, 3, 4);
    EXPECT_FALSE(SectTRect(SRect(0, 0, 10, 10), SRect(11, 0, 30, 10), out));
    EXPECT_TRUE(out.Null());
    out.Set(1, 2, 3, 4);
    EXPECT_FALSE(SectTRect(SRect(0, 0, 10, 10), SRect(0, 11, 10, 30), out));
    EXPECT_TRUE(out.Null());
}

TEST(SectTRect, TakesANullRectangleForThePointAtTheOrigin) {
    SRect out(1, 2, 3, 4);
    EXPECT_FALSE(SectTRect(SRect(), SRect(1, 1, 2, 2), out));
    EXPECT_TRUE(out.Null());
    EXPECT_TRUE(SectTRect(SRect(), SRect(-1, -1, 2, 2), out));
    EXPECT_TRUE(out.Null());
    EXPECT_TRUE(SectTRect(SRect(), SRect(), out));
}

TEST(NaiveSectTRect, AgreesWithTheRectangleFound) {
    Random random(504);
    int meeting = 0;
    for (int i = 0; i < 5000; ++i) {
        // Small numbers, so that edges often touch.
        SRect const a = RandomShortRect(random, 6);
        SRect const b = RandomShortRect(random, 6);
        SRect out;
        bool const meet = SectTRect(a, b, out);
        SRect orderedA = a;
        orderedA.Rectify();
        SRect orderedB = b;
        orderedB.Rectify();
        bool const expected = orderedA.left <= orderedB.right && orderedB.left <= orderedA.right &&
                              orderedA.top <= orderedB.bottom && orderedB.top <= orderedA.bottom;
        ASSERT_EQ(meet, expected);
        ASSERT_EQ(NaiveSectTRect(a, b), meet);
        ASSERT_EQ(NaiveSectTRect(b, a), meet);
        ASSERT_EQ(NaiveSectTRect(DRect(a), DRect(b)), meet);
        if (meet) {
            ++meeting;
            ASSERT_TRUE(orderedA.Contains(out) && orderedB.Contains(out) && out.Valid());
        } else {
            ASSERT_TRUE(out.Null());
        }
    }
    EXPECT_GT(meeting, 500);
    EXPECT_LT(meeting, 4500);
}

TEST(NaiveSectTRect, CountsTouchingAndAcceptsAnyOrder) {
    EXPECT_TRUE(NaiveSectTRect(DRect(0.0, 0.0, 1.0, 1.0), DRect(1.0, 1.0, 2.0, 2.0)));
    EXPECT_FALSE(
        NaiveSectTRect(DRect(0.0, 0.0, 1.0, 1.0), DRect(std::nextafter(1.0, 2.0), 0.0, 2.0, 2.0)));
    EXPECT_FALSE(
        NaiveSectTRect(DRect(0.0, 0.0, 1.0, 1.0), DRect(0.0, std::nextafter(1.0, 2.0), 1.0, 2.0)));
    EXPECT_TRUE(NaiveSectTRect(DRect(1.0, 1.0, 0.0, 0.0), DRect(2.0, 2.0, 0.5, 0.5)));
    EXPECT_TRUE(NaiveSectTRect(SRect(0, 0, 1, 1), SRect(1, 1, 2, 2)));
    EXPECT_FALSE(NaiveSectTRect(SRect(0, 0, 1, 1), SRect(2, 0, 3, 1)));
    EXPECT_FALSE(NaiveSectTRect(SRect(0, 0, 1, 1), SRect(0, 2, 1, 3)));
    EXPECT_TRUE(NaiveSectTRect(SRect(-32768, -32768, 32767, 32767), SRect(0, 0, 0, 0)));
    EXPECT_TRUE(NaiveSectTRect(SRect(), SRect(-1, -1, 1, 1)));
    EXPECT_FALSE(NaiveSectTRect(SRect(), SRect(1, 1, 2, 2)));
}

TEST(NaiveSectTRect, ANaNFarEdgeMeetsEverything) {
    DRect const unit(0.0, 0.0, 1.0, 1.0);
    EXPECT_TRUE(NaiveSectTRect(DRect(50.0, 0.0, kNaN, 1.0), unit));
    EXPECT_TRUE(NaiveSectTRect(unit, DRect(50.0, 0.0, kNaN, 1.0)));
    EXPECT_TRUE(NaiveSectTRect(unit, DRect(0.0, 50.0, 1.0, kNaN)));
    EXPECT_TRUE(NaiveSectTRect(DRect(kNaN, kNaN, kNaN, kNaN), unit));
    // The other direction still decides.
    EXPECT_FALSE(NaiveSectTRect(unit, DRect(50.0, 50.0, kNaN, 60.0)));
}

TEST(NaiveSectTRect, ANaNNearEdgeLeavesTheOther) {
    DRect const unit(0.0, 0.0, 1.0, 1.0);
    EXPECT_TRUE(NaiveSectTRect(unit, DRect(kNaN, 0.0, 0.5, 1.0)));
    EXPECT_FALSE(NaiveSectTRect(unit, DRect(kNaN, 0.0, 2.0, 1.0)));
    EXPECT_FALSE(NaiveSectTRect(DRect(0.0, kNaN, 1.0, -5.0), unit));
}

class ValidateRectTest : public ::testing::Test {
protected:
    void SetUp() override {
        SetNSLogSink([](std::string const&) {});
    }
    void TearDown() override { SetNSLogSink(nullptr); }
};

TEST_F(ValidateRectTest, LeavesAGoodRectangleAlone) {
    DRect r(1.0, -2.0, -3.0, 113596369920.0);
    EXPECT_FALSE(ValidateRect(r));
    EXPECT_EQ(r, DRect(1.0, -2.0, -3.0, 113596369920.0));
}

TEST_F(ValidateRectTest, ExaminesLeftTopRightBottomUpToTheFirstBadField) {
    DRect r(kNaN, kInf, kNaN, kInf);
    EXPECT_TRUE(ValidateRect(r));
    EXPECT_TRUE(SameFields(r, DRect(0.0, kInf, kNaN, kInf)));
    EXPECT_TRUE(ValidateRect(r));
    EXPECT_TRUE(SameFields(r, DRect(0.0, 0.0, kNaN, kInf)));
    EXPECT_TRUE(ValidateRect(r));
    EXPECT_TRUE(SameFields(r, DRect(0.0, 0.0, 0.0, kInf)));
    EXPECT_TRUE(ValidateRect(r));
    EXPECT_TRUE(SameFields(r, DRect(0.0, 0.0, 0.0, 0.0)));
    EXPECT_FALSE(ValidateRect(r));
}

TEST_F(ValidateRectTest, GoesOnAfterAnOutOfRangeField) {
    DRect r(2e11, -2e11, 5.0, kNaN);
    EXPECT_TRUE(ValidateRect(r));
    EXPECT_EQ(r, DRect(0.0, 0.0, 5.0, 0.0));
    r.Set(2e11, -2e11, 1e300, 7.0);
    EXPECT_FALSE(ValidateRect(r));
    EXPECT_EQ(r, DRect(0.0, 0.0, 0.0, 7.0));
    r.Set(2e11, kNaN, 2e11, 2e11); // after the NaN nothing is examined
    EXPECT_TRUE(ValidateRect(r));
    EXPECT_EQ(r, DRect(0.0, 0.0, 2e11, 2e11));
}

} // namespace
