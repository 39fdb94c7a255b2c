// SPDX-License-Identifier: MIT

// Whether all coordinates of a value are numbers.

#ifndef TRAMMEL_FINITE_H
#define TRAMMEL_FINITE_H

#include "CBezier.h"
#include "CPath.h"
#include "TPoint.h"
#include "TRect.h"

#include <algorithm>
#include <cmath>

namespace trammel_test {

/// True when no coordinate is a NaN or infinite.
inline bool IsFinite(TPoint<double> const& p) { return std::isfinite(p.h) && std::isfinite(p.v); }
inline bool IsFinite(TRect<double> const& r) {
    return std::isfinite(r.left) && std::isfinite(r.top) && std::isfinite(r.right) &&
           std::isfinite(r.bottom);
}
inline bool IsFinite(CBezier const& c) {
    return IsFinite(c.P0) && IsFinite(c.P1) && IsFinite(c.P2) && IsFinite(c.P3);
}
inline bool IsFinite(CPath const& path) {
    return std::all_of(path.mPts.begin(), path.mPts.end(),
                       [](TPoint<double> const& p) { return IsFinite(p); });
}

} // namespace trammel_test

#endif
