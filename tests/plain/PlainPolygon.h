// SPDX-License-Identifier: MIT
//
// The plain form of containment in a polygon: the crossing rule, written out.
#ifndef TRAMMEL_PLAINPOLYGON_H
#define TRAMMEL_PLAINPOLYGON_H

#include "TPoint.h"

#include <cstddef>
#include <vector>

namespace plain {

/// Whether the first `edges` edges of the closed polygon cross the horizontal through `p` an odd
/// number of times at a smaller h.
inline bool OddCrossings(std::vector<TPoint<double>> const& points, std::size_t edges,
                         TPoint<double> const& p) {
    int count = 0;
    for (std::size_t i = 0; i < edges; ++i) {
        double const av = points[i].v;
        double const ah = points[i].h;
        double const bv = points[(i + 1) % points.size()].v;
        double const bh = points[(i + 1) % points.size()].h;
        double const lowV = bv < av ? bv : av;
        double const highV = av < bv ? bv : av;
        if (!(lowV <= p.v) || !(p.v < highV)) {
            continue;
        }
        if (p.h < (bh < ah ? bh : ah)) {
            continue;
        }
        if (p.h > (ah < bh ? bh : ah)) {
            ++count;
            continue;
        }
        double const slope = (ah - bh) / (av - bv);
        double const crossing = ah - (av - p.v) * slope;
        if (p.h > crossing) {
            ++count;
        }
    }
    return count % 2 == 1;
}

} // namespace plain

#endif
