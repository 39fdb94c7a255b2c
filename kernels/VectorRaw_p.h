// SPDX-License-Identifier: MIT

// Vectors as the compiler knows them, without a name for their operations. Not installed.
//
// GCC and Clang compute with these types on every processor: arithmetic, comparisons, bit
// operations and shuffles. A header for one family of processors (VectorX86_p.h, VectorNeon_p.h),
// or VectorPlain_p.h for all others, adds the few operations that the compilers cannot express.
// Vector_p.h makes the vocabulary of both.

#ifndef TRAMMEL_VECTORRAW_P_H
#define TRAMMEL_VECTORRAW_P_H

#include <cstdint>

namespace trammel_detail {

typedef double RawDouble2 __attribute__((vector_size(16)));
typedef std::int64_t RawMask2 __attribute__((vector_size(16)));
typedef double RawDouble4 __attribute__((vector_size(32)));
typedef std::int64_t RawMask4 __attribute__((vector_size(32)));
typedef std::uint64_t RawUnsigned2 __attribute__((vector_size(16)));
typedef std::uint64_t RawUnsigned4 __attribute__((vector_size(32)));
typedef std::int32_t RawInt4 __attribute__((vector_size(16)));
typedef std::int16_t RawShort8 __attribute__((vector_size(16)));

} // namespace trammel_detail

#endif
