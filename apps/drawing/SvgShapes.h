// SPDX-License-Identifier: MIT

// The basic shapes as paths, with the starting points and directions that SVG defines.

#ifndef TRAMMEL_APP_SVGSHAPES_H
#define TRAMMEL_APP_SVGSHAPES_H

#include <trammel/CPath.h>
#include <trammel/TPoint.h>
#include <trammel/TRect.h>

#include <vector>

namespace tool {

/// Returns a rectangle whose corners are quarters of an ellipse with the given radii. They are at
/// most half the sides; 0 makes plain corners.
CPath RectanglePath(TRect<double> const& r, double hRadius, double vRadius);

/// Returns an ellipse of curves that are within 2e-9 of the greater radius. It begins at the right
/// and goes on to the bottom.
CPath EllipsePath(TPoint<double> const& centre, double hRadius, double vRadius);

/// Returns straight lines from point to point.
CPath PolylinePath(std::vector<TPoint<double>> const& points, bool closed);

} // namespace tool

#endif
