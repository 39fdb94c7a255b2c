// SPDX-License-Identifier: MIT

#include "Records.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

/// Returns the numbers that lie in the record, one after the other.
template <class Number, std::size_t Count, class Record>
void ExpectFields(Record const& record, Number const (&expected)[Count]) {
    static_assert(sizeof(Record) == Count * sizeof(Number));
    Number fields[Count];
    std::memcpy(fields, &record, sizeof record);
    for (std::size_t i = 0; i < Count; ++i) {
        EXPECT_EQ(fields[i], expected[i]) << i;
    }
}

TEST(Records, HaveTheirFieldsInOrder) {
    ExpectFields<std::int16_t>(Point{1, 2}, {1, 2});
    ExpectFields<std::int16_t>(Rect{1, 2, 3, 4}, {1, 2, 3, 4});
    ExpectFields<Fixed>(FPoint{1, 2}, {1, 2});
    ExpectFields<Fixed>(FRect{1, 2, 3, 4}, {1, 2, 3, 4});
    ExpectFields<float>(CGPoint{1, 2}, {1, 2});
    ExpectFields<float>(CGSize{1, 2}, {1, 2});
    ExpectFields<float>(CGRect{{1, 2}, {3, 4}}, {1, 2, 3, 4});
    ExpectFields<float>(_NSPoint{1, 2}, {1, 2});
    ExpectFields<float>(_NSSize{1, 2}, {1, 2});
    ExpectFields<float>(_NSRect{{1, 2}, {3, 4}}, {1, 2, 3, 4});
    ExpectFields<double>(PMRect{1, 2, 3, 4}, {1, 2, 3, 4});
    ExpectFields<float>(CGAffineTransform{1, 2, 3, 4, 5, 6}, {1, 2, 3, 4, 5, 6});
}

TEST(Records, HaveTheirNames) {
    Point const p{1, 2};
    EXPECT_EQ(p.v, 1);
    EXPECT_EQ(p.h, 2);
    Rect const r{1, 2, 3, 4};
    EXPECT_EQ(r.top, 1);
    EXPECT_EQ(r.left, 2);
    EXPECT_EQ(r.bottom, 3);
    EXPECT_EQ(r.right, 4);
    FRect const f{1, 2, 3, 4};
    EXPECT_EQ(f.top + 10 * f.left + 100 * f.bottom + 1000 * f.right, 4321);
    PMRect const m{1, 2, 3, 4};
    EXPECT_EQ(m.top + 10 * m.left + 100 * m.bottom + 1000 * m.right, 4321);
    _NSRect const n{{1, 2}, {3, 4}};
    EXPECT_EQ(n.origin.x + 10 * n.origin.y + 100 * n.size.width + 1000 * n.size.height, 4321.0F);
    static_assert(std::is_same_v<CGFloat, float>);
}

TEST(Records, MacPolygonHasAHeaderOf10Bytes) {
    MacPolygon const polygon{14, Rect{1, 2, 3, 4}, {Point{5, 6}}};
    ExpectFields<std::int16_t>(polygon, {14, 1, 2, 3, 4, 5, 6});
    EXPECT_EQ(reinterpret_cast<char const*>(polygon.polyPoints) -
                  reinterpret_cast<char const*>(&polygon),
              10);
}

TEST(Records, AreMadeFromTheirCoordinates) {
    constexpr CGPoint p = CGPointMake(1.5F, -2.0F);
    EXPECT_EQ(p.x, 1.5F);
    EXPECT_EQ(p.y, -2.0F);
    constexpr CGRect r = CGRectMake(1, 2, -3, 4);
    EXPECT_EQ(r.origin.x, 1.0F);
    EXPECT_EQ(r.origin.y, 2.0F);
    EXPECT_EQ(r.size.width, -3.0F); // kept as given
    EXPECT_EQ(r.size.height, 4.0F);
}

} // namespace
