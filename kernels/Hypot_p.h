// SPDX-License-Identifier: MIT
//
// The C library's hypot, inlined. Not installed.
//
// Lengths are what hypot gives, to the last bit, and calling it is most of what a length costs. The
// form here is used where it gives the C library's bits: the build compares the two (see
// cmake/TrammelHypot.cmake) and defines TRAMMEL_INLINE_HYPOT when they agree. Elsewhere the C
// library itself is called.
//
// Always inlined, and without the C++ library's own inline functions, as files that are compiled
// for certain processors only use it too.

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

// Outside of these magnitudes squares overflow, or lose bits that count.
inline constexpr double kHypotLargest = 0x1p+511;
inline constexpr double kHypotSmallest = 0x1p-459;
/// A shorter leg of at most this part of the longer one does not change the result but by rounding.
inline constexpr double kHypotNegligible = 0x1p-54;

/// The length of a vector from its legs' magnitudes, `longer` >= `shorter`: the square root, mended
/// by one step of Newton's method whose residual is formed without cancellation.
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

/// hypot(h, v), to the last bit of the C library's for every argument.
[[gnu::always_inline]] inline double Hypot(double h, double v) {
    if constexpr (kInlineHypot) {
        double const absH = __builtin_fabs(h);
        double const absV = __builtin_fabs(v);
        double const longer = absH < absV ? absV : absH;
        double const shorter = absH < absV ? absH : absV;
        // Written so that NaN goes the long way.
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
