// SPDX-License-Identifier: MIT

// The C library's hypot, inlined. Not installed.
//
// Lengths have the bits of the C library's hypot, and calling it is most of a length's cost. The
// build compares the form here with the C library's (cmake/TrammelHypot.cmake). When the bits
// agree, it defines TRAMMEL_INLINE_HYPOT, and the form here runs. Otherwise the C library's own
// runs.
//
// Files for AVX2 include this header. So all functions are always inlined, and use none of the C++
// library's inline functions (Vector_p.h tells the rule).

#ifndef TRAMMEL_HYPOT_P_H
#define TRAMMEL_HYPOT_P_H

#include <cmath>

namespace trammel_detail {

/// True where the inlined form may stand for the C library's.
#ifdef TRAMMEL_INLINE_HYPOT
inline constexpr bool kInlineHypot = true;
#else
inline constexpr bool kInlineHypot = false;
#endif

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

/// Returns hypot(h, v), with the C library's bits for every argument.
[[gnu::always_inline]] inline double Hypot(double h, double v) {
    if constexpr (kInlineHypot) {
        double const absH = __builtin_fabs(h);
        double const absV = __builtin_fabs(v);
        double const longer = absH < absV ? absV : absH;
        double const shorter = absH < absV ? absH : absV;
        // Both comparisons are false for a NaN, which is left to the C library.
        if (longer <= kHypotLargest && shorter >= kHypotSmallest) {
            return shorter <= longer * kHypotNegligible ? longer + shorter
                                                        : CorrectedHypot(longer, shorter);
        }
        if (shorter == 0.0 && longer <= kHypotLargest) {
            return longer;
        }
    }
    return std::hypot(h, v);
}

} // namespace trammel_detail

#endif
