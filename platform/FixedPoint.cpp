// SPDX-License-Identifier: MIT

#include "FixedPoint.h"

#include <cmath>

Fixed X2Fix(double x) noexcept {
    // Multiplying by a power of two is exact, or infinite beyond the range of doubles.
    double const scaled = std::round(x * 65536.0);
    if (scaled >= 2147483647.0) {
        return INT32_MAX;
    }
    // No comparison holds for a NaN: negated, this one takes it here too.
    if (!(scaled > -2147483648.0)) {
        return INT32_MIN;
    }
    return static_cast<Fixed>(scaled);
}

Fixed FixDiv(Fixed dividend, Fixed divisor) noexcept {
    if (divisor == 0) {
        return dividend < 0 ? INT32_MIN : INT32_MAX;
    }
    std::int64_t const sign = divisor < 0 ? -1 : 1;
    std::int64_t const over = sign * dividend;
    std::int64_t const under = sign * divisor;
    // The nearest integer to q, ties upward, is floor(q + 1/2) with q = 65536 over / under. The
    // numerator stays below 2^49, so nothing overflows.
    std::int64_t const numerator = 131072 * over + under;
    std::int64_t const denominator = 2 * under;
    std::int64_t quotient = numerator / denominator;
    if (numerator % denominator < 0) {
        --quotient; // division truncates toward zero
    }
    if (quotient > INT32_MAX) {
        return INT32_MAX;
    }
    return quotient < INT32_MIN ? INT32_MIN : static_cast<Fixed>(quotient);
}
