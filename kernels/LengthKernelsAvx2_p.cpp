// SPDX-License-Identifier: MIT

// The integral of a curve's speed for processors with AVX2. Vector_p.h tells what such a file may
// not contain.

#include "LengthKernelForms_p.h"

namespace trammel_detail {

double CurveLengthAvx2(double const* points, double accuracy,
                       double const (&table)[kGaussEntries]) {
    return CurveLengthForm<WideDouble4>(points, accuracy, table);
}

double SpeedLengthAvx2(SpeedCurve& curve, double t0, double t1, double accuracy,
                       double const (&table)[kGaussEntries]) {
    return SpeedLengthForm<WideDouble4>(curve, t0, t1, accuracy, table);
}

} // namespace trammel_detail
