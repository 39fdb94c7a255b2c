// SPDX-License-Identifier: MIT

// CGPathBuilder: ready builders that make the drawing layer's path of a handle polygon.
//
//     CFPolygonRef::SetBuilPathProc(trammel::BuildPath);
//     CGPath* const path = polygon.GetPath(); // built once, borrowed, kept until the points change
//
// Points come in order and are rounded to the path's single precision, a move to the first and a
// line to each other one; x is h and y is v. Cost O(n).
//
// An edge of which an end is NaN, infinite or beyond the range of single precision (about 3.4e38)
// is left out, and the drawing goes on with the next point: the outline comes in pieces, each
// begun by a move. Such an outline cannot be closed as one; its closing edge is a line, and present
// when both its ends are.
//
// An empty polygon gives a path without elements (so that it is cached like any other), a null
// reference gives null. Short memory gives null too, with nothing left behind: GetPath then asks
// again the next time. Nothing throws. Different polygons may be used from different threads.

#ifndef TRAMMEL_CGPATHBUILDER_H
#define TRAMMEL_CGPATHBUILDER_H

#include "CFPolygonRef.h"
#include "PathObject.h"
#include "TrammelExport.h"

namespace trammel {

/// The path from the first point of `polygon` to the last, not closed whatever the closed flag
/// says. The caller owns the one reference to the path.
TRAMMEL_API CGPath* BuildOpenPath(CFPolygonRef polygon) noexcept;

/// The path around `polygon`, closed whatever the closed flag says. A last point that equals the
/// first is left to the close, so that the closing edge is not drawn twice. The caller owns the one
/// reference to the path.
TRAMMEL_API CGPath* BuildClosedPath(CFPolygonRef polygon) noexcept;

/// BuildClosedPath when the closed flag of `polygon` is set, else BuildOpenPath.
TRAMMEL_API CGPath* BuildPath(CFPolygonRef polygon) noexcept;

} // namespace trammel

#endif
