// SPDX-License-Identifier: MIT

// Combine: drawings as areas, and the boolean operations on two of them.

#ifndef TRAMMEL_APP_COMBINE_H
#define TRAMMEL_APP_COMBINE_H

#include "Drawing.h"

#include <trammel/CPath.h>
#include <trammel/TPoint.h>
#include <trammel/TPoly.h>
#include <trammel/Tgcp.h>

#include <cstddef>
#include <vector>

namespace tool {

/// Adds every subpath of the outline as a contour, flattened to `error`. The even-odd rule applies
/// to all contours together, and every subpath counts as closed.
void AddContours(Tgpc_polygon& polygon, CPath const& path, double error);

/// Returns the result of the operation on `a` and `b`.
Tgpc_polygon Combined(TPolyOp operation, Tgpc_polygon const& a, Tgpc_polygon const& b);

/// Returns the same area with contours that do not cross and with right hole flags.
Tgpc_polygon Untangled(Tgpc_polygon const& polygon);

/// Returns the area that a ring of points encloses, by the shoelace formula.
double EnclosedArea(std::vector<TPoint<double>> const& ring);

/// The figures of a polygon whose contours do not cross and whose hole flags are right.
struct AreaFigures {
    double area = 0.0; ///< without the holes
    std::size_t contours = 0;
    std::size_t holes = 0; ///< the number of contours that are holes
    std::size_t vertices = 0;
    std::size_t curves = 0; ///< the number of edges that are curves
};

/// Returns the figures of a clip's result.
AreaFigures FiguresOf(Tgpc_polygon const& result);

/// Contours without overlaps, which bound the same points by either rule.
struct Region {
    CPath path;
    double distance = 0.0; ///< points farther than this from the outlines are on the right side
};

/// Returns the points that all outlines together cover. Each of them covers what it encloses by its
/// own rule, every subpath taken as closed. Curves stay curves. Where all are lines, they are
/// united as polygons, whose result has no distance but rounding.
/// \param tolerance  the distance to keep on top of the arcs'; more where the work needs it
Region RegionOf(std::vector<Outline> const& outlines, double tolerance);

/// Returns the result of the operation on the regions, in the same way.
Region Combined(TPolyOp operation, Region const& a, Region const& b, double tolerance);

/// Returns the figures of a region.
AreaFigures FiguresOf(Region const& region);

/// Returns all contours as one path of closed subpaths, to be filled by the even-odd rule.
CPath PathOf(Tgpc_polygon const& polygon);

} // namespace tool

#endif
