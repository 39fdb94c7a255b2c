// SPDX-License-Identifier: MIT

#include "Box_p.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace {

using trammel_detail::Box;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

TEST(Box, ANewOneIsEmpty) {
    Box<double> const box;
    EXPECT_EQ(box.lowX, kInfinity);
    EXPECT_EQ(box.highY, -kInfinity);
    EXPECT_FALSE(box.Contains(0.0, 0.0));
    EXPECT_FALSE(box.HasArea());
    EXPECT_FALSE(box.Meets(Box<double>::Of(-1.0, -1.0, 1.0, 1.0)));
}

TEST(Box, ANewOneOfIntegersBeginsAtTheirLimits) {
    Box<std::int16_t> const box;
    EXPECT_EQ(box.lowX, 32767);
    EXPECT_EQ(box.lowY, 32767);
    EXPECT_EQ(box.highX, -32768);
    EXPECT_EQ(box.highY, -32768);
}

TEST(Box, GrowsByPointsAndBoxes) {
    Box<std::int64_t> box;
    box.Include(3, -2);
    EXPECT_TRUE(box.Contains(3, -2));
    EXPECT_FALSE(box.HasArea());
    box.Include(1, 5);
    EXPECT_EQ(box.lowX, 1);
    EXPECT_EQ(box.lowY, -2);
    EXPECT_EQ(box.highX, 3);
    EXPECT_EQ(box.highY, 5);
    box.Include(Box<std::int64_t>::Of(7, 9, 6, 8));
    EXPECT_EQ(box.lowX, 1);
    EXPECT_EQ(box.lowY, -2);
    EXPECT_EQ(box.highX, 7);
    EXPECT_EQ(box.highY, 9);
    EXPECT_TRUE(box.HasArea());
}

TEST(Box, IncludingAnEmptyBoxOrANanChangesNothing) {
    Box<double> box = Box<double>::Of(1.0, 2.0, 3.0, 4.0);
    box.Include(Box<double>());
    box.Include(kNan, kNan);
    EXPECT_EQ(box.lowX, 1.0);
    EXPECT_EQ(box.lowY, 2.0);
    EXPECT_EQ(box.highX, 3.0);
    EXPECT_EQ(box.highY, 4.0);
}

TEST(Box, ContainsItsEdges) {
    Box<double> const box = Box<double>::Of(1.0, 2.0, 3.0, 4.0);
    EXPECT_TRUE(box.Contains(1.0, 2.0));
    EXPECT_TRUE(box.Contains(3.0, 4.0));
    EXPECT_FALSE(box.Contains(0.5, 3.0));
    EXPECT_FALSE(box.Contains(3.5, 3.0));
    EXPECT_FALSE(box.Contains(2.0, 1.5));
    EXPECT_FALSE(box.Contains(2.0, 4.5));
    EXPECT_FALSE(box.Contains(kNan, 3.0));
    EXPECT_TRUE(Box<double>::Everything().Contains(kInfinity, -kInfinity));
}

TEST(Box, MeetsWhatItTouches) {
    Box<int> const box = Box<int>::Of(1, 2, 3, 4);
    EXPECT_TRUE(box.Meets(Box<int>::Of(3, 4, 9, 9)));
    EXPECT_TRUE(box.Meets(Box<int>::Of(2, 3, 2, 3)));
    EXPECT_FALSE(box.Meets(Box<int>::Of(4, 2, 9, 4)));
    EXPECT_FALSE(box.Meets(Box<int>::Of(-9, 2, 0, 4)));
    EXPECT_FALSE(box.Meets(Box<int>::Of(1, 5, 3, 9)));
    EXPECT_FALSE(box.Meets(Box<int>::Of(1, -9, 3, 1)));
}

TEST(Box, WidenedReachesFurtherOnAllSides) {
    Box<int> const box = Box<int>::Of(1, 2, 3, 4).Widened(10, 20);
    EXPECT_EQ(box.lowX, -9);
    EXPECT_EQ(box.lowY, -18);
    EXPECT_EQ(box.highX, 13);
    EXPECT_EQ(box.highY, 24);
}

} // namespace
