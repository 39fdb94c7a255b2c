// SPDX-License-Identifier: MIT
//
// The integral of a curve's speed, in a form for every processor and in one for those with AVX2, of
// the same bits. AccurateLength.cpp tells the method. Not installed.

#ifndef TRAMMEL_ACCURATELENGTH_P_H
#define TRAMMEL_ACCURATELENGTH_P_H

#include "CBezier.h"

namespace trammel_detail {

/// A third of a cubic's derivative, a + 2bt + ct² in both coordinates.
struct SpeedCurve {
    double aH, aV, bH, bV, cH, cV;
    /// At least its magnitude, for t from 0 to 1.
    double size;
    /// Whether the curve stands still there: the first two control points, or the last two, are
    /// one.
    bool restsAtStart, restsAtEnd;
    bool zerosKnown = false;
    /// Its zeros as a polynomial of complex numbers, if known, but for those at the ends where it
    /// rests; NaN or huge where there is none.
    double zeroH[2], zeroV[2];
};

/// The one with the Bezier coefficients d0, d1, d2, given as pairs h, v.
[[gnu::always_inline]] inline SpeedCurve SpeedCurveOf(double d0H, double d0V, double d1H,
                                                      double d1V, double d2H, double d2V) {
    SpeedCurve curve;
    curve.aH = d0H;
    curve.aV = d0V;
    curve.bH = d1H - d0H;
    curve.bV = d1V - d0V;
    curve.cH = (d0H - d1H) + (d2H - d1H);
    curve.cV = (d0V - d1V) + (d2V - d1V);
    double const size0 = __builtin_fabs(d0H) + __builtin_fabs(d0V);
    double const size2 = __builtin_fabs(d2H) + __builtin_fabs(d2V);
    curve.size = (size0 + (__builtin_fabs(d1H) + __builtin_fabs(d1V))) + size2;
    curve.restsAtStart = size0 == 0.0;
    curve.restsAtEnd = size2 == 0.0;
    return curve;
}

/// The formulas that SpeedLength chooses from have 4, 8 and so on nodes, up to 4 times this.
inline constexpr int kGaussFormulas = 10;
/// Numbers in their table: for every four nodes these, then their weights.
inline constexpr int kGaussEntries = 8 * (kGaussFormulas * (kGaussFormulas + 1) / 2);
/// Where the formula with 4·steps nodes begins: at the end of the shorter ones.
inline constexpr long GaussStart(long steps) { return 4 * steps * (steps - 1); }

/// No answer can be finer than this part of the control polygon's length: the rounding of some tens
/// of additions. Finer accuracies are taken as this one.
inline constexpr double kLengthRounding = 0x1p-50;

/// Sizes with which no product of four differences of points overflows, or underflows in a way that
/// matters.
inline constexpr double kLeastMeasured = 0x1p-100;
inline constexpr double kGreatestMeasured = 0x1p100;

/// Finds the zeros.
void FindZeros(SpeedCurve& curve);

/// The length of a cubic, right within `accuracy` and the rounding, 2^-50 of the size. NaN if its
/// size is not between those above.
double CurveLengthPortable(CBezier const& curve, double accuracy,
                           double const (&table)[kGaussEntries]);
double CurveLengthAvx2(CBezier const& curve, double accuracy, double const (&table)[kGaussEntries]);

/// The length between two parameters from 0 to 1, t0 <= t1, right within `accuracy` and the
/// rounding, 2^-50 of the size. Finds the curve's zeros where it takes them.
double SpeedLengthPortable(SpeedCurve& curve, double t0, double t1, double accuracy,
                           double const (&table)[kGaussEntries]);
double SpeedLengthAvx2(SpeedCurve& curve, double t0, double t1, double accuracy,
                       double const (&table)[kGaussEntries]);

} // namespace trammel_detail

#endif
