// SPDX-License-Identifier: MIT

// Combine: drawings as areas, and what is made of two of them by the boolean operations.

#ifndef TRAMMEL_APP_COMBINE_H
#define TRAMMEL_APP_COMBINE_H

#include "Drawing.h"

#include <trammel/CPath.h>
#include <trammel/Tgcp.h>

#include <cstddef>
#include <vector>

namespace tool {

/// Adds every subpath of the outline, flattened to `error`, as a contour. Together the contours
/// are read by the even-odd rule, every subpath taken as closed.
void AddContours(Tgpc_polygon& polygon, CPath const& path, double error);

/// What the operation makes of `a` and `b`.
Tgpc_polygon Combined(TPolyOp operation, Tgpc_polygon const& a, Tgpc_polygon const& b);

/// The same area, with contours that do not cross and right hole flags, as a clip's result has
/// them.
Tgpc_polygon Untangled(Tgpc_polygon const& polygon);

/// The figures of a polygon whose contours do not cross and whose hole flags are right.
struct AreaFigures {
    double area = 0.0; ///< without the holes
    std::size_t contours = 0;
    std::size_t holes = 0; ///< of the contours
    std::size_t vertices = 0;
};

/// The figures of a clip's result.
AreaFigures FiguresOf(Tgpc_polygon const& result);

/// All contours as one path of closed subpaths, to be filled by the even-odd rule.
CPath PathOf(Tgpc_polygon const& polygon);

} // namespace tool

#endif
