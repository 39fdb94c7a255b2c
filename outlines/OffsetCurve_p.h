// SPDX-License-Identifier: MIT

// Curves at a constant distance from a cubic, as cubics with a proven bound. Not installed.
//
// The normal of a curve is its direction turned by a quarter from h toward v. A point at the signed
// distance s along the normal is on the side of h if the curve runs toward -v.

#ifndef TRAMMEL_OFFSETCURVE_P_H
#define TRAMMEL_OFFSETCURVE_P_H

#include "Cubic_p.h"
#include "TPoint.h"

#include <array>
#include <vector>

namespace trammel_detail {

/// Returns a direction turned by a quarter from h toward v.
inline TPoint<double> NormalOf(TPoint<double> const& direction) {
    return TPoint<double>(-direction.v, direction.h);
}

/// Returns the direction of a curve at a parameter, of length 1.
///
/// At an end on which a control point lies, to within rounding, it is the direction to the next
/// one. It is (0, 0) for a curve that is one point.
TPoint<double> DirectionOf(Cubic const& c, double t);

/// A part of a curve, with its derivative and the directions at its ends.
struct DirectedCubic {
    Cubic curve;
    /// A third of the derivative in Bernstein form, cut from the whole curve's. So near a cusp it
    /// keeps the digits that differences of control points lose.
    std::array<TPoint<double>, 3> speed;
    TPoint<double> from; ///< the direction of length 1 at the start
    TPoint<double> to;   ///< the direction of length 1 at the end

    DirectedCubic(Cubic const& c, TPoint<double> const& fromDirection,
                  TPoint<double> const& toDirection)
        : curve(c), speed({{c[1] - c[0], c[2] - c[1], c[3] - c[2]}}), from(fromDirection),
          to(toDirection) {}

    CubicPlace PlaceAt(double t) const;
    /// Returns the direction at a parameter inside.
    TPoint<double> DirectionAt(double t) const;
    /// Returns the part between two parameters, which has these directions at its ends.
    DirectedCubic Part(double t0, double t1, TPoint<double> const& fromDirection,
                       TPoint<double> const& toDirection) const;
    DirectedCubic Reversed() const;
};

/// Appends curves along the points at the signed distance `distance` from a curve, as control
/// points and ends; the first one begins at that distance from the curve's start. The curve has no
/// cusp, and on it the radius of curvature does not pass the distance.
///
/// Each curve Q comes with a cubic function f from [0, 1] to itself. The length of Q(u) - P(f(u))
/// is within `tolerance` of the distance at all u, as the coefficients of its square prove.
void AppendOffset(DirectedCubic const& piece, double distance, double tolerance,
                  std::vector<std::array<TPoint<double>, 3>>& out);

/// Appends points along the centres of curvature of a stretch that folds on the side against its
/// normals, without those of its ends.
///
/// The chords between the points run on the concave side of the centres' curve, so they take
/// nothing away from what the pen covers. So none spans a place where the curvature is greatest,
/// where the centres' curve has a cusp. The points of a chord are no farther than the radius from
/// the curve, save `tolerance`. If `exact`, no point of the centres' curve is farther than
/// `tolerance` from the chords. That takes up to 16,384 chords. Returns the distance by which more
/// would be needed: 0, or how far the curve may be from the chords.
double AppendCentres(DirectedCubic const& piece, double radius, double tolerance, bool exact,
                     std::vector<TPoint<double>>& out);

/// Returns the centre of curvature at a parameter at which the curve has a direction. Where it is
/// not on the side against the curve's normal, or farther than the radius, this is the point on
/// that side at the distance of the radius.
TPoint<double> CentreOf(DirectedCubic const& piece, double t, TPoint<double> const& direction,
                        double radius);

} // namespace trammel_detail

#endif
