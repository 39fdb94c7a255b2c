// SPDX-License-Identifier: MIT

// Rectangles to and from the other coordinate type, the platform's records and text.

#include "TRect.h"

#include "Records.h"
#include "RectSupport.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using trammel_test::kInf;
using trammel_test::kNaN;
using trammel_test::SameFields;

using DRect = TRect<double>;
using SRect = TRect<short>;

TEST(TRectConversion, BetweenTheCoordinateTypesTruncatesIntoShorts) {
    EXPECT_EQ(DRect(SRect(-32768, 2, 3, 32767)), DRect(-32768.0, 2.0, 3.0, 32767.0));
    EXPECT_EQ(SRect(DRect(0.2, -0.7, 3.9, 4.0)), SRect(0, 0, 3, 4));
    EXPECT_EQ(SRect(DRect(40000.0, -40000.0, kNaN, 65537.9)), SRect(-25536, 25536, 0, 1));
    EXPECT_EQ(SRect(DRect(5.9, 6.9, 1.1, 2.1)), SRect(5, 6, 1, 2)); // not rectified
}

TEST(TRectConversion, FromFixedPointGoesBySinglePrecision) {
    FRect const r{-0x00024000, 0x00018000, 0x01000001, 0x7FFFFFFF}; // top left bottom right
    EXPECT_EQ(DRect(r), DRect(1.5, -2.25, 32768.0, 256.0));
    EXPECT_EQ(SRect(r), SRect(1, -2, -32768, 256));
    FRect const inverted{0x00050000, 0x00060000, 0x00010000, 0x00020000};
    EXPECT_EQ(DRect(inverted), DRect(6.0, 5.0, 2.0, 1.0));
    EXPECT_EQ(SRect(inverted), SRect(6, 5, 2, 1));
}

TEST(TRectConversion, FromOriginAndSizeIsOrdered) {
    EXPECT_EQ(DRect(CGRectMake(10.0F, 10.0F, -4.0F, 6.0F)), DRect(6.0, 10.0, 10.0, 16.0));
    EXPECT_EQ(DRect(CGRectMake(10.0F, 10.0F, 4.0F, -6.0F)), DRect(10.0, 4.0, 14.0, 10.0));
    EXPECT_EQ(SRect(CGRectMake(1.9F, -1.9F, 2.2F, 3.0F)), SRect(1, -1, 4, 1));
    EXPECT_EQ(SRect(CGRectMake(10.0F, 10.0F, -4.0F, -6.0F)), SRect(6, 4, 10, 10));
    _NSRect const ns{{10.0F, 10.0F}, {-4.0F, 6.0F}};
    EXPECT_EQ(DRect(ns), DRect(6.0, 10.0, 10.0, 16.0));
    _NSRect const fraction{{1.9F, -1.9F}, {2.2F, 3.0F}};
    EXPECT_EQ(SRect(fraction), SRect(1, -1, 4, 1));
}

TEST(TRectConversion, FromOriginAndSizeSumsInSinglePrecision) {
    DRect const r(CGRectMake(0.1F, 16777216.0F, 0.2F, 1.0F));
    EXPECT_EQ(r.left, static_cast<double>(0.1F));
    EXPECT_EQ(r.right, static_cast<double>(0.1F + 0.2F));
    EXPECT_NE(r.right, static_cast<double>(0.1F) + static_cast<double>(0.2F));
    EXPECT_EQ(r.bottom, 16777216.0); // the 1 is lost
    // A tie keeps the origin, its sign of zero included.
    DRect const zero(CGRectMake(-0.0F, 0.0F, 0.0F, -0.0F));
    EXPECT_TRUE(SameFields(zero, DRect(-0.0, 0.0, -0.0, 0.0)));
    DRect const nan(CGRectMake(1.0F, 2.0F, std::numeric_limits<float>::quiet_NaN(), 3.0F));
    EXPECT_EQ(nan, DRect(1.0, 2.0, 1.0, 5.0)); // min and max keep their first operand
}

