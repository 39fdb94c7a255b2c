// SPDX-License-Identifier: MIT
//
// Four doubles worked on together. Not installed.
//
// Each lane is computed as a double of its own, with the same rounding, so that work on packs gives
// the bits that the same work one by one gives. There are two kinds with the same operations:
// PackPair, which every processor has, and PackAvx2, for files that are compiled for processors
// with AVX2. Code on packs is written as templates of the kind; nothing here is used without
// being inlined, so that no function compiled for one processor is ever called on another.

#ifndef TRAMMEL_PACK_P_H
#define TRAMMEL_PACK_P_H

#if defined(__AVX2__)
#include <immintrin.h>
#elif defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cstdint>

namespace trammel_detail {

/// Two vectors of two lanes.
struct PackPair {
    typedef double Half __attribute__((vector_size(16)));
    typedef std::int64_t HalfBits __attribute__((vector_size(16)));
    /// As Half, anywhere in memory.
    typedef double Loose __attribute__((vector_size(16), aligned(8), may_alias));

    /// For each lane, all bits or none.
    struct Mask {
        HalfBits low;
        HalfBits high;

        [[gnu::always_inline]] inline friend Mask operator&(Mask const& a, Mask const& b) {
            return Mask{a.low & b.low, a.high & b.high};
        }
        [[gnu::always_inline]] inline friend Mask operator|(Mask const& a, Mask const& b) {
            return Mask{a.low | b.low, a.high | b.high};
        }
        /// Bit i tells of lane i.
        [[gnu::always_inline]] inline unsigned Bits() const {
#if defined(__SSE2__)
            return static_cast<unsigned>(_mm_movemask_pd((__m128d)low)) |
                   static_cast<unsigned>(_mm_movemask_pd((__m128d)high)) << 2;
#else
            return static_cast<unsigned>((low[0] & 1) | (low[1] & 2) | (high[0] & 4) |
                                         (high[1] & 8));
#endif
        }
    };

    Half low;
    Half high;

    [[gnu::always_inline]] inline static PackPair All(double x) {
        return PackPair{Half{x, x}, Half{x, x}};
    }
    [[gnu::always_inline]] inline static PackPair Of(double a, double b, double c, double d) {
        return PackPair{Half{a, b}, Half{c, d}};
    }
    [[gnu::always_inline]] inline static PackPair Load(double const* from) {
        return PackPair{*reinterpret_cast<Loose const*>(from),
                        *reinterpret_cast<Loose const*>(from + 2)};
    }
    [[gnu::always_inline]] inline void Store(double* to) const {
        *reinterpret_cast<Loose*>(to) = low;
        *reinterpret_cast<Loose*>(to + 2) = high;
    }
    [[gnu::always_inline]] inline double First() const { return low[0]; }
    [[gnu::always_inline]] inline double Second() const { return low[1]; }
    [[gnu::always_inline]] inline double LowSum() const { return low[0] + low[1]; }
    [[gnu::always_inline]] inline double HighSum() const { return high[0] + high[1]; }
    /// The sum of the lanes, as (0 + 2) + (1 + 3).
    [[gnu::always_inline]] inline double Total() const {
        Half const two = low + high;
        return two[0] + two[1];
    }

