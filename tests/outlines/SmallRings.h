// SPDX-License-Identifier: MIT

// Rings of which the tests of polygon operations make their input.

#ifndef TRAMMEL_SMALLRINGS_H
#define TRAMMEL_SMALLRINGS_H

#include "TPoint.h"
#include "TPoly.h"

#include <vector>

namespace trammel_test {

inline TPolygon<double> Ring(std::vector<TPoint<double>> const& points) {
    TPolygon<double> ring;
    for (TPoint<double> const& p : points) {
        ring.Append(p, true);
    }
    return ring;
}

/// The square from (h, v) to (h + size, v + size), which runs from +h toward +v.
inline TPolygon<double> Square(double h, double v, double size) {
    return Ring({{h, v}, {h + size, v}, {h + size, v + size}, {h, v + size}});
}

} // namespace trammel_test

#endif
