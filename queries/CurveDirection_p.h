// SPDX-License-Identifier: MIT

// The direction of a curve, also where its derivative vanishes. Not installed.

#ifndef TRAMMEL_CURVEDIRECTION_P_H
#define TRAMMEL_CURVEDIRECTION_P_H

#include "CBezier.h"
#include "TPoint.h"

namespace trammel_detail {

/// Returns the vector made one unit long; a null vector stays null.
inline TPoint<double> Unit(TPoint<double> const& d) { return d.Null() ? d : d / d.Hypotenuse(); }

/// The derivatives of a curve at a parameter: a third of the first, a sixth of the second and of
/// the third.
struct CurveDerivatives {
    TPoint<double> first;
    TPoint<double> second;
    TPoint<double> third;

    CurveDerivatives(CBezier const& c, double t) {
        TPoint<double> const a = c.P1 - c.P0;
        TPoint<double> const b = c.P2 - c.P1;
        TPoint<double> const d = c.P3 - c.P2;
        double const s = 1.0 - t;
        first = a * (s * s) + b * (2.0 * s * t) + d * (t * t);
        second = (b - a) * s + (d - b) * t;
        third = a - b * 2.0 + d;
    }
};

/// Returns the direction of a curve at a parameter: the direction of its first derivative.
///
/// Where the first vanishes, the next derivative that does not vanish tells where the curve goes
/// on. At the curve's end the way back counts: there the second derivative points against the
/// direction.
inline TPoint<double> DirectionAt(CurveDerivatives const& derivatives, double t) {
    TPoint<double> d = derivatives.first;
    if (d.Null()) {
        d = t < 1.0 ? derivatives.second : -derivatives.second;
    }
    if (d.Null()) {
        d = derivatives.third;
    }
    return Unit(d);
}

} // namespace trammel_detail

#endif