    [[gnu::always_inline]] inline friend PackPair operator+(PackPair const& a, PackPair const& b) {
        return PackPair{a.low + b.low, a.high + b.high};
    }
    [[gnu::always_inline]] inline friend PackPair operator-(PackPair const& a, PackPair const& b) {
        return PackPair{a.low - b.low, a.high - b.high};
    }
    [[gnu::always_inline]] inline friend PackPair operator*(PackPair const& a, PackPair const& b) {
        return PackPair{a.low * b.low, a.high * b.high};
    }
    [[gnu::always_inline]] inline friend PackPair operator/(PackPair const& a, PackPair const& b) {
        return PackPair{a.low / b.low, a.high / b.high};
    }
    [[gnu::always_inline]] inline friend Mask operator<=(PackPair const& a, PackPair const& b) {
        return Mask{a.low <= b.low, a.high <= b.high};
    }
    [[gnu::always_inline]] inline friend Mask operator<(PackPair const& a, PackPair const& b) {
        return Mask{a.low < b.low, a.high < b.high};
    }
    [[gnu::always_inline]] inline static PackPair Abs(PackPair const& a) {
        HalfBits const magnitude = {INT64_MAX, INT64_MAX};
        return PackPair{(Half)((HalfBits)a.low & magnitude), (Half)((HalfBits)a.high & magnitude)};
    }
    [[gnu::always_inline]] inline static PackPair Sqrt(PackPair const& a) {
#if defined(__SSE2__)
        return PackPair{_mm_sqrt_pd(a.low), _mm_sqrt_pd(a.high)};
#else
        return PackPair{Half{__builtin_sqrt(a.low[0]), __builtin_sqrt(a.low[1])},
                        Half{__builtin_sqrt(a.high[0]), __builtin_sqrt(a.high[1])}};
#endif
    }
    /// In each lane, `a` where the mask is set, else `b`.
    [[gnu::always_inline]] inline static PackPair Choose(Mask const& mask, PackPair const& a,
                                                         PackPair const& b) {
        return PackPair{(Half)(((HalfBits)a.low & mask.low) | ((HalfBits)b.low & ~mask.low)),
                        (Half)(((HalfBits)a.high & mask.high) | ((HalfBits)b.high & ~mask.high))};
    }
    /// The first lanes of `a` and `b`, twice.
    [[gnu::always_inline]] inline static PackPair Firsts(PackPair const& a, PackPair const& b) {
        Half const both = {a.low[0], b.low[0]};
        return PackPair{both, both};
    }
    /// The first two lanes of `a`, then those of `b`.
    [[gnu::always_inline]] inline static PackPair FirstTwos(PackPair const& a, PackPair const& b) {
        return PackPair{a.low, b.low};
    }
    /// The last lane of `a`, then the first three of `b`.
    [[gnu::always_inline]] inline static PackPair Preceding(PackPair const& a, PackPair const& b) {
        return PackPair{Half{a.high[1], b.low[0]}, Half{b.low[1], b.high[0]}};
    }
    /// Stores lane i of `a` and lane i of `b` side by side at `to[i]`.
    [[gnu::always_inline]] inline static void StorePairs(PackPair const& a, PackPair const& b,
                                                         double* const (&to)[4]) {
        *reinterpret_cast<Loose*>(to[0]) = Half{a.low[0], b.low[0]};
        *reinterpret_cast<Loose*>(to[1]) = Half{a.low[1], b.low[1]};
        *reinterpret_cast<Loose*>(to[2]) = Half{a.high[0], b.high[0]};
        *reinterpret_cast<Loose*>(to[3]) = Half{a.high[1], b.high[1]};
    }
    /// Reads four pairs that lie one after the other: their first members to `a`, in the lanes' own
    /// order (0, 1, 2, 3), their second ones to `b`.
    [[gnu::always_inline]] inline static void LoadPairs(double const* from, PackPair& a,
                                                        PackPair& b) {
        PackPair const first = Load(from);
        PackPair const second = Load(from + 4);
        a = PackPair{Half{first.low[0], first.high[0]}, Half{second.low[0], second.high[0]}};
        b = PackPair{Half{first.low[1], first.high[1]}, Half{second.low[1], second.high[1]}};
    }
};

#if defined(__AVX2__)

/// One vector of four lanes.
struct PackAvx2 {
    struct Mask {
        __m256d value;

        [[gnu::always_inline]] inline friend Mask operator&(Mask const& a, Mask const& b) {
            return Mask{_mm256_and_pd(a.value, b.value)};
        }
        [[gnu::always_inline]] inline friend Mask operator|(Mask const& a, Mask const& b) {
            return Mask{_mm256_or_pd(a.value, b.value)};
        }
        [[gnu::always_inline]] inline unsigned Bits() const {
            return static_cast<unsigned>(_mm256_movemask_pd(value));
        }
    };

    __m256d value;

    [[gnu::always_inline]] inline static PackAvx2 All(double x) {
        return PackAvx2{_mm256_set1_pd(x)};
    }
    [[gnu::always_inline]] inline static PackAvx2 Of(double a, double b, double c, double d) {
        return PackAvx2{_mm256_setr_pd(a, b, c, d)};
    }
    [[gnu::always_inline]] inline static PackAvx2 Load(double const* from) {
        return PackAvx2{_mm256_loadu_pd(from)};
    }
    [[gnu::always_inline]] inline void Store(double* to) const { _mm256_storeu_pd(to, value); }
    [[gnu::always_inline]] inline double First() const { return value[0]; }
    [[gnu::always_inline]] inline double Second() const { return value[1]; }
    [[gnu::always_inline]] inline double LowSum() const { return value[0] + value[1]; }
    [[gnu::always_inline]] inline double HighSum() const {
        __m128d const high = _mm256_extractf128_pd(value, 1);
        return high[0] + high[1];
    }
    [[gnu::always_inline]] inline double Total() const {
        __m128d const two =
            _mm_add_pd(_mm256_castpd256_pd128(value), _mm256_extractf128_pd(value, 1));
        return two[0] + two[1];
    }

