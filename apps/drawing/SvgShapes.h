// SPDX-License-Identifier: MIT

// The basic shapes as paths, with the starting points and directions that SVG defines.

#ifndef TRAMMEL_APP_SVGSHAPES_H
#define TRAMMEL_APP_SVGSHAPES_H

#include <trammel/CPath.h>
#include <trammel/TPoint.h>
#include <trammel/TRect.h>

#include <vector>

namespace tool {

/// Returns a rectangle whose corners are quarters of an ellipse with the given radii, within the
/// tolerance. The radii are at most half the sides; 0 makes plain corners.
CPath RectanglePath(TRect<double> const& r, double hRadius, double vRadius, double tolerance);

/// Returns straight lines from point to point.
CPath PolylinePath(std::vector<TPoint<double>> const& points, bool closed);

/// Returns the open lines of a `line` or `polyline`. Where all points are one, a line without
/// length stays, as the path `M5 5h0` has it: round and square caps paint a dot there.
CPath DrawnLines(std::vector<TPoint<double>> const& points);

} // namespace tool

#endif
