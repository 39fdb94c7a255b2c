// SPDX-License-Identifier: MIT

// Rings of which the tests of polygon operations make their input.

#ifndef TRAMMEL_SMALLRINGS_H
#define TRAMMEL_SMALLRINGS_H

#include "TPoly.h"

namespace trammel_test {

/// The square from (h, v) to (h + size, v + size), which runs from +h toward +v.
inline TPolygon<double> Square(double h, double v, double size) {
    return {{h, v}, {h + size, v}, {h + size, v + size}, {h, v + size}};
}

} // namespace trammel_test

#endif