    [[gnu::always_inline]] inline friend PackAvx2 operator+(PackAvx2 const& a, PackAvx2 const& b) {
        return PackAvx2{_mm256_add_pd(a.value, b.value)};
    }
    [[gnu::always_inline]] inline friend PackAvx2 operator-(PackAvx2 const& a, PackAvx2 const& b) {
        return PackAvx2{_mm256_sub_pd(a.value, b.value)};
    }
    [[gnu::always_inline]] inline friend PackAvx2 operator*(PackAvx2 const& a, PackAvx2 const& b) {
        return PackAvx2{_mm256_mul_pd(a.value, b.value)};
    }
    [[gnu::always_inline]] inline friend PackAvx2 operator/(PackAvx2 const& a, PackAvx2 const& b) {
        return PackAvx2{_mm256_div_pd(a.value, b.value)};
    }
    [[gnu::always_inline]] inline friend Mask operator<=(PackAvx2 const& a, PackAvx2 const& b) {
        return Mask{_mm256_cmp_pd(a.value, b.value, _CMP_LE_OQ)};
    }
    [[gnu::always_inline]] inline friend Mask operator<(PackAvx2 const& a, PackAvx2 const& b) {
        return Mask{_mm256_cmp_pd(a.value, b.value, _CMP_LT_OQ)};
    }
    [[gnu::always_inline]] inline static PackAvx2 Abs(PackAvx2 const& a) {
        return PackAvx2{_mm256_andnot_pd(_mm256_set1_pd(-0.0), a.value)};
    }
    [[gnu::always_inline]] inline static PackAvx2 Sqrt(PackAvx2 const& a) {
        return PackAvx2{_mm256_sqrt_pd(a.value)};
    }
    [[gnu::always_inline]] inline static PackAvx2 Choose(Mask const& mask, PackAvx2 const& a,
                                                         PackAvx2 const& b) {
        return PackAvx2{_mm256_blendv_pd(b.value, a.value, mask.value)};
    }
    [[gnu::always_inline]] inline static PackAvx2 Firsts(PackAvx2 const& a, PackAvx2 const& b) {
        __m256d const both = _mm256_unpacklo_pd(a.value, b.value);
        return PackAvx2{_mm256_permute2f128_pd(both, both, 0x00)};
    }
    [[gnu::always_inline]] inline static PackAvx2 FirstTwos(PackAvx2 const& a, PackAvx2 const& b) {
        return PackAvx2{_mm256_permute2f128_pd(a.value, b.value, 0x20)};
    }
    [[gnu::always_inline]] inline static PackAvx2 Preceding(PackAvx2 const& a, PackAvx2 const& b) {
        __m256d const between = _mm256_permute2f128_pd(a.value, b.value, 0x21); // a2, a3, b0, b1
        return PackAvx2{_mm256_shuffle_pd(between, b.value, 0x5)};
    }
    [[gnu::always_inline]] inline static void StorePairs(PackAvx2 const& a, PackAvx2 const& b,
                                                         double* const (&to)[4]) {
        __m256d const even = _mm256_unpacklo_pd(a.value, b.value);
        __m256d const odd = _mm256_unpackhi_pd(a.value, b.value);
        _mm_storeu_pd(to[0], _mm256_castpd256_pd128(even));
        _mm_storeu_pd(to[1], _mm256_castpd256_pd128(odd));
        _mm_storeu_pd(to[2], _mm256_extractf128_pd(even, 1));
        _mm_storeu_pd(to[3], _mm256_extractf128_pd(odd, 1));
    }
    [[gnu::always_inline]] inline static void LoadPairs(double const* from, PackAvx2& a,
                                                        PackAvx2& b) {
        __m256d const first = _mm256_loadu_pd(from);
        __m256d const second = _mm256_loadu_pd(from + 4);
        __m256d const even = _mm256_unpacklo_pd(first, second); // lanes 0, 2, 1, 3
        __m256d const odd = _mm256_unpackhi_pd(first, second);
        a = PackAvx2{_mm256_permute4x64_pd(even, 0xD8)};
        b = PackAvx2{_mm256_permute4x64_pd(odd, 0xD8)};
    }
};

#endif

} // namespace trammel_detail

#endif
