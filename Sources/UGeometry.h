// SPDX-License-Identifier: MIT

// Circle utilities: from points that a user picked to the bounding square of a circle, and the hit
// test of a segment given by its points. A circle is represented by its bounding rectangle, as wide
// as high. Nothing is reported; NaN and infinities propagate. Stateless, safe from any thread.

#ifndef TRAMMEL_UGEOMETRY_H
#define TRAMMEL_UGEOMETRY_H

#include "TLine.h"
#include "TPoint.h"
#include "TRect.h"
#include "TrammelExport.h"

/// Stores the bounding square of the circle around `centre` through `onCircle` in `out`; of size 0
/// when they coincide.
TRAMMEL_API void RadiusCircle(TPoint<double> const& centre, TPoint<double> const& onCircle,
                              TRect<double>& out);

/// Stores the bounding square of the circle whose diameter joins `a` and `b` in `out`; of size 0
/// when they coincide.
TRAMMEL_API void DiameterCircle(TPoint<double> const& a, TPoint<double> const& b,
                                TRect<double>& out);

/// Stores the bounding square of the circle through `a`, `b` and `c` in `out`, found as the
/// crossing of two perpendicular bisectors. Where there is no such circle (the points are
/// collinear, `b` coincides with `a` or `c`, or the bisectors do not cross for any other reason) it
/// is the circle whose diameter joins `a` and `c`.
TRAMMEL_API void Pt3Circle(TPoint<double> const& a, TPoint<double> const& b,
                           TPoint<double> const& c, TRect<double>& out);

/// True when `p` is about within `tolerance` of the segment from `a` to `b`: TLine::HitTest.
TRAMMEL_API inline bool HitTest(TPoint<double> a, TPoint<double> b, TPoint<double> p,
                                double tolerance) {
    return TLine<double>(a, b).HitTest(p, tolerance);
}

#endif
