// SPDX-License-Identifier: MIT

// Powers of two that keep products of coordinates in range. Not installed.

#ifndef TRAMMEL_RANGESCALE_P_H
#define TRAMMEL_RANGESCALE_P_H

#include "TPoint.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace trammel_detail {

/// Returns the power of two that brings finite coordinates into the range in which their products
/// are numbers. 1 for all usual ones.
inline double RangeScale(std::vector<TPoint<double>> const& points) {
    constexpr int kMostExponent = 150;
    constexpr int kMostScale = 1000; // it and its inverse are numbers
    double greatest = 0.0;
    for (TPoint<double> const& p : points) {
        for (double const x : {std::abs(p.h), std::abs(p.v)}) {
            greatest = x > greatest && std::isfinite(x) ? x : greatest;
        }
    }
    if (greatest == 0.0) {
        return 1.0;
    }
    int const exponent = std::ilogb(greatest);
    if (std::abs(exponent) <= kMostExponent) {
        return 1.0;
    }
    return std::ldexp(1.0, std::min(std::max(-exponent, -kMostScale), kMostScale));
}

} // namespace trammel_detail

#endif
