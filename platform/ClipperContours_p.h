// SPDX-License-Identifier: MIT
//
// From closed lines on the clipper's grid to the contours of the region that they bound.
#ifndef TRAMMEL_CLIPPERCONTOURS_P_H
#define TRAMMEL_CLIPPERCONTOURS_P_H

#include "ClipperGrid_p.h"
#include "ClipperLines_p.h"

#include <array>
#include <vector>

namespace trammel_detail {

/// The contours of a region. Each has neither vertex nor edge in common with itself; two may share
/// single vertices, where they meet but do not cross. Those of holes run counterclockwise, the
/// others clockwise (y up).
struct ResolvedContours {
    GridLines contours;
    std::vector<char> holes; ///< one a contour: 1 if the region lies outside of it
};

/// Whether points that lie in just these operands belong to the region, by Operands from 0 to 3.
/// Those that lie in none do not.
typedef std::array<bool, 4> RegionOf;

/// The contours of the region of points that lie in certain operands, each of them being what is
/// inside its lines by the even-odd rule. The lines may cross, touch, coincide and run in any
/// direction. Returns false, and no contours, if it did not succeed.
///
/// Cost: see CutAtCrossings() and LinkContours().
bool ResolveContours(GridLines lines, RegionOf const& region, ClipGrid const& grid,
                     ResolvedContours& result);

} // namespace trammel_detail

#endif
