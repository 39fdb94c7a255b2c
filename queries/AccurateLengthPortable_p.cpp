// SPDX-License-Identifier: MIT
//
// The integral of a curve's speed for every processor, and what both forms share.

#include "AccurateCurve_p.h"
#include "AccurateLengthForms_p.h"

#include <cmath>
#include <limits>

namespace trammel_detail {

namespace {

// Complex numbers are points, h the real part.

Pt Product(Pt const& a, Pt const& b) { return Pt(a.h * b.h - a.v * b.v, a.h * b.v + a.v * b.h); }
/// NaN when `b` is 0.
Pt Quotient(Pt const& a, Pt const& b) {
    double const inverse = 1.0 / Square(b);
    return Pt((a.h * b.h + a.v * b.v) * inverse, (a.v * b.h - a.h * b.v) * inverse);
}
Pt SquareRoot(Pt const& a) {
    double const x = std::sqrt((std::sqrt(Square(a)) + std::abs(a.h)) * 0.5);
    if (x == 0.0) {
        return Pt();
    }
    double const y = a.v / (2.0 * x);
    return a.h >= 0.0 ? Pt(x, y) : Pt(std::abs(y), std::copysign(x, a.v));
}

} // namespace

void FindZeros(SpeedCurve& curve) {
    // The one of greater magnitude from c, the other one from a, so that neither loses digits.
    Pt const a(curve.aH, curve.aV);
    Pt const b(curve.bH, curve.bV);
    Pt const c(curve.cH, curve.cV);
    if (curve.restsAtStart || curve.restsAtEnd) {
        double const nan = std::numeric_limits<double>::quiet_NaN();
        OtherZero const other(curve); // one is 0 or 1, and no obstacle
        curve.zeroH[0] = other.h;
        curve.zeroV[0] = other.v;
        curve.zeroH[1] = nan;
        curve.zeroV[1] = nan;
        curve.zerosKnown = true;
        return;
    }
    Pt const root = SquareRoot(Product(b, b) - Product(a, c));
    Pt const s = Dot(b, root) >= 0.0 ? -(b + root) : root - b;
    Pt const greater = Quotient(s, c);
    Pt const lesser = Quotient(a, s);
    curve.zeroH[0] = greater.h;
    curve.zeroH[1] = lesser.h;
    curve.zeroV[0] = greater.v;
    curve.zeroV[1] = lesser.v;
    curve.zerosKnown = true;
}

double CurveLengthPortable(CBezier const& curve, double accuracy,
                           double const (&table)[kGaussEntries]) {
    return CurveLengthForm<PackPair>(curve, accuracy, table);
}

double SpeedLengthPortable(SpeedCurve& curve, double t0, double t1, double accuracy,
                           double const (&table)[kGaussEntries]) {
    return SpeedLengthForm<PackPair>(curve, t0, t1, accuracy, table);
}

} // namespace trammel_detail
