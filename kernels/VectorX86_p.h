// SPDX-License-Identifier: MIT

// The vector operations that the compilers cannot express, for x86 processors with SSE2, and for
// those with AVX2 in files that are compiled for them. VectorPlain_p.h describes each. Not
// installed.

#ifndef TRAMMEL_VECTORX86_P_H
#define TRAMMEL_VECTORX86_P_H

#include "VectorRaw_p.h"

#if defined(__AVX2__)
#include <immintrin.h>
#else
#include <emmintrin.h>
#endif

namespace trammel_detail {

[[gnu::always_inline]] inline double RawMin(double a, double b) {
    return _mm_cvtsd_f64(_mm_min_sd(_mm_set_sd(a), _mm_set_sd(b)));
}

[[gnu::always_inline]] inline double RawMax(double a, double b) {
    return _mm_cvtsd_f64(_mm_max_sd(_mm_set_sd(a), _mm_set_sd(b)));
}

[[gnu::always_inline]] inline RawDouble2 RawMin(RawDouble2 const& a, RawDouble2 const& b) {
    return _mm_min_pd(a, b);
}

[[gnu::always_inline]] inline RawDouble2 RawMax(RawDouble2 const& a, RawDouble2 const& b) {
    return _mm_max_pd(a, b);
}

[[gnu::always_inline]] inline RawDouble2 RawSqrt(RawDouble2 const& a) { return _mm_sqrt_pd(a); }

[[gnu::always_inline]] inline RawDouble2 RawSelect(RawMask2 const& mask, RawDouble2 const& a,
                                                   RawDouble2 const& b) {
    return (RawDouble2)(((RawMask2)a & mask) | ((RawMask2)b & ~mask));
}

[[gnu::always_inline]] inline unsigned RawBits(RawMask2 const& mask) {
    return static_cast<unsigned>(_mm_movemask_pd((__m128d)mask));
}

[[gnu::always_inline]] inline unsigned RawBitsOfEight(RawMask2 const (&masks)[8]) {
    // Packing with saturation keeps all ones and all zeros, from 64 bits to 32, 16 and 8.
    __m128i const m0 = _mm_packs_epi32((__m128i)masks[0], (__m128i)masks[1]);
    __m128i const m1 = _mm_packs_epi32((__m128i)masks[2], (__m128i)masks[3]);
    __m128i const m2 = _mm_packs_epi32((__m128i)masks[4], (__m128i)masks[5]);
    __m128i const m3 = _mm_packs_epi32((__m128i)masks[6], (__m128i)masks[7]);
    __m128i const bytes = _mm_packs_epi16(_mm_packs_epi32(m0, m1), _mm_packs_epi32(m2, m3));
    return static_cast<unsigned>(_mm_movemask_epi8(bytes));
}

[[gnu::always_inline]] inline RawShort8 RawMultiplyHigh(RawShort8 const& a, RawShort8 const& b) {
    return (RawShort8)_mm_mulhi_epi16((__m128i)a, (__m128i)b);
}

[[gnu::always_inline]] inline unsigned RawBitsOfTwo(RawShort8 const& low, RawShort8 const& high) {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16((__m128i)low, (__m128i)high)));
}

#if defined(__AVX2__)

[[gnu::always_inline]] inline RawDouble4 RawMin(RawDouble4 const& a, RawDouble4 const& b) {
    return _mm256_min_pd(a, b);
}

[[gnu::always_inline]] inline RawDouble4 RawMax(RawDouble4 const& a, RawDouble4 const& b) {
    return _mm256_max_pd(a, b);
}

[[gnu::always_inline]] inline RawDouble4 RawSqrt(RawDouble4 const& a) { return _mm256_sqrt_pd(a); }

[[gnu::always_inline]] inline RawDouble4 RawSelect(RawMask4 const& mask, RawDouble4 const& a,
                                                   RawDouble4 const& b) {
    return _mm256_blendv_pd(b, a, (__m256d)mask);
}

[[gnu::always_inline]] inline unsigned RawBits(RawMask4 const& mask) {
    return static_cast<unsigned>(_mm256_movemask_pd((__m256d)mask));
}

[[gnu::always_inline]] inline RawDouble4 RawRepeat(RawDouble2 const& pair) {
    // _mm256_broadcast_pd would ask for the pair in memory.
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(pair), pair, 1);
}

[[gnu::always_inline]] inline RawDouble2 RawHigh(RawDouble4 const& a) {
    return _mm256_extractf128_pd(a, 1);
}

#endif

} // namespace trammel_detail

#endif
