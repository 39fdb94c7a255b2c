// SPDX-License-Identifier: MIT

// The edge step of the even-odd containment test, shared by both polygon kinds. Not installed.

#ifndef TRAMMEL_EDGECROSSING_P_H
#define TRAMMEL_EDGECROSSING_P_H

#include "TPoint.h"

#include <algorithm>

namespace trammel_detail {

/// True when the edge from `a` to `b` crosses the horizontal through `p` at a smaller h than `p`'s.
///
/// The edge's span in v is half-open, so a horizontal edge never counts and a vertex counts for one
/// of its two edges; a crossing exactly at `p` does not count.
inline bool CrossesBefore(TPoint<double> const& a, TPoint<double> const& b,
                          TPoint<double> const& p) {
    if (!(std::min(a.v, b.v) <= p.v && p.v < std::max(a.v, b.v))) {
        return false;
    }
    if (p.h < std::min(a.h, b.h)) {
        return false;
    }
    if (p.h > std::max(a.h, b.h)) {
        return true;
    }
    double const slope = (a.h - b.h) / (a.v - b.v);
    double const crossing = a.h - (a.v - p.v) * slope;
    return p.h > crossing;
}

} // namespace trammel_detail

#endif
