// SPDX-License-Identifier: MIT

// The vector operations that the compilers cannot express, lane by lane, for processors that have
// no header of their own. A header for another family of processors defines the same functions. Not
// installed.
//
// Every mask holds all ones or all zeros in each lane.

#ifndef TRAMMEL_VECTORPLAIN_P_H
#define TRAMMEL_VECTORPLAIN_P_H

#include "VectorRaw_p.h"

namespace trammel_detail {

/// Returns a < b ? a : b, without a branch if the processor can do that.
[[gnu::always_inline]] inline double RawMin(double a, double b) { return a < b ? a : b; }

/// Returns a > b ? a : b, without a branch if the processor can do that.
[[gnu::always_inline]] inline double RawMax(double a, double b) { return a > b ? a : b; }

/// Returns in each lane a < b ? a : b.
template <class Raw> [[gnu::always_inline]] inline Raw RawMin(Raw const& a, Raw const& b) {
    return a < b ? a : b;
}

/// Returns in each lane a > b ? a : b.
template <class Raw> [[gnu::always_inline]] inline Raw RawMax(Raw const& a, Raw const& b) {
    return a > b ? a : b;
}

/// Returns the square root of each lane.
template <class Raw> [[gnu::always_inline]] inline Raw RawSqrt(Raw const& a) {
    Raw roots = a;
    for (unsigned i = 0; i < sizeof(Raw) / sizeof(double); ++i) {
        roots[i] = __builtin_sqrt(a[i]);
    }
    return roots;
}

/// Returns `a` in the lanes where the mask is set, else `b`.
template <class RawMask, class Raw>
[[gnu::always_inline]] inline Raw RawSelect(RawMask const& mask, Raw const& a, Raw const& b) {
    return (Raw)(((RawMask)a & mask) | ((RawMask)b & ~mask));
}

/// Returns a number whose bit i is lane i of the mask.
template <class RawMask> [[gnu::always_inline]] inline unsigned RawBits(RawMask const& mask) {
    unsigned bits = 0;
    for (unsigned i = 0; i < sizeof(RawMask) / sizeof(std::int64_t); ++i) {
        bits |= static_cast<unsigned>(mask[i] & 1) << i;
    }
    return bits;
}

#if defined(__AVX2__)

/// Returns the pair in lanes 0 and 1, and again in lanes 2 and 3.
[[gnu::always_inline]] inline RawDouble4 RawRepeat(RawDouble2 const& pair) {
    return __builtin_shufflevector(pair, pair, 0, 1, 0, 1);
}

#endif

/// Returns lanes 2 and 3.
[[gnu::always_inline]] inline RawDouble2 RawHigh(RawDouble4 const& a) {
    return RawDouble2{a[2], a[3]};
}

/// Returns a number whose bits 2i and 2i + 1 are the lanes of mask i of eight.
[[gnu::always_inline]] inline unsigned RawBitsOfEight(RawMask2 const (&masks)[8]) {
    unsigned bits = 0;
    for (unsigned i = 0; i < 8; ++i) {
        bits |= RawBits(masks[i]) << 2 * i;
    }
    return bits;
}

/// Returns the upper half of each product: the product over 2^16, rounded down.
[[gnu::always_inline]] inline RawShort8 RawMultiplyHigh(RawShort8 const& a, RawShort8 const& b) {
    RawShort8 products = a;
    for (unsigned i = 0; i < 8; ++i) {
        products[i] = static_cast<std::int16_t>(std::int32_t{a[i]} * std::int32_t{b[i]} >> 16);
    }
    return products;
}

/// Returns a number whose bits 0 to 7 are the lanes of `low`, and bits 8 to 15 those of `high`.
[[gnu::always_inline]] inline unsigned RawBitsOfTwo(RawShort8 const& low, RawShort8 const& high) {
    unsigned bits = 0;
    for (unsigned i = 0; i < 8; ++i) {
        bits |= static_cast<unsigned>(low[i] & 1) << i;
        bits |= static_cast<unsigned>(high[i] & 1) << (i + 8);
    }
    return bits;
}

} // namespace trammel_detail

#endif
