// SPDX-License-Identifier: MIT

// A cubic divided at its middle, inline. Not installed.

#ifndef TRAMMEL_HALVE_P_H
#define TRAMMEL_HALVE_P_H

#include "CubicHalves_p.h"
#include "TPoint.h"

namespace trammel_detail {

/// Splits the cubic `c` at its middle into `left` and `right`, of which one may be `c`. Returns the
/// split point. This is CBezier::Divide, inline for the loops that spend most of their time in it.
template <class Curve> inline TPoint<double> Halve(Curve const& c, Curve& left, Curve& right) {
    CubicHalves<double> const h(c.P0.h, c.P1.h, c.P2.h, c.P3.h);
    CubicHalves<double> const v(c.P0.v, c.P1.v, c.P2.v, c.P3.v);
    TPoint<double> const split(h.middle, v.middle);
    TPoint<double> const start = c.P0;
    TPoint<double> const end = c.P3;
    left = Curve(start, TPoint<double>(h.left1, v.left1), TPoint<double>(h.left2, v.left2), split);
    right =
        Curve(split, TPoint<double>(h.right1, v.right1), TPoint<double>(h.right2, v.right2), end);
    return split;
}

} // namespace trammel_detail

#endif
