// SPDX-License-Identifier: MIT

// Circle utilities, and the hit test of a segment given by its points. They turn points that a user
// picked into a circle, which is represented by its bounding square. Nothing is reported; NaN and
// infinities propagate. Nothing throws. Stateless, safe in any thread.

#ifndef TRAMMEL_UGEOMETRY_H
#define TRAMMEL_UGEOMETRY_H

#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

/// Stores the bounding square of the circle around `centre` through `onCircle` in `out`. It has
/// size 0 when they coincide.
TRAMMEL_API void RadiusCircle(TPoint<double> const& centre, TPoint<double> const& onCircle,
                              TRect<double>& out);

/// Stores the bounding square of the circle whose diameter joins `a` and `b` in `out`. It has size
/// 0 when they coincide.
TRAMMEL_API void DiameterCircle(TPoint<double> const& a, TPoint<double> const& b,
                                TRect<double>& out);

/// Stores the bounding square of the circle through `a`, `b` and `c` in `out`. Its centre is the
/// crossing of two perpendicular bisectors.
///
/// Where there is no such crossing, it is the circle whose diameter joins `a` and `c`. This happens
/// when the points are collinear, or when `b` coincides with `a` or `c`.
TRAMMEL_API void Pt3Circle(TPoint<double> const& a, TPoint<double> const& b,
                           TPoint<double> const& c, TRect<double>& out);

/// True when `p` is about within `tolerance` of the segment from `a` to `b`: TLine::HitTest.
TRAMMEL_API inline bool HitTest(TPoint<double> a, TPoint<double> b, TPoint<double> p,
                                double tolerance) {
    return TLine<double>(a, b).HitTest(p, tolerance);
}

#endif
