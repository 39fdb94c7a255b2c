// SPDX-License-Identifier: MIT

#include "Hypot_p.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace trammel_detail {

namespace {

/// Brings all legs whose squares overflow or lose bits to where neither happens, and back.
constexpr double kUp = 0x1p+600;
constexpr double kDown = 0x1p-600;

/// True for a NaN that asks for an exception. Arithmetic on it gives a quiet one.
bool IsSignalling(double x) {
    constexpr std::uint64_t kQuiet = std::uint64_t{1} << 51;
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    return std::isnan(x) && (bits & kQuiet) == 0;
}

} // namespace

double RareHypot(double h, double v) {
    if (std::isinf(h) || std::isinf(v)) {
        return IsSignalling(h) || IsSignalling(v) ? std::numeric_limits<double>::quiet_NaN()
                                                  : std::numeric_limits<double>::infinity();
    }
    if (std::isnan(h) || std::isnan(v)) {
        return h + v;
    }
    double const absH = std::abs(h);
    double const absV = std::abs(v);
    double const longer = absH < absV ? absV : absH;
    double const shorter = absH < absV ? absH : absV;
    // In each branch the product neither overflows nor underflows where the answer matters.
    if (longer > kHypotLargest) {
        return shorter <= longer * kHypotNegligible
                   ? longer + shorter
                   : CorrectedHypot(longer * kDown, shorter * kDown) * kUp;
    }
    return longer >= shorter * (1.0 / kHypotNegligible)
               ? longer + shorter
               : CorrectedHypot(longer * kUp, shorter * kUp) * kDown;
}

} // namespace trammel_detail
