// SPDX-License-Identifier: MIT

// Points of the unit circle at whole parts of a turn, with the same bits on every machine. Not
// installed.

#ifndef TRAMMEL_UNITCIRCLE_P_H
#define TRAMMEL_UNITCIRCLE_P_H

#include "TPoint.h"
#include "UTrigonometry.h"

#include <cstddef>

namespace trammel_detail {

/// Returns the point at `i` / `n` of a turn from h toward v, for i <= n below 2^60. It is exact at
/// quarter turns. Each coordinate is right within 2^-51, and points that mirror each other in an
/// axis or a diagonal have the same digits.
///
/// Only sums and products make it: the Taylor series of sine and cosine up to an eighth of a turn.
inline TPoint<double> UnitPoint(std::size_t i, std::size_t n) {
    std::size_t const octant = 8 * i / n;
    std::size_t const rest = 8 * i % n;
    std::size_t const within = octant % 2 == 0 ? rest : n - rest;
    double const a = pi / 4.0 * (static_cast<double>(within) / static_cast<double>(n));
    double const x = a * a;
    double sine = 0.0;
    double cosine = 0.0;
    for (int k = 17; k >= 3; k -= 2) {
        sine = (1.0 + sine) * (-x / (k * (k - 1)));
        cosine = (1.0 + cosine) * (-x / ((k - 1) * (k - 2)));
    }
    sine = a + a * sine;
    cosine = 1.0 + cosine;
    if (within == n) { // the diagonal, on which both are the square root of a half
        sine = cosine = 0.70710678118654752440;
    }
    switch (octant % 8) {
    case 0:
        return TPoint<double>(cosine, sine);
    case 1:
        return TPoint<double>(sine, cosine);
    case 2:
        return TPoint<double>(-sine, cosine);
    case 3:
        return TPoint<double>(-cosine, sine);
    case 4:
        return TPoint<double>(-cosine, -sine);
    case 5:
        return TPoint<double>(-sine, -cosine);
    case 6:
        return TPoint<double>(sine, -cosine);
    default:
        return TPoint<double>(cosine, -sine);
    }
}

} // namespace trammel_detail

#endif