TEST(TRectConversion, FromThePrintingAndTheIntegerRectangleTakesTheFieldsAsTheyAre) {
    PMRect const pm{2.9, -1.9, 40000.0, 3.5}; // top left bottom right
    EXPECT_EQ(DRect(pm), DRect(-1.9, 2.9, 3.5, 40000.0));
    EXPECT_EQ(SRect(pm), SRect(-1, 2, 3, -25536));
    PMRect const inverted{5.0, 6.0, 1.0, 2.0};
    EXPECT_EQ(DRect(inverted), DRect(6.0, 5.0, 2.0, 1.0));
    Rect const qd{5, 6, 1, -2}; // top left bottom right, out of order
    EXPECT_EQ(DRect(qd), DRect(6.0, 5.0, -2.0, 1.0));
    EXPECT_EQ(SRect(qd), SRect(6, 5, -2, 1));
}

TEST(TRectConversion, ToTheIntegerRectangleRounds) {
    Rect const r = DRect(0.5, -0.5, 2.5, 3.49);
    EXPECT_EQ(r.left, 1);
    EXPECT_EQ(r.top, -1);
    EXPECT_EQ(r.right, 3);
    EXPECT_EQ(r.bottom, 3);
    Rect const special = DRect(kNaN, 32767.5, -kInf, -32768.5);
    EXPECT_EQ(special.left, 0);
    EXPECT_EQ(special.top, -32768);
    EXPECT_EQ(special.right, 0);
    EXPECT_EQ(special.bottom, 32767);
    Rect const same = SRect(1, -2, 32767, -32768);
    EXPECT_EQ(same.left, 1);
    EXPECT_EQ(same.top, -2);
    EXPECT_EQ(same.right, 32767);
    EXPECT_EQ(same.bottom, -32768);
}

TEST(TRectConversion, ToOriginAndSizeSubtractsInDouble) {
    CGRect const cg = DRect(1.5, 0.1, 4.0, -2.0);
    EXPECT_EQ(cg.origin.x, 1.5F);
    EXPECT_EQ(cg.origin.y, 0.1F);
    EXPECT_EQ(cg.size.width, 2.5F);
    EXPECT_EQ(cg.size.height, static_cast<float>(-2.0 - 0.1));
    _NSRect const ns = DRect(1.5, 0.1, 4.0, -2.0);
    EXPECT_EQ(ns.origin.x, 1.5F);
    EXPECT_EQ(ns.origin.y, 0.1F);
    EXPECT_EQ(ns.size.width, 2.5F);
    EXPECT_EQ(ns.size.height, static_cast<float>(-2.0 - 0.1));
    // The sizes of shorts are cut to 16 bits first.
    CGRect const wide = SRect(-32768, 1, 32767, 5);
    EXPECT_EQ(wide.origin.x, -32768.0F);
    EXPECT_EQ(wide.origin.y, 1.0F);
    EXPECT_EQ(wide.size.width, -1.0F);
    EXPECT_EQ(wide.size.height, 4.0F);
    _NSRect const nsWide = SRect(1, -32768, 5, 32767);
    EXPECT_EQ(nsWide.origin.x, 1.0F);
    EXPECT_EQ(nsWide.origin.y, -32768.0F);
    EXPECT_EQ(nsWide.size.width, 4.0F);
    EXPECT_EQ(nsWide.size.height, -1.0F);
}

TEST(TRectText, IsLeftTopRightBottomAndNamesItselfForDoublesOnly) {
    EXPECT_EQ(DRect(1.0, -2.5, 3.0, 4.0).NSString(),
              "TRect<double>::NSString() {1.000000, -2.500000, 3.000000, 4.000000}");
    EXPECT_EQ(SRect(1, -2, 3, 4).NSString(), "{1, -2, 3, 4}");
    EXPECT_EQ(DRect(kNaN, -kNaN, kInf, -kInf).NSString(),
              "TRect<double>::NSString() {nan, nan, inf, -inf}");
}

} // namespace
