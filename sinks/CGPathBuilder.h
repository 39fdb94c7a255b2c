// SPDX-License-Identifier: MIT

// CGPathBuilder: ready builders that make the drawing layer's path of a handle polygon.
//
//     CFPolygonRef::SetBuilPathProc(trammel::BuildPath);
//     CGPath* const path = polygon.GetPath(); // built once, borrowed, kept until the points change
//
// The path has a move to the first point and a line to each other one, in order; x is h and y is v.
// Coordinates are rounded to the path's single precision. Cost: O(n).
//
// A point cannot be drawn where a coordinate is NaN, infinite or beyond the range of single
// precision (about 3.4e38). Its edges are left out, and the drawing goes on with the next point.
// The outline then comes in pieces, each begun by a move. It cannot be closed as one: its closing
// edge is a line, and is drawn when both its ends can be.
//
// An empty polygon gives a path without elements, so that it is cached like any other. A null
// reference gives null. Short memory gives null too, and leaves nothing behind: GetPath then asks
// again the next time. Nothing throws. Different threads may use different polygons.

#ifndef TRAMMEL_CGPATHBUILDER_H
#define TRAMMEL_CGPATHBUILDER_H

#include "CFPolygonRef.h"
#include "PathObject.h"
#include "TrammelExport.h"

namespace trammel {

/// Returns the path from the first point of `polygon` to the last. It is not closed, whatever the
/// closed flag says. The caller owns the one reference to the path.
TRAMMEL_API CGPath* BuildOpenPath(CFPolygonRef polygon) noexcept;

/// Returns the path around `polygon`, closed whatever the closed flag says. A last point that
/// equals the first is left to the close, so that the closing edge is not drawn twice. The caller
/// owns the one reference to the path.
TRAMMEL_API CGPath* BuildClosedPath(CFPolygonRef polygon) noexcept;

/// Returns BuildClosedPath when the closed flag of `polygon` is set, or else BuildOpenPath.
TRAMMEL_API CGPath* BuildPath(CFPolygonRef polygon) noexcept;

} // namespace trammel

#endif
