// SPDX-License-Identifier: MIT

// Each lane of a small vector is computed as the scalar is, to the last bit. Two programs run these
// tests: one with this processor's operations, and one with the operations that need no certain
// processor.

#include "Vector_p.h"

#include "Dispatch_p.h"
#include "VectorOperations.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using trammel_detail::BitsOfEight;
using trammel_detail::BitsOfTwo;
using trammel_detail::Double2;
using trammel_detail::Double4;
using trammel_detail::Firsts;
using trammel_detail::Mask2;
using trammel_detail::Seconds;
using trammel_detail::Short8;
using trammel_test::FourLanesUnderTest;
using trammel_test::LaneMove;
using trammel_test::LaneOperation;
using trammel_test::OperationsOf;
using trammel_test::VectorUnderTest;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

std::vector<double> Values() {
    return {0.0,  -0.0,   1.0,     -1.0,    0.1,       3.0,         -7.5,       kInf,        -kInf,
            kNaN, 5e-324, -5e-324, 0x1p-40, -0x1p1023, 0x1.8p-1022, -0x1p-1030, 0x1p52 + 1.0};
}

std::uint64_t BitsOf(double x) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &x, sizeof x);
    return bits;
}

/// What the operation gives for scalars. Volatile, so that the compiler computes nothing
/// beforehand.
double Scalar(LaneOperation operation, double first, double second, double third,
              double firstOfAll) {
    double const volatile a = first;
    double const volatile b = second;
    double const volatile c = third;
    switch (operation) {
    case LaneOperation::kAdd:
        return a + b;
    case LaneOperation::kSubtract:
        return a - b;
    case LaneOperation::kMultiply:
        return a * b;
    case LaneOperation::kDivide:
        return a / b;
    case LaneOperation::kNegate:
        return -a;
    case LaneOperation::kAbs:
        return std::fabs(a);
    case LaneOperation::kSqrt:
        return std::sqrt(a);
    case LaneOperation::kMin:
        return a < b ? a : b;
    case LaneOperation::kMax:
        return a > b ? a : b;
    case LaneOperation::kFillWithFirst:
        return firstOfAll;
    case LaneOperation::kSelectEqual:
        return a == b ? c : a;
    case LaneOperation::kSelectLess:
        return a < b ? c : a;
    case LaneOperation::kSelectNotMore:
        return a <= b ? c : a;
    case LaneOperation::kSelectMore:
        return a > b ? c : a;
    case LaneOperation::kSelectNotLess:
        return a >= b ? c : a;
    case LaneOperation::kSelectBoth:
        return a < b && b < c ? c : a;
    case LaneOperation::kSelectEither:
        return a < b || b < c ? c : a;
    case LaneOperation::kCount:
        break;
    }
    return a;
}

/// Brings every pair of values, with several third ones, into every lane.
template <class Check> void ForAllLanes(Check check) {
    std::vector<double> const values = Values();
    std::size_t const count = values.size();
    for (std::size_t i = 0; i < count * count; ++i) {
        std::array<double, 4> a = {};
        std::array<double, 4> b = {};
        std::array<double, 4> c = {};
        for (std::size_t lane = 0; lane < 4; ++lane) {
            std::size_t const pair = (i + lane * 37) % (count * count);
            a[lane] = values[pair / count];
            b[lane] = values[pair % count];
            c[lane] = values[(pair + i) % count];
        }
        check(a.data(), b.data(), c.data());
    }
}

void ExpectLanesAsScalars(VectorUnderTest const& vector) {
    for (int k = 0; k < static_cast<int>(LaneOperation::kCount); ++k) {
        auto const operation = static_cast<LaneOperation>(k);
        ForAllLanes([&](double const* a, double const* b, double const* c) {
            double out[4];
            vector.apply(operation, a, b, c, out);
            for (int lane = 0; lane < vector.lanes; ++lane) {
                double const expected = Scalar(operation, a[lane], b[lane], c[lane], a[0]);
                ASSERT_EQ(BitsOf(out[lane]), BitsOf(expected))
                    << "operation " << k << " of " << a[lane] << ", " << b[lane] << ", " << c[lane];
            }
        });
    }
}

