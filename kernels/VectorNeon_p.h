// SPDX-License-Identifier: MIT

// The vector operations that the compilers cannot express, for ARM processors of 64 bits, all of
// which have NEON. VectorPlain_p.h describes each. Not installed.

#ifndef TRAMMEL_VECTORNEON_P_H
#define TRAMMEL_VECTORNEON_P_H

#include "VectorRaw_p.h"

#if defined(__aarch64__) // so that a check on another processor can read this header alone

#include <arm_neon.h>

namespace trammel_detail {

// NEON's own minimum and maximum give a NaN for a NaN, and order the zeros. So these compare and
// select.

[[gnu::always_inline]] inline double RawMin(double a, double b) { return a < b ? a : b; }

[[gnu::always_inline]] inline double RawMax(double a, double b) { return a > b ? a : b; }

[[gnu::always_inline]] inline RawDouble2 RawSelect(RawMask2 const& mask, RawDouble2 const& a,
                                                   RawDouble2 const& b) {
    return (RawDouble2)vbslq_f64((uint64x2_t)mask, (float64x2_t)a, (float64x2_t)b);
}

[[gnu::always_inline]] inline RawDouble2 RawMin(RawDouble2 const& a, RawDouble2 const& b) {
    return RawSelect((RawMask2)(a < b), a, b);
}

[[gnu::always_inline]] inline RawDouble2 RawMax(RawDouble2 const& a, RawDouble2 const& b) {
    return RawSelect((RawMask2)(a > b), a, b);
}

[[gnu::always_inline]] inline RawDouble2 RawSqrt(RawDouble2 const& a) {
    return (RawDouble2)vsqrtq_f64((float64x2_t)a);
}

[[gnu::always_inline]] inline unsigned RawBits(RawMask2 const& mask) {
    // Lane 0 keeps its bit 0, lane 1 its bit 1.
    std::uint64_t const bits =
        (static_cast<std::uint64_t>(mask[0]) & 1) | (static_cast<std::uint64_t>(mask[1]) & 2);
    return static_cast<unsigned>(bits);
}

/// Returns the 16 bits that the bytes of a mask stand for.
[[gnu::always_inline]] inline unsigned RawBitsOfBytes(uint8x16_t bytes) {
    uint8x16_t const place = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
    uint8x16_t const bits = vandq_u8(bytes, place);
    // Each half adds up to its eight bits.
    return static_cast<unsigned>(vaddv_u8(vget_low_u8(bits))) |
           static_cast<unsigned>(vaddv_u8(vget_high_u8(bits))) << 8;
}

/// Returns the lower halves of all lanes of two vectors, as of masks.
[[gnu::always_inline]] inline uint16x8_t RawHalves(RawMask2 const& a, RawMask2 const& b,
                                                   RawMask2 const& c, RawMask2 const& d) {
    uint32x4_t const ab = vuzp1q_u32((uint32x4_t)a, (uint32x4_t)b);
    uint32x4_t const cd = vuzp1q_u32((uint32x4_t)c, (uint32x4_t)d);
    return vuzp1q_u16((uint16x8_t)ab, (uint16x8_t)cd);
}

[[gnu::always_inline]] inline unsigned RawBitsOfEight(RawMask2 const (&masks)[8]) {
    uint16x8_t const low = RawHalves(masks[0], masks[1], masks[2], masks[3]);
    uint16x8_t const high = RawHalves(masks[4], masks[5], masks[6], masks[7]);
    return RawBitsOfBytes(vuzp1q_u8((uint8x16_t)low, (uint8x16_t)high));
}

[[gnu::always_inline]] inline RawShort8 RawMultiplyHigh(RawShort8 const& a, RawShort8 const& b) {
    int32x4_t const low = vmull_s16(vget_low_s16((int16x8_t)a), vget_low_s16((int16x8_t)b));
    int32x4_t const high = vmull_high_s16((int16x8_t)a, (int16x8_t)b);
    return (RawShort8)vuzp2q_s16((int16x8_t)low, (int16x8_t)high);
}

[[gnu::always_inline]] inline unsigned RawBitsOfTwo(RawShort8 const& low, RawShort8 const& high) {
    return RawBitsOfBytes(vuzp1q_u8((uint8x16_t)low, (uint8x16_t)high));
}

} // namespace trammel_detail

#endif

#endif
