// SPDX-License-Identifier: MIT
//
// From closed lines on the clipper's grid to the contours of the region that they bound.
#ifndef TRAMMEL_CLIPPERCONTOURS_P_H
#define TRAMMEL_CLIPPERCONTOURS_P_H

#include "ClipperGrid_p.h"
#include "ClipperLines_p.h"

#include <vector>

namespace trammel_detail {

/// The contours of a region. Each has neither vertex nor edge in common with itself; two may share
/// single vertices, where they meet but do not cross. Those of holes run counterclockwise, the
/// others clockwise (y up).
struct ResolvedContours {
    GridLines contours;
    std::vector<char> holes; ///< one a contour: 1 if the region lies outside of it
};

/// The contours that bound the region inside `lines` by the even-odd rule.
///
/// The lines may cross, touch, coincide and run in any direction. Where they have to be cut, the
/// new vertices are points of `grid` that are doubles; edges move by no more than that rounding.
///
/// Cost: in practice O(n log n); at worst the number of pairs of edges that share some y.
ResolvedContours ResolveContours(GridLines lines, ClipGrid const& grid);

} // namespace trammel_detail

#endif