void ExpectBitsAsScalars(VectorUnderTest const& vector) {
    ForAllLanes([&](double const* a, double const* b, double const* /*c*/) {
        unsigned expected = 0;
        for (int lane = 0; lane < vector.lanes; ++lane) {
            expected |= (a[lane] < b[lane] ? 1U : 0U) << lane;
            ASSERT_EQ(BitsOf(vector.lane(a, lane)), BitsOf(a[lane]));
        }
        ASSERT_EQ(vector.lessBits(a, b), expected);
    });
}

void ExpectMoves(FourLanesUnderTest const& vector) {
    double const a[4] = {0.0, 1.0, 2.0, 3.0};
    double const b[4] = {4.0, 5.0, 6.0, 7.0};
    auto const moved = [&](LaneMove move) {
        std::array<double, 4> out = {};
        vector.move(move, a, b, out.data());
        return out;
    };
    typedef std::array<double, 4> Four;
    EXPECT_EQ(moved(LaneMove::kFirstsTwice), (Four{0.0, 4.0, 0.0, 4.0}));
    EXPECT_EQ(moved(LaneMove::kLowHalves), (Four{0.0, 1.0, 4.0, 5.0}));
    EXPECT_EQ(moved(LaneMove::kPreceding), (Four{3.0, 4.0, 5.0, 6.0}));
    EXPECT_EQ(moved(LaneMove::kFollowing), (Four{1.0, 2.0, 3.0, 4.0}));
    EXPECT_EQ(moved(LaneMove::kRunningSums), (Four{0.0, 1.0, 3.0, 6.0}));
    EXPECT_EQ(moved(LaneMove::kLanes), (Four{0.0, 1.0, 2.0, 3.0}));
    double square[16];
    for (int i = 0; i < 16; ++i) {
        square[i] = i;
    }
    vector.transpose(square);
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(square[i], i / 4 + 4 * (i % 4));
    }
    Four of = {};
    vector.of(b, of.data());
    EXPECT_EQ(of, (Four{4.0, 5.0, 6.0, 7.0}));
}

void ExpectPairs(FourLanesUnderTest const& vector) {
    // One place after the beginning of a cache line, so that no address is aligned.
    alignas(64) double const from[9] = {9.0, 0.0, 10.0, 1.0, 11.0, 2.0, 12.0, 3.0, 13.0};
    std::array<double, 8> loaded = {};
    vector.loadPairs(from + 1, loaded.data());
    EXPECT_EQ(loaded, (std::array<double, 8>{0.0, 1.0, 2.0, 3.0, 10.0, 11.0, 12.0, 13.0}));
    alignas(64) double to[9] = {};
    double* const places[4] = {to + 7, to + 1, to + 5, to + 3};
    vector.storePairs(loaded.data(), loaded.data() + 4, places);
    double const expected[9] = {0.0, 1.0, 11.0, 3.0, 13.0, 2.0, 12.0, 0.0, 10.0};
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(to[i], expected[i]) << i;
    }
}

// (0 + 2) + (1 + 3); other orders give 1.
void ExpectSumByHalves(FourLanesUnderTest const& vector) {
    double const a[4] = {0x1p53, 1.0, -0x1p53, 1.0};
    EXPECT_EQ(vector.sum(a), 2.0);
}

// The last one is (0 + 1) + (2 + 3); one after the other gives 0.
void ExpectRunningSumsByPairs(FourLanesUnderTest const& vector) {
    double const a[4] = {0x1p53, 1.0, 1.0, -0x1p53};
    double out[4];
    vector.move(LaneMove::kRunningSums, a, a, out);
    EXPECT_EQ(out[2], 0x1p53);
    EXPECT_EQ(out[3], 1.0);
}

TEST(Double2, ComputesEachLaneAsTheScalarDoes) {
    ExpectLanesAsScalars(OperationsOf<Double2>::Each(2));
    ExpectBitsAsScalars(OperationsOf<Double2>::Each(2));
}

