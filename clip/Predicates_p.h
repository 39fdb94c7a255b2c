// SPDX-License-Identifier: MIT

// Exact predicates on the grid. Not installed.
#ifndef TRAMMEL_PREDICATES_P_H
#define TRAMMEL_PREDICATES_P_H

#include "Grid_p.h"
#include "Int128_p.h"

namespace trammel_detail {

/// Returns twice the signed area of the triangle a, b, c, which is positive if c lies left of the
/// line from a to b (y up). Exact, as the points' differences have 62 bits.
inline Int128 Cross(GridPoint a, GridPoint b, GridPoint c) {
    return static_cast<Int128>(b.x - a.x) * (c.y - a.y) -
           static_cast<Int128>(b.y - a.y) * (c.x - a.x);
}

inline int Sign(Int128 v) { return (v > 0) - (v < 0); }

/// Returns the sign of Cross().
inline int SideOf(GridPoint a, GridPoint b, GridPoint c) { return Sign(Cross(a, b, c)); }

/// True when the angle between b and c, seen from a, is acute. On one line, b and c lie on the same
/// side of a then.
inline bool SameDirection(GridPoint a, GridPoint b, GridPoint c) {
    return static_cast<Int128>(b.x - a.x) * (c.x - a.x) +
               static_cast<Int128>(b.y - a.y) * (c.y - a.y) >
           0;
}

} // namespace trammel_detail

#endif
