// SPDX-License-Identifier: MIT

// Elliptical arcs as cubic curves. Not installed.

#ifndef TRAMMEL_ARCCURVES_P_H
#define TRAMMEL_ARCCURVES_P_H

#include "TPoint.h"

#include <array>
#include <cstddef>

namespace trammel_detail {

/// Returns the least number of equal curves that follow an arc within a distance.
///
/// Let t be tan(a/4), where a is the angle of one curve. On a circle of radius 1, the squared
/// distance from the centre is 1 + 16 t^6 / (1 + t²)² w² at the parameter u. Here w is
/// u (1 - u) (1 - 2u), whose square is at most 1/108. So a curve leaves the circle by at most
/// 2/27 t^6 / (1 + t²)², and to the outside only. An ellipse is a circle stretched, which
/// multiplies the distance by the greater radius at most.
///
/// No curve gets more than a quarter turn, whatever the tolerance is.
/// \param sweep the angle in the coordinates in which the ellipse is a circle, from 0 to 2 pi.
/// \param radius the greater radius.
/// \param tolerance the distance, inclusive. Less than 2^-52 of the radius counts as that, and so
///     do NaN and negative numbers.
std::size_t ArcCurveCount(double sweep, double radius, double tolerance);

/// An elliptical arc, which gives cubic curves of equal sweep along its outside.
class ArcCurves {
public:
    /// Makes the arc from `from` to `to`, which differ.
    ///
    /// \param hRadius, vRadius the radii, above 0; they grow in proportion where they are too small
    ///     for the ends.
    /// \param rotation the turn of the ellipse's axes in radians, from h towards v.
    /// \param large true for the arc of more than half a turn.
    /// \param positive true for the arc that turns from h towards v.
    static ArcCurves BetweenPoints(TPoint<double> const& from, TPoint<double> const& to,
                                   double hRadius, double vRadius, double rotation, bool large,
                                   bool positive);

    /// Makes the arc around a centre. Angles are in radians and in the coordinates in which the
    /// ellipse is a circle. A sweep beyond a full turn counts as a full turn.
    static ArcCurves AroundCenter(TPoint<double> const& center, double hRadius, double vRadius,
                                  double rotation, double startAngle, double sweep);

    TPoint<double> Start() const { return mFrom; }
    /// Returns the magnitude of the sweep, from 0 to 2 pi.
    double Sweep() const { return mSweep; }
    /// Returns the greater radius, after its growth.
    double GreaterRadius() const;

    /// Cuts the arc into `count` curves, 1 or more, and goes back to its start.
    void Cut(std::size_t count);
    /// Stores the control points and the end of the next curve. It begins where the one before
    /// ends, and the last one ends in the arc's end exactly. Returns false after the last one.
    bool Next(std::array<TPoint<double>, 3>& points);

private:
    ArcCurves() = default;
    TPoint<double> Back(TPoint<double> const& p) const;

    TPoint<double> mFrom;
    TPoint<double> mTo;
    TPoint<double> mFirst; ///< the start on the circle of radius 1 around the origin
    TPoint<double> mLast;  ///< the end on it
    double mRadiusH = 0.0;
    double mRadiusV = 0.0;
    double mSine = 0.0; ///< of the rotation
    double mCosine = 1.0;
    double mSweep = 0.0;
    bool mPositive = true;

    std::size_t mCount = 0;
    std::size_t mAt = 0;
    double mStep = 0.0;
    double mArm = 0.0;      ///< the length of the tangents to the control points
    TPoint<double> mPoint;  ///< the start of the next curve
    TPoint<double> mRadius; ///< the same on the circle
};

} // namespace trammel_detail

#endif
