// SPDX-License-Identifier: MIT

// Small formulas on points and vectors. Not installed.

#ifndef TRAMMEL_POINTMATH_P_H
#define TRAMMEL_POINTMATH_P_H

#include "Hypot_p.h"
#include "PointAlgebra.h"
#include "TPoint.h"

#include <cmath>

namespace trammel_detail {

/// Returns the distance of two points: the bits of TLine::Length.
inline double Distance(TPoint<double> const& a, TPoint<double> const& b) {
    return Hypot(b.h - a.h, b.v - a.v);
}

using trammel::Cross;
using trammel::Dot;

/// Returns the square of the vector's length.
inline double Square(TPoint<double> const& a) { return a.h * a.h + a.v * a.v; }
/// Returns |h| + |v|, which is between the vector's length and sqrt(2) times it.
inline double Taxicab(TPoint<double> const& a) { return std::abs(a.h) + std::abs(a.v); }
/// True when neither coordinate is NaN or infinite.
inline bool IsFinite(TPoint<double> const& a) { return std::isfinite(a.h) && std::isfinite(a.v); }

} // namespace trammel_detail

#endif
