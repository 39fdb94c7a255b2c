// SPDX-License-Identifier: MIT

// The integral of a curve's speed for every processor, and the zeros for both forms.

#include "LengthKernelForms_p.h"

#include <cmath>
#include <limits>

namespace trammel_detail {

namespace {

struct Complex {
    double re, im;
};

Complex operator+(Complex const& a, Complex const& b) { return {a.re + b.re, a.im + b.im}; }
Complex operator-(Complex const& a, Complex const& b) { return {a.re - b.re, a.im - b.im}; }
Complex operator-(Complex const& a) { return {-a.re, -a.im}; }
Complex operator*(Complex const& a, Complex const& b) {
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}
double Square(Complex const& a) { return a.re * a.re + a.im * a.im; }
/// Returns a/b, NaN when `b` is 0.
Complex operator/(Complex const& a, Complex const& b) {
    double const inverse = 1.0 / Square(b);
    return {(a.re * b.re + a.im * b.im) * inverse, (a.im * b.re - a.re * b.im) * inverse};
}
Complex SquareRoot(Complex const& a) {
    double const x = std::sqrt((std::sqrt(Square(a)) + std::abs(a.re)) * 0.5);
    if (x == 0.0) {
        return {0.0, 0.0};
    }
    double const y = a.im / (2.0 * x);
    return a.re >= 0.0 ? Complex{x, y} : Complex{std::abs(y), std::copysign(x, a.im)};
}

} // namespace

void FindZeros(SpeedCurve& curve) {
    Complex const a = {curve.aH, curve.aV};
    Complex const b = {curve.bH, curve.bV};
    Complex const c = {curve.cH, curve.cV};
    if (curve.restsAtStart || curve.restsAtEnd) {
        double const nan = std::numeric_limits<double>::quiet_NaN();
        OtherZero const other(curve); // the zero at 0 or 1 is no obstacle
        curve.zeroH[0] = other.h;
        curve.zeroV[0] = other.v;
        curve.zeroH[1] = nan;
        curve.zeroV[1] = nan;
        curve.zerosKnown = true;
        return;
    }
    // The zero of greater magnitude comes from c, the other one from a, so that neither loses
    // digits.
    Complex const root = SquareRoot(b * b - a * c);
    Complex const s = b.re * root.re + b.im * root.im >= 0.0 ? -(b + root) : root - b;
    Complex const greater = s / c;
    Complex const lesser = a / s;
    curve.zeroH[0] = greater.re;
    curve.zeroH[1] = lesser.re;
    curve.zeroV[0] = greater.im;
    curve.zeroV[1] = lesser.im;
    curve.zerosKnown = true;
}

double CurveLengthPortable(double const* points, double accuracy,
                           double const (&table)[kGaussEntries]) {
    return CurveLengthForm<Double4>(points, accuracy, table);
}

double SpeedLengthPortable(SpeedCurve& curve, double t0, double t1, double accuracy,
                           double const (&table)[kGaussEntries]) {
    return SpeedLengthForm<Double4>(curve, t0, t1, accuracy, table);
}

} // namespace trammel_detail
