// SPDX-License-Identifier: MIT

// Small operations on the control points of one cubic curve. Not installed.

#ifndef TRAMMEL_CUBIC_P_H
#define TRAMMEL_CUBIC_P_H

#include "Box_p.h"
#include "PointMath_p.h"
#include "TPoint.h"
#include "Vector_p.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace trammel_detail {

/// The control points of a cubic curve.
typedef std::array<TPoint<double>, 4> Cubic;

/// A point of a curve and the derivatives there.
struct CubicPlace {
    TPoint<double> point;
    TPoint<double> first;  ///< a third of the first derivative
    TPoint<double> second; ///< a sixth of the second derivative
};

/// Returns the box of the control points.
inline Box<double> BoxOf(Cubic const& c) {
    Box<double> box = Box<double>::Of(c[0].h, c[0].v, c[3].h, c[3].v);
    box.Include(c[1].h, c[1].v);
    box.Include(c[2].h, c[2].v);
    return box;
}

inline CubicPlace PlaceAt(Cubic const& c, double t) {
    TPoint<double> const a = c[0] + (c[1] - c[0]) * t;
    TPoint<double> const b = c[1] + (c[2] - c[1]) * t;
    TPoint<double> const e = c[2] + (c[3] - c[2]) * t;
    TPoint<double> const d0 = b - a;
    TPoint<double> const d1 = e - b;
    TPoint<double> const p = a + d0 * t;
    TPoint<double> const q = b + d1 * t;
    return {p + (q - p) * t, q - p, d1 - d0};
}

/// Returns the part before parameter `t`.
inline Cubic HeadOf(Cubic const& c, double t) {
    TPoint<double> const a = c[0] + (c[1] - c[0]) * t;
    TPoint<double> const b = c[1] + (c[2] - c[1]) * t;
    TPoint<double> const e = c[2] + (c[3] - c[2]) * t;
    TPoint<double> const p = a + (b - a) * t;
    TPoint<double> const q = b + (e - b) * t;
    return {c[0], a, p, p + (q - p) * t};
}

/// Returns the part after parameter `t`.
inline Cubic TailOf(Cubic const& c, double t) {
    TPoint<double> const a = c[0] + (c[1] - c[0]) * t;
    TPoint<double> const b = c[1] + (c[2] - c[1]) * t;
    TPoint<double> const e = c[2] + (c[3] - c[2]) * t;
    TPoint<double> const p = a + (b - a) * t;
    TPoint<double> const q = b + (e - b) * t;
    return {p + (q - p) * t, q, e, c[3]};
}

/// Returns the part between parameters `t0` and `t1`.
inline Cubic PartOf(Cubic const& c, double t0, double t1) {
    Cubic const head = t1 < 1.0 ? HeadOf(c, t1) : c;
    return t0 > 0.0 ? TailOf(head, t1 > t0 ? t0 / t1 : 1.0) : head;
}

inline Cubic Reversed(Cubic const& c) { return {c[3], c[2], c[1], c[0]}; }

/// Returns the length of the control polygon, by the sum of |h| + |v|. The curve is no longer.
inline double PolygonLength(Cubic const& c) {
    return Taxicab(c[1] - c[0]) + Taxicab(c[2] - c[1]) + Taxicab(c[3] - c[2]);
}

/// True when `b` lies beside the strip along the chord of `a` that holds `a`, and `margin` away
/// from it. So a line along the chord has the curves on its two sides.
inline bool ChordSeparates(Cubic const& a, Cubic const& b, double margin) {
    TPoint<double> const chord = a[3] - a[0];
    double const a1 = Cross(chord, a[1] - a[0]);
    double const a2 = Cross(chord, a[2] - a[0]);
    double const b0 = Cross(chord, b[0] - a[0]);
    double const b1 = Cross(chord, b[1] - a[0]);
    double const b2 = Cross(chord, b[2] - a[0]);
    double const b3 = Cross(chord, b[3] - a[0]);
    double const beside = margin * Taxicab(chord);
    double const low = Min(Min(a1, a2), 0.0) - beside;
    double const high = Max(Max(a1, a2), 0.0) + beside;
    return Min(Min(b0, b1), Min(b2, b3)) > high || Max(Max(b0, b1), Max(b2, b3)) < low;
}

/// True when the curve is no longer than `limit` between two parameters, or when the second one is
/// not the greater one.
inline bool IsShort(Cubic const& c, double from, double to, double limit) {
    if (!(from < to)) {
        return true;
    }
    // The distance of the two ends decides nearly always.
    return Taxicab(PlaceAt(c, to).point - PlaceAt(c, from).point) <= 2.0 * limit &&
           PolygonLength(PartOf(c, from, to)) <= limit;
}

} // namespace trammel_detail

#endif
