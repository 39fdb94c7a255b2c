// SPDX-License-Identifier: MIT

// Shapes: circles, ellipses, rounded rectangles, polygons and stars as closed paths.
//
// Each function makes a path of one closed subpath. It runs from h toward v, which is clockwise to
// the eye where v points down: its area is positive. AppendSubpaths puts shapes together, and
// Reversed makes a hole of one.
//
// Ellipses are cubic curves, as few of equal sweep in each quarter as the tolerance allows. They
// run along the outside. Rounding aside, each of their points is at most the tolerance away from
// the ellipse, and each of its points from them. AddArc has the source of the bound, and says what
// tolerances count as. Their joints lie on the ellipse. Rounding is at most 2^-48 of the greatest
// coordinate of the shape.
//
// Points at the ends of the axes are exact where the axes are not turned. Apart from a turn, which
// takes the C library's sine and cosine, the bits are the same on every machine.
//
// A NaN or infinite argument gives an empty path, unless stated. Memory exhaustion is
// std::bad_alloc, and a count of vertices beyond all memory is std::length_error. There is no
// shared state: all are safe from any thread. Each costs O(1) for each element.

#ifndef TRAMMEL_SHAPES_H
#define TRAMMEL_SHAPES_H

#include "CPath.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

#include <cstddef>
#include <vector>

namespace trammel {

/// Returns a circle that begins at the greatest h. The radius is taken without its sign. A radius
/// of 0 gives a closed subpath without extent.
TRAMMEL_API CPath CirclePath(TPoint<double> const& center, double radius, double tolerance);

/// Returns an ellipse that begins at the end of its first axis. Radii are taken without their
/// signs. With one of them 0 the outline runs to and fro. \param hRadius, vRadius half the lengths
/// of the first and the second axis. \param rotation the turn of the axes from h toward v, in
/// radians.
TRAMMEL_API CPath EllipsePath(TPoint<double> const& center, double hRadius, double vRadius,
                              double rotation, double tolerance);

/// The radii of a rectangle's corners: of each its radius along h and along v.
struct CornerRadii {
    TPoint<double> topLeft;
    TPoint<double> topRight;
    TPoint<double> bottomRight;
    TPoint<double> bottomLeft;
};

/// Returns a rectangle with a quarter of an ellipse in each corner.
///
/// The rectangle is put in order. Radii below 0 count as 0, and those beyond 2^500 as that. Where
/// the two radii along a side are longer than the side, all radii shrink by the same factor until
/// they fit, as those of CSS do. A corner with a radius of 0 is a corner. The outline begins on the
/// top edge behind the top left corner. Sides without length are left out.
TRAMMEL_API CPath RoundedRectPath(TRect<double> const& rect, CornerRadii const& radii,
                                  double tolerance);

/// Returns a rectangle whose corners all have the same radii. Each radius is limited to half the
/// side along it, as those of SVG's rectangles are.
TRAMMEL_API CPath RoundedRectPath(TRect<double> const& rect, double hRadius, double vRadius,
                                  double tolerance);

/// Returns the closed polygon of these vertices. A vertex that equals the one before adds nothing.
/// Coordinates are taken over, NaN and infinities too. No vertices give an empty path.
TRAMMEL_API CPath PolygonPath(std::vector<TPoint<double>> const& vertices);

/// Returns the regular polygon with `count` vertices on a circle. No vertices give an empty path. A
/// negative radius puts each vertex on the other side of the centre.
/// \param angle the direction of the first vertex from the centre, in radians.
TRAMMEL_API CPath RegularPolygonPath(TPoint<double> const& center, double radius, std::size_t count,
                                     double angle);

/// Returns the star with `count` outer vertices on one circle, and between each two of them an
/// inner one on another. No vertices give an empty path. Negative radii are as above. \param angle
/// the direction of the first outer vertex from the centre, in radians.
TRAMMEL_API CPath StarPath(TPoint<double> const& center, double outerRadius, double innerRadius,
                           std::size_t count, double angle);

} // namespace trammel

#endif
