// SPDX-License-Identifier: MIT

// A cubic divided at its middle, inline. Not installed.

#ifndef TRAMMEL_HALVE_P_H
#define TRAMMEL_HALVE_P_H

#include "TPoint.h"

namespace trammel_detail {

/// Splits the cubic `c` at its middle into `left` and `right`, of which one may be `c`. Returns the
/// split point. This is CBezier::Divide, inline for the loops that spend most of their time in it.
template <class Curve> inline TPoint<double> Halve(Curve const& c, Curve& left, Curve& right) {
    TPoint<double> const m01 = (c.P0 + c.P1) / 2.0;
    TPoint<double> const m12 = (c.P1 + c.P2) / 2.0;
    TPoint<double> const m23 = (c.P2 + c.P3) / 2.0;
    TPoint<double> const m012 = (m01 + m12) / 2.0;
    TPoint<double> const m123 = (m12 + m23) / 2.0;
    TPoint<double> const split = (m012 + m123) / 2.0;
    TPoint<double> const end = c.P3;
    left = Curve(c.P0, m01, m012, split);
    right = Curve(split, m123, m23, end);
    return split;
}

} // namespace trammel_detail

#endif
