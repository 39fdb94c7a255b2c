// SPDX-License-Identifier: MIT

// Conversions to integers, and integer arithmetic, that are defined for every operand.

#ifndef TRAMMEL_INTEGERS_H
#define TRAMMEL_INTEGERS_H

#include <cstdint>

namespace trammel_detail {

/// Returns `x` rounded toward zero; 0x80000000 (INT32_MIN) for NaN, for the infinities and where
/// the rounded number lies outside the 32-bit range. 2147483647.9 is inside, 2147483648.0 is not.
///
/// Every truncating conversion of the library goes through here: a plain cast is undefined outside
/// the range, and processors disagree about it.
inline constexpr std::int32_t TruncateToInt32(double x) noexcept {
    return x > -2147483649.0 && x < 2147483648.0 ? static_cast<std::int32_t>(x) : INT32_MIN;
}

/// Returns the integer with the low 16 bits of `value`.
inline constexpr std::int16_t LowInt16(std::int32_t value) noexcept {
    return static_cast<std::int16_t>(
        static_cast<std::uint16_t>(static_cast<std::uint32_t>(value) & 0xFFFFU));
}

/// Returns the low 16 bits of TruncateToInt32(x): 65537.5 gives 1, 40000.0 gives -25536. NaN, the
/// infinities and numbers outside the 32-bit range give 0.
inline constexpr std::int16_t TruncateToInt16(double x) noexcept {
    return LowInt16(TruncateToInt32(x));
}

/// Returns a + b modulo 2^32.
inline constexpr std::int32_t WrappingAdd(std::int32_t a, std::int32_t b) noexcept {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

} // namespace trammel_detail

#endif
