// SPDX-License-Identifier: MIT

#include "Int128_p.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>

namespace {

using trammel_detail::PairInt128;
using trammel_detail::PairUInt128;

#ifdef __SIZEOF_INT128__

__extension__ typedef __int128 Wide;
__extension__ typedef unsigned __int128 UWide;

UWide WideOf(PairUInt128 a) { return static_cast<UWide>(a.high) << 64 | a.low; }
Wide WideOf(PairInt128 a) { return static_cast<Wide>(WideOf(a.bits)); }

/// Any number, mostly with many equal bits at one end.
class Numbers {
public:
    PairUInt128 Next() {
        PairUInt128 const any(mEngine(), mEngine());
        int const drop = static_cast<int>(mEngine() % 128);
        PairUInt128 const some = any >> drop;
        return mEngine() % 2 == 0 ? some : PairUInt128() - some;
    }
    int Bits() { return static_cast<int>(mEngine() % 128); }

private:
    std::mt19937_64 mEngine{1};
};

TEST(PairInt128, GivesTheNumbersOfTheCompilersIntegers) {
    Numbers numbers;
    for (int i = 0; i < 20000; ++i) {
        PairUInt128 const a = numbers.Next();
        PairUInt128 const b = numbers.Next();
        int const bits = numbers.Bits();
        UWide const wideA = WideOf(a);
        UWide const wideB = WideOf(b);
        ASSERT_TRUE(WideOf(a + b) == wideA + wideB && WideOf(a - b) == wideA - wideB);
        ASSERT_TRUE(WideOf(a * b) == wideA * wideB && WideOf(a & b) == (wideA & wideB));
        ASSERT_TRUE(WideOf(a << bits) == wideA << bits && WideOf(a >> bits) == wideA >> bits);
        ASSERT_TRUE((a < b) == (wideA < wideB) && (a > b) == (wideA > wideB));
        ASSERT_TRUE((a == b) == (wideA == wideB) && (a != b) == (wideA != wideB));
        if (wideB != 0) {
            ASSERT_TRUE(WideOf(a / b) == wideA / wideB);
        }
        PairInt128 const c(a);
        PairInt128 const d(b);
        Wide const wideC = WideOf(c);
        Wide const wideD = WideOf(d);
        ASSERT_TRUE(WideOf(c >> bits) == wideC >> bits);
        ASSERT_TRUE(WideOf(-c) == static_cast<Wide>(-wideA) &&
                    WideOf(c * d) == WideOf(PairInt128(a * b)));
        ASSERT_TRUE((c < d) == (wideC < wideD) && (c > d) == (wideC > wideD));
        ASSERT_TRUE((c <= d) == (wideC <= wideD) && (c >= d) == (wideC >= wideD));
        ASSERT_EQ(static_cast<double>(c), static_cast<double>(wideC));
        ASSERT_EQ(static_cast<std::int64_t>(c), static_cast<std::int64_t>(wideC));
    }
}

#endif

TEST(PairInt128, RoundsHalvesToTheEvenDouble) {
    PairInt128 const one(std::int64_t{1} << 53);
    EXPECT_EQ(static_cast<double>((one << 40) + (PairInt128(1) << 40)), 0x1p93);
    EXPECT_EQ(static_cast<double>((one << 40) + (PairInt128(1) << 40) + 1), 0x1p93 + 0x1p41);
    EXPECT_EQ(static_cast<double>(-(one << 70)), -0x1p123);
}

} // namespace