TEST(Double2, JoinsTheFirstAndTheSecondLanesOfTwo) {
    Double2 const a = Double2::Of(1.0, 2.0);
    Double2 const b = Double2::Of(3.0, 4.0);
    EXPECT_EQ(Firsts(a, b)[0], 1.0);
    EXPECT_EQ(Firsts(a, b)[1], 3.0);
    EXPECT_EQ(Seconds(a, b)[0], 2.0);
    EXPECT_EQ(Seconds(a, b)[1], 4.0);
    EXPECT_EQ(EvenTwice(a)[1], 1.0);
    EXPECT_EQ(OddTwice(a)[0], 2.0);
    EXPECT_EQ(trammel_detail::Lane<0>(a), 1.0);
    EXPECT_EQ(trammel_detail::Lane<1>(a), 2.0);
}

TEST(Double2, HasMasksWhoseLanesCanBeSet) {
    Mask2 mask = Double2::Of(1.0, 2.0) < Double2(1.5);
    EXPECT_EQ(mask.Bits(), 1U);
    mask.Set(1, true);
    EXPECT_EQ(mask.Bits(), 3U);
    mask.Set(0, false);
    EXPECT_EQ(mask.Bits(), 2U);
    Double2 const chosen = Select(mask, Double2(5.0), Double2(7.0));
    EXPECT_EQ(chosen[0], 7.0);
    EXPECT_EQ(chosen[1], 5.0);
}

TEST(Double2, LoadsAndStoresAtAnyAddress) {
    for (std::size_t offset = 0; offset < 16; ++offset) {
        double const numbers[2] = {-0.0, kNaN};
        alignas(16) char bytes[32] = {};
        std::memcpy(bytes + offset, numbers, sizeof numbers);
        alignas(16) char copy[32] = {};
        Double2::Load(bytes + offset).Store(copy + offset);
        EXPECT_EQ(std::memcmp(bytes, copy, sizeof bytes), 0) << offset;
    }
}

TEST(Double2, TellsTheBitsOfEightMasksInOrder) {
    for (unsigned bits = 0; bits < 0x10000; ++bits) {
        Mask2 masks[8];
        for (unsigned i = 0; i < 8; ++i) {
            Double2 const x = Double2::Of((bits >> 2 * i & 1) != 0 ? 0.0 : 1.0,
                                          (bits >> 2 * i & 2) != 0 ? 0.0 : 1.0);
            masks[i] = x < Double2(0.5);
        }
        ASSERT_EQ(BitsOfEight(masks), bits);
    }
}

TEST(Double4, ComputesEachLaneAsTheScalarDoes) {
    ExpectLanesAsScalars(OperationsOf<Double4>::Each(4));
    ExpectBitsAsScalars(OperationsOf<Double4>::Each(4));
}

TEST(Double4, MovesLanesAndPairsToTheirPlaces) {
    ExpectMoves(OperationsOf<Double4>::Four());
    ExpectPairs(OperationsOf<Double4>::Four());
    ExpectSumByHalves(OperationsOf<Double4>::Four());
    ExpectRunningSumsByPairs(OperationsOf<Double4>::Four());
}

#ifdef TRAMMEL_AVX2_KERNELS

TEST(WideDouble4, ComputesEachLaneAsTheScalarDoes) {
    if (!trammel_detail::HasWideVectors()) {
        GTEST_SKIP() << "this processor has no AVX2";
    }
    ExpectLanesAsScalars(trammel_test::WideDouble4UnderTest().each);
    ExpectBitsAsScalars(trammel_test::WideDouble4UnderTest().each);
}

