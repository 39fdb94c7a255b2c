// SPDX-License-Identifier: MIT

// 16.16 fixed-point numbers.

#ifndef TRAMMEL_FIXEDPOINT_H
#define TRAMMEL_FIXEDPOINT_H

#include "TrammelExport.h"

#include <cstdint>

/// A fixed-point number: the value is the integer divided by 65536. The range is -32768 to
/// 32767 + 65535/65536 in steps of 1/65536.
typedef std::int32_t Fixed;

/// Returns the number's value, exactly.
inline constexpr double Fix2X(Fixed f) noexcept { return static_cast<double>(f) / 65536.0; }

/// Returns the fixed-point number nearest to `x`; a tie goes away from zero.
/// Values above the range and +infinity give 0x7FFFFFFF; values below it, -infinity and NaN give
/// 0x80000000.
TRAMMEL_API Fixed X2Fix(double x) noexcept;

/// Returns the integer as a fixed-point number: 0x7FFFFFFF above 32767, 0x80000000 below -32768.
inline constexpr Fixed Long2Fix(std::int32_t value) noexcept {
    return value > INT16_MAX ? INT32_MAX : value < INT16_MIN ? INT32_MIN : value * 65536;
}

/// Returns the nearest integer, from -32768 to 32768; a tie goes away from zero.
inline constexpr std::int32_t Fix2Long(Fixed f) noexcept {
    constexpr std::int64_t half = 0x8000;
    std::int64_t const wide = f;
    return static_cast<std::int32_t>(wide >= 0 ? (wide + half) / 65536 : (wide - half) / 65536);
}

/// Returns the quotient as the nearest fixed-point number; a tie goes toward plus infinity.
/// Quotients beyond the range give 0x7FFFFFFF or 0x80000000. A zero divisor gives 0x7FFFFFFF, or
/// 0x80000000 when the dividend is negative.
TRAMMEL_API Fixed FixDiv(Fixed dividend, Fixed divisor) noexcept;

#endif
