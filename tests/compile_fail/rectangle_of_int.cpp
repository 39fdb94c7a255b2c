// SPDX-License-Identifier: MIT

// Rectangles have coordinates of type double or short, and no other.

#include <trammel/TRect.h>

#ifdef TRAMMEL_FORBIDDEN
using Coordinate = int;
#else
using Coordinate = short;
#endif

int LeftOf(int left) {
    TRect<Coordinate> r;
    r.left = static_cast<Coordinate>(left);
    return r.left;
}