TEST(WideDouble4, MovesLanesAndPairsToTheirPlaces) {
    if (!trammel_detail::HasWideVectors()) {
        GTEST_SKIP() << "this processor has no AVX2";
    }
    ExpectMoves(trammel_test::WideDouble4UnderTest());
    ExpectPairs(trammel_test::WideDouble4UnderTest());
    ExpectSumByHalves(trammel_test::WideDouble4UnderTest());
    ExpectRunningSumsByPairs(trammel_test::WideDouble4UnderTest());
    double const from[4] = {0.0, 1.0, 2.0, 3.0};
    std::array<double, 16> out = {};
    trammel_test::MovePairsOfWideDouble4(from, out.data());
    EXPECT_EQ(out, (std::array<double, 16>{0.0, 1.0, 0.0, 1.0, 0.0, 0.0, 2.0, 2.0, //
                                           1.0, 1.0, 3.0, 3.0, 0.0, 1.0, 2.0, 3.0}));
}

#endif

TEST(Short8, ComparesAndOrdersEachLane) {
    std::int16_t const values[] = {0, 1, -1, 2, 32767, -32768, 100, -100};
    for (int shift = 0; shift < 8; ++shift) {
        std::int16_t a[8];
        std::int16_t b[8];
        for (int i = 0; i < 8; ++i) {
            a[i] = values[i];
            b[i] = values[(i + shift) % 8];
        }
        Short8 const x = Short8::Load(a);
        Short8 const y = Short8::Load(b);
        for (int i = 0; i < 8; ++i) {
            EXPECT_EQ((x > y)[i], a[i] > b[i] ? -1 : 0);
            EXPECT_EQ(((x > y) | (y > x))[i], a[i] != b[i] ? -1 : 0);
            EXPECT_EQ(((x > y) & (x > Short8(std::int16_t{0})))[i],
                      a[i] > b[i] && a[i] > 0 ? -1 : 0);
            EXPECT_EQ(Min(x, y)[i], a[i] < b[i] ? a[i] : b[i]);
            EXPECT_EQ(Max(x, y)[i], a[i] > b[i] ? a[i] : b[i]);
        }
    }
}

TEST(Short8, AddsAndMultipliesEachLane) {
    std::int16_t const values[] = {0, 1, -1, 3, 16384, -16384, 255, -255};
    std::int16_t const factors[] = {32767, -32768, 32767, -32767, 4, -4, 256, 257};
    for (int shift = 0; shift < 8; ++shift) {
        std::int16_t b[8];
        for (int i = 0; i < 8; ++i) {
            b[i] = factors[(i + shift) % 8];
        }
        Short8 const sum = Short8::Load(values) + Short8(std::int16_t{-7});
        Short8 const product = MultiplyHigh(Short8::Load(values), Short8::Load(b));
        for (int i = 0; i < 8; ++i) {
            EXPECT_EQ(sum[i], values[i] - 7);
            EXPECT_EQ(product[i], std::floor(static_cast<double>(values[i]) * b[i] / 65536.0));
        }
    }
}
TEST(Short8, LoadsTwoIntegersAndZeros) {
    std::int16_t const values[3] = {-5, 7, 9};
    Short8 const two = Short8::LoadTwo(values);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(two[i], i == 0 ? -5 : i == 1 ? 7 : 0);
    }
    EXPECT_EQ(trammel_detail::Lane<1>(two), 7);
}

TEST(Scalars, HaveTheMinimumAndMaximumOfVectors) {
    for (double const a : Values()) {
        for (double const b : Values()) {
            EXPECT_EQ(BitsOf(trammel_detail::Min(a, b)), BitsOf(a < b ? a : b));
            EXPECT_EQ(BitsOf(trammel_detail::Max(a, b)), BitsOf(a > b ? a : b));
        }
    }
}

TEST(Short8, TellsTheBitsOfTwoMasksInOrder) {
    for (unsigned bits = 0; bits < 0x10000; ++bits) {
        std::int16_t lanes[16];
        for (unsigned i = 0; i < 16; ++i) {
            lanes[i] = static_cast<std::int16_t>(-static_cast<int>(bits >> i & 1));
        }
        ASSERT_EQ(BitsOfTwo(Short8::Load(lanes), Short8::Load(lanes + 8)), bits);
    }
}

} // namespace
