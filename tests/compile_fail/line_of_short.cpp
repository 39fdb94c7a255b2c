// SPDX-License-Identifier: MIT

// Lines exist between points of doubles only.

#include <trammel/TLine.h>

#ifdef TRAMMEL_FORBIDDEN
using Coordinate = short;
#else
using Coordinate = double;
#endif

double LengthOf(TPoint<Coordinate> const& a, TPoint<Coordinate> const& b) {
    TLine<Coordinate> const line(a, b);
    return line.Length();
}
