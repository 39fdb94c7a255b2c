// SPDX-License-Identifier: MIT

// Curves in the form in which a path takes them. Not installed.

#ifndef TRAMMEL_CURVEFORMS_P_H
#define TRAMMEL_CURVEFORMS_P_H

#include "TPoint.h"
#include "TwoSum_p.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace trammel_detail {

/// Returns (p + 2q) / 3 with an error below 0.51 units in the last place. The errors of the sum and
/// of the quotient (a fused remainder) are added to the result.
inline double TwoThirds(double p, double q) {
    double scale = 1.0;
    if (!std::isfinite(p + 2.0 * q)) {
        p /= 4.0;
        q /= 4.0;
        scale = 4.0;
    }
    TwoSumResult const sum = TwoSum(p, 2.0 * q);
    double const quotient = sum.value / 3.0;
    double const rest = std::fma(-3.0, quotient, sum.value) + sum.error;
    return (quotient + rest / 3.0) * scale;
}

/// Returns the control point beside the end `p` of the cubic curve that is the quadratic one with
/// the control point `q`.
inline TPoint<double> TwoThirds(TPoint<double> const& p, TPoint<double> const& q) {
    return TPoint<double>(TwoThirds(p.h, q.h), TwoThirds(p.v, q.v));
}

/// Returns the first control point of a smooth curve: `control` mirrored in `p`. Each coordinate is
/// rounded once.
inline TPoint<double> Reflected(TPoint<double> const& control, TPoint<double> const& p) {
    auto const reflected = [](double c, double at) {
        double const r = 2.0 * at - c;
        return std::isfinite(r) ? r : at + (at - c); // 2 * at alone may be out of range
    };
    return TPoint<double>(reflected(control.h, p.h), reflected(control.v, p.v));
}

/// Returns the point at `t` between two points; no step overflows.
inline TPoint<double> Between(TPoint<double> const& a, TPoint<double> const& b, double t) {
    return TPoint<double>(a.h * (1.0 - t) + b.h * t, a.v * (1.0 - t) + b.v * t);
}

/// A curve as one or two curves that a path records: it records none that ends at its start.
struct RecordedCurves {
    std::size_t count = 0; ///< 0 for a curve that never leaves its start
    std::array<std::array<TPoint<double>, 3>, 2> points; ///< control points and end of each

    RecordedCurves(TPoint<double> const& from, TPoint<double> const& c1, TPoint<double> const& c2,
                   TPoint<double> const& e) {
        if (e != from) {
            count = 1;
            points[0] = {c1, c2, e};
            return;
        }
        // A curve whose middle lies on its ends crosses itself there or runs to and fro. Its point
        // at a quarter then lies elsewhere, unless the whole curve stays in one point.
        for (double const t : {0.5, 0.25, 0.75}) {
            TPoint<double> const a = Between(from, c1, t);
            TPoint<double> const b = Between(c1, c2, t);
            TPoint<double> const c = Between(c2, e, t);
            TPoint<double> const ab = Between(a, b, t);
            TPoint<double> const bc = Between(b, c, t);
            TPoint<double> const cut = Between(ab, bc, t);
            if (cut != from) {
                count = 2;
                points[0] = {a, ab, cut};
                points[1] = {bc, c, e};
                return;
            }
        }
    }
};

} // namespace trammel_detail

#endif
