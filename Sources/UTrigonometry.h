// SPDX-License-Identifier: MIT

// Trigonometric scalar helpers: angle units, and a sine/cosine pair that is exact at the quadrant
// angles. Angles are radians unless a name says degrees. Stateless, safe in any thread. Nothing
// throws.

#ifndef TRAMMEL_UTRIGONOMETRY_H
#define TRAMMEL_UTRIGONOMETRY_H

#include "TrammelExport.h"

#include <cmath>

/// The double nearest to the ratio of a circle's circumference to its diameter.
inline constexpr double pi = 3.141592653589793238462643383279502884;

/// Stores the sine and the cosine of `angle` (radians), exact where it matters most.
///
/// The angles 0, `pi` and ±`pi`/2, compared exactly, give exact zeros and ones, so that quarter
/// turns keep integers integral. Every other angle, -`pi` and 3·`pi`/2 among them, gives the
/// results of the C library's `sin` and `cos`. A NaN or infinite angle gives NaN in both.
/// \param angle any angle, radians
/// \param sinOut receives the sine
/// \param cosOut receives the cosine
TRAMMEL_API void SinCos(double angle, double& sinOut, double& cosOut);

/// Returns `degrees` in radians: degrees · pi / 180, multiplied first. NaN gives NaN; magnitudes
/// above about 5.7e307 overflow to infinity.
TRAMMEL_API inline double DegToRad(double degrees) { return degrees * pi / 180.0; }

/// Returns `radians` in degrees: radians · 180 / pi, multiplied first. NaN gives NaN; magnitudes
/// above about 1e306 overflow to infinity.
TRAMMEL_API inline double RadToDeg(double radians) { return radians * 180.0 / pi; }

#endif
