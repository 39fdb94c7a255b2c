// SPDX-License-Identifier: MIT
//
// Linking edges that meet at their ends only to contours that do not cross.
#ifndef TRAMMEL_CLIPPERLINKER_P_H
#define TRAMMEL_CLIPPERLINKER_P_H

#include "ClipperContours_p.h"
#include "ClipperLines_p.h"

#include <cstddef>
#include <vector>

namespace trammel_detail {

/// The end of an edge at one of its vertices: 2 * the edge's number, + 1 at its second vertex.
typedef std::size_t EdgeEnd;

/// The contours of the region that the lines of `tree` bound by the even-odd rule. The lines' edges
/// have nothing in common but their ends, or are equal.
///
/// `shared` has an element for each EdgeEnd, or none at all: not 0 at vertices that occur more than
/// once; of the ends of two edges that follow each other on a line one is enough. Cost: O(n + s log
/// s) for s such ends, and a ray for each contour.
ResolvedContours LinkContours(EdgeTree const& tree, std::vector<char> const& shared);

/// Where a line's lowest vertex is, and the edge that goes up from it.
struct Foot {
    std::size_t edge;
    bool forward;          ///< the edge runs upwards
    bool counterclockwise; ///< the line's direction, if it does not cross itself
};

Foot FootOf(GridLines const& lines, std::size_t line);

} // namespace trammel_detail

#endif
