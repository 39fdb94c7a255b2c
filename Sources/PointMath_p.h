// SPDX-License-Identifier: MIT

// Small formulas on points and vectors. Not installed.

#ifndef TRAMMEL_POINTMATH_P_H
#define TRAMMEL_POINTMATH_P_H

#include "Hypot_p.h"
#include "TPoint.h"

namespace trammel_detail {

/// The distance of two points, the same bits as TLine::Length.
inline double Distance(TPoint<double> const& a, TPoint<double> const& b) {
    return Hypot(b.h - a.h, b.v - a.v);
}

} // namespace trammel_detail

#endif
