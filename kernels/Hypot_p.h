// SPDX-License-Identifier: MIT

// The length of a vector, neither overflowing nor underflowing on the way. Not installed.
//
// C libraries differ in the last bit of hypot, and glibc does from one processor to another. The
// form here uses the four operations and the square root alone, so its bits are the same on every
// machine. They are those of glibc 2.35 and later on processors without fused operations, as
// x86-64.
//
// Files for AVX2 include this header. So all functions are always inlined, and use none of the C++
// library's inline functions (Vector_p.h tells the rule).

#ifndef TRAMMEL_HYPOT_P_H
#define TRAMMEL_HYPOT_P_H

namespace trammel_detail {

inline constexpr double kHypotLargest = 0x1p+511;  ///< squares of larger legs may overflow
inline constexpr double kHypotSmallest = 0x1p-459; ///< squares of smaller legs may lose bits
/// A shorter leg of at most this part of the longer one changes the result by rounding only.
inline constexpr double kHypotNegligible = 0x1p-54;

/// Returns the length of a vector from its legs' magnitudes, `longer` >= `shorter`. One step of
/// Newton's method mends the square root; its residual is formed without cancellation.
///
/// Source: Carlos F. Borges, "Algorithm 1014: An Improved Algorithm for hypot(x,y)", ACM
/// Transactions on Mathematical Software 47 (2020), the form without fused operations.
/// Requires that neither square overflows or underflows.
[[gnu::always_inline]] inline double CorrectedHypot(double longer, double shorter) {
    double h = __builtin_sqrt(longer * longer + shorter * shorter);
    double residual;
    if (h <= 2.0 * shorter) {
        double const delta = h - shorter;
        residual = longer * (2.0 * delta - longer) + (delta - 2.0 * (longer - shorter)) * delta;
    } else {
        double const delta = h - longer;
        residual = 2.0 * delta * (longer - 2.0 * shorter) +
                   ((4.0 * delta - shorter) * shorter + delta * delta);
    }
    h -= residual / (2.0 * h);
    return h;
}

/// Hypot for what it does not decide inline: very large, very small and special arguments.
double RareHypot(double h, double v);

/// Returns the root of h² + v², off by less than a unit in the last place. An infinity beats a NaN.
[[gnu::always_inline]] inline double Hypot(double h, double v) {
    double const absH = __builtin_fabs(h);
    double const absV = __builtin_fabs(v);
    double const longer = absH < absV ? absV : absH;
    double const shorter = absH < absV ? absH : absV;
    // A NaN makes both conditions false.
    if (longer <= kHypotLargest && shorter >= kHypotSmallest) {
        return shorter <= longer * kHypotNegligible ? longer + shorter
                                                    : CorrectedHypot(longer, shorter);
    }
    if (shorter == 0.0 && longer <= kHypotLargest) {
        return longer;
    }
    return RareHypot(h, v);
}

} // namespace trammel_detail

#endif
