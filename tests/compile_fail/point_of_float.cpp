// SPDX-License-Identifier: MIT

// Points have coordinates of type double or short, and no other.

#include <trammel/TPoint.h>

#ifdef TRAMMEL_FORBIDDEN
using Coordinate = float;
#else
using Coordinate = double;
#endif

double HorizontalOf(double h) {
    TPoint<Coordinate> const p(static_cast<Coordinate>(h), 0);
    return p.h;
}
