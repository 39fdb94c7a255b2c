// SPDX-License-Identifier: MIT

// The integral of a curve's speed, in a form for every processor and in one for AVX2, of the same
// bits. queries/AccurateLength.cpp tells the method and holds the table. Not installed.

#ifndef TRAMMEL_LENGTHKERNELS_P_H
#define TRAMMEL_LENGTHKERNELS_P_H

#include "Dispatch_p.h"

namespace trammel_detail {

/// A third of a cubic's derivative, a + 2bt + ct² in both coordinates.
struct SpeedCurve {
    double aH, aV, bH, bV, cH, cV;
    double size;       ///< at least the magnitude of that third, for t from 0 to 1
    bool restsAtStart; ///< the first two control points are equal
    bool restsAtEnd;   ///< the last two control points are equal
    bool zerosKnown = false;
    /// If known, the zeros of a + 2bt + ct² as a polynomial of complex numbers h + iv. A zero at an
    /// end where the curve rests is left out. A zero that does not exist is NaN or huge.
    double zeroH[2], zeroV[2];
};

/// Returns the speed curve with the Bezier coefficients d0, d1 and d2: the differences between each
/// control point of the cubic and the next.
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

/// The number of formulas that SpeedLength chooses from. They have 4, 8, 12, ... nodes.
inline constexpr int kGaussFormulas = 10;
/// The numbers in their table. Each formula has four nodes, then their weights, and so on.
inline constexpr int kGaussEntries = 8 * (kGaussFormulas * (kGaussFormulas + 1) / 2);
/// Returns the place in the table where the formula with 4·steps nodes begins.
inline constexpr long GaussStart(long steps) { return 4 * steps * (steps - 1); }

/// No answer is finer than this part of the curve's size: the rounding of some tens of additions
/// comes to that. A finer accuracy counts as this one.
inline constexpr double kLengthRounding = 0x1p-50;

/// Between these sizes no product of four differences of points overflows, or underflows in a way
/// that matters.
inline constexpr double kLeastMeasured = 0x1p-100;
inline constexpr double kGreatestMeasured = 0x1p100;

/// Sets the curve's zeros.
void FindZeros(SpeedCurve& curve);

double CurveLengthPortable(double const* points, double accuracy,
                           double const (&table)[kGaussEntries]);
double CurveLengthAvx2(double const* points, double accuracy, double const (&table)[kGaussEntries]);

/// Returns the length of a cubic, right within `accuracy` and the rounding, 2^-50 of the size. NaN
/// when its size is not from kLeastMeasured to kGreatestMeasured. `points` holds the coordinates v
/// and h of its four control points in turn.
[[gnu::always_inline]] inline double CurveLength(double const* points, double accuracy,
                                                 double const (&table)[kGaussEntries]) {
    return Dispatch<CurveLengthPortable, CurveLengthAvx2>(points, accuracy, table);
}

double SpeedLengthPortable(SpeedCurve& curve, double t0, double t1, double accuracy,
                           double const (&table)[kGaussEntries]);
double SpeedLengthAvx2(SpeedCurve& curve, double t0, double t1, double accuracy,
                       double const (&table)[kGaussEntries]);

/// Returns the length between two parameters, 0 <= t0 <= t1 <= 1, right within `accuracy` and the
/// rounding, 2^-50 of the size. Sets the curve's zeros when it needs them. A curve whose size is
/// not from kLeastMeasured to kGreatestMeasured has to be scaled before.
[[gnu::always_inline]] inline double SpeedLength(SpeedCurve& curve, double t0, double t1,
                                                 double accuracy,
                                                 double const (&table)[kGaussEntries]) {
    return Dispatch<SpeedLengthPortable, SpeedLengthAvx2>(curve, t0, t1, accuracy, table);
}

} // namespace trammel_detail

#endif
