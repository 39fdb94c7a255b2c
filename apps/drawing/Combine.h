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
};

/// Returns the figures of a clip's result.
AreaFigures FiguresOf(Tgpc_polygon const& result);

/// Returns the rings around the area of all outlines together. Each of them covers what it encloses
/// by its own rule, every subpath taken as closed; curves are flattened to `error`.
std::vector<TPolygon<double>> RegionOf(std::vector<Outline> const& outlines, double error);

/// Returns the figures of such rings, of which the holes run the other way round.
AreaFigures FiguresOf(std::vector<TPolygon<double>> const& rings);

/// Returns all contours as one path of closed subpaths, to be filled by the even-odd rule.
CPath PathOf(Tgpc_polygon const& polygon);

} // namespace tool

#endif
