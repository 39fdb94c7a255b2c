// SPDX-License-Identifier: MIT

// PathBuilding: quadratic, smooth, relative and elliptical segments, added to a path.
//
// Each function draws from the path's current point. Where no subpath is open, as after a close or
// on an empty path, it begins one there with a move. So nothing drawn is lost, unlike with
// CPath::LineTo and CPath::CurveTo. Each returns the path.
//
// A path records no curve that ends where it starts. Such a curve is added as two: it is cut at the
// middle of its parameter, or at a quarter if the middle lies on its ends. The new points are right
// to rounding. A curve that never leaves its start, and a line without length, add nothing.
//
// A path that was transformed has an old current point (CPath::Transform). These functions then go
// on from the last point of the path, and keep its bounds right.
//
// Coordinates that are NaN or infinite are taken over; AddArc adds nothing then, and ArcTo adds a
// line. Without memory a call throws
// std::bad_alloc and leaves the path as it was. A call costs O(1), an arc O(1) for each curve.
// There is no shared state: all are safe from any thread, each on its own path.

#ifndef TRAMMEL_PATHBUILDING_H
#define TRAMMEL_PATHBUILDING_H

#include "CPath.h"
#include "TPoint.h"
#include "TrammelExport.h"

namespace trammel {

/// Adds a cubic curve by way of `c1` and `c2` to `e`, one that ends where it starts as well.
TRAMMEL_API CPath& AddCurve(CPath& path, TPoint<double> const& c1, TPoint<double> const& c2,
                            TPoint<double> const& e);

/// Adds a quadratic curve with the control point `q` to `e`, as the cubic curve with the same
/// points. Its control points are (p + 2q) / 3 for each end p, with an error below 0.51 units in
/// the last place.
TRAMMEL_API CPath& QuadTo(CPath& path, TPoint<double> const& q, TPoint<double> const& e);

/// Adds a cubic curve that goes on smoothly: its first control point is that before the current
/// point, mirrored in the current point. After anything but a curve it is the current point.
TRAMMEL_API CPath& SmoothCurveTo(CPath& path, TPoint<double> const& c2, TPoint<double> const& e);

/// Adds a quadratic curve that goes on smoothly: it leaves with the derivative with which the curve
/// before arrives, be that a quadratic or a cubic one. After anything but a curve the control point
/// is the current point.
///
/// After a curve of QuadTo the control point is that curve's, mirrored in the current point. Each
/// coordinate is right within 2^-48 of the greatest coordinate of the curve before.
TRAMMEL_API CPath& SmoothQuadTo(CPath& path, TPoint<double> const& e);

/// Adds an elliptical arc to `e`, with the parameters and rules of SVG's command A.
///
/// - Radii are taken without their sign, and grow in proportion where they are too small to reach
///   both ends.
/// - With a radius of 0 the arc is a line. So it is where its curves would have coordinates that
///   are not finite.
/// - With `e` at the current point nothing is added.
///
/// An arc whose chord is its diameter to within the rounding of its ends turns by exactly half a
/// turn. Beside that it is ill-conditioned: its middle may be off by 2^-25 of the greater radius.
///
/// \param hRadius, vRadius the radii along the axes of the ellipse, in coordinate units.
/// \param rotation the turn of these axes in radians, from h toward v.
/// \param large true for the arc of more than half a turn.
/// \param positive true for the arc that turns from h toward v: SVG's sweep flag.
/// \param tolerance the greatest distance of the curves from the ellipse, see AddArc.
TRAMMEL_API CPath& ArcTo(CPath& path, double hRadius, double vRadius, double rotation, bool large,
                         bool positive, TPoint<double> const& e, double tolerance);

/// An arc of an ellipse around a centre. Angles are radians; positive ones turn from h toward v.
struct EllipticalArc {
    TPoint<double> center;
    double hRadius = 0.0;  ///< along the first axis; a negative one mirrors
    double vRadius = 0.0;  ///< along the second axis
    double rotation = 0.0; ///< the turn of the axes
    /// The angle of the start, in the coordinates in which the ellipse is a circle.
    double startAngle = 0.0;
    /// The turn from start to end, likewise. More than a full turn, or an infinite one, is a full
    /// one.
    double sweep = 0.0;
};

/// Adds a line to the start of the arc, or a move where the path is empty or its subpath closed.
/// Then it adds the arc in curves of equal sweep, as few as the tolerance allows and at most a
/// quarter turn each. A full turn ends exactly where it starts. An arc without sweep adds the line
/// only. Nothing is added where a coordinate would not be finite.
///
/// The curves run along the outside of the ellipse. Rounding aside, each of their points is at most
/// `tolerance` away from it, and each of its points from them. The start, the end and the joints
/// lie on it. The rounding is at most 2^-48 of the greatest coordinate of centre and radii.
///
/// Source: docs/numerics.md proves the bound. Sine and cosine come from the C library.
/// \param tolerance in coordinate units, inclusive. Less than 2^-52 of the greater radius counts as
///     that, and so do NaN and negative numbers. A full turn takes 4 curves at 2.73e-4 of the
///     radius, 8 at 4.3e-6, and 414 at most.
TRAMMEL_API CPath& AddArc(CPath& path, EllipticalArc const& arc, double tolerance);

// Relative forms: every point is given by its difference from the current point.

/// Begins a subpath at a difference from the current point.
TRAMMEL_API CPath& MoveBy(CPath& path, TPoint<double> const& d);
/// Adds a line.
TRAMMEL_API CPath& LineBy(CPath& path, TPoint<double> const& d);
/// Adds a cubic curve as AddCurve does.
TRAMMEL_API CPath& CurveBy(CPath& path, TPoint<double> const& c1, TPoint<double> const& c2,
                           TPoint<double> const& e);
/// Adds a quadratic curve as QuadTo does.
TRAMMEL_API CPath& QuadBy(CPath& path, TPoint<double> const& q, TPoint<double> const& e);
/// Adds a cubic curve as SmoothCurveTo does.
TRAMMEL_API CPath& SmoothCurveBy(CPath& path, TPoint<double> const& c2, TPoint<double> const& e);
/// Adds a quadratic curve as SmoothQuadTo does.
TRAMMEL_API CPath& SmoothQuadBy(CPath& path, TPoint<double> const& e);
/// Adds an elliptical arc as ArcTo does.
TRAMMEL_API CPath& ArcBy(CPath& path, double hRadius, double vRadius, double rotation, bool large,
                         bool positive, TPoint<double> const& e, double tolerance);

} // namespace trammel

#endif
